// The size rule: every form with its edge cases, texts that are no size, and the image tool's
// own resize geometry as a second opinion on the "max" and "%" forms.
#include "imaging/target_size_rule.h"
#include "support/tool_run.h"

#include <QSize>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::imaging {
namespace {

TEST(TargetSizeRule, EachFormInTurn)
{
    struct Case
    {
        const char *text;
        int sourceW, sourceH;
        bool asked;
        int w, h;
        double scale;
    };
    const Case cases[] = {
        {"800max", 400, 300, true, 400, 300, 1.0},
        {"400max", 400, 300, true, 400, 300, 1.0},
        {"200max", 400, 300, true, 200, 150, 0.5},
        {" 200 MAX ", 300, 400, true, 150, 200, 0.5},
        {"100max", 333, 1, true, 100, 1, 100.0 / 333},
        {"50%", 400, 300, true, 200, 150, 0.5},
        {"50%", 401, 301, true, 201, 151, 0.5},
        {"12.5%", 400, 300, true, 50, 38, 0.125},
        {"10%", 3, 2, true, 1, 1, 0.1},
        {"200%", 400, 300, true, 800, 600, 2.0},
        {"0x300", 400, 300, true, 400, 300, 1.0},
        {"x150", 400, 300, true, 200, 150, 0.5},
        {"200X", 400, 300, true, 200, 150, 0.5},
        {"200x0", 400, 300, true, 200, 150, 0.5},
        {"640 x 480", 400, 300, true, 640, 480, 1.6},
        {"640x480", 0, 0, true, 640, 480, 1.0},
        {"1x0", 1000, 1, true, 1, 1, 0.001},
        // "max" holds an x: a damaged max form must not fall through to the sides.
        {"abcmax", 400, 300, false, 400, 300, 1.0},
        {"max", 400, 300, false, 400, 300, 1.0},
        {"0max", 400, 300, false, 400, 300, 1.0},
        {"-100max", 400, 300, false, 400, 300, 1.0},
        {"0%", 400, 300, false, 400, 300, 1.0},
        {"-5%", 400, 300, false, 400, 300, 1.0},
        {"nan%", 400, 300, false, 400, 300, 1.0},
        {"%", 400, 300, false, 400, 300, 1.0},
        {"50%", 0, 0, false, 0, 0, 1.0},
        {"0x0", 400, 300, false, 400, 300, 1.0},
        {"x", 400, 300, false, 400, 300, 1.0},
        {"10x-5", 400, 300, false, 400, 300, 1.0},
        {"axb", 400, 300, false, 400, 300, 1.0},
        {"x300", 0, 0, false, 0, 0, 1.0},
        {"abc", 400, 300, false, 400, 300, 1.0},
        {"800", 400, 300, false, 400, 300, 1.0},
        {"", 400, 300, false, 400, 300, 1.0},
        {"99999x1", 400, 300, false, 400, 300, 1.0},
        {"x30000", 400, 1, false, 400, 1, 1.0},
        {"1000000%", 400, 300, false, 400, 300, 1.0},
        {"99999999999999999999x5", 400, 300, false, 400, 300, 1.0},
    };
    for (const Case &c : cases) {
        int w = -7, h = -7;
        double scale = -7;
        const bool asked = ParseTargetSize(QString::fromUtf8(c.text), c.sourceW, c.sourceH, w, h, scale);
        EXPECT_EQ(asked, c.asked) << c.text;
        EXPECT_EQ(QSize(w, h), QSize(c.w, c.h)) << c.text;
        EXPECT_DOUBLE_EQ(scale, c.scale) << c.text;
    }
}

TEST(TargetSizeRule, AgreesWithTheImageToolsResizeGeometry)
{
    const QSize sources[] = {{400, 300}, {401, 300}, {300, 401}, {333, 7}, {1000, 999}};
    const char *forms[][2] = {
        {"800max", "800x800>"}, {"200max", "200x200>"}, {"50%", "50%"}, {"12.5%", "12.5%"}, {"150%", "150%"}};
    for (const QSize &s : sources) {
        for (const auto &form : forms) {
            const test::ToolResult tool = test::runTool(u"convert"_s,
                {u"-size"_s, u"%1x%2"_s.arg(s.width()).arg(s.height()), u"xc:white"_s, u"-resize"_s,
                    QString::fromUtf8(form[1]), u"-format"_s, u"%wx%h"_s, u"info:"_s});
            if (tool.exitCode == -1)
                GTEST_SKIP() << "ImageMagick is not there";
            int w = 0, h = 0;
            double scale = 0;
            ParseTargetSize(QString::fromUtf8(form[0]), s.width(), s.height(), w, h, scale);
            EXPECT_EQ(u"%1x%2"_s.arg(w).arg(h), tool.output.trimmed()) << form[0] << " of " << s.width();
        }
    }
}

} // namespace
} // namespace qb::imaging
