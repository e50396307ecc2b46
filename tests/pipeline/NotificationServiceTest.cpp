#include "pipeline/NotificationService.h"

#include "doubles/Languages.h"
#include "doubles/LogCapture.h"
#include "doubles/TestClock.h"
#include "doubles/TestProgram.h"
#include "pipeline/PriceFormat.h"

using namespace tickwise;
using namespace tickwise::test;

namespace {

const QString category = QStringLiteral("com.pelmo.tickwise.Notifications");

/// Answers later with what the test wants.
class FakeCenter : public UserNotificationCenter
{
public:
    void requestAuthorization(Completion<void> done) override
    {
        ++authorizations;
        answer(std::move(done));
    }
    void add(const UserNotification &notification, Completion<void> done) override
    {
        notifications.push_back(notification);
        answer(std::move(done));
    }

    int authorizations = 0;
    int answered = 0;
    std::vector<UserNotification> notifications;
    Result<void> result;

private:
    void answer(Completion<void> done)
    {
        QMetaObject::invokeMethod(
            this,
            [this, done = std::move(done)] {
                done(result);
                ++answered;
            },
            Qt::QueuedConnection);
    }
};

Coin bitcoinAt(std::optional<double> price)
{
    Coin coin;
    coin.id = QStringLiteral("bitcoin");
    coin.symbol = QStringLiteral("BTC");
    coin.name = QStringLiteral("Bitcoin");
    coin.currentPrice = price;
    return coin;
}

/// The table's own text with its placeholders replaced, one after the other.
QString filled(const LocalizationBundle &bundle, const char *key, const QStringList &arguments)
{
    QString text = localized(QLatin1String(key), bundle);
    for (qsizetype i = 0; i < arguments.size(); ++i)
        text.replace(QStringLiteral("%%1").arg(i + 1), arguments.at(i));
    return text;
}

UserNotification notificationOf(CoinAlertKind kind, std::optional<double> price, double threshold, double move,
                                double rate, const LocalizationBundle &bundle)
{
    return priceAlertNotification(bitcoinAt(price), kind, threshold, move, rate, TestClock().now(), bundle);
}

void addLanguages()
{
    QTest::addColumn<AppLanguage>("language");
    for (const AppLanguage language : {AppLanguage::en, AppLanguage::zhHans, AppLanguage::zhHant})
        QTest::newRow(qPrintable(rawValue(language))) << language;
}

} // namespace

class NotificationServiceTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void textsInEveryLanguage_data() { addLanguages(); }
    void textsInEveryLanguage();
    void englishTexts_data();
    void englishTexts();
    void languagesDiffer();
    void namesThatLookLikePlaceholdersStay();
    void missingTranslationsShowTheKeys();
    void identifiers_data();
    void identifiers();
    void notifyPostsOneNotificationInTheSharedLanguage();
    void authorizationIsAskedOnce();
    void authorizationErrorIsLogged();
    void deliveryErrorIsLogged();
    void serviceMayGoBeforeItsAnswers();
};

void NotificationServiceTest::textsInEveryLanguage()
{
    QFETCH(AppLanguage, language);
    const LocalizationBundle bundle = test::textsOf(language);
    const QString btc = QStringLiteral("BTC");
    const auto direction = [&](const char *key) { return localized(QLatin1String(key), bundle); };

    const UserNotification above = notificationOf(CoinAlertKind::above, 480123.4, 68000, 3, 7, bundle);
    QCOMPARE(above.title, filled(bundle, "notification.priceAlert.title", {QStringLiteral("Bitcoin")}));
    QCOMPARE(above.body, filled(bundle, "notification.priceAlert.above",
                                {btc, QStringLiteral("476,000"), QStringLiteral("480,123")}));
    QCOMPARE(notificationOf(CoinAlertKind::below, 0.51239, 0.5, -3, 1, bundle).body,
             filled(bundle, "notification.priceAlert.below", {btc, QStringLiteral("0.5"), QStringLiteral("0.5124")}));
    QCOMPARE(notificationOf(CoinAlertKind::change, 102, 2, 2, 1, bundle).body,
             filled(bundle, "notification.priceAlert.change",
                    {btc, direction("notification.direction.up"), QStringLiteral("2.00%"), QStringLiteral("102")}));
    QCOMPARE(notificationOf(CoinAlertKind::change, 99.45, 2, -2.5, 1, bundle).body,
             filled(bundle, "notification.priceAlert.change",
                    {btc, direction("notification.direction.down"), QStringLiteral("2.50%"), QStringLiteral("99.45")}));
    QCOMPARE(notificationOf(CoinAlertKind::notSet, 12, 2, 0, 1, bundle).body,
             filled(bundle, "notification.priceAlert.notSet", {btc, QStringLiteral("12")}));
}

