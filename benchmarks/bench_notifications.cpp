#include "Notifiers.h"
#include "Receivers.h"
#include "Session.h"

#include <app/Application.h>

#include <benchmark/benchmark.h>

#include <array>
#include <cstddef>
#include <memory>
#include <string>
#include <vector>

namespace {

constexpr std::array<std::size_t, 4> counts = {1, 10, 1000, 100000};
constexpr int value = 3;

template <typename Receiver>
using Receivers = std::vector<std::unique_ptr<Receiver>>;

/// Creates the receivers for the largest count; smaller counts use the first ones. All receivers
/// are allocated one after the other before the first measurement, so that no side depends on the
/// state of the heap after another.
template <typename Receiver>
Receivers<Receiver> createReceivers()
{
    Receivers<Receiver> receivers;
    receivers.reserve(counts.back());
    while (receivers.size() < counts.back())
        receivers.push_back(Receiver::create());
    return receivers;
}

/// Measures `notifier`; fails unless each notification has called each of the first `count`
/// receivers once, and no other.
template <typename Notifier, typename Receiver>
void measure(benchmark::State& state, Notifier& notifier, const Receivers<Receiver>& receivers,
             std::size_t count)
{
    for (const auto& receiver : receivers)
        receiver->sum = 0;

    for (auto _ : state)
        notifier.notify(nullptr, true, value);

    const qint64 expected = value * static_cast<qint64>(state.iterations());
    for (std::size_t i = 0; i < receivers.size(); ++i) {
        if (receivers[i]->sum != (i < count ? expected : 0)) {
            state.SkipWithError("wrong number of calls of a receiver");
            return;
        }
    }
}

std::string nameOf(const char* side, std::size_t count)
{
    return std::string(BENCH_GROUP "/") + side + "/" + std::to_string(count);
}

/// Registers the benchmark of an alternative, which stays connected to `count` receivers.
template <typename Notifier, typename Receiver>
void registerPeer(const char* side, const Receivers<Receiver>& receivers, std::size_t count)
{
    const auto notifier = std::make_shared<Notifier>();
    for (std::size_t i = 0; i < count; ++i)
        notifier->connect(receivers[i].get());
    benchmark::RegisterBenchmark(nameOf(side, count).c_str(),
                                 [notifier, &receivers, count](benchmark::State& state) {
                                     measure(state, *notifier, receivers, count);
                                 });
}

/// Notifies through the application object. It has only one list, so the listeners are removed in
/// the destructor.
class ApplicationNotifier
{
public:
    ApplicationNotifier(const Receivers<Bench::ListeningReceiver>& receivers, std::size_t count)
        : _receivers(receivers), _count(count)
    {
        for (std::size_t i = 0; i < _count; ++i)
            _application.addPropertyListener(_receivers[i].get());
    }

    ApplicationNotifier(const ApplicationNotifier&) = delete;
    ApplicationNotifier& operator=(const ApplicationNotifier&) = delete;

    ~ApplicationNotifier()
    {
        for (std::size_t i = 0; i < _count; ++i)
            _application.removePropertyListener(_receivers[i].get());
    }

    void notify(Doc::Document* document, bool flag, int number)
    {
        _application.notifyPropertyListeners(document, flag, number);
    }

private:
    App::Application& _application = App::Application::instance();
    const Receivers<Bench::ListeningReceiver>& _receivers;
    std::size_t _count;
};

void registerApplication(const Receivers<Bench::ListeningReceiver>& receivers, std::size_t count)
{
    benchmark::RegisterBenchmark(nameOf("ovapp", count).c_str(),
                                 [&receivers, count](benchmark::State& state) {
                                     ApplicationNotifier notifier(receivers, count);
                                     measure(state, notifier, receivers, count);
                                 });
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Session session(argc, argv);
    const auto listening = createReceivers<Bench::ListeningReceiver>();
    const auto qt = createReceivers<Bench::QtReceiver>();
    const auto boost = createReceivers<Bench::PlainReceiver>();
    const auto sigc = createReceivers<Bench::PlainReceiver>();
    for (const std::size_t count : counts) {
        registerApplication(listening, count);
        registerPeer<Bench::BareLoop>("bare loop", listening, count);
        registerPeer<Bench::QtNotifier>("Qt signal", qt, count);
        registerPeer<Bench::BoostNotifier>("boost::signals2", boost, count);
        registerPeer<Bench::SigcNotifier>("sigc++", sigc, count);
    }
    // In the executable, a bare loop calls functions of the same binary; ovapp calls across
    // binaries.
#ifdef BENCH_PEERS_STATIC_DEFINE
    Bench::setTargetRatio(nameOf("bare loop", 1000), 1.5);
#else
    Bench::setTargetRatio(nameOf("bare loop", 1), 1.4);
    Bench::setTargetRatio(nameOf("bare loop", 10), 1.15);
    Bench::setTargetRatio(nameOf("bare loop", 1000), 1.05);
#endif
    Bench::setTargetSpeedup(nameOf("Qt signal", 1000), 6);
    Bench::setTargetSpeedup(nameOf("sigc++", 1000), 2.5);

    session.startApplication();
    const int status = session.run();
    App::Application::destruct();
    return status;
}
