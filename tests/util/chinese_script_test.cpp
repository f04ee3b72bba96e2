// Simplified and traditional characters, one at a time: no phrase is rewritten.
#include "util/chinese_script.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::util {
namespace {

TEST(ChineseScript, CharactersConvertOneByOne)
{
    EXPECT_EQ(ToSimplifiedText(u"國語電影，第1集"_s), u"国语电影，第1集"_s);
    EXPECT_EQ(ToTraditionalText(u"国语电影，第1集"_s), u"國語電影，第1集"_s);
    // Character by character the first form wins; a phrase table would have chosen 頭髮.
    EXPECT_EQ(ToTraditionalText(u"头发"_s), u"頭發"_s);
    EXPECT_EQ(ToSimplifiedText(u"plain ASCII\tand 😀"_s), u"plain ASCII\tand 😀"_s);
    EXPECT_EQ(ToSimplifiedText(QString()), QString());
}

} // namespace
} // namespace qb::util
