#pragma once

#include <bench_peers_export.h>

#include <app/PropertyListener.h>

#include <QObject>

#include <memory>

/// Who is told, on each side of the comparison. All do the same: they add the value to a sum of
/// their own. What they do is compiled apart from every caller, so that none of them can do
/// without the call.
namespace Bench {

/// For the application object and for the bare loop.
class BENCH_PEERS_EXPORT ListeningReceiver : public App::PropertyListener
{
public:
    static std::unique_ptr<ListeningReceiver> make();

    qint64 sum = 0;
};

/// For the libraries that call any function: it needs no virtual operation, so it has none.
class BENCH_PEERS_EXPORT PlainReceiver
{
public:
    static std::unique_ptr<PlainReceiver> make();

    void updateProperty(Doc::Document* document, bool flag, int value);

    qint64 sum = 0;
};

/// For Qt.
class BENCH_PEERS_EXPORT QtReceiver : public QObject
{
    Q_OBJECT

public:
    static std::unique_ptr<QtReceiver> make();

    void updateProperty(Doc::Document* document, bool flag, int value);

    qint64 sum = 0;
};

} // namespace Bench
