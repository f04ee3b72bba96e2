// The text box of the multi-mode control's text mode, typed into through Qt's key events: the time
// mask, the overwrite field and free text, with the events the control raises for each key.
#include "button_test_support.h"

#include <QClipboard>
#include <QGuiApplication>
#include <QLineEdit>
#include <QTest>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::controls {
namespace {

using testing::RecordEvents;
using testing::TestButton;

// A control in text mode with its box open on text, the caret at caret.
struct OpenBox
{
    explicit OpenBox(int format, const QString &text, int caret)
    {
        b.resize(220, 30);
        b.setMode(ctlButton::ucModeText);
        b.setTextFormat(format);
        b.setCaption(text);
        b.ClickIt();
        box = b.textBox();
        box->setCursorPosition(caret);
        RecordEvents(b, log);
        b.redraws.clear();
    }
    QStringList log; // outlives the control, which may report its end
    TestButton b;
    QLineEdit *box = nullptr;
};

TEST(ButtonMaskedInput, TypingPassesTheSeparatorsAndRaisesPerKey)
{
    OpenBox o(kTextFormatTime, u"00:00:00,000"_s, 0);
    ASSERT_TRUE(o.b.TextBoxVisible());
    QTest::keyClicks(o.box, u"123"_s);
    EXPECT_EQ(o.box->text(), u"12:30:00,000"_s);
    EXPECT_EQ(o.box->cursorPosition(), 4);
    EXPECT_EQ(o.b.redrawsOf(u"txtText_KeyPress"_s), 3);
    const QStringList perKey {u"ValueChange"_s, u"SelectedChange"_s, u"KeyPress(0)"_s, u"Status(Char)"_s};
    QStringList expected;
    for (const int code : {49, 50, 51}) {
        expected << u"KeyDown(%1,0)"_s.arg(code) << perKey;
        expected << u"KeyUp(%1,0)"_s.arg(code) << u"Status(Key Up)"_s;
    }
    EXPECT_EQ(o.log, expected);
    // Return closes the box and the caption takes the text.
    o.log.clear();
    QTest::keyClick(o.box, Qt::Key_Return);
    EXPECT_FALSE(o.b.TextBoxVisible());
    EXPECT_EQ(o.b.Caption(), u"12:30:00,000"_s);
    EXPECT_EQ(o.log.mid(0, 7),
        (QStringList {u"KeyDown(13,0)"_s, u"KeyPress(13)"_s, u"Status(Char)"_s, u"ValueChange"_s,
            u"CaptionChange"_s, u"SelectedChange"_s, u"KeyUp(13,0)"_s}));
}

TEST(ButtonMaskedInput, ADigitTooLargeForATensPlaceRaisesInputError)
{
    OpenBox o(kTextFormatTime, u"00:00:00,000"_s, 3);
    QTest::keyClick(o.box, Qt::Key_7);
    EXPECT_EQ(o.box->text(), u"00:00:00,000"_s);
    EXPECT_EQ(o.b.Caption(), u"00:00:00,000"_s);
    EXPECT_EQ(o.log.mid(0, 4),
        (QStringList {u"KeyDown(55,0)"_s, u"InputError(55)"_s, u"KeyPress(0)"_s, u"Status(Char)"_s}));
    EXPECT_EQ(o.b.redrawsOf(u"txtText_KeyPress"_s), 0);
}

TEST(ButtonMaskedInput, ShiftUpInTheSecondsCarriesIntoTheMinutes)
{
    OpenBox o(kTextFormatTime, u"00:00:55,000"_s, 6);
    QTest::keyClick(o.box, Qt::Key_Up, Qt::ShiftModifier);
    EXPECT_EQ(o.box->text(), u"00:01:05,000"_s);
    EXPECT_EQ(o.box->cursorPosition(), 6);
    // The Shift key goes down first, by itself.
    EXPECT_EQ(o.log.mid(0, 4),
        (QStringList {u"KeyDown(16,1)"_s, u"ValueChange"_s, u"SelectedChange"_s, u"KeyDown(0,1)"_s}));
}

TEST(ButtonMaskedInput, TheMaskNeverLosesACharacter)
{
    OpenBox o(kTextFormatTime, u"01:02:03,004"_s, 4);
    QGuiApplication::clipboard()->setText(u"99"_s);
    struct Key
    {
        Qt::Key key;
        Qt::KeyboardModifiers modifiers;
    };
    const Key keys[] = {{Qt::Key_A, Qt::NoModifier}, {Qt::Key_Delete, Qt::NoModifier},
        {Qt::Key_Backspace, Qt::NoModifier}, {Qt::Key_V, Qt::ControlModifier},
        {Qt::Key_X, Qt::ControlModifier}, {Qt::Key_Space, Qt::NoModifier}};
    for (const Key &k : keys) {
        QTest::keyClick(o.box, k.key, k.modifiers);
        EXPECT_EQ(o.box->text(), u"01:02:03,004"_s) << k.key;
    }
    EXPECT_FALSE(o.log.contains(u"ValueChange"_s));
    // Typing at the very end does nothing either.
    o.box->setCursorPosition(12);
    QTest::keyClick(o.box, Qt::Key_5);
    EXPECT_EQ(o.box->text(), u"01:02:03,004"_s);
    // The mask's field selection reaches the box.
    QTest::keyClick(o.box, Qt::Key_Home);
    EXPECT_EQ(o.box->selectedText(), u"01"_s);
    QTest::keyClick(o.box, Qt::Key_End);
    EXPECT_EQ(o.box->selectedText(), u"004"_s);
}

TEST(ButtonMaskedInput, OverwriteFormatReplacesInPlaceAndWraps)
{
    OpenBox o(kTextFormatOverwrite, u"abc"_s, 1);
    QTest::keyClicks(o.box, u"XY"_s);
    EXPECT_EQ(o.box->text(), u"aXY"_s);
    EXPECT_EQ(o.box->cursorPosition(), 0);
    EXPECT_EQ(o.log.count(u"ValueChange"_s), 2);
    EXPECT_EQ(o.log.count(u"KeyPress(0)"_s), 2);
    EXPECT_EQ(o.b.redrawsOf(u"txtText_KeyPress"_s), 0); // unlike the time mask
    QTest::keyClick(o.box, Qt::Key_Escape);
    EXPECT_FALSE(o.b.TextBoxVisible());
    EXPECT_EQ(o.b.Caption(), u"aXY"_s);
}

TEST(ButtonMaskedInput, FreeTextPassesTheKeysOn)
{
    OpenBox o(kTextFormatPlain, u"ab"_s, 2);
    QTest::keyClicks(o.box, u"xy"_s);
    QTest::keyClick(o.box, Qt::Key_Backspace);
    EXPECT_EQ(o.box->text(), u"abx"_s);
    EXPECT_EQ(o.log.mid(0, 3), (QStringList {u"KeyDown(88,0)"_s, u"KeyPress(120)"_s, u"Status(Char)"_s}));
    EXPECT_FALSE(o.log.contains(u"ValueChange"_s));
    EXPECT_EQ(o.b.Caption(), u"ab"_s);
    // Leaving the box takes the text.
    QFocusEvent out(QEvent::FocusOut, Qt::ActiveWindowFocusReason);
    QApplication::sendEvent(o.box, &out);
    EXPECT_FALSE(o.b.TextBoxVisible());
    EXPECT_EQ(o.b.Caption(), u"abx"_s);
    EXPECT_EQ(o.log.mid(o.log.size() - 3),
        (QStringList {u"ValueChange"_s, u"CaptionChange"_s, u"SelectedChange"_s}));
}

TEST(ButtonMaskedInput, ClicksInTheBoxAreTheControlsClicks)
{
    OpenBox o(kTextFormatPlain, u"text"_s, 0);
    QTest::mouseClick(o.box, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    QTest::mouseDClick(o.box, Qt::LeftButton, Qt::NoModifier, QPoint(5, 5));
    EXPECT_GE(o.log.count(u"Click"_s), 1);
    EXPECT_EQ(o.log.count(u"DblClick"_s), 1);
    EXPECT_TRUE(o.log.contains(u"Status(DblClick)"_s));
}

} // namespace
} // namespace qb::controls
