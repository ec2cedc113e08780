#pragma once

#include <QObject>

namespace Host {

class EventPrinter;

/// A Qt object that reports the events posted to it, and those posted to the `QCoreApplication`
/// when it is installed there as an event filter.
class SessionReceiver : public QObject
{
public:
    explicit SessionReceiver(EventPrinter& printer);

    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    bool reported(const QString& who, const QEvent& event);

    EventPrinter& _printer;
};

} // namespace Host
