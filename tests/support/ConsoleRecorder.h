#pragma once

#include <ovcore/ConsoleObserver.h>
#include <ovcore/ConsoleSingleton.h>

#include <QByteArrayList>

/// Records the lines that are logged during its lifetime.
class ConsoleRecorder : public Core::ConsoleObserver
{
public:
    ConsoleRecorder() { Core::ConsoleSingleton::instance().attachObserver(this); }
    Q_DISABLE_COPY(ConsoleRecorder)
    ~ConsoleRecorder() override { Core::ConsoleSingleton::instance().detachObserver(this); }

    void write(Severity severity, const QByteArray& line) override
    {
        lines.append(severity == Severity::Warning ? "warning: " + line : line);
    }

    QByteArrayList lines;
};
