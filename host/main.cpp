#include "CommandLine.h"
#include "process/Output.h"
#include "process/QtApplication.h"
#include "process/StandardStreams.h"
#include "process/Utf8Console.h"

#include <ovcore/Version.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    Host::sanitizeStandardStreams();
    const Host::Utf8Console console;
    const Host::QtApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("ovapp-host"));
    QCoreApplication::setApplicationVersion(QString::fromUtf8(Core::Version::versionString()));
    const int exitCode = Host::runCommand(QCoreApplication::arguments());
    if (std::ferror(stdout))
        return Host::fail(Host::Failure, QStringLiteral("cannot write to standard output"));
    return exitCode;
}
