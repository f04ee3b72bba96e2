// The encoder's command: each group of switches is built into its own text, then the groups are
// joined in a fixed order. Every spelling comes from the generation's tables.
#include "engine/ffmpeg_composer.h"

#include "engine/command_line.h"
#include "util/number_text.h"

#include <QFileInfo>
#include <QPoint>

#include <cmath>

using namespace Qt::StringLiterals;

namespace qb::engine {

namespace {

QString fixed(const char16_t *text)
{
    return text ? QString::fromUtf16(text) : QString();
}

// Whole numbers as the classic Round gives them: halves go to the even neighbour.
long long roundHalfEven(double value)
{
    return static_cast<long long>(std::nearbyint(value));
}

QString number(double value)
{
    return QString::number(value, 'g', 12);
}

bool holds(const QString &list, const QString &name)
{
    return (u'|' + list + u'|').contains(u'|' + name + u'|', Qt::CaseInsensitive);
}

bool sameName(const QString &a, const char16_t *b)
{
    return a.compare(QString::fromUtf16(b), Qt::CaseInsensitive) == 0;
}

// A colour text read as hexadecimal (blue in the high byte), written red first after prefix.
QString colourText(const QString &text, const QString &prefix)
{
    const quint32 value = quint32(util::Val(u"&H"_s + text));
    const auto hex
        = [](quint32 byte) { return QString::number(byte & 0xFF, 16).rightJustified(2, u'0').toUpper(); };
    return prefix + hex(value) + hex(value >> 8) + hex(value >> 16);
}

// A ratio as "#.####" writes it: at most four decimals, the point kept, no leading zero.
QString ratioText(double value)
{
    QString text = QString::number(value, 'f', 4);
    while (text.endsWith(u'0'))
        text.chop(1);
    if (text.startsWith(u"0."_s))
        text.remove(0, 1);
    return text;
}

int evenBelow(int value)
{
    return value % 2 != 0 ? value - 1 : value;
}

QString renamedCodec(const FFmpegSpellings &spell, const QString &codec)
{
    for (const auto &[from, to] : spell.codecRenames) {
        if (codec.compare(QString::fromUtf16(from), Qt::CaseInsensitive) == 0)
            return QString::fromUtf16(to);
    }
    return codec;
}

class Composer
{
public:
    Composer(const JobSettings &job, const ComposeInput &input)
        : job(job)
        , in(input)
        , spell(SpellingsOf(input.generation))
        , row(FormatRowOf(job.FileOutput.ForceFormat, input.generation))
        , format(job.FileOutput.ForceFormat)
        , outW(input.target.width())
        , outH(input.target.height())
    { }

    Composition compose();

private:
    void sizeAndShape();
    void quality();
    void rates();
    void formatRow();
    void afterRow();
    void threadsAndMetadata();
    void misc();
    void overlays();
    void filterChain();
    void aspect();
    QString options() const;
    QString extraTracks() const;
    QString outputInfo() const;
    QString expand(const char16_t *text) const;
    bool isX264() const { return sameName(format, u"h264") || sameName(job.Video.VideoCodec, u"libx264"); }

    const JobSettings &job;
    const ComposeInput &in;
    const FFmpegSpellings &spell;
    const FormatRow &row;
    const QString format;
    int outW;
    int outH;
    bool forceScale = false;

