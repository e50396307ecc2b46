#pragma once

#include "demo/LoopbackHttpServer.h"
#include "demo/LoopbackTls.h"
#include "doubles/MemoryDefaults.h"
#include "doubles/SigningKey.h"
#include "doubles/TestClock.h"
#include "platform/network/NetworkHttpClient.h"
#include "ui/updates/SparkleUpdaterBackend.h"

#include <QTemporaryDir>

#include <functional>
#include <map>

namespace tickwise::test {

/// A user in front of an update session.
class UserDriverDouble : public UpdateUserDriver
{
    Q_OBJECT

public:
    void show(const UpdateState &state) override { states.push_back(state); }
    void bringToFront() override { ++fronts; }
    void dismiss() override { ++dismissals; }

    void choose(UpdateAction action) { Q_EMIT chosen(action); }
    /// The phase that is shown; none while nothing ever was.
    std::optional<UpdatePhase> phase() const
    {
        return states.empty() ? std::nullopt : std::optional(states.back().phase);
    }
    std::optional<UpdateFailureKind> failure() const { return states.empty() ? std::nullopt : states.back().failure; }

    std::vector<UpdateState> states;
    int fronts = 0;
    int dismissals = 0;
};

/// A system that answers later, with the result that it is given.
class PackageInstallerDouble : public PackageInstaller
{
public:
    Subscription install(const QString &path, Completion<PackageInstallation> done) override;
    void restart() override
    {
        ++restarts;
        if (onRestart)
            onRestart();
    }

    Result<PackageInstallation> result = PackageInstallation::opened;
    QStringList paths;  ///< of the packages, in order
    QByteArray content; ///< of the last one
    int restarts = 0;
    std::function<void()> onRestart; ///< what the end of the program brings about
};

/// One item of a feed, as its publisher would sign it.
struct Release
{
    QByteArray version = "1.1";
    QByteArray minimumSystemVersion;
    QByteArray notes = "<p>Faster</p>";
    std::optional<QByteArray> signature; ///< none: the right one; empty: not signed
    std::optional<qint64> length;        ///< none: the right one
    QString url;                         ///< empty: the package of the loopback server
};

/// An update server over TLS on 127.0.0.1, and a program that it updates.
class UpdateWorld
{
public:
    UpdateWorld();
    ~UpdateWorld();

    /// What the server answers at a path; 404 elsewhere.
    std::map<QByteArray, LoopbackAnswer> answers;
    QByteArray package = QByteArray("package ").repeated(4000);

    QByteArray feedOf(const std::vector<Release> &releases) const;
    /// Puts package and feed on the server.
    void publish(const std::vector<Release> &releases);
    void publishFeed(const QByteArray &feed);
    QString packageUrl() const;
    AppcastItem itemOf(const Release &release) const;

    /// Starts the program: a new controller with its backend.
    void start();
    void stop();
    SparkleUpdaterBackend &backend() const { return *m_backend; }
    /// How often a path was asked for.
    int requests(const QByteArray &path) const;
    QByteArray headerOfLastRequest(const QByteArray &name) const;
    int feedRequests() const { return requests("/appcast.xml"); }
    /// Everything below the download folder but the record of what is ours.
    QStringList downloads() const;
    UpdaterSettings stored() const;
    void store(const UpdaterSettings &settings);

    TestClock clock;
    MemoryDefaults defaults;
    SigningKey key;
    UserDriverDouble driver;
    bool focused = false;
    PackageInstallerDouble installer;
    UpdaterConfiguration configuration;
    NetworkHttpClient http{loopbackAuthorities()};
    std::unique_ptr<UpdateController> controller;

private:
    LoopbackAnswer answer(const LoopbackRequest &request);

    std::vector<QByteArray> m_requests;
    LoopbackRequest m_lastRequest;
    QTemporaryDir m_folder;
    std::unique_ptr<LoopbackHttpServer> m_server;
    SparkleUpdaterBackend *m_backend = nullptr;
};

/// Starts the program without automatic checks, asks for a check and waits until its session comes to the phase.
void checkUntil(UpdateWorld &world, UpdatePhase phase);
/// The same, and accepts the update that is offered.
void downloadUntil(UpdateWorld &world, UpdatePhase phase);

} // namespace tickwise::test
