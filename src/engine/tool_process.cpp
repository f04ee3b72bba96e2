// Starting and steering the tool's process group.
#include "engine/tool_process.h"

#include <cerrno>
#include <csignal>
#include <sys/resource.h>
#include <unistd.h>

namespace qb::engine {

ToolProcess::ToolProcess()
{
    m_process.setProcessChannelMode(QProcess::MergedChannels);
}

ToolProcess::~ToolProcess()
{
    if (running()) {
        // The group goes with its leader, so nothing of the job outlives the engine.
        signalGroup(SIGKILL);
        m_process.waitForFinished(2000);
    }
}

bool ToolProcess::start(const ToolLaunch &launch, int nice, const QString &workingDir)
{
    if (launch.program.isEmpty())
        return false;
    m_process.setProgram(launch.program);
    m_process.setArguments(launch.arguments);
    if (!workingDir.isEmpty())
        m_process.setWorkingDirectory(workingDir);
    m_process.setChildProcessModifier([nice] {
        // Runs in the child between fork and exec: system calls only.
        ::setpgid(0, 0);
        ::setpriority(PRIO_PROCESS, 0, nice);
    });
    m_process.start(QIODevice::ReadWrite);
    // Blocks only until the program image is loaded or refused, as a process creation does.
    if (!m_process.waitForStarted(30000))
        return false;
    m_pid = m_process.processId();
    return m_pid > 0;
}

bool ToolProcess::signalGroup(int signal) const
{
    if (m_pid <= 0)
        return false;
    if (::kill(static_cast<pid_t>(-m_pid), signal) == 0)
        return true;
    // The leader may not have reached setpgid yet; the process itself then takes the signal. Once
    // it has been reaped its id may belong to someone else, so only a running leader is tried.
    return running() && ::kill(static_cast<pid_t>(m_pid), signal) == 0;
}

std::optional<int> ToolProcess::nice() const
{
    if (m_pid <= 0 || !running())
        return std::nullopt;
    errno = 0;
    const int value = ::getpriority(PRIO_PROCESS, static_cast<id_t>(m_pid));
    if (value == -1 && errno != 0)
        return std::nullopt;
    return value;
}

bool ToolProcess::setNice(int nice) const
{
    if (m_pid <= 0 || !running())
        return false;
    return ::setpriority(PRIO_PGRP, static_cast<id_t>(m_pid), nice) == 0;
}

} // namespace qb::engine
