// Persistence of the multi-mode control: every key in its order with its default, round trips
// through a map and a settings file, and what the control does when it reads a bag.
#include "button_test_support.h"
#include "controls/button_property_bag.h"

#include <QMetaProperty>
#include <QSettings>
#include <QSignalSpy>
#include <QTemporaryDir>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::controls {
namespace {

// A bag that notes what is asked of it, in order.
class RecordingBag : public PropertyBag
{
public:
    QVariant ReadProperty(const QString &Name, const QVariant &DefaultValue) const override
    {
        reads.append(Name);
        defaults.insert(Name, DefaultValue);
        return DefaultValue;
    }
    void WriteProperty(const QString &Name, const QVariant &Value) override
    {
        writes.append(Name);
        values.insert(Name, Value);
    }
    mutable QStringList reads;
    mutable QVariantMap defaults;
    QStringList writes;
    QVariantMap values;
};

const QStringList kColourKeys {u"ForeColor"_s, u"ForeColorHover"_s, u"ForeColorPressed"_s,
    u"ForeColorDisable"_s, u"BackColor"_s, u"BackColorHover"_s, u"BackColorPressed"_s, u"BackColorDisable"_s,
    u"LightColor"_s, u"BorderColor"_s, u"BorderColorHover"_s, u"BorderColorPressed"_s,
    u"BorderColorDisable"_s, u"FadeColor"_s, u"FadeColorHover"_s, u"FadeColorPressed"_s,
    u"FadeColorDisable"_s, u"ProgressColor"_s, u"InnerLineColor"_s};

QStringList expectedKeys()
{
    QStringList keys {u"SubclassEnabled"_s, u"Enabled"_s, u"Alignment"_s, u"Caption"_s, u"CaptionComment"_s,
        u"CaptionNullText"_s, u"CaptionAddText"_s, u"CaptionEffects"_s, u"Title"_s, u"TitleWidth"_s,
        u"TextFormat"_s, u"FileFilter"_s, u"CancelClear"_s, u"ComboBoxItems"_s, u"Checked"_s,
        u"TransparentBack"_s, u"Transparent"_s, u"TransparentHover"_s, u"TransparentPressed"_s,
        u"TransparentDisable"_s, u"Style"_s, u"StatusBarResize"_s, u"WindowSizeLimit"_s,
        u"WindowSizeMaxWidth"_s, u"WindowSizeMaxHeight"_s, u"WindowSizeMinWidth"_s, u"WindowSizeMinHeight"_s,
        u"ShowBorder"_s, u"ShowCorner"_s, u"ShowLight"_s, u"ShowFocus"_s, u"ShowEffect"_s, u"EffectSpeed"_s,
        u"ShowDropDownSymbol"_s, u"ShowSeparator"_s, u"ShowInnerLine"_s, u"InnerLineWidth"_s,
        u"InnerLinePadding"_s, u"SmoothingCorner"_s, u"Mode"_s};
    keys += kColourKeys;
    keys += QStringList {u"IconSize"_s, u"IconText"_s, u"IconFontName"_s, u"Font"_s, u"Icon"_s, u"Status"_s,
        u"ID"_s, u"TimerEnabled"_s, u"TimerDuration"_s, u"TimerInterval"_s, u"ThreadPriority"_s,
        u"TimerType"_s, u"TooltipType"_s, u"ToolTipIcon"_s, u"TooltipTitle"_s, u"ToolTipString"_s,
        u"TooltipCentered"_s, u"TooltipRightToLeft"_s, u"Max"_s, u"Min"_s, u"Value"_s, u"Refresh"_s,
        u"UseGDIPlus"_s};
    return keys;
}

TEST(ButtonPropertyBag, EveryKeyIsWrittenAndReadInOrder)
{
    ButtonProperties p;
    RecordingBag bag;
    WriteProperties(p, bag);
    // Written as read, except that Refresh follows Enabled and UseGDIPlus follows CancelClear.
    QStringList writeOrder = expectedKeys();
    writeOrder.removeOne(u"Refresh"_s);
    writeOrder.insert(writeOrder.indexOf(u"Enabled"_s) + 1, u"Refresh"_s);
    writeOrder.removeOne(u"UseGDIPlus"_s);
    writeOrder.insert(writeOrder.indexOf(u"CancelClear"_s) + 1, u"UseGDIPlus"_s);
    EXPECT_EQ(bag.writes, writeOrder);
    ReadProperties(p, bag);
    EXPECT_EQ(bag.reads, expectedKeys());
    // The names that differ from their property's, and the narrow bag type of TitleWidth.
    EXPECT_FALSE(bag.values.contains(u"Tooltip"_s));
    EXPECT_FALSE(bag.values.contains(u"value"_s));
    EXPECT_EQ(bag.values.value(u"TitleWidth"_s).metaType(), QMetaType::fromType<qint16>());
}

TEST(ButtonPropertyBag, MissingKeysGiveTheDefaults)
{
    const QVariantMap expected {
        {u"SubclassEnabled"_s, false},
        {u"Enabled"_s, true},
        {u"Refresh"_s, true},
        {u"Status"_s, 0},
        {u"Alignment"_s, 2},
        {u"Caption"_s, QString()},
        {u"TitleWidth"_s, 64},
        {u"ShowCorner"_s, true},
        {u"ShowLight"_s, false},
        {u"ShowInnerLine"_s, 0},
        {u"InnerLineWidth"_s, 1},
        {u"InnerLinePadding"_s, 1},
        {u"SmoothingCorner"_s, true},
        {u"EffectSpeed"_s, 10},
        {u"Transparent"_s, 0},
        {u"Style"_s, 15},
        {u"StatusBarResize"_s, false},
        {u"WindowSizeLimit"_s, false},
        {u"WindowSizeMaxWidth"_s, 800},
        {u"WindowSizeMaxHeight"_s, 600},
        {u"WindowSizeMinWidth"_s, 640},
        {u"WindowSizeMinHeight"_s, 480},
        {u"Mode"_s, 0},
        {u"TextFormat"_s, 0},
        {u"FileFilter"_s, u"*.*|*.*"_s},
        {u"CancelClear"_s, false},
        {u"UseGDIPlus"_s, false},
        {u"Checked"_s, false},
        {u"ForeColor"_s, 0u},
        {u"ForeColorDisable"_s, 0x808080u},
        {u"BackColor"_s, 0xD7C5C6u},
        {u"ProgressColor"_s, 0xA49293u},
        {u"InnerLineColor"_s, 0xFFFFFFu},
        {u"IconSize"_s, 32},
        {u"IconFontName"_s, u"Webdings"_s},
        {u"ID"_s, 0},
        {u"TimerEnabled"_s, false},
        {u"TimerDuration"_s, 1000},
        {u"TimerInterval"_s, 10},
        {u"ThreadPriority"_s, 32},
        {u"TimerType"_s, 0},
        {u"TooltipType"_s, 1},
        {u"ToolTipIcon"_s, 0},
        {u"ToolTipString"_s, QString()},
        {u"TooltipCentered"_s, false},
        {u"Max"_s, 100.0},
        {u"Min"_s, 0.0},
        {u"Value"_s, 0.0},
    };
    ButtonProperties p;
    RecordingBag bag;
    ReadProperties(p, bag);
    for (auto it = expected.begin(); it != expected.end(); ++it) {
        const QVariant got = bag.defaults.value(it.key());
        EXPECT_TRUE(got == *it) << it.key().toStdString() << " " << got.toString().toStdString();
    }
}

// A value of each property's type that differs from its default.
QVariant otherValue(const QMetaProperty &property, const QVariant &current)
{
    switch (property.metaType().id()) {
    case QMetaType::Bool:
        return !current.toBool();
    case QMetaType::Int:
        return current.toInt() + 7;
    case QMetaType::UInt:
        return current.toUInt() ^ 0x00A5A5A5u;
    case QMetaType::Double:
        return current.toDouble() + 1.5;
    case QMetaType::QString:
        return u"字 "_s + QString::fromUtf8(property.name());
    case QMetaType::QFont: {
        QFont font(u"Serif"_s);
        font.setPointSize(13);
        font.setBold(true);
        return font;
    }
    case QMetaType::QPixmap: {
        QImage image(3, 2, QImage::Format_ARGB32);
        image.fill(Qt::red);
        return QPixmap::fromImage(image);
    }
    default:
        return QVariant();
    }
}

ButtonProperties changedProperties()
{
    ButtonProperties p;
    const QMetaObject &meta = ButtonProperties::staticMetaObject;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        const QVariant value = otherValue(property, property.readOnGadget(&p));
        EXPECT_TRUE(value.isValid()) << property.name();
        property.writeOnGadget(&p, value);
    }
    return p;
}

