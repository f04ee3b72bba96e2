// The conversion's stages in their order.
#include "subtitle/convert_subtitle.h"

#include "subtitle/subtitle_formats.h"
#include "subtitle/subtitle_reader.h"
#include "util/chinese_script.h"
#include "util/code_page.h"
#include "util/file_names.h"
#include "util/text_file.h"
#include "util/text_search.h"

#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QTemporaryFile>
#include <QTime>

namespace qb::subtitle {

namespace {

constexpr int kSrtId = 1;
constexpr int kScriptId = 2;

// The line as the wanted script: 1 reads Big5 that was taken for GBK and makes it simplified; 2
// makes simplified text traditional and hands its Big5 bytes over in the GBK view.
QString convertScript(const QString &line, int conversion)
{
    constexpr int kGbk = 936;
    constexpr int kBig5 = 950;
    if (conversion == 1 && util::CheckBIG5(line))
        return util::ToSimplifiedText(util::DecodeCodePage(util::EncodeCodePage(line, kGbk), kBig5));
    if (conversion == 2 && !util::CheckBIG5(line)) {
        const QString traditional = util::ToTraditionalText(util::ToSimplifiedText(line));
        return util::DecodeCodePage(util::EncodeCodePage(traditional, kBig5), kGbk);
    }
    return line;
}

QString clockText()
{
    return QTime::currentTime().toString(QStringLiteral("HH:mm:ss"));
}

// The destination's path after the numbering and suffix rules.
QString destinationPath(const ConvertArguments &arguments)
{
    QString path = arguments.overwrite ? arguments.destination : util::RenameExists(arguments.destination);
    if (!arguments.fileNameSuffix.isEmpty()) {
        const qsizetype dot = path.lastIndexOf(u'.');
        path = (dot >= 0 ? path.left(dot) : path) + u'.' + arguments.fileNameSuffix;
    }
    return path;
}

// Writes the lines in the system's code page with CR LF ends, then in the wanted text format,
// through a temporary file beside the destination that only a complete text replaces it with.
bool writeInPlace(const QString &path, const QStringList &lines, int encodeFormat)
{
    QTemporaryFile scratch(QFileInfo(path).absolutePath() + QStringLiteral("/.qbsub-XXXXXX"));
    scratch.setAutoRemove(true);
    if (!scratch.open())
        return false;
    // Encoded a few thousand lines at a time: the whole text twice over would be touched for nothing.
    constexpr qsizetype kChunk = 1 << 16;
    QString text;
    text.reserve(kChunk + 1024);
    for (qsizetype i = 0; i < lines.size(); ++i) {
        text += lines.at(i);
        text += QStringLiteral("\r\n");
        if (text.size() >= kChunk || i + 1 == lines.size()) {
            if (scratch.write(util::EncodeCodePage(text, 0)) < 0)
                return false;
            text.resize(0);
        }
    }
    if (!scratch.flush())
        return false;
    scratch.close();
    // Re-encoding into the system's own code page would give back the very same bytes.
    if (encodeFormat != util::TextFormatAnsi) {
        int format = -1;
        const QString loaded = util::UEFLoadTextFile(scratch.fileName(), format);
        if (loaded.isEmpty())
            return false;
        format = encodeFormat;
        if (!util::UEFSaveTextFile(scratch.fileName(), loaded, false, format, encodeFormat))
            return false;
    }
    QFile::remove(path);
    if (!QFile::rename(scratch.fileName(), path))
        return false;
    scratch.setAutoRemove(false);
    return true;
}

} // namespace

ConvertResult ConvertSubtitleFiles(const ConvertArguments &arguments, const ConvertEvents &events)
{
    ConvertResult result;
    if (arguments.sources.isEmpty())
        return result;
    result.started = clockText();
    const bool raise = arguments.raiseAllEvents;
    const auto status = [&](int code, const QString &text) {
        if (raise && events.status)
            events.status(code, text);
    };
    const auto progress = [&](int value, int max, bool last) {
        if (raise && events.progress)
            events.progress(value, max, 0, result.started, result.finished, last);
    };
    const int interval = std::max(1, arguments.raiseEventInterval);

    int destinationId = SubtitleFormatId(util::GetFileString(arguments.destination, QStringLiteral("."), 1));
    if (destinationId < 0)
        destinationId = kScriptId;

    CueList cues = EmptyCueList();
    ReaderState state;
    state.destinationId = destinationId;
    WriterOptions style = arguments.style;
    const CueWindow window {
        arguments.windowStart, arguments.windowEnd, arguments.timeOffset, arguments.splitMode};
    for (const QString &source : arguments.sources) {
        if (!util::FileExists(source))
            continue;
        status(0, source);
        status(1, source);
        const int sourceId = SubtitleFormatId(QFileInfo(source).suffix());
        if (sourceId < 0)
            return result;
        style.sourceFormatId = sourceId;
        int format = -1;
        const QString text = util::UEFLoadTextFile(source, format);
        // Lines end in CR LF; a file without one is read by this system's line feed instead, as
        // files written here end their lines. The piece behind the last line end is not read.
        const QLatin1StringView lineEnd(text.contains(QStringLiteral("\r\n")) ? "\r\n" : "\n");
        if (text.isEmpty() || !text.contains(lineEnd))
            return result;
        const qsizetype visited = text.count(lineEnd);
        qsizetype from = 0;
        for (qsizetype i = 0; i < visited; ++i) {
            const qsizetype to = text.indexOf(lineEnd, from);
            QString line = text.mid(from, to - from);
            from = to + lineEnd.size();
            if (line.contains(u'\n') || line.contains(u'\r'))
                line.remove(u'\n').remove(u'\r');
            if (arguments.internalCodeConversion != 0)
                line = convertScript(line, arguments.internalCodeConversion);
            ReadSubtitleLine(sourceId, line, i == visited - 1, state, cues, window);
            if (i % interval == 0)
                progress(int(i), int(visited - 1), false);
        }
    }
    if (cues.size() < 2)
        return result;

    if (arguments.mergeSamePosition)
        MergeSamePosition(cues);
    if (!arguments.watermark.isEmpty()) {
        // The numbered-block writer prints every end 10 ms short.
        AddWatermark(cues, arguments.watermark, arguments.watermarkStart, arguments.watermarkEnd,
            destinationId == kSrtId ? 10 : 0);
    }
    if (arguments.sort)
        SortCues(cues);

    const QString path = destinationPath(arguments);
    const QString folder = QFileInfo(path).absolutePath();
    if (!util::DirExists(folder))
        util::MakedPath(folder);
    const QStringList printed = WriteSubtitle(destinationId, cues, style);
    result.finished = clockText();
    progress(0, 100, false);
    if (!writeInPlace(path, printed, arguments.encodeFormat))
        return result;
    result.written = true;
    result.destination = path;
    if (arguments.raiseFinished)
        status(2, path);
    return result;
}

} // namespace qb::subtitle
