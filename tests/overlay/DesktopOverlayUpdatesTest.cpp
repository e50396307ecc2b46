#include "doubles/Languages.h"
#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"
#include "overlay/DesktopOverlayPlacement.h"
#include "overlay/DesktopOverlayView.h"

#include <QBackingStore>
#include <QPainter>

#include <random>

using namespace tickwise;
using namespace tickwise::test;

namespace {

constexpr int changeCount = 80;

/// What shows through the overlay.
class Wallpaper : public QWidget
{
protected:
    void paintEvent(QPaintEvent *) override
    {
        QPainter painter(this);
        painter.fillRect(rect(), Qt::lightGray);
        painter.fillRect(rect(), QBrush(Qt::darkGreen, Qt::DiagCrossPattern));
    }
};

/// An overlay on a wallpaper, in a window of its own.
class Shown
{
public:
    Shown(DesktopOverlayModel &model, const Clock &clock, double scale)
        : m_model(model)
        , m_view(new DesktopOverlayView(
              model, [](const QString &) { return std::nullopt; }, clock, &m_window))
        , m_scale(scale)
    {
        m_window.setWindowFlags(Qt::ToolTip); // none of them gets the focus
        m_view->setScale(scale);
        resize();
        m_window.show();
    }

    void resize()
    {
        const auto rows = int(m_model.content().rows.size());
        m_view->resize((desktopOverlaySize(m_model.textSize(), rows) * m_scale).toSize());
        m_window.resize(m_view->size());
    }

    /// What has been painted of it.
    QImage picture()
    {
        QCoreApplication::processEvents();
        QCoreApplication::sendPostedEvents();
        QPaintDevice *const painted = m_window.backingStore()->paintDevice();
        return painted->devType() == QInternal::Image ? static_cast<QImage *>(painted)->copy() : QImage();
    }

    DesktopOverlayView &view() { return *m_view; }

private:
    DesktopOverlayModel &m_model;
    Wallpaper m_window;
    DesktopOverlayView *m_view;
    double m_scale;
};

/// Changes of what the overlay shows, as they come, in an order of chance.
class Changes
{
public:
    Changes(DesktopOverlayModel &model, TestClock &clock)
        : m_model(model)
        , m_clock(clock)
    {
        WidgetEntryContent content;
        content.language = AppLanguage::en;
        content.upColorHex = QStringLiteral("#2CBD84");
        content.downColorHex = QStringLiteral("#F6465D");
        for (int i = 0; i < 4; ++i)
            content.rows.push_back(row(i));
        m_model.setContent(content);
    }

    /// Makes one and names it.
    QString next()
    {
        using Step = std::pair<const char *, void (Changes::*)(WidgetEntryContent &)>;
        static constexpr std::array<Step, 12> steps{{{"prices", &Changes::movePrices},
                                                     {"prices", &Changes::movePrices},
                                                     {"prices", &Changes::movePrices},
                                                     {"one price", &Changes::moveOnePrice},
                                                     {"one price", &Changes::moveOnePrice},
                                                     {"time", &Changes::passTime},
                                                     {"stale", &Changes::growStale},
                                                     {"delisting", &Changes::delist},
                                                     {"coins", &Changes::changeCoins},
                                                     {"language", &Changes::changeLanguage},
                                                     {"colors", &Changes::changeColors},
                                                     {"look", &Changes::changeLook}}};
        const Step &step = steps.at(std::size_t(chance(int(steps.size()))));
        WidgetEntryContent content = m_model.content();
        (this->*step.second)(content);
        m_model.setContent(content);
        return QString::fromLatin1(step.first);
    }

private:
    int chance(int count) { return std::uniform_int_distribution<int>(0, count - 1)(m_random); }

