// The frame-server script: the body for each property the composer reads, the functions behind
// it, the files the engine prepares for it, and the target size it is composed for.
#include "engine/avisynth_script.h"
#include "engine/engine_recorder.h"
#include "engine/ffmpegx.h"
#include "engine/target_size.h"
#include "support/temp_tree.h"

#include <QFileInfo>

#include <functional>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

constexpr qsizetype kHelperLines = 23;

JobSettings baseJob()
{
    JobSettings job;
    job.FileName = u"/v/a.avi"_s;
    job.FileInfo = job.FileName;
    job.Source.VideoWidth = 320;
    job.Source.VideoHeight = 240;
    return job;
}

// The script after the helpers, lines joined by "\n".
std::string bodyOf(const JobSettings &job, const ScriptAttachments &files = {}, int w = 320, int h = 240)
{
    const QStringList lines = ComposeAviSynthScript(job, files, w, h).split(u"\r\n"_s);
    return lines.mid(kHelperLines).join(u'\n').toStdString();
}

TEST(AviSynthScript, HelpersFirstThenTheSource)
{
    const QStringList lines = ComposeAviSynthScript(baseJob(), {}, 320, 240).split(u"\r\n"_s);
    ASSERT_GT(lines.size(), kHelperLines);
    EXPECT_EQ(lines.first(), u"function ConvertToChannel(clip1,clip2){"_s);
    EXPECT_EQ(lines.at(16), u"function ConvertToColorSpace(clip1,clip2) {"_s);
    EXPECT_EQ(
        lines.at(17), u"clip1 = (clip2.isRGB32() && !clip1.isRGB32()) ? clip1.convertToRGB32(): clip1"_s);
    EXPECT_EQ(lines.at(kHelperLines - 1), u"}"_s);
    EXPECT_EQ(bodyOf(baseJob()), "SetMemoryMax(256)\nDirectshowSource(\"/v/a.avi\")\nreturn last");
}

TEST(AviSynthScript, SourcesTrimRotateJoinAndSize)
{
    struct Case
    {
        const char *name;
        std::function<void(JobSettings &)> set;
        int w, h;
        const char *body;
    };
    const Case cases[] = {
        {"a range without a rate reads the rate from the source",
            [](JobSettings &j) {
                j.Job.TimeStartPoint = 1.5;
                j.Job.TimeEndPoint = 4;
            },
            320, 240,
            "SetMemoryMax(256)\nfr = DirectshowSource(\"/v/a.avi\").Framerate\n"
            "DirectshowSource(\"/v/a.avi\").Trim(Int(fr * 1.5), Int(fr * 4))\nreturn last"},
        {"a rate converts and trims by frames, and a quarter turn",
            [](JobSettings &j) {
                j.Video.FrameRate = 25;
                j.Job.TimeStartPoint = 2;
                j.Job.TimeEndPoint = 4.02;
                j.AVS.AVSVideoRotate = 90;
            },
            320, 240,
            "SetMemoryMax(256)\nDirectshowSource(\"/v/a.avi\", fps=25, convertfps=true).Trim(50, 100)."
            "TurnRight()\nreturn last"},
        {"several inputs are joined after the first's shape and channels",
            [](JobSettings &j) { j.FileInfo = u"/v/a.avi|/v/b.avi|/v/c\"d.avi"_s; }, 320, 240,
            "SetMemoryMax(256)\ni0 = DirectshowSource(\"/v/a.avi\").ResampleAudio(44100)\n"
            "i1 = "
            "DirectshowSource(\"/v/"
            "b.avi\").ResampleAudio(44100).ConvertToChannel(i0).Lanczos4Resize(i0.Width, "
            "i0.Height)\ni2 = "
            "DirectshowSource(\"\"\"/v/c\"d.avi\"\"\").ResampleAudio(44100).ConvertToChannel(i0)."
            "Lanczos4Resize(i0.Width, i0.Height)\nlast = i0+i1+i2\nreturn last"},
        {"another size resizes; a half turn and a flip",
            [](JobSettings &j) {
                j.AVS.AVSVideoRotate = 180;
                j.AVS.AVSFlip = 2;
            },
            160, 120,
            "SetMemoryMax(256)\nDirectshowSource(\"/v/a.avi\").Turn180()\nLanczos4Resize(160, 120)\n"
            "FlipVertical()\nreturn last"},
    };
    for (const Case &c : cases) {
        JobSettings job = baseJob();
        c.set(job);
        EXPECT_EQ(bodyOf(job, {}, c.w, c.h), c.body) << c.name;
    }
}

