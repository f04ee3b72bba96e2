// Storing the engine's properties in bags through the meta-object.
#include "engine/property_bag.h"

#include "engine/ffmpegx.h"

#include <QMetaProperty>
#include <QSettings>
#include <QStringList>

#include <cmath>
#include <limits>
#include <optional>
#include <type_traits>

namespace qb::engine {

namespace {

// Every family of the engine, in the order the bag takes them.
template<typename Engine, typename Visit>
void forEachFamily(Engine &engine, Visit &&visit)
{
    visit(engine.StringContent);
    visit(engine.StringChinese);
    visit(engine.FileOutput);
    visit(engine.Job);
    visit(engine.CoreState);
    visit(engine.Video);
    visit(engine.Audio);
    visit(engine.Subtitle);
    visit(engine.x264);
    visit(engine.Menc);
    visit(engine.MetaData);
    visit(engine.AVS);
    visit(engine.AVFilter);
    visit(engine.AVFilterVideoWatermark);
    visit(engine.AVFilterVideoSubtitle);
    visit(engine.Image);
    visit(engine.ImageWatermark);
    visit(engine.ImageGrabber);
}

bool isText(const QVariant &value)
{
    const int id = value.metaType().id();
    return id == QMetaType::QString || id == QMetaType::QByteArray;
}

// A finite number from a number, a flag or a text that is one; nothing from anything else.
std::optional<double> numberOf(const QVariant &value)
{
    double number = 0;
    switch (value.metaType().id()) {
    case QMetaType::QString:
    case QMetaType::QByteArray: {
        bool ok = false;
        number = value.toString().trimmed().toDouble(&ok);
        if (!ok)
            return std::nullopt;
        break;
    }
    case QMetaType::Bool:
    case QMetaType::Int:
    case QMetaType::UInt:
    case QMetaType::Long:
    case QMetaType::ULong:
    case QMetaType::LongLong:
    case QMetaType::ULongLong:
    case QMetaType::Short:
    case QMetaType::UShort:
    case QMetaType::Char:
    case QMetaType::SChar:
    case QMetaType::UChar:
    case QMetaType::Float:
    case QMetaType::Double:
        number = value.toDouble();
        break;
    default:
        return std::nullopt;
    }
    if (!std::isfinite(number))
        return std::nullopt;
    return number;
}

// A whole number that fits the type; 300 is no byte and 2.5 no count.
template<typename T>
QVariant wholeOf(const QVariant &value)
{
    const std::optional<double> number = numberOf(value);
    if (!number || *number != std::trunc(*number) || *number < double(std::numeric_limits<T>::lowest())
        || *number > double(std::numeric_limits<T>::max()))
        return {};
    return QVariant::fromValue(T(*number));
}

QVariant flagOf(const QVariant &value)
{
    if (isText(value)) {
        const QString text = value.toString().trimmed();
        if (text.compare(QLatin1String("true"), Qt::CaseInsensitive) == 0)
            return true;
        if (text.compare(QLatin1String("false"), Qt::CaseInsensitive) == 0)
            return false;
    }
    // Any number but 0 is true; older stores write true as -1.
    const std::optional<double> number = numberOf(value);
    return number ? QVariant(*number != 0) : QVariant();
}

QVariant textOf(const QVariant &value)
{
    // An unquoted value with commas in a settings file (a font, say) comes back split at them.
    if (value.metaType().id() == QMetaType::QStringList)
        return value.toStringList().join(QStringLiteral(", "));
    if (isText(value) || numberOf(value))
        return value.toString();
    return {};
}

} // namespace

QVariant ConvertForProperty(const QVariant &value, QMetaType type)
{
    if (!value.isValid())
        return {};
    if (value.metaType() == type)
        return value;
    switch (type.id()) {
    case QMetaType::Bool:
        return flagOf(value);
    case QMetaType::QString:
        return textOf(value);
    case QMetaType::Int:
        return wholeOf<int>(value);
    case QMetaType::UInt:
        return wholeOf<uint>(value);
    case QMetaType::Short:
        return wholeOf<short>(value);
    case QMetaType::UShort:
        return wholeOf<ushort>(value);
    case QMetaType::SChar:
        return wholeOf<signed char>(value);
    case QMetaType::UChar:
        return wholeOf<uchar>(value);
    case QMetaType::Float:
    case QMetaType::Double: {
        const std::optional<double> number = numberOf(value);
        if (!number)
            return {};
        QVariant converted(*number);
        return converted.convert(type) ? converted : QVariant();
    }
    default: {
        QVariant converted(value);
        return converted.convert(type) ? converted : QVariant();
    }
    }
}

void WriteGadget(const QMetaObject &meta, const void *gadget, QVariantMap &bag)
{
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        if (property.isStored() && property.isWritable())
            bag.insert(QString::fromLatin1(property.name()), property.readOnGadget(gadget));
    }
}

