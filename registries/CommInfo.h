#pragma once

#include <ovapp_export.h>

#include <QString>

namespace App {

/// A communication channel, over which the program is asked and told things from outside. Derive
/// from it, override what the channel needs, and register it with `CommInfoRegistry`.
///
///     class SerialTrigger : public App::CommInfo
///     {
///     public:
///         QString name() const override { return QStringLiteral("serial trigger"); }
///         void start() override { _port.open(QIODevice::ReadWrite); }
///         void stop() override { _port.close(); }
///     ...
///
/// All operations are called on the thread that calls the registry, the main thread.
class OVAPP_EXPORT CommInfo
{
public:
    CommInfo();
    /// A copy is not registered, whether its source is or not.
    /// @{
    CommInfo(const CommInfo& other);
    CommInfo& operator=(const CommInfo& other);
    /// @}
    virtual ~CommInfo();

    /// What the log calls the channel; empty by default.
    virtual QString name() const;
    /// Opens the channel; does nothing by default. It may be called while the channel is started.
    virtual void start();
    /// Closes the channel; does nothing by default. It may be called while the channel is stopped.
    virtual void stop();
};

} // namespace App
