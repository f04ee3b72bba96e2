// The frame around the encoder's composer: the head (pass state, target size, the script, the
// probe, the end), the files the filter chain refers to, the output's name, and the tail (a host's
// template with its macros, the test copy, the script event).
#include "engine/command_template.h"
#include "engine/ffmpeg_composer.h"
#include "engine/ffmpegx.h"
#include "engine/mencoder_composer.h"
#include "engine/mencoder_dialect.h"
#include "engine/overlay_settings.h"
#include "engine/status_codes.h"
#include "engine/target_size.h"
#include "imaging/image_container.h"
#include "imaging/shadow_stage.h"
#include "imaging/text_marks.h"
#include "subtitle/convert_subtitle.h"
#include "subtitle/overlay_script.h"
#include "subtitle/subtitle_formats.h"
#include "util/file_names.h"
#include "util/number_text.h"
#include "util/text_file.h"

#include <QDateTime>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace qb::engine {

namespace {

// The job's temporary slots the filter chain names: rendered text, the picture overlay, the two
// converted subtitles and the timed overlay document.
constexpr size_t kTextSlot = 1;
constexpr size_t kImageSlot = 2;
constexpr size_t kSubtitleSlot = 3;
constexpr size_t kOverallSlot = 4;
constexpr size_t kWatermarkSlot = 5;

// Scales a picture's opacity by alpha (255 leaves it).
void fade(QImage &image, int alpha)
{
    if (alpha >= 255)
        return;
    image = image.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    QImage faded(image.size(), QImage::Format_ARGB32_Premultiplied);
    faded.fill(Qt::transparent);
    QPainter painter(&faded);
    painter.setOpacity(std::max(0, alpha) / 255.0);
    painter.drawImage(0, 0, image);
    painter.end();
    image = faded;
}

QString bare(const QString &path)
{
    return QFileInfo(path).fileName();
}

// A command text as a shell script's line: the same arguments, quoted for the shell.
QString shellLine(const QString &command)
{
    QStringList stages;
    for (const CommandStage &stage : SplitCommandStages(command)) {
        QStringList words;
        for (const QString &word : stage)
            words << QuoteForShell(word);
        stages << words.join(u' ');
    }
    return stages.join(u" | "_s);
}

} // namespace

QString FFmpegX::ComposeCommand(int Pass, bool UseFilterScale)
{
    const ComposedCommand command = composeBuiltIn(Pass, UseFilterScale);
    if (m_refusal.isEmpty())
        Q_EMIT ScriptChange(command.text);
    return command.text;
}

