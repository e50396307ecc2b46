#pragma once

#include <QObject>
#include <QSocketNotifier>

#include <optional>

namespace tickwise {

/// Turns SIGTERM, SIGINT and SIGHUP into a Qt signal, so that the program ends the way it does from its menu. One
/// object at a time.
class TerminationSignals : public QObject
{
    Q_OBJECT

public:
    explicit TerminationSignals(QObject *parent = nullptr);
    ~TerminationSignals() override;

Q_SIGNALS:
    void received(int signalNumber);

private:
    void read();

    std::optional<QSocketNotifier> m_notifier;
};

} // namespace tickwise
