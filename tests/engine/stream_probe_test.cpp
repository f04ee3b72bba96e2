// Probe texts of both generations, replayed as a run reads them, read field by field; the
// player tool's answer; crop detection lines.
#include "engine/engine_recorder.h"
#include "engine/stream_probe.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

StreamFacts probe(const QString &fixture, const QString &fileName)
{
    StreamFacts facts = FreshFacts(fileName);
    ReadProbeText(test::replayJoined(test::recorded(fixture)), facts);
    return facts;
}

TEST(StreamProbe, FieldsOfBothGenerations)
{
    struct Case
    {
        QString fixture;
        QString file;
        double duration;
        QString format;
        int width, height;
        double rate;
        QString video, audio;
        long sampleRate;
        double channels;
        int videos, audios, subtitles;
        QString defaults; // video|audio|subtitle
    };
    const Case cases[] = {
        // Two video streams: size and rate from the last, the default from the first; a numeric
        // channel field; a rate written "tb(r)" is no rate.
        {u"legacy-probe-avi.txt"_s, u"two video.avi"_s, 100, u"avi"_s, 320, 240, 29.97, u"msmpeg4v2"_s,
            u"ac3"_s, 48000, 6, 2, 2, 1, u"0.0|0.2|0.4"_s},
        {u"legacy-probe-wmv.txt"_s, u"movie.WMV"_s, 30, u"wmv"_s, 320, 240, 0, u"wmv2"_s, u"wmav2"_s, 44100,
            2, 1, 1, 0, u"0.1|0.0|"_s},
        {u"ffmpeg-5.1-probe-mp4.txt"_s, u"in.mp4"_s, 5, u"mp4"_s, 640, 360, 25, u"h264"_s, u"aac"_s, 48000, 1,
            1, 1, 0, u"0:0|0:1|"_s},
        {u"ffmpeg-5.1-probe-mkv-two-audio-subtitle.txt"_s, u"in2a.mkv"_s, 5, u"mkv"_s, 640, 360, 25,
            u"h264"_s, u"ac3"_s, 44100, 1, 1, 2, 1, u"0:0|0:1|0:3"_s},
        {u"ffmpeg-5.1-probe-mp3.txt"_s, u"in.mp3"_s, 5, u"mp3"_s, 0, 0, 0, {}, u"mp3"_s, 44100, 1, 0, 1, 0,
            u"|0:0|"_s},
        {u"ffmpeg-5.1-probe-wav.txt"_s, u"in.wav"_s, 5, u"wav"_s, 0, 0, 0, {}, u"pcm_s16le"_s, 44100, 2, 0, 1,
            0, u"|0:0|"_s},
        {u"ffmpeg-5.1-probe-mpegts.txt"_s, u"in.ts"_s, 5, u"mpegts"_s, 640, 360, 25, u"h264"_s, u"aac"_s,
            48000, 1, 1, 1, 0, u"0:0|0:1|"_s},
        {u"ffmpeg-5.1-probe-anamorphic-avi.txt"_s, u"anam.avi"_s, 5, u"avi"_s, 640, 360, 25, u"mpeg4"_s,
            u"mp3"_s, 48000, 1, 1, 1, 0, u"0:0|0:1|"_s},
    };
    for (const Case &c : cases) {
        const StreamFacts f = probe(c.fixture, c.file);
        const std::string name = c.fixture.toStdString();
        EXPECT_EQ(f.Duration, c.duration) << name;
        EXPECT_EQ(f.SourceFormat, c.format) << name;
        EXPECT_EQ(f.VideoWidth, c.width) << name;
        EXPECT_EQ(f.VideoHeight, c.height) << name;
        EXPECT_DOUBLE_EQ(f.SourceFrameRate, c.rate) << name;
        EXPECT_EQ(f.SourceVideoCodec, c.video) << name;
        EXPECT_EQ(f.SourceAudioCodec, c.audio) << name;
        EXPECT_EQ(f.SourceSampleRate, c.sampleRate) << name;
        EXPECT_EQ(f.SourceChannels, c.channels) << name;
        EXPECT_EQ(f.VideoStreamCount, c.videos) << name;
        EXPECT_EQ(f.AudioStreamCount, c.audios) << name;
        EXPECT_EQ(f.SubtitleStreamCount, c.subtitles) << name;
        EXPECT_EQ(
            f.DefaultVideoStream + u'|' + f.DefaultAudioStream + u'|' + f.DefaultSubtitleStream, c.defaults)
            << name;
    }
}

TEST(StreamProbe, StreamTextKeepsTitlesAndLinesWithoutBlanks)
{
    const StreamFacts f = probe(u"legacy-probe-avi.txt"_s, u"two video.avi"_s);
    EXPECT_EQ(f.streamText,
        u"Stream#0.0:Video:mpeg4,yuv420p,640x480[PAR1:1DAR4:3],25.00tb(r)\r\n"
        "Stream#0.1:Video:msmpeg4v2,yuv420p,320x240,29.97tbr\r\n"
        "Stream#0.2(eng):Audio:mp3,44100Hz,stereo,s16,128kb/s\r\n"
        "Stream#0.3(chi):Audio:ac3,48000Hz,6channels,s16,384kb/s\r\n"
        "Stream#0.4(chi):Subtitle:text\r\n"
        "title:Twovideos"_s);
    EXPECT_EQ(f.VideoStreamInfo.count(u"\r\n"_s), 1);
    // The wav warning names a stream but is no stream line.
    EXPECT_EQ(probe(u"ffmpeg-5.1-probe-wav.txt"_s, u"in.wav"_s).streamText.count(u"Stream"_s), 1);
}