ComposedCommand FFmpegX::composeBuiltIn(int pass, bool useFilterScale)
{
    m_refusal.clear();
    if (pass == 2)
        m_processing = true;
    m_twoPassStatus = QString::number(pass);
    if (m_tempBase.isEmpty() || !QFileInfo::exists(m_tempBase))
        m_tempBase = util::CreateTempFile(util::GetWindowsTempDirectory(), u"qbx"_s);

    // The probe and the crop detection run between the passes, never beside the tool.
    const bool wasProcessing = std::exchange(m_processing, false);
    QSize target = TargetSize(Video.VideoSize, Video.VideoWidth, Video.VideoHeight);
    if (AVS.AVSEnabled) {
        for (QString &slot : m_tempFiles) {
            if (!slot.isEmpty())
                QFile::remove(std::exchange(slot, QString()));
        }
        ComposeScript(m_fileInfo, m_tempBase + u".avs"_s, target.width(), target.height());
        m_inputName = m_tempBase + u".avs"_s;
    } else {
        m_inputName = m_fileName;
    }
    // A source probed already and unchanged since is not asked again.
    const bool probed
        = m_inputName == m_probedFile && QFileInfo(m_inputName).lastModified() == m_probedModified;
    if (!m_fileName.endsWith(u':') && !probed)
        GetStreamInfo(m_inputName);
    if (target.isEmpty() || !AVS.AVSEnabled)
        target = TargetSize(Video.VideoSize, Video.VideoWidth, Video.VideoHeight);
    const double range = Job.TimeEndPoint - Job.TimeStartPoint;
    m_scan.Max = range > 0 ? range : m_duration;

    const bool mencoder = CoreState.CoreStatus == 2;
    const ToolGeneration generation
        = mencoder ? MEncoderGenerationOf(CoreState.CoreVersion) : FFmpegGenerationOf(CoreState.CoreVersion);
    ComposeInput input;
    input.pass = pass;
    input.useFilterScale = useFilterScale;
    input.generation = generation;
    input.inputName = m_inputName;
    input.target = target;
    input.now = QDateTime::currentDateTime();
    input.sourceInTempFolder
        = QFileInfo(m_fileName).absolutePath() == QDir(util::GetWindowsTempDirectory()).absolutePath();
    input.audioReplaceFound = QFileInfo(Audio.AudioReplaceFileName).isFile();
    if (mencoder) {
        // The second encoder draws the source's own subtitle itself; it burns in nothing else.
        if (Menc.MencEnableSubtitle && !m_fileName.endsWith(u':'))
            input.subtitleFile = subtitle::CheckSubtitle(m_fileName, Subtitle.SubtitleSuffixSupported);
    } else if (pass != 2) {
        input.files = prepareFilterFiles(target);
    } else {
        input.files = m_filterFiles;
    }
    m_processing = wasProcessing;

    JobSettings job = Settings();
    if (pass != 2) {
        const QString extension
            = mencoder ? MEncoderOutputExtension(job, generation) : FFmpegOutputExtension(job, generation);
        const QString planned = PlannedOutputName(job, extension);
        util::MakedPath(QFileInfo(planned).absolutePath());
        // Overwrite takes the name as given, as moving a file with it does.
        FileOutput.OutputFileName = FileOutput.Overwrite ? planned : util::RenameExists(planned);
        job.FileOutput.OutputFileName = FileOutput.OutputFileName;
    }
    input.outputFileName = FileOutput.OutputFileName;

    Composition composed = mencoder ? ComposeMEncoderCommand(job, input) : ComposeFFmpegCommand(job, input);
    m_outputInfo = composed.outputInfo;
    QString text = composed.command;
    if (!composed.refusal.isEmpty() && m_commandLine.isEmpty()) {
        m_refusal = composed.refusal;
        return {};
    }
    if (!m_commandLine.isEmpty()) {
        MacroValues values;
        values.outW = composed.target.width();
        values.outH = composed.target.height();
        values.padBorder = Video.PadBorder > 0;
        values.videoBitRate = Video.VideoBitRate;
        values.videoVBR = Video.VideoVBR;
        values.frameRate = Video.FrameRate;
        values.audioBitRate = Audio.AudioBitRate;
        values.audioQuality = Audio.AudioQuality;
        values.audioSampleRate = Audio.AudioSampleRate;
        values.audioChannels = Audio.AudioChannels;
        values.inputName = m_inputName;
        values.outputFileName = FileOutput.OutputFileName;
        text = ExpandCommandMacros(m_commandLine, values);
    }
    if (Job.TestMode)
        writeTestScripts(text);
    m_composedText = text;
    return ComposedCommand(text);
}

