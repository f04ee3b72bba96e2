// Property bags and the one routine that stores any gadget's properties in them and reads them back,
// through the meta-object: each property under its name (or the key its class names for it), in
// declaration order, with the gadget's default-constructed values for missing keys.
#pragma once

#include <QMetaObject>
#include <QVariant>
#include <QVariantMap>

class QSettings;

namespace qb::controls {

// Where a control keeps its properties between runs.
class PropertyBag
{
public:
    virtual ~PropertyBag() = default;
    // The stored value, or DefaultValue when the key is absent.
    virtual QVariant ReadProperty(const QString &Name, const QVariant &DefaultValue) const = 0;
    virtual void WriteProperty(const QString &Name, const QVariant &Value) = 0;
};

// A bag on a map owned by the caller.
class VariantMapBag : public PropertyBag
{
public:
    explicit VariantMapBag(QVariantMap &map)
        : m_map(map)
    { }
    QVariant ReadProperty(const QString &Name, const QVariant &DefaultValue) const override;
    void WriteProperty(const QString &Name, const QVariant &Value) override;

private:
    QVariantMap &m_map;
};

// A bag on settings owned by the caller, in the settings' current group.
class SettingsBag : public PropertyBag
{
public:
    explicit SettingsBag(QSettings &settings)
        : m_settings(settings)
    { }
    QVariant ReadProperty(const QString &Name, const QVariant &DefaultValue) const override;
    void WriteProperty(const QString &Name, const QVariant &Value) override;

private:
    QSettings &m_settings;
};

// The key of a property: its name unless the class names another with Q_CLASSINFO("<name>.key", "<key>").
QString BagKey(const QMetaObject &meta, int propertyIndex);

// Writes every stored property of a gadget. A property marked Q_CLASSINFO("<name>.bag", "int16") is
// written as a 16-bit value; one marked Q_CLASSINFO("<name>.writeAfter", "<other>") is written right
// after that other property instead of in its place.
void WriteGadget(const QMetaObject &meta, const void *gadget, PropertyBag &bag);

// Reads every stored property of a gadget; a missing key, or a value that does not convert to the
// property's type, gives the property's value in defaults.
void ReadGadget(const QMetaObject &meta, void *gadget, const void *defaults, const PropertyBag &bag);

template<typename Gadget>
void WriteProperties(const Gadget &gadget, PropertyBag &bag)
{
    WriteGadget(Gadget::staticMetaObject, &gadget, bag);
}

template<typename Gadget>
void ReadProperties(Gadget &gadget, const PropertyBag &bag, const Gadget &defaults = Gadget {})
{
    ReadGadget(Gadget::staticMetaObject, &gadget, &defaults, bag);
}

} // namespace qb::controls
