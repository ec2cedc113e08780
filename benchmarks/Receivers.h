#pragma once

#include <bench_peers_export.h>

#include <app/PropertyListener.h>

#include <QObject>

#include <memory>

/// The receivers of the notifications. All of them add the value to a sum. Their functions are
/// compiled separately from the callers, so that no compiler can inline the call.
namespace Bench {

/// For the application object and the bare loop.
class BENCH_PEERS_EXPORT ListeningReceiver : public App::PropertyListener
{
public:
    static std::unique_ptr<ListeningReceiver> create();

    qint64 sum = 0;
};

/// For the libraries that can call any function; they do not need a virtual one.
class BENCH_PEERS_EXPORT PlainReceiver
{
public:
    static std::unique_ptr<PlainReceiver> create();

    void updateProperty(Doc::Document* document, bool flag, int value);

    qint64 sum = 0;
};

/// For Qt signals.
class BENCH_PEERS_EXPORT QtReceiver : public QObject
{
    Q_OBJECT

public:
    static std::unique_ptr<QtReceiver> create();

    void updateProperty(Doc::Document* document, bool flag, int value);

    qint64 sum = 0;
};

} // namespace Bench
