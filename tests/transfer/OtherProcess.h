#pragma once

// The program transfer-other_process, as tests start it.

#include <QEventLoop>
#include <QProcess>
#include <QTimer>

/// Lets this process's events go on until the signal, for half a minute at most. The other program
/// gets the clipboard's contents from this loop: to block here would be to wait for each other.
template <class Signal>
bool turnUntil(QProcess &process, Signal signal)
{
    QEventLoop loop;
    QObject::connect(&process, signal, &loop, [&loop] { loop.exit(1); });
    QTimer::singleShot(30000, &loop, [&loop] { loop.exit(0); });
    return loop.exec() == 1;
}

/// One run of the other program.
class OtherProcess {
public:
    explicit OtherProcess(QString const &deed)
    {
        process.setProgram(ZRVOMGUI_OTHER_PROCESS);
        process.setArguments({deed});
    }

    /// Runs to the end; answers whether it came, by exit or by crash.
    bool run()
    {
        process.start();
        return turnUntil(process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished));
    }
    /// Starts a deed that serves the clipboard, and answers whether it is ready to.
    bool serve()
    {
        process.start();
        return turnUntil(process, &QProcess::readyReadStandardOutput) &&
               process.readAllStandardOutput() == "ready\n";
    }
    /// Lets such a deed end.
    bool stop()
    {
        process.closeWriteChannel();
        return turnUntil(process, qOverload<int, QProcess::ExitStatus>(&QProcess::finished)) &&
               hasSucceeded();
    }

    bool hasSucceeded() const
    {
        return process.exitStatus() == QProcess::NormalExit && process.exitCode() == 0;
    }
    bool hasCrashed() const { return process.exitStatus() == QProcess::CrashExit; }
    QString output() { return QString::fromUtf8(process.readAllStandardOutput()); }
    QString errors() { return QString::fromUtf8(process.readAllStandardError()); }

private:
    QProcess process;
};
