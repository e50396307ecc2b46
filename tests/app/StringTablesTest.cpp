#include "doubles/Languages.h"

#include "doubles/TestData.h"
#include "doubles/TestProgram.h"

#include <QDirIterator>
#include <QFile>
#include <QRegularExpression>
#include <QXmlStreamReader>

#include <map>
#include <set>

using namespace tickwise;

namespace {

using Table = std::map<QString, QString>;

QString projectPath(const QString &name)
{
    return test::dataPath(QStringLiteral("../../") + name);
}

Table readTable(AppLanguage language)
{
    QFile file(projectPath(QStringLiteral("Tickwise/resources/%1.lproj/Localizable.ts").arg(rawValue(language))));
    if (!file.open(QIODevice::ReadOnly))
        return {};
    Table table;
    QString id;
    QXmlStreamReader xml(&file);
    while (!xml.atEnd()) {
        if (xml.readNext() != QXmlStreamReader::StartElement)
            continue;
        if (xml.name() == QStringLiteral("message"))
            id = xml.attributes().value(QStringLiteral("id")).toString();
        else if (xml.name() == QStringLiteral("translation"))
            table[id] = xml.readElementText();
    }
    return table;
}

/// Every key that the application has, one on each line in order.
QStringList listedKeys()
{
    return QString::fromUtf8(test::readData(QStringLiteral("localization-keys.txt"))).split(u'\n', Qt::SkipEmptyParts);
}

std::set<QString> keys(const Table &table)
{
    std::set<QString> keys;
    for (const auto &[key, text] : table)
        keys.insert(key);
    return keys;
}

/// The placeholders of a text, "%1" to "%9".
std::set<QString> arguments(const QString &text)
{
    static const QRegularExpression placeholder(QStringLiteral("%[1-9]"));
    std::set<QString> arguments;
    for (auto match = placeholder.globalMatch(text); match.hasNext();)
        arguments.insert(match.next().captured());
    return arguments;
}

/// How many arguments a text takes that numbers them without a gap; -1 for any other.
int argumentCount(const QString &text)
{
    const std::set<QString> found = arguments(text);
    const int count = static_cast<int>(found.size());
    return count == 0 || *found.rbegin() == QStringLiteral("%%1").arg(count) ? count : -1;
}

/// The position after the parenthesis that closes the one before `start`.
qsizetype endOfCall(const QString &source, qsizetype start)
{
    qsizetype end = start;
    for (int depth = 1; end < source.size() && depth > 0; ++end)
        depth += source[end] == u'(' ? 1 : source[end] == u')' ? -1 : 0;
    return end;
}

/// The literals in a source that have the form of a key; one that ends in a dot is the start of keys made at run time.
std::set<QString> dottedLiterals(const QString &source)
{
    static const QRegularExpression literal(QStringLiteral(R"re("([a-z][a-zA-Z0-9]*\.[a-zA-Z0-9.-]*)")re"));
    std::set<QString> literals;
    for (auto match = literal.globalMatch(source); match.hasNext();)
        literals.insert(match.next().captured(1));
    return literals;
}

/// The keys that a source asks for: what it hands to `localized`, and any literal that starts as known keys do.
std::set<QString> keysIn(const QString &source, const Table &table)
{
    static const QRegularExpression call(QStringLiteral(R"re(\blocalized\()re"));
    static const QRegularExpression fileName(QStringLiteral(R"re(\.(json|svg|png|xml|conf|qm|ts|desktop|service)$)re"));
    std::set<QString> keys;
    for (auto match = call.globalMatch(source); match.hasNext();) {
        const qsizetype start = match.next().capturedEnd();
        keys.merge(dottedLiterals(source.sliced(start, endOfCall(source, start) - start)));
    }
    for (const QString &literal : dottedLiterals(source)) {
        const QString group = literal.left(literal.indexOf(u'.') + 1);
        const auto first = table.lower_bound(group);
        if (first != table.end() && first->first.startsWith(group) && !fileName.match(literal).hasMatch())
            keys.insert(literal);
    }
    return keys;
}

bool hasKey(const Table &table, const QString &key)
{
    if (!key.endsWith(u'.'))
        return table.contains(key);
    const auto first = table.lower_bound(key);
    return first != table.end() && first->first.startsWith(key);
}

} // namespace

class StringTablesTest : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void everyKeyIsListed_data() { languages(); }
    void everyKeyIsListed();
    void sameArguments_data() { languages(); }
    void sameArguments();
    void textsAreWhole_data() { languages(); }
    void textsAreWhole();
    void compiledTablesAnswerAlike_data() { languages(); }
    void compiledTablesAnswerAlike();
    void templatesTakeTheirArguments_data();
    void templatesTakeTheirArguments();
    void lookupsAreFound();
    void sourcesAskForKnownKeys();
    void desktopFileSpeaksEveryLanguage();

private:
    void languages();
};

void StringTablesTest::languages()
{
    QTest::addColumn<AppLanguage>("language");
    for (const AppLanguage language : {AppLanguage::en, AppLanguage::zhHans, AppLanguage::zhHant})
        QTest::newRow(qPrintable(rawValue(language))) << language;
}

void StringTablesTest::everyKeyIsListed()
{
    QFETCH(AppLanguage, language);
    const QStringList listed = listedKeys();
    QVERIFY2(std::is_sorted(listed.begin(), listed.end()), "localization-keys.txt is not in order");
    QStringList found;
    for (const QString &key : keys(readTable(language)))
        found.append(key);
    QCOMPARE(found, listed);
}

void StringTablesTest::sameArguments()
{
    QFETCH(AppLanguage, language);
    const Table english = readTable(AppLanguage::en);
    const Table table = readTable(language);
    QVERIFY(!table.empty());
    for (const auto &[key, text] : table) {
        QVERIFY2(arguments(text) == arguments(english.at(key)), qPrintable(key));
        QVERIFY2(argumentCount(text) >= 0, qPrintable(key));
    }
}