void NotificationServiceTest::englishTexts_data()
{
    QTest::addColumn<CoinAlertKind>("kind");
    QTest::addColumn<double>("price"); // negative: none
    QTest::addColumn<double>("threshold");
    QTest::addColumn<double>("move");
    QTest::addColumn<double>("rate");
    QTest::addColumn<QString>("text");
    QTest::newRow("above") << CoinAlertKind::above << 101.0 << 100.0 << 1.0 << 1.0
                           << QStringLiteral("BTC has risen to 100 or above, now at 101");
    QTest::newRow("level in the display currency") << CoinAlertKind::above << 760.0 << 100.0 << 1.0 << 7.5
                                                   << QStringLiteral("BTC has risen to 750 or above, now at 760");
    QTest::newRow("below without a rate") << CoinAlertKind::below << 99.5 << 100.0 << -1.0 << 0.0
                                          << QStringLiteral("BTC has fallen to 100 or below, now at 99.5");
    QTest::newRow("below with a negative rate") << CoinAlertKind::below << 99.5 << 100.0 << -1.0 << -2.0
                                                << QStringLiteral("BTC has fallen to 100 or below, now at 99.5");
    QTest::newRow("no price") << CoinAlertKind::above << -1.0 << 100.0 << 1.0 << 1.0
                              << QStringLiteral("BTC has risen to 100 or above, now at --");
    QTest::newRow("up") << CoinAlertKind::change << 102.0 << 2.0 << 2.0 << 1.0
                        << QStringLiteral("BTC is up 2.00%, now at 102");
    QTest::newRow("down") << CoinAlertKind::change << 99.45 << 2.0 << -2.5 << 1.0
                          << QStringLiteral("BTC is down 2.50%, now at 99.45");
    QTest::newRow("no move is up") << CoinAlertKind::change << 102.0 << 0.0 << 0.0 << 1.0
                                   << QStringLiteral("BTC is up 0.00%, now at 102");
    QTest::newRow("two digits") << CoinAlertKind::change << 102.0 << 2.0 << 1234.5678 << 1.0
                                << QStringLiteral("BTC is up 1234.57%, now at 102");
    QTest::newRow("far below a cent") << CoinAlertKind::above << 0.0000112345 << 0.00001 << 1.0 << 1.0
                                      << QStringLiteral("BTC has risen to 0.00001 or above, now at 0.0000112");
    QTest::newRow("level far below a cent") << CoinAlertKind::below << 0.00034567 << 0.00050004 << -1.0 << 0.7
                                            << QStringLiteral("BTC has fallen to 0.00035 or below, now at 0.000346");
    QTest::newRow("move far below a cent") << CoinAlertKind::change << 0.0000098765 << 2.0 << 2.0 << 1.0
                                           << QStringLiteral("BTC is up 2.00%, now at 0.00000988");
    QTest::newRow("not set") << CoinAlertKind::notSet << 102.0 << 2.0 << 0.0 << 1.0
                             << QStringLiteral("BTC is now at 102");
}

void NotificationServiceTest::englishTexts()
{
    QFETCH(CoinAlertKind, kind);
    QFETCH(double, price);
    QFETCH(double, threshold);
    QFETCH(double, move);
    QFETCH(double, rate);
    QFETCH(QString, text);
    const LocalizationBundle english = test::textsOf(AppLanguage::en);
    const UserNotification notification =
        notificationOf(kind, price < 0 ? std::nullopt : std::optional(price), threshold, move, rate, english);
    QCOMPARE(notification.body, text);
    QCOMPARE(notification.title, QStringLiteral("Bitcoin price alert"));
}

void NotificationServiceTest::languagesDiffer()
{
    QSet<QString> bodies;
    QSet<QString> titles;
    for (const AppLanguage language : {AppLanguage::en, AppLanguage::zhHans, AppLanguage::zhHant}) {
        const LocalizationBundle bundle = test::textsOf(language);
        for (const CoinAlertKind kind : allCases<CoinAlertKind>())
            bodies.insert(notificationOf(kind, 101, 100, 2, 1, bundle).body);
        titles.insert(notificationOf(CoinAlertKind::above, 101, 100, 2, 1, bundle).title);
    }
    QCOMPARE(bodies.size(), 12);
    QCOMPARE(titles.size(), 3);
}

