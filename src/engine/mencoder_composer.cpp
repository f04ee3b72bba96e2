// The second encoder's command: the rate, subtitle, scale and resampling texts, the row's texts
// with them filled in, then the join around the input.
#include "engine/mencoder_composer.h"

#include "engine/command_line.h"
#include "engine/mencoder_dialect.h"

#include <QFileInfo>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace qb::engine {

namespace {

// What differs between the generations beyond the rows.
struct MEncoderSpellings
{
    bool rateTolerance; // the size-limited rate carries its " -bt " term (which splits the options)
    const char16_t *passLogFile; // %1: the job's temporary base; "" to leave it to the tool
    int defaultAudioBitRate; // what "{R}" stands for while AudioBitRate is not set
    int fewestThreads; // what "{N}" stands for at least
    const char16_t *xvidWithoutRate; // the xvid family's rate when the job names none
};

constexpr MEncoderSpellings kLegacy {true, u"", 0, 0, u""};
// Today's encoders refuse a bit rate of 0 and a thread count of 0, xvid wants some rate control,
// and a tolerance term would end the option list early.
constexpr MEncoderSpellings kToday {false, u" -passlogfile %1", 128, 1, u"fixed_quant=4:"};

QString fixed(const char16_t *text)
{
    return text ? QString::fromUtf16(text) : QString();
}

QString number(double value)
{
    return QString::number(value, 'g', 12);
}

int whole(double value)
{
    return int(std::floor(value));
}

class Composer
{
public:
    Composer(const JobSettings &job, const ComposeInput &input)
        : job(job)
        , in(input)
        , spell(input.generation == ToolGeneration::Legacy ? kLegacy : kToday)
        , row(MEncoderRowOf(job.FileOutput.ForceFormat, input.generation))
        , format(job.FileOutput.ForceFormat)
    { }

    Composition compose();

private:
    QString scaleText() const;
    QString rateOpts() const;
    QString subtitleOpts() const;
    QString expand(const char16_t *text) const;
    QString inputText() const;

