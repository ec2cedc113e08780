// Finishes a piece in the program, saves the document and closes the window.
#include <QApplication>
#include <QFile>
#include <QLabel>
#include <QPushButton>
#include <QTemporaryDir>
#include <QTimer>

static void expectStatus(const QWidget& window, const char* expected)
{
    const QString status = window.findChild<QLabel*>()->text();
    if (status != QLatin1String(expected))
        qFatal("expected \"%s\", got \"%s\"", expected, qPrintable(status));
}

static void operate()
{
    QWidget& window = *QApplication::topLevelWidgets().constFirst();
    const QList<QPushButton*> buttons = window.findChildren<QPushButton*>();
    buttons.at(0)->click();
    expectStatus(window, "1 pieces finished");
    buttons.at(1)->click();
    expectStatus(window, "Saved");
    window.close();
}

static void prepare()
{
    static const QTemporaryDir directory;
    qputenv("XDG_DATA_HOME", QFile::encodeName(directory.path()));
    QTimer::singleShot(0, operate);
}

Q_COREAPP_STARTUP_FUNCTION(prepare)
