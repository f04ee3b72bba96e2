// The multi-mode control's model: defaults, the property rules, the modes' clicks and pickers, the
// events in order with their status texts, the timer, and the host window behaviours.
#include "button_test_support.h"
#include "controls/ctl_button_children.h"

#include <QHash>
#include <QLineEdit>
#include <QSignalSpy>
#include <QTest>
#include <QWheelEvent>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::controls {
namespace {

using testing::RecordEvents;
using testing::SendClick;
using testing::SendEnter;
using testing::SendLeave;
using testing::SendMouse;
using testing::TestButton;

TEST(CtlButton, ANewControlStartsWithTheStoredDefaults)
{
    TestButton b;
    // Two keys name their property differently; ID is kept for the host and is no property.
    const QHash<QString, QString> properties {{u"ToolTipString"_s, u"Tooltip"_s}, {u"Value"_s, u"value"_s}};
    for (const auto &[key, value] : testing::kStoredDefaults) {
        if (!value.isValid() || key == u"ID"_s)
            continue;
        const QVariant got = b.property(properties.value(key, key).toLatin1().constData());
        EXPECT_TRUE(got == value) << key.toStdString() << " " << got.toString().toStdString();
    }
    EXPECT_EQ(b.Font(), b.font());
    EXPECT_TRUE(b.Icon().isNull());
    EXPECT_EQ(b.ListIndex(), -1);
    EXPECT_EQ(b.ListCount(), 0);
    EXPECT_TRUE(b.IsWinNT());
    ASSERT_NE(b.findChild<QLineEdit *>(u"txtText"_s), nullptr);
    ASSERT_NE(b.findChild<QComboBox *>(u"cmbCombo"_s), nullptr);
    EXPECT_FALSE(b.textBox()->isVisibleTo(&b));
    EXPECT_FALSE(b.TextBoxVisible());
}

TEST(CtlButton, StyleOverwritesEarlierColoursAndRenders)
{
    TestButton b;
    b.resize(100, 24);
    b.setBackColor(0x112233);
    b.setForeColor(0x445566);
    b.setStyle(27);
    EXPECT_EQ(b.BackColor(), 0x202020u);
    EXPECT_EQ(b.ForeColor(), 0xFFFFFFu);
    EXPECT_EQ(b.ShowBorder(), 0);
    EXPECT_EQ(b.redraws.last(), u"Style"_s);
    b.setStyle(3);
    EXPECT_EQ(b.BackColor(), 0xF0DEDFu);
    EXPECT_TRUE(b.ShowCorner());
}

TEST(CtlButton, CaptionOutsideTheTimeMaskIsIgnored)
{
    TestButton b;
    b.setTextFormat(kTextFormatTime);
    b.setStatus(1);
    QStringList log;
    RecordEvents(b, log);
    for (const QString &text : {u"abc"_s, u"1:02:03,004"_s, u"01:02:03.004"_s, QString(), u"01:02:03,0045"_s})
        b.setCaption(text);
    EXPECT_TRUE(log.isEmpty()) << log.join(u' ').toStdString();
    EXPECT_EQ(b.Caption(), QString());
    EXPECT_EQ(b.Status(), 1);
    b.setCaption(u"01:02:03,004"_s);
    EXPECT_EQ(b.Caption(), u"01:02:03,004"_s);
    EXPECT_EQ(log, (QStringList {u"ValueChange"_s, u"CaptionChange"_s}));
    EXPECT_EQ(b.Status(), 0);
    // Free text takes anything; with Refresh False there is no ValueChange.
    log.clear();
    b.setTextFormat(kTextFormatPlain);
    b.setRefresh(false);
    b.setCaption(u"free"_s);
    EXPECT_EQ(log, QStringList {u"CaptionChange"_s});
    EXPECT_EQ(b.Caption(), u"free"_s);
}

TEST(CtlButton, ValueClampsAndAnimatesItsRise)
{
    // A rise of two or more repaints eight equal steps that stop one short of the goal, then the goal.
    struct Case
    {
        double start, max, written, result;
        int animated; // repaints "Value_For...Next"
        double first, eighth; // the value at the first and the last of them
        int redraws, valueChanges; // all repaints, and ValueChange
    };
    const Case cases[] = {
        {0, 100, 50, 50, 8, 6.125, 49, 9, 1},
        {0, 100, 1, 1, 0, 0, 0, 1, 1},
        {0, 100, 2, 2, 8, 0.125, 1, 9, 1},
        {0, 100, -1, 100, 8, 12.375, 99, 9, 1}, // -1 fills the bar
        {0, 100, 150, 100, 8, 12.375, 99, 9, 1},
        {10, 100, -5, 0, 0, 0, 0, 1, 1},
        {60, 100, 10, 10, 0, 0, 0, 1, 1}, // a fall jumps at once
        {30, 100, 30, 30, 0, 0, 0, 0, 0}, // the same value: nothing
        {0, 1, 0.5, 0.5, 0, 0, 0, 1, 1},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.written);
        TestButton b;
        b.resize(80, 20);
        b.setRefresh(false);
        b.setMax(c.max);
        b.setvalue(c.start);
        b.setRefresh(true);
        b.redraws.clear();
        b.valuesAtRedraw.clear();
        QSignalSpy changes(&b, &ctlButton::ValueChange);
        b.setvalue(c.written);
        EXPECT_EQ(b.value(), c.result);
        EXPECT_EQ(b.redrawsOf(u"Value_For...Next"_s), c.animated);
        EXPECT_EQ(b.redraws.size(), c.redraws);
        EXPECT_EQ(changes.count(), c.valueChanges);
        if (c.animated > 0) {
            EXPECT_DOUBLE_EQ(b.valuesAtRedraw.at(0), c.first);
            for (int i = 1; i < 8; ++i) // equal steps
                EXPECT_DOUBLE_EQ(b.valuesAtRedraw.at(i) - b.valuesAtRedraw.at(i - 1), c.first - c.start);
            EXPECT_DOUBLE_EQ(b.valuesAtRedraw.at(7), c.eighth);
            EXPECT_EQ(b.valuesAtRedraw.last(), c.result);
        }
    }
}

