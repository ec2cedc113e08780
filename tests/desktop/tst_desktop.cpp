#include <support/ConsoleRecorder.h>
#include <support/Files.h>
#include <support/Literals.h>

#include <MainWindow.h>
#include <Program.h>

#include <ovcore/Settings.h>
#include <ovdoc/Document.h>
#include <ovdoc/Storage.h>

#include <QAbstractButton>
#include <QApplication>
#include <QLineEdit>
#include <QListView>
#include <QMessageBox>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QTreeWidget>
#include <QtTest>

#include <optional>

namespace {

/// Answers the next modal dialogs, with a button or a text, and keeps the texts of message boxes.
struct Answers
{
    explicit Answers(const QVariantList& answers) : remaining(answers) { waitForDialog(); }

    void waitForDialog()
    {
        QTimer::singleShot(10, &context, [this] { answerDialog(); });
    }
    void answerDialog()
    {
        if (remaining.isEmpty())
            return;
        // A dialog may ask a question before it closes.
        waitForDialog();
        QWidget* const dialog = QApplication::activeModalWidget();
        if (!dialog || dialog == last)
            return;
        last = dialog;
        const QVariant answer = remaining.takeFirst();
        if (auto* box = qobject_cast<QMessageBox*>(dialog)) {
            texts += box->textFormat() == Qt::PlainText ? box->text() : "may be HTML"_s;
            const auto button = static_cast<QMessageBox::StandardButton>(answer.toInt());
            QTest::mouseClick(box->button(button), Qt::LeftButton);
        } else if (auto* edit = dialog->findChild<QLineEdit*>(); edit && answer.isValid()) {
            // In a file dialog, the text counts if no file is selected.
            if (auto* list = dialog->findChild<QListView*>("listView"_s))
                list->selectionModel()->clear();
            edit->setText(answer.toString());
            QTest::keyClick(edit, Qt::Key_Return);
        } else {
            dialog->close();
        }
    }

    QObject context;
    QVariantList remaining;
    QStringList texts;
    QPointer<QWidget> last;
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
    void open(const QString& file) { window.documents().open(file); }
    void click(const char* button)
    {
        auto* widget = window.findChild<QAbstractButton*>(QLatin1String(button));
        QTest::mouseClick(widget, Qt::LeftButton);
    }
    QString path(const QString& name) const { return QDir(directory).filePath(name); }
    /// The file name, the counts, and a mark for unsaved changes.
    QString status() const
    {
        return QFileInfo(window.windowFilePath()).fileName() + ": "_s +
               window.findChild<QProgressBar*>()->format() +
               (window.isWindowModified() ? "*"_s : QString());
    }
    /// The text of the warning in the status bar; empty if there is none.
    QString warning() const
    {
        const auto* button = window.findChild<QAbstractButton*>("warning"_s);
        return button->isVisible() ? button->text() : QString();
    }
    QTreeWidget* list(const QString& dock) const
    {
        return window.findChild<QWidget*>(dock)->findChild<QTreeWidget*>();
    }
    /// The cells of a row, except times, separated by ": ".
    QString cells(const QString& dock, int row) const
    {
        QString text;
        for (int column = 0; column < list(dock)->columnCount(); ++column)
            text += ": "_s + list(dock)->topLevelItem(row)->text(column);
        return text.mid(2).replace(QRegularExpression("[0-9.]+ ms"_s), "time"_s);
    }
    /// The lines of the event log without their times.
    QStringList events() const
    {
        QStringList lines = window.findChild<QPlainTextEdit*>()->toPlainText().split(u'\n');
        for (QString& line : lines)
            line = line.mid(13).simplified();
        return lines;
    }

