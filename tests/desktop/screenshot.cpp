#include <support/Files.h>
#include <support/Literals.h>

#include <MainWindow.h>
#include <Program.h>

#include <QApplication>
#include <QPushButton>
#include <QTemporaryDir>
#include <QtTest>

/// Saves a picture of the desktop program with a document and the sample plug-ins.
/// usage: desktop_screenshot FILE
int main(int argc, char** argv)
{
    QApplication application(argc, argv);
    QCoreApplication::setApplicationName("ovapp-desktop"_s);
    QApplication::setStyle("fusion"_s);
    QApplication::setFont(QFont("DejaVu Sans"_s, 9));
    const QTemporaryDir directory;
    const QString document = directory.filePath("coaster.ovdoc"_s);
    writeFile(document, contentOf(QStringLiteral(SAMPLE_DOCUMENT)));

    Program program(directory.path(), QStringLiteral(SAMPLE_PLUGIN_DIR));
    MainWindow& window = program.window();
    if (!QTest::qWaitForWindowActive(&window))
        return 1;
    window.openFile(document);
    window.findChild<QPushButton*>("start"_s)->click();
    QTest::keyClick(&window, Qt::Key_Return, Qt::ControlModifier);
    QCoreApplication::processEvents();
    return window.grab().save(QCoreApplication::arguments().value(1)) ? 0 : 1;
}