TEST(CtlButton, MaxBelowTheValueBringsTheValueDown)
{
    TestButton b;
    b.setRefresh(false);
    b.setvalue(80);
    b.setMax(50);
    EXPECT_EQ(b.value(), 50.0);
    EXPECT_EQ(b.Max(), 50.0);
    b.setMax(200);
    EXPECT_EQ(b.value(), 50.0);
    b.setMin(10);
    EXPECT_EQ(b.Min(), 10.0);
    EXPECT_EQ(b.value(), 50.0); // Min takes no part in the value
}

TEST(CtlButton, RefreshFalseSuppressesEveryReDraw)
{
    QWidget container;
    TestButton b(&container);
    TestButton sibling(&container);
    b.resize(120, 24);
    b.ReDraw(u"first"_s, 0, false, 10, true);
    const QImage shown = b.Image();
    b.setRefresh(false);
    b.redraws.clear();
    const int renders = b.renderCount();
    b.setCaption(u"x"_s);
    b.setvalue(70);
    b.setStyle(5);
    b.setMode(ctlButton::ucModeOption);
    b.setStatus(2);
    b.setChecked(true);
    b.setBackColor(0x123456);
    b.setEnabled(false);
    b.setEnabled(true);
    b.SetThemeColor(4);
    b.FlashButton(5, 0xFF);
    b.ReDraw(u"direct"_s, 1, true, 10, true, 0xFF);
    b.resize(140, 30);
    SendEnter(&b, QPoint(3, 3));
    SendClick(&b, Qt::LeftButton, QPoint(3, 3));
    QTest::qWait(20);
    EXPECT_TRUE(b.redraws.isEmpty()) << b.redraws.join(u' ').toStdString();
    EXPECT_EQ(b.renderCount(), renders);
    EXPECT_EQ(b.Image(), shown);
    b.setRefresh(true);
    EXPECT_EQ(b.redraws, QStringList {u"Refresh"_s});
    EXPECT_EQ(b.renderCount(), renders + 4);
    EXPECT_EQ(b.Image().size(), QSize(140, 30));
}

