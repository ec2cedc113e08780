#include <netdiag/PingProcess.h>

#include <netdiag/SystemTools.h>

#include <system/ProcessInterrupt.h>

#include <limits>
#include <utility>

namespace {

// In milliseconds.
constexpr qint64 requestInterval = 1000;
// The lookup of a host name usually fails earlier.
constexpr int firstOutputTimeout = 30000;

} // namespace

PingProcess::PingProcess(QObject* parent)
    : QProcess(parent), _count(4), _packageSize(64), _limitFromOutput(0), _limitTimer(this)
{
    _limitTimer.setSingleShot(true);
    _limitTimer.setTimerType(Qt::PreciseTimer);
    connect(&_limitTimer, &QTimer::timeout, this,
            [this] { System::interruptProcess(processId()); });
    // The timer is the context: the destructor of the base class still changes the state, when the
    // timer has been destroyed.
    connect(this, &QProcess::stateChanged, &_limitTimer, [this](ProcessState state) {
        if (state == NotRunning) {
            _limitFromOutput = 0;
            _limitTimer.stop();
        }
    });
    connect(this, &QProcess::readyReadStandardOutput, &_limitTimer, [this] {
        if (_limitFromOutput > 0)
            _limitTimer.start(std::exchange(_limitFromOutput, 0));
    });
}

PingProcess::~PingProcess()
{
    // The destructor of the base class would print a warning.
    if (state() != NotRunning) {
        kill();
        waitForFinished();
    }
}

void PingProcess::setCount(int count)
{
    _count = count;
}

void PingProcess::setPackageSize(int packageSize)
{
    _packageSize = packageSize;
}

void PingProcess::doPing(const QString& host)
{
    if (state() == NotRunning && SystemTools::pingRunsUntilStopped)
        limitRun();
    start(QLatin1String(SystemTools::ping), QStringList(host));
}

void PingProcess::limitRun()
{
    // The first request is sent at once, so the last one is sent after one interval less than the
    // count. Half an interval more leaves time for its reply.
    const qint64 duration = _count * requestInterval - requestInterval / 2;
    // A timer cannot count more than 24 days, which is as good as no limit.
    if (_count <= 0 || duration > std::numeric_limits<int>::max() - firstOutputTimeout)
        return;
    _limitFromOutput = static_cast<int>(duration);
    _limitTimer.start(firstOutputTimeout + _limitFromOutput);
}
