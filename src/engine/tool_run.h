// One run of an outside tool, from start to its end: the process in a group of its own (so that a
// shell and the programs it starts are suspended, niced and stopped together), its output read in
// 256-byte pieces, its standard input, the stop sequence and its priority. Made for one run and
// destroyed with it; nothing of a run outlives the object, and nothing in it is ever reset.
#pragma once

#include "engine/chunk_decoder.h"
#include "engine/command_line.h"

#include <QObject>
#include <QProcess>
#include <QTimer>

#include <optional>

namespace qb::engine {

class ToolRun : public QObject
{
    Q_OBJECT

public:
    // Where the tool's output (standard output and error together) goes.
    enum class Output { Read, Discard, Forward };

    // The largest piece one read takes.
    static constexpr qint64 kChunkBytes = 256;

    explicit ToolRun(Output output = Output::Read, QObject *parent = nullptr);
    // Whatever still runs of the tool's group is killed.
    ~ToolRun() override;
    ToolRun(const ToolRun &) = delete;
    ToolRun &operator=(const ToolRun &) = delete;

    // Starts the tool in workingDir (the caller's folder when empty) at a priority class (a class
    // the user may not take leaves the tool at what it inherits). Blocks only until the program
    // image is loaded or refused. True when the program runs; only then do signals follow.
    bool start(const ToolLaunch &launch, int priorityClass, const QString &workingDir = {});

    qint64 pid() const { return m_pid; }
    bool running() const { return m_process.state() != QProcess::NotRunning; }
    // The tool has ended (its output may still wait to be read).
    bool ended() const { return m_ended || !running(); }
    // The exit code once the tool ended normally; none when it was killed or still runs.
    std::optional<int> exitCode() const;

    // Output.
    bool hasOutput() const { return m_process.bytesAvailable() > 0; }
    // The next piece: at most kChunkBytes bytes, with a character the previous read cut in front.
    QString read();
    // What the reads held back, for the end of the output.
    QString readRest() { return m_decoder.decode({}, true); }
    // Blocks until output arrives or the tool ends, at most milliseconds. For short runs that are
    // synchronous by contract; the event loop does not run meanwhile.
    void waitForActivity(int milliseconds);

    // Standard input. True when the bytes were taken.
    bool write(const QByteArray &bytes);
    void closeInput() { m_process.closeWriteChannel(); }

    // Stops and continues the whole group. True when the signal was delivered.
    bool suspend() const;
    bool resume() const;
    // Asks the group to end (and continues a stopped one, which would not see the request),
    // kills it after a grace period, and reports through terminated() or terminateFailed(). An
    // ended tool's group is killed at once and terminated() raised before this returns.
    void terminate();
    // Kills the group and waits for the tool, at most milliseconds. True when it has ended.
    bool kill(int milliseconds);

    // The priority class of the tool now; none when it can't be read (the tool has ended).
    std::optional<int> priorityClass() const;
    // Moves every process of the group to a class. True when the system accepted it.
    bool setPriorityClass(int priorityClass) const;

Q_SIGNALS:
    // New output can be read.
    void outputReady();
    // The tool ended on its own (not after terminate()).
    void finished();
    // After terminate(): the tool has ended and the rest of its group is killed.
    void terminated();
    // After terminate(): the tool outlived the kill.
    void terminateFailed();

private:
    bool signalGroup(int signal) const;
    void onFinished();
    void onTerminateTimeout();

    Output m_output;
    QProcess m_process;
    ChunkDecoder m_decoder;
    QTimer m_terminateTimer;
    qint64 m_pid = 0;
    bool m_ended = false;
    int m_terminateStage = 0; // 1 after the request, 2 after the kill
};

} // namespace qb::engine