TEST(CtlButton, BarModesTurnShowCornerOffForGood)
{
    for (const int bar : {int(ctlButton::ucModeStatusBar), int(ctlButton::ucModeDragBar)}) {
        TestButton b;
        b.resize(100, 20);
        ASSERT_TRUE(b.ShowCorner());
        b.setMode(bar);
        EXPECT_FALSE(b.ShowCorner());
        b.setMode(ctlButton::ucModeButton);
        EXPECT_FALSE(b.ShowCorner());
        EXPECT_EQ(b.windowRegion(), QRegion(0, 0, 101, 21));
        EXPECT_EQ(b.focusPolicy(), Qt::StrongFocus);
        b.setMode(bar);
        EXPECT_EQ(b.focusPolicy(), Qt::NoFocus);
    }
}

TEST(CtlButton, ListIndexAndListCountSplitTheItems)
{
    struct Case
    {
        QString items, caption;
        int index, count;
    };
    const Case cases[] = {
        {u"a|b|c"_s, u"b"_s, 1, 3},
        {u"a|b|c"_s, u"a"_s, 0, 3},
        {u"a|b|c"_s, u"B"_s, -1, 3}, // binary comparison
        {u"abc"_s, u"abc"_s, -1, 0}, // no "|": no list
        {QString(), QString(), -1, 0},
        {u"x||y"_s, QString(), 1, 3},
    };
    for (const Case &c : cases) {
        TestButton b;
        b.setComboBoxItems(c.items);
        b.setCaption(c.caption);
        EXPECT_EQ(b.ListIndex(), c.index) << c.items.toStdString();
        EXPECT_EQ(b.ListCount(), c.count) << c.items.toStdString();
    }
    TestButton b;
    b.setComboBoxItems(u"甲|乙|丙"_s);
    b.setListIndex(2);
    EXPECT_EQ(b.Caption(), u"丙"_s);
    EXPECT_EQ(b.redraws.last(), u"ListIndex"_s);
    b.setListIndex(3);
    b.setListIndex(-1);
    EXPECT_EQ(b.Caption(), u"丙"_s);
}

TEST(CtlButton, OptionButtonsClearTheirSiblings)
{
    QWidget container;
    TestButton first(&container);
    TestButton second(&container);
    TestButton check(&container);
    TestButton plain(&container);
    for (TestButton *b : {&first, &second, &check, &plain})
        b->resize(60, 20);
    first.setMode(ctlButton::ucModeOption);
    second.setMode(ctlButton::ucModeOption);
    check.setMode(ctlButton::ucModeCheck);
    first.setChecked(true);
    check.setChecked(true);
    plain.setChecked(true); // a plain button is no member of the group
    SendClick(&second, Qt::LeftButton, QPoint(5, 5));
    EXPECT_TRUE(second.Checked());
    EXPECT_FALSE(first.Checked());
    EXPECT_FALSE(check.Checked());
    EXPECT_TRUE(plain.Checked());
    // Mode 0 written clears the checks of the others too.
    first.setChecked(true);
    plain.setMode(ctlButton::ucModeButton);
    EXPECT_FALSE(first.Checked());
    EXPECT_FALSE(second.Checked());
    EXPECT_TRUE(plain.Checked());
}

TEST(CtlButton, ButtonModesClickWithTheLeftButtonOnly)
{
    struct Case
    {
        int mode;
        Qt::MouseButton button;
        bool click, checkedAfter;
    };
    const Case cases[] = {
        {0, Qt::LeftButton, true, false},
        {0, Qt::RightButton, false, false},
        {1, Qt::LeftButton, true, true},
        {1, Qt::RightButton, false, false},
        {2, Qt::LeftButton, true, true},
        {2, Qt::MiddleButton, false, false},
        {5, Qt::LeftButton, false, false},
        {8, Qt::LeftButton, false, false},
    };
    for (const Case &c : cases) {
        SCOPED_TRACE(c.mode);
        TestButton b;
        b.resize(60, 20);
        b.setMode(c.mode);
        QSignalSpy clicks(&b, &ctlButton::Click);
        SendClick(&b, c.button, QPoint(10, 10));
        EXPECT_EQ(clicks.count(), c.click ? 1 : 0);
        EXPECT_EQ(b.Checked(), c.checkedAfter);
    }
    // A check button flips back on the next click; a release outside is no click.
    TestButton b;
    b.resize(60, 20);
    b.setMode(ctlButton::ucModeCheck);
    SendClick(&b, Qt::LeftButton, QPoint(10, 10));
    SendClick(&b, Qt::LeftButton, QPoint(10, 10));
    EXPECT_FALSE(b.Checked());
    QSignalSpy clicks(&b, &ctlButton::Click);
    SendMouse(&b, QEvent::MouseButtonPress, Qt::LeftButton, QPoint(10, 10));
    SendMouse(&b, QEvent::MouseButtonRelease, Qt::LeftButton, QPoint(100, 10));
    EXPECT_EQ(clicks.count(), 0);
    EXPECT_FALSE(b.Checked());
    EXPECT_EQ(b.Status(), 0);
}

