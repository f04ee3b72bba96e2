// The frame-server path: the files its script refers to, the script itself, and the overlay
// documents both paths burn in.
#include "engine/ffmpegx.h"
#include "engine/overlay_settings.h"
#include "engine/status_codes.h"
#include "subtitle/convert_subtitle.h"
#include "subtitle/subtitle_formats.h"
#include "util/file_names.h"
#include "util/number_text.h"
#include "util/text_file.h"

#include <QDateTime>
#include <QDir>
#include <QFileInfo>

using namespace Qt::StringLiterals;

namespace qb::engine {

namespace {

// The slots of the script and of the three subtitle files it loads; none is named by the filter
// chain, so they do not move the tool's working folder.
constexpr size_t kScriptSlot = 0;
constexpr size_t kUserSubtitleSlot = 6;
constexpr size_t kOverallSubtitleSlot = 7;
constexpr size_t kOverlaySlot = 8;

bool isFile(const QString &path)
{
    return !path.isEmpty() && QFileInfo(path).isFile();
}

QString withoutSuffix(const QString &path)
{
    const QFileInfo info(path);
    return info.path() + u'/' + info.completeBaseName();
}

} // namespace

bool FFmpegX::CheckAviSynthAvailable() const
{
    if (!QFileInfo::exists(util::GetWindowsSystemDirectory() + u"/avisynth.dll"_s))
        return false;
    // The plugin folder the frame server registered for all users.
    const QSettings registered(QSettings::SystemScope, u"AviSynth"_s);
    const QString plugins = registered.value(u"plugindir2_5"_s).toString();
    return !plugins.isEmpty() && QFileInfo::exists(plugins + u"/DirectShowSource.dll"_s);
}

void FFmpegX::WriteWatermarkScript(const QString &FileName, int width, int height, bool advanced)
{
    subtitle::SaveWatermarkScript(FileName,
        WatermarkOverlayOf(AVFilterVideoWatermark, m_fileName, QDateTime::currentDateTime()), width, height,
        advanced);
}

void FFmpegX::WriteAvsSubtitleFile(const QString &FileName)
{
    // The user's own subtitles reach the script through their own line; copying them in here as
    // well would show them twice.
    subtitle::SaveAvsSubtitleFile(FileName, AvsOverlayOf(AVS, {}));
}

QString FFmpegX::convertForScript(const QString &source, const QString &target)
{
    subtitle::ConvertArguments job;
    job.sources = {source};
    job.destination = target;
    job.overwrite = true;
    subtitle::WriterOptions &style = job.style;
    style.screenWidth = 384;
    style.screenHeight = 288;
    const subtitle::OverlayFont font = subtitle::ParseOverlayFont(AVS.AVSSubtitleFont);
    style.fontName = font.name;
    style.fontSize = font.size;
    style.fontBold = font.bold ? 1 : 0;
    style.fontItalic = font.italic ? 1 : 0;
    style.foreColor = qint32(util::Val(u"&H"_s + AVS.AVSSubtitleColor));
    style.effectColor = qint32(util::Val(u"&H"_s + AVS.AVSSubtitleColorBorder));
    style.align = AVS.AVSSubtitleAlign;
    job.timeOffset = Subtitle.SubtitleTimeOffset;
    job.encodeFormat = Subtitle.SubtitleEncodeFormat;
    job.raiseFinished = false;
    if (!ff_ConvertSubtitle(job)) {
        raiseStatus(kError, StringContent.StringContent23);
        return {};
    }
    return target;
}

ScriptAttachments FFmpegX::scriptAttachments()
{
    ScriptAttachments files;
    files.audioReplaceFound = isFile(AVS.AVSAudioReplaceFileName);
    files.insertImageFound = isFile(AVS.AVSInsertImageFileName);
    files.logoImageFound = isFile(AVS.AVSLogoImageFileName);
    if (!isFile(AVS.AVSVSFilterPath))
        return files;
    files.subtitlePlugin = AVS.AVSVSFilterPath;
    const auto textSub = [&files](const QString &file) {
        if (!file.isEmpty())
            files.subtitleCalls << u"TextSub("_s + ScriptQuoted(file) + u')';
    };

    if (AVS.AVSEnableSubtitle) {
        QString own = subtitle::CheckSubtitle(m_fileName, Subtitle.SubtitleSuffixSupported);
        if (own.isEmpty())
            own = withoutSuffix(m_fileName) + u".sub"_s;
        if (isFile(own)) {
            const bool picture = own.endsWith(u".sub"_s, Qt::CaseInsensitive);
            if (AVS.AVSEnableSubtitleFormat && !picture) {
                m_tempFiles[kUserSubtitleSlot] = m_tempBase + u"1.ssa"_s;
                own = convertForScript(own, m_tempFiles[kUserSubtitleSlot]);
            }
            textSub(own);
        }
    }
    const QString overall = AVS.AVSOverallSubtitle;
    if (isFile(overall)) {
        const QString suffix = QFileInfo(overall).suffix().toLower();
        if (suffix == u"sub"_s) {
            files.subtitleCalls << u"VobSub("_s + ScriptQuoted(overall) + u')';
        } else if (subtitle::SubtitleFormatId(suffix) >= 0) {
            if (AVS.AVSEnableSubtitleFormat) {
                m_tempFiles[kOverallSubtitleSlot] = m_tempBase + u"2.ssa"_s;
                textSub(convertForScript(overall, m_tempFiles[kOverallSubtitleSlot]));
            } else {
                textSub(overall);
            }
        }
    }
    const bool logo = AVS.AVSSubtitleEnableLogo && !AVS.AVSSubtitleStringLogo.isEmpty();
    const bool banner = AVS.AVSSubtitleEnableBanner && !AVS.AVSSubtitleStringBanner.isEmpty();
    if (logo || banner) {
        m_tempFiles[kOverlaySlot] = m_tempBase + u"3.ssa"_s;
        WriteAvsSubtitleFile(m_tempFiles[kOverlaySlot]);
        textSub(m_tempFiles[kOverlaySlot]);
    }
    return files;
}

QString FFmpegX::ComposeScript(const QString &FileInfo, const QString &ScriptPath, int OutW, int OutH)
{
    if (m_tempBase.isEmpty() || !QFileInfo::exists(m_tempBase))
        m_tempBase = util::CreateTempFile(util::GetWindowsTempDirectory(), u"qbx"_s);
    JobSettings job = Settings();
    job.FileInfo = FileInfo;
    const QString text = ComposeAviSynthScript(job, scriptAttachments(), OutW, OutH);
    if (ScriptPath == m_tempBase + u".avs"_s)
        m_tempFiles[kScriptSlot] = ScriptPath;
    if (!util::WriteText(text, ScriptPath, false))
        return {};
    if (Job.TestMode && util::DirExists(m_outputDir)) {
        const QString copy = QDir(m_outputDir).filePath(QFileInfo(ScriptPath).fileName());
        if (QFileInfo(copy) != QFileInfo(ScriptPath)) {
            QFile::remove(copy);
            QFile::copy(ScriptPath, copy);
        }
    }
    return text;
}

} // namespace qb::engine