TEST(StreamProbe, StreamNumbersAndContainerNames)
{
    const std::pair<QString, QString> numbers[] = {
        {u"Stream#0:0[0x1](und):Video:h264"_s, u"0:0"_s},
        {u"Stream#0:1[0x101](und):Audio:aac"_s, u"0:1"_s},
        {u"Stream#0.1(eng):Audio:mp3"_s, u"0.1"_s},
        {u"Stream#0:3(eng):Subtitle:subrip"_s, u"0:3"_s},
        {u"Stream#0:4:Attachment:ttf"_s, u"0:4"_s},
        {u"Stream#0:2(ger):Data:bin_data"_s, u"0:2"_s},
        {u"Stream#1:5:Data:none"_s, u"1"_s},
    };
    for (const auto &[line, number] : numbers)
        EXPECT_EQ(GetStreamNumber(line), number) << line.toStdString();

    const std::tuple<QString, QString, QString> containers[] = {
        {u"Input #0, rm, from 'a.rmvb':"_s, u"a.rmvb"_s, u"rmvb"_s},
        {u"Input #0, mpeg, from 'a.mpg':"_s, u"a.mpg"_s, u"mpg"_s},
        {u"Input #0, mpeg, from 'a.vob':"_s, u"a.vob"_s, u"mpeg"_s},
        {u"Input #0, mov,mp4,m4a,3gp,3g2,mj2, from 'a.mov':"_s, u"a.mov"_s, u"mov"_s},
        {u"Input #0, mov,mp4,m4a,3gp,3g2,mj2, from 'a.flv':"_s, u"a.flv"_s, u"mp4"_s},
        {u"Input #0, mov,mp4,m4a,3gp,3g2,mj2, from 'a.3gp':"_s, u"a.3gp"_s, u"mov"_s},
        {u"Input #0, matroska,webm, from 'a.webm':"_s, u"a.webm"_s, u"mkv"_s},
    };
    for (const auto &[line, file, format] : containers) {
        StreamFacts facts = FreshFacts(file);
        ReadProbeText(line + u'\n', facts);
        EXPECT_EQ(facts.SourceFormat, format) << line.toStdString();
    }
}

TEST(StreamProbe, MediaGraphFillsWhatTheTextLacks)
{
    const auto graph = ReadMediaGraphAnswer(
        uR"({"streams":[{"codec_type":"audio"},{"codec_type":"video","width":320,"height":180,
            "avg_frame_rate":"30000/1001"}],"format":{"duration":"12.480000"}})"_s);
    ASSERT_TRUE(graph.has_value());
    StreamFacts facts = FreshFacts(u"clip.avi"_s);
    facts.SourceFrameRate = 25;
    ApplyMediaGraph(*graph, facts);
    EXPECT_DOUBLE_EQ(facts.Duration, 12.48);
    EXPECT_EQ(facts.VideoWidth, 320);
    EXPECT_EQ(facts.VideoHeight, 180);
    EXPECT_DOUBLE_EQ(facts.SourceFrameRate, 29.97);
    // Known values stay; a graph with no video changes no size.
    facts.Duration = 5;
    ApplyMediaGraph({7, 0, 0, 0}, facts);
    EXPECT_EQ(facts.Duration, 5);
    EXPECT_EQ(facts.VideoWidth, 320);
    EXPECT_FALSE(ReadMediaGraphAnswer(u"not json"_s).has_value());
}

TEST(StreamProbe, SummaryLeavesOutWhatIsUnknown)
{
    StreamFacts facts = probe(u"ffmpeg-5.1-probe-mp4.txt"_s, u"in.mp4"_s);
    EXPECT_EQ(SummaryFileInfo(facts, u"114.45KB"_s),
        u"00:00:05.000, MP4, 114.45KB, h264, 640x360, 25fps, aac, 48000Hz, 1ch"_s);
    StreamFacts audio = probe(u"ffmpeg-5.1-probe-wav.txt"_s, u"in.wav"_s);
    EXPECT_EQ(SummaryFileInfo(audio, u"861.4KB"_s), u"00:00:05.000, WAV, 861.4KB, pcm_s16le, 44100Hz, 2ch"_s);
    StreamFacts picture = FreshFacts(u"a.png"_s);
    picture.VideoWidth = 64;
    picture.VideoHeight = 48;
    EXPECT_EQ(SummaryFileInfo(picture, u"2KB"_s), u"2KB, 64x48"_s);
}

TEST(StreamProbe, CropDetection)
{
    EXPECT_EQ(CropSeekPoint(18), 9);
    EXPECT_EQ(CropSeekPoint(21), 10);
    EXPECT_EQ(CropSeekPoint(9), 4); // half of 9 rounds to even
    EXPECT_EQ(CropSeekPoint(20), 10);
    // Today's lines glued to a progress line behind a carriage return; the older tag.
    EXPECT_EQ(
        ReadCropDetection(u"frame=    1 fps=0.0 q=-0.0 size=N/A time=00:00:00.04 bitrate=N/A speed=3.11x    "
                          "[Parsed_cropdetect_0 @ 0x5614fb32d040] x1:0 x2:639 y1:40 y2:319 w:640 h:272 x:0 "
                          "y:44 pts:1024 t:0.080000 crop=640:272:0:44\r\nnext\n"_s),
        u"crop=640:272:0:44"_s);
    EXPECT_EQ(
        ReadCropDetection(u"[cropdetect @ 0x1] x1:0 x2:319 crop=320:224:0:8\r\n"_s), u"crop=320:224:0:8"_s);
    EXPECT_EQ(ReadCropDetection(u"[cropdetect @ 0x1] crop=320:224\n"_s), QString());
    EXPECT_EQ(ReadCropDetection(u"no crop=1:2:3:4 here\n"_s), QString());
}

} // namespace
} // namespace qb::engine