TEST(AviSynthScript, EffectsAndTheirFunctions)
{
    struct Case
    {
        const char *name;
        std::function<void(JobSettings &, ScriptAttachments &)> set;
        const char *tail; // the body after the source line
    };
    const Case cases[] = {
        {"the default crop gives no crop", [](JobSettings &, ScriptAttachments &) {}, "return last"},
        {"a crop that leaves no picture is dropped",
            [](JobSettings &j, ScriptAttachments &) { j.AVS.AVSScreenCrop = u"200,0,-200,-0"_s; },
            "return last"},
        {"a crop", [](JobSettings &j, ScriptAttachments &) { j.AVS.AVSScreenCrop = u"8,8,-8,-8"_s; },
            "VideoCrop()\nreturn last\n\nfunction VideoCrop(clip a){\nCrop(a, 8,8,-8,-8)\n}"},
        {"subtitles need the renderer's plugin",
            [](JobSettings &, ScriptAttachments &f) { f.subtitleCalls = {u"TextSub(\"/t/1.ssa\")"_s}; },
            "return last"},
        {"subtitles after the plugin",
            [](JobSettings &, ScriptAttachments &f) {
                f.subtitlePlugin = u"/p/vs.dll"_s;
                f.subtitleCalls = {u"TextSub(\"/t/1.ssa\")"_s, u"VobSub(\"/t/x.sub\")"_s};
            },
            "LoadPlugin(\"/p/vs.dll\")\nTextSub(\"/t/1.ssa\")\nVobSub(\"/t/x.sub\")\nreturn last"},
        {"volume 150 acts as 100",
            [](JobSettings &j, ScriptAttachments &f) {
                j.AVS.AVSAudioReplace = true;
                j.AVS.AVSAudioReplaceFileName = u"/m/song.mp3"_s;
                j.AVS.AVSAudioReplaceVolume = 150;
                f.audioReplaceFound = true;
            },
            "BackMusic()\nreturn last\n\nfunction BackMusic(clip a){\nb = DirectShowSource(\"/m/song.mp3\")."
            "ResampleAudio(a.Audiorate).ConvertToChannel(a)\nMixAudio(a, b, 0.00, 1.00)\n}"},
        {"a missing music file drops the effect",
            [](JobSettings &j, ScriptAttachments &) {
                j.AVS.AVSAudioReplace = true;
                j.AVS.AVSAudioReplaceVolume = 40;
            },
            "return last"},
        {"the covering rectangle",
            [](JobSettings &j, ScriptAttachments &) {
                j.AVS.AVSLayOver = true;
                j.AVS.AVSLayOverRect = u"10, 20, 100, 50"_s;
                j.AVS.AVSLayOverColor = u"FF0000"_s;
            },
            "LayOver()\nreturn last\n\nfunction LayOver(clip a){\n b = BlankClip(length=a.Framecount, "
            "width=100, "
            "height=50, fps=a.Framecount, color=$FF0000)\n Overlay(a, b, x=10, y=20, mode=\"Blend\", "
            "opacity=1.0)\n}"},
        {"an inserted video at the start",
            [](JobSettings &j, ScriptAttachments &) {
                j.AVS.AVSInsertVideo = true;
                j.AVS.AVSInsertVideoFileName = u"/i/t.avi"_s;
            },
            "VideoTitle()\nreturn last\n\nfunction VideoTitle(clip a) {\nb = DirectShowSource(\"/i/t.avi\", "
            "fps=30, "
            "convertfps=true).ChangeFPS(a.Framerate).ResampleAudio(a.Audiorate).ConvertToChannel(a)."
            "Lanczos4Resize("
            "a.Width,a.Height)\nDissolve(b,a,int(a.Framerate))\n}"},
        {"position 100 takes the last form; an image in the middle; a logo; two user lines",
            [](JobSettings &j, ScriptAttachments &f) {
                j.AVS.AVSInsertVideo = true;
                j.AVS.AVSInsertVideoFileName = u"/i/t.avi"_s;
                j.AVS.AVSInsertVideoPosition = 100;
                j.AVS.AVSInsertImage = true;
                j.AVS.AVSInsertImageFileName = u"/i/p.png"_s;
                j.AVS.AVSInsertImagePosition = 50;
                j.AVS.AVSInsertImageTime = 2.5;
                j.AVS.AVSLogoImage = true;
                j.AVS.AVSLogoImageFileName = u"/i/logo.png"_s;
                j.AVS.AVSLogoImagePosition = u"12x34"_s;
                j.AVS.AVSUserScript = u"Tweak(hue=10)\\nSharpen(0.3)"_s;
                j.AVS.AVSFlip = 1;
                f.insertImageFound = true;
                f.logoImageFound = true;
            },
            "VideoTitle()\nImageTitle()\nImageOverlay()\nmodAddon()\nFlipHorizontal()\nreturn last\n\n"
            "function VideoTitle(clip a) {\nb = DirectShowSource(\"/i/t.avi\", fps=30, "
            "convertfps=true).ChangeFPS("
            "a.Framerate).ResampleAudio(a.Audiorate).ConvertToChannel(a).Lanczos4Resize(a.Width,a.Height)\n"
            "Dissolve(a,b,int(a.Framerate))\n}\nfunction ImageTitle(clip a) {\nVideo = "
            "ImageSource(\"/i/p.png\", "
            "end=0, "
            "fps=a.Framerate).assumefps(a,true).ConvertToColorSpace(a).Lanczos4Resize(a.Width,a.Height).Loop("
            "int(a.Framerate * 2.5))\nAudio = BlankClip(length=int(a.Framerate * 2.5), "
            "color=$000000).ChangeFPS("
            "a.Framerate).ResampleAudio(a.Audiorate).ConvertToChannel(a)\nb = audiodub(Video,Audio)\n"
            "v1 = a.Trim(0,Int(a.Framecount * 50 / 100))\nv2 = a.Trim(Int(a.Framecount * 50 / 100),0)\n"
            "Dissolve(v1,b,v2,int(a.Framerate))\n}\nfunction ImageOverlay(clip a){\n b = ImageSource("
            "\"/i/logo.png\")\n Overlay(a, b, x=12, y=34, mode=\"Blend\", opacity=1.0)\n}\n"
            "function modAddon(clip Video) {\nTweak(hue=10)\nSharpen(0.3)\nreturn(Video)\n}"},
    };
    const std::string head = "SetMemoryMax(256)\nDirectshowSource(\"/v/a.avi\")\n";
    for (const Case &c : cases) {
        JobSettings job = baseJob();
        ScriptAttachments files;
        c.set(job, files);
        EXPECT_EQ(bodyOf(job, files), head + c.tail) << c.name;
    }
}

