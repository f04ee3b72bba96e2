// The script's order: helpers, memory, sources, size, crop, subtitles, then one call per effect,
// flips and "return last"; the effects' functions follow after a blank line.
#include "engine/avisynth_script.h"

#include "util/number_text.h"

#include <algorithm>

using namespace Qt::StringLiterals;

namespace qb::engine {

namespace {

const QStringList kHelpers {
    u"function ConvertToChannel(clip1,clip2){"_s,
    u" clip1 = (Audiochannels(clip2) == 2) && (Audiochannels(clip1) == 1) ? clip1.MonoToStereo : clip1"_s,
    u" clip1 = (Audiochannels(clip2) == 1) && (Audiochannels(clip1) == 2) ? clip1.ConvertToMono : clip1"_s,
    u" return clip1"_s,
    u"}"_s,
    // A clip without two channels gets its first one on both.
    u"function MonoToStereo(clip a){"_s,
    u" return Audiochannels(a)!=2 ? MergeChannels(GetChannel(a, 1), GetChannel(a, 1)) : a"_s,
    u"}"_s,
    u"function AutoYV12(clip Video) {"_s,
    u" Video = (isYV12(Video)==false) ? ConvertToYV12(Video) : Video"_s,
    u" return(Video)"_s,
    u"}"_s,
    u"function AutoYUY2(clip Video) {"_s,
    u" Video = (isYUY2(Video)==false) ? ConvertToYUY2(Video) : Video"_s,
    u" return(Video)"_s,
    u"}"_s,
    u"function ConvertToColorSpace(clip1,clip2) {"_s,
    u"clip1 = (clip2.isRGB32() && !clip1.isRGB32()) ? clip1.convertToRGB32(): clip1"_s,
    u"clip1 = (clip2.isRGB24() && !clip1.isRGB24()) ? clip1.convertToRGB24(): clip1"_s,
    u"clip1 = (clip2.isYUY2() && !clip1.isYUY2()) ? clip1.convertToYUY2(): clip1"_s,
    u"clip1 = (clip2.isYV12() && !clip1.isYV12()) ? clip1.convertToYv12(): clip1"_s,
    u"return clip1"_s,
    u"}"_s,
};

QString plain(double value)
{
    return util::FormatNumber(value, u"");
}

QString whole(double value)
{
    return util::FormatNumber(util::RoundHalfEven(value), u"0");
}

QString rotation(int degrees)
{
    switch (degrees) {
    case 90:
        return u".TurnRight()"_s;
    case 180:
        return u".Turn180()"_s;
    case 270:
        return u".TurnLeft()"_s;
    default:
        return {};
    }
}

struct Body
{
    QStringList calls;
    QStringList functions;