    WidgetRow row(int number)
    {
        static const QStringList assets{QStringLiteral("coin-bitcoin"), QStringLiteral("coin-ethereum"), QString()};
        WidgetRow row{.id = QString::number(number), .symbol = QStringLiteral("C%1").arg(number)};
        row.name = number % 3 == 2 ? QStringLiteral("A name that is too long for every price there is")
                                   : QStringLiteral("Coin number %1").arg(number);
        if (const QString &asset = assets[number % assets.size()]; !asset.isEmpty())
            row.logoAssetName = asset;
        row.hasMarket = true;
        move(row);
        return row;
    }
    void move(WidgetRow &row)
    {
        row.price = std::pow(10.0, chance(12) - 4) * (1 + chance(9999) / 1111.0);
        row.change24hPercent = (chance(2000) - 1000) / 7.0;
    }

    void movePrices(WidgetEntryContent &content)
    {
        passTime(content);
        for (WidgetRow &row : content.rows) {
            if (row.price)
                row.price = *row.price * (1 + (chance(100) - 50) / 1000.0);
            if (row.change24hPercent)
                row.change24hPercent = *row.change24hPercent + (chance(100) - 50) / 100.0;
        }
    }
    void moveOnePrice(WidgetEntryContent &content)
    {
        if (!content.rows.empty())
            move(content.rows[std::size_t(chance(int(content.rows.size())))]);
    }
    void passTime(WidgetEntryContent &content)
    {
        m_clock.advance(10 + chance(100));
        content.updatedAt = m_clock.now();
    }
    void growStale(WidgetEntryContent &content)
    {
        m_clock.advance(1801);
        if (!content.rows.empty()) // the list asks for the time when it gets its content
            move(content.rows.front());
    }
    void delist(WidgetEntryContent &content)
    {
        if (content.rows.empty())
            return;
        WidgetRow &row = content.rows[std::size_t(chance(int(content.rows.size())))];
        row.hasMarket = !row.hasMarket;
        if (chance(2) == 0)
            row.change24hPercent.reset();
        if (chance(4) == 0)
            row.price.reset();
    }
    void changeCoins(WidgetEntryContent &content)
    {
        const int kind = chance(3);
        if (kind == 0 || content.rows.size() < 2)
            content.rows.push_back(row(chance(30)));
        else if (kind == 1)
            content.rows.pop_back();
        else
            std::swap(content.rows.front(), content.rows.back());
    }
    void changeLanguage(WidgetEntryContent &content)
    {
        static constexpr std::array languages{AppLanguage::en, AppLanguage::zhHans, AppLanguage::zhHant};
        content.language = languages.at(std::size_t(chance(3)));
    }
    void changeColors(WidgetEntryContent &content)
    {
        content.colorByChange = !content.colorByChange;
        std::swap(content.upColorHex, content.downColorHex);
    }
    void changeLook(WidgetEntryContent &)
    {
        static constexpr std::array opacities{0.0, 0.1, 0.4, 1.0};
        const int kind = chance(4);
        if (kind == 0)
            m_model.setTextSize(chance(2) == 0 ? DesktopOverlayTextSize::normal : DesktopOverlayTextSize::large);
        else if (kind == 1)
            m_model.setAdjusting(!m_model.isAdjusting());
        else
            m_model.setBackgroundOpacity(opacities.at(std::size_t(chance(4))));
    }

    DesktopOverlayModel &m_model;
    TestClock &m_clock;
    std::mt19937 m_random{7};
};

/// Of the pixels that differ, the area; empty when there are none.
QRect difference(const QImage &a, const QImage &b)
{
    if (a == b && !a.isNull())
        return {};
    if (a.size() != b.size() || a.isNull())
        return QRect(QPoint(), a.size() + QSize(1, 1));
    QRect different;
    for (int y = 0; y < a.height(); ++y) {
        for (int x = 0; x < a.width(); ++x) {
            if (a.pixel(x, y) != b.pixel(x, y))
                different |= QRect(x, y, 1, 1);
        }
    }
    return different;
}

QString text(const QRect &rect)
{
    return QStringLiteral("%1,%2 %3x%4").arg(rect.x()).arg(rect.y()).arg(rect.width()).arg(rect.height());
}

} // namespace

