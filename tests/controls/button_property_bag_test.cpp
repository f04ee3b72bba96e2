// Persistence of the multi-mode control: every key in its order with its default (the table in
// button_test_support.h), round trips through a map and a settings file, and what the control does
// when it reads a bag.
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

QStringList storedKeys()
{
    QStringList keys;
    for (const auto &entry : testing::kStoredDefaults)
        keys << entry.first;
    return keys;
}

TEST(ButtonPropertyBag, AnEmptyBagIsAskedForEveryKeyInOrderWithItsDefault)
{
    ButtonProperties p;
    RecordingBag bag;
    ReadProperties(p, bag);
    EXPECT_EQ(bag.reads, storedKeys());
    for (const auto &[key, value] : testing::kStoredDefaults) {
        const QVariant got = bag.defaults.value(key);
        if (value.isValid()) {
            EXPECT_TRUE(got == value) << key.toStdString() << " " << got.toString().toStdString();
        }
    }
}

TEST(ButtonPropertyBag, EveryKeyIsWrittenInTheReadOrderButTwo)
{
    ButtonProperties p;
    RecordingBag bag;
    WriteProperties(p, bag);
    // Refresh follows Enabled and UseGDIPlus follows CancelClear.
    QStringList writeOrder = storedKeys();
    writeOrder.removeOne(u"Refresh"_s);
    writeOrder.insert(writeOrder.indexOf(u"Enabled"_s) + 1, u"Refresh"_s);
    writeOrder.removeOne(u"UseGDIPlus"_s);
    writeOrder.insert(writeOrder.indexOf(u"CancelClear"_s) + 1, u"UseGDIPlus"_s);
    EXPECT_EQ(bag.writes, writeOrder);
    // TitleWidth goes in as 16 bits.
    EXPECT_EQ(bag.values.value(u"TitleWidth"_s).metaType(), QMetaType::fromType<qint16>());
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

TEST(ButtonPropertyBag, EveryKeyReadsBackFromAMapAndASettingsFile)
{
    const ButtonProperties written = changedProperties();
    QVariantMap map;
    VariantMapBag mapBag(map);
    WriteProperties(written, mapBag);
    EXPECT_EQ(size_t(map.size()), testing::kStoredDefaults.size());
    EXPECT_EQ(map.value(u"ToolTipString"_s).toString(), u"字 Tooltip"_s);
    EXPECT_EQ(map.value(u"Value"_s).toDouble(), 1.5);
    ButtonProperties fromMap;
    ReadProperties(fromMap, mapBag);
    expectSame(written, fromMap);

    // A settings file gives text back, which must convert to every type.
    QTemporaryDir dir;
    ASSERT_TRUE(dir.isValid());
    const QString path = dir.filePath(u"button.ini"_s);
    {
        QSettings settings(path, QSettings::IniFormat);
        settings.beginGroup(u"ctlButton1"_s);
        SettingsBag bag(settings);
        WriteProperties(written, bag);
    }
    QSettings settings(path, QSettings::IniFormat);
    settings.beginGroup(u"ctlButton1"_s);
    EXPECT_EQ(size_t(settings.childKeys().size()), testing::kStoredDefaults.size());
    SettingsBag bag(settings);
    ButtonProperties fromFile;
    ReadProperties(fromFile, bag);
    expectSame(written, fromFile);
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
