#include "platform/session/WindowPalette.h"

#include <QApplication>
#include <QStyle>

namespace tickwise {

namespace {

constexpr QRgb ground = qRgb(0x2D, 0x2F, 0x33);
constexpr QRgb fieldGround = qRgb(0x22, 0x24, 0x27);
constexpr QRgb buttonGround = qRgb(0x38, 0x3B, 0x40);
constexpr QRgb writing = qRgb(0xF2, 0xF3, 0xF4);
constexpr QRgb inactiveWriting = qRgb(0x86, 0x89, 0x8E);
constexpr QRgb placeholder = qRgb(0xA8, 0xAB, 0xB0);
constexpr QRgb accent = qRgb(0x2F, 0x7F, 0xD0);
constexpr QRgb linkWriting = qRgb(0x6C, 0xB4, 0xF5);

bool isQtsOwnStyle()
{
    return QApplication::style()->name().compare(QLatin1StringView("fusion"), Qt::CaseInsensitive) == 0;
}

bool isDark(const QPalette &palette)
{
    return palette.color(QPalette::Window).lightness() < palette.color(QPalette::WindowText).lightness();
}

} // namespace

QPalette darkWindowPalette()
{
    const QColor text(writing);
    QPalette palette(text, QColor(buttonGround), QColor(buttonGround).lighter(), QColor(fieldGround).darker(),
                     QColor(buttonGround).darker(), text, Qt::white, QColor(fieldGround), QColor(ground));
    palette.setColor(QPalette::AlternateBase, QColor(ground));
    palette.setColor(QPalette::ToolTipBase, QColor(buttonGround));
    palette.setColor(QPalette::ToolTipText, text);
    palette.setColor(QPalette::PlaceholderText, QColor(placeholder));
    palette.setColor(QPalette::Highlight, QColor(accent));
    palette.setColor(QPalette::HighlightedText, Qt::white);
    palette.setColor(QPalette::Link, QColor(linkWriting));
    palette.setColor(QPalette::LinkVisited, QColor(linkWriting));
    for (const QPalette::ColorRole role : {QPalette::WindowText, QPalette::Text, QPalette::ButtonText})
        palette.setColor(QPalette::Disabled, role, QColor(inactiveWriting));
    return palette;
}

WindowPalette::WindowPalette(SessionBus &bus)
    : m_colorScheme(bus)
{
    connect(&m_colorScheme, &ColorSchemePortal::schemeChanged, this, &WindowPalette::update);
}

void WindowPalette::update()
{
    const bool wantsDark = m_colorScheme.scheme() == PanelAppearance::dark && isQtsOwnStyle();
    if (wantsDark == m_isDark || (wantsDark && isDark(QGuiApplication::palette())))
        return;
    m_isDark = wantsDark;
    QApplication::setPalette(wantsDark ? darkWindowPalette() : QPalette());
}

} // namespace tickwise