void ReadGadget(const QMetaObject &meta, void *gadget, const QVariantMap &bag)
{
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        if (!property.isStored() || !property.isWritable())
            continue;
        const auto it = bag.constFind(QString::fromLatin1(property.name()));
        if (it == bag.constEnd())
            continue;
        const QVariant value = ConvertForProperty(*it, property.metaType());
        if (value.isValid())
            property.writeOnGadget(gadget, value);
    }
}

void WriteObject(const QObject &object, QVariantMap &bag)
{
    const QMetaObject *meta = object.metaObject();
    for (int i = QObject::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        // A property without a setter could not be read back, so it is not written either.
        if (property.isStored() && property.isWritable())
            bag.insert(QString::fromLatin1(property.name()), property.read(&object));
    }
}

void ReadObject(QObject &object, const QVariantMap &bag)
{
    const QMetaObject *meta = object.metaObject();
    for (int i = QObject::staticMetaObject.propertyCount(); i < meta->propertyCount(); ++i) {
        const QMetaProperty property = meta->property(i);
        if (!property.isStored() || !property.isWritable())
            continue;
        const auto it = bag.constFind(QString::fromLatin1(property.name()));
        if (it == bag.constEnd())
            continue;
        const QVariant value = ConvertForProperty(*it, property.metaType());
        if (value.isValid() && value != property.read(&object))
            property.write(&object, value);
    }
}

QVariantMap BagFromSettings(const QSettings &settings)
{
    QVariantMap bag;
    for (const QString &key : settings.childKeys())
        bag.insert(key, settings.value(key));
    return bag;
}

void BagToSettings(const QVariantMap &bag, QSettings &settings)
{
    for (auto it = bag.constBegin(); it != bag.constEnd(); ++it) {
        // A settings file would hold the small integer types (the alphas) as binary; a plain number
        // reads back just as well and stays editable.
        switch (it.value().metaType().id()) {
        case QMetaType::Char:
        case QMetaType::SChar:
        case QMetaType::UChar:
        case QMetaType::Short:
        case QMetaType::UShort:
            settings.setValue(it.key(), it.value().toInt());
            break;
        default:
            settings.setValue(it.key(), it.value());
        }
    }
}

std::vector<FamilyRef> PropertyFamilies(FFmpegX &engine)
{
    std::vector<FamilyRef> families;
    forEachFamily(engine, [&families](auto &family) {
        families.emplace_back(&std::remove_reference_t<decltype(family)>::staticMetaObject, &family);
    });
    return families;
}

void FFmpegX::WriteProperties(QVariantMap &bag) const
{
    WriteObject(*this, bag);
    forEachFamily(*this, [&bag](const auto &family) { WriteGadget(family, bag); });
}

void FFmpegX::ReadProperties(const QVariantMap &bag)
{
    // The families first: the source's setter probes with the suffix lists and the time range.
    forEachFamily(*this, [&bag](auto &family) { ReadGadget(family, bag); });
    ReadObject(*this, bag);
}

void FFmpegX::WriteProperties(QSettings &settings) const
{
    QVariantMap bag;
    WriteProperties(bag);
    BagToSettings(bag, settings);
}

void FFmpegX::ReadProperties(const QSettings &settings)
{
    ReadProperties(BagFromSettings(settings));
}

} // namespace qb::engine