TEST(CtlButton, TextModeOpensTheBoxOverTheField)
{
    struct Case
    {
        QString title, iconText;
        int symbol, border;
        QRect expected;
    };
    // 200 x 30: the box is 22 high at 4.
    const Case cases[] = {
        {QString(), QString(), 0, 1, QRect(0, 4, 198, 22)},
        {u"名称"_s, QString(), 0, 1, QRect(50, 4, 148, 22)},
        {u"名称"_s, u"x"_s, 0, 1, QRect(74, 4, 132, 22)}, // icon 16: +24 on the left, -16 on the width
        {u"名称"_s, QString(), 1, 1, QRect(50, 4, 133, 22)},
        {u"名称"_s, QString(), 0, 3, QRect(50, 4, 149, 22)},
        {u"名称"_s, QString(), 0, 0, QRect(50, 4, 150, 22)},
    };
    for (const Case &c : cases) {
        TestButton b;
        b.resize(200, 30);
        b.setMode(ctlButton::ucModeText);
        b.setTitle(c.title);
        b.setTitleWidth(50);
        b.setIconSize(16);
        b.setIconText(c.iconText);
        b.setShowDropDownSymbol(c.symbol);
        b.setShowBorder(c.border);
        b.setCaption(u"现有文字"_s);
        SendClick(&b, Qt::LeftButton, QPoint(100, 10));
        ASSERT_TRUE(b.TextBoxVisible());
        EXPECT_EQ(b.textBox()->geometry(), c.expected) << c.title.toStdString() << c.iconText.toStdString();
        EXPECT_EQ(b.textBox()->text(), u"现有文字"_s);
    }
    // The right button opens it too; ClickIt with fullselect selects the whole text.
    TestButton b;
    b.resize(200, 30);
    b.setMode(ctlButton::ucModeText);
    b.setCaption(u"abc"_s);
    SendClick(&b, Qt::RightButton, QPoint(100, 10));
    EXPECT_TRUE(b.TextBoxVisible());
    b.textBox()->hide();
    b.ClickIt(true);
    EXPECT_TRUE(b.TextBoxVisible());
    EXPECT_EQ(b.textBox()->selectedText(), u"abc"_s);
}

TEST(CtlButton, ComboModeFillsTheListAndTakesTheChoice)
{
    TestButton b;
    b.resize(200, 30);
    b.setMode(ctlButton::ucModeCombo);
    b.setComboBoxItems(u"甲|乙|丙"_s);
    b.setCaption(u"乙"_s);
    SendClick(&b, Qt::RightButton, QPoint(50, 10));
    EXPECT_FALSE(b.comboBox()->isVisibleTo(&b));
    b.ClickIt();
    ASSERT_TRUE(b.comboBox()->isVisibleTo(&b));
    EXPECT_EQ(b.comboBox()->count(), 3);
    EXPECT_EQ(b.comboBox()->currentIndex(), 1);
    QStringList log;
    RecordEvents(b, log);
    b.comboBox()->setCurrentIndex(2);
    Q_EMIT b.comboBox()->activated(2);
    EXPECT_EQ(b.Caption(), u"丙"_s);
    EXPECT_EQ(log, (QStringList {u"ValueChange"_s, u"CaptionChange"_s, u"SelectedChange"_s}));
    EXPECT_FALSE(b.comboBox()->isVisibleTo(&b));
    // One item without a separator is still offered.
    b.setComboBoxItems(u"唯一"_s);
    b.ClickIt();
    EXPECT_EQ(b.comboBox()->count(), 1);
    EXPECT_EQ(b.comboBox()->itemText(0), u"唯一"_s);
}

