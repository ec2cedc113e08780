#include "MainWindow.h"
#include "Program.h"

#include <ovcore/Version.h>

#include <QApplication>
#include <QCommandLineParser>
#include <QDir>
#include <QStandardPaths>

int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("ovapp-desktop"));
    QCoreApplication::setApplicationVersion(QString::fromUtf8(Core::Version::versionString()));

    QCommandLineParser parser;
    parser.setApplicationDescription(QStringLiteral("A desktop program on the library ovapp."));
    parser.addHelpOption();
    parser.addVersionOption();
    parser.addPositionalArgument(QStringLiteral("FILE"), QStringLiteral("The document to open."),
                                 QStringLiteral("[FILE]"));
    const QCommandLineOption pluginDir(
        QStringLiteral("plugins"),
        QStringLiteral("The plug-in directory; by default \"" PLUGINS_PATH
                       "\" relative to the executable."),
        QStringLiteral("DIR"),
        QDir(QCoreApplication::applicationDirPath()).filePath(QStringLiteral(PLUGINS_PATH)));
    const QCommandLineOption applicationDir(
        QStringLiteral("app-dir"),
        QStringLiteral(
            "The directory for settings and logs; by default the user's data directory."),
        QStringLiteral("DIR"), QStandardPaths::writableLocation(QStandardPaths::AppDataLocation));
    parser.addOptions({pluginDir, applicationDir});
    parser.process(application);

    Program program(parser.value(applicationDir), parser.value(pluginDir));
    const QStringList files = parser.positionalArguments();
    if (!files.isEmpty())
        program.window().openFile(files.constFirst());
    return QApplication::exec();
}