TEST(TargetSize, PercentagesAndOneSidedSizes)
{
    struct Case
    {
        const char *size;
        int sw, sh;
        QSize expected;
    };
    const Case cases[] = {
        {"50%", 641, 481, {320, 240}}, // halves lowered to even
        {"320x0", 640, 480, {320, 240}},
        {"x100", 1920, 1080, {178, 100}},
        {"101x", 640, 480, {101, 76}}, // a given side stands, the worked-out one is even
        {"400x300", 640, 480, {400, 300}},
        {"", 640, 480, {640, 480}},
        {"50%", 0, 0, {0, 0}}, // a percentage of an unknown source does nothing
        {"400x0", 0, 0, {400, 0}},
    };
    for (const Case &c : cases)
        EXPECT_EQ(TargetSize(QString::fromLatin1(c.size), c.sw, c.sh), c.expected) << c.size;
}

TEST(AviSynthFiles, TheEnginePreparesConvertsAndWritesTheScript)
{
    test::TempTree tree;
    FFmpegX ffx;
    test::EngineRecorder rec(ffx);
    const QString source = tree.writeFile(u"in/clip.avi"_s, "x");
    tree.writeFile(u"in/clip.srt"_s,
        "1\r\n00:00:01,000 --> 00:00:02,000\r\nHello\r\n\r\n"
        "2\r\n00:00:03,000 --> 00:00:04,000\r\nAgain\r\n\r\n");
    ffx.setFileName(source);
    ffx.setOutputDir(tree.makeDir(u"out"_s));
    ffx.Job.TestMode = true;
    ffx.AVS.AVSVSFilterPath = tree.writeFile(u"plugins/vsfilter.dll"_s, "x");
    ffx.AVS.AVSEnableSubtitle = true;
    ffx.AVS.AVSEnableSubtitleFormat = true;
    ffx.AVS.AVSOverallSubtitle = tree.writeFile(u"in/every.sub"_s, "x");
    ffx.AVS.AVSSubtitleEnableBanner = true;
    ffx.AVS.AVSSubtitleStringBanner = u"News"_s;
    const QString script = tree.path(u"work/job.avs"_s);
    tree.makeDir(u"work"_s);

    const QString text = ffx.ComposeScript(source, script, 320, 240);
    // The source's size is unknown until probed, so a resize comes before the subtitles.
    const QStringList body = text.split(u"\r\n"_s).mid(kHelperLines);
    const qsizetype plugin = body.indexOf(u"LoadPlugin(\""_s + ffx.AVS.AVSVSFilterPath + u"\")"_s);
    ASSERT_EQ(plugin, 3) << text.toStdString();
    ASSERT_GE(body.size(), plugin + 4);
    // The source's own subtitles were converted into the first slot, the banner written to the third.
    const QString converted = body.at(plugin + 1).section(u'"', 1, 1);
    EXPECT_TRUE(converted.endsWith(u"1.ssa"_s)) << body.at(plugin + 1).toStdString();
    EXPECT_TRUE(test::readAll(converted).contains("Dialogue: Marked=0,0:00:01.00,0:00:01.99"));
    EXPECT_EQ(body.at(plugin + 2), u"VobSub(\""_s + ffx.AVS.AVSOverallSubtitle + u"\")"_s);
    const QString overlay = body.at(plugin + 3).section(u'"', 1, 1);
    EXPECT_TRUE(overlay.endsWith(u"3.ssa"_s));
    EXPECT_TRUE(test::readAll(overlay).contains("{\\move("));
    // Written as ANSI text with a line end, and copied to the output folder in test mode.
    EXPECT_EQ(test::readAll(script), (text + u"\r\n"_s).toUtf8());
    EXPECT_EQ(test::readAll(tree.path(u"out/job.avs"_s)), test::readAll(script));
    EXPECT_FALSE(ffx.CheckAviSynthAvailable());

    // A subtitle that does not convert raises the failure and the script goes on without it.
    tree.writeFile(u"in/clip.srt"_s, "no cues here\r\n");
    rec.statuses.clear();
    const QString again = ffx.ComposeScript(source, script, 320, 240);
    EXPECT_FALSE(again.contains(u"1.ssa"_s));
    EXPECT_TRUE(rec.statusLines().contains(u"3:字幕预处理失败"_s));
}

} // namespace
} // namespace qb::engine