TEST(CtlButton, FolderModeAsksForAFolder)
{
    QWidget host;
    TestButton b(&host);
    b.resize(200, 24);
    b.setMode(ctlButton::ucModeFolder);
    b.setTitle(u"输出目录"_s);
    b.setCaption(u"/old"_s);
    QStringList log;
    RecordEvents(b, log);
    b.folderAnswer = u"/srv/data"_s;
    SendClick(&b, Qt::LeftButton, QPoint(10, 10));
    EXPECT_EQ(b.dialogs, QStringList {u"folder|输出目录|/old"_s});
    EXPECT_EQ(b.dialogHost, &host);
    EXPECT_EQ(b.Caption(), u"/srv/data"_s);
    EXPECT_TRUE(log.contains(u"ValueChange"_s));
    EXPECT_EQ(log.mid(log.indexOf(u"ValueChange"_s)), (QStringList {u"ValueChange"_s, u"SelectedChange"_s}));
    EXPECT_EQ(b.redraws.last(), u"MouseClick_ucModeFolder"_s);
    // Cancelled: nothing, unless CancelClear.
    log.clear();
    b.folderAnswer.clear();
    b.ClickIt();
    EXPECT_EQ(b.Caption(), u"/srv/data"_s);
    EXPECT_FALSE(log.contains(u"ValueChange"_s));
    b.setCancelClear(true);
    b.ClickIt();
    EXPECT_EQ(b.Caption(), QString());
    EXPECT_EQ(log, (QStringList {u"ValueChange"_s, u"SelectedChange"_s}));
}

TEST(CtlButton, FileModeOpensTheFileDialogInTheCaptionsFolder)
{
    QWidget host;
    TestButton b(&host);
    b.resize(200, 24);
    b.setMode(ctlButton::ucModeFile);
    b.setCaption(u"/home/user/片/a.mkv"_s);
    b.fileAnswer = u"/home/user/b.srt"_s;
    QSignalSpy selected(&b, &ctlButton::SelectedChange);
    b.ClickIt();
    EXPECT_EQ(b.dialogs, QStringList {u"file||/home/user/片|*.* (*)"_s});
    EXPECT_EQ(b.Caption(), u"/home/user/b.srt"_s);
    EXPECT_EQ(selected.count(), 1);
    EXPECT_EQ(b.redraws.last(), u"MouseClick_ucModeFile"_s);
    b.setFileFilter(u"字幕|*.srt;*.ass|*.*|*.*"_s);
    b.fileAnswer.clear();
    b.ClickIt();
    EXPECT_EQ(b.dialogs.last(), u"file||/home/user|字幕 (*.srt *.ass);;*.* (*)"_s);
    EXPECT_EQ(b.Caption(), u"/home/user/b.srt"_s); // cancelled
    b.setCancelClear(true);
    b.ClickIt();
    EXPECT_EQ(b.Caption(), QString());
    EXPECT_EQ(selected.count(), 2);
}

TEST(CtlButton, ClickModeOverridesTheModeAndAboveSevenDoesNothing)
{
    TestButton b;
    b.resize(100, 20);
    QSignalSpy clicks(&b, &ctlButton::Click);
    b.ClickIt();
    EXPECT_EQ(clicks.count(), 1);
    b.MouseClick(ctlButton::ucModeFolder, u"test"_s);
    EXPECT_EQ(b.dialogs.size(), 1);
    b.MouseClick(8, u"test"_s);
    b.MouseClick(9, u"test"_s);
    b.MouseClick(-2, u"test"_s);
    EXPECT_EQ(b.dialogs.size(), 1);
    EXPECT_EQ(clicks.count(), 1);
    b.setMode(ctlButton::ucModeStatusBar);
    b.ClickIt(true);
    EXPECT_EQ(clicks.count(), 1);
    EXPECT_FALSE(b.TextBoxVisible());
}

