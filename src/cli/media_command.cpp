// quillbox media tools | probe.
#include "cli/media_command.h"
#include "cli/exit_status.h"

#include "cli/media_convert_command.h"
#include "cli/media_overlay_command.h"
#include "cli/media_sheet_command.h"
#include "engine/ffmpegx.h"

#include <QFileInfo>
#include <QJsonArray>
#include <QJsonDocument>
#include <QJsonObject>
#include <QStandardPaths>

namespace qb::cli {

namespace {

const char *const kMediaUsage = "usage: quillbox media tools [PATH...]\n"
                                "       quillbox media probe FILE... [--json] [--core PATH]\n"
                                "       quillbox media convert SRC... --format NAME [options] [--dry-run]\n"
                                "       quillbox media formats [--core PATH]\n"
                                "       quillbox media overlay | avs | sheet ...\n";

int usage(QTextStream &err, const QString &problem)
{
    err << "quillbox: " << problem << "\n" << kMediaUsage;
    return kUsage;
}

qsizetype countOf(const QString &list)
{
    return list.isEmpty() ? 0 : list.split(u'|').size();
}

int tools(const QStringList &paths, QTextStream &out, QTextStream &err)
{
    QStringList wanted = paths;
    if (wanted.isEmpty()) {
        for (const char *name : {"ffmpeg", "mencoder", "x264", "mkvmerge"}) {
            const QString found = QStandardPaths::findExecutable(QString::fromLatin1(name));
            if (!found.isEmpty())
                wanted << found;
        }
        if (wanted.isEmpty()) {
            err << "quillbox: none of ffmpeg, mencoder, x264 and mkvmerge is on the PATH; name a tool\n";
            return kFailed;
        }
    }
    int result = kOk;
    for (const QString &path : wanted) {
        if (!QFileInfo(path).isFile()) {
            err << "quillbox: no such tool: " << path << "\n";
            result = kFailed;
            continue;
        }
        engine::FFmpegX engine;
        engine.setCore(path);
        const engine::CoreFamily &core = engine.CoreState;
        out << path << "\n  CoreStatus: " << core.CoreStatus << "\n  CoreName: " << core.CoreName
            << "\n  CoreVersion: " << core.CoreVersion << "\n";
        if (core.CoreStatus == 1) {
            // The codec lists begin with COPY, which is no encoder.
            out << "  formats: " << countOf(core.CoreFormats)
                << ", video encoders: " << countOf(core.CoreVideoCodec) - 1
                << ", audio encoders: " << countOf(core.CoreAudioCodec) - 1
                << ", subtitle encoders: " << countOf(engine.Subtitle.CoreSubtitleCodec) - 1
                << ", filters: " << countOf(core.CoreFilters)
                << ", pixel formats: " << countOf(core.CorePixelformats) << "\n";
        } else if (core.CoreStatus == 0) {
            err << "quillbox: " << path << " is none of the tools the engine knows\n";
            result = kFailed;
        }
    }
    return result;
}

QJsonObject probeJson(const engine::FFmpegX &engine)
{
    return {
        {QStringLiteral("FileName"), engine.FileName()},
        {QStringLiteral("FileInfo"), engine.FileInfo()},
        {QStringLiteral("Duration"), engine.Duration()},
        {QStringLiteral("SourceFormat"), engine.FileOutput.SourceFormat},
        {QStringLiteral("SourceSuffix"), engine.FileOutput.SourceSuffix},
        {QStringLiteral("VideoWidth"), engine.Video.VideoWidth},
        {QStringLiteral("VideoHeight"), engine.Video.VideoHeight},
        {QStringLiteral("VideoStreamCount"), engine.Video.VideoStreamCount},
        {QStringLiteral("AudioStreamCount"), engine.Audio.AudioStreamCount},
        {QStringLiteral("SubtitleStreamCount"), engine.Subtitle.SubtitleStreamCount},
        {QStringLiteral("DefaultVideoStream"), engine.Video.DefaultVideoStream},
        {QStringLiteral("DefaultAudioStream"), engine.Video.DefaultAudioStream},
        {QStringLiteral("DefaultSubtitleStream"), engine.Subtitle.DefaultSubtitleStream},
        {QStringLiteral("VideoStreamInfo"), engine.Video.VideoStreamInfo},
        {QStringLiteral("AudioStreamInfo"), engine.Audio.AudioStreamInfo},
        {QStringLiteral("SubtitleStreamInfo"), engine.Subtitle.SubtitleStreamInfo},
        {QStringLiteral("StreamInfo"), engine.StreamInfo()},
    };
}

int probe(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    QStringList files;
    bool json = false;
    QString core = QStandardPaths::findExecutable(QStringLiteral("ffmpeg"));
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &a = arguments[i];
        if (a == QLatin1String("--json"))
            json = true;
        else if (a == QLatin1String("--core") && i + 1 < arguments.size())
            core = arguments[++i];
        else if (a.startsWith(QLatin1String("--")))
            return usage(err, QStringLiteral("unknown option: ") + a);
        else
            files << a;
    }
    if (files.isEmpty())
        return usage(err, QStringLiteral("probe needs a file"));
    if (core.isEmpty() || !QFileInfo(core).isFile()) {
        err << "quillbox: no encoder to probe with; install ffmpeg or name one with --core\n";
        return kFailed;
    }
    int result = kOk;
    QJsonArray all;
    for (const QString &file : files) {
        const QFileInfo info(file);
        if (!info.exists()) {
            err << "quillbox: " << file << ": no such file\n";
            result = kFailed;
            continue;
        }
        if (!info.isFile() || !info.isReadable()) {
            err << "quillbox: " << file << ": cannot be read (a folder, or no permission)\n";
            result = kFailed;
            continue;
        }
        engine::FFmpegX engine;
        engine.setCore(core);
        engine.setFileName(info.absoluteFilePath());
        const bool media = engine.Video.VideoStreamCount + engine.Audio.AudioStreamCount
                + engine.Subtitle.SubtitleStreamCount
            > 0;
        if (!media) {
            err << "quillbox: " << file << ": not a media file (no streams found)\n";
            result = kFailed;
            continue;
        }
        if (json)
            all.append(probeJson(engine));
        else
            out << file << "\n"
                << QString(engine.StreamInfo()).replace(QStringLiteral("\r\n"), QStringLiteral("\n"))
                << "\n\n";
    }
    if (json)
        out << QJsonDocument(all).toJson(QJsonDocument::Indented);
    return result;
}

} // namespace

int RunMediaCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    const QString verb = arguments.value(0);
    if (verb == QLatin1String("tools"))
        return tools(arguments.mid(1), out, err);
    if (verb == QLatin1String("probe"))
        return probe(arguments.mid(1), out, err);
    if (verb == QLatin1String("overlay"))
        return RunOverlayCommand(arguments.mid(1), out, err);
    if (verb == QLatin1String("avs"))
        return RunAvsCommand(arguments.mid(1), out, err);
    if (verb == QLatin1String("sheet"))
        return RunSheetCommand(arguments.mid(1), out, err);
    if (verb == QLatin1String("convert"))
        return RunConvertCommand(arguments.mid(1), out, err);
    if (verb == QLatin1String("formats"))
        return RunFormatsCommand(arguments.mid(1), out, err);
    return usage(err,
        verb.isEmpty() ? QStringLiteral("media needs tools, probe, convert, formats, overlay, avs or sheet")
                       : QStringLiteral("unknown media command: ") + verb);
}

} // namespace qb::cli
