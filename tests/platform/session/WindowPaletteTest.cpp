#include "platform/session/WindowPalette.h"

#include "doubles/TestProgram.h"
#include "platform/statusitem/FakeStatusPanel.h"

#include <QApplication>
#include <QLabel>
#include <QSignalSpy>

#include <memory>

using namespace tickwise;
using namespace tickwise::test;

namespace {

constexpr uint noPreference = 0;
constexpr uint dark = 1;
constexpr uint light = 2;

QColor windowColor()
{
    return QApplication::palette().color(QPalette::Window);
}

} // namespace

class WindowPaletteTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void cleanup();

    void followsThePortal();
    void aDarkDesktopIsLeftAlone();
    void withoutAPortalNothingChanges();
    void textsStandOut_data();
    void textsStandOut();

private:
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<SessionBus> m_session;
};

void WindowPaletteTest::init()
{
    m_bus = std::make_unique<PrivateBus>();
    m_session = std::make_unique<SessionBus>(m_bus->address());
    QApplication::setStyle(QStringLiteral("fusion"));
}

void WindowPaletteTest::cleanup()
{
    m_session.reset();
    m_bus.reset();
    QApplication::setPalette(QPalette());
}

void WindowPaletteTest::followsThePortal()
{
    const QColor before = windowColor();
    const QLabel window;
    FakeSettingsPortal portal(*m_bus, dark);
    const WindowPalette palette(*m_session);
    QTRY_COMPARE(windowColor(), darkWindowPalette().color(QPalette::Window));
    // Qt posts the change to a window that was never shown.
    QTRY_COMPARE(window.palette().color(QPalette::WindowText), darkWindowPalette().color(QPalette::WindowText));
    portal.setScheme(light);
    QTRY_COMPARE(windowColor(), before);
    portal.setScheme(dark);
    QTRY_VERIFY(windowColor() != before);
    portal.setScheme(noPreference);
    QTRY_COMPARE(windowColor(), before);
}

void WindowPaletteTest::aDarkDesktopIsLeftAlone()
{
    const QPalette own(Qt::white, Qt::black, Qt::gray, Qt::darkGray, Qt::gray, Qt::white, Qt::black);
    QApplication::setPalette(own);
    FakeSettingsPortal portal(*m_bus, dark);
    ColorSchemePortal told(*m_session);
    QSignalSpy changed(&told, &ColorSchemePortal::schemeChanged);
    const WindowPalette palette(*m_session);
    QVERIFY(changed.wait());
    portal.setScheme(light);
    QVERIFY(changed.wait());
    QCOMPARE(windowColor(), own.color(QPalette::Window));
}

void WindowPaletteTest::withoutAPortalNothingChanges()
{
    const QColor before = windowColor();
    const WindowPalette palette(*m_session);
    QVERIFY(!QTest::qWaitFor([before] { return windowColor() != before; }, 300));
}

void WindowPaletteTest::textsStandOut_data()
{
    QTest::addColumn<int>("text");
    QTest::addColumn<int>("ground");
    QTest::newRow("window") << int(QPalette::WindowText) << int(QPalette::Window);
    QTest::newRow("field") << int(QPalette::Text) << int(QPalette::Base);
    QTest::newRow("button") << int(QPalette::ButtonText) << int(QPalette::Button);
    QTest::newRow("placeholder") << int(QPalette::PlaceholderText) << int(QPalette::Base);
    QTest::newRow("tooltip") << int(QPalette::ToolTipText) << int(QPalette::ToolTipBase);
    QTest::newRow("link") << int(QPalette::Link) << int(QPalette::Window);
}

void WindowPaletteTest::textsStandOut()
{
    QFETCH(int, text);
    QFETCH(int, ground);
    const QPalette palette = darkWindowPalette();
    const QColor lighter = palette.color(QPalette::ColorRole(text));
    const QColor darker = palette.color(QPalette::ColorRole(ground));
    QVERIFY(lighter.lightness() - darker.lightness() > 100);
}

TICKWISE_WIDGET_TEST(WindowPaletteTest)
#include "WindowPaletteTest.moc"
