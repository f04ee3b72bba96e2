// Frames into pictures: one frame, or a contact sheet taken one frame per event-loop turn, so that
// cancel and suspend act between frames.
#include "engine/ffmpegx.h"
#include "engine/ffmpegx_sheet.h"
#include "engine/status_codes.h"
#include "imaging/contact_sheet.h"
#include "imaging/drawing_colors.h"
#include "imaging/image_encoder.h"
#include "imaging/target_size_rule.h"
#include "subtitle/overlay_script.h"
#include "util/file_names.h"
#include "util/number_text.h"
#include "util/size_format.h"
#include "util/time_format.h"

#include <QFileInfo>
#include <QRegularExpression>
#include <QTimer>

using namespace Qt::StringLiterals;

namespace qb::engine {

namespace {

constexpr int kSuspendPollMs = 1;

bool splitGrid(const QString &matrix, int &columns, int &rows)
{
    const QStringList parts = matrix.toLower().split(u'x');
    if (parts.size() != 2)
        return false;
    columns = parts.at(0).trimmed().toInt();
    rows = parts.at(1).trimmed().toInt();
    return columns > 0 && rows > 0;
}

// The codec and the rate of the first video and audio stream lines, joined with ", ".
QString codecAndRates(const QString &video, const QString &audio)
{
    QStringList fields;
    const auto take = [&fields](const QString &line, const QString &kind, const QString &rateUnit) {
        const qsizetype at = line.indexOf(kind);
        if (at < 0)
            return;
        const QString rest = line.mid(at + kind.size());
        static const QRegularExpression end(u"[(,]"_s);
        fields << rest.left(rest.indexOf(end));
        for (const QString &field : rest.split(u',')) {
            if (field.endsWith(rateUnit))
                fields << field;
        }
    };
    take(video.section(u"\r\n"_s, 0, 0), u"Video:"_s, u"fps"_s);
    take(audio.section(u"\r\n"_s, 0, 0), u"Audio:"_s, u"Hz"_s);
    fields.removeAll(QString());
    return fields.join(u", "_s);
}

} // namespace

void FFmpegX::Screenshot(const QString &OutputFile, const QString &SourceFile, const QString &Script,
    double TimePoint, const QString &Format, int Columns, int Rows, int Width, int Height, bool RaiseEvents,
    bool Overwrite, bool AllowScreenshotAVS)
{
    startSheet(OutputFile, SourceFile, Script, TimePoint, Format, Columns, Rows, Width, Height, RaiseEvents,
        Overwrite, AllowScreenshotAVS, {});
}

void FFmpegX::startSheet(const QString &output, const QString &sourceFile, const QString &script,
    double timePoint, const QString &format, int columns, int rows, int width, int height, bool raise,
    bool overwrite, bool allowScript, std::function<void()> done)
{
    m_cancelRequested = false;
    if (m_tempBase.isEmpty() || !QFileInfo::exists(m_tempBase))
        m_tempBase = util::CreateTempFile(util::GetWindowsTempDirectory(), u"qbx"_s);
    auto work = std::make_unique<SheetWork>();
    work->output = overwrite ? output : util::RenameExists(output);
    work->source = sourceFile.isEmpty() ? m_fileName : sourceFile;
    work->format = (format.isEmpty() ? ImageGrabber.ImageGrabberFormat : format).toLower();
    work->raise = raise;
    work->done = std::move(done);
    // The frame server does not exist here, so a script is never opened in place of the source.
    Q_UNUSED(allowScript);
    if (!util::FileExists(work->source) || (!script.isEmpty() && !util::FileExists(script))) {
        m_sheet = std::move(work);
        finishSheet(false);
        return;
    }
    m_processing = true;
    if (raise) {
        raiseStatus(kStarting, work->source);
        m_status = kProcessing;
        raiseStatus(kProcessing, work->source);
        raiseStatus(kCreateThumb, work->source);
    }
    if (columns == -1 || rows == -1) {
        int c = 3;
        int r = 5;
        splitGrid(ImageGrabber.ImageGrabberThumbMatrix, c, r);
        columns = columns == -1 ? c : columns;
        rows = rows == -1 ? r : rows;
    }
    const std::optional<MediaGraphFacts> facts = quickGraph(work->source);
    const int sourceW = facts ? facts->width : 0;
    const int sourceH = facts ? facts->height : 0;
    const double duration = facts ? facts->duration : 0;
    int frameW = sourceW;
    int frameH = sourceH;
    double scale = 1;
    imaging::ParseTargetSize(ImageGrabber.ImageGrabberSize, sourceW, sourceH, frameW, frameH, scale);
    if (width > 0)
        frameW = width;
    if (height > 0)
        frameH = height;

    imaging::SheetSettings &layout = work->layout;
    layout.columns = std::max(1, columns);
    layout.rows = std::max(1, rows);
    layout.frame = QSize(frameW, frameH);
    layout.edgeWidth = Image.ImageEdgeWidth;
    layout.borderIndentation = Image.ImageBorderIndentation;
    const subtitle::OverlayFont font = subtitle::ParseOverlayFont(ImageGrabber.ImageGrabberTextFont);
    layout.fontName = font.name;
    layout.fontSize = font.size;
    layout.foreColor = imaging::ColorTextToNumber(ImageGrabber.ImageGrabberForeColor);
    layout.backColor = imaging::ColorTextToNumber(ImageGrabber.ImageGrabberBackColor);
    layout.backStyle = ImageGrabber.ImageGrabberBackStyle;
    layout.comment = ImageGrabber.ImageGrabberCommentString;
    const int count = layout.columns * layout.rows;
    if (ImageGrabber.ImageGrabberShowFileInfo && count > 1) {
        layout.header << QFileInfo(work->source).fileName()
                      << util::ConvertFileSize(double(QFileInfo(work->source).size()), true) + u", "_s
                + QString::number(sourceW) + u'x' + QString::number(sourceH) + u", "_s
                + util::FormatTime(duration * 1000, false, {});
        if (ImageGrabber.ImageGrabberEnhancedFileInfo) {
            // A probe of its own, so that the job's source fields stay as they are.
            FFmpegX probe;
            probe.setAllowRaiseEvent(false);
            probe.setCore(m_core);
            probe.setFileName(work->source);
            const QString line = codecAndRates(probe.Video.VideoStreamInfo, probe.Audio.AudioStreamInfo);
            if (!line.isEmpty())
                layout.header << line;
        }
    }
    // A time past the end of a short source (a player's thumbnail at five seconds) takes its middle.
    if (timePoint >= 0 && duration > 0 && timePoint >= duration)
        timePoint = duration / 2;
    work->times = count == 1 ? QList<double> {timePoint >= 0 ? timePoint : duration / 10}
                             : imaging::SheetTimePoints(duration, count);
    if (count > 1 && ImageGrabber.ImageGrabberShowTimeString) {
        for (const double t : work->times)
            layout.frameTimes << util::FormatTime(t * 1000, false, {});
    }
    m_sheet = std::move(work);
    postSheetStep(0);
}

void FFmpegX::postSheetStep(int delayMs)
{
    SheetWork *work = m_sheet.get();
    QTimer::singleShot(delayMs, this, [this, work] {
        if (m_sheet.get() == work)
            sheetStep();
    });
}

void FFmpegX::sheetStep()
{
    SheetWork &work = *m_sheet;
    if (m_cancelRequested) {
        finishSheet(false);
        return;
    }
    if (m_status == kSuspended) {
        postSheetStep(kSuspendPollMs);
        return;
    }
    const qsizetype index = work.frames.size();
    work.frames << GetVideoFrame(work.source, work.times.at(index));
    if (work.raise)
        raiseProgress(int(index + 1), int(work.times.size()), 0, false);
    if (work.frames.size() < work.times.size()) {
        postSheetStep(0);
        return;
    }
    finishSheet(true);
}

void FFmpegX::finishSheet(bool framesTaken)
{
    std::unique_ptr<SheetWork> work = std::move(m_sheet);
    bool saved = false;
    if (framesTaken && std::any_of(work->frames.cbegin(), work->frames.cend(), [](const QImage &f) {
            return !f.isNull();
        })) {
        const QImage sheet = imaging::DrawContactSheet(work->frames, work->layout);
        imaging::EncodeSettings encode;
        encode.encoderFormat = work->format;
        encode.imageQuality = Image.ImageQuality;
        encode.tiffColorDepth = Image.TIFF_ColorDepth;
        encode.tiffCompression = Image.TIFF_Compression;
        saved = !sheet.isNull() && imaging::SaveImageToFile(sheet, work->output, encode);
    }
    if (work->raise) {
        if (saved)
            raiseStatus(kComplete, work->output);
        else
            raiseStatus(kError, StringContent.StringContent21);
    }
    m_processing = false;
    if (work->done)
        work->done();
}

} // namespace qb::engine