TEST(CtlButton, MouseEventsComeInOrderWithTheirStatusTexts)
{
    TestButton b;
    b.resize(100, 20);
    QStringList log;
    RecordEvents(b, log);
    SendEnter(&b, QPoint(5, 6));
    EXPECT_EQ(b.Status(), 1);
    SendMouse(&b, QEvent::MouseMove, Qt::NoButton, QPoint(7, 8), Qt::ControlModifier);
    SendMouse(&b, QEvent::MouseButtonPress, Qt::LeftButton, QPoint(5, 6), Qt::ShiftModifier);
    EXPECT_EQ(b.Status(), 2);
    SendMouse(&b, QEvent::MouseButtonRelease, Qt::LeftButton, QPoint(5, 6), Qt::ShiftModifier);
    EXPECT_EQ(b.Status(), 3);
    SendLeave(&b);
    EXPECT_EQ(b.Status(), 0);
    EXPECT_EQ(log,
        (QStringList {u"MouseEnter"_s, u"Status(Mouse Enter)"_s, u"MouseMove(0,2,7,8)"_s,
            u"MouseDown(1,1,5,6)"_s, u"Status(LButton Down)"_s, u"MouseUp(1,1,5,6)"_s,
            u"Status(LButton Up)"_s, u"Click"_s, u"Status(Click)"_s, u"MouseLeave"_s,
            u"Status(Mouse Leave)"_s}));

    log.clear();
    SendClick(&b, Qt::RightButton, QPoint(1, 2));
    SendClick(&b, Qt::MiddleButton, QPoint(1, 2));
    EXPECT_EQ(log,
        (QStringList {u"MouseDown(2,0,1,2)"_s, u"Status(RButton Down)"_s, u"MouseUp(2,0,1,2)"_s,
            u"Status(RButton Up)"_s, u"MouseDown(4,0,1,2)"_s, u"Status(MButton Down)"_s,
            u"MouseUp(4,0,1,2)"_s, u"Status(MButton Up)"_s}));

    // A double click: one Click, then DblClick for the second press and no second Click.
    log.clear();
    SendClick(&b, Qt::LeftButton, QPoint(3, 3));
    SendMouse(&b, QEvent::MouseButtonDblClick, Qt::LeftButton, QPoint(3, 3));
    SendMouse(&b, QEvent::MouseButtonRelease, Qt::LeftButton, QPoint(3, 3));
    EXPECT_EQ(log.count(u"Click"_s), 1);
    EXPECT_EQ(log.mid(log.indexOf(u"Status(Click)"_s) + 1),
        (QStringList {u"DblClick"_s, u"Status(DblClick)"_s, u"MouseUp(1,0,3,3)"_s, u"Status(LButton Up)"_s}));
    log.clear();
    SendMouse(&b, QEvent::MouseButtonDblClick, Qt::RightButton, QPoint(3, 3));
    SendMouse(&b, QEvent::MouseButtonDblClick, Qt::MiddleButton, QPoint(3, 3));
    EXPECT_EQ(log, (QStringList {u"Status(RButton DblClick)"_s, u"Status(MButton DblClick)"_s}));

    log.clear();
    for (const int delta : {120, -120}) {
        QWheelEvent wheel(QPointF(5, 5), b.mapToGlobal(QPointF(5, 5)), QPoint(), QPoint(0, delta),
            Qt::NoButton, Qt::NoModifier, Qt::NoScrollPhase, false);
        QApplication::sendEvent(&b, &wheel);
    }
    EXPECT_EQ(log,
        (QStringList {u"MouseWheel(1)"_s, u"Status(MouseWheel - Up)"_s, u"MouseWheel(-1)"_s,
            u"Status(MouseWheel - Down)"_s}));
}

TEST(CtlButton, TimerCountsUpOrDownAndStopsAtItsDuration)
{
    struct Case
    {
        int type;
        QStringList ticks;
    };
    const Case cases[] = {
        {0, {u"TimerElapsed(16)"_s, u"TimerElapsed(32)"_s, u"TimerElapsed(48)"_s, u"TimerElapsed(50)"_s}},
        {1,
            {u"TimerRemaining(34)"_s, u"TimerRemaining(18)"_s, u"TimerRemaining(2)"_s,
                u"TimerRemaining(0)"_s}},
    };
    for (const Case &c : cases) {
        TestButton b;
        b.setTimerInterval(10);
        b.setTimerDuration(50);
        b.setTimerType(c.type);
        QStringList log;
        RecordEvents(b, log);
        b.setTimerEnabled(true);
        ASSERT_TRUE(QTest::qWaitFor([&] { return !b.TimerEnabled(); }, 5000));
        QStringList expected {u"TimerInitailized"_s};
        for (const QString &tick : c.ticks) {
            expected << tick;
            const QString count = tick.mid(tick.indexOf(u'(') + 1).chopped(1);
            expected << u"Status(Timer: "_s + count + u')';
        }
        expected << u"TimerTerminated"_s;
        EXPECT_EQ(log, expected);
    }
}

