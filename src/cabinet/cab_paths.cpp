// Path helpers of the cabinet reader.
#include "cabinet/cab_paths.h"

#include <QDir>
#include <QFileInfo>

namespace qb::cabinet {

QString FixPath(const QString &strPath)
{
    if (strPath.endsWith(u'/'))
        return strPath;
    return strPath + u'/';
}

void SplitFile(const QString &strFull, QString &strPath, QString &strFile)
{
    const qsizetype cut = std::max(strFull.lastIndexOf(u'\\'), strFull.lastIndexOf(u'/'));
    strPath = strFull.left(cut + 1);
    strFile = strFull.mid(cut + 1);
}

bool MakePath(const QString &strPath)
{
    if (strPath.isEmpty())
        return false;
    // mkpath also reports success for a folder that was there already.
    return QDir().mkpath(strPath) && QFileInfo(strPath).isDir();
}

bool IsSafeMemberName(const QString &name)
{
    if (name.isEmpty() || name.startsWith(u'\\') || name.startsWith(u'/') || name.endsWith(u'\\')
        || name.endsWith(u'/'))
        return false;
    // A drive prefix would name another disk elsewhere. Tabs, line ends and ":" inside a name are
    // legal Linux names and reach nothing outside the folder; only NUL would cut the path short.
    const bool drivePrefix = name.size() >= 2 && name[1] == u':'
        && ((name[0] >= u'a' && name[0] <= u'z') || (name[0] >= u'A' && name[0] <= u'Z'));
    if (drivePrefix || name.contains(QChar(0)))
        return false;
    const QStringList parts = QString(name).replace(u'\\', u'/').split(u'/');
    for (const QString &part : parts) {
        if (part == QLatin1String("..") || part == QLatin1String("."))
            return false;
    }
    return true;
}

QString MemberNameToRelativePath(const QString &name)
{
    return QString(name).replace(u'\\', u'/');
}

} // namespace qb::cabinet
