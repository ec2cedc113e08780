#pragma once

#include <QObject>

#include <memory>

struct sd_bus;
class QSocketNotifier;

namespace System {

/// Asks logind to keep the system awake while this object exists.
///
/// The request is sent and completed by the event loop of the thread that creates the object; the
/// same thread has to destroy the object. No function waits for an answer. If there is no bus, no
/// logind or no answer, nothing happens and nothing is printed.
class SleepInhibitor final : public QObject
{
public:
    SleepInhibitor();
    ~SleepInhibitor() override;

private:
    void connectToBus();
    void processMessages();

    std::unique_ptr<sd_bus, sd_bus* (*)(sd_bus*)> _bus;
    std::unique_ptr<QSocketNotifier> _notifier;
    /// The descriptor that keeps the system awake until it is closed, or -1.
    int _lock = -1;
};

} // namespace System
