#pragma once

#include <QStringList>

#include <memory>

class QCoreApplication;

namespace Host {

/// Owns the application object of Qt: a `QCoreApplication`, or a `QApplication` if plug-ins need
/// one. There is one object of this class.
class QtApplication
{
public:
    QtApplication(int& argc, char** argv);
    QtApplication(const QtApplication&) = delete;
    QtApplication& operator=(const QtApplication&) = delete;
    ~QtApplication();

    /// Replaces the application object by a `QApplication`, on the platform "offscreen" unless
    /// QT_QPA_PLATFORM is set, if one of the plug-in files needs Qt Gui or Qt Widgets. Call it
    /// before the library is initialised. Suppresses Qt's warnings.
    static void prepareFor(const QStringList& pluginFiles);
    /// Returns an error message if the file needs Qt Gui or Qt Widgets and the host is built
    /// without them; otherwise an empty string.
    static QString widgetsError(const QString& pluginFile);

private:
    int& _argc;
    char** _argv;
    std::unique_ptr<QCoreApplication> _application;
};

} // namespace Host
