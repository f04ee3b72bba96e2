// Subtitle conversion as the engine offers it: the converter's arguments filled from the
// engine's properties, its events raised as the engine's own.
#include "engine/ffmpegx.h"
#include "engine/status_codes.h"
#include "subtitle/convert_subtitle.h"
#include "util/number_text.h"

namespace qb::engine {

bool FFmpegX::ConvertSubtitle(const QStringList &src_SubFile, const QString &dst_SubFile, int s_ScreenWidth,
    int s_ScreenHeight, const QString &s_TitleString, const QString &s_BannerString, int s_FontOutline,
    int s_FontShadow, quint8 s_FontAlphaLevel, int s_EffectStyle, double s_EffectSpeed, qint32 s_ForeColor,
    qint32 s_EffectColor, qint32 s_ShadowColor, bool s_Sort, int s_SubtitleAlign, bool allowFinishedEvent,
    bool allowOverwrite, double s_TimeStartPoint, double s_TimeEndPoint, int s_InternalCodeConversion,
    int s_RaiseEventInterval, bool s_SplitMode, bool s_MergeSamePosition)
{
    subtitle::ConvertArguments job;
    job.sources = src_SubFile;
    job.destination = dst_SubFile;
    subtitle::WriterOptions &style = job.style;
    style.screenWidth = s_ScreenWidth;
    style.screenHeight = s_ScreenHeight;
    style.title = s_TitleString;
    style.banner = s_BannerString;
    if (Subtitle.SubtitleConvertFormated) {
        // Name, size, bold, italic, encoding; the flags as 1 or 0, the rest as they stand.
        const QStringList font = Subtitle.SubtitleConvertFont.split(QStringLiteral(", "));
        const auto flag = [](const QString &text) {
            return text.trimmed().compare(QStringLiteral("True"), Qt::CaseInsensitive) == 0 ? 1 : 0;
        };
        style.fontName = font.value(0);
        style.fontSize = int(util::Val(font.value(1)));
        style.fontBold = flag(font.value(2));
        style.fontItalic = flag(font.value(3));
        style.fontEncoding = int(util::Val(font.value(4)));
    }
    style.fontOutline = s_FontOutline;
    style.fontShadow = s_FontShadow;
    style.fontAlphaLevel = s_FontAlphaLevel;
    style.effectStyle = s_EffectStyle;
    style.effectSpeed = s_EffectSpeed;
    style.foreColor = s_ForeColor;
    style.effectColor = s_EffectColor;
    style.shadowColor = s_ShadowColor;
    style.align = s_SubtitleAlign;
    style.composer = MetaData.MetaData_Composer;
    job.timeOffset = Subtitle.SubtitleTimeOffset;
    job.sort = s_Sort;
    job.raiseFinished = allowFinishedEvent;
    job.overwrite = allowOverwrite;
    job.windowStart = s_TimeStartPoint;
    job.windowEnd = s_TimeEndPoint;
    job.watermark = Subtitle.SubtitleWatermarkText;
    job.watermarkStart = Subtitle.SubtitleWatermarkTextStartPoint;
    job.watermarkEnd = Subtitle.SubtitleWatermarkTextEndPoint;
    job.internalCodeConversion = s_InternalCodeConversion;
    job.raiseEventInterval = s_RaiseEventInterval;
    job.splitMode = s_SplitMode;
    job.mergeSamePosition = s_MergeSamePosition;
    job.encodeFormat = Subtitle.SubtitleEncodeFormat;
    job.raiseAllEvents = true;
    job.fileNameSuffix = FileOutput.FileNameSuffix;
    return ff_ConvertSubtitle(job);
}

bool FFmpegX::ff_ConvertSubtitle(const subtitle::ConvertArguments &arguments)
{
    // Handlers of the events below must not start another conversion meanwhile.
    if (m_converting)
        return false;
    m_converting = true;
    m_startTime = now();
    m_endTime.clear();
    subtitle::ConvertEvents events;
    events.status = [this](int code, const QString &text) {
        if (code == kProcessing)
            m_status = kProcessing;
        raiseStatus(code, text);
    };
    events.progress
        = [this](int value, int max, int fps, const QString &started, const QString &finished, bool last) {
              if (m_allowRaiseEvent)
                  Q_EMIT ProgressChange(value, max, fps, started, finished, last);
          };
    const subtitle::ConvertResult result = subtitle::ConvertSubtitleFiles(arguments, events);
    if (!result.finished.isEmpty())
        m_endTime = result.finished;
    m_converting = false;
    return result.written;
}

} // namespace qb::engine
