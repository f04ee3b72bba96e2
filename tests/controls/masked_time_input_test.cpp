// The time mask under typing and stepping, key by key.
#include "controls/masked_time_input.h"

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::controls {
namespace {

using Events = std::vector<MaskEvent>;
const Events kTyped {MaskEvent::ValueChange, MaskEvent::SelectedChange, MaskEvent::ReDraw};
const Events kStepped {MaskEvent::ValueChange, MaskEvent::SelectedChange};

TEST(MaskedTimeInput, EveryPositionMovesTheCaretByTheTable)
{
    struct Case
    {
        int at;
        char key;
        const char16_t *text;
        int caret;
    };
    const Case cases[] = {
        {0, '5', u"50:00:00,000", 1},
        {1, '9', u"09:00:00,000", 3},
        {2, '4', u"00:40:00,000", 4},
        {3, '5', u"00:50:00,000", 4},
        {4, '9', u"00:09:00,000", 6},
        {5, '3', u"00:00:30,000", 7},
        {6, '2', u"00:00:20,000", 7},
        {7, '8', u"00:00:08,000", 9},
        {8, '7', u"00:00:00,700", 10},
        {9, '9', u"00:00:00,900", 10},
        {10, '9', u"00:00:00,090", 11},
        {11, '9', u"00:00:00,009", 12},
    };
    for (const Case &c : cases) {
        MaskedTimeInput input;
        TextBoxState box {u"00:00:00,000"_s, c.at, 0};
        const KeyOutcome out = input.KeyPress(box, kTextFormatTime, c.key);
        EXPECT_EQ(box.Text, QString::fromUtf16(c.text)) << c.at;
        EXPECT_EQ(box.SelStart, c.caret) << c.at;
        EXPECT_EQ(out.events, kTyped) << c.at;
        EXPECT_EQ(out.key, 0) << c.at; // the box never sees a typed key
    }
}

TEST(MaskedTimeInput, RefusedAndIgnoredKeys)
{
    MaskedTimeInput input;
    for (const int at : {0, 2, 3, 5, 6}) {
        TextBoxState box {u"00:00:00,000"_s, at, 0};
        const KeyOutcome out = input.KeyPress(box, kTextFormatTime, '7');
        EXPECT_EQ(out.events, Events {MaskEvent::InputError}) << at;
        EXPECT_EQ(out.key, 0);
        EXPECT_EQ(box.Text, u"00:00:00,000"_s);
    }
    // A letter, and a digit at the end of the text, do nothing and raise nothing.
    TextBoxState box {u"00:00:00,000"_s, 4, 0};
    EXPECT_TRUE(input.KeyPress(box, kTextFormatTime, 'a').events.empty());
    box.SelStart = 12;
    const KeyOutcome atEnd = input.KeyPress(box, kTextFormatTime, '1');
    EXPECT_TRUE(atEnd.events.empty());
    EXPECT_EQ(atEnd.key, 0);
    EXPECT_EQ(box.Text, u"00:00:00,000"_s);
    // Return and Escape hide the box and go on.
    box.SelStart = 0;
    const KeyOutcome enter = input.KeyPress(box, kTextFormatTime, kKeyReturn);
    EXPECT_EQ(enter.key, kKeyReturn);
    EXPECT_FALSE(box.Visible);
    // Format 0 passes every key untouched.
    TextBoxState plain {u"abc"_s, 0, 0};
    EXPECT_EQ(input.KeyPress(plain, kTextFormatPlain, 'x').key, 'x');
    EXPECT_EQ(plain.Text, u"abc"_s);
}

TEST(MaskedTimeInput, ArrowsStepTheFieldAndCarry)
{
    struct Case
    {
        const char16_t *text;
        int caret, key, shift;
        const char16_t *after;
        bool changed;
    };
    const Case cases[] = {
        {u"00:00:55,000", 6, kKeyUp, kShiftMask, u"00:01:05,000", true},
        {u"00:00:55,000", 7, kKeyUp, 0, u"00:00:56,000", true},
        {u"00:30:00,000", 0, kKeyDown, 0, u"00:30:00,000", false},
        {u"00:30:00,000", 3, kKeyDown, 0, u"00:29:00,000", true},
        {u"00:59:00,000", 4, kKeyUp, 0, u"01:00:00,000", true},
        {u"00:00:00,999", 11, kKeyUp, 0, u"00:00:01,000", true},
        {u"01:00:00,000", 1, kKeyDown, kShiftMask, u"01:00:00,000", false},
        {u"99:30:00,000", 0, kKeyUp, 0, u"99:30:00,000", false},
    };
    for (const Case &c : cases) {
        MaskedTimeInput input;
        TextBoxState box {QString::fromUtf16(c.text), c.caret, 0};
        const KeyOutcome out = input.KeyDown(box, kTextFormatTime, c.key, c.shift);
        EXPECT_EQ(out.key, 0);
        EXPECT_EQ(box.Text, QString::fromUtf16(c.after)) << QString::fromUtf16(c.text).toStdString();
        EXPECT_EQ(box.SelStart, c.caret);
        EXPECT_EQ(out.events, c.changed ? kStepped : Events {});
    }
}

TEST(MaskedTimeInput, HomeEndLeftRightSelectFieldsAndDeleteIsSwallowed)
{
    MaskedTimeInput input;
    TextBoxState box {u"01:02:03,004"_s, 4, 0};
    EXPECT_EQ(input.KeyDown(box, kTextFormatTime, kKeyHome, 0).key, 0);
    EXPECT_EQ(std::pair(box.SelStart, box.SelLength), std::pair(0, 2));
    input.KeyDown(box, kTextFormatTime, kKeyEnd, 0);
    EXPECT_EQ(std::pair(box.SelStart, box.SelLength), std::pair(9, 3));
    input.KeyDown(box, kTextFormatTime, kKeyLeft, 0);
    EXPECT_EQ(std::pair(box.SelStart, box.SelLength), std::pair(6, 2));
    input.KeyDown(box, kTextFormatTime, kKeyLeft, 0);
    input.KeyDown(box, kTextFormatTime, kKeyLeft, 0);
    input.KeyDown(box, kTextFormatTime, kKeyLeft, 0);
    EXPECT_EQ(std::pair(box.SelStart, box.SelLength), std::pair(0, 2));
    input.KeyDown(box, kTextFormatTime, kKeyRight, 0);
    EXPECT_EQ(std::pair(box.SelStart, box.SelLength), std::pair(3, 2));
    const KeyOutcome del = input.KeyDown(box, kTextFormatTime, kKeyDelete, 0);
    EXPECT_EQ(del.key, 0);
    EXPECT_EQ(box.Text, u"01:02:03,004"_s);
    // Other keys go on as they are.
    EXPECT_EQ(input.KeyDown(box, kTextFormatTime, 'A', 0).key, 'A');
    EXPECT_EQ(input.KeyDown(box, kTextFormatPlain, kKeyDelete, 0).key, kKeyDelete);
}

} // namespace
} // namespace qb::controls
