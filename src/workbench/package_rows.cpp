// Row texts of the package list.
#include "workbench/package_rows.h"

#include "workbench/general_procedures.h"

#include <QFileInfo>
#include <QMimeDatabase>

#include <limits>

using namespace Qt::StringLiterals;

namespace qb::workbench {

QString TypeNames::forExtension(const QString &extension)
{
    QString key = extension.toLower();
    if (key.startsWith(u'.'))
        key.remove(0, 1);
    const auto found = m_cache.constFind(key);
    if (found != m_cache.cend())
        return *found;
    static const QMimeDatabase database;
    QString text;
    if (!key.isEmpty() && !key.contains(u'/')) {
        const QMimeType type = database.mimeTypeForFile(u"x."_s + key, QMimeDatabase::MatchExtension);
        if (type.isValid() && !type.isDefault())
            text = type.comment();
    }
    m_cache.insert(key, text);
    return text;
}

QString FormatGrouped(qint64 value)
{
    const bool negative = value < 0;
    QString digits = QString::number(negative ? -(value + 1) + 1ULL : quint64(value));
    for (qsizetype at = digits.size() - 3; at > 0; at -= 3)
        digits.insert(at, u',');
    return negative ? u'-' + digits : digits;
}

qint64 ReadGrouped(const QString &text)
{
    const QString trimmed = text.trimmed();
    qint64 value = 0;
    qsizetype at = 0;
    const bool negative = trimmed.startsWith(u'-');
    if (negative)
        ++at;
    for (; at < trimmed.size(); ++at) {
        const QChar c = trimmed[at];
        if (c == u',')
            continue;
        if (!c.isDigit() || value > (std::numeric_limits<qint64>::max() - 9) / 10)
            break;
        value = value * 10 + c.digitValue();
    }
    return negative ? -value : value;
}

QString DefaultDateText(const QDateTime &when)
{
    const QDate date = when.date();
    const QTime time = when.time();
    const bool noDate = date == QDate(1899, 12, 30);
    const bool noTime = !time.isValid() || time == QTime(0, 0);
    if (noDate)
        return time.toString(u"H:mm:ss"_s);
    if (noTime)
        return date.toString(u"yyyy-M-d"_s);
    return date.toString(u"yyyy-M-d"_s) + u' ' + time.toString(u"H:mm:ss"_s);
}

QString CabinetFolderOf(const QString &path, const QString &basePath)
{
    QString folder = AddBackslash(GetPathPart(path, u"/"_s, 0));
    if (basePath == u"/"_s) {
        // The root stands in every path once per folder; only the leading one is the base.
        if (folder.startsWith(u'/'))
            folder.remove(0, 1);
    } else if (!basePath.isEmpty()) {
        folder.remove(basePath, Qt::CaseSensitive);
    }
    folder = frm::AddBackslash(folder);
    folder.replace(u'/', u'\\');
    return folder;
}

QString PackageRowText(const QString &path, const QString &basePath, TypeNames &types)
{
    const QFileInfo info(path);
    const QString name = GetPathPart(path, u"/"_s, 1);
    const QString type = types.forExtension(GetPathPart(path, u"."_s, 1));
    return name + u'|' + CabinetFolderOf(path, basePath) + u'|' + type + u'|' + FormatGrouped(info.size())
        + u'|' + DefaultDateText(info.lastModified()) + u'|' + path;
}

} // namespace qb::workbench
