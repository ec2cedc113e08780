#include "Session.h"

#include <app/Application.h>
#include <ovcore/Settings.h>
#include <plugins/PluginInterface.h>
#include <plugins/PluginLoader.h>

#include <KPluginFactory>
#include <KPluginMetaData>

#include <benchmark/benchmark.h>

#include <QDir>
#include <QDirIterator>
#include <QElapsedTimer>
#include <QFile>
#include <QPluginLoader>
#include <QProcess>

#include <cstdio>
#include <memory>
#include <vector>

namespace {

constexpr int pluginCount = 200;
constexpr int folderCount = 1000;
constexpr int filesPerFolder = 10;

/// The times in which a process has loaded and unloaded the plug-ins of a directory, in
/// nanoseconds, and their number.
struct Figures
{
    qint64 load = 0;
    qint64 unload = 0;
    int plugins = 0;
};

QStringList sortedFiles(const QString& directory)
{
    QDirIterator iterator(directory, {QStringLiteral("*.dll")}, QDir::Files,
                          QDirIterator::Subdirectories);
    QStringList files;
    while (iterator.hasNext())
        files.append(iterator.next());
    files.sort();
    return files;
}

Figures loadThroughLoader(const QString& directory)
{
    Core::Settings::instance().setPluginDirPath(directory);
    Figures figures;
    QElapsedTimer timer;
    timer.start();
    App::PluginLoader::loadPlugins(true);
    figures.load = timer.nsecsElapsed();
    while (App::PluginLoader::pluginInfoOf(figures.plugins).keys().size() > 1)
        ++figures.plugins;
    timer.start();
    App::PluginLoader::unloadPlugins();
    figures.unload = timer.nsecsElapsed();
    return figures;
}

/// Like the loader, resolves all symbols of each plug-in and calls the same functions.
Figures loadInBareLoop(const QString& directory)
{
    Figures figures;
    std::vector<std::unique_ptr<QPluginLoader>> loaders;
    QList<App::PluginInfo> infos;
    QElapsedTimer timer;
    timer.start();
    const QStringList files = sortedFiles(directory);
    for (const QString& file : files) {
        auto loader = std::make_unique<QPluginLoader>(file);
        loader->setLoadHints(loader->loadHints() | QLibrary::ResolveAllSymbolsHint);
        auto* plugin = qobject_cast<App::PluginInterface*>(loader->instance());
        if (!plugin || !(plugin->supportedBoardTypes() & 1) || !plugin->pluginID())
            continue;
        infos.append(plugin->pluginInfo());
        plugin->start();
        loaders.push_back(std::move(loader));
    }
    figures.load = timer.nsecsElapsed();
    figures.plugins = infos.size();
    timer.start();
    while (!loaders.empty()) {
        qobject_cast<App::PluginInterface*>(loaders.back()->instance())->stop();
        loaders.back()->unload();
        loaders.pop_back();
    }
    figures.unload = timer.nsecsElapsed();
    return figures;
}

/// KPluginFactory never unloads plug-ins.
Figures loadThroughKde(const QString& directory)
{
    Figures figures;
    std::vector<std::unique_ptr<QObject>> objects;
    QElapsedTimer timer;
    timer.start();
    const QStringList files = sortedFiles(directory);
    for (const QString& file : files) {
        const auto result = KPluginFactory::instantiatePlugin<QObject>(
            KPluginMetaData(file, KPluginMetaData::AllowEmptyMetaData));
        if (result.plugin)
            objects.emplace_back(result.plugin);
    }
    figures.load = timer.nsecsElapsed();
    figures.plugins = static_cast<int>(objects.size());
    return figures;
}

using Load = Figures (*)(const QString& directory);

const struct Side
{
    const char* name;
    Load load;
    const char* plugin;
} sides[] = {{"ovapp", loadThroughLoader, BENCH_PLUGIN},
             {"bare loop", loadInBareLoop, BENCH_PLUGIN},
             {"KPluginFactory", loadThroughKde, BENCH_KDE_PLUGIN}};

/// Runs in a child process for each measurement, since a library may stay loaded in a process.
int measureInChild(const Bench::Session& session, const Side& side, const QString& directory)
{
    session.startApplication();
    const Figures figures = side.load(directory);
    App::Application::destruct();
    std::printf("%lld %lld %d\n", static_cast<long long>(figures.load),
                static_cast<long long>(figures.unload), figures.plugins);
    return 0;
}

void measureThroughChild(benchmark::State& state, const Side& side, const QString& directory,
                         qint64 Figures::*figure)
{
    for (auto _ : state) {
        QProcess process;
        process.start(QCoreApplication::applicationFilePath(),
                      {QStringLiteral("--measure"), QLatin1String(side.name), directory});
        process.waitForFinished();
        const QList<QByteArray> numbers = process.readAllStandardOutput().trimmed().split(' ');
        if (numbers.size() != 3 || numbers.at(2).toInt() != pluginCount) {
            state.SkipWithError("not all plug-ins were loaded");
            return;
        }
        const qint64 nanoseconds = numbers.at(figure == &Figures::load ? 0 : 1).toLongLong();
        state.SetIterationTime(static_cast<double>(nanoseconds) / 1e9);
    }
}

void copyPlugins(const QString& directory, const char* plugin)
{
    QDir().mkpath(directory);
    for (int i = 0; i < pluginCount; ++i) {
        const QString copy = QStringLiteral("%1/plugin%2.dll").arg(directory).arg(i);
        if (!QFile::copy(QLatin1String(plugin), copy))
            qFatal("cannot write %s", qPrintable(copy));
    }
}

void createTree(const QString& directory)
{
    for (int folder = 0; folder < folderCount; ++folder) {
        // Three levels with ten folders each.
        const QString path = QStringLiteral("%1/%2/%3/%4")
                                 .arg(directory)
                                 .arg(folder / 100)
                                 .arg(folder / 10 % 10)
                                 .arg(folder % 10);
        QDir().mkpath(path);
        for (int file = 0; file < filesPerFolder; ++file) {
            if (!QFile(QStringLiteral("%1/%2.dll").arg(path).arg(file)).open(QIODevice::WriteOnly))
                qFatal("cannot write in %s", qPrintable(path));
        }
    }
}

template <typename Scan>
void measureScan(benchmark::State& state, Scan scan)
{
    for (auto _ : state) {
        if (scan(state) != folderCount * filesPerFolder) {
            state.SkipWithError("not all files were found");
            return;
        }
    }
}

int scanThroughLoader(benchmark::State& state, const QString& directory, const QString& empty)
{
    // The loader caches its last scan; scanning an empty directory discards it.
    state.PauseTiming();
    Core::Settings::instance().setPluginDirPath(empty);
    App::PluginLoader::loadPlugins(false);
    Core::Settings::instance().setPluginDirPath(directory);
    state.ResumeTiming();
    return App::PluginLoader::pluginFiles().size();
}

int scanWithFind(const QString& directory)
{
    QProcess find;
    find.start(QStringLiteral("find"), {directory, QStringLiteral("-type"), QStringLiteral("f"),
                                        QStringLiteral("-iname"), QStringLiteral("*.dll")});
    find.waitForFinished();
    return find.readAllStandardOutput().count('\n');
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Session session(argc, argv);
    const QStringList arguments = QCoreApplication::arguments();
    if (arguments.value(1) == QLatin1String("--measure")) {
        for (const Side& side : sides) {
            if (arguments.value(2) == QLatin1String(side.name))
                return measureInChild(session, side, arguments.value(3));
        }
    }

    for (const Side& side : sides) {
        const QString directory =
            session.directoryPath() + QLatin1Char('/') + QLatin1String(side.name);
        copyPlugins(directory, side.plugin);
        const auto add = [&side, directory](const std::string& group, qint64 Figures::*figure) {
            benchmark::RegisterBenchmark((group + '/' + side.name).c_str(),
                                         [&side, directory, figure](benchmark::State& state) {
                                             measureThroughChild(state, side, directory, figure);
                                         })
                ->UseManualTime();
        };
        add("Load 200 plug-ins", &Figures::load);
        if (side.load != loadThroughKde)
            add("Unload 200 plug-ins", &Figures::unload);
    }
    Bench::setTargetRatio("Load 200 plug-ins/bare loop", 1.05);

    const QString tree = session.directoryPath() + QStringLiteral("/tree");
    const QString empty = session.directoryPath() + QStringLiteral("/empty");
    createTree(tree);
    QDir().mkpath(empty);
    benchmark::RegisterBenchmark("Scan 10000 files/ovapp", [&](benchmark::State& state) {
        measureScan(state,
                    [&](benchmark::State& each) { return scanThroughLoader(each, tree, empty); });
    });
    benchmark::RegisterBenchmark("Scan 10000 files/QDirIterator", [&](benchmark::State& state) {
        measureScan(state, [&](benchmark::State&) { return sortedFiles(tree).size(); });
    });
    benchmark::RegisterBenchmark("Scan 10000 files/find", [&](benchmark::State& state) {
        measureScan(state, [&](benchmark::State&) { return scanWithFind(tree); });
    })->UseRealTime();
    Bench::setTargetRatio("Scan 10000 files/QDirIterator", 1.5);

    session.startApplication();
    const int status = session.run();
    App::Application::destruct();
    return status;
}
