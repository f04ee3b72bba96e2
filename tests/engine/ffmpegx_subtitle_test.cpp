// Subtitle conversion through the engine: the font, offset and suffix from its properties, and
// the conversion's events raised as the engine's own.
#include "engine/engine_recorder.h"
#include "engine/ffmpegx.h"
#include "support/temp_tree.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

TEST(EngineSubtitle, PropertiesShapeTheConversionAndItsEventsAreTheEngines)
{
    test::TempTree tree;
    const QString source = tree.writeFile(u"in.srt"_s, "1\r\n00:00:01,000 --> 00:00:02,000\r\nHello\r\n\r\n");
    FFmpegX ffx;
    test::EngineRecorder rec(ffx);
    ffx.Subtitle.SubtitleConvertFormated = true;
    ffx.Subtitle.SubtitleConvertFont = u"SimHei, 24, True, False, 136"_s;
    ffx.Subtitle.SubtitleTimeOffset = 2;
    ffx.FileOutput.FileNameSuffix = u"ssa"_s;
    ASSERT_TRUE(ffx.ConvertSubtitle({source}, tree.path(u"out.ass"_s), 384, 288, QString(), QString(), 0, 0,
        0, 0, 1, 0xFFFFFF, 0, 0, false, 2, true, true, 0, 0, 0, 100, false, false));
    const QByteArray written = test::readAll(tree.path(u"out.ssa"_s));
    // The style line keeps its own face; the font's name, size, weight and encoding reach the text.
    EXPECT_TRUE(written.contains("Style: Default0,Arial,24,")) << written.toStdString();
    EXPECT_TRUE(written.contains(",20,0,136\r\n")) << written.toStdString();
    EXPECT_TRUE(written.contains("{\\b1\\i0}{\\fscx100}{\\an2}{\\fnSimHei}Hello")) << written.toStdString();
    EXPECT_TRUE(written.contains("Dialogue: Marked=0,0:00:03.00,0:00:03.99,")) << written.toStdString();
    EXPECT_EQ(rec.statusLines(),
        (QStringList {u"0:"_s + source, u"1:"_s + source, u"2:"_s + tree.path(u"out.ssa"_s)}));
    EXPECT_EQ(ffx.Status(), 1);
    EXPECT_EQ(ffx.StartTime().size(), 8);
    EXPECT_EQ(ffx.EndTime().size(), 8);
    // Nothing read, nothing written, and no final event.
    const QString words = tree.writeFile(u"words.srt"_s, "no cue\r\n");
    EXPECT_FALSE(ffx.ConvertSubtitle({words}, tree.path(u"none.srt"_s), 0, 0, QString(), QString(), 0, 0, 0,
        0, 1, 0, 0, 0, false, 2, true, true, 0, 0, 0, 100, false, false));
    EXPECT_EQ(rec.statusLines().last(), u"1:"_s + words);
}

} // namespace
} // namespace qb::engine
