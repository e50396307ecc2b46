#pragma once

#include <QDBusAbstractInterface>
#include <QVariantMap>

namespace tickwise {

/// The object through which the desktop portal answers a request.
class PortalRequest : public QDBusAbstractInterface
{
    Q_OBJECT

public:
    PortalRequest(const QDBusConnection &sessionBus, const QString &path);

Q_SIGNALS:
    /// `response` is 0 for success, 1 when the user refused, 2 for any other end.
    void Response(uint response, const QVariantMap &results);
};

} // namespace tickwise
