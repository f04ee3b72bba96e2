// The engine's property bag: every stored property of a gadget family or of an object, flat under its
// name, found through the meta-object so that no list of names is kept by hand. The bag is a
// QVariantMap; settings are read into one and written from one.
#pragma once

#include <QMetaObject>
#include <QMetaType>
#include <QVariant>
#include <QVariantMap>

#include <utility>
#include <vector>

class QObject;
class QSettings;

namespace qb::engine {

class FFmpegX;

// Writes every stored, writable property of the gadget under its name.
void WriteGadget(const QMetaObject &meta, const void *gadget, QVariantMap &bag);
// Takes every stored property the bag holds; a missing key, or a value that does not convert to the
// property's type, leaves the property as it is.
void ReadGadget(const QMetaObject &meta, void *gadget, const QVariantMap &bag);

template<typename Gadget>
void WriteGadget(const Gadget &gadget, QVariantMap &bag)
{
    WriteGadget(Gadget::staticMetaObject, &gadget, bag);
}

template<typename Gadget>
void ReadGadget(Gadget &gadget, const QVariantMap &bag)
{
    ReadGadget(Gadget::staticMetaObject, &gadget, bag);
}

// The same for the properties an object declares beyond QObject's. Reading goes through the setters,
// and only for a value that differs from the current one, so that a setter that acts (a probe, an
// event, a mark) does so once and only for a change.
void WriteObject(const QObject &object, QVariantMap &bag);
void ReadObject(QObject &object, const QVariantMap &bag);

// A bag value as a property's type: the value itself, or a conversion that keeps its meaning (the
// text "20" to 20, "true" or "-1" to true); an invalid value when there is none. Text stores give
// every value back as text, and a hand-edited one may hold anything.
QVariant ConvertForProperty(const QVariant &value, QMetaType type);

// The keys of the settings' current group as a bag, and a bag into that group.
QVariantMap BagFromSettings(const QSettings &settings);
void BagToSettings(const QVariantMap &bag, QSettings &settings);

// The engine's property families, each as its meta-object and its address, in storing order.
using FamilyRef = std::pair<const QMetaObject *, void *>;
std::vector<FamilyRef> PropertyFamilies(FFmpegX &engine);

} // namespace qb::engine
