#include "overlay/DesktopOverlayController.h"

#include "overlay/DesktopOverlayPlacement.h"

#include <QLoggingCategory>
#include <QPointer>

#include <utility>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcDesktopOverlay, "com.pelmo.tickwise.DesktopOverlay")

} // namespace

DesktopOverlayController::DesktopOverlayController(DesktopOverlayContext context, QObject *parent)
    : QObject(parent)
    , m_context(std::move(context))
{
    m_model.onDoneAdjusting = [self = QPointer<DesktopOverlayController>(this)] {
        if (self)
            self->finishAdjusting();
    };
    m_settingsNotifier = m_context.settings.bindableSettings().addNotifier([this] { follow(); });
    m_coinsNotifier = m_context.coinList.bindableCoins().addNotifier([this] { follow(); });
    follow();
}

DesktopOverlayController::~DesktopOverlayController() = default;

/// A hidden overlay has no use for its content.
void DesktopOverlayController::follow()
{
    const AppSettings &settings = m_context.settings.settings();
    const CoinListViewModel &list = m_context.coinList;
    const BaseCurrency currency = list.priceDataCurrency().value_or(settings.baseCurrency);
    apply(settings, settings.desktopOverlayEnabled
                        ? widgetEntryContent(list.coins(), settings, currency, m_context.catalog.byID())
                        : m_model.content());
}

bool DesktopOverlayController::isAvailable()
{
    if (!std::exchange(m_wasSurfaceMade, true) && m_context.makeSurface)
        m_surface = m_context.makeSurface();
    return m_surface != nullptr;
}

void DesktopOverlayController::apply(const AppSettings &settings, const WidgetEntryContent &content)
{
    const bool wasEnabled = std::exchange(m_settings, settings).desktopOverlayEnabled;
    m_model.setContent(content);
    m_model.setBackgroundOpacity(settings.desktopOverlayBackgroundOpacity);
    m_model.setTextSize(settings.desktopOverlayTextSize);
    if (!settings.desktopOverlayEnabled) {
        leaveAdjusting();
        if (m_surface)
            m_surface->hide();
        return;
    }
    if (!isAvailable()) {
        if (!wasEnabled)
            qCWarning(lcDesktopOverlay, "This desktop has no place for the overlay");
        return;
    }
    if (!m_window)
        createWindow();
    place();
}

void DesktopOverlayController::createWindow()
{
    CoinLogoStore &logos = m_context.logos;
    auto *const view = new DesktopOverlayView(
        m_model, [&logos](const QString &id) { return logos.image(id); }, m_context.clock);
    connect(&logos, &CoinLogoStore::cachedIDsChanged, view, qOverload<>(&QWidget::update));
    m_window = std::make_unique<DesktopOverlayWindow>(view);
    m_window->setTranslucent(m_surface->isTranslucent());
    m_surface->onScreensChanged = [this] { reposition(); };
    m_surface->onTranslucencyChanged = [this] { m_window->setTranslucent(m_surface->isTranslucent()); };
    connect(m_window.get(), &DesktopOverlayWindow::grabbed, this, [this](const QMouseEvent &event) {
        m_grip = m_surface->pointerPosition(event) - m_surface->frame().topLeft();
    });
    connect(m_window.get(), &DesktopOverlayWindow::dragged, this, &DesktopOverlayController::drag);
    connect(m_window.get(), &DesktopOverlayWindow::nudged, this, &DesktopOverlayController::nudge);
    connect(m_window.get(), &DesktopOverlayWindow::confirmed, this, &DesktopOverlayController::finishAdjusting);
    connect(m_window.get(), &DesktopOverlayWindow::canceled, this, &DesktopOverlayController::cancelAdjusting);
}

void DesktopOverlayController::place()
{
    m_window->view().setScale(m_context.textScale());
    const QRect frame =
        m_model.isAdjusting() ? QRect(m_surface->frame().topLeft(), size()) : placed(m_settings.desktopOverlayTopLeft);
    if (!m_surface->isShown())
        m_surface->show(*m_window, frame);
    else if (m_surface->frame() != frame)
        m_surface->place(frame);
}

QSize DesktopOverlayController::size() const
{
    const QSizeF points = desktopOverlaySize(m_model.textSize(), int(m_model.content().rows.size()));
    return (points * m_context.textScale()).toSize();
}

QRect DesktopOverlayController::placed(const std::optional<DesktopOverlayOrigin> &topLeft) const
{
    return desktopOverlayFrame(size(), topLeft, m_surface->screens());
}

void DesktopOverlayController::beginAdjusting()
{
    if (!m_settings.desktopOverlayEnabled || !m_window)
        return;
    m_model.setAdjusting(true);
    m_window->setAllowsKey(true);
    m_surface->setInteractive(true);
}

void DesktopOverlayController::leaveAdjusting()
{
    if (!m_model.isAdjusting())
        return;
    m_model.setAdjusting(false);
    m_window->setAllowsKey(false);
    m_surface->setInteractive(false);
}

void DesktopOverlayController::finishAdjusting()
{
    if (!m_model.isAdjusting())
        return;
    leaveAdjusting();
    AppSettings settings = m_context.settings.settings();
    settings.desktopOverlayTopLeft = desktopOverlayOrigin(m_surface->frame().topLeft(), m_surface->screens());
    m_context.settings.update(settings);
}

void DesktopOverlayController::cancelAdjusting()
{
    leaveAdjusting();
    reposition();
}

void DesktopOverlayController::reposition()
{
    if (m_surface && m_surface->isShown() && !m_model.isAdjusting())
        place();
}

void DesktopOverlayController::drag(const QMouseEvent &event)
{
    m_surface->place(QRect(m_surface->pointerPosition(event) - m_grip, size()));
}

void DesktopOverlayController::nudge(QPoint step)
{
    m_surface->place(desktopOverlayNudged(m_surface->frame(), step, m_surface->screens()));
}

void DesktopOverlayController::retranslate()
{
    if (m_window)
        m_window->view().retranslate();
}

} // namespace tickwise
