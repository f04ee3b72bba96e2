// Reading tool output: each chunk a tool prints becomes status events and moves the job's
// position, total and speed. Pure logic, so that the runner and the tests share it.
#pragma once

#include <QString>

#include <functional>

namespace qb::engine {

// The job fields the scan reads and moves.
struct ScanState
{
    double value = 0; // position: seconds, or percent for tools that print one
    double Max = 0; // total: seconds, or 100
    long FPSSpeed = 0;
};

// What the scan needs to know of the job; none of it changes during a scan.
struct ScanContext
{
    double TimeStartPoint = 0;
    double TimeEndPoint = 0;
    double Duration = 0; // seconds, from the last probe
    QString FileInfo; // "|" joins several inputs
    QString CommandLine;
    // The encoder's own composed command runs: it reports time positions only, so the percentage
    // tools' rules would only misread its metadata (a chunk may start inside "isom...").
    bool timePositionsOnly = false;
    // Replaceable user texts, with their default values.
    QString StringContent14 = QStringLiteral("输出文件未设置包含任何数据流");
    QString StringContent16 = QStringLiteral("无法重新采样");
    QString StringContent19 = QStringLiteral("未知的输入或输出格式");
    QString StringContent20 = QStringLiteral("不支持重新采样声道数大于 2 个的来源");
};

// Raises StatusChange(code, text); the gate on events is the caller's.
using StatusSink = std::function<void(int code, const QString &text)>;

// A console interpreter: turns one chunk of a tool's output into events and moves the job's
// fields. It starts nothing and keeps nothing outside the state it is given.
using ConsoleInterpreter = std::function<void(
    const QString &chunk, ScanState &state, const ScanContext &context, const StatusSink &raise)>;

// The interpreter of the tools the engine knows today. Interprets one chunk of tool output (up to 256 bytes,
// not a line: it may hold parts of several). The first rule that fits decides: fatal phrases, the seeking
// line, progress lines of the encoder, header lines, percentage tools, the cabinet maker's "*% - *(* of *)"
// lines, and anything else passed on as information.
void ScanToolOutput(
    const QString &chunk, ScanState &state, const ScanContext &context, const StatusSink &raise);

// The field cutter: the text between the first After (found ignoring case) and the first
// Before behind it (found exactly), trimmed. An empty After cuts from the start, an empty Before
// to the end. A missing After or Before gives "".
QString GetString(const QString &Text, const QString &After, const QString &Before);

} // namespace qb::engine