void StringTablesTest::textsAreWhole()
{
    QFETCH(AppLanguage, language);
    const Table table = readTable(language);
    QVERIFY(!table.empty());
    for (const auto &[key, text] : table) {
        QVERIFY2(!text.isEmpty() && text == text.trimmed(), qPrintable(key));
        QVERIFY2(text != key, qPrintable(key));
    }
}

void StringTablesTest::compiledTablesAnswerAlike()
{
    QFETCH(AppLanguage, language);
    const LocalizationBundle bundle = test::textsOf(language);
    const Table table = readTable(language);
    QVERIFY(!table.empty());
    for (const auto &[key, text] : table)
        QCOMPARE(localized(key, bundle), text);
}

void StringTablesTest::templatesTakeTheirArguments_data()
{
    QTest::addColumn<QString>("key");
    QTest::addColumn<int>("count");
    const auto row = [](const char *key, int count) { QTest::newRow(key) << QString::fromLatin1(key) << count; };
    row("notification.priceAlert.title", 1);
    row("notification.priceAlert.above", 3);
    row("notification.priceAlert.below", 3);
    row("notification.priceAlert.change", 4);
    row("notification.priceAlert.notSet", 2);
    row("tooltip.exactPrice", 2);
    row("tooltip.fetchedAt", 1);
    row("tooltip.age", 1);
    row("tooltip.age.seconds", 1);
    row("tooltip.age.minutes", 1);
    row("tooltip.age.hours", 1);
    row("tooltip.age.days", 1);
    row("tooltip.change24h", 1);
    row("failure.rateLimitedUntil", 1);
    row("update.available", 2);
    row("update.downloading", 1);
    row("update.installed", 1);
    row("update.installManually", 1);
    row("update.upToDate", 1);
    row("update.failed", 1);
    row("general.notification.service", 1);
    row("a11y.alertKind", 1);
    row("a11y.alertThreshold", 1);
    row("a11y.coinAdded", 2);
    row("a11y.coinNotAdded", 2);
    row("a11y.delete", 1);
    row("a11y.reorder", 1);
    row("a11y.list", 2);
    row("a11y.change.up", 1);
    row("a11y.change.down", 1);
    row("a11y.statusItem", 0);
    row("about.version", 1);
}

void StringTablesTest::templatesTakeTheirArguments()
{
    QFETCH(QString, key);
    QFETCH(int, count);
    const Table table = readTable(AppLanguage::en);
    QVERIFY(table.contains(key));
    QCOMPARE(argumentCount(table.at(key)), count);
}

void StringTablesTest::lookupsAreFound()
{
    const Table table = readTable(AppLanguage::en);
    const QString source = QStringLiteral(R"cpp(
        localized(QStringLiteral("menu.open"));
        label(localized(QStringLiteral("menu.") + raw, bundle), QStringLiteral("com.pelmo"));
        localized(up ? QStringLiteral("no.up") : QStringLiteral( "no.down" )).arg(QStringLiteral("not.this"));
        addSection(QStringLiteral("general.section.other"));
        row("popover.other", QLatin1String("watchlist.other"), u"menu.other"_qs);
        read(QStringLiteral("widget.json"));)cpp");
    std::set<QString> expected;
    for (const char *key : {"menu.open", "menu.", "no.up", "no.down", "general.section.other", "popover.other",
                            "watchlist.other", "menu.other"})
        expected.insert(QString::fromLatin1(key));
    QCOMPARE(keysIn(source, table), expected);
    QVERIFY(hasKey(table, QStringLiteral("lang.endonym.")));
    QVERIFY(!hasKey(table, QStringLiteral("lang.endonyms.")));
    QVERIFY(!hasKey(table, QStringLiteral("lang.endonym")));
}

void StringTablesTest::sourcesAskForKnownKeys()
{
    const Table table = readTable(AppLanguage::en);
    int lookups = 0;
    for (const char *folder : {"Tickwise", "demo"}) {
        QDirIterator sources(projectPath(QString::fromLatin1(folder)), {QStringLiteral("*.cpp"), QStringLiteral("*.h")},
                             QDir::Files, QDirIterator::Subdirectories);
        while (sources.hasNext()) {
            QFile file(sources.next());
            QVERIFY(file.open(QIODevice::ReadOnly));
            for (const QString &key : keysIn(QString::fromUtf8(file.readAll()), table)) {
                QVERIFY2(hasKey(table, key), qPrintable(file.fileName() + QStringLiteral(": ") + key));
                ++lookups;
            }
        }
    }
    QVERIFY(lookups >= 4);
}

void StringTablesTest::desktopFileSpeaksEveryLanguage()
{
    QFile file(projectPath(QStringLiteral("packaging/com.pelmo.tickwise.desktop")));
    QVERIFY(file.open(QIODevice::ReadOnly));
    std::map<QByteArray, QByteArray> entries;
    for (const QByteArray &line : file.readAll().split('\n'))
        entries[line.left(line.indexOf('='))] = line.mid(line.indexOf('=') + 1);
    for (const QByteArray name : {"Name", "GenericName", "Comment", "Keywords"}) {
        for (const QByteArray locale : {"zh_CN", "zh_TW"})
            QVERIFY2(!entries[name + '[' + locale + ']'].isEmpty(), name.constData());
        QCOMPARE(entries[name + "[zh_SG]"], entries[name + "[zh_CN]"]);
        QCOMPARE(entries[name + "[zh_HK]"], entries[name + "[zh_TW]"]);
    }
}

TICKWISE_TEST(StringTablesTest)
#include "StringTablesTest.moc"
