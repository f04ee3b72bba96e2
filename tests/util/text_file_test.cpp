// Tests for loading and saving text files with and without byte order marks, and the Big5 guess.
#include "util/text_file.h"

#include "support/temp_tree.h"
#include "util/code_page.h"

#include <QFileInfo>
#include <QtEndian>
#include <gtest/gtest.h>

#include <tuple>

using namespace Qt::StringLiterals;
using namespace qb::util;
using qb::test::readAll;
using qb::test::TempTree;

namespace {

QByteArray hex(const char *digits)
{
    return QByteArray::fromHex(digits);
}

} // namespace

TEST(TextFileTest, BomDetectionOrder)
{
    // First bytes of a file, the format found and the mark's length; short files are zero padded.
    const std::tuple<const char *, int, int> cases[] = {
        {"fffe0000", 4, 4},
        {"fffe", 4, 4},
        {"0000feff", 5, 4},
        {"fffe4100", 2, 2},
        {"feff0041", 3, 2},
        {"feff", 3, 2},
        {"efbbbf41", 1, 3},
        {"efbbbf", 1, 3},
        {"efbb4141", 0, 0},
        {"41fffe00", 0, 0},
        {"", 0, 0},
    };
    TempTree tree;
    for (const auto &[head, format, length] : cases) {
        SCOPED_TRACE(head);
        const QByteArray bytes = hex(head);
        int found = 0, foundLength = -1;
        UEFCheckBOM(qFromLittleEndian<quint32>((bytes + QByteArray(4, 0)).constData()), found, foundLength);
        EXPECT_EQ(found, format);
        EXPECT_EQ(foundLength, length);
        EXPECT_EQ(UEFCheckTextFileFormat(tree.writeFile(u"f"_s, bytes)), format);
    }
    int kept = 3, length = 9;
    UEFCheckBOM(0x44434241u, kept, length);
    EXPECT_EQ(kept, 3);
    EXPECT_EQ(length, 0);
}

TEST(TextFileTest, MakeBomRoundTrip)
{
    for (int format = -1; format <= 6; ++format) {
        quint32 mark = 7;
        int length = 7, back = 0, backLength = 0;
        UEFMakeBOM(format, mark, length);
        if (format < 1 || format > 5) {
            EXPECT_EQ(mark, 0u);
            EXPECT_EQ(length, 0);
            continue;
        }
        // As the head of a file: text bytes follow the mark.
        UEFCheckBOM(mark | (length == 4 ? 0 : 0x41414141u << (8 * length)), back, backLength);
        EXPECT_EQ(back, format);
        EXPECT_EQ(backLength, length);
    }
}

TEST(TextFileTest, SaveLoadRoundTrip)
{
    TempTree tree;
    const QString file = tree.path(u"rt.txt"_s);
    for (int format = 0; format <= 3; ++format) {
        for (const QString &text : {u"中文简体 abc\r\n"_s, u"x😀y 🎵"_s, QString()}) {
            SCOPED_TRACE(format);
            int fmt = format;
            ASSERT_TRUE(UEFSaveTextFile(file, text, false, fmt, 0));
            int loaded = -1;
            EXPECT_EQ(UEFLoadTextFile(file, loaded), text);
            // A bare FF FE reads as FF FE 00 00, the UTF-32 mark.
            EXPECT_EQ(loaded, format == 2 && text.isEmpty() ? 4 : format);
        }
    }
    const char *expected[] = {"c3a9", "efbbbfc3a9", "fffee900", "feff00e9"};
    for (int format = 0; format <= 3; ++format) {
        int fmt = format;
        ASSERT_TRUE(UEFSaveTextFile(file, u"é"_s, false, fmt, 0));
        EXPECT_EQ(readAll(file), hex(expected[format]));
    }
    int fmt = 0;
    ASSERT_TRUE(UEFSaveTextFile(file, u"中"_s, false, fmt, 0, 936));
    EXPECT_EQ(readAll(file), hex("d6d0"));
}