    QString SizeSwitch, VideoRateSwitch, AudioRateSwitch, FrameRateSwitch, SampleRateSwitch, ChannelSwitch;
    QString VideoCodecSwitch, AudioCodecSwitch, VideoExtra, AudioExtra, FormatSwitch, SubtitleSwitches;
    QString ThreadSwitch, MetaSwitches, MiscSwitches, FilterChain;
    QStringList ShapeChain, audioFilters, preItems;
    QString MovieA, MovieB, OverlayA, OverlayB;
    QStringList subtitleItems;
};

void Composer::sizeAndShape()
{
    ApplySizeRule(row.sizeRule, outW, outH);
    forceScale = row.sizeRule != SizeRule::Free && (outW != in.target.width() || outH != in.target.height());
    const bool rotated
        = job.AVS.AVSEnabled && (job.AVS.AVSVideoRotate == 90 || job.AVS.AVSVideoRotate == 270);
    if (!in.useFilterScale && outW >= 1 && outH >= 1)
        SizeSwitch = rotated ? u" -s %1x%2"_s.arg(outH).arg(outW) : u" -s %1x%2"_s.arg(outW).arg(outH);

    const int srcW = job.Video.VideoWidth;
    const int srcH = job.Video.VideoHeight;
    if (srcW < 1 || srcH < 1)
        return;
    int curW = srcW;
    int curH = srcH;
    const VideoFamily &v = job.Video;
    if (v.VideoAutoCrop) {
        const QStringList parts = QString(in.files.autoCrop).remove(u"crop="_s).split(u':');
        if (in.files.autoCrop.startsWith(u"crop="_s) && parts.size() == 4 && parts[0].toInt() > 0
            && parts[1].toInt() > 0) {
            curW = parts[0].toInt();
            curH = parts[1].toInt();
            ShapeChain << in.files.autoCrop;
        }
    } else if (v.VideoCropTop + v.VideoCropBottom + v.VideoCropLeft + v.VideoCropRight > 0) {
        curW = srcW - v.VideoCropLeft - v.VideoCropRight;
        curH = srcH - v.VideoCropTop - v.VideoCropBottom;
        ShapeChain << u"crop=%1:%2:%3:%4"_s.arg(curW).arg(curH).arg(v.VideoCropLeft).arg(v.VideoCropTop);
    }
    if (v.VideoPadTop + v.VideoPadBottom + v.VideoPadLeft + v.VideoPadRight > 0) {
        curW += v.VideoPadLeft + v.VideoPadRight;
        curH += v.VideoPadTop + v.VideoPadBottom;
        ShapeChain << u"pad=%1:%2:%3:%4:%5"_s.arg(curW)
                          .arg(curH)
                          .arg(v.VideoPadLeft)
                          .arg(v.VideoPadTop)
                          .arg(colourText(v.VideoPadColor, u"0x"_s));
    }
    if (v.PadBorder >= 1 && v.PadBorder <= 4 && curW >= 1 && curH >= 1 && outW >= 1 && outH >= 1) {
        // The shapes compared and the sides worked out in whole numbers, so that 4:3 of 360 is 480
        // and not the 479 a rounded ratio would give.
        const qint64 cross = qint64(outW) * curH - qint64(curW) * outH; // B above A when positive
        const int dw = evenBelow(int(qint64(outW) * curH / outH));
        const int dh = evenBelow(int(qint64(curW) * outH / outW));
        enum Fit { PadHeight, CropHeight, PadWidth, CropWidth };
        static constexpr Fit kFits[4][2] = {// [PadBorder - 1][B above A]
            {PadHeight, CropHeight}, {CropWidth, PadWidth}, {PadHeight, PadWidth}, {CropWidth, CropHeight}};
        if (cross != 0) {
            switch (kFits[v.PadBorder - 1][cross > 0 ? 1 : 0]) {
            case PadHeight:
                if (dh >= 1) {
                    ShapeChain << u"pad=%1:%2:0:%3"_s.arg(curW).arg(dh).arg(std::abs(dh - curH) / 2);
                    curH = dh;
                }
                break;
            case CropHeight:
                if (dh >= 1) {
                    ShapeChain << u"crop=%1:%2:0:%3"_s.arg(curW).arg(dh).arg(std::abs(curH - dh) / 2);
                    curH = dh;
                }
                break;
            case PadWidth:
                if (dw >= 1) {
                    ShapeChain << u"pad=%1:%2:%3:0"_s.arg(dw).arg(curH).arg(std::abs(dw - curW) / 2);
                    curW = dw;
                }
                break;
            case CropWidth:
                if (dw >= 1) {
                    ShapeChain << u"crop=%1:%2:%3:0"_s.arg(dw).arg(curH).arg(std::abs(curW - dw) / 2);
                    curW = dw;
                }
                break;
            }
        }
    }
    const bool differs = outW != srcW || outH != srcH;
    if (in.useFilterScale && outW >= 1 && outH >= 1 && (differs || rotated || forceScale))
        ShapeChain << (rotated ? u"scale=%1:%2"_s.arg(outH).arg(outW) : u"scale=%1:%2"_s.arg(outW).arg(outH));
}

void Composer::quality()
{
    const VideoFamily &v = job.Video;
    if (job.Job.LimitFileSize < 1) {
        if (v.VideoVBR < 1 && !(v.VideoBitRate > 0))
            VideoRateSwitch = fixed(spell.sameQuality);
        else if (v.VideoVBR < 1)
            VideoRateSwitch = u" -b:v %1K -bt %1K"_s.arg(v.VideoBitRate);
        else if (sameName(format, u"webm") || sameName(v.VideoCodec, u"libvpx"))
            VideoRateSwitch = u" -crf "_s + QString::number(v.VideoVBR);
        else if (isX264() && job.x264.x264QualityMode == 1)
            VideoRateSwitch = fixed(spell.x264ConstantQp) + QString::number(v.VideoVBR);
        else if (isX264())
            VideoRateSwitch = u" -crf "_s + QString::number(v.VideoVBR);
        else
            VideoRateSwitch = u" -q:v "_s + QString::number(v.VideoVBR);
        if (job.Audio.AudioQuality > 0)
            AudioRateSwitch = u" -aq "_s + QString::number(job.Audio.AudioQuality);
        else if (job.Audio.AudioBitRate > 0)
            AudioRateSwitch = u" -ab %1K"_s.arg(job.Audio.AudioBitRate);
        return;
    }
    // The budget in kilobits over the window (the whole source without one): nine tenths to the
    // picture, one to the sound.
    double length = job.Job.TimeEndPoint - job.Job.TimeStartPoint;
    if (!(length > 0))
        length = job.Duration;
    if (!(length > 0))
        return;
    const double kilobits = double(job.Job.LimitFileSize) * 8192;
    const long long video = roundHalfEven(kilobits / length * 0.9);
    VideoRateSwitch = u" -b:v %1K -bt %1K"_s.arg(video);
    AudioRateSwitch
        = fixed(spell.sizeLimitedAudio) + QString::number(roundHalfEven(kilobits / length * 0.1)) + u'K';
}

void Composer::rates()
{
    if (!(job.Video.FrameRate > 0))
        FrameRateSwitch = fixed(spell.noFrameRate);
    else
        FrameRateSwitch = u" -r "_s + number(job.Video.FrameRate);
    if (job.Audio.AudioSampleRate > 0)
        SampleRateSwitch = u" -ar "_s + QString::number(job.Audio.AudioSampleRate);
    if (job.Audio.AudioChannels > 0)
        ChannelSwitch = u" -ac "_s + QString::number(job.Audio.AudioChannels);
}

QString Composer::expand(const char16_t *text) const
{
    QString out = fixed(text);
    out.replace(u"{Vq}"_s, VideoRateSwitch + FrameRateSwitch);
    out.replace(u"{Aq}"_s, AudioRateSwitch + SampleRateSwitch + ChannelSwitch);
    out.replace(u"{AR}"_s, AudioRateSwitch);
    out.replace(u"{SR}"_s, SampleRateSwitch);
    out.replace(u"{CH}"_s, ChannelSwitch);
    out.replace(u"{name}"_s, format);
    return out;
}

void Composer::formatRow()
{
    VideoExtra = expand(row.videoExtra);
    AudioExtra = expand(row.audioExtra);
    FormatSwitch = expand(row.formatSwitch);
    if (row.videoCodec)
        VideoCodecSwitch = fixed(row.videoCodec);
    if (row.audioCodec)
        AudioCodecSwitch = fixed(row.audioCodec);
    if (row.dropSize)
        SizeSwitch.clear();
    if (row.videoFilter)
        preItems << fixed(row.videoFilter);
}

void Composer::afterRow()
{
    const QString values[4] = {job.Subtitle.SubtitleCodec, job.Subtitle.SubtitleLanguage,
        job.Subtitle.SubtitleFourccTag, job.Subtitle.SubtitleBitstreamFilter};
    for (int i = 0; i < 4; ++i) {
        if (!values[i].isEmpty())
            SubtitleSwitches += fixed(spell.subtitleSwitches[size_t(i)]) + values[i];
    }
    if (!job.Video.VideoCodec.isEmpty())
        VideoCodecSwitch = u" -c:v "_s + renamedCodec(spell, job.Video.VideoCodec).toLower();
    if (!job.Audio.AudioCodec.isEmpty())
        AudioCodecSwitch = u" -c:a "_s + renamedCodec(spell, job.Audio.AudioCodec).toLower();
    if (!job.Video.VideoPixelformats.isEmpty())
        VideoCodecSwitch += u" -pix_fmt "_s + job.Video.VideoPixelformats.toLower();
}

void Composer::threadsAndMetadata()
{
    static constexpr const char16_t *kSingleThreaded[]
        = {u"flv", u"3gp", u"h263", u"wmv", u"wma", u"mjpeg", u"asf"};
    const bool off = std::any_of(std::begin(kSingleThreaded), std::end(kSingleThreaded),
                         [this](const char16_t *name) { return sameName(format, name); })
        || job.Job.MaxThreads < 2;
    if (!off && isX264())
        ThreadSwitch = u" -threads "_s + QString::number(job.Job.MaxThreads);

    const MetaDataFamily &m = job.MetaData;
    QString title = m.MetaData_Title;
    title.replace(
        u"%FileName%"_s, in.sourceInTempFolder ? QString() : QFileInfo(job.FileName).completeBaseName());
    const QString values[6] = {m.MetaData_Comment, title, m.MetaData_Author, m.MetaData_Copyright,
        m.MetaData_Composer, m.MetaData_Description};
    for (size_t i = 0; i < 6; ++i) {
        if (!values[i].isEmpty())
            MetaSwitches += u" -metadata "_s + fixed(spell.metadataKeys[i]) + u'=' + QuoteName(values[i]);
    }
}

void Composer::misc()
{
    MiscSwitches += ThreadSwitch;
    if (job.Job.TimeStamp)
        MiscSwitches += fixed(spell.timestamp).arg(in.now.toString(fixed(spell.timestampFormat)));
    if (job.Video.Deinterlace) {
        MiscSwitches += fixed(spell.deinterlaceSwitch);
        if (*spell.deinterlaceFilter)
            preItems << fixed(spell.deinterlaceFilter);
    }
    if (job.Audio.AudioVolume != 0) {
        const double level = job.Audio.AudioVolume / 100.0 * spell.volumeScale;
        // The older switch takes a whole number; the filter takes the factor.
        const QString value = spell.volumeIsFilter ? number(level) : QString::number(int(std::floor(level)));
        if (spell.volumeIsFilter)
            audioFilters << fixed(spell.volume).arg(value);
        else
            MiscSwitches += fixed(spell.volume).arg(value);
    }
    if (job.Job.CopyTimeStamps)
        MiscSwitches += u" -copyts"_s;
    if (job.Job.Strict >= 1 && job.Job.Strict <= 5)
        MiscSwitches += fixed(spell.strict[size_t(job.Job.Strict - 1)]);
    static constexpr const char16_t *kProfiles[]
        = {u"baseline", u"main", u"high", u"high10", u"high422", u"high444"};
    static constexpr const char16_t *kPresets[] = {u"ultrafast", u"superfast", u"veryfast", u"faster",
        u"fast", u"medium", u"slow", u"slower", u"veryslow", u"placebo"};
    static constexpr const char16_t *kTunes[]
        = {u"film", u"animation", u"grain", u"stillimage", u"psnr", u"ssim", u"fastdecode", u"zerolatency"};
    const x264Family &x = job.x264;
    if (x.x264Profile >= 1 && x.x264Profile <= 6) {
        MiscSwitches += fixed(spell.x264Profile) + fixed(kProfiles[x.x264Profile - 1]);
        if (x.x264Profile >= 3)
            MiscSwitches += u" -8x8dct 1"_s;
    }
    if (x.x264Preset >= 1 && x.x264Preset <= 10)
        MiscSwitches += u" -preset "_s + fixed(kPresets[x.x264Preset - 1]);
    if (x.x264Tune >= 1 && x.x264Tune <= 8)
        MiscSwitches += u" -tune "_s + fixed(kTunes[x.x264Tune - 1]);
    if (x.x264Level > 0)
        MiscSwitches += u" -level "_s + number(x.x264Level);
    if (x.x264Refs > 0)
        MiscSwitches += u" -refs "_s + QString::number(x.x264Refs);

    const QString &all = job.Job.AdditionalScripts;
    const QString &first = job.Job.AdditionalPass1Scripts;
    const bool laterPass = !(in.pass == 1 && job.Job.Twopass);
    QString chosen;
    if (laterPass || !isX264())
        chosen = !all.isEmpty() || first.isEmpty() ? all : first;
    else
        chosen = !first.isEmpty() ? first : all;
    if (!chosen.isEmpty())
        MiscSwitches += u' ' + chosen;
}

void Composer::overlays()
{
    const QSize frame
        = outW >= 1 && outH >= 1 ? QSize(outW, outH) : QSize(job.Video.VideoWidth, job.Video.VideoHeight);
    const AVFilterFamily &f = job.AVFilter;
    if (!in.files.textPicture.isEmpty() && in.files.textSize.width() > 0 && in.files.textSize.height() > 0) {
        const QPoint at
            = KeypadPosition(f.AVFilterTextAlign, f.AVFilterTextPadding, frame, in.files.textSize);
        MovieA = u"movie="_s + in.files.textPicture + u" [wm1]"_s;
        OverlayA = u"[wm1] overlay=%1:%2"_s.arg(at.x()).arg(at.y());
    }
    if (!in.files.imagePicture.isEmpty() && in.files.imageSize.width() > 0
        && in.files.imageSize.height() > 0) {
        const QPoint at
            = KeypadPosition(f.AVFilterImageAlign, f.AVFilterImagePadding, frame, in.files.imageSize);
        MovieB = u"movie="_s + in.files.imagePicture + u" [wm2]"_s;
        OverlayB = u"[wm2] overlay=%1:%2"_s.arg(at.x()).arg(at.y());
    }
}

void Composer::filterChain()
{
    const AVFilterFamily &f = job.AVFilter;
    const QString &filters = job.CoreState.CoreFilters;
    const int w = job.Video.VideoWidth;
    const int h = job.Video.VideoHeight;
    QStringList items = preItems;
    if (f.AVFilterVideoCropFrom3D == 1 || f.AVFilterVideoCropFrom3D == 2) {
        const int x = f.AVFilterVideoCropFrom3D == 1 ? 0 : w / 2;
        items << u"crop=%1:%2:%3:0,scale=%4:%2,setdar="_s.arg(w / 2).arg(h).arg(x).arg(w)
                + fixed(spell.ratio).arg(w).arg(h);
    }
    if (f.AVFilterRectBlurEnabled) {
        int x = f.AVFilterRectBlurX, y = f.AVFilterRectBlurY, bw = f.AVFilterRectBlurW,
            bh = f.AVFilterRectBlurH;
        const int m = spell.delogoMargin;
        if (bw + x > 0 && bh + y > 0 && bw > 0 && bh > 0 && x < w && y < h) {
            if (x < m) {
                bw -= m - x;
                x = m;
            }
            if (y < m) {
                bh -= m - y;
                y = m;
            }
            bw = std::min(bw, w - m - x);
            bh = std::min(bh, h - m - y);
            const QString spelling = holds(filters, u"delogo"_s) ? fixed(spell.delogo)
                : holds(filters, u"mp"_s)                        ? fixed(spell.mpDelogo)
                                                                 : QString();
            if (!spelling.isEmpty() && bw > 0 && bh > 0)
                items << spelling.arg(x).arg(y).arg(bw).arg(bh);
        }
    }
    items += ShapeChain;
    if (f.AVFilterVideoAspect > 0)
        items << u"setdar="_s + number(f.AVFilterVideoAspect);
    if (f.AVFilterVideoRotate == 90)
        items << u"transpose=1"_s;
    else if (f.AVFilterVideoRotate == 180)
        items << u"hflip, vflip"_s;
    else if (f.AVFilterVideoRotate == 270)
        items << u"transpose=2"_s;
    if (f.AVFilterVideoHFlip)
        items << u"hflip"_s;
    if (f.AVFilterVideoVFlip)
        items << u"vflip"_s;
    if (holds(filters, u"unsharp"_s) && f.AVFilterVideoSharp == 1)
        items << u"unsharp=5:5:1:5:5:0"_s;
    else if (holds(filters, u"unsharp"_s) && f.AVFilterVideoSharp == 2)
        items << u"unsharp=5:5:-1:5:5:0"_s;
    if (holds(filters, u"hqdn3d"_s) && f.AVFilterVideoHqdn3d)
        items << u"hqdn3d=2:1:2"_s;
    if (holds(filters, u"mp"_s) && f.AVFilterVideoHarddup)
        items << u"mp=harddup"_s;

    QStringList after;
    if (holds(filters, u"ass"_s)) {
        for (const QString &file : {in.files.subtitle, in.files.overallSubtitle, in.files.watermark}) {
            if (!file.isEmpty())
                after << fixed(spell.ass).arg(file);
        }
    }

    QString text;
    if (!spell.labelledOverlays) {
        QStringList chain = items;
        for (const QString &overlay : {OverlayB, OverlayA}) {
            if (!overlay.isEmpty())
                chain << overlay;
        }
        chain += after;
        if (!chain.isEmpty())
            text = u"[in]"_s + chain.join(u',') + u"[out]"_s;
        if (!MovieB.isEmpty())
            text = MovieB + u',' + text;
        if (!MovieA.isEmpty())
            text = MovieA + u',' + text;
    } else if (MovieA.isEmpty() && MovieB.isEmpty()) {
        const QStringList chain = items + after;
        if (!chain.isEmpty())
            text = u"[in]"_s + chain.join(u',') + u"[out]"_s;
    } else {
        // Each overlay takes the running picture first and its picture second.
        QString graph = u"[in]"_s + (items.isEmpty() ? u"null"_s : items.join(u','));
        QString movies;
        int link = 0;
        for (const auto &[movie, overlay] : {std::pair(MovieB, OverlayB), std::pair(MovieA, OverlayA)}) {
            if (movie.isEmpty())
                continue;
            const QString label = overlay.left(overlay.indexOf(u']') + 1);
            movies += QString(movie).remove(u' ') + u';';
            const QString into = u"[v%1]"_s.arg(link++);
            graph += into + u';' + into + label + QString(overlay).mid(label.size()).trimmed();
        }
        if (!after.isEmpty())
            graph += u',' + after.join(u',');
        text = movies + graph + u"[out]"_s;
    }
    if (!text.isEmpty())
        FilterChain = u" -vf "_s + QuoteName(text);
}

void Composer::aspect()
{
    QString aspectText;
    if ((sameName(format, u"xvid") || sameName(format, u"svi")) && outW >= 1 && outH >= 1)
        aspectText += u" -aspect "_s + ratioText(double(outW) / outH);
    if (job.Video.VideoAspect != 0)
        aspectText += u" -aspect "_s + number(job.Video.VideoAspect);
    SizeSwitch = (in.useFilterScale ? QString() : SizeSwitch) + aspectText;
}

QString Composer::options() const
{
    QString text;
    const double length = job.Job.TimeEndPoint - job.Job.TimeStartPoint;
    const bool replacing = in.audioReplaceFound;
    if (replacing) {
        if (job.Job.TimeStartPoint > 0)
            text += u" -ss "_s + number(job.Job.TimeStartPoint);
        if (length > 0)
            text += u" -t "_s + number(length);
        text += u" -i "_s + QuoteName(job.Audio.AudioReplaceFileName) + fixed(spell.audioReplaceMaps);
    }
    text += job.Video.DisableVideo ? u" -vn"_s : VideoCodecSwitch + SizeSwitch + VideoExtra;
    const bool noAudio = job.Audio.DisableAudio || in.pass == 1;
    text += noAudio ? u" -an"_s : AudioCodecSwitch + AudioExtra;
    text += job.Subtitle.DisableSubtitle || in.pass == 1 ? u" -sn"_s : SubtitleSwitches;
    if (job.Job.Shortest)
        text += u" -shortest"_s;
    text += MetaSwitches + FilterChain + MiscSwitches;
    QStringList audio = audioFilters;
    if (job.Audio.AudioStreamDelay != 0 && *spell.delayedAudioFilter && !replacing)
        audio << fixed(spell.delayedAudioFilter);
    if (!noAudio && !audio.isEmpty())
        text += u" -af "_s + QuoteName(audio.join(u','));
    if (in.pass > 0) {
        text += u" -pass "_s + QString::number(in.pass);
        if (*spell.passLogFile && !job.TempBase.isEmpty())
            text += fixed(spell.passLogFile).arg(QuoteName(job.TempBase));
    }
    if (spell.extraTracksAsMaps && !replacing && job.Audio.AudioStreamDelay == 0)
        text += extraTracks();
    return text;
}

QString Composer::extraTracks() const
{
    struct Kind
    {
        bool multi;
        bool off;
    };
    const Kind kinds[3] = {
        {job.Video.MultiVideoTrackSupport && job.Video.VideoStreamCount > 1, job.Video.DisableVideo},
        {job.Audio.MultiAudioTrackSupport && job.Audio.AudioStreamCount > 1,
            job.Audio.DisableAudio || in.pass == 1},
        {job.Subtitle.MultiSubtitleTrackSupport && job.Subtitle.SubtitleStreamCount > 1,
            job.Subtitle.DisableSubtitle || in.pass == 1},
    };
    if (spell.extraTracksAsMaps) {
        // Once one stream is mapped, every stream wanted must be: all of a kind with several, the
        // first of the picture and the sound otherwise.
        if (!kinds[0].multi && !kinds[1].multi && !kinds[2].multi)
            return {};
        QString text;
        for (size_t i = 0; i < 3; ++i) {
            if (kinds[i].off || (i == 2 && !kinds[i].multi))
                continue;
            const QString stream = fixed(spell.extraTrackSwitches[i]);
            text += u" -map "_s + (kinds[i].multi ? stream + u'?' : stream + u":0?"_s);
        }
        return text;
    }
    const int counts[3]
        = {job.Video.VideoStreamCount, job.Audio.AudioStreamCount, job.Subtitle.SubtitleStreamCount};
    const bool support[3] = {job.Video.MultiVideoTrackSupport, job.Audio.MultiAudioTrackSupport,
        job.Subtitle.MultiSubtitleTrackSupport};
    QString text;
    for (size_t i = 0; i < 3; ++i) {
        for (int n = 1; support[i] && n < counts[i]; ++n)
            text += fixed(spell.extraTrackSwitches[i]);
    }
    return text;
}

QString Composer::outputInfo() const
{
    const StreamFacts &s = job.Source;
    const auto pair = [](const QString &from, const QString &to, const QString &unit) {
        return from + unit + u" -> "_s + to + unit;
    };
    QString sourceCodec = s.SourceVideoCodec;
    QString targetCodec = QString(VideoCodecSwitch).section(u' ', 2, 2);
    if (targetCodec.isEmpty())
        targetCodec = sourceCodec;
    const int inW = job.Video.VideoWidth, inH = job.Video.VideoHeight;
    QStringList parts;
    parts << s.SourceFormat + u" -> "_s + FFmpegOutputExtension(job, in.generation);
    parts << pair(
        u"%1x%2"_s.arg(inW).arg(inH), u"%1x%2"_s.arg(outW >= 1 ? outW : inW).arg(outH >= 1 ? outH : inH), {});
    parts << pair(number(s.SourceFrameRate),
        number(job.Video.FrameRate > 0 ? job.Video.FrameRate : s.SourceFrameRate), u"fps"_s);
    parts << pair(sourceCodec, targetCodec, {});
    parts << pair(QString::number(s.SourceSampleRate),
        QString::number(job.Audio.AudioSampleRate > 0 ? job.Audio.AudioSampleRate : s.SourceSampleRate),
        u"Hz"_s);
    parts << pair(number(s.SourceChannels),
        number(job.Audio.AudioChannels > 0 ? job.Audio.AudioChannels : s.SourceChannels), u"ch"_s);
    return parts.join(u", "_s);
}

Composition Composer::compose()
{
    Composition result;
    if (in.generation == ToolGeneration::Today) {
        QString missing = MissingCapability(row, format, job.CoreState);
        const auto lacks = [&](const QString &codec, const QString &list, const char *kind) {
            const QString name = renamedCodec(spell, codec);
            if (missing.isEmpty() && !codec.isEmpty() && !list.isEmpty() && !holds(list, name))
                missing = u"the tool has no \"%1\" %2 encoder"_s.arg(name, QLatin1String(kind));
        };
        lacks(job.Video.VideoCodec, job.CoreState.CoreVideoCodec, "video");
        lacks(job.Audio.AudioCodec, job.CoreState.CoreAudioCodec, "audio");
        if (!missing.isEmpty()) {
            const QString tool = (job.CoreState.CoreName + u' ' + job.CoreState.CoreVersion).trimmed();
            result.refusal = u"%1 cannot make the format \"%2\": %3."_s.arg(
                tool.isEmpty() ? u"The encoder"_s : tool, format, missing);
            return result;
        }
    }
    sizeAndShape();
    quality();
    rates();
    formatRow();
    afterRow();
    threadsAndMetadata();
    misc();
    overlays();
    filterChain();
    aspect();
    result.outputInfo = outputInfo();
    result.target = QSize(outW, outH);

    const double length = job.Job.TimeEndPoint - job.Job.TimeStartPoint;
    QString seek;
    if (!job.AVS.AVSEnabled) {
        if (job.Job.TimeStartPoint > 0)
            seek += u" -ss "_s + number(job.Job.TimeStartPoint);
        if (length > 0)
            seek += u" -t "_s + number(length);
    }
    const QString opts = options();
    const QString tail = opts + FormatSwitch + u' ' + QuoteName(in.outputFileName);
    const QString core = QuoteName(job.Core);
    QString command;
    if (job.FileName.endsWith(u':')) {
        const QString player = QFileInfo(job.Core).path() + u"/mencoder"_s;
        command = QuoteName(player) + u" -dvd-device "_s + QuoteName(job.FileName.toLower())
            + u"/ dvd://1 -really-quiet -oac copy -ovc copy -o -|"_s + core + u" -y"_s + seek + u" -i -"_s
            + tail;
    } else if (job.Audio.AudioStreamDelay == 0) {
        command = core + u" -y"_s + seek + u" -i "_s + QuoteName(in.inputName) + tail;
    } else {
        command = core + u" -y"_s + seek + u" -i "_s + QuoteName(in.inputName) + u" -itsoffset "_s
            + number(job.Audio.AudioStreamDelay) + seek + u" -i "_s + QuoteName(in.inputName)
            + fixed(spell.delayedAudio) + tail;
    }
    if (!spell.extraTracksAsMaps)
        command += extraTracks();
    result.command = command;
    return result;
}

} // namespace

QString FFmpegOutputExtension(const JobSettings &job, ToolGeneration generation)
{
    const FormatRow &row = FormatRowOf(job.FileOutput.ForceFormat, generation);
    return OutputExtension(job, row.extension, row.driveExtension);
}

QString PlannedOutputName(const JobSettings &job, const QString &extension)
{
    const FileOutputFamily &out = job.FileOutput;
    if (!out.ForceOutputFileName.isEmpty())
        return out.ForceOutputFileName;
    const QFileInfo source(job.FileName);
    QString folder = !job.OutputDir.isEmpty() ? job.OutputDir : source.path();
    if (!folder.endsWith(u'/'))
        folder += u'/';
    const QString base = !out.CustomFileName.isEmpty() ? out.CustomFileName : source.completeBaseName();
    // The addition is left out when the source's name holds it already.
    const QString after
        = !out.FileNameAddStringAfter.isEmpty() && source.fileName().contains(out.FileNameAddStringAfter)
        ? QString()
        : out.FileNameAddStringAfter;
    return folder + out.FileNameAddStringBefore + base + after + u'.' + extension;
}

int ClampRange(int value, int low, int high)
{
    return value < low ? low : std::min(value, high);
}

QPoint KeypadPosition(int align, int padding, QSize frame, QSize item)
{
    const int maxX = std::max(0, frame.width() - item.width());
    const int maxY = std::max(0, frame.height() - item.height());
    int x = padding;
    if (align == 2 || align == 5 || align == 8)
        x = (frame.width() - item.width()) / 2;
    else if (align == 3 || align == 6 || align == 9)
        x = frame.width() - item.width() - padding;
    int y = padding;
    if (align >= 1 && align <= 3)
        y = frame.height() - item.height() - padding;
    else if (align >= 4 && align <= 6)
        y = (frame.height() - item.height()) / 2;
    return {ClampRange(x, 0, maxX), ClampRange(y, 0, maxY)};
}

Composition ComposeFFmpegCommand(const JobSettings &job, const ComposeInput &input)
{
    return Composer(job, input).compose();
}

} // namespace qb::engine