void NotificationServiceTest::namesThatLookLikePlaceholdersStay()
{
    Coin coin = bitcoinAt(5);
    coin.name = QStringLiteral("%2 %1");
    coin.symbol = QStringLiteral("%3");
    const UserNotification notification =
        priceAlertNotification(coin, CoinAlertKind::above, 4, 0, 1, TimePoint(), test::textsOf(AppLanguage::en));
    QCOMPARE(notification.title, QStringLiteral("%2 %1 price alert"));
    QCOMPARE(notification.body, QStringLiteral("%3 has risen to 4 or above, now at 5"));
}

void NotificationServiceTest::missingTranslationsShowTheKeys()
{
    const LogCapture log; // arguments without a placeholder are no reason for a line
    const UserNotification notification = notificationOf(CoinAlertKind::change, 5, 4, 0, 1, nullptr);
    QCOMPARE(notification.title, QStringLiteral("notification.priceAlert.title"));
    QCOMPARE(notification.body, QStringLiteral("notification.priceAlert.change"));
    QVERIFY(log.lines().empty());
}

void NotificationServiceTest::identifiers_data()
{
    QTest::addColumn<qint64>("microseconds");
    QTest::addColumn<QString>("identifier");
    QTest::newRow("fraction") << qint64(1763237722512340) << QStringLiteral("price-alert-bitcoin-1763237722.51234");
    QTest::newRow("whole second") << qint64(1763237722000000) << QStringLiteral("price-alert-bitcoin-1763237722.0");
    QTest::newRow("later") << qint64(1763237722512341) << QStringLiteral("price-alert-bitcoin-1763237722.512341");
}

void NotificationServiceTest::identifiers()
{
    QFETCH(qint64, microseconds);
    QFETCH(QString, identifier);
    const TimePoint now{std::chrono::microseconds(microseconds)};
    QCOMPARE(priceAlertNotification(bitcoinAt(1), CoinAlertKind::notSet, 0, 0, 1, now, nullptr).identifier, identifier);
}

void NotificationServiceTest::notifyPostsOneNotificationInTheSharedLanguage()
{
    test::useLanguage(AppLanguage::zhHant);
    TestClock clock;
    FakeCenter center;
    NotificationService service(center, clock.clock());
    service.notify(bitcoinAt(480123.4), CoinAlertKind::above, BaseCurrency::cny, 68000, 3, 7);
    test::useLanguage(AppLanguage::en);
    QCOMPARE(center.notifications.size(), std::size_t(1));
    QCOMPARE(center.notifications.front(),
             notificationOf(CoinAlertKind::above, 480123.4, 68000, 3, 7, test::textsOf(AppLanguage::zhHant)));
}

void NotificationServiceTest::authorizationIsAskedOnce()
{
    const LogCapture log;
    FakeCenter center;
    NotificationService service(center);
    service.requestAuthorization();
    service.notify(bitcoinAt(1), CoinAlertKind::notSet, BaseCurrency::usd, 0, 0, 1);
    QTRY_COMPARE(center.answered, 2);
    QCOMPARE(center.authorizations, 1);
    QVERIFY(log.texts(category).isEmpty());
}

void NotificationServiceTest::authorizationErrorIsLogged()
{
    const LogCapture log;
    FakeCenter center;
    center.result = failure(DesktopServiceError{DesktopServiceError::Kind::timedOut, QStringLiteral("50% silent")});
    NotificationService service(center);
    service.requestAuthorization();
    QTRY_COMPARE(center.answered, 1);
    QCOMPARE(log.texts(category), QStringList(QStringLiteral("Notification permission error: no answer: 50% silent")));
    QCOMPARE(log.lines().front().type, QtWarningMsg);
}

void NotificationServiceTest::deliveryErrorIsLogged()
{
    const LogCapture log;
    FakeCenter center;
    center.result = failure(DesktopServiceError{DesktopServiceError::Kind::noService, QStringLiteral("no such name")});
    NotificationService service(center);
    service.notify(bitcoinAt(1), CoinAlertKind::notSet, BaseCurrency::usd, 0, 0, 1);
    QTRY_COMPARE(center.answered, 1);
    QCOMPARE(log.texts(category),
             QStringList(QStringLiteral("Failed to deliver notification: no such service: no such name")));
    QCOMPARE(log.lines().front().type, QtWarningMsg);
}

void NotificationServiceTest::serviceMayGoBeforeItsAnswers()
{
    const LogCapture log;
    FakeCenter center;
    center.result = failure(DesktopServiceError{DesktopServiceError::Kind::timedOut});
    std::make_unique<NotificationService>(center)->notify(bitcoinAt(1), CoinAlertKind::notSet, BaseCurrency::usd, 0, 0,
                                                          1);
    QTRY_COMPARE(center.answered, 1);
    QCOMPARE(log.texts(category).size(), 1);
}

TICKWISE_TEST(NotificationServiceTest)
#include "NotificationServiceTest.moc"