TEST(TextFileTest, DecodeTable)
{
    // File bytes, format asked for, ANSI code page, text, format reported.
    const std::tuple<const char *, int, int, QString, int> cases[] = {
        {"efbbbfe4b8ad", 0, 0, u"\uFEFF中"_s, 0}, // mark kept when the format differs
        {"efbbbfe4b8ad", 0, 936, u"锘夸腑"_s, 0}, // mojibake through GBK
        {"efbbbf41ff", -1, 0, u"A\uFFFD"_s, 1}, // broken UTF-8
        {"41004200", 2, 0, u"AB"_s, 2}, // UTF-16 without a mark
        {"fffe0041", 3, 0, u"\uFFFEA"_s, 3}, // the other order's mark is text
        {"fffe00004100", 2, 0, u"\uFEFF\u0000A"_s, 2}, // UTF-32 mark read as UTF-16
        {"fffe41004299", -1, 0, u"A\u9942"_s, 2},
        {"fffe41004299ab", -1, 0, u"A\u9942\u00AB"_s, 2}, // odd byte count
        {"feff4e2d42", -1, 0, u"中B"_s, 3},
        {"e9", 2, 0, u"é"_s, 2},
        {"fffe000041000000", -1, 0, u""_s, 4}, // UTF-32 is not read
        {"0000feff00000041", -1, 0, u""_s, 5},
        {"fffe000041000000", 5, 0, u""_s, 5},
        {"616263", 6, 0, u""_s, 6}, // bad formats read nothing
        {"616263", -2, 0, u""_s, -2},
        {"", -1, 0, u""_s, 0},
    };
    for (const auto &[bytes, in, codePage, text, out] : cases) {
        int fmt = in;
        EXPECT_EQ(UEFDecodeText(hex(bytes), fmt, codePage), text) << bytes << " as " << in;
        EXPECT_EQ(fmt, out) << bytes << " as " << in;
    }
}

TEST(TextFileTest, SaveRefusedAndUtf32)
{
    TempTree tree;
    const QString file = tree.path(u"r.txt"_s);
    for (const auto &[fmtIn, append] : {std::pair {6, true}, {-2, true}, {-1, false}}) {
        int fmt = fmtIn;
        EXPECT_FALSE(UEFSaveTextFile(file, u"x"_s, append, fmt, 1));
    }
    EXPECT_FALSE(QFileInfo::exists(file));

    // UTF-32 writes its mark, then gives up on the text.
    for (const auto &[format, mark] : {std::pair {4, "fffe0000"}, {5, "0000feff"}}) {
        int fmt = format;
        EXPECT_FALSE(UEFSaveTextFile(file, u"abc"_s, false, fmt, 0));
        EXPECT_EQ(readAll(file), hex(mark));
    }
    int fmt = -1;
    EXPECT_FALSE(UEFSaveTextFile(file, u"abc"_s, true, fmt, 0));
    EXPECT_EQ(fmt, 5);
    EXPECT_EQ(readAll(file), hex("0000feff"));
    fmt = 4;
    EXPECT_TRUE(UEFSaveTextFile(file, QString(), false, fmt, 0));
}

TEST(TextFileTest, AppendFollowsTheFile)
{
    TempTree tree;
    const QString u16 = tree.path(u"u16.txt"_s);
    int fmt = 2;
    ASSERT_TRUE(UEFSaveTextFile(u16, u"ab"_s, false, fmt, 0));
    fmt = -1;
    ASSERT_TRUE(UEFSaveTextFile(u16, u"cd"_s, true, fmt, 1));
    EXPECT_EQ(fmt, 2);
    EXPECT_EQ(readAll(u16), hex("fffe6100620063006400"));

    const QString plain = tree.writeFile(u"plain.txt"_s, "x");
    fmt = -1;
    ASSERT_TRUE(UEFSaveTextFile(plain, u"中"_s, true, fmt, 2, 936));
    EXPECT_EQ(fmt, 0);
    EXPECT_EQ(readAll(plain), hex("78d6d0"));

    // A new file takes the default format, but appending never writes a mark.
    const QString fresh = tree.path(u"new.txt"_s);
    fmt = -1;
    ASSERT_TRUE(UEFSaveTextFile(fresh, u"é"_s, true, fmt, 1));
    EXPECT_EQ(fmt, 1);
    EXPECT_EQ(readAll(fresh), hex("c3a9"));

    // Not appending truncates.
    fmt = 3;
    ASSERT_TRUE(UEFSaveTextFile(plain, u"A"_s, false, fmt, 0));
    EXPECT_EQ(readAll(plain), hex("feff0041"));
}

