// The settings store on QSettings, and on profile files.
#include "workbench/settings_store.h"

#include "util/profile_file.h"
#include "util/string_array.h"

#include <QSettings>
#include <QStringList>

#include <memory>

namespace qb::workbench {

namespace {

struct KeyPlace
{
    QString organisation;
    QString application;
    QString group;
};

// "Software\Tidewick\Quillbox_Desk\Settings" → ("Tidewick", "Quillbox_Desk", "Settings").
KeyPlace placeOf(const QString &subKey)
{
    QStringList parts = subKey.split(u'\\', Qt::SkipEmptyParts);
    if (!parts.isEmpty() && parts.first().compare(QStringLiteral("Software"), Qt::CaseInsensitive) == 0)
        parts.removeFirst();
    KeyPlace place;
    place.organisation = parts.value(0, QStringLiteral("Tidewick"));
    place.application = parts.value(1, place.organisation);
    place.group = parts.mid(2).join(u'/');
    return place;
}

std::unique_ptr<QSettings> openStore(quint32 rootKey, const KeyPlace &place)
{
    const auto scope = rootKey == HKEY_CURRENT_USER ? QSettings::UserScope : QSettings::SystemScope;
    return std::make_unique<QSettings>(QSettings::NativeFormat, scope, place.organisation, place.application);
}

QString valueKey(const KeyPlace &place, const QString &valueName)
{
    // QSettings treats "/" and "\" as group separators; a value name keeps them as part of itself.
    QString name = valueName;
    name.replace(u'/', u'_').replace(u'\\', u'_');
    return place.group.isEmpty() ? name : place.group + u'/' + name;
}

} // namespace

void SaveRegValue(quint32 RootKey, const QString &SubKey, const QString &ValueName, const QString &Value,
    const QString &IniFile)
{
    if (!IniFile.isEmpty()) {
        util::ProfileFile profile = util::LoadProfileFile(IniFile);
        profile.setValue(SubKey, ValueName, Value);
        util::SaveProfileFile(IniFile, profile);
        return;
    }
    const KeyPlace place = placeOf(SubKey);
    openStore(RootKey, place)->setValue(valueKey(place, ValueName), Value);
}

QString GetRegValue(quint32 RootKey, const QString &SubKey, const QString &ValueName, const QString &Default,
    const QString &IniFile)
{
    if (!IniFile.isEmpty()) {
        QString text;
        if (!util::LoadProfileFile(IniFile).value(SubKey, ValueName, text))
            return Default;
        text = util::CleanString(text.left(254));
        return text.isEmpty() ? Default : text;
    }
    const KeyPlace place = placeOf(SubKey);
    const QVariant value = openStore(RootKey, place)->value(valueKey(place, ValueName));
    if (value.typeId() != QMetaType::QString)
        return Default;
    return util::CleanString(value.toString());
}

void DeleteRegKey(quint32 RootKey, const QString &SubKey, const QString &IniFile)
{
    if (!IniFile.isEmpty()) {
        util::ProfileFile profile = util::LoadProfileFile(IniFile);
        if (profile.removeSection(SubKey))
            util::SaveProfileFile(IniFile, profile);
        return;
    }
    const KeyPlace place = placeOf(SubKey);
    auto store = openStore(RootKey, place);
    if (place.group.isEmpty())
        store->clear();
    else
        store->remove(place.group);
}

} // namespace qb::workbench
