#include <support/Files.h>
#include <support/Literals.h>
#include <support/Tools.h>

#include <ovcore/Settings.h>
#include <plugins/PluginBaseSettings.h>

#include <QtTest>

#include <atomic>
#include <optional>
#include <thread>

#ifdef Q_OS_LINUX
#include <support/SmallFileSystem.h>
#endif

using App::PluginBaseSettings;

static const QString marker = "Marker"_s;
static const QString key = "Laser/speed"_s;

class tst_plugin_settings : public QObject
{
    Q_OBJECT

    std::optional<QTemporaryDir> _directory;

    QString path(const QString& name) const { return QDir(_directory->path()).filePath(name); }
    QByteArray store() const { return Tools::textOf(contentOf(path("Marker/Marker.ini"_s))); }

private Q_SLOTS:
    void init()
    {
        _directory.emplace();
        Core::Settings::instance().setApplicationDirPath(_directory->path());
    }
    void cleanup() { Core::Settings::destruct(); }

    void namesItsFiles()
    {
        // The directory of the last one cannot be created, since its parent is missing.
        const QString files[][3] = {{marker, "Marker/Marker.ini"_s, "Marker/Marker.cfg"_s},
                                    {QString(), ".ini"_s, ".cfg"_s},
                                    {"x/y"_s, QString(), "x/y/x/y.cfg"_s}};
        for (const auto& [name, ini, config] : files) {
            for (const int value : {1, 2}) {
                PluginBaseSettings settings(name);
                QCOMPARE(settings.workingDirPath(), path(name));
                QCOMPARE(settings.defaultConfigPath(), path(config));
                QCOMPARE(settings.value(key, 1), QVariant(1));
                settings.setValue(key, value);
                QCOMPARE(QFile::exists(path(name)), !ini.isEmpty());
                QCOMPARE(contentOf(path(ini)).contains("speed=" + QByteArray::number(value)),
                         !ini.isEmpty());
            }
        }
    }

    void keepsRunValuesApart()
    {
        PluginBaseSettings settings(marker);
        settings.setRunValue(key, 1);
        QCOMPARE(settings.value(key, 7), QVariant(7));
        settings.setValue(key, 2);
        QCOMPARE(settings.runValue(key), QVariant(1));
        QVERIFY(!PluginBaseSettings(marker).hasRunValue(key));

        writeFile(settings.defaultConfigPath());
        for (int i = 0; i < 2; ++i) {
            settings.resetParams();
            QVERIFY(!QFile::exists(settings.defaultConfigPath()));
            QVERIFY(QFile::exists(path("Marker/Marker.ini"_s)) && store().trimmed().isEmpty());
            QVERIFY(settings.hasRunValue(key));
        }
        settings.setRunValue(key, QVariant());
        QVERIFY(settings.hasRunValue(key));
        settings.removeRunValue(key);
        QVERIFY(!settings.hasRunValue(key) && !settings.runValue(key).isValid());
    }

    void copies()
    {
        std::optional<PluginBaseSettings> source(marker);
        source->setRunValue(key, 1);
        source->qSettings().setValue(key, 2);
        PluginBaseSettings copy(*source);
        PluginBaseSettings assigned("Other"_s);
        assigned.qSettings().setValue(key, 3);
        assigned = *source;
        QVERIFY(contentOf(path("Other/Other.ini"_s)).contains("speed=3"));
        source->removeRunValue(key);
        source.reset();

        int value = 2;
        for (PluginBaseSettings* settings : {&copy, &assigned}) {
            const PluginBaseSettings& itself = *settings;
            *settings = itself;
            QCOMPARE(settings->runValue(key), QVariant(1));
            QCOMPARE(settings->workingDirPath(), path(marker));
            QCOMPARE(settings->value(key).toInt(), value);
            settings->setValue(key, ++value);
            QVERIFY(store().contains("speed=" + QByteArray::number(value)));
        }
    }

