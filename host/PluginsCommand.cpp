#include "PluginsCommand.h"

#include "CommandLine.h"
#include "HiddenNames.h"
#include "Output.h"
#include "PluginReport.h"
#include "SessionOptions.h"

#include <app/Application.h>
#include <ovcore/BoardEthDescHandler.h>
#include <ovcore/Settings.h>

#include <QCommandLineParser>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>

#include <algorithm>
#include <memory>
#include <vector>

namespace Host {

namespace {

using Reports = std::vector<std::unique_ptr<PluginReport>>;

/// Loads every plug-in file in the loader's order, and unloads them in the reverse order. Between
/// the two it starts and stops the accepted ones if they are to be `profiled`.
Reports examine(bool profiled)
{
    Reports reports;
    for (const QString& file : App::PluginLoader::pluginFiles())
        reports.push_back(std::make_unique<PluginReport>(file));
    if (profiled) {
        for (const auto& report : reports)
            report->start();
    }
    for (auto report = reports.rbegin(); report != reports.rend(); ++report) {
        if (profiled)
            (*report)->stop();
        (*report)->unload();
    }
    return reports;
}

void printJson(const Reports& reports)
{
    QJsonArray array;
    for (const auto& report : reports)
        array.append(report->toJson());
    const QJsonObject object{
        {QStringLiteral("directory"), Core::Settings::instance().pluginDirPath()},
        {QStringLiteral("board"), Core::BoardEthDescHandler::instance()->currentBoardEthDescType()},
        {QStringLiteral("plugins"), array}};
    write(stdout, QJsonDocument(object).toJson());
}

void printTable(const Reports& reports, bool profiled)
{
    const auto orDash = [](const QString& text) {
        return text.isEmpty() ? QStringLiteral("-") : onOneLine(text);
    };
    const auto time = [](std::optional<double> milliseconds) {
        return milliseconds ? QString::number(*milliseconds, 'f', 2) : QStringLiteral("-");
    };
    std::vector<QStringList> rows{{QStringLiteral("FILE"), QStringLiteral("NAME"),
                                   QStringLiteral("IDENTIFIER"), QStringLiteral("BOARDS")}};
    if (profiled)
        rows.front() << QStringLiteral("LOAD/MS") << QStringLiteral("START/MS")
                     << QStringLiteral("STOP/MS");
    rows.front() << QStringLiteral("VERDICT");
    for (const auto& report : reports) {
        QStringList row{onOneLine(report->fileName()), orDash(report->name()),
                        orDash(report->identifier()), orDash(report->boards())};
        if (profiled)
            row << time(report->loadTime()) << time(report->startTime())
                << time(report->stopTime());
        row << onOneLine(report->verdict());
        rows.push_back(row);
    }

    // The last column is as wide as it is.
    for (const QStringList& row : rows) {
        QString line;
        for (int column = 0; column + 1 < row.size(); ++column) {
            QString::size_type width = 0;
            for (const QStringList& each : rows)
                width = std::max(width, each.at(column).size());
            line += row.at(column).leftJustified(width) + QLatin1String("  ");
        }
        print(stdout, line + row.last());
    }
}

} // namespace

int plugins(const QStringList& arguments)
{
    QCommandLineParser parser;
    parser.setApplicationDescription(
        QStringLiteral("Lists every plug-in file, whether it is accepted, and if not, why."));
    SessionOptions options(parser);
    const QCommandLineOption profile(
        QStringLiteral("profile"),
        QStringLiteral("Start and stop the plug-ins, too, and say how long that took."));
    const QCommandLineOption json(QStringLiteral("json"), QStringLiteral("Print JSON."));
    parser.addOptions({profile, json});
    if (const std::optional<int> status = options.parse(parser, arguments))
        return *status;

    options.startLibrary();
    for (const QString& file :
         undecodableFiles(App::PluginLoader::pluginsPath(), App::PluginLoader::pluginSuffix()))
        warn(QStringLiteral("%1 is passed over: its name is no UTF-8").arg(quoted(file)));
    const bool profiled = parser.isSet(profile);
    const Reports reports = examine(profiled);
    if (parser.isSet(json)) {
        printJson(reports);
    } else if (reports.empty()) {
        print(stdout, QStringLiteral("There is no plug-in file in %1")
                          .arg(quoted(Core::Settings::instance().pluginDirPath())));
    } else {
        printTable(reports, profiled);
    }
    App::Application::destruct();

    const bool allAccepted = std::all_of(reports.begin(), reports.end(),
                                         [](const auto& report) { return report->isAccepted(); });
    return allAccepted ? Success : JobFailed;
}

} // namespace Host
