#include "CommandLine.h"
#include "process/Output.h"
#include "process/StandardStreams.h"
#include "process/Utf8Console.h"

#include <ovcore/Version.h>

#include <QCoreApplication>

#include <cstdio>

int main(int argc, char** argv)
{
    Host::sanitizeStandardStreams();
    const Host::Utf8Console console;
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("ovapp-host"));
    QCoreApplication::setApplicationVersion(QString::fromUtf8(Core::Version::versionString()));
    const int status = Host::runCommand(QCoreApplication::arguments());
    if (status == Host::Success && std::ferror(stdout))
        return Host::fail(Host::Failure, QStringLiteral("standard output cannot be written to"));
    return status;
}
