#include <support/ConsoleRecorder.h>
#include <support/Files.h>
#include <support/Literals.h>
#include <support/Tools.h>

#include <MainWindow.h>
#include <Program.h>

#include <ovcore/Settings.h>
#include <ovdoc/DocObject.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>

#include <QApplication>
#include <QDockWidget>
#include <QFileDialog>
#include <QLabel>
#include <QLineEdit>
#include <QListView>
#include <QMenuBar>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QPushButton>
#include <QTreeWidget>
#include <QtTest>

#include <functional>
#include <optional>

namespace {

/// Answers the next modal dialog, which has to be a `Dialog`.
template <typename Dialog>
struct Answer
{
    explicit Answer(const std::function<void(Dialog&)>& answer)
    {
        QObject::connect(&timer, &QTimer::timeout, [this, answer] {
            QWidget* const widget = QApplication::activeModalWidget();
            if (!widget)
                return;
            timer.stop();
            if (auto* dialog = qobject_cast<Dialog*>(widget)) {
                isGiven = true;
                answer(*dialog);
            } else {
                widget->close();
            }
        });
        timer.start(10);
    }

    QTimer timer;
    bool isGiven = false;
};

/// Clicks a button of the next message box, and keeps its text.
struct Click : Answer<QMessageBox>
{
    explicit Click(QMessageBox::StandardButton button)
        : Answer([this, button](QMessageBox& box) {
              text = box.text();
              QTest::mouseClick(box.button(button), Qt::LeftButton);
          })
    {
    }

    QString text;
};

/// Types the name of a file into the next file dialog.
struct Choose : Answer<QFileDialog>
{
    explicit Choose(const QString& path)
        : Answer([path](QFileDialog& dialog) {
              // The text counts if no file is selected.
              dialog.findChild<QListView*>("listView"_s)->selectionModel()->clear();
              auto* name = dialog.findChild<QLineEdit*>("fileNameEdit"_s);
              name->setText(path);
              QTest::keyClick(name, Qt::Key_Return);
          })
    {
    }
};

/// The program on an application directory, with the plug-ins of another one.
struct Desktop
{
    explicit Desktop(const QString& applicationDir, const QString& plugins = QString())
        : directory(applicationDir), program(directory, plugins), window(program.window())
    {
    }

    void press(Qt::Key key, Qt::KeyboardModifiers modifiers = Qt::ControlModifier)
    {
        // After a dialog, a window manager does this, which the platform "offscreen" lacks.
        window.activateWindow();
        if (!QTest::qWaitForWindowActive(&window))
            qFatal("the window does not become active");
        QTest::keyClick(&window, key, modifiers);
    }
    void finishPiece() { press(Qt::Key_Return); }
    void click(const char* button)
    {
        QTest::mouseClick(window.findChild<QPushButton*>(QLatin1String(button)), Qt::LeftButton);
    }
    QString path(const QString& name) const { return QDir(directory).filePath(name); }
    QString status() const { return window.findChild<QLabel*>("status"_s)->text(); }

    /// The rows of a dock from a column on, its cells separated by ": ".
    QStringList rows(const QString& dock, int firstColumn = 0) const
    {
        const auto* list = window.findChild<QWidget*>(dock)->findChild<QTreeWidget*>();
        QStringList result;
        for (int row = 0; row < list->topLevelItemCount(); ++row) {
            QStringList cells;
            for (int column = firstColumn; column < list->columnCount(); ++column)
                cells += list->topLevelItem(row)->text(column);
            result += cells.join(": "_s);
        }
        return result;
    }
    QStringList events() const { return rows("eventLog"_s, 1); }

    const QString directory;
    Program program;
    MainWindow& window;
};

/// Returns the finished count in a file, or -1 if it is not a document.
int finishedIn(const QString& path)
{
    Doc::Document document(new Doc::Storage);
    return document.open(path)
               ? document.storage()->queryDocObjectDirect()->printCountData().finishedCount()
               : -1;
}

} // namespace

class tst_desktop : public QObject
{
    Q_OBJECT

private Q_SLOTS:
    void initTestCase()
    {
        QApplication::setQuitOnLastWindowClosed(false);
        QCoreApplication::setAttribute(Qt::AA_DontUseNativeDialogs);
        QVERIFY(qputenv("HOME", QFile::encodeName(_user.path())));
    }

