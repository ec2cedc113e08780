#include "Session.h"

#include <app/Application.h>
#include <plugins/PluginBaseSettings.h>

#include <KConfig>
#include <KConfigGroup>

#include <benchmark/benchmark.h>

#include <QSettings>

namespace {

constexpr int keyCount = 20;

QString keyOf(int number)
{
    return QStringLiteral("Values/key%1").arg(number % keyCount);
}

/// Sets the keys in turn, each time to a new number, since an unchanged value need not be written.
/// Fails unless the file contains the last number.
template <typename Set>
void measure(benchmark::State& state, const QString& path, Set set)
{
    static int number = 0;
    for (auto _ : state) {
        ++number;
        set(keyOf(number), number);
    }
    const QSettings file(path, QSettings::IniFormat);
    if (file.value(keyOf(number)).toInt() != number)
        state.SkipWithError("the value is not in the file");
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Session session(argc, argv);
    session.startApplication();
    const auto pathOf = [&session](const char* name) {
        return session.directoryPath() + QLatin1Char('/') + QLatin1String(name);
    };

    App::PluginBaseSettings ours(QStringLiteral("Bench"));
    benchmark::RegisterBenchmark("Set a value/ovapp", [&](benchmark::State& state) {
        measure(state, pathOf("Bench/Bench.ini"),
                [&ours](const QString& key, int value) { ours.setValue(key, value); });
    })->UseRealTime();

    QSettings bare(pathOf("Bare/Bare.ini"), QSettings::IniFormat);
    benchmark::RegisterBenchmark("Set a value/QSettings", [&](benchmark::State& state) {
        measure(state, bare.fileName(), [&bare](const QString& key, int value) {
            bare.setValue(key, value);
            bare.sync();
        });
    })->UseRealTime();

    KConfig kde(pathOf("kde.ini"), KConfig::SimpleConfig);
    benchmark::RegisterBenchmark("Set a value/KConfig", [&](benchmark::State& state) {
        measure(state, pathOf("kde.ini"), [&kde](const QString& key, int value) {
            kde.group(key.section(QLatin1Char('/'), 0, 0))
                .writeEntry(key.section(QLatin1Char('/'), 1), value);
            kde.sync();
        });
    })->UseRealTime();
    Bench::setTargetRatio("Set a value/QSettings", 1.05);

    const int status = session.run();
    App::Application::destruct();
    return status;
}