TEST(CtlButton, SizeLimitsGoToTheHostWindowWhileIntercepting)
{
    QWidget host;
    host.resize(1000, 1000);
    TestButton b(&host);
    b.setWindowSizeLimit(true);
    EXPECT_EQ(host.minimumSize(), QSize(0, 0)); // no interception yet
    QSignalSpy status(&b, qOverload<const QString &>(&ctlButton::Status));
    b.setSubclassEnabled(true);
    ASSERT_EQ(status.count(), 1);
    EXPECT_EQ(status.at(0).at(0).toString(), u"Initailizing Subclassing"_s);
    EXPECT_EQ(host.minimumSize(), QSize(640, 480));
    EXPECT_EQ(host.maximumSize(), QSize(800, 600));
    EXPECT_EQ(host.size(), QSize(800, 600));
    host.resize(100, 100);
    EXPECT_EQ(host.size(), QSize(640, 480));
    b.setWindowSizeMinWidth(700);
    EXPECT_EQ(host.minimumWidth(), 700);
    b.setWindowSizeLimit(false);
    EXPECT_EQ(host.minimumSize(), QSize(0, 0));
    EXPECT_EQ(host.maximumSize(), QSize(QWIDGETSIZE_MAX, QWIDGETSIZE_MAX));
    b.setWindowSizeLimit(true);
    EXPECT_EQ(host.minimumSize(), QSize(700, 480));
    b.setSubclassEnabled(false);
    EXPECT_EQ(status.last().at(0).toString(), u"Terminating Subclassing"_s);
    EXPECT_EQ(host.minimumSize(), QSize(0, 0));
    EXPECT_EQ(b.afterCount(&host), 0);
}

TEST(CtlButton, BarsMoveAndSizeTheHostThroughTheWindowSystem)
{
    QStringList log; // outlives the control, which reports the end of its interception
    QWidget host;
    TestButton b(&host);
    b.resize(300, 24);
    b.setMode(ctlButton::ucModeStatusBar);
    b.setStatusBarResize(true);
    RecordEvents(b, log);
    // Without interception the bar is a plain control.
    SendMouse(&b, QEvent::MouseButtonPress, Qt::LeftButton, QPoint(10, 10));
    SendMouse(&b, QEvent::MouseButtonRelease, Qt::LeftButton, QPoint(10, 10));
    EXPECT_TRUE(b.systemRequests.isEmpty());

    b.setSubclassEnabled(true);
    log.clear();
    SendMouse(&b, QEvent::MouseButtonPress, Qt::LeftButton, QPoint(10, 10));
    EXPECT_EQ(b.systemRequests, QStringList {u"move"_s});
    EXPECT_FALSE(log.contains(u"Status(LButton Down)"_s)); // the press went to the window system
    const int bottomRight = int(Qt::BottomEdge | Qt::RightEdge);
    SendMouse(&b, QEvent::MouseButtonPress, Qt::LeftButton, QPoint(295, 20));
    EXPECT_EQ(b.systemRequests.last(), u"resize:%1"_s.arg(bottomRight));
    ASSERT_TRUE(QTest::qWaitFor([&] { return log.contains(u"ExitSized"_s); }, 3000));
    EXPECT_TRUE(log.contains(u"Status(Completed sizing.)"_s));

    // The pointer over the grip shows the sizing shape.
    SendMouse(&b, QEvent::MouseMove, Qt::NoButton, QPoint(295, 20));
    EXPECT_EQ(b.cursor().shape(), Qt::SizeFDiagCursor);
    SendMouse(&b, QEvent::MouseMove, Qt::NoButton, QPoint(100, 20));
    EXPECT_EQ(b.cursor().shape(), Qt::ArrowCursor);

    // Without StatusBarResize the whole bar moves the window; a refused request leaves the press
    // to the control.
    b.setStatusBarResize(false);
    b.systemRequests.clear();
    SendMouse(&b, QEvent::MouseButtonPress, Qt::LeftButton, QPoint(295, 20));
    EXPECT_EQ(b.systemRequests, QStringList {u"move"_s});
    b.windowSystemTakes = false;
    log.clear();
    SendMouse(&b, QEvent::MouseButtonPress, Qt::LeftButton, QPoint(100, 20));
    EXPECT_TRUE(log.contains(u"Status(LButton Down)"_s));
    // The drag bar moves too; a button does not.
    b.windowSystemTakes = true;
    b.setMode(ctlButton::ucModeDragBar);
    b.systemRequests.clear();
    SendMouse(&b, QEvent::MouseButtonPress, Qt::LeftButton, QPoint(100, 20));
    SendMouse(&b, QEvent::MouseButtonPress, Qt::RightButton, QPoint(100, 20));
    b.setMode(ctlButton::ucModeButton);
    SendMouse(&b, QEvent::MouseButtonPress, Qt::LeftButton, QPoint(100, 20));
    EXPECT_EQ(b.systemRequests, QStringList {u"move"_s});
}

