// Starting, reading and steering one run of a tool.
#include "engine/tool_run.h"

#include "util/process_priority.h"

#include <QDeadlineTimer>

#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

namespace qb::engine {

namespace {

constexpr int kTerminateGraceMs = 500;
constexpr int kKillWaitMs = 2000;
constexpr int kStartWaitMs = 30000;

} // namespace

ToolRun::ToolRun(Output output, QObject *parent)
    : QObject(parent)
    , m_output(output)
{
    m_process.setProcessChannelMode(
        output == Output::Forward ? QProcess::ForwardedChannels : QProcess::MergedChannels);
    if (output == Output::Discard)
        m_process.setStandardOutputFile(QProcess::nullDevice());
    m_terminateTimer.setSingleShot(true);
    connect(&m_terminateTimer, &QTimer::timeout, this, &ToolRun::onTerminateTimeout);
    connect(&m_process, &QProcess::readyRead, this, &ToolRun::outputReady);
    connect(&m_process, &QProcess::finished, this, &ToolRun::onFinished);
}

ToolRun::~ToolRun()
{
    m_process.disconnect(this);
    if (running())
        kill(kKillWaitMs);
    else if (m_pid > 0)
        signalGroup(SIGKILL); // what the tool left behind in its group
}

bool ToolRun::start(const ToolLaunch &launch, int priorityClass, const QString &workingDir)
{
    if (launch.program.isEmpty() || m_pid != 0)
        return false;
    m_process.setProgram(launch.program);
    m_process.setArguments(launch.arguments);
    if (!workingDir.isEmpty())
        m_process.setWorkingDirectory(workingDir);
    const int nice = util::NiceForPriorityClass(priorityClass);
    m_process.setChildProcessModifier([nice] {
        // Runs in the child between fork and exec: system calls only.
        ::setpgid(0, 0);
        ::setpriority(PRIO_PROCESS, 0, nice);
    });
    m_process.start(QIODevice::ReadWrite);
    if (!m_process.waitForStarted(kStartWaitMs))
        return false;
    m_pid = m_process.processId();
    return m_pid > 0;
}

std::optional<int> ToolRun::exitCode() const
{
    if (!ended() || m_process.exitStatus() != QProcess::NormalExit || m_pid == 0)
        return std::nullopt;
    return m_process.exitCode();
}

QString ToolRun::read()
{
    return m_decoder.decode(m_process.read(kChunkBytes), false);
}

void ToolRun::waitForActivity(int milliseconds)
{
    if (ended() || hasOutput())
        return;
    if (m_output != Output::Read) {
        m_process.waitForFinished(milliseconds);
        return;
    }
    // Returns early when the tool ends; its finished() is raised within.
    m_process.waitForReadyRead(milliseconds);
}

bool ToolRun::write(const QByteArray &bytes)
{
    return running() && m_process.write(bytes) > 0;
}

bool ToolRun::suspend() const
{
    return running() && signalGroup(SIGSTOP);
}

bool ToolRun::resume() const
{
    return running() && signalGroup(SIGCONT);
}

void ToolRun::terminate()
{
    if (m_terminateStage > 0)
        return;
    if (!running()) {
        // Gone already; whatever it left in its group goes too.
        signalGroup(SIGKILL);
        Q_EMIT terminated();
        return;
    }
    m_terminateStage = 1;
    signalGroup(SIGTERM);
    signalGroup(SIGCONT);
    m_terminateTimer.start(kTerminateGraceMs);
}

bool ToolRun::kill(int milliseconds)
{
    if (!running())
        return true;
    signalGroup(SIGKILL);
    signalGroup(SIGCONT);
    return m_process.waitForFinished(milliseconds);
}

void ToolRun::onTerminateTimeout()
{
    if (m_terminateStage == 1) {
        m_terminateStage = 2;
        signalGroup(SIGKILL);
        m_terminateTimer.start(kKillWaitMs);
        return;
    }
    Q_EMIT terminateFailed();
}

void ToolRun::onFinished()
{
    m_ended = true;
    if (m_terminateStage == 0) {
        Q_EMIT finished();
        return;
    }
    m_terminateTimer.stop();
    signalGroup(SIGKILL);
    Q_EMIT terminated();
}

std::optional<int> ToolRun::priorityClass() const
{
    if (m_pid <= 0 || !running())
        return std::nullopt;
    errno = 0;
    const int nice = ::getpriority(PRIO_PROCESS, static_cast<id_t>(m_pid));
    if (nice == -1 && errno != 0)
        return std::nullopt;
    return util::PriorityClassForNice(nice);
}

bool ToolRun::setPriorityClass(int priorityClass) const
{
    if (m_pid <= 0 || !running())
        return false;
    return ::setpriority(PRIO_PGRP, static_cast<id_t>(m_pid), util::NiceForPriorityClass(priorityClass)) == 0;
}

bool ToolRun::signalGroup(int signal) const
{
    if (m_pid <= 0)
        return false;
    if (::kill(static_cast<pid_t>(-m_pid), signal) == 0)
        return true;
    // The leader may not have reached setpgid yet; the process itself then takes the signal. Once
    // it has been reaped its id may belong to someone else, so only a running leader is tried.
    return running() && ::kill(static_cast<pid_t>(m_pid), signal) == 0;
}

} // namespace qb::engine
