#include "CommandLine.h"

#include <ovcore/Version.h>

#include <QCoreApplication>

int main(int argc, char** argv)
{
    QCoreApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("ovapp-host"));
    QCoreApplication::setApplicationVersion(QString::fromUtf8(Core::Version::versionString()));
    return Host::runCommand(QCoreApplication::arguments());
}