void expectSame(const ButtonProperties &a, const ButtonProperties &b)
{
    const QMetaObject &meta = ButtonProperties::staticMetaObject;
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        const QVariant x = property.readOnGadget(&a);
        const QVariant y = property.readOnGadget(&b);
        if (property.metaType() == QMetaType::fromType<QPixmap>())
            EXPECT_EQ(x.value<QPixmap>().toImage(), y.value<QPixmap>().toImage()) << property.name();
        else
            EXPECT_TRUE(x == y) << property.name() << " " << x.toString().toStdString() << " / "
                                << y.toString().toStdString();
    }
}

TEST(ButtonPropertyBag, EveryKeyReadsBackFromAMap)
{
    const ButtonProperties written = changedProperties();
    QVariantMap map;
    VariantMapBag bag(map);
    WriteProperties(written, bag);
    EXPECT_EQ(map.size(), expectedKeys().size());
    EXPECT_EQ(map.value(u"ToolTipString"_s).toString(), u"字 Tooltip"_s);
    EXPECT_EQ(map.value(u"Value"_s).toDouble(), 1.5);
    ButtonProperties read;
    ReadProperties(read, bag);
    expectSame(written, read);
}

TEST(ButtonPropertyBag, EveryKeyReadsBackFromASettingsFile)
{
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(u"button.ini"_s);
    const ButtonProperties written = changedProperties();
    {
        QSettings settings(path, QSettings::IniFormat);
        settings.beginGroup(u"ctlButton1"_s);
        SettingsBag bag(settings);
        WriteProperties(written, bag);
    }
    QSettings settings(path, QSettings::IniFormat);
    settings.beginGroup(u"ctlButton1"_s);
    EXPECT_EQ(settings.childKeys().size(), expectedKeys().size());
    SettingsBag bag(settings);
    ButtonProperties read;
    ReadProperties(read, bag);
    expectSame(written, read);
}

