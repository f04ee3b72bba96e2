// Tests for the code page conversions.
#include "util/code_page.h"

#include <gtest/gtest.h>

#include <tuple>
#include <utility>

using namespace Qt::StringLiterals;
using namespace qb::util;

TEST(CodePageTest, Utf8Validity)
{
    const std::pair<const char *, bool> cases[] = {
        {"", true},
        {"plain", true},
        {"c3a9", true},
        {"efbfbf", true},
        {"f09f9880", true},
        {"f48fbfbf", true},
        {"c0af", false},
        {"e080af", false},
        {"eda080", false},
        {"f4908080", false},
        {"e4b8", false},
        {"80", false},
        {"ff", false},
        {"6162c3", false},
    };
    for (const auto &[digits, valid] : cases)
        EXPECT_EQ(IsValidUtf8(QByteArray::fromHex(digits)), valid) << digits;
}

TEST(CodePageTest, DecodeReplacesWhatIsBroken)
{
    const std::tuple<const char *, int, QString> cases[] = {
        {"61ff62", 65001, u"a\uFFFDb"_s},
        // A cut-off sequence is one replacement; decoding resumes at the byte that broke it.
        {"e4b878", 65001, u"\uFFFDx"_s}, {"eda080", 65001, u"\uFFFD\uFFFD\uFFFD"_s},
        {"f09f9880", 65001, u"\U0001F600"_s}, {"efbbbf41", 65001, u"\uFEFFA"_s},
        {"d6d0cec4", 0, u"中文"_s}, // not UTF-8, so GBK
        {"e4b8ade69687", 0, u"中文"_s},
        // One bad byte sends the whole buffer to GBK, the valid UTF-8 part included.
        {"e4b8add6d0", 0, u"涓\uFFFD中"_s}, {"a4a4a4e5", 950, u"中文"_s}, {"636166e980", 1252, u"café€"_s},
        {"61ff62", 936, u"a\uFFFDb"_s}, {"6181", 936, u"a\uFFFD"_s}, // lead byte at the end
        {"81", 1252, u"\uFFFD"_s}, // hole in the table
    };
    for (const auto &[digits, cp, text] : cases)
        EXPECT_EQ(DecodeCodePage(QByteArray::fromHex(digits), cp), text) << digits << " in " << cp;
    for (const int cp : {12345, -1, 99999}) {
        EXPECT_TRUE(DecodeCodePage("abc", cp).isEmpty()) << cp;
        EXPECT_TRUE(EncodeCodePage(u"abc", cp).isEmpty()) << cp;
    }
}

TEST(CodePageTest, Utf8AgreesWithQtOnValidText)
{
    QString all;
    for (char32_t u = 1; u < 0x10000; u += 7)
        if (!QChar::isSurrogate(u))
            all.append(QChar(char16_t(u)));
    all += u"\U0001F600\U00010000\U0010FFFF"_s;
    const QByteArray encoded = EncodeCodePage(all, 65001);
    EXPECT_EQ(encoded, all.toUtf8());
    EXPECT_TRUE(IsValidUtf8(encoded));
    EXPECT_EQ(DecodeCodePage(encoded, 65001), all);
    EXPECT_EQ(DecodeCodePage(encoded, 0), all);
}

TEST(CodePageTest, EncodeReplacesWhatThePageLacks)
{
    EXPECT_EQ(EncodeCodePage(u"中文", 936), QByteArray("\xD6\xD0\xCE\xC4"));
    EXPECT_EQ(EncodeCodePage(u"中文", 950), QByteArray("\xA4\xA4\xA4\xE5"));
    EXPECT_EQ(EncodeCodePage(u"a\U0001F600b", 936), QByteArray("a?b")); // a pair is one "?"
    EXPECT_EQ(EncodeCodePage(u"a\u0E01\u4E2D", 936), QByteArray("a?\xD6\xD0"));
    EXPECT_EQ(EncodeCodePage(u"é中", 1252), QByteArray("\xE9?"));
    const char16_t lone[] = {u'a', 0xD800, u'b', 0xDC00, 0xD800};
    for (const int cp : {0, 65001, 936, 1252})
        EXPECT_EQ(EncodeCodePage(QStringView(lone, 5), cp), QByteArray("a?b??")) << cp;
}

TEST(CodePageTest, LargeBuffersRoundTrip)
{
    const QString text = u"中文简体，abc\r\n"_s.repeated(200000);
    const QByteArray gbk = EncodeCodePage(text, 936);
    EXPECT_EQ(gbk.size(), 200000 * 15);
    EXPECT_EQ(DecodeCodePage(gbk, 936), text);
    EXPECT_EQ(DecodeCodePage(gbk, 0), text);
    // Thai has no place in GBK: every character is one "?".
    QString thai(300000, Qt::Uninitialized);
    for (qsizetype i = 0; i < thai.size(); ++i)
        thai[i] = QChar(char16_t(0x0E01 + i % 40));
    EXPECT_EQ(EncodeCodePage(thai, 936), QByteArray(300000, '?'));
}
