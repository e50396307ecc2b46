#include "platform/statusitem/StatusNotifierItem.h"

#include <QCoreApplication>
#include <QDBusPendingCallWatcher>
#include <QDBusPendingReply>
#include <QLoggingCategory>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcStatusItem, "com.pelmo.tickwise.StatusItem", QtInfoMsg)

constexpr uint doNotQueue = 4;

QString menuPath()
{
    return QStringLiteral("/MenuBar");
}

QString nextService()
{
    static int count = 0;
    return QStringLiteral("org.kde.StatusNotifierItem-%1-%2").arg(QCoreApplication::applicationPid()).arg(++count);
}

QDBusMessage busCall(const QString &method)
{
    return QDBusMessage::createMethodCall(QStringLiteral("org.freedesktop.DBus"),
                                          QStringLiteral("/org/freedesktop/DBus"),
                                          QStringLiteral("org.freedesktop.DBus"), method);
}

QPoint pointOf(const QVariantList &arguments)
{
    return {arguments[0].toInt(), arguments[1].toInt()};
}

} // namespace

StatusNotifierItem::StatusNotifierItem(const QDBusConnection &bus)
    : VirtualObject(bus, QStringLiteral("/StatusNotifierItem"), QStringLiteral("org.kde.StatusNotifierItem"))
    , m_bus(bus)
    , m_service(nextService())
    , m_menu(std::make_unique<DBusMenu>(bus, menuPath()))
{
    registerStatusPixmapTypes();
    addMethods();
    addSignals();
    requestName();
}

StatusNotifierItem::~StatusNotifierItem()
{
    QDBusMessage release = busCall(QStringLiteral("ReleaseName"));
    release << m_service;
    m_bus.send(release);
}

/// The answer goes out first: a click may lead to this item's end.
QVariantList StatusNotifierItem::later(const std::function<void()> &action)
{
    QMetaObject::invokeMethod(this, action, Qt::QueuedConnection);
    return {};
}

void StatusNotifierItem::addMethods()
{
    const auto nothing = [](const QVariantList &) { return QVariantList(); };
    addMethod(QStringLiteral("Activate"), {QStringLiteral("ii"), {}}, [this](const QVariantList &arguments) {
        return later([this, position = pointOf(arguments)] { Q_EMIT activated(position); });
    });
    addMethod(QStringLiteral("ContextMenu"), {QStringLiteral("ii"), {}}, [this](const QVariantList &arguments) {
        return later([this, position = pointOf(arguments)] { Q_EMIT contextMenuRequested(position); });
    });
    addMethod(QStringLiteral("SecondaryActivate"), {QStringLiteral("ii"), {}}, nothing);
    addMethod(QStringLiteral("XAyatanaSecondaryActivate"), {QStringLiteral("u"), {}}, nothing);
    addMethod(QStringLiteral("Scroll"), {QStringLiteral("is"), {}}, nothing);
    addMethod(QStringLiteral("ProvideXdgActivationToken"), {QStringLiteral("s"), {}}, nothing);
}

void StatusNotifierItem::addSignals()
{
    for (const QString &name :
         {QStringLiteral("NewTitle"), QStringLiteral("NewIcon"), QStringLiteral("NewAttentionIcon"),
          QStringLiteral("NewOverlayIcon"), QStringLiteral("NewMenu"), QStringLiteral("NewToolTip"),
          QStringLiteral("NewIconThemePath")})
        addSignal(name, QString());
    addSignal(QStringLiteral("NewStatus"), QStringLiteral("s"));
    addSignal(QStringLiteral("XAyatanaNewLabel"), QStringLiteral("ss"));
}

/// A blocking registerService would stop the interface while the bus is busy.
void StatusNotifierItem::requestName()
{
    QDBusMessage request = busCall(QStringLiteral("RequestName"));
    request << m_service << doNotQueue;
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(request), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [this](QDBusPendingCallWatcher *finished) {
        finished->deleteLater();
        m_ownsName = !finished->isError();
        if (m_wantsWatcher)
            announce();
    });
}

void StatusNotifierItem::registerWithWatcher(bool byConnection)
{
    m_wantsWatcher = true;
    m_byConnection = byConnection;
    if (m_ownsName)
        announce();
}

void StatusNotifierItem::announce()
{
    QDBusMessage call = QDBusMessage::createMethodCall(
        QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("/StatusNotifierWatcher"),
        QStringLiteral("org.kde.StatusNotifierWatcher"), QStringLiteral("RegisterStatusNotifierItem"));
    call << (m_byConnection ? m_bus.baseService() : m_service);
    call.setAutoStartService(false);
    auto *watcher = new QDBusPendingCallWatcher(m_bus.asyncCall(call), this);
    connect(watcher, &QDBusPendingCallWatcher::finished, this, [](QDBusPendingCallWatcher *finished) {
        finished->deleteLater();
        if (finished->isError())
            qCDebug(lcStatusItem).noquote() << "The panel did not take the item:" << finished->error().message();
    });
}

void StatusNotifierItem::setContent(const StatusNotifierContent &content)
{
    const StatusNotifierContent before = std::exchange(m_content, content);
    if (before.title != content.title)
        emitSignal(QStringLiteral("NewTitle"));
    if (before.pixmaps != content.pixmaps)
        emitSignal(QStringLiteral("NewIcon"));
    if (before.toolTip != content.toolTip)
        emitSignal(QStringLiteral("NewToolTip"));
    if (before.label != content.label && content.label)
        emitSignal(QStringLiteral("XAyatanaNewLabel"), {*content.label, content.labelGuide});
}

QVariantMap StatusNotifierItem::properties() const
{
    const QVariant noPixmaps = QVariant::fromValue(QList<StatusPixmap>());
    QVariantMap all{
        {QStringLiteral("Category"), QStringLiteral("ApplicationStatus")},
        {QStringLiteral("Id"), QStringLiteral("com.pelmo.tickwise")},
        {QStringLiteral("Title"), m_content.title},
        {QStringLiteral("Status"), QStringLiteral("Active")},
        {QStringLiteral("WindowId"), 0},
        {QStringLiteral("IconName"), QString()},
        {QStringLiteral("IconThemePath"), QString()},
        {QStringLiteral("IconPixmap"), QVariant::fromValue(m_content.pixmaps)},
        {QStringLiteral("OverlayIconName"), QString()},
        {QStringLiteral("OverlayIconPixmap"), noPixmaps},
        {QStringLiteral("AttentionIconName"), QString()},
        {QStringLiteral("AttentionIconPixmap"), noPixmaps},
        {QStringLiteral("AttentionMovieName"), QString()},
        {QStringLiteral("ToolTip"), QVariant::fromValue(m_content.toolTip)},
        {QStringLiteral("ItemIsMenu"), false},
        {QStringLiteral("Menu"), QVariant::fromValue(QDBusObjectPath(menuPath()))},
    };
    if (m_content.label) {
        all.insert(QStringLiteral("XAyatanaLabel"), *m_content.label);
        all.insert(QStringLiteral("XAyatanaLabelGuide"), m_content.labelGuide);
        all.insert(QStringLiteral("XAyatanaOrderingIndex"), 0U);
    }
    return all;
}

} // namespace tickwise
