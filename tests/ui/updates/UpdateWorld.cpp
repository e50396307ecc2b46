#include "UpdateWorld.h"

#include <QDirIterator>
#include <QFile>
#include <QTest>

#include <algorithm>

namespace tickwise::test {

namespace {

const QByteArray feedPath = "/appcast.xml";
const QByteArray packagePath = "/tickwise_1.1_amd64.deb";

QString updaterKey()
{
    return QStringLiteral("updater");
}

QByteArray itemText(const Release &release, const AppcastItem &item)
{
    return "<item><sparkle:version>" + release.version + "</sparkle:version><sparkle:minimumSystemVersion>" +
           release.minimumSystemVersion + "</sparkle:minimumSystemVersion><description><![CDATA[" + release.notes +
           "]]></description><enclosure url=\"" + item.url.toEncoded() + "\" length=\"" +
           QByteArray::number(item.length) + "\" type=\"application/octet-stream\" sparkle:edSignature=\"" +
           item.signature + "\"/></item>";
}

} // namespace

Subscription PackageInstallerDouble::install(const QString &path, Completion<PackageInstallation> done)
{
    paths.append(path);
    QFile file(path);
    content = file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
    return deliverLater(result, std::move(done));
}

UpdateWorld::UpdateWorld()
    : m_server(std::make_unique<LoopbackHttpServer>(loopbackServerTls(LoopbackCertificate::valid), clock.clock(),
                                                    [this](const LoopbackRequest &request) { return answer(request); }))
{
    configuration.feed = QUrl(m_server->baseUrl() + QString::fromLatin1(feedPath));
    configuration.publicKey = key.publicKey();
    configuration.runningVersion = QStringLiteral("1.0");
    configuration.systemVersion = QStringLiteral("12");
    configuration.downloadDirectory = m_folder.filePath(QStringLiteral("updates"));
}

UpdateWorld::~UpdateWorld()
{
    stop();
}

LoopbackAnswer UpdateWorld::answer(const LoopbackRequest &request)
{
    m_requests.push_back(request.target);
    m_lastRequest = request;
    const auto found = answers.find(request.target);
    if (found != answers.end())
        return found->second;
    LoopbackAnswer missing;
    missing.status = 404;
    missing.body = "Not found";
    return missing;
}

QString UpdateWorld::packageUrl() const
{
    return m_server->baseUrl() + QString::fromLatin1(packagePath);
}

AppcastItem UpdateWorld::itemOf(const Release &release) const
{
    AppcastItem item;
    item.version = QString::fromLatin1(release.version);
    item.url = QUrl(release.url.isEmpty() ? packageUrl() : release.url);
    item.length = release.length.value_or(package.size());
    item.signature = release.signature ? *release.signature : key.sign(package);
    return item;
}

QByteArray UpdateWorld::feedOf(const std::vector<Release> &releases) const
{
    QByteArray items;
    for (const Release &release : releases)
        items += itemText(release, itemOf(release));
    return "<?xml version=\"1.0\" encoding=\"utf-8\"?><rss version=\"2.0\" "
           "xmlns:sparkle=\"http://www.andymatuschak.org/xml-namespaces/sparkle\"><channel>" +
           items + "</channel></rss>";
}

void UpdateWorld::publishFeed(const QByteArray &feed)
{
    answers[feedPath].body = feed;
    answers[feedPath].contentType = "application/rss+xml";
}

void UpdateWorld::publish(const std::vector<Release> &releases)
{
    publishFeed(feedOf(releases));
    answers[packagePath].body = package;
}

void UpdateWorld::start()
{
    stop();
    controller = std::make_unique<UpdateController>();
    UpdaterServices services{http, clock.clock(), defaults, driver, [this] { return focused; }, installer};
    auto owned = std::make_unique<SparkleUpdaterBackend>(*controller, configuration, services);
    m_backend = owned.get();
    controller->attach(std::move(owned));
}

void UpdateWorld::stop()
{
    controller.reset();
    m_backend = nullptr;
}

int UpdateWorld::requests(const QByteArray &path) const
{
    return static_cast<int>(std::count(m_requests.begin(), m_requests.end(), path));
}

QByteArray UpdateWorld::headerOfLastRequest(const QByteArray &name) const
{
    return m_lastRequest.header(name).value_or(QByteArray());
}

QStringList UpdateWorld::downloads() const
{
    QStringList files;
    QDirIterator found(configuration.downloadDirectory, QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot,
                       QDirIterator::Subdirectories);
    while (found.hasNext())
        files.append(found.next());
    files.removeAll(configuration.downloadDirectory + QStringLiteral("/.package"));
    return files;
}

UpdaterSettings UpdateWorld::stored() const
{
    return decodeUpdaterSettings(defaults.data(updaterKey()).value_or("{}")).value_or(UpdaterSettings());
}

void UpdateWorld::store(const UpdaterSettings &settings)
{
    defaults.entries[updaterKey()] = encodeUpdaterSettings(settings).value();
}

void checkUntil(UpdateWorld &world, UpdatePhase phase)
{
    UpdaterSettings settings = world.stored();
    settings.automaticallyChecks = false;
    world.store(settings);
    world.start();
    world.controller->checkForUpdates();
    QTRY_COMPARE(world.driver.phase(), std::optional(phase));
}

void downloadUntil(UpdateWorld &world, UpdatePhase phase)
{
    checkUntil(world, UpdatePhase::available);
    world.driver.choose(UpdateAction::download);
    QTRY_COMPARE(world.driver.phase(), std::optional(phase));
}

} // namespace tickwise::test
