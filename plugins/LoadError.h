#pragma once

#include <QString>

class QPluginLoader;

namespace App {

/// Returns why `QPluginLoader::load` failed, in one sentence: Qt's own text, or the version of Qt
/// that the file requires if it differs from this program's.
QString loadError(const QPluginLoader& loader);

} // namespace App