FilterFiles FFmpegX::prepareFilterFiles(QSize target)
{
    for (size_t slot : {kTextSlot, kImageSlot, kSubtitleSlot, kOverallSlot, kWatermarkSlot}) {
        if (!m_tempFiles[slot].isEmpty())
            QFile::remove(std::exchange(m_tempFiles[slot], QString()));
    }
    FilterFiles files;
    if (Video.VideoAutoCrop)
        files.autoCrop = GetVideoScreenCropInfo(m_inputName);
    const QSize frame = target.isEmpty() ? QSize(Video.VideoWidth, Video.VideoHeight) : target;

    const auto keep = [this](size_t slot, const QString &path, QImage &image, QString &name, QSize &size) {
        if (image.isNull() || !image.save(path, "PNG"))
            return;
        m_tempFiles[slot] = path;
        name = bare(path);
        size = image.size();
    };
    if (AVFilter.AVFilterTextEnabled && !AVFilter.AVFilterTextString.isEmpty()) {
        QImage text = imaging::CreateStringImage(AVFilter.AVFilterTextString, AVFilter.AVFilterTextFont,
            AVFilter.AVFilterTextColor, AVFilter.AVFilterTextOutlineColor, AVFilter.AVFilterTextOutlineWidth,
            AVFilter.AVFilterBackColor, AVFilter.AVFilterBackAlpha);
        if (!text.isNull()) {
            fade(text, AVFilter.AVFilterTextAlpha);
            imaging::DropShadow(text, AVFilter.AVFilterTextShadowDepth, AVFilter.AVFilterTextShadowColor,
                AVFilter.AVFilterTextShadowAlpha);
        }
        keep(kTextSlot, m_tempBase + u"1.png"_s, text, files.textPicture, files.textSize);
    }
    if (AVFilter.AVFilterImageEnabled && QFileInfo(AVFilter.AVFilterImageFile).isFile()) {
        const imaging::ConversionHooks hooks = pictureHooks();
        QImage picture = imaging::LoadImageToGdip(AVFilter.AVFilterImageFile, hooks.isVideo, hooks.grabFrame);
        if (!picture.isNull()) {
            // A picture larger than the frame is fitted into it.
            if (!frame.isEmpty() && (picture.width() > frame.width() || picture.height() > frame.height()))
                picture = picture.scaled(frame, Qt::KeepAspectRatio, Qt::SmoothTransformation);
            fade(picture, AVFilter.AVFilterImageAlpha);
            imaging::DropShadow(picture, AVFilter.AVFilterImageShadowDepth, AVFilter.AVFilterImageShadowColor,
                AVFilter.AVFilterImageShadowAlpha);
        }
        keep(kImageSlot, m_tempBase + u"2.png"_s, picture, files.imagePicture, files.imageSize);
    }

    const AVFilterVideoSubtitleFamily &s = AVFilterVideoSubtitle;
    if (s.AVFilterVideoSubtitleEnabled) {
        QString source = s.AVFilterVideoSubtitleFileName;
        if (!QFileInfo(source).isFile())
            source = subtitle::CheckSubtitle(m_fileName, Subtitle.SubtitleSuffixSupported);
        if (QFileInfo(source).isFile()) {
            files.subtitle = burnInSubtitle(source, m_tempBase + u"3.ass"_s, frame,
                s.AVFilterVideoSubtitleTextFont, s.AVFilterVideoSubtitleTextForeColor,
                s.AVFilterVideoSubtitleTextOutlineColor, s.AVFilterVideoSubtitleTextShadowColor,
                s.AVFilterVideoSubtitleTextOutlineWidth, s.AVFilterVideoSubtitleTextShadowDepth,
                s.AVFilterVideoSubtitleTextAlpha, s.AVFilterVideoSubtitleAlign);
            if (!files.subtitle.isEmpty())
                m_tempFiles[kSubtitleSlot] = m_tempBase + u"3.ass"_s;
        }
    }
    if (s.AVFilterVideoOverallSubtitleEnabled && QFileInfo(s.AVFilterVideoOverallSubtitleFileName).isFile()) {
        files.overallSubtitle
            = burnInSubtitle(s.AVFilterVideoOverallSubtitleFileName, m_tempBase + u"4.ass"_s, frame,
                s.AVFilterVideoOverallSubtitleTextFont, s.AVFilterVideoOverallSubtitleTextForeColor,
                s.AVFilterVideoOverallSubtitleTextOutlineColor, s.AVFilterVideoOverallSubtitleTextShadowColor,
                s.AVFilterVideoOverallSubtitleTextOutlineWidth, s.AVFilterVideoOverallSubtitleTextShadowDepth,
                s.AVFilterVideoOverallSubtitleTextAlpha, s.AVFilterVideoOverallSubtitleAlign);
        if (!files.overallSubtitle.isEmpty())
            m_tempFiles[kOverallSlot] = m_tempBase + u"4.ass"_s;
    }
    const AVFilterVideoWatermarkFamily &w = AVFilterVideoWatermark;
    if (w.AVFilterVideoWatermarkTitleEnabled || w.AVFilterVideoWatermarkBannerEnabled
        || w.AVFilterVideoWatermarkMainLogoEnabled) {
        const QString path = m_tempBase + u"5.ass"_s;
        WriteWatermarkScript(path, frame.width(), frame.height(), true);
        if (QFileInfo(path).isFile()) {
            m_tempFiles[kWatermarkSlot] = path;
            files.watermark = bare(path);
        }
    }
    m_filterFiles = files;
    return files;
}

