#pragma once

#include <ovapp_export.h>

#include <QString>

namespace App {

/// A communication channel between the program and other programs or machines. Derive from it,
/// override the functions that the channel needs, and register it with `CommInfoRegistry`.
///
///     class SerialTrigger : public App::CommInfo
///     {
///     public:
///         QString name() const override { return QStringLiteral("serial trigger"); }
///         void start() override { _port.open(QIODevice::ReadWrite); }
///         void stop() override { _port.close(); }
///     ...
///
/// The registry calls all functions on the thread that calls the registry, normally the main
/// thread. A copy of a channel is not registered.
class OVAPP_EXPORT CommInfo
{
public:
    virtual ~CommInfo();

    /// Returns the name of the channel in the log; empty by default.
    virtual QString name() const;
    /// Opens the channel; does nothing by default. May be called while the channel is started.
    virtual void start();
    /// Closes the channel; does nothing by default. May be called while the channel is stopped.
    virtual void stop();
};

} // namespace App
