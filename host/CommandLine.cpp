#include "CommandLine.h"

#include "inspection/InspectPluginCommand.h"
#include "inspection/PluginsCommand.h"
#include "network/NetworkCommands.h"
#include "process/Output.h"
#include "session/RunCommand.h"

#include <QCommandLineParser>
#include <QCoreApplication>
#include <QStringList>

#include <algorithm>
#include <iterator>

namespace Host {

namespace {

/// One without a summary is for the host itself, and is listed nowhere.
struct Command
{
    QLatin1String name;
    QLatin1String summary;
    int (*run)(const QStringList& arguments);
};

const Command commands[] = {
    {QLatin1String("run"), QLatin1String("run a whole session and print what happens in it"), run},
    {QLatin1String("plugins"), QLatin1String("list the plug-in files and what becomes of them"),
     plugins},
    {QLatin1String("inspect-plugin"), QLatin1String(), inspectPlugin},
    {QLatin1String("ping"), QLatin1String("see whether a host answers"), ping},
    {QLatin1String("trace"), QLatin1String("trace the route to a host"), trace},
};

QString commandList()
{
    QString text = QStringLiteral("Runs the application layer without a user interface.\n\n"
                                  "Commands (ovapp-host COMMAND --help says more):");
    for (const Command& command : commands) {
        if (command.summary.size() > 0)
            text += QStringLiteral("\n  %1  %2").arg(command.name, -8).arg(command.summary);
    }
    return text;
}

} // namespace

int runCommand(const QStringList& arguments)
{
    const QString name = arguments.value(1);
    const auto command = std::find_if(std::begin(commands), std::end(commands),
                                      [&name](const Command& each) { return each.name == name; });
    if (command != std::end(commands)) {
        return command->run(QStringList(programName + QLatin1Char(' ') + name) + arguments.mid(2));
    }

    if (!name.isEmpty() && !name.startsWith(QLatin1Char('-')))
        return fail(UsageError, QStringLiteral("there is no command %1").arg(quoted(name)));
    QCommandLineParser parser;
    parser.setApplicationDescription(commandList());
    parser.addPositionalArgument(QStringLiteral("command"), QStringLiteral("What to do."));
    const std::optional<int> status = parse(parser, QStringList(programName) + arguments.mid(1));
    if (status)
        return *status;
    return fail(UsageError, QStringLiteral("a command is missing; --help lists them"));
}

std::optional<int> parse(QCommandLineParser& parser, const QStringList& arguments)
{
    const QCommandLineOption help({QStringLiteral("h"), QStringLiteral("help")},
                                  QStringLiteral("Print this help."));
    const QCommandLineOption version({QStringLiteral("v"), QStringLiteral("version")},
                                     QStringLiteral("Print the version."));
    parser.addOptions({help, version});
    const bool parsed = parser.parse(arguments);
    if (parser.isSet(help)) {
        // Qt puts the path of the executable where the command belongs.
        const QString executable = QCoreApplication::arguments().constFirst();
        QString text = parser.helpText().trimmed();
        print(stdout, text.replace(text.indexOf(executable), executable.size(), arguments.first()));
        return Success;
    }
    if (parser.isSet(version)) {
        print(stdout, programName + QLatin1Char(' ') + QCoreApplication::applicationVersion());
        return Success;
    }
    if (!parsed)
        return fail(UsageError, parser.errorText());
    return std::nullopt;
}

} // namespace Host