    void worksWithoutDirectory()
    {
        writeFile(path(marker), "obstacle");
        {
            PluginBaseSettings settings(marker);
            const PluginBaseSettings copiedBefore(settings);
            QCOMPARE(settings.value(key, 1), QVariant(1));
            settings.setValue(key, 2);
            QCOMPARE(PluginBaseSettings(copiedBefore).value(key), QVariant(2));
            QCOMPARE(PluginBaseSettings(settings).value(key), QVariant(2));
            settings.resetParams();
            QCOMPARE(settings.value(key, 1), QVariant(1));
            settings.setValue(key, 3);
        }
        QCOMPARE(PluginBaseSettings(marker).value(key, 1), QVariant(1));
        QCOMPARE(QDir(_directory->path())
                     .entryList(QDir::AllEntries | QDir::Hidden | QDir::NoDotAndDotDot),
                 QStringList{marker});
        QCOMPARE(contentOf(path(marker)), QByteArray("obstacle"));
    }

#ifdef Q_OS_LINUX
    void survivesFullFileSystem()
    {
        const SmallFileSystem fileSystem;
        if (!fileSystem.isMounted())
            QSKIP(cannotMount);
        Core::Settings::instance().setApplicationDirPath(fileSystem.filePath(QString()));
        const QString file = fileSystem.filePath("Marker/Marker.ini"_s);
        // From a full disk to one with few blocks, and around the reserve that is kept free.
        for (int freeBlocks = 0; freeBlocks < 261; freeBlocks += freeBlocks == 7 ? 245 : 1) {
            const QByteArray before = freeBlocks % 2 ? "" : "[General]\nold=1\n";
            fileSystem.setFreeBlocks(SmallFileSystem::enoughBlocks);
            QFile::remove(file);
            if (!before.isEmpty())
                writeFile(file, before);
            std::optional<PluginBaseSettings> settings(marker);
            fileSystem.setFreeBlocks(freeBlocks);
            for (const QString& step : words("events copy assign set reopen events")) {
                settings->qSettings().setValue(key, step);
                if (step == "events"_s)
                    QCoreApplication::processEvents();
                else if (step == "copy"_s)
                    QCOMPARE(PluginBaseSettings(*settings).value(key), QVariant(step));
                else if (step == "assign"_s)
                    (PluginBaseSettings() = *settings).setValue("assigned"_s, 1);
                else if (step == "set"_s)
                    settings->setValue("set"_s, 1);
                else {
                    settings->qSettings().beginGroup("Left"_s);
                    settings.emplace(marker);
                }
                const QByteArray content = contentOf(file);
                const bool isWritten = content.contains("[Laser]\nspeed=") &&
                                       content.contains(before.mid(10)) && content.endsWith('\n');
                QVERIFY2(freeBlocks > 256 ? isWritten : content == before,
                         qPrintable("%1, %2"_s.arg(step).arg(freeBlocks)));
                QCOMPARE(settings->value(key), QVariant(step));
            }
            std::optional<PluginBaseSettings> copy(*settings);
            fileSystem.setFreeBlocks(SmallFileSystem::enoughBlocks);
            copy.reset();
            // The event loop tries again.
            if (freeBlocks < 2)
                QTRY_VERIFY(contentOf(file).endsWith("speed=events\n"));
            settings->setValue("last"_s, 1);
            QCOMPARE(contentOf(file), "[General]\nassigned=1\nlast=1\n" + before.mid(10) +
                                          "set=1\n\n[Laser]\nspeed=events\n");
        }
        QCOMPARE(QDir(fileSystem.filePath(marker)).entryList(QDir::Files), words("Marker.ini"));
    }
#endif

    void keepsValuesOfAllThreads()
    {
        constexpr int perThread = 100;
        std::atomic_int lost = 0;
        const auto countLost = [&](const QString& thread, int i) {
            const QByteArray content = store();
            for (const char* name : {"first", "second"}) {
                const QString line = "%1%2_%3=%4\n"_s;
                lost += !content.contains(
                    line.arg(QLatin1String(name), thread).arg(i % 10).arg(i).toUtf8());
            }
        };
        const auto storeValues = [&](const QString& thread) {
            PluginBaseSettings settings(marker);
            for (int i = 0; i < perThread; ++i) {
                // Opening and closing a file must leave the group of another thread alone.
                const PluginBaseSettings other(settings);
                settings.qSettings().beginGroup(thread);
                settings.qSettings().setValue("first%1_%2"_s.arg(thread).arg(i % 10), i);
                settings.qSettings().endGroup();
                settings.setValue("second%1_%2"_s.arg(thread).arg(i % 10), i);
#ifndef Q_OS_WIN
                // On Windows, the file cannot be replaced while it is read.
                countLost(thread, i);
#endif
            }
        };
        std::thread one(storeValues, "A"_s);
        std::thread two(storeValues, "B"_s);
        one.join();
        two.join();
        for (int i = perThread - 10; i < perThread; ++i) {
            countLost("A"_s, i);
            countLost("B"_s, i);
        }
        QCOMPARE(lost, 0);
    }

    /// Opening the file again writes the changes, together with those of another process.
    void keepsEncoding()
    {
        const QByteArray text = "b\xc3\xb6se";
        PluginBaseSettings settings(marker);
        settings.qSettings().setValue(key, 1);
        writeFile(path("Marker/Marker.ini"_s), "[General]\ntext=" + text + '\n');
        PluginBaseSettings copy(settings);
        QCOMPARE(copy.value("text"_s).toString().toUtf8(), text);
        copy.setValue(key, 2);
        QVERIFY(store().contains("text=" + text + '\n'));
    }
};

QTEST_GUILESS_MAIN(tst_plugin_settings)
#include "tst_plugin_settings.moc"
