// The job options as a table: each names what it needs and what it sets.
#include "cli/job_options.h"

#include "engine/ffmpegx.h"
#include "engine/property_bag.h"

#include <QFileInfo>
#include <QRegularExpression>

#include <functional>

using namespace Qt::StringLiterals;

namespace qb::cli {

namespace {

using engine::FFmpegX;

// Applies a value; returns why it was refused, or "".
using Apply = std::function<QString(FFmpegX &, const QString &)>;

struct Option
{
    const char *name;
    const char *value; // the value's name in the usage text; nullptr for a switch
    const char *help;
    Apply apply;
};

QString wholeNumber(const QString &text, int &out)
{
    bool ok = false;
    out = text.toInt(&ok);
    return ok && out >= 0 ? QString() : text + u" is not a whole number of 0 or more"_s;
}

// Seconds as a number or as a clock text ("1:05", "00:01:05.5").
QString seconds(const QString &text, double &out)
{
    bool ok = false;
    out = text.toDouble(&ok);
    if (ok && out >= 0)
        return {};
    static const QRegularExpression clock(u"^\\d+(:\\d{1,2}){1,2}([.,]\\d+)?$"_s);
    if (!clock.match(text).hasMatch())
        return text + u" is neither seconds nor a time like 1:05 or 00:01:05.5"_s;
    // The last field is seconds, with its fraction; each one before it counts sixty times more.
    out = 0;
    for (const QString &field : QString(text).replace(u',', u'.').split(u':'))
        out = out * 60 + field.toDouble();
    return {};
}

Apply number(int &(*field)(FFmpegX &))
{
    return [field](FFmpegX &e, const QString &v) { return wholeNumber(v, field(e)); };
}

QString existingFile(const QString &path)
{
    return QFileInfo(path).isFile() ? QString() : path + u": no such file"_s;
}

QString setPropertyOption(FFmpegX &engine, const QString &assignment)
{
    const qsizetype equals = assignment.indexOf(u'=');
    if (equals <= 0)
        return u"--set takes PROPERTY=VALUE, not "_s + assignment;
    const QString name = assignment.left(equals);
    const QString value = assignment.mid(equals + 1);
    QVariantMap current;
    engine.WriteProperties(current);
    if (!current.contains(name))
        return name + u" is no property of a media job"_s;
    const QMetaType type = current.value(name).metaType();
    if (!engine::ConvertForProperty(value, type).isValid())
        return name + u" takes a value of type "_s + QString::fromLatin1(type.name()) + u", not "_s + value;
    engine.ReadProperties(QVariantMap {{name, value}});
    return {};
}

QString crop(FFmpegX &e, const QString &value)
{
    if (value == u"auto"_s) {
        e.Video.VideoAutoCrop = true;
        return {};
    }
    const QStringList parts = value.split(u',');
    int sides[4] = {};
    if (parts.size() != 4)
        return u"--crop takes TOP,BOTTOM,LEFT,RIGHT or auto, not "_s + value;
    for (int i = 0; i < 4; ++i) {
        if (const QString problem = wholeNumber(parts.at(i).trimmed(), sides[i]); !problem.isEmpty())
            return problem;
    }
    e.Video.VideoCropTop = sides[0];
    e.Video.VideoCropBottom = sides[1];
    e.Video.VideoCropLeft = sides[2];
    e.Video.VideoCropRight = sides[3];
    // The script path crops left, top and then right and bottom counted from the far edges.
    e.AVS.AVSScreenCrop = u"%1,%2,-%3,-%4"_s.arg(sides[2]).arg(sides[0]).arg(sides[3]).arg(sides[1]);
    return {};
}

// Both paths are set where the job has two: the filter chain's and the script's.
const Option kOptions[] = {
    {"--format", "NAME", "the output format (a row of the format table)",
        [](FFmpegX &e, const QString &v) {
            e.FileOutput.ForceFormat = v;
            return QString();
        }},
    {"--output-dir", "DIR", "where outputs go (default: beside the source)",
        [](FFmpegX &e, const QString &v) {
            if (!QFileInfo(v).isDir())
                return v + u": no such folder"_s;
            e.setOutputDir(QFileInfo(v).absoluteFilePath());
            return QString();
        }},
    {"--size", "WxH|N%", "the picture size; a side of 0 keeps the shape",
        [](FFmpegX &e, const QString &v) {
            static const QRegularExpression shape(u"^(\\d+%|\\d*x\\d*)$"_s);
            if (!shape.match(v).hasMatch())
                return u"--size takes WxH, Wx, xH or N%, not "_s + v;
            e.Video.VideoSize = v;
            return QString();
        }},
    {"--vbr", "N", "quality instead of a bit rate",
        number([](FFmpegX &e) -> int & { return e.Video.VideoVBR; })},
    {"--bitrate", "K", "video bit rate in kbit/s",
        number([](FFmpegX &e) -> int & { return e.Video.VideoBitRate; })},
    {"--audio-bitrate", "K", "audio bit rate in kbit/s",
        number([](FFmpegX &e) -> int & { return e.Audio.AudioBitRate; })},
    {"--start", "S", "start of the time window (seconds or h:mm:ss)",
        [](FFmpegX &e, const QString &v) { return seconds(v, e.Job.TimeStartPoint); }},
    {"--end", "S", "end of the time window",
        [](FFmpegX &e, const QString &v) { return seconds(v, e.Job.TimeEndPoint); }},
    {"--limit-mb", "N", "the output's size limit in MB",
        number([](FFmpegX &e) -> int & { return e.Job.LimitFileSize; })},
    {"--twopass", nullptr, "encode in two passes",
        [](FFmpegX &e, const QString &) {
            e.Job.Twopass = true;
            return QString();
        }},
    {"--subtitle", "FILE", "burn in this subtitle file",
        [](FFmpegX &e, const QString &v) {
            const QString file = QFileInfo(v).absoluteFilePath();
            e.AVFilterVideoSubtitle.AVFilterVideoSubtitleEnabled = true;
            e.AVFilterVideoSubtitle.AVFilterVideoSubtitleFileName = file;
            e.AVS.AVSOverallSubtitle = file;
            return existingFile(v);
        }},
    {"--text", "TEXT", "burn in a text",
        [](FFmpegX &e, const QString &v) {
            e.ImageWatermark.ImageWatermarkTextEnabled = true;
            e.ImageWatermark.ImageWatermarkTextString = v;
            e.AVFilter.AVFilterTextEnabled = true;
            e.AVFilter.AVFilterTextString = v;
            e.AVS.AVSSubtitleEnableLogo = true;
            e.AVS.AVSSubtitleStringLogo = v;
            return QString();
        }},
    {"--logo", "IMAGE", "burn in a picture",
        [](FFmpegX &e, const QString &v) {
            const QString file = QFileInfo(v).absoluteFilePath();
            e.ImageWatermark.ImageWatermarkImageEnabled = true;
            e.ImageWatermark.ImageWatermarkImageFile = file;
            e.AVFilter.AVFilterImageEnabled = true;
            e.AVFilter.AVFilterImageFile = file;
            e.AVS.AVSLogoImage = true;
            e.AVS.AVSLogoImageFileName = file;
            return existingFile(v);
        }},
    {"--crop", "T,B,L,R|auto", "cut the borders, or find the black ones", crop},
    {"--deinterlace", nullptr, "deinterlace the picture",
        [](FFmpegX &e, const QString &) {
            e.Video.Deinterlace = true;
            return QString();
        }},
    {"--volume", "N", "audio volume in percent",
        number([](FFmpegX &e) -> int & { return e.Audio.AudioVolume; })},
    {"--set", "PROPERTY=VALUE", "any stored property of the job by its name", setPropertyOption},
};

} // namespace

JobOptions ApplyJobOptions(const QStringList &arguments, engine::FFmpegX &engine)
{
    JobOptions result;
    for (qsizetype i = 0; i < arguments.size(); ++i) {
        const QString &argument = arguments.at(i);
        const Option *found = nullptr;
        for (const Option &option : kOptions) {
            if (argument == QLatin1String(option.name))
                found = &option;
        }
        if (!found) {
            result.rest << argument;
            continue;
        }
        QString value;
        if (found->value) {
            if (i + 1 >= arguments.size()) {
                result.problem = argument + u" needs "_s + QLatin1String(found->value);
                return result;
            }
            value = arguments.at(++i);
        }
        if (const QString problem = found->apply(engine, value); !problem.isEmpty()) {
            result.problem = problem;
            return result;
        }
    }
    return result;
}

QString JobOptionsUsage()
{
    QString text;
    for (const Option &option : kOptions) {
        QString left = u"  "_s + QLatin1String(option.name);
        if (option.value)
            left += u' ' + QLatin1String(option.value);
        text += left.leftJustified(28) + u' ' + QLatin1String(option.help) + u'\n';
    }
    return text;
}

QString SetJobProperty(engine::FFmpegX &engine, const QString &assignment)
{
    return setPropertyOption(engine, assignment);
}

} // namespace qb::cli
