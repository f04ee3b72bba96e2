// quillbox media overlay | avs: the overlay document of a job's timed texts, and the frame-server
// script a job would run on.
#include "cli/media_overlay_command.h"
#include "cli/exit_status.h"

#include "cli/job_options.h"
#include "engine/ffmpegx.h"
#include "engine/overlay_settings.h"
#include "engine/target_size.h"

#include <QDateTime>
#include <QFile>
#include <QFileInfo>
#include <QRegularExpression>
#include <QStandardPaths>

using namespace Qt::StringLiterals;

namespace qb::cli {

namespace {

int usage(QTextStream &err, const QString &problem)
{
    err << "quillbox: " << problem << "\n"
        << MediaOverlayUsage().section(u"job options:"_s, 0, 0)
        << "(quillbox media avs alone lists the job options)\n";
    return kUsage;
}

bool takeValue(const QStringList &args, qsizetype &i, QString &value)
{
    if (i + 1 >= args.size() || args.at(i + 1).startsWith(u"--"_s))
        return false;
    value = args.at(++i);
    return true;
}

} // namespace

QString MediaOverlayUsage()
{
    return u"usage: quillbox media overlay OUT.ass|OUT.ssa [--title TEXT1 [TEXT2]] [--banner TEXT] [--logo "
           u"TEXT]\n"
           u"                              [--size WxH] [--from S --to S]\n"
           u"       quillbox media avs SRC... [job options] [-o OUT.avs] [--core PATH]\n"
           u"job options:\n"_s
        + JobOptionsUsage();
}

int RunOverlayCommand(const QStringList &args, QTextStream &out, QTextStream &err)
{
    QString target;
    engine::AVFilterVideoWatermarkFamily marks;
    QString size = u"384x288"_s;
    double from = 0;
    double to = 0;
    for (qsizetype i = 0; i < args.size(); ++i) {
        const QString &a = args.at(i);
        QString value;
        if (a == u"--title"_s) {
            if (!takeValue(args, i, marks.AVFilterVideoWatermarkTitleText1))
                return usage(err, u"--title needs a text"_s);
            takeValue(args, i, marks.AVFilterVideoWatermarkTitleText2);
            marks.AVFilterVideoWatermarkTitleEnabled = true;
        } else if (a == u"--banner"_s) {
            if (!takeValue(args, i, marks.AVFilterVideoWatermarkBannerText1))
                return usage(err, u"--banner needs a text"_s);
            marks.AVFilterVideoWatermarkBannerEnabled = true;
        } else if (a == u"--logo"_s) {
            if (!takeValue(args, i, marks.AVFilterVideoWatermarkMainLogoText1))
                return usage(err, u"--logo needs a text"_s);
            marks.AVFilterVideoWatermarkMainLogoEnabled = true;
        } else if (a == u"--size"_s || a == u"--from"_s || a == u"--to"_s) {
            if (!takeValue(args, i, value))
                return usage(err, a + u" needs a value"_s);
            bool ok = true;
            if (a == u"--size"_s)
                size = value;
            else
                (a == u"--from"_s ? from : to) = value.toDouble(&ok);
            if (!ok || (a != u"--size"_s && value.toDouble() < 0))
                return usage(err, a + u" takes seconds, not "_s + value);
        } else if (a.startsWith(u"--"_s)) {
            return usage(err, u"unknown option: "_s + a);
        } else if (target.isEmpty()) {
            target = a;
        } else {
            return usage(err, u"one output only: "_s + a);
        }
    }
    static const QRegularExpression shape(u"^(\\d+)x(\\d+)$"_s);
    const QRegularExpressionMatch picture = shape.match(size);
    if (!picture.hasMatch() || picture.captured(1).toInt() < 1 || picture.captured(2).toInt() < 1)
        return usage(err, u"--size takes WxH, not "_s + size);
    const QString suffix = QFileInfo(target).suffix().toLower();
    if (suffix != u"ass"_s && suffix != u"ssa"_s)
        return usage(err,
            target.isEmpty() ? u"overlay needs an output file"_s
                             : target + u": the overlay is written as .ass or .ssa"_s);
    if (!marks.AVFilterVideoWatermarkTitleEnabled && !marks.AVFilterVideoWatermarkBannerEnabled
        && !marks.AVFilterVideoWatermarkMainLogoEnabled)
        return usage(err, u"nothing to draw: give --title, --banner or --logo"_s);
    if (to < from || (to == from && to != 0))
        return usage(err, u"the end (%1 s) must come after the start (%2 s)"_s.arg(to).arg(from));
    marks.AVFilterVideoWatermarkTitleStartPoint = marks.AVFilterVideoWatermarkBannerStartPoint
        = marks.AVFilterVideoWatermarkMainLogoStartPoint = from;
    marks.AVFilterVideoWatermarkTitleEndPoint = marks.AVFilterVideoWatermarkBannerEndPoint
        = marks.AVFilterVideoWatermarkMainLogoEndPoint = to;

    const subtitle::WatermarkOverlay overlay
        = engine::WatermarkOverlayOf(marks, target, QDateTime::currentDateTime());
    if (!subtitle::SaveWatermarkScript(
            target, overlay, picture.captured(1).toInt(), picture.captured(2).toInt(), suffix == u"ass"_s)) {
        err << "quillbox: " << target << ": cannot be written (check the folder and its permissions)\n";
        return kFailed;
    }
    out << target << "\n";
    return kOk;
}

int RunAvsCommand(const QStringList &arguments, QTextStream &out, QTextStream &err)
{
    engine::FFmpegX job;
    const JobOptions options = ApplyJobOptions(arguments, job);
    if (!options.problem.isEmpty())
        return usage(err, options.problem);
    QStringList sources;
    QString script;
    QString core = QStandardPaths::findExecutable(u"ffmpeg"_s);
    for (qsizetype i = 0; i < options.rest.size(); ++i) {
        const QString &a = options.rest.at(i);
        if (a == u"-o"_s || a == u"--core"_s) {
            if (i + 1 >= options.rest.size())
                return usage(err, a + u" needs a path"_s);
            (a == u"-o"_s ? script : core) = options.rest.at(++i);
        } else if (a.startsWith(u"-"_s)) {
            return usage(err, u"unknown option: "_s + a);
        } else if (!QFileInfo(a).isFile()) {
            err << "quillbox: " << a << ": no such file\n";
            return kFailed;
        } else {
            sources << QFileInfo(a).absoluteFilePath();
        }
    }
    if (sources.isEmpty()) {
        err << "quillbox: avs needs a source\n" << MediaOverlayUsage();
        return kUsage;
    }
    // With a tool at hand the source is probed, so that the size rules know its picture.
    if (QFileInfo(core).isFile())
        job.setCore(core);
    job.setFileName(sources.join(u'|'));
    job.AVS.AVSEnabled = true;
    const QSize size = engine::TargetSize(job.Video.VideoSize, job.Video.VideoWidth, job.Video.VideoHeight);
    const bool printOnly = script.isEmpty();
    if (printOnly)
        script = job.CreateTempFile(job.GetWindowsTempDirectory(), u"qbs"_s);
    const QString text = job.ComposeScript(sources.join(u'|'), script, size.width(), size.height());
    if (printOnly)
        QFile::remove(script);
    if (text.isEmpty()) {
        err << "quillbox: " << script << ": cannot be written (check the folder and its permissions)\n";
        return kFailed;
    }
    if (printOnly)
        out << QString(text).replace(u"\r\n"_s, u"\n"_s) << "\n";
    else
        out << script << "\n";
    return kOk;
}

} // namespace qb::cli
