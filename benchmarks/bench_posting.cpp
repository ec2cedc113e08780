#include "Session.h"

#include <app/Application.h>
#include <events/SelectionChangeEvent.h>
#include <events/TransactionEvent.h>

#include <ovdoc/Transaction.h>

#include <benchmark/benchmark.h>

#include <QEvent>
#include <QObject>

namespace {

/// The number of events that are posted before they are delivered. Delivering is not measured.
constexpr int batchSize = 1000;

class CountingReceiver : public QObject
{
public:
    explicit CountingReceiver(QEvent::Type type) : _type(type) {}

    bool event(QEvent* event) override
    {
        if (event->type() != _type)
            return QObject::event(event);
        ++count;
        return true;
    }

    benchmark::IterationCount count = 0;

private:
    QEvent::Type _type;
};

/// Measures `post`; fails unless each call has delivered one event of this type.
template <typename Post>
void measure(benchmark::State& state, QEvent::Type type, Post post)
{
    CountingReceiver receiver(type);
    while (state.KeepRunningBatch(batchSize)) {
        for (int i = 0; i < batchSize; ++i)
            post(&receiver);
        state.PauseTiming();
        QCoreApplication::sendPostedEvents();
        state.ResumeTiming();
    }
    if (receiver.count != state.iterations())
        state.SkipWithError("not all events were delivered");
}

void registerBenchmarks(App::Application& application, Doc::Transaction& transaction)
{
    using App::SelectionChangeEvent;
    using App::TransactionEvent;

    benchmark::RegisterBenchmark(
        "Post a selection change/ovapp", [&application](benchmark::State& state) {
            measure(state, SelectionChangeEvent::eventType, [&application](QObject* receiver) {
                application.postSelectionChangedEvent(receiver);
            });
        });
    benchmark::RegisterBenchmark("Post a selection change/bare post", [](benchmark::State& state) {
        measure(state, SelectionChangeEvent::eventType, [](QObject* receiver) {
            QCoreApplication::postEvent(receiver, new SelectionChangeEvent);
        });
    });
    Bench::setTargetRatio("Post a selection change/bare post", 1.1);

    benchmark::RegisterBenchmark(
        "Post a transaction/ovapp", [&application, &transaction](benchmark::State& state) {
            measure(state, TransactionEvent::eventType,
                    [&application, &transaction](QObject* receiver) {
                        application.postTransactionEvent(transaction, true, 7, receiver);
                    });
        });
    benchmark::RegisterBenchmark(
        "Post a transaction/bare post", [&transaction](benchmark::State& state) {
            measure(state, TransactionEvent::eventType, [&transaction](QObject* receiver) {
                QCoreApplication::postEvent(receiver, new TransactionEvent(transaction, true, 7));
            });
        });
    Bench::setTargetRatio("Post a transaction/bare post", 1.1);
}

} // namespace

int main(int argc, char** argv)
{
    // Every post to a GLib event loop makes a system call, which would hide the difference. Qt's
    // own event loop needs a system call only for the first post of a batch.
    qputenv("QT_NO_GLIB", "1");

    Bench::Session session(argc, argv);
    session.startApplication();
    Doc::Transaction transaction(QStringLiteral("Move"));
    registerBenchmarks(App::Application::instance(), transaction);
    const int status = session.run();
    App::Application::destruct();
    return status;
}
