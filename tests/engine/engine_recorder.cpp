// The engine test helpers.
#include "engine/engine_recorder.h"

#include "engine/status_codes.h"

#include "engine/chunk_decoder.h"

#include <QDeadlineTimer>
#include <QFile>
#include <QTest>

namespace qb::test {

EngineRecorder::EngineRecorder(engine::FFmpegX &engine)
{
    using engine::FFmpegX;
    QObject::connect(&engine, &FFmpegX::StatusChange, [this](int code, const QString &text) {
        statuses.append({code, text});
        all.append(QStringLiteral("S%1:%2").arg(code).arg(text));
    });
    QObject::connect(&engine, &FFmpegX::ProgressChange,
        [this](int value, int max, int fps, const QString &remainder, const QString &info, bool last) {
            progress.append({value, max, fps, remainder, info, last});
            all.append(QStringLiteral("P%1/%2").arg(value).arg(max));
        });
    QObject::connect(&engine, &FFmpegX::PipeChange, [this](const QString &text) {
        pipe.append(text);
        all.append(QStringLiteral("Pipe"));
    });
    QObject::connect(&engine, &FFmpegX::ScriptChange, [this](const QString &text) {
        scripts.append(text);
        all.append(QStringLiteral("Script:") + text);
    });
    QObject::connect(&engine, &FFmpegX::PriorityChanged, [this](int cls) {
        priorities.append(cls);
        all.append(QStringLiteral("Priority:%1").arg(cls));
    });
}

QStringList EngineRecorder::statusLines() const
{
    QStringList lines;
    for (const auto &[code, text] : statuses)
        lines.append(QStringLiteral("%1:%2").arg(code).arg(text));
    return lines;
}

QString EngineRecorder::completedOutput() const
{
    for (const auto &[code, text] : statuses) {
        if (code == engine::kComplete)
            return text;
    }
    return {};
}

QList<int> EngineRecorder::statusCodes() const
{
    QList<int> codes;
    for (const auto &entry : statuses)
        codes.append(entry.first);
    return codes;
}

QString EngineRecorder::pipeText() const
{
    QString text;
    for (const QString &chunk : pipe)
        text += chunk.chopped(2);
    return text;
}

QString writeToolScript(const QString &path, const QString &body)
{
    QFile file(path);
    if (!file.open(QIODevice::WriteOnly | QIODevice::Truncate))
        return {};
    file.write("#!/bin/sh\n");
    file.write(body.toUtf8());
    file.write("\n");
    file.close();
    file.setPermissions(QFile::ReadOwner | QFile::WriteOwner | QFile::ExeOwner);
    return path;
}

QStringList replayInReads(const QByteArray &recorded)
{
    QStringList chunks;
    engine::ChunkDecoder decoder;
    for (qsizetype at = 0; at < recorded.size(); at += 256)
        chunks.append(decoder.decode(recorded.mid(at, 256), false));
    chunks.append(decoder.decode({}, true));
    return chunks;
}

QString replayJoined(const QByteArray &recorded)
{
    return replayInReads(recorded).join(QString());
}

QByteArray recorded(const QString &name)
{
    QFile file(QStringLiteral(QB_TRANSCRIPT_DIR "/") + name);
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray();
}

bool waitForJobEnd(const engine::FFmpegX &engine, int timeoutMs)
{
    return QTest::qWaitFor([&] { return !engine.IsBusy(); }, timeoutMs);
}

} // namespace qb::test