TEST(ButtonPropertyBag, ValuesThatDoNotConvertGiveTheDefault)
{
    QVariantMap map {{u"Style"_s, u"not a number"_s}, {u"Max"_s, u"250"_s}, {u"ShowCorner"_s, u"false"_s},
        {u"TitleWidth"_s, QVariant::fromValue(qint16(-5))}};
    VariantMapBag bag(map);
    ButtonProperties p;
    p.Style = 3;
    ReadProperties(p, bag);
    EXPECT_EQ(p.Style, 15);
    EXPECT_EQ(p.Max, 250.0);
    EXPECT_FALSE(p.ShowCorner);
    EXPECT_EQ(p.TitleWidth, -5);
    // TitleWidth keeps 16 bits in the bag.
    p.TitleWidth = 70000;
    WriteProperties(p, bag);
    EXPECT_EQ(map.value(u"TitleWidth"_s).toInt(), qint16(70000 & 0xFFFF));
}

TEST(ButtonPropertyBag, TheControlWritesAndReadsItsProperties)
{
    QWidget container;
    QFont containerFont(u"Monospace"_s);
    containerFont.setPointSize(17);
    container.setFont(containerFont);
    testing::TestButton source(&container);
    source.resize(120, 24);
    source.setStyle(5);
    source.setBackColor(0x102030); // derived colours differ from the style's now
    source.setBorderColor(0x0000FF);
    source.setCaption(u"片头"_s);
    source.setMode(ctlButton::ucModeFile);
    source.setTooltip(u"tip"_s);
    source.setvalue(40);
    QVariantMap map;
    VariantMapBag bag(map);
    source.WriteProperties(bag);
    EXPECT_EQ(map.value(u"BorderColor"_s).toUInt(), 0x0000FFu);

    testing::TestButton target(&container);
    target.resize(120, 24);
    QSignalSpy status(&target, qOverload<const QString &>(&ctlButton::Status));
    const int rendersBefore = target.renderCount();
    target.ReadProperties(bag);
    // Read as stored: the style does not derive the colours again.
    EXPECT_EQ(target.Style(), 5);
    EXPECT_EQ(target.BackColor(), 0x102030u);
    EXPECT_EQ(target.BorderColor(), 0x0000FFu);
    EXPECT_EQ(target.BackColorHover(), source.BackColorHover());
    EXPECT_EQ(target.Caption(), u"片头"_s);
    EXPECT_EQ(target.Mode(), int(ctlButton::ucModeFile));
    EXPECT_EQ(target.value(), 40.0);
    EXPECT_EQ(target.toolTip().contains(u"tip"_s), true);
    EXPECT_EQ(target.redraws.last(), u"UserControl_ReadProperties"_s);
    EXPECT_EQ(target.renderCount() - rendersBefore, 4);
    EXPECT_EQ(status.count(), 0); // no interception asked for

    // A bag without Font gives the container's font; with SubclassEnabled interception starts.
    map.remove(u"Font"_s);
    map.insert(u"SubclassEnabled"_s, true);
    testing::TestButton third(&container);
    QSignalSpy thirdStatus(&third, qOverload<const QString &>(&ctlButton::Status));
    third.ReadProperties(bag);
    EXPECT_EQ(third.Font().family(), containerFont.family());
    EXPECT_EQ(third.Font().pointSize(), 17);
    ASSERT_EQ(thirdStatus.count(), 1);
    EXPECT_EQ(thirdStatus.at(0).at(0).toString(), u"Initailizing Subclassing"_s);
    EXPECT_EQ(third.afterCount(&container), 5);
}

} // namespace
} // namespace qb::controls
