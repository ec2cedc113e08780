#include <MainWindow.h>
#include <Program.h>

#include <QApplication>
#include <QFile>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

/// Saves a picture of the desktop program with a document and the sample plug-ins.
/// usage: desktop_screenshot FILE
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName(QStringLiteral("ovapp-desktop"));
    QApplication::setStyle(QStringLiteral("fusion"));
    QApplication::setFont(QFont(QStringLiteral("DejaVu Sans"), 9));
    const QTemporaryDir directory;
    const QString document = directory.filePath(QStringLiteral("coaster.ovdoc"));
    QFile::copy(QStringLiteral(SAMPLE_DOCUMENT), document);

    Program program(directory.path(), QStringLiteral(SAMPLE_PLUGIN_DIR));
    MainWindow& window = program.window();
    window.resize(1100, 680);
    if (!QTest::qWaitForWindowActive(&window))
        return 1;
    window.documents().open(document);
    window.findChild<QPushButton*>(QStringLiteral("start"))->click();
    QTest::keyClick(&window, Qt::Key_Return, Qt::ControlModifier);
    QCoreApplication::processEvents();
    return window.grab().save(QCoreApplication::arguments().value(1)) ? 0 : 1;
}
