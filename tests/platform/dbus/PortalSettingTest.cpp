#include "platform/dbus/PortalSetting.h"

#include "doubles/TestProgram.h"
#include "platform/statusitem/FakeStatusPanel.h"

#include <QSignalSpy>

#include <memory>

using namespace tickwise;
using namespace tickwise::test;

class PortalSettingTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void init();
    void aPortalThatStartsLaterIsAsked();
    void aPortalThatStartsAnewIsAskedAgain();
    void aPortalThatStartsLaterOnABusThatReturnedIsAsked();

private:
    std::unique_ptr<PrivateBus> m_bus;
    std::unique_ptr<SessionBus> m_session;
    std::unique_ptr<PortalSetting> m_setting;
};

void PortalSettingTest::init()
{
    m_setting.reset();
    m_session.reset();
    m_bus = std::make_unique<PrivateBus>();
    m_session = std::make_unique<SessionBus>(m_bus->address());
    m_setting = std::make_unique<PortalSetting>(*m_session, QStringLiteral("org.freedesktop.appearance"),
                                                QStringLiteral("color-scheme"));
    // From here on no question of the constructor is under way.
    QVERIFY(PrivateBus::settle(m_session->connection()));
}

void PortalSettingTest::aPortalThatStartsLaterIsAsked()
{
    QVERIFY(!m_setting->value().isValid());
    QSignalSpy changed(m_setting.get(), &PortalSetting::valueChanged);
    const FakeSettingsPortal portal(*m_bus, 1);
    QTRY_COMPARE(changed.size(), 1);
    QCOMPARE(m_setting->value(), QVariant(1U));
}

void PortalSettingTest::aPortalThatStartsAnewIsAskedAgain()
{
    auto portal = std::make_unique<FakeSettingsPortal>(*m_bus, 1);
    portal->setScheme(1);
    QTRY_COMPARE(m_setting->value(), QVariant(1U));
    portal.reset();
    portal = std::make_unique<FakeSettingsPortal>(*m_bus, 2);
    QTRY_COMPARE(m_setting->value(), QVariant(2U));
}

void PortalSettingTest::aPortalThatStartsLaterOnABusThatReturnedIsAsked()
{
    QSignalSpy connected(m_session.get(), &SessionBus::connected);
    m_bus->stop();
    m_bus->start();
    QTRY_COMPARE(connected.size(), 1);
    QVERIFY(PrivateBus::settle(m_session->connection()));
    const FakeSettingsPortal portal(*m_bus, 2);
    QTRY_COMPARE(m_setting->value(), QVariant(2U));
}

TICKWISE_TEST(PortalSettingTest)
#include "PortalSettingTest.moc"