    const QString directory;
    Program program;
    MainWindow& window;
};

/// Returns the finished count in a file, or -1 if it is not a document.
int finishedIn(const QString& path)
{
    Doc::Document document(new Doc::Storage);
    return document.open(path) ? printCounts(document).finishedCount() : -1;
}

QByteArray documentWith(int finished)
{
    return R"({"format": "ovdoc", "version": 1, "printCount": {"finished": )" +
           QByteArray::number(finished) + "}}";
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

    void cleanup() { qunsetenv("WINDOW_PLUGIN_FAILS"); }

    void actions()
    {
        Desktop desktop(_user.path());
        desktop.press(Qt::Key_N);
        const Answers target({5});
        desktop.press(Qt::Key_T);
        QCOMPARE(desktop.status(), "untitled.ovdoc: 0 of 5 finished*"_s);

        QCoreApplication::processEvents();
        const auto before = desktop.events().size();
        desktop.finishPiece();
        QCoreApplication::processEvents();
        QCOMPARE(
            desktop.events().mid(before),
            QStringList({"transaction Finish a piece"_s, "property 1"_s, "event transaction"_s}));

        // A new document has no file yet.
        const Answers name({desktop.path("first"_s)});
        desktop.press(Qt::Key_S);
        const QString path = desktop.path("first.ovdoc"_s);
        QCOMPARE(finishedIn(path), 1);
        QCOMPARE(desktop.status(), "first.ovdoc: 1 of 5 finished"_s);
        desktop.finishPiece();
        const Answers discard({QMessageBox::Discard});
        desktop.press(Qt::Key_F5, Qt::NoModifier);
        QCOMPARE(discard.texts, QStringList("Discard the changes to first.ovdoc?"_s));
        QCOMPARE(desktop.status(), "first.ovdoc: 1 of 5 finished"_s);

        const Answers other({desktop.path("second.ovdoc"_s)});
        desktop.press(Qt::Key_S, Qt::ControlModifier | Qt::ShiftModifier);
        QCOMPARE(finishedIn(desktop.path("second.ovdoc"_s)), 1);
        QCOMPARE(Core::Settings::instance().value("File/Document"_s).toString(),
                 desktop.path("second.ovdoc"_s));
        desktop.press(Qt::Key_W);
        // Without a document, most actions are disabled.
        desktop.finishPiece();
        QCOMPARE(desktop.events().last(), "close document second.ovdoc"_s);
    }

    void fileErrors()
    {
        Desktop desktop(_user.path());
        const QString path = desktop.path("errors.ovdoc"_s);
        writeFile(path, documentWith(0));
        desktop.open(path);
        const QString invalid = desktop.path("invalid.ovdoc"_s);
        writeFile(invalid, "{,}");
        for (const QString& file : {invalid, desktop.path("missing.ovdoc"_s)}) {
            const Answers ok({QMessageBox::Ok});
            desktop.open(file);
            const QString text = ok.texts.value(0);
            QVERIFY2(text.contains(QFileInfo(file).fileName()), qPrintable(text));
            QVERIFY2(text.contains(file == invalid ? "line 1"_s : "no such"_s), qPrintable(text));
        }
        // The window does not close if it cannot save. Nothing can replace a directory.
        desktop.finishPiece();
        QVERIFY(QFile::remove(path) && QDir().mkpath(path));
        const Answers save({QMessageBox::Save, QMessageBox::Save, QMessageBox::Ok});
        QVERIFY(!desktop.window.close());
        QVERIFY(save.texts.value(2).startsWith("Cannot save "_s));
        QCOMPARE(desktop.status(), "errors.ovdoc: 1 of 0 finished*"_s);
    }

    void changedFile()
    {
        Desktop desktop(_user.path());
        const QString path = desktop.path("shared.ovdoc"_s);
        desktop.press(Qt::Key_N);
        desktop.finishPiece();
        // The file of a new document comes into being before it is saved.
        const QString untitled = desktop.window.windowFilePath();
        writeFile(untitled, documentWith(20));
        const Answers no({untitled, QMessageBox::No, QVariant()});
        desktop.press(Qt::Key_S);
        QCOMPARE(no.texts.size(), 1);
        QCOMPARE(finishedIn(untitled), 20);
        QVERIFY(QFile::remove(untitled));
        const Answers name({path});
        desktop.press(Qt::Key_S);
        QCOMPARE(finishedIn(path), 1);

        // A change of the file is not overwritten without a question.
        writeFile(path, documentWith(30));
        desktop.finishPiece();
        for (const auto answer : {QMessageBox::Cancel, QMessageBox::Save}) {
            const Answers question({answer});
            desktop.press(Qt::Key_S);
            QCOMPARE(question.texts.size(), 1);
            QCOMPARE(finishedIn(path), answer == QMessageBox::Save ? 2 : 30);
        }
        // Both "Revert" and "Open" load it.
        writeFile(path, documentWith(40));
        desktop.press(Qt::Key_F5, Qt::NoModifier);
        QCOMPARE(desktop.status(), "shared.ovdoc: 40 of 0 finished"_s);
        writeFile(path, documentWith(500));
        desktop.open(path);
        QCOMPARE(desktop.status(), "shared.ovdoc: 500 of 0 finished"_s);
    }

    void unsavedChanges()
    {
        const auto buttons = {QMessageBox::Save, QMessageBox::Discard, QMessageBox::Cancel};
        for (const Qt::Key key : {Qt::Key_N, Qt::Key_W, Qt::Key_Q}) {
            for (const auto button : buttons) {
                Desktop desktop(_user.path());
                const QString path = desktop.path("unsaved.ovdoc"_s);
                writeFile(path, documentWith(7));
                desktop.open(path);
                desktop.finishPiece();
                const Answers answer({button});
                desktop.press(key);
                QCOMPARE(answer.texts, QStringList("Save the changes to unsaved.ovdoc?"_s));
                QCOMPARE(finishedIn(path), button == QMessageBox::Save ? 8 : 7);
                const bool isOpen = desktop.window.isVisible() && desktop.status().endsWith(u'*');
                QCOMPARE(isOpen, button == QMessageBox::Cancel);
            }
        }
    }

    void throwingPlugin()
    {
        const QTemporaryDir home;
        writeFile(home.filePath("piece.ovdoc"_s), documentWith(0));
        std::optional<Desktop> desktop(std::in_place, home.path(), _plugins);
        desktop->open(home.filePath("piece.ovdoc"_s));
        const auto isShown = [](const Answers& answers, const char* what) {
            const QString text = answers.texts.value(0);
            return text.startsWith(QLatin1String(what)) && text.endsWith(": no licence"_s);
        };
        qputenv("WINDOW_PLUGIN_FAILS", "channel start");
        const Answers start({QMessageBox::Ok});
        desktop->click("start");
        QVERIFY(isShown(start, "Cannot start the channel test channel"));
        QVERIFY(desktop->cells("channels"_s, 0).endsWith(": no licence"_s));
        QVERIFY(desktop->warning().endsWith("no licence"_s));
        desktop->click("warning");
        QCOMPARE(desktop->warning(), QString());

        qputenv("WINDOW_PLUGIN_FAILS", "transaction");
        const Answers transaction({QMessageBox::Ok});
        desktop->finishPiece();
        QVERIFY(isShown(transaction, "A plug-in failed after the change \"Finish a piece\""));
        QCOMPARE(desktop->status(), "piece.ovdoc: 1 of 0 finished*"_s);

        // The document remains open, and can be closed later.
        qputenv("WINDOW_PLUGIN_FAILS", "close");
        const Answers close({QMessageBox::Discard, QMessageBox::Ok});
        desktop->press(Qt::Key_W);
        QCOMPARE(close.texts.size(), 2);
        QCOMPARE(desktop->status(), "piece.ovdoc: 1 of 0 finished*"_s);
        const Answers discard({QMessageBox::Discard});
        desktop->press(Qt::Key_F5, Qt::NoModifier);
        QCOMPARE(desktop->status(), "piece.ovdoc: 0 of 0 finished"_s);

        qputenv("WINDOW_PLUGIN_FAILS", "channel stop");
        const Answers stop({QMessageBox::Ok});
        desktop.reset();
        QVERIFY(isShown(stop, "Cannot stop the channel test channel"));
    }

    void plugins()
    {
        const QTemporaryDir home;
        const QTemporaryDir directory;
        const QString file = directory.filePath("a.dll"_s);
        QVERIFY(QFile::copy(QStringLiteral(WINDOW_PLUGIN), file));
        writeFile(directory.filePath("b.dll"_s), "text");
        {
            qputenv("WINDOW_PLUGIN_FAILS", "start");
            const Desktop desktop(home.path(), directory.path());
            const QString cells = desktop.cells("plugins"_s, 0);
            QVERIFY2(cells.startsWith("window plug-in: 2.1: time: loaded, but "_s),
                     qPrintable(cells));
            QVERIFY(cells.endsWith(": no licence"_s));
            QVERIFY(desktop.cells("plugins"_s, 1).startsWith("b.dll: : : cannot be used: "_s));
            QVERIFY(desktop.warning().startsWith("b.dll: cannot be used"_s));
            QTreeWidget* const list = desktop.list("plugins"_s);
            list->setCurrentItem(list->topLevelItem(0));
            QTest::keyClick(list, Qt::Key_Space);
            QVERIFY(desktop.cells("plugins"_s, 0).endsWith(": left out at the next start"_s));
        }
        qunsetenv("WINDOW_PLUGIN_FAILS");
        QCOMPARE(Desktop(home.path(), directory.path()).cells("plugins"_s, 0),
                 "a.dll: : : left out"_s);
        // Another version of the file is loaded.
        QVERIFY(QFile::rename(file, file + ".old"_s));
        writeFile(file, contentOf(QStringLiteral(WINDOW_PLUGIN)) + '\0');
        QCOMPARE(Desktop(home.path(), directory.path()).cells("plugins"_s, 0),
                 "window plug-in: 2.1: time: loaded"_s);
        const QString none = Desktop(home.path(), home.path()).cells("plugins"_s, 0);
        QVERIFY2(none.startsWith("No plug-ins in "_s + home.path()), qPrintable(none));
    }

    void startEndsInPlugin()
    {
        for (const auto answer : {QMessageBox::Yes, QMessageBox::No, QMessageBox::YesToAll}) {
            const QTemporaryDir home;
            const auto state = [&] {
                return Desktop(home.path(), _plugins).cells("plugins"_s, 0).section(": "_s, -1);
            };
            QProcess other;
            qputenv("WINDOW_PLUGIN_FAILS", "hang");
            other.start(QStringLiteral(DESKTOP),
                        {"--app-dir"_s, home.path(), "--plugins"_s, _plugins});
            qunsetenv("WINDOW_PLUGIN_FAILS");
            QTRY_VERIFY(contentOf(home.filePath("ovapp.ini"_s)).contains("WindowPlugin"));
            const Answers question({answer});
            // A program that is still starting is not blamed until it ends.
            QCOMPARE(state(), "loaded"_s);
            QCOMPARE(question.texts.size(), 0);
            other.kill();
            QVERIFY(other.waitForFinished());
            QCOMPARE(state(), answer == QMessageBox::No ? "loaded"_s : "left out"_s);
            QCOMPARE(question.texts.size(), 1);
            QCOMPARE(state(), answer == QMessageBox::No ? "loaded"_s : "left out"_s);
        }
    }

    void twoCycles()
    {
        const QTemporaryDir home;
        ConsoleRecorder console;
        const QSize size(900, 500);
        for (const bool isFirst : {true, false}) {
            console.lines.clear();
            {
                Desktop desktop(home.path(), _plugins);
                QCOMPARE(desktop.window.size() == size, !isFirst);
                desktop.window.resize(size);
                desktop.click("start");
                desktop.click("stop");
                QCOMPARE(desktop.cells("channels"_s, 0), "test channel: stopped"_s);
                desktop.press(Qt::Key_N);
                desktop.press(Qt::Key_Q);
                // The window of the plug-in does not keep the program running.
                const QWidgetList widgets = QApplication::topLevelWidgets();
                for (const QWidget* widget : widgets)
                    QVERIFY2(!widget->isVisible(), qPrintable(widget->objectName()));
            }
            QByteArrayList lines;
            for (const QByteArray& line : console.lines) {
                if (line.startsWith("WindowPlugin: "))
                    lines += line.mid(14);
            }
            QCOMPARE(lines.join("; "),
                     QByteArray("channel started; channel stopped; window deleted; "
                                "channel stopped; stopped, with a document"));
        }
    }

private:
    const QTemporaryDir _user;
    const QString _plugins = QFileInfo(QStringLiteral(WINDOW_PLUGIN)).path();
};

QTEST_MAIN(tst_desktop)
#include "tst_desktop.moc"
