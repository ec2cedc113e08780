#pragma once

#include <bench_peers_export.h>

#include <ovdoc/Document.h>

#include <boost/signals2/dummy_mutex.hpp>
#include <boost/signals2/signal_type.hpp>
#include <sigc++/signal.h>

#include <QObject>

#include <vector>

namespace App {
class PropertyListener;
} // namespace App

/// The alternatives to the application object's listeners. Each is used in its fastest way, on one
/// thread.
namespace Bench {

class PlainReceiver;
class QtReceiver;

using PropertySignature = void(Doc::Document*, bool, int);

/// The lower bound: one virtual call per listener, without any guarantee if a listener changes the
/// list.
class BENCH_PEERS_EXPORT BareLoop
{
public:
    void connect(App::PropertyListener* listener);
    void notify(Doc::Document* document, bool flag, int value);

private:
    std::vector<App::PropertyListener*> _listeners;
};

/// A Qt signal with direct connections to member functions.
class BENCH_PEERS_EXPORT QtNotifier : public QObject
{
    Q_OBJECT

public:
    void connect(QtReceiver* receiver);
    void notify(Doc::Document* document, bool flag, int value);

Q_SIGNALS:
    void propertyUpdated(Doc::Document* document, bool flag, int value);
};

/// A Boost signal without its mutex, since the other alternatives do not lock.
class BENCH_PEERS_EXPORT BoostNotifier
{
public:
    void connect(PlainReceiver* receiver);
    void notify(Doc::Document* document, bool flag, int value);

private:
    using Unlocked = boost::signals2::keywords::mutex_type<boost::signals2::dummy_mutex>;

    boost::signals2::signal_type<PropertySignature, Unlocked>::type _signal;
};

/// A sigc++ signal, connected to lambdas, which do not track the lifetime of the receiver.
class BENCH_PEERS_EXPORT SigcNotifier
{
public:
    void connect(PlainReceiver* receiver);
    void notify(Doc::Document* document, bool flag, int value);

private:
    sigc::signal<PropertySignature> _signal;
};

} // namespace Bench
