#include "platform/statusitem/StatusNotifierItem.h"

#include "platform/dbus/BusCall.h"

#include <QCoreApplication>
#include <QLoggingCategory>

namespace tickwise {

namespace {

Q_LOGGING_CATEGORY(lcNotifierItem, "com.pelmo.tickwise.StatusItem", QtInfoMsg)

QString menuPath()
{
    return QStringLiteral("/MenuBar");
}

QString nextService()
{
    static int count = 0;
    return QStringLiteral("org.kde.StatusNotifierItem-%1-%2").arg(QCoreApplication::applicationPid()).arg(++count);
}

QString watcherInterface()
{
    return QStringLiteral("org.kde.StatusNotifierWatcher");
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
    m_bus.send(busCall(QStringLiteral("ReleaseName"), {m_service}));
}

/// The answer goes out first: a click may lead to this item's end.
QVariantList StatusNotifierItem::runAfterReply(const std::function<void()> &action)
{
    QMetaObject::invokeMethod(this, action, Qt::QueuedConnection);
    return {};
}

void StatusNotifierItem::addMethods()
{
    const auto nothing = [](const QVariantList &) { return QVariantList(); };
    addMethod(QStringLiteral("Activate"), {QStringLiteral("ii"), {}}, [this](const QVariantList &arguments) {
        return runAfterReply([this, position = pointOf(arguments)] { Q_EMIT activated(position); });
    });
    addMethod(QStringLiteral("ContextMenu"), {QStringLiteral("ii"), {}}, [this](const QVariantList &arguments) {
        return runAfterReply([this, position = pointOf(arguments)] { Q_EMIT contextMenuRequested(position); });
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
    const QDBusMessage request = busCall(QStringLiteral("RequestName"), {m_service, busName::doNotQueue});
    sendCall<uint>(m_bus, request, this, [this](const Result<uint> &answer) {
        m_ownsName = answer == busName::primaryOwner || answer == busName::alreadyOwner;
        if (m_announcement)
            announce();
    });
}

void StatusNotifierItem::registerWithWatcher(ItemAnnouncement announcement)
{
    m_announcement = announcement;
    if (m_ownsName)
        announce();
}

void StatusNotifierItem::announce()
{
    const bool byName = *m_ownsName && *m_announcement == ItemAnnouncement::byName;
    QDBusMessage call =
        QDBusMessage::createMethodCall(watcherInterface(), QStringLiteral("/StatusNotifierWatcher"), watcherInterface(),
                                       QStringLiteral("RegisterStatusNotifierItem"));
    call << (byName ? m_service : m_bus.baseService());
    call.setAutoStartService(false);
    sendCall<void>(m_bus, call, this, [](const Result<void> &answer) {
        if (!answer)
            qCDebug(lcNotifierItem).noquote() << "The panel did not take the item:" << description(answer.error());
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
