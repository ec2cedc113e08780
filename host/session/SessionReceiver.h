#pragma once

#include <QObject>

namespace Host {

class EventPrinter;

/// A Qt object that prints the events posted to it, and those posted to the `QCoreApplication` if
/// it is installed there as an event filter.
class SessionReceiver : public QObject
{
public:
    explicit SessionReceiver(EventPrinter& printer);

    bool event(QEvent* event) override;
    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    /// Prints the event and returns true if it is one that the library posts.
    bool print(const QString& source, const QEvent& event);

    EventPrinter& _printer;
};

} // namespace Host
