#include <plugins/LoadError.h>

#include <system/LibraryFile.h>

#include <QByteArray>
#include <QPluginLoader>

namespace App {

namespace {

/// Returns the major version of Qt that a library requires if it differs from this program's,
/// otherwise 0. Searches the file for the names of the libraries that it links to.
int otherQtOf(const QString& file)
{
    const auto needs = [&file](int qt) {
        return System::fileContains(file, "Qt" + QByteArray::number(qt) + "Core");
    };
    if (needs(QT_VERSION_MAJOR))
        return 0;
    for (const int qt : {5, 6, 7}) {
        if (needs(qt))
            return qt;
    }
    return 0;
}

} // namespace

QString loadError(const QPluginLoader& loader)
{
    if (const int qt = otherQtOf(loader.fileName())) {
        return QStringLiteral("it is built with Qt %1, and this program with Qt %2")
            .arg(qt)
            .arg(QT_VERSION_MAJOR);
    }
    const QString reason = QLatin1String("Qt cannot load it: ") + loader.errorString();
    return loader.metaData().isEmpty()
               ? reason + QLatin1String("; is Q_PLUGIN_METADATA in its class?")
               : reason;
}

} // namespace App