/// The overlay repaints parts of itself. Whatever has changed, it must look like one that was never shown before.
class DesktopOverlayUpdatesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void looksLikeAFreshOne_data();
    void looksLikeAFreshOne();
    void looksLikeAFreshOneOnScreensOf_data();
    void looksLikeAFreshOneOnScreensOf();
    void repaintsTheNumbersAlone();
};

void DesktopOverlayUpdatesTest::looksLikeAFreshOne_data()
{
    QTest::addColumn<double>("textScale");
    for (const double scale : {1.0, 1.5, 2.0})
        QTest::addRow("%g", scale) << scale;
}

void DesktopOverlayUpdatesTest::looksLikeAFreshOne()
{
    QFETCH(double, textScale);
    useLanguage(AppLanguage::en);
    TestClock clock;
    DesktopOverlayModel model;
    Changes changes(model, clock);
    Shown shown(model, clock.clock(), textScale);
    QString made = QStringLiteral("start");
    for (int i = 0; i < changeCount; ++i) {
        Shown fresh(model, clock.clock(), textScale);
        const QRect different = difference(shown.picture(), fresh.picture());
        const QString what = QStringLiteral("change %1, %2: %3").arg(i).arg(made, text(different));
        QVERIFY2(different.isEmpty(), qPrintable(what));
        made = changes.next();
        shown.picture();
        shown.resize();
    }
}

void DesktopOverlayUpdatesTest::looksLikeAFreshOneOnScreensOf_data()
{
    QTest::addColumn<QString>("pixelsAPoint");
    for (const char *const ratio : {"1.25", "1.5", "1.6", "2"})
        QTest::newRow(ratio) << QString::fromLatin1(ratio);
}

/// A process has one ratio.
void DesktopOverlayUpdatesTest::looksLikeAFreshOneOnScreensOf()
{
    QFETCH(QString, pixelsAPoint);
    QProcess other;
    QProcessEnvironment environment = QProcessEnvironment::systemEnvironment();
    environment.insert(QStringLiteral("QT_SCALE_FACTOR"), pixelsAPoint);
    environment.insert(QStringLiteral("QT_SCALE_FACTOR_ROUNDING_POLICY"), QStringLiteral("PassThrough"));
    other.setProcessEnvironment(environment);
    other.start(QCoreApplication::applicationFilePath(),
                {QString::fromLatin1(staticMetaObject.className()), QStringLiteral("looksLikeAFreshOne:1"),
                 QStringLiteral("looksLikeAFreshOne:1.5")});
    QVERIFY(other.waitForFinished(120000));
    QVERIFY2(other.exitCode() == 0, other.readAllStandardOutput().constData());
}

void DesktopOverlayUpdatesTest::repaintsTheNumbersAlone()
{
    class Painted : public QObject
    {
    public:
        bool eventFilter(QObject *, QEvent *event) override
        {
            if (event->type() == QEvent::Paint)
                area |= static_cast<QPaintEvent *>(event)->rect();
            return false;
        }
        QRect area;
    };
    TestClock clock;
    DesktopOverlayModel model;
    const Changes changes(model, clock);
    Shown shown(model, clock.clock(), 1);
    shown.picture();
    Painted painted;
    shown.view().installEventFilter(&painted);
    WidgetEntryContent content = model.content();
    content.rows[1].price = *content.rows[1].price + 1;
    model.setContent(content);
    shown.picture();
    const QRect row = shown.view().list().rowRect(1).toRect().translated(shown.view().list().pos());
    QVERIFY2(!painted.area.isEmpty() && row.adjusted(130, -4, 0, 4).contains(painted.area),
             qPrintable(text(painted.area)));
}

TICKWISE_WIDGET_TEST(DesktopOverlayUpdatesTest)
#include "DesktopOverlayUpdatesTest.moc"
