// Storing gadgets in property bags through the meta-object.
#include "controls/button_property_bag.h"

#include <QMetaProperty>
#include <QSettings>

namespace qb::controls {

namespace {

QString classInfo(const QMetaObject &meta, const QString &name)
{
    const int index = meta.indexOfClassInfo(name.toUtf8().constData());
    return index < 0 ? QString() : QString::fromUtf8(meta.classInfo(index).value());
}

bool storedAsInt16(const QMetaObject &meta, const QMetaProperty &property)
{
    return classInfo(meta, QString::fromUtf8(property.name()) + QStringLiteral(".bag"))
        == QLatin1String("int16");
}

} // namespace

QVariant VariantMapBag::ReadProperty(const QString &Name, const QVariant &DefaultValue) const
{
    const auto it = m_map.constFind(Name);
    return it == m_map.constEnd() ? DefaultValue : *it;
}

void VariantMapBag::WriteProperty(const QString &Name, const QVariant &Value)
{
    m_map.insert(Name, Value);
}

QVariant SettingsBag::ReadProperty(const QString &Name, const QVariant &DefaultValue) const
{
    return m_settings.value(Name, DefaultValue);
}

void SettingsBag::WriteProperty(const QString &Name, const QVariant &Value)
{
    m_settings.setValue(Name, Value);
}

QString BagKey(const QMetaObject &meta, int propertyIndex)
{
    const QString name = QString::fromUtf8(meta.property(propertyIndex).name());
    const QString key = classInfo(meta, name + QStringLiteral(".key"));
    return key.isEmpty() ? name : key;
}

void WriteGadget(const QMetaObject &meta, const void *gadget, PropertyBag &bag)
{
    auto writeOne = [&](int i) {
        const QMetaProperty property = meta.property(i);
        QVariant value = property.readOnGadget(gadget);
        if (storedAsInt16(meta, property))
            value = QVariant::fromValue(qint16(value.toInt()));
        bag.WriteProperty(BagKey(meta, i), value);
    };
    auto writeAfter = [&](int i) {
        return classInfo(meta, QString::fromUtf8(meta.property(i).name()) + QStringLiteral(".writeAfter"));
    };
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        if (!meta.property(i).isStored() || !writeAfter(i).isEmpty())
            continue;
        writeOne(i);
        // Properties written out of their reading order follow the one they name.
        const QString name = QString::fromUtf8(meta.property(i).name());
        for (int j = meta.propertyOffset(); j < meta.propertyCount(); ++j) {
            if (meta.property(j).isStored() && writeAfter(j) == name)
                writeOne(j);
        }
    }
}

void ReadGadget(const QMetaObject &meta, void *gadget, const void *defaults, const PropertyBag &bag)
{
    for (int i = meta.propertyOffset(); i < meta.propertyCount(); ++i) {
        const QMetaProperty property = meta.property(i);
        if (!property.isStored() || !property.isWritable())
            continue;
        const QVariant fallback = property.readOnGadget(defaults);
        QVariant value = bag.ReadProperty(BagKey(meta, i), fallback);
        // Text stores (settings files) give strings back; a value that won't convert is not taken.
        if (!value.isValid()
            || (value.metaType() != property.metaType() && !value.convert(property.metaType())))
            value = fallback;
        property.writeOnGadget(gadget, value);
    }
}

} // namespace qb::controls
