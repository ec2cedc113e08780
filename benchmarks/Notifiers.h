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

/// The alternatives to the application object's listeners. Each is used in the way of its kind
/// that is fastest, on one thread.
namespace Bench {

class PlainReceiver;
class QtReceiver;

using PropertySignature = void(Doc::Document*, bool, int);

/// The least that telling listeners can cost: a virtual call of each, and no promise about what
/// the listeners may do meanwhile.
class BENCH_PEERS_EXPORT BareLoop
{
public:
    void connect(App::PropertyListener* listener);
    void notify(Doc::Document* document, bool flag, int value);

private:
    std::vector<App::PropertyListener*> _listeners;
};

/// A Qt signal, connected directly to member functions.
class BENCH_PEERS_EXPORT QtNotifier : public QObject
{
    Q_OBJECT

public:
    void connect(QtReceiver* receiver);
    void notify(Doc::Document* document, bool flag, int value);

Q_SIGNALS:
    void propertyUpdated(Doc::Document* document, bool flag, int value);
};

/// A signal of Boost without the lock, which none of the others takes.
class BENCH_PEERS_EXPORT BoostNotifier
{
public:
    void connect(PlainReceiver* receiver);
    void notify(Doc::Document* document, bool flag, int value);

private:
    using Unlocked = boost::signals2::keywords::mutex_type<boost::signals2::dummy_mutex>;

    boost::signals2::signal_type<PropertySignature, Unlocked>::type _signal;
};

/// A signal of sigc++, connected to lambdas, which do not watch for the receiver's end.
class BENCH_PEERS_EXPORT SigcNotifier
{
public:
    void connect(PlainReceiver* receiver);
    void notify(Doc::Document* document, bool flag, int value);

private:
    sigc::signal<PropertySignature> _signal;
};

} // namespace Bench
