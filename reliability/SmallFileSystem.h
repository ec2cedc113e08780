#pragma once

#include <support/Files.h>
#include <support/Literals.h>

#include <QTemporaryDir>

#include <filesystem>

#include <sched.h>
#include <sys/mount.h>

/// A file system in memory, of 1024 blocks by default, mounted for this process while the object
/// exists. Mounting requires a permission.
class SmallFileSystem
{
public:
    explicit SmallFileSystem(const char* options = "nr_blocks=1024")
    {
        _isMounted = ::unshare(CLONE_NEWNS) == 0 &&
                     ::mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 &&
                     ::mount("none", _path.c_str(), "tmpfs", 0, options) == 0;
    }
    Q_DISABLE_COPY(SmallFileSystem)
    ~SmallFileSystem()
    {
        if (_isMounted)
            ::umount2(_path.c_str(), MNT_DETACH);
    }

    /// With so many blocks free, small settings files are written.
    static constexpr int enoughBlocks = 512;

    bool isMounted() const { return _isMounted; }
    QString filePath(const QString& name) const { return _directory.filePath(name); }

    /// Leaves so many blocks free.
    void setFreeBlocks(int count) const
    {
        constexpr int block = 4096;
        QFile::remove(filePath("filler"_s));
        const auto available = static_cast<int>(std::filesystem::space(_path).available);
        writeFile(filePath("filler"_s), QByteArray(available - count * block, 'x'));
    }

private:
    QTemporaryDir _directory;
    std::string _path = _directory.path().toStdString();
    bool _isMounted = false;
};

/// Why a test that needs it is skipped.
constexpr char cannotMount[] =
    "cannot mount a file system; start the program with `unshare --map-root-user --mount`";