TEST(TextFileTest, MissingEmptyAndHugeFiles)
{
    TempTree tree;
    const QString folder = tree.makeDir(u"dir"_s);
    for (const QString &path : {tree.path(u"nope.txt"_s), folder}) {
        SCOPED_TRACE(path.toStdString());
        EXPECT_EQ(UEFCheckTextFileFormat(path), -1);
        int fmt = -1;
        EXPECT_TRUE(UEFLoadTextFile(path, fmt).isEmpty());
        EXPECT_EQ(fmt, -1);
        EXPECT_TRUE(ReadText(path).isEmpty());
    }
    int fmt = 1;
    EXPECT_FALSE(UEFSaveTextFile(folder, u"x"_s, false, fmt, 0));
    EXPECT_FALSE(WriteText(u"x"_s, folder, false));
    EXPECT_FALSE(WriteText(u"x"_s, folder, true));
    EXPECT_FALSE(WriteText(u"x"_s, tree.path(u"no/dir/f.txt"_s), false));

    const QString empty = tree.writeFile(u"zero.txt"_s);
    EXPECT_EQ(UEFCheckTextFileFormat(empty), 0);
    fmt = -1;
    EXPECT_TRUE(UEFLoadTextFile(empty, fmt).isEmpty());
    EXPECT_EQ(fmt, 0);
    fmt = 7;
    EXPECT_TRUE(UEFLoadTextFile(tree.writeFile(u"a.txt"_s, "abc"), fmt).isEmpty());

    const QString huge = tree.makeSparseFile(u"huge.txt"_s, (qint64(4) << 30) + 1);
    if (huge.isEmpty())
        GTEST_SKIP() << "no sparse files here";
    fmt = -1;
    EXPECT_TRUE(UEFLoadTextFile(huge, fmt).isEmpty());
}

TEST(TextFileTest, ReadAndWriteText)
{
    const std::pair<QByteArray, QString> cases[] = {
        {"a\r\nb\r\n", u"a\r\nb"_s},
        {"a\nb", u"a\r\nb"_s},
        {"a\rb\r", u"a\r\nb"_s},
        {"a\n\nb", u"a\r\n\r\nb"_s},
        {"a\r\n\r\n", u"a\r\n"_s},
        {"\n\r", u"\r\n"_s},
        {"\n", u""_s},
        {"", u""_s},
        {"\xE4\xB8\xAD\n", u"中"_s},
    };
    TempTree tree;
    for (const auto &[bytes, text] : cases)
        EXPECT_EQ(ReadText(tree.writeFile(u"r.txt"_s, bytes)), text) << bytes.toHex().constData();
    EXPECT_EQ(ReadText(tree.writeFile(u"g.txt"_s, "\xD6\xD0\r\n\xCE\xC4"), 936), u"中\r\n文"_s);

    const QString file = tree.writeFile(u"w.txt"_s, "old content");
    ASSERT_TRUE(WriteText(u"x"_s, file, false));
    EXPECT_EQ(readAll(file), QByteArray("x\r\n"));
    ASSERT_TRUE(WriteText(u"中"_s, file, true, 936));
    EXPECT_EQ(readAll(file), QByteArray("x\r\n\xD6\xD0\r\n"));
    EXPECT_EQ(ReadText(file, 936), u"x\r\n中"_s);
    ASSERT_TRUE(WriteText(u"a\nb"_s, tree.path(u"fresh.txt"_s), true));
    EXPECT_EQ(ReadText(tree.path(u"fresh.txt"_s)), u"a\r\nb"_s);
}

TEST(TextFileTest, CheckBig5)
{
    EXPECT_FALSE(CheckBIG5(QString()));
    EXPECT_FALSE(CheckBIG5(u"plain ASCII ~@"_s));
    EXPECT_FALSE(CheckBIG5(u"中文简体😀"_s));
    // GBK 81 40 and 81 7E sit at the ends of the trail range, 81 80 just past it.
    ASSERT_EQ(EncodeCodePage(u"丂亊亐"_s, 936), hex("8140817e8180"));
    for (const QString &hit : {u"丂"_s, u"亊"_s}) {
        EXPECT_TRUE(CheckBIG5(hit));
        EXPECT_TRUE(CheckBIG5(u"中文简体 abc"_s + hit));
    }
    EXPECT_FALSE(CheckBIG5(u"中亐"_s));
    // The table is built in one batch conversion; each character alone must agree with it.
    for (char16_t u = 0x80; u < 0xFFFF; u += 13) {
        const QByteArray b = EncodeCodePage(QStringView(&u, 1), 936);
        const bool expected = b.size() == 2 && uchar(b[1]) >= 0x40 && uchar(b[1]) <= 0x7E;
        ASSERT_EQ(CheckBIG5(QString(QChar(u))), expected) << std::hex << int(u);
    }
}