    const JobSettings &job;
    const ComposeInput &in;
    const MEncoderSpellings &spell;
    const MEncoderRow &row;
    const QString format;
    int outW = 0;
    int outH = 0;
    bool sizeForced = false;
};

QString Composer::scaleText() const
{
    const double shape = job.Video.VideoHeight > 0 ? double(job.Video.VideoWidth) / job.Video.VideoHeight : 0;
    switch (job.Video.PadBorder) {
    case 1:
        return u"scale=%1:-3,expand=%1:%2:::1"_s.arg(outW).arg(shape > 0 ? whole(outW / shape) : outH);
    case 2:
        return u"scale=-3:%1,expand=%2:%1:::1"_s.arg(outH).arg(shape > 0 ? whole(outH * shape) : outW);
    default:
        return u"scale=%1:%2"_s.arg(outW).arg(outH);
    }
}

QString Composer::rateOpts() const
{
    const bool family = row.family != RateFamily::Lavc;
    const int vbr = job.Video.VideoVBR;
    if (job.Job.LimitFileSize < 1) {
        if (vbr < 1 && job.Video.VideoBitRate > 0)
            return family ? u"bitrate=%1:"_s.arg(job.Video.VideoBitRate)
                          : u":vbitrate=%1"_s.arg(job.Video.VideoBitRate);
        if (vbr < 1)
            return row.family == RateFamily::X ? fixed(spell.xvidWithoutRate) : QString();
        switch (row.family) {
        case RateFamily::H:
            return u"crf=%1:"_s.arg(vbr);
        case RateFamily::X:
            return u"fixed_quant=%1:max_bframes=0:"_s.arg(vbr);
        case RateFamily::Lavc:
            return u":vqscale=%1"_s.arg(vbr);
        }
    }
    double length = job.Job.TimeEndPoint - job.Job.TimeStartPoint;
    if (!(length > 0))
        length = job.Duration;
    if (!(length > 0))
        return {};
    const long long rate = std::llround(std::nearbyint(double(job.Job.LimitFileSize) * 8192 / length * 0.9));
    // The tolerance reads the audio's share lower than the rate.
    const QString tolerance
        = spell.rateTolerance ? u" -bt %1K"_s.arg(rate - job.Audio.AudioBitRate) : QString();
    return family ? u"bitrate=%1%2:"_s.arg(rate).arg(tolerance)
                  : u":vbitrate=%1%2"_s.arg(rate).arg(tolerance);
}

QString Composer::subtitleOpts() const
{
    if (job.FileName.endsWith(u':') || in.subtitleFile.isEmpty() || !job.Menc.MencEnableSubtitle)
        return {};
    const int align = job.Menc.MencSubtitleAlign;
    const int position = align >= 7 && align <= 9 ? 10 : align >= 4 && align <= 6 ? 45 : 90;
    return u" -sub "_s + QuoteName(in.subtitleFile) + u" -font "_s
        + QuoteName(job.Menc.MencSubtitleFontFileName) + u" -subfont-text-scale "_s
        + QString::number(job.Menc.MencSubtitleFontSize) + u" -subfont-outline 1 -subfont-blur 2 -subpos "_s
        + QString::number(position) + u" -subdelay 0 -subcp CP936"_s;
}

QString Composer::expand(const char16_t *text) const
{
    QString out = fixed(text);
    if (out.isEmpty())
        return out;
    const bool scaled = !job.Video.VideoSize.isEmpty() || sizeForced;
    const QString vf = scaled && outW > 0 && outH > 0 ? u" -vf "_s + scaleText() + u",harddup"_s : QString();
    const QString fps = job.Video.FrameRate > 0 ? u" -ofps "_s + number(job.Video.FrameRate) : QString();
    const QString channels = job.Audio.AudioChannels > 0
        ? u" -channels "_s + QString::number(job.Audio.AudioChannels)
        : QString();
    const QString sampleRate = job.Audio.AudioSampleRate > 0
        ? u" -srate "_s + QString::number(job.Audio.AudioSampleRate)
        : QString();
    const int bitRate = job.Audio.AudioBitRate > 0 ? job.Audio.AudioBitRate : spell.defaultAudioBitRate;
    out.replace(u"{Rate}"_s, rateOpts());
    out.replace(u"{N}"_s, QString::number(std::max(job.Job.MaxThreads, spell.fewestThreads)));
    out.replace(u"{pass}"_s, in.pass >= 1 ? fixed(row.passKey) + QString::number(in.pass) : QString());
    out.replace(u"{R}"_s, QString::number(bitRate));
    out.replace(u"{S25}"_s, vf + u" -ofps 25"_s);
    out.replace(u"{S}"_s, vf + fps);
    out.replace(u"{C}"_s, channels + sampleRate);
    out.replace(u"{CH}"_s, channels);
    out.replace(u"{name}"_s, format);
    return out;
}

QString Composer::inputText() const
{
    if (job.FileName.endsWith(u':'))
        return u" -dvd-device "_s + QuoteName(job.FileName) + u"/ dvd://1"_s;
    QStringList entries;
    if (!job.AVS.AVSEnabled && job.FileInfo.contains(u'|'))
        entries = job.FileInfo.split(u'|', Qt::SkipEmptyParts);
    else
        entries = {in.inputName};
    QString text;
    for (const QString &entry : entries) {
        text += entry.endsWith(u':') ? u" -dvd-device "_s + entry.toLower() + u"/ dvd://1"_s
                                     : u' ' + QuoteName(entry);
    }
    return text;
}

Composition Composer::compose()
{
    Composition result;
    if (row.lacking && in.generation == ToolGeneration::Today) {
        const QString tool = (job.CoreState.CoreName + u' ' + job.CoreState.CoreVersion).trimmed();
        result.refusal = u"%1 cannot make the format \"%2\": %3; choose the FFmpeg tool."_s.arg(
            tool.isEmpty() ? u"MEncoder"_s : tool, format, fixed(row.lacking));
        return result;
    }
    outW = in.target.width();
    outH = in.target.height();
    ApplySizeRule(row.sizeRule, outW, outH);
    sizeForced = outW != in.target.width() || outH != in.target.height();
    result.target = QSize(outW, outH);

    const QString video
        = job.Video.DisableVideo ? u" -ovc frameno"_s : expand(row.videoOpts) + expand(row.scaleOpts);
    const QString audio
        = job.Audio.DisableAudio ? u" -nosound"_s : expand(row.audioOpts) + expand(row.resampleOpts);
    const QString subtitles = job.Subtitle.DisableSubtitle ? QString() : subtitleOpts();
    const double length = job.Job.TimeEndPoint - job.Job.TimeStartPoint;
    const QString seek = length > 0
        ? u" -ss "_s + number(job.Job.TimeStartPoint) + u" -endpos "_s + number(length)
        : QString();
    QString command
        = QuoteName(job.Core) + inputText() + video + audio + subtitles + expand(row.containerOpts);
    if (job.Video.Deinterlace)
        command += u" -vf-add yadif"_s;
    command += seek;
    if (in.pass >= 1 && *spell.passLogFile && !job.TempBase.isEmpty())
        command += fixed(spell.passLogFile).arg(QuoteName(job.TempBase + u".log"_s));
    command += u" -o "_s + QuoteName(in.outputFileName);
    if (!job.Job.AdditionalScripts.isEmpty())
        command += u' ' + job.Job.AdditionalScripts;
    result.command = command;
    return result;
}

} // namespace

QString MEncoderOutputExtension(const JobSettings &job, ToolGeneration generation)
{
    const MEncoderRow &row = MEncoderRowOf(job.FileOutput.ForceFormat, generation);
    return OutputExtension(job, row.extension, row.driveExtension);
}

Composition ComposeMEncoderCommand(const JobSettings &job, const ComposeInput &input)
{
    return Composer(job, input).compose();
}

} // namespace qb::engine
