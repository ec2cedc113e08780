#include <netdiag/TracerouteProcess.h>

#include <netdiag/SystemTools.h>

#include <ovcore/Settings.h>
#include <system/AppendFile.h>

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileSystemWatcher>
#include <QStringList>

namespace {

constexpr int quietPeriod = 7000; // milliseconds

} // namespace

TracerouteProcess::TracerouteProcess(QObject* parent)
    : QObject(parent), _outputFilePath(QDir(Core::Settings::instance().applicationDirPath())
                                           .filePath(QStringLiteral("traceroute.out"))),
      _maxHops(10), _packageSize(64), _watcher(nullptr), _toolProcessId(0)
{
    prepare();

    _watcher = new QFileSystemWatcher(this);
    _watcher->addPath(_outputFilePath);
    connect(_watcher, &QFileSystemWatcher::fileChanged, this, &TracerouteProcess::slotOnChanged);

    _quietTimer.setInterval(quietPeriod);
    _quietTimer.setSingleShot(true);
    // A coarse timer may be 5 % early.
    _quietTimer.setTimerType(Qt::PreciseTimer);
    connect(&_quietTimer, &QTimer::timeout, this, &TracerouteProcess::finished);
}

TracerouteProcess::~TracerouteProcess() = default;

void TracerouteProcess::setMaxHops(int maxHops)
{
    _maxHops = maxHops;
}

void TracerouteProcess::setPackageSize(int packageSize)
{
    _packageSize = packageSize;
}

void TracerouteProcess::doTraceroute(const QString& host)
{
    prepare();

    // The output is appended, so that standard output, standard error, and a tool of an earlier run
    // do not overwrite each other.
    _toolProcessId = System::startDetached(
        QLatin1String(SystemTools::traceroute),
        {QLatin1String(SystemTools::tracerouteMaxHops), QString::number(_maxHops), host},
        _outputFilePath);

    _quietTimer.start();
    Q_EMIT started();
}

qint64 TracerouteProcess::toolProcessId() const
{
    return _toolProcessId;
}

QByteArray TracerouteProcess::readAllStandardOutput() const
{
    QFile file(_outputFilePath);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

void TracerouteProcess::slotOnChanged()
{
    // Restarts the quiet period.
    _quietTimer.start();
    Q_EMIT readyReadStandardOutput();
}

void TracerouteProcess::prepare()
{
    if (_watcher) {
        disconnect(_watcher, &QFileSystemWatcher::fileChanged, this,
                   &TracerouteProcess::slotOnChanged);
        // Discards notifications about the earlier report. On Windows a thread posts them to
        // children of the watcher.
        _watcher->removePath(_outputFilePath);
        const QList<QObject*> children = _watcher->findChildren<QObject*>();
        for (QObject* child : children)
            QCoreApplication::removePostedEvents(child, QEvent::MetaCall);
    }

    QFile file(_outputFilePath);
    if (file.open(QIODevice::WriteOnly))
        file.close();

    if (_watcher) {
        // Added again, since the watcher drops a file that was removed.
        _watcher->addPath(_outputFilePath);
        connect(_watcher, &QFileSystemWatcher::fileChanged, this,
                &TracerouteProcess::slotOnChanged);
    }
}