TEST(CtlButton, HostWindowEventsComeWithTheirStatusTexts)
{
    QStringList log; // outlives the control, which reports the end of its interception
    QWidget host;
    TestButton b(&host);
    b.setSubclassEnabled(true);
    RecordEvents(b, log);
    QMoveEvent move(QPoint(40, 50), QPoint(0, 0));
    QApplication::sendEvent(&host, &move);
    EXPECT_EQ(log,
        (QStringList {u"Status(Form is moving...)"_s, u"WindowPosChanged"_s,
            u"Status(Window Position Changed)"_s, u"Status(Form is move...)"_s}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return log.contains(u"ExitSizeMove"_s); }, 3000));
    EXPECT_EQ(log.mid(4), (QStringList {u"ExitSizeMove"_s, u"Status(Completed moving.)"_s}));

    log.clear();
    QResizeEvent resize(QSize(500, 400), QSize(400, 300));
    QApplication::sendEvent(&host, &resize);
    EXPECT_EQ(log, (QStringList {u"Resize"_s, u"Status(Form is sizing...)"_s}));
    ASSERT_TRUE(QTest::qWaitFor([&] { return log.contains(u"ExitSized"_s); }, 3000));
    EXPECT_EQ(log.mid(2), (QStringList {u"ExitSizeMove"_s, u"Status(Completed sizing.)"_s, u"ExitSized"_s}));

    log.clear();
    QEvent activate(QEvent::WindowActivate);
    QApplication::sendEvent(&host, &activate);
    QEvent deactivate(QEvent::WindowDeactivate);
    QApplication::sendEvent(&host, &deactivate);
    host.setWindowState(Qt::WindowMinimized);
    host.setWindowState(Qt::WindowMaximized);
    EXPECT_EQ(log,
        (QStringList {u"WindowActivated(1)"_s, u"WindowActivated(0)"_s, u"WindowMINIMIZE"_s,
            u"Status(Window MINIMIZE)"_s, u"WindowMAXIMIZE"_s, u"Status(Window MAXIMIZE)"_s,
            u"ExitSized"_s}));
}

TEST(CtlButton, FlashButtonShowsThePressedLookForTheInterval)
{
    TestButton b;
    b.resize(100, 24);
    b.ReDraw(u"first"_s, 0, false, 10, true);
    b.FlashButton(30, 0x0000FF);
    EXPECT_EQ(b.Status(), 2);
    EXPECT_EQ(b.Image(), b.stateImage(2));
    EXPECT_EQ(b.Image().pixelColor(50, 0), QColor(255, 0, 0)); // the forced outline
    ASSERT_TRUE(QTest::qWaitFor([&] { return b.Status() == 0; }, 3000));
    EXPECT_EQ(b.redraws.mid(b.redraws.size() - 2), (QStringList {u"FlashButton"_s, u"Status"_s}));
    EXPECT_EQ(b.Image(), b.stateImage(0));
    EXPECT_EQ(b.Image().pixelColor(50, 0), QColor(0xB3, 0xB2, 0xC4)); // the default outline
}

} // namespace
} // namespace qb::controls
