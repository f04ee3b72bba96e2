// The engine's property catalogue and its bag: every stored property comes back from a map and from a
// settings file, run state is never written, junk in a bag changes nothing, restored values act
// through their setters, and a replaced user text is raised at once.
#include "engine/engine_recorder.h"
#include "engine/ffmpegx.h"
#include "engine/property_bag.h"
#include "support/temp_tree.h"

#include <QMetaProperty>
#include <QSettings>
#include <QSignalSpy>

#include <gtest/gtest.h>

using namespace Qt::StringLiterals;

namespace qb::engine {
namespace {

using test::EngineRecorder;
using test::TempTree;
using test::waitForJobEnd;

// One property of an engine, its own or a family's, reached through the meta-object.
struct Slot
{
    QMetaProperty property;
    void *gadget = nullptr; // null for the engine's own properties

    QString name() const { return QString::fromLatin1(property.name()); }
    bool persisted() const { return property.isStored() && property.isWritable(); }
    QVariant read(const FFmpegX &engine) const
    {
        return gadget ? property.readOnGadget(gadget) : property.read(&engine);
    }
    void write(FFmpegX &engine, const QVariant &value) const
    {
        const bool written = gadget ? property.writeOnGadget(gadget, value) : property.write(&engine, value);
        EXPECT_TRUE(written) << name().toStdString();
    }
};

// A value as a failure shows it.
std::string shown(const QVariant &value)
{
    return (QString::fromLatin1(value.typeName()) + u' ' + value.toString()).toStdString();
}

// Every property of the engine, in the same order for any two engines.
QList<Slot> slotsOf(FFmpegX &engine)
{
    QList<Slot> all;
    const QMetaObject *meta = engine.metaObject();
    for (int i = QObject::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i)
        all.append({meta->property(i), nullptr});
    for (const auto &[family, gadget] : PropertyFamilies(engine)) {
        for (int i = family->propertyOffset(); i < family->propertyCount(); ++i)
            all.append({family->property(i), gadget});
    }
    return all;
}

QStringList persistedNames(FFmpegX &engine)
{
    QStringList names;
    for (const Slot &slot : slotsOf(engine)) {
        if (slot.persisted())
            names.append(slot.name());
    }
    names.sort();
    return names;
}

// A value of the property's type other than the current one; n keeps the values apart. Texts are
// names of files that exist, so that setters that want a file (the tool) take them.
QVariant otherValue(const Slot &slot, const QVariant &current, int n, TempTree &tree)
{
    switch (slot.property.metaType().id()) {
    case QMetaType::Bool:
        return !current.toBool();
    case QMetaType::Int:
        return current.toInt() + 1 + n;
    case QMetaType::UChar:
        return QVariant::fromValue(uchar((current.toUInt() + 1 + n % 200) % 256));
    case QMetaType::Double:
        return current.toDouble() + 0.25 + n;
    case QMetaType::QString:
        return tree.writeFile(u"values/%1 值, 第 %1"_s.arg(n));
    }
    ADD_FAILURE() << "no test value for " << slot.property.typeName();
    return {};
}

// A value the property's type cannot take from a bag.
QVariant junkFor(const Slot &slot)
{
    switch (slot.property.metaType().id()) {
    case QMetaType::QString:
        return QVariantList {1, 2};
    case QMetaType::Int:
        return 2.5;
    case QMetaType::UChar:
        return 300;
    default:
        return u"perhaps"_s;
    }
}

class PropertyBagTest : public ::testing::Test
{
protected:
    // Sets every stored property of the source engine to a value a fresh engine does not have.
    void SetUp() override
    {
        const QList<Slot> fresh = slotsOf(defaults);
        const QList<Slot> all = slotsOf(source);
        for (int i = 0; i < all.size(); ++i) {
            if (all[i].persisted())
                all[i].write(source, otherValue(all[i], all[i].read(source), i, tree));
        }
        for (int i = 0; i < all.size(); ++i) {
            if (all[i].persisted()) {
                const QVariant value = all[i].read(source);
                EXPECT_NE(value, fresh[i].read(defaults))
                    << all[i].name().toStdString() << ": " << shown(value);
            }
        }
    }

    // Every stored property of the target equals the source's.
    void expectSameAsSource(FFmpegX &target)
    {
        const QList<Slot> from = slotsOf(source);
        const QList<Slot> to = slotsOf(target);
        for (int i = 0; i < from.size(); ++i) {
            if (from[i].persisted()) {
                const QVariant restored = to[i].read(target);
                const QVariant original = from[i].read(source);
                EXPECT_EQ(restored, original)
                    << from[i].name().toStdString() << ": " << shown(restored) << " for " << shown(original);
            }
        }
    }