QString FFmpegX::burnInSubtitle(const QString &source, const QString &target, QSize frame,
    const QString &font, const QString &foreColor, const QString &outlineColor, const QString &shadowColor,
    int outline, int shadow, quint8 alpha, int align)
{
    subtitle::ConvertArguments job;
    job.sources = {source};
    job.destination = target;
    job.overwrite = true;
    job.raiseFinished = false;
    job.raiseAllEvents = false;
    subtitle::WriterOptions &style = job.style;
    style.screenWidth = frame.width();
    style.screenHeight = frame.height();
    const subtitle::OverlayFont parsed = subtitle::ParseOverlayFont(font);
    style.fontName = parsed.name;
    style.fontSize = parsed.size;
    style.fontBold = parsed.bold ? 1 : 0;
    style.fontItalic = parsed.italic ? 1 : 0;
    style.fontOutline = outline;
    style.fontShadow = shadow;
    // The family's alpha is opacity, as every overlay's is (255 opaque); the script's level is
    // transparency, and the renderer here honours it.
    style.fontAlphaLevel = quint8(255 - alpha);
    style.fontEncoding = 134;
    style.foreColor = qint32(util::Val(u"&H"_s + foreColor));
    style.effectColor = qint32(util::Val(u"&H"_s + outlineColor));
    style.shadowColor = qint32(util::Val(u"&H"_s + shadowColor));
    style.align = align;
    job.timeOffset = Subtitle.SubtitleTimeOffset;
    job.windowStart = Job.TimeStartPoint;
    job.windowEnd = Job.TimeEndPoint;
    // The script is read as UTF-8 with a byte order mark.
    job.encodeFormat = 1;
    if (!ff_ConvertSubtitle(job) || !QFileInfo(target).isFile()) {
        raiseStatus(kError, StringContent.StringContent23);
        return {};
    }
    return bare(target);
}

void FFmpegX::writeTestScripts(const QString &command)
{
    const QString folder
        = !m_outputDir.isEmpty() ? m_outputDir : QFileInfo(FileOutput.OutputFileName).absolutePath();
    if (!util::DirExists(folder))
        return;
    const QDir dir(folder);
    util::WriteText(command, dir.filePath(u"Test.bat"_s), false);
    // Beside it, the same command for this system's shell, ready to run: line feeds, no mark.
    QFile script(dir.filePath(u"Test.sh"_s));
    if (script.open(QIODevice::WriteOnly | QIODevice::Truncate)) {
        script.write((u"#!/bin/sh\n"_s + shellLine(command) + u'\n').toUtf8());
        script.close();
        script.setPermissions(script.permissions() | QFile::ExeOwner | QFile::ExeGroup | QFile::ExeOther);
    }
}

QString FFmpegX::ChooseMp4BoxLanguage(const QString &value, QString &code) const
{
    const Mp4BoxLanguage language = qb::engine::ChooseMp4BoxLanguage(value);
    code = language.code;
    return language.word;
}

} // namespace qb::engine
