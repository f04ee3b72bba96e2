// Test helpers for the job engine: a recorder of its events, generated tool scripts, and a wait
// for the end of a job on the event loop.
#pragma once

#include "engine/ffmpegx.h"

#include <QString>
#include <QStringList>

namespace qb::test {

struct ProgressEvent
{
    int value = 0;
    int max = 0;
    int fps = 0;
    QString remainder;
    QString outputInfo;
    bool last = false;
};

// Everything FFmpegX raises, in order. Each event also lands in `all` as one line, so that the
// order across kinds can be checked: "S<code>:<text>", "P<value>/<max>", "Pipe", "Script:<text>",
// "Priority:<class>".
class EngineRecorder
{
public:
    explicit EngineRecorder(engine::FFmpegX &engine);

    QStringList all;
    QList<std::pair<int, QString>> statuses;
    QList<ProgressEvent> progress;
    QStringList pipe; // each chunk as raised, with its CR LF
    QStringList scripts;
    QList<int> priorities;

    // The status events only, as "code:text".
    QStringList statusLines() const;
    // The status codes only.
    QList<int> statusCodes() const;
    // The text of the first Complete status (the output), "" without one.
    QString completedOutput() const;
    // The tool's output put back together from the pipe events.
    QString pipeText() const;
};

// Writes an executable /bin/sh script; returns its path.
QString writeToolScript(const QString &path, const QString &body);

// Recorded tool output as a run hands it over: reads of at most 256 bytes, decoded.
QStringList replayInReads(const QByteArray &recorded);
// The same, joined into one text, as the short runs join what they read.
QString replayJoined(const QByteArray &recorded);
// A recorded tool output from tests/engine/transcripts.
QByteArray recorded(const QString &name);

// Runs the event loop until the engine's job has ended; false after the timeout.
bool waitForJobEnd(const engine::FFmpegX &engine, int timeoutMs = 20000);

} // namespace qb::test
