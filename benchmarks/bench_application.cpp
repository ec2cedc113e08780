#include "Session.h"

#include <app/Application.h>

#include <ovcore/PrintCountParams.h>
#include <ovcore/Settings.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>

#include <benchmark/benchmark.h>

#include <QDir>
#include <QFile>
#include <QJsonDocument>
#include <QJsonObject>
#include <QSharedPointer>

#include <memory>

namespace {

constexpr int memberCount = 10000;
constexpr int finishedCount = 42;

/// Returns the file content of a document with `memberCount` additional members.
QByteArray createDocument()
{
    QJsonObject members{
        {QStringLiteral("format"), QStringLiteral("ovdoc")},
        {QStringLiteral("version"), 1},
        {QStringLiteral("printCount"),
         QJsonObject{{QStringLiteral("finished"), finishedCount}, {QStringLiteral("target"), 100}}},
    };
    for (int i = 0; i < memberCount; ++i) {
        members.insert(QStringLiteral("entity%1").arg(i, 5, 10, QLatin1Char('0')),
                       QJsonObject{{QStringLiteral("kind"), QStringLiteral("line")},
                                   {QStringLiteral("x"), i * 0.25},
                                   {QStringLiteral("y"), i * 0.5}});
    }
    return QJsonDocument(members).toJson();
}

QByteArray readFile(const QString& path)
{
    QFile file(path);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void writeFile(const QString& path, const QByteArray& content)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly) || file.write(content) != content.size() || !file.flush())
        qFatal("cannot write %s", qPrintable(path));
}

bool isComplete(const QJsonDocument& json)
{
    // The format itself has three members.
    return json.object().size() == memberCount + 3;
}

bool isComplete(const Doc::Document& document)
{
    return document.storage()->queryDocObjectDirect()->printCountData().finishedCount() ==
           finishedCount;
}

/// Measures `create`, which returns a smart pointer to a complete document. Deleting the document
/// is not measured.
template <typename Create>
void measure(benchmark::State& state, Create create)
{
    for (auto _ : state) {
        auto document = create();
        state.PauseTiming();
        if (!document || !isComplete(*document)) {
            state.SkipWithError("the document is not complete");
            return;
        }
        document.reset();
        state.ResumeTiming();
    }
}

void measureStartAndStop(benchmark::State& state, const Bench::Session& session)
{
    session.startApplication();
    App::Application::instance().doAppStartFinished();
    App::Application::destruct();

    for (auto _ : state) {
        session.startApplication();
        App::Application::destruct();
    }

    session.startApplication();
    const QVariant version = Core::Settings::instance().value(QStringLiteral("About/version"));
    App::Application::destruct();
    if (version.toString().isEmpty())
        state.SkipWithError("the settings were not stored");
}

void measureOpening(benchmark::State& state, const Bench::Session& session, const QString& path)
{
    session.startApplication();
    App::Application& application = App::Application::instance();
    const auto close = [&application](Doc::Document* document) {
        application.closeDocument();
        delete document;
    };
    measure(state, [&application, &path, &close] {
        return std::unique_ptr<Doc::Document, decltype(close)>(application.openDocument(path),
                                                               close);
    });
    App::Application::destruct();
}

void measureSettings(benchmark::State& state, const Bench::Session& session, const QString& path)
{
    session.startApplication();
    const QString key = QStringLiteral("File/Document");
    for (auto _ : state) {
        Core::Settings::instance().setRunValue(key, path);
        Core::Settings::instance().setValue(key, path);
    }
    if (Core::Settings::instance().value(key) != path)
        state.SkipWithError("the path was not stored");
    App::Application::destruct();
}

void registerBenchmarks(const Bench::Session& session, const QString& path,
                        const QByteArray& content)
{
    // Real time, since waiting for the disk counts too.
    const auto add = [](const char* name, auto function) {
        benchmark::RegisterBenchmark(name, function)->UseRealTime()->Unit(benchmark::kMicrosecond);
    };

    add("Start and stop/ovapp",
        [&session](benchmark::State& state) { measureStartAndStop(state, session); });

    add("Open a document/ovapp",
        [&session, &path](benchmark::State& state) { measureOpening(state, session, path); });
    add("Open a document/parse", [&content](benchmark::State& state) {
        measure(state, [&content] {
            return std::make_unique<QJsonDocument>(QJsonDocument::fromJson(content));
        });
    });
    Bench::setTargetRatio("Open a document/parse", 2);
    add("Open a document/read and parse", [&path](benchmark::State& state) {
        measure(state, [&path] {
            return std::make_unique<QJsonDocument>(QJsonDocument::fromJson(readFile(path)));
        });
    });
    add("Open a document/store the path",
        [&session, &path](benchmark::State& state) { measureSettings(state, session, path); });
}

} // namespace

int main(int argc, char** argv)
{
    Bench::Session session(argc, argv);
    const QString path = QDir(session.directoryPath()).filePath(QStringLiteral("large.ovdoc"));
    const QByteArray content = createDocument();
    writeFile(path, content);
    registerBenchmarks(session, path, content);
    return session.run();
}