    void actions()
    {
        Desktop desktop(_user.path());
        MainWindow& window = desktop.window;
        QCOMPARE(desktop.status(), "No document"_s);
        desktop.press(Qt::Key_N);
        QCOMPARE(window.windowTitle(), "untitled.ovdoc[*]"_s);
        QCOMPARE(desktop.status(), "untitled.ovdoc: 0 of 0 finished, no unsaved changes"_s);

        const auto before = desktop.events().size();
        desktop.finishPiece();
        QCoreApplication::processEvents();
        const QStringList expected{"transaction: \"Finish a piece\" in untitled.ovdoc"_s,
                                   "property: true, 1 in untitled.ovdoc"_s,
                                   "object list: untitled.ovdoc"_s,
                                   "selection: untitled.ovdoc"_s,
                                   "event: transaction: \"Finish a piece\""_s,
                                   "event: selection: the selection has changed"_s,
                                   "event: screen layout: board type 1"_s};
        QCOMPARE(desktop.events().mid(before), expected);
        QCOMPARE(desktop.status(), "untitled.ovdoc: 1 of 0 finished, unsaved changes"_s);
        QVERIFY(window.isWindowModified());

        // A new document has no file yet.
        const Choose name(desktop.path("first"_s));
        desktop.press(Qt::Key_S);
        QVERIFY(name.isGiven);
        const QString path = desktop.path("first.ovdoc"_s);
        QCOMPARE(finishedIn(path), 1);
        QCOMPARE(window.windowTitle(), "first.ovdoc[*]"_s);
        QVERIFY(!window.isWindowModified());
        desktop.finishPiece();
        desktop.press(Qt::Key_S);
        QCOMPARE(finishedIn(path), 2);

        desktop.finishPiece();
        const Click cancel(QMessageBox::Cancel);
        desktop.press(Qt::Key_F5, Qt::NoModifier);
        QCOMPARE(desktop.status(), "first.ovdoc: 3 of 0 finished, unsaved changes"_s);
        const Click discard(QMessageBox::Discard);
        desktop.press(Qt::Key_F5, Qt::NoModifier);
        QCOMPARE(desktop.status(), "first.ovdoc: 2 of 0 finished, no unsaved changes"_s);
        QCOMPARE(desktop.events().last(), "active document: first.ovdoc"_s);

        const Choose other(desktop.path("second.ovdoc"_s));
        desktop.press(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(finishedIn(desktop.path("second.ovdoc"_s)), 2);
        QCOMPARE(Core::Settings::instance().value("File/Document"_s).toString(),
                 desktop.path("second.ovdoc"_s));
        desktop.press(Qt::Key_W);
        QCOMPARE(desktop.events().last(), "close document: second.ovdoc"_s);
        QCOMPARE(window.windowTitle(), QString());
        // Without a document, most actions are disabled.
        desktop.finishPiece();
        QCOMPARE(desktop.events().last(), "close document: second.ovdoc"_s);

        const Choose again(path);
        desktop.press(Qt::Key_O);
        QCOMPARE(desktop.events().last(), "new document: first.ovdoc"_s);
        QCOMPARE(desktop.status(), "first.ovdoc: 2 of 0 finished, no unsaved changes"_s);
    }

    void fileErrors()
    {
        Desktop desktop(_user.path());
        const QString path = desktop.path("errors.ovdoc"_s);
        writeFile(path, R"({"format": "ovdoc", "version": 1})");
        desktop.window.openFile(path);
        const QString invalid = desktop.path("invalid.ovdoc"_s);
        writeFile(invalid, "{}");
        for (const QString& file : {invalid, desktop.path("missing.ovdoc"_s)}) {
            const Click ok(QMessageBox::Ok);
            desktop.window.openFile(file);
            QVERIFY2(ok.text.contains(file), qPrintable(ok.text));
            QVERIFY(ok.text.contains(file == invalid ? "not a valid document"_s : "No such"_s));
            QCOMPARE(desktop.window.windowFilePath(), path);
        }

        desktop.finishPiece();
        {
            const Click question(QMessageBox::Discard);
            desktop.window.openFile(path);
            QVERIFY(!question.isGiven && desktop.window.isWindowModified());
        }

        // Nothing can replace a directory.
        QVERIFY(QFile::remove(path) && QDir().mkpath(path));
        const Click failed(QMessageBox::Ok);
        desktop.press(Qt::Key_S);
        QVERIFY2(failed.text.contains("Cannot save "_s + path), qPrintable(failed.text));
        QVERIFY(desktop.window.isWindowModified());
        // The window does not close either, if it cannot save.
        std::optional<Click> failedAgain;
        const Answer<QMessageBox> save([&failedAgain](QMessageBox& box) {
            QTest::mouseClick(box.button(QMessageBox::Save), Qt::LeftButton);
            failedAgain.emplace(QMessageBox::Ok);
        });
        QVERIFY(!desktop.window.close());
        QVERIFY(failedAgain && failedAgain->isGiven && desktop.window.isVisible());
        QCOMPARE(desktop.status(), "errors.ovdoc: 1 of 0 finished, unsaved changes"_s);
    }

    void unsavedChanges_data()
    {
        QTest::addColumn<int>("key");
        QTest::addColumn<int>("button");
        for (const int key : {Qt::Key_N, Qt::Key_W, Qt::Key_Q}) {
            for (const int button : {QMessageBox::Save, QMessageBox::Discard, QMessageBox::Cancel})
                QTest::addRow("%c, %#x", key, button) << key << button;
        }
    }

    void unsavedChanges()
    {
        QFETCH(const int, key);
        QFETCH(const int, button);
        Desktop desktop(_user.path());
        const QString path = desktop.path("unsaved.ovdoc"_s);
        writeFile(path, R"({"format": "ovdoc", "version": 1, "printCount": {"finished": 7}})");
        desktop.window.openFile(path);
        desktop.finishPiece();
        const Click answer(static_cast<QMessageBox::StandardButton>(button));
        desktop.press(static_cast<Qt::Key>(key));
        QVERIFY(answer.isGiven);
        QCOMPARE(finishedIn(path), button == QMessageBox::Save ? 8 : 7);
        const bool isOpen = desktop.window.isVisible() && desktop.window.isWindowModified() &&
                            desktop.window.windowFilePath() == path;
        QCOMPARE(isOpen, button == QMessageBox::Cancel);
    }

    void plugins()
    {
        const QTemporaryDir directory;
        writeFile(directory.filePath("a.dll"_s), contentOf(QStringLiteral(WINDOW_PLUGIN)));
        writeFile(directory.filePath("b.dll"_s), "text");
        qputenv("WINDOW_PLUGIN_FAILS", "1");
        const Desktop desktop(_user.path(), directory.path());
        qunsetenv("WINDOW_PLUGIN_FAILS");
        const QStringList rows = desktop.rows("plugins"_s);
        QCOMPARE(rows.size(), 2);
        QVERIFY2(rows.first().startsWith("a.dll: window plug-in: accepted: "_s) &&
                     rows.first().contains("no licence"_s),
                 qPrintable(rows.first()));
        QVERIFY2(rows.last().startsWith("b.dll: : no-plugin: "_s) && rows.last().size() > 25,
                 qPrintable(rows.last()));
        QCOMPARE(desktop.events().filter("log, warning: "_s).filter("no licence"_s).size(), 1);
        QVERIFY(desktop.events().contains("plug-in state: 2"_s));
        QVERIFY(desktop.events().contains("start finished: the program has started"_s));
    }

    void unwritableDirectory()
    {
        const QString path = QDir(_user.path()).filePath("file/below"_s);
        writeFile(QFileInfo(path).path());
        const Desktop desktop(path);
        QCOMPARE(desktop.events().filter("settings will be lost"_s).filter(path).size(), 1);
    }

    void twoCycles()
    {
        const QTemporaryDir home;
        ConsoleRecorder console;
        const QSize size(900, 500);
        for (const bool isFirst : {true, false}) {
            console.lines.clear();
            {
                Desktop desktop(home.path(), QFileInfo(QStringLiteral(WINDOW_PLUGIN)).path());
                QCOMPARE(desktop.window.size() == size, !isFirst);
                desktop.window.resize(size);
                desktop.click("start");
                QCOMPARE(desktop.rows("channels"_s), QStringList("test channel: start"_s));
                desktop.click("stop");
                QCOMPARE(desktop.rows("channels"_s), QStringList("test channel: stop"_s));
                desktop.press(Qt::Key_N);
                desktop.press(Qt::Key_Q);
                // The window of the plug-in does not keep the program running.
                const QWidgetList widgets = QApplication::topLevelWidgets();
                for (const QWidget* widget : widgets)
                    QVERIFY2(!widget->isVisible(), qPrintable(widget->objectName()));
            }
            const QByteArrayList expected{
                "WindowPlugin: channel started",          "WindowPlugin: channel stopped",
                "WindowPlugin: window deleted",           "WindowPlugin: channel stopped",
                "WindowPlugin: stopped, with a document", "destruct application."};
            QByteArrayList lines;
            for (const QByteArray& line : console.lines) {
                if (expected.contains(line))
                    lines += line;
            }
            QCOMPARE(lines, expected);
        }
    }

    void network()
    {
        Tools::findIn(QStringLiteral(FAKE_TOOL_DIR));
        Desktop desktop(_user.path());
        desktop.press(Qt::Key_D);
        auto* dialog = desktop.window.findChild<QDialog*>();
        auto* host = dialog->findChild<QLineEdit*>();
        const auto* output = dialog->findChild<QPlainTextEdit*>();
        const QList<QPushButton*> buttons = dialog->findChildren<QPushButton*>();
        for (const QString& text : {"-f localhost"_s, "two hosts"_s, "-v"_s, QString()}) {
            host->setText(text);
            QTest::keyClick(host, Qt::Key_Return);
            QVERIFY2(output->toPlainText().contains("is not a host name"_s), qPrintable(text));
        }

        host->setText("endless"_s);
        QTest::keyClick(host, Qt::Key_Return);
        QTRY_VERIFY(output->toPlainText().startsWith("endless\n"_s));
        QVERIFY(!buttons.at(0)->isEnabled());
        QTest::mouseClick(buttons.at(2), Qt::LeftButton);
        QTRY_VERIFY(output->toPlainText().endsWith("summary\n"_s));
        QTRY_VERIFY(buttons.at(0)->isEnabled());

        QTest::keyClick(dialog, Qt::Key_T, Qt::AltModifier);
        QTRY_VERIFY(output->toPlainText().contains("10\nendless\n"_s));
        QTest::keyClick(dialog, Qt::Key_Escape);
        QVERIFY(!dialog->isVisible() && buttons.at(0)->isEnabled());
        QTRY_VERIFY(contentOf(desktop.path("traceroute.out"_s)).endsWith("summary\n"));

        Tools::findIn(_user.path());
        QTest::mouseClick(buttons.at(0), Qt::LeftButton);
        QTRY_VERIFY(output->toPlainText().startsWith("ping: "_s));
        QTest::mouseClick(buttons.at(1), Qt::LeftButton);
        QCOMPARE(output->toPlainText(), "The traceroute tool cannot be started."_s);
        QVERIFY(buttons.at(0)->isEnabled() && !buttons.at(2)->isEnabled());
    }

    void keyboard()
    {
        Desktop desktop(_user.path());
        desktop.press(Qt::Key_N);
        QSet<QKeySequence> shortcuts;
        const QList<QAction*> menus = desktop.window.menuBar()->actions();
        QCOMPARE(menus.size(), 4);
        for (const QAction* menu : menus) {
            QVERIFY2(menu->text().contains(u'&'), qPrintable(menu->text()));
            const QList<QAction*> actions = menu->menu()->actions();
            for (const QAction* action : actions) {
                const bool isNew = action->isSeparator() || !shortcuts.contains(action->shortcut());
                QVERIFY2(isNew && !action->shortcut().isEmpty() != action->isSeparator(),
                         qPrintable(action->text()));
                shortcuts += action->shortcut();
            }
        }
        const QList<QDockWidget*> docks = desktop.window.findChildren<QDockWidget*>();
        for (const Qt::Key key : {Qt::Key_1, Qt::Key_2, Qt::Key_3}) {
            desktop.press(key);
            QVERIFY(!docks.at(key - Qt::Key_1)->isVisible());
            desktop.press(key);
        }

        QSet<QWidget*> reached;
        for (int i = 0; i < 20; ++i) {
            QTest::keyClick(QApplication::focusWidget(), Qt::Key_Tab);
            reached += QApplication::focusWidget();
        }
        QSet<QWidget*> expected;
        for (const QDockWidget* dock : docks)
            expected += dock->findChild<QTreeWidget*>();
        for (const char* button : {"start", "stop"})
            expected += desktop.window.findChild<QPushButton*>(QLatin1String(button));
        QVERIFY(reached.contains(expected));
    }

private:
    const QTemporaryDir _user;
};

QTEST_MAIN(tst_desktop)
#include "tst_desktop.moc"
