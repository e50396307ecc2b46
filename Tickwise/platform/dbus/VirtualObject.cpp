#include "platform/dbus/VirtualObject.h"

#include <QDBusError>
#include <QDBusMetaType>
#include <QDBusVariant>

namespace tickwise {

namespace {

QString propertiesInterface()
{
    return QStringLiteral("org.freedesktop.DBus.Properties");
}

QDBusMessage unknownMethod(const QDBusMessage &message)
{
    return message.createErrorReply(QDBusError::UnknownMethod, QStringLiteral("No such method: ") + message.member());
}

qsizetype endOfType(const QString &signature, qsizetype start)
{
    if (signature[start] == u'a')
        return endOfType(signature, start + 1);
    qsizetype end = start;
    int depth = 0;
    do {
        const QChar character = signature[end++];
        depth += character == u'(' || character == u'{' ? 1 : character == u')' || character == u'}' ? -1 : 0;
    } while (depth > 0);
    return end;
}

QString argumentsXml(const QString &signature, const QString &attributes)
{
    QString xml;
    for (const QString &type : completeTypes(signature))
        xml += QStringLiteral("<arg type=\"%1\"%2/>").arg(type, attributes);
    return xml;
}

} // namespace

QStringList completeTypes(const QString &signature)
{
    QStringList types;
    for (qsizetype start = 0; start < signature.size();) {
        const qsizetype end = endOfType(signature, start);
        types << signature.mid(start, end - start);
        start = end;
    }
    return types;
}

VirtualObject::VirtualObject(const QDBusConnection &bus, const QString &path, const QString &interfaceName)
    : m_bus(bus)
    , m_path(path)
    , m_interface(interfaceName)
{
    m_bus.registerVirtualObject(path, this);
}

VirtualObject::~VirtualObject()
{
    m_bus.unregisterObject(m_path);
}

QString VirtualObject::introspect(const QString &) const
{
    QString xml = QStringLiteral("<interface name=\"%1\">\n").arg(m_interface);
    const QVariantMap all = properties();
    for (auto property = all.begin(); property != all.end(); ++property) {
        xml += QStringLiteral("<property name=\"%1\" type=\"%2\" access=\"read\"/>\n")
                   .arg(property.key(), QString::fromLatin1(QDBusMetaType::typeToSignature(property->metaType())));
    }
    for (auto method = m_methods.begin(); method != m_methods.end(); ++method) {
        xml += QStringLiteral("<method name=\"%1\">%2%3</method>\n")
                   .arg(method.key(), argumentsXml(method->signature.in, QStringLiteral(" direction=\"in\"")),
                        argumentsXml(method->signature.out, QStringLiteral(" direction=\"out\"")));
    }
    for (auto signal = m_signals.begin(); signal != m_signals.end(); ++signal)
        xml += QStringLiteral("<signal name=\"%1\">%2</signal>\n").arg(signal.key(), argumentsXml(*signal, QString()));
    return xml + QStringLiteral("</interface>\n");
}

bool VirtualObject::handleMessage(const QDBusMessage &message, const QDBusConnection &connection)
{
    const QString interface = message.interface();
    const bool forProperties = interface == propertiesInterface();
    if (!forProperties && interface != m_interface && !(interface.isEmpty() && m_methods.contains(message.member())))
        return false;
    const QDBusMessage reply = forProperties ? propertiesReply(message) : methodReply(message);
    if (message.isReplyRequired())
        connection.send(reply);
    return true;
}

void VirtualObject::addMethod(const QString &name, const Signature &signature, Handler handler)
{
    m_methods.insert(name, {signature, std::move(handler)});
}

void VirtualObject::addSignal(const QString &name, const QString &signature)
{
    m_signals.insert(name, signature);
}

void VirtualObject::emitSignal(const QString &name, const QVariantList &arguments) const
{
    QDBusMessage signal = QDBusMessage::createSignal(m_path, m_interface, name);
    signal.setArguments(arguments);
    m_bus.send(signal);
}

QDBusMessage VirtualObject::methodReply(const QDBusMessage &message) const
{
    const auto method = m_methods.constFind(message.member());
    if (method == m_methods.constEnd())
        return unknownMethod(message);
    if (method->signature.in != message.signature())
        return message.createErrorReply(QDBusError::InvalidArgs,
                                        QStringLiteral("Expected arguments ") + method->signature.in);
    return message.createReply(method->handler(message.arguments()));
}

QDBusMessage VirtualObject::propertiesReply(const QDBusMessage &message) const
{
    const QVariantList arguments = message.arguments();
    const bool asked =
        !arguments.isEmpty() && (arguments.first().toString() == m_interface || arguments.first().toString().isEmpty());
    if (message.member() == QLatin1StringView("GetAll") && message.signature() == QLatin1StringView("s"))
        return message.createReply(QVariant(asked ? properties() : QVariantMap()));
    if (message.member() == QLatin1StringView("Set"))
        return message.createErrorReply(QDBusError::PropertyReadOnly, QStringLiteral("The properties are read-only"));
    if (message.member() != QLatin1StringView("Get") || message.signature() != QLatin1StringView("ss"))
        return unknownMethod(message);
    const QVariant value = asked ? properties().value(arguments[1].toString()) : QVariant();
    if (!value.isValid())
        return message.createErrorReply(QDBusError::UnknownProperty,
                                        QStringLiteral("No such property: ") + arguments[1].toString());
    return message.createReply(QVariant::fromValue(QDBusVariant(value)));
}

} // namespace tickwise