    void effect(const QString &call, const QStringList &function)
    {
        calls << call;
        functions << function;
    }
};

// The open call of one source with its trim and rotation; the frame-rate line it needs goes first.
QString openSource(const JobSettings &job, const QString &file, QStringList &before)
{
    const double rate = job.Video.FrameRate;
    const double from = job.Job.TimeStartPoint;
    const double to = job.Job.TimeEndPoint;
    const bool range = to - from > 0;
    QString open = u"DirectshowSource("_s + ScriptQuoted(file);
    QString trim;
    if (rate > 0) {
        open += u", fps="_s + plain(rate) + u", convertfps=true"_s;
        if (range)
            trim = u".Trim("_s + whole(rate * from) + u", "_s + whole(rate * to) + u')';
    } else if (range) {
        const QString frameRate = u"fr = DirectshowSource("_s + ScriptQuoted(file) + u").Framerate"_s;
        if (!before.contains(frameRate))
            before << frameRate;
        trim = u".Trim(Int(fr * "_s + plain(from) + u"), Int(fr * "_s + plain(to) + u"))"_s;
    }
    return open + u')' + trim + rotation(job.AVS.AVSVideoRotate);
}

QStringList sources(const JobSettings &job)
{
    const QStringList files = job.FileInfo.split(u'|', Qt::SkipEmptyParts);
    QStringList lines;
    if (files.size() <= 1) {
        const QString open = openSource(job, files.value(0, job.FileName), lines);
        return lines << open;
    }
    const int sampleRate = job.Audio.AudioSampleRate > 0 ? job.Audio.AudioSampleRate : 44100;
    QStringList opened;
    QString joined;
    for (qsizetype k = 0; k < files.size(); ++k) {
        QString line = u"i"_s + QString::number(k) + u" = "_s + openSource(job, files.at(k), lines)
            + u".ResampleAudio("_s + QString::number(sampleRate) + u')';
        if (k > 0)
            line += u".ConvertToChannel(i0).Lanczos4Resize(i0.Width, i0.Height)"_s;
        opened << line;
        joined += u'i' + QString::number(k) + u'+';
    }
    joined.chop(1);
    return lines << opened << u"last = "_s + joined;
}

// Left, top, and right and bottom as the crop filter takes them: 0 or less counts from the far
// edge, more is the size itself. The crop is kept only when it leaves a picture.
bool cropLeavesPicture(const QString &crop, int width, int height)
{
    const QStringList v = crop.split(u',');
    if (v.size() != 4)
        return false;
    const double left = util::Val(v.at(0).trimmed());
    const double top = util::Val(v.at(1).trimmed());
    const double right = util::Val(v.at(2).trimmed());
    const double bottom = util::Val(v.at(3).trimmed());
    const double w = right <= 0 ? width - left + right : right;
    const double h = bottom <= 0 ? height - top + bottom : bottom;
    return w >= 1 && h >= 1;
}

QStringList dissolve(int position, const QString &clip)
{
    if (position == 0)
        return {u"Dissolve("_s + clip + u",a,int(a.Framerate))"_s};
    if (position >= 1 && position <= 99) {
        const QString p = QString::number(position);
        return {u"v1 = a.Trim(0,Int(a.Framecount * "_s + p + u" / 100))"_s,
            u"v2 = a.Trim(Int(a.Framecount * "_s + p + u" / 100),0)"_s,
            u"Dissolve(v1,"_s + clip + u",v2,int(a.Framerate))"_s};
    }
    return {u"Dissolve(a,"_s + clip + u",int(a.Framerate))"_s};
}

void addEffects(Body &body, const JobSettings &job, const ScriptAttachments &files)
{
    const AVSFamily &avs = job.AVS;
    if (avs.AVSAudioReplace && files.audioReplaceFound) {
        const double volume = std::min(avs.AVSAudioReplaceVolume, 100) / 100.0;
        body.effect(u"BackMusic()"_s,
            {u"function BackMusic(clip a){"_s,
                u"b = DirectShowSource("_s + ScriptQuoted(avs.AVSAudioReplaceFileName)
                    + u").ResampleAudio(a.Audiorate).ConvertToChannel(a)"_s,
                u"MixAudio(a, b, "_s + util::FormatNumber(1 - volume, u"0.00") + u", "_s
                    + util::FormatNumber(volume, u"0.00") + u')',
                u"}"_s});
    }
    // The covering rectangle is "x,y,w,h".
    const QStringList rect = avs.AVSLayOverRect.split(u',');
    if (avs.AVSLayOver && QString(avs.AVSLayOverRect).remove(u' ') != u"0,0,0,0"_s && rect.size() == 4) {
        const auto at = [&rect](int i) { return plain(util::Val(rect.at(i).trimmed())); };
        body.effect(u"LayOver()"_s,
            {u"function LayOver(clip a){"_s,
                u" b = BlankClip(length=a.Framecount, width="_s + at(2) + u", height="_s + at(3)
                    + u", fps=a.Framecount, color=$"_s + avs.AVSLayOverColor + u')',
                u" Overlay(a, b, x="_s + at(0) + u", y="_s + at(1) + u", mode=\"Blend\", opacity=1.0)"_s,
                u"}"_s});
    }
    if (avs.AVSInsertVideo) {
        QStringList function {u"function VideoTitle(clip a) {"_s,
            u"b = DirectShowSource("_s + ScriptQuoted(avs.AVSInsertVideoFileName)
                + u", fps=30, convertfps=true).ChangeFPS(a.Framerate).ResampleAudio(a.Audiorate)"
                  u".ConvertToChannel(a).Lanczos4Resize(a.Width,a.Height)"_s};
        body.effect(u"VideoTitle()"_s, function << dissolve(avs.AVSInsertVideoPosition, u"b"_s) << u"}"_s);
    }
    if (avs.AVSInsertImage && files.insertImageFound) {
        const QString time = plain(avs.AVSInsertImageTime);
        QStringList function {u"function ImageTitle(clip a) {"_s,
            u"Video = ImageSource("_s + ScriptQuoted(avs.AVSInsertImageFileName)
                + u", end=0, fps=a.Framerate).assumefps(a,true).ConvertToColorSpace(a)"
                  u".Lanczos4Resize(a.Width,a.Height).Loop(int(a.Framerate * "_s
                + time + u"))"_s,
            u"Audio = BlankClip(length=int(a.Framerate * "_s + time
                + u"), color=$000000).ChangeFPS(a.Framerate).ResampleAudio(a.Audiorate).ConvertToChannel(a)"_s,
            u"b = audiodub(Video,Audio)"_s};
        body.effect(u"ImageTitle()"_s, function << dissolve(avs.AVSInsertImagePosition, u"b"_s) << u"}"_s);
    }
    if (avs.AVSLogoImage && files.logoImageFound) {
        const QStringList xy = avs.AVSLogoImagePosition.split(u'x', Qt::KeepEmptyParts, Qt::CaseInsensitive);
        body.effect(u"ImageOverlay()"_s,
            {u"function ImageOverlay(clip a){"_s,
                u" b = ImageSource("_s + ScriptQuoted(avs.AVSLogoImageFileName) + u')',
                u" Overlay(a, b, x="_s + plain(util::Val(xy.value(0).trimmed())) + u", y="_s
                    + plain(util::Val(xy.value(1).trimmed())) + u", mode=\"Blend\", opacity=1.0)"_s,
                u"}"_s});
    }
    if (!avs.AVSUserScript.isEmpty()) {
        QStringList function {u"function modAddon(clip Video) {"_s};
        function << QString(avs.AVSUserScript).split(u"\\n"_s);
        body.effect(u"modAddon()"_s, function << u"return(Video)"_s << u"}"_s);
    }
    if (avs.AVSFlip == 1)
        body.calls << u"FlipHorizontal()"_s;
    else if (avs.AVSFlip == 2)
        body.calls << u"FlipVertical()"_s;
}

} // namespace

QString ScriptQuoted(const QString &fileName)
{
    if (fileName.contains(u'"'))
        return u"\"\"\""_s + fileName + u"\"\"\""_s;
    return u'"' + fileName + u'"';
}

QString ComposeAviSynthScript(
    const JobSettings &job, const ScriptAttachments &files, int outWidth, int outHeight)
{
    Body body;
    body.calls << kHelpers << u"SetMemoryMax(256)"_s << sources(job);
    const int sourceWidth = job.Source.VideoWidth;
    const int sourceHeight = job.Source.VideoHeight;
    if (outWidth > 0 && outHeight > 0 && (outWidth != sourceWidth || outHeight != sourceHeight))
        body.calls << u"Lanczos4Resize("_s + QString::number(outWidth) + u", "_s + QString::number(outHeight)
                + u')';
    const QString crop = job.AVS.AVSScreenCrop;
    const int pictureWidth = outWidth > 0 ? outWidth : sourceWidth;
    const int pictureHeight = outHeight > 0 ? outHeight : sourceHeight;
    if (QString(crop).remove(u' ') != u"0,0,-0,-0"_s && cropLeavesPicture(crop, pictureWidth, pictureHeight))
        body.effect(
            u"VideoCrop()"_s, {u"function VideoCrop(clip a){"_s, u"Crop(a, "_s + crop + u')', u"}"_s});
    if (!files.subtitlePlugin.isEmpty())
        body.calls << u"LoadPlugin("_s + ScriptQuoted(files.subtitlePlugin) + u')' << files.subtitleCalls;
    addEffects(body, job, files);
    body.calls << u"return last"_s;
    QStringList all = body.calls;
    if (!body.functions.isEmpty())
        all << QString() << body.functions;
    return all.join(u"\r\n"_s);
}

} // namespace qb::engine
