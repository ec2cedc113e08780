#include <support/Files.h>
#include <support/Tools.h>

#include <ovcore/Settings.h>
#include <plugins/PluginBaseSettings.h>

#include <QtTest>

#include <filesystem>
#include <optional>

using App::PluginBaseSettings;

static const QString marker = "Marker"_s;
static const QString key = "Laser/speed"_s;

/// The stored values and the run values of plug-ins. The soak test fills disks, and shares
/// values between threads and processes.
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
        // The last directory cannot be created, since its parent is missing.
        for (const QString& name : {marker, QString(), "x/y"_s}) {
            const bool isStored = name != "x/y"_s;
            const QDir directory(path(name));
            for (const int value : {1, 2}) {
                PluginBaseSettings settings(name);
                QCOMPARE(settings.workingDirPath(), directory.path());
                QCOMPARE(settings.defaultConfigPath(), directory.filePath(name + ".cfg"_s));
                QCOMPARE(settings.value(key, 1), QVariant(1));
                settings.setValue(key, value);
                QCOMPARE(settings.value(key), QVariant(value));
                QCOMPARE(directory.exists(), isStored);
                const QByteArray content = contentOf(directory.filePath(name + ".ini"_s));
                QCOMPARE(content.contains("speed=" + QByteArray::number(value)), isStored);
            }
        }
        // Not all systems have such a file; the call does nothing then.
        PluginBaseSettings(QString(QChar(0xd800))).setValue(key, 1);
    }

    void copiesRunValues()
    {
        PluginBaseSettings settings(marker);
        settings.setRunValue(key, 1);
        QCOMPARE(settings.value(key, 7), QVariant(7));
        settings.setValue(key, 2);
        QVERIFY(!PluginBaseSettings(marker).hasRunValue(key));
        PluginBaseSettings copy("Other"_s);
        copy.qSettings().setValue(key, 3);
        copy = settings;
        QVERIFY(contentOf(path("Other/Other.ini"_s)).contains("speed=3"));
        const PluginBaseSettings& self = copy;
        copy = self;

        writeFile(settings.defaultConfigPath());
        for (int i = 0; i < 2; ++i) {
            settings.resetParams();
            QCOMPARE(QDir(path(marker)).entryList(QDir::Files), words("Marker.ini"));
            QCOMPARE(store().trimmed(), QByteArray());
        }
        QCOMPARE(settings.runValue(key), QVariant(1));
        settings.removeRunValue(key);
        QVERIFY(!settings.hasRunValue(key) && !settings.runValue(key).isValid());
        QCOMPARE(copy.runValue(key), QVariant(1));
        copy.setRunValue(key, QVariant());
        QVERIFY(copy.hasRunValue(key));
        copy.setValue(key, 4);
        QVERIFY(store().contains("speed=4"));
    }

    void sharesFilesWithPlainSettings()
    {
        const QString name = "Gr\u00f6\u00dfe"_s;
        const QVariantMap values{{"bytes"_s, QByteArray("\xff\0=;", 4)},
                                 {"date"_s, QDate(2026, 11, 24)},
                                 {"list"_s, QStringList{"\u00f6"_s, "a, b"_s}},
                                 {"text"_s, "b\u00f6se \u20ac"_s},
                                 {name + "/H\u00f6he"_s, "1.5"_s}};
        PluginBaseSettings written(name);
        QSettings plain(path("plain.ini"_s), QSettings::IniFormat);
        for (const QString& each : values.keys()) {
            written.setValue(each, values.value(each));
            plain.setValue(each, values.value(each));
        }
        plain.sync();
        const QByteArray content = contentOf(QDir(path(name)).filePath(name + ".ini"_s));
        QCOMPARE(contentOf(plain.fileName()), content);

        // Under another path, since Qt reads each file once.
        writeFile(path("Marker/Marker.ini"_s), content);
        PluginBaseSettings read(marker);
        for (const QString& each : values.keys())
            QCOMPARE(read.value(each), values.value(each));
    }

    void keepsValuesInMemory()
    {
        const QString lock = path("Marker/Marker.ini.lock"_s);
        const auto addLock = [&lock] {
            QVERIFY(QDir().mkpath(lock + "/below"_s));
            // An old lock saves time, but not all systems permit this.
            std::error_code error;
            const auto past = std::filesystem::file_time_type::clock::now() - std::chrono::hours(1);
            std::filesystem::last_write_time(lock.toStdString(), past, error);
        };
        std::optional<PluginBaseSettings> settings(marker);
        settings->setValue(key, 1);
        addLock();
        settings->setValue(key, 2);
        settings->qSettings().beginGroup("Laser"_s);
        settings->setValue("/width"_s, 3);
        QCOMPARE(settings->value("speed"_s), QVariant(2));
        settings->qSettings().endGroup();
        QCOMPARE(settings->value("Laser/width"_s), QVariant(3));
        QVERIFY(!settings->value("width"_s).isValid());
        QCOMPARE(PluginBaseSettings(*settings).value(key), QVariant(1));
        QCOMPARE(store(), QByteArray("[Laser]\nspeed=1\n"));

        QVERIFY(QDir(lock).removeRecursively());
        settings->qSettings().beginGroup("Other"_s);
        settings->setValue("last"_s, 4);
        QCOMPARE(store(), QByteArray("[Laser]\nspeed=2\nwidth=3\n\n[Other]\nlast=4\n"));
        PluginBaseSettings(marker).setValue("Other/last"_s, 5);
        QCOMPARE(settings->value("last"_s), QVariant(5));

        addLock();
        settings->resetParams();
        QVERIFY(!settings->value("last"_s).isValid());
        settings->setValue("last"_s, 6);
        QVERIFY(store().contains("speed=2"));
        QVERIFY(QDir(lock).removeRecursively());
        settings.reset();
        QCOMPARE(store(), QByteArray("[Other]\nlast=6\n"));
    }
};

QTEST_GUILESS_MAIN(tst_plugin_settings)
#include "tst_plugin_settings.moc"
