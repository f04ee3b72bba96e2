// One outside tool as the job engine runs it: its own process group (so that a shell and the
// programs it starts are suspended, niced and stopped together), a start priority, standard
// output and error merged into one channel, standard input open for keys.
#pragma once

#include "engine/command_line.h"

#include <QObject>
#include <QProcess>

#include <optional>

namespace qb::engine {

class ToolProcess : public QObject
{
public:
    ToolProcess();
    ~ToolProcess() override;
    ToolProcess(const ToolProcess &) = delete;
    ToolProcess &operator=(const ToolProcess &) = delete;

    // Starts the tool in workingDir with the given nice value (a value the user may not take is
    // left at what the tool inherits). True when the program was started.
    bool start(const ToolLaunch &launch, int nice, const QString &workingDir);

    QProcess &process() { return m_process; }
    qint64 pid() const { return m_pid; }
    bool running() const { return m_process.state() != QProcess::NotRunning; }

    // Sends a signal to every process of the tool's group. True when it was delivered to any.
    bool signalGroup(int signal) const;

    // The nice value of the tool; none when it cannot be read (the tool has ended).
    std::optional<int> nice() const;

    // Sets the nice value of every process of the group. True when the system accepted it.
    bool setNice(int nice) const;

private:
    QProcess m_process;
    qint64 m_pid = 0;
};

} // namespace qb::engine