    TempTree tree;
    FFmpegX defaults;
    FFmpegX source;
};

TEST_F(PropertyBagTest, EveryStoredPropertyComesBackFromAMap)
{
    QVariantMap bag;
    source.WriteProperties(bag);
    // One key per stored property: no name is used twice, nothing else is written.
    EXPECT_EQ(bag.keys(), persistedNames(source));

    FFmpegX target;
    target.ReadProperties(bag);
    expectSameAsSource(target);
}

TEST_F(PropertyBagTest, EveryStoredPropertyComesBackFromASettingsFile)
{
    const QString file = tree.path(u"engine.ini"_s);
    {
        QSettings settings(file, QSettings::IniFormat);
        source.WriteProperties(settings);
    }
    // Plain text throughout, so that the file can be edited by hand.
    EXPECT_FALSE(test::readAll(file).contains("@Variant"));
    QSettings settings(file, QSettings::IniFormat);
    QStringList keys = settings.childKeys();
    keys.sort();
    EXPECT_EQ(keys, persistedNames(source));

    FFmpegX target;
    target.ReadProperties(settings);
    expectSameAsSource(target);
}

TEST(PropertyBag, RunStateIsNeverWritten)
{
    FFmpegX engine;
    QVariantMap bag;
    engine.WriteProperties(bag);
    for (const Slot &slot : slotsOf(engine)) {
        if (!slot.property.isStored()) {
            EXPECT_FALSE(bag.contains(slot.name())) << slot.name().toStdString();
        }
    }
    EXPECT_FALSE(bag.contains(u"Processing"_s));
    EXPECT_FALSE(bag.contains(u"VideoStreamInfo"_s));
    EXPECT_FALSE(bag.contains(u"CoreStatus"_s));
}

TEST(PropertyBag, JunkAndRunStateInTheBagChangeNothing)
{
    FFmpegX defaults;
    FFmpegX engine;
    QVariantMap junk {{u"NoSuchProperty"_s, 5}};
    for (const Slot &slot : slotsOf(engine))
        junk.insert(slot.name(), junkFor(slot));
    // Run state is not read even when the value would do.
    junk.insert(u"Processing"_s, true);
    junk.insert(u"CoreStatus"_s, 1);
    junk.insert(u"VideoStreamCount"_s, 2);
    QSignalSpy marked(&engine, &FFmpegX::PropertyMarkedChanged);
    QSignalSpy statuses(&engine, &FFmpegX::StatusChange);

    engine.ReadProperties(junk);

    const QList<Slot> fresh = slotsOf(defaults);
    const QList<Slot> all = slotsOf(engine);
    for (int i = 0; i < all.size(); ++i) {
        const QVariant value = all[i].read(engine);
        EXPECT_EQ(value, fresh[i].read(defaults)) << all[i].name().toStdString() << ": " << shown(value);
    }
    EXPECT_EQ(marked.count(), 0);
    EXPECT_EQ(statuses.count(), 0);
}

TEST(PropertyBag, HandWrittenSettingsTextConverts)
{
    TempTree tree;
    const QString file = tree.writeFile(u"engine.ini"_s,
        "[General]\npriority=16384\nAllowRaiseEvent=false\nShortest=-1\nImageAlpha=128\n"
        "TimeStartPoint=2.5\nImageGrabberTextFont=Tahoma, 9, True, False, 0, False, False, 700\n");
    QSettings settings(file, QSettings::IniFormat);
    FFmpegX engine;
    engine.ReadProperties(settings);
    EXPECT_EQ(engine.priority(), 16384);
    EXPECT_FALSE(engine.AllowRaiseEvent());
    EXPECT_TRUE(engine.Job.Shortest);
    EXPECT_EQ(engine.Image.ImageAlpha, 128);
    EXPECT_EQ(engine.Job.TimeStartPoint, 2.5);
    EXPECT_EQ(engine.ImageGrabber.ImageGrabberTextFont, u"Tahoma, 9, True, False, 0, False, False, 700"_s);
}

TEST(PropertyBag, RestoredPriorityIsMarkedChangedOnlyWhenItChanges)
{
    FFmpegX engine;
    QSignalSpy marked(&engine, &FFmpegX::PropertyMarkedChanged);
    engine.ReadProperties(QVariantMap {{u"priority"_s, 64}});
    EXPECT_EQ(marked.count(), 0);

    engine.ReadProperties(QVariantMap {{u"priority"_s, u"16384"_s}, {u"StatusRefreshInterval"_s, 250}});
    EXPECT_EQ(engine.priority(), 16384);
    EXPECT_EQ(engine.StatusRefreshInterval(), 250);
    QStringList names;
    for (const QList<QVariant> &signal : marked)
        names.append(signal.at(0).toString());
    names.sort();
    EXPECT_EQ(names, (QStringList {u"StatusRefreshInterval"_s, u"priority"_s}));
}

TEST(PropertyCatalogue, FreshEngineHasTheDefaultsThatMatter)
{
    FFmpegX engine;
    EXPECT_EQ(engine.priority(), 64);
    EXPECT_TRUE(engine.AllowRaiseEvent());
    EXPECT_TRUE(engine.FileOutput.RemoveFileAfterCanceled);
    EXPECT_EQ(
        engine.Image.ImageSuffixSupported, u"*.jpg; *.jpeg; *.gif; *.bmp; *.png; *.dib; *.tif; *.tiff"_s);
    EXPECT_EQ(engine.StringChinese.StringChineseMoonText5, u"满月(望日)"_s);
}

TEST(PropertyCatalogue, ReplacedFailureTextIsRaisedAtOnce)
{
    TempTree tree;
    FFmpegX engine;
    EngineRecorder rec {engine};
    engine.setFileName(tree.writeFile(u"in/clip.avi"_s, "not really a video"));
    engine.setCore(tree.writeFile(u"tools/core"_s, "#!/bin/sh\n"));
    engine.setOutputDir(tree.makeDir(u"out"_s));
    engine.FileOutput.OutputFileName = tree.path(u"out/result.mp4"_s);
    // The tool writes nothing, so the job fails for want of an output.
    engine.setCommandComposer([](int) { return u"true"_s; });

    engine.StartProcess();
    ASSERT_TRUE(waitForJobEnd(engine));
    EXPECT_EQ(rec.statusLines().last(), u"3:无法正确创建文件"_s);

    engine.ReadProperties(QVariantMap {{u"StringContent17"_s, u"没有写出文件"_s}});
    engine.StartProcess();
    ASSERT_TRUE(waitForJobEnd(engine));
    EXPECT_EQ(rec.statusLines().last(), u"3:没有写出文件"_s);
}

} // namespace
} // namespace qb::engine
