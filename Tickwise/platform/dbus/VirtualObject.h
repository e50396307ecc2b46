#pragma once

#include <QDBusConnection>
#include <QDBusMessage>
#include <QDBusVirtualObject>
#include <QMap>
#include <QVariantMap>

#include <functional>

namespace tickwise {

/// An object on the bus with one interface whose properties are decided at run time, so that one can be absent.
class VirtualObject : public QDBusVirtualObject
{
public:
    VirtualObject(const QDBusConnection &bus, const QString &path, const QString &interfaceName);
    ~VirtualObject() override;

    QString introspect(const QString &path) const override;
    bool handleMessage(const QDBusMessage &message, const QDBusConnection &connection) override;

protected:
    /// Answers one call with the reply's arguments.
    using Handler = std::function<QVariantList(const QVariantList &arguments)>;

    /// D-Bus signatures of a method's arguments and of its answer.
    struct Signature
    {
        QString in, out;
    };

    /// Serves a method; a call with other arguments is refused.
    void addMethod(const QString &name, const Signature &signature, Handler handler);
    /// Lists a signal in the introspection.
    void addSignal(const QString &name, const QString &signature);
    void emitSignal(const QString &name, const QVariantList &arguments = {}) const;
    virtual QVariantMap properties() const = 0;

private:
    QDBusMessage methodReply(const QDBusMessage &message) const;
    QDBusMessage propertiesReply(const QDBusMessage &message) const;

    struct Method
    {
        Signature signature;
        Handler handler;
    };

    QDBusConnection m_bus;
    QString m_path;
    QString m_interface;
    QMap<QString, Method> m_methods;
    QMap<QString, QString> m_signals;
};

/// The complete types that a D-Bus signature is made of: "iias" gives "i", "i", "as".
QStringList completeTypes(const QString &signature);

} // namespace tickwise
