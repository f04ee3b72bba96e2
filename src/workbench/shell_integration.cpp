// Desktop entries for the launcher, "Open With" and the context menu.
#include "workbench/shell_integration.h"

#include "workbench/app_context.h"
#include "workbench/general_procedures.h"

#include <QCoreApplication>
#include <QDir>
#include <QFile>
#include <QFileInfo>
#include <QSaveFile>

using namespace Qt::StringLiterals;

namespace qb::workbench {

namespace {

// Every file (all types derive from this one) for "Open With"; folders are left out, since
// claiming them could make the program the desktop's folder handler.
const QString kOpensTypes = u"MimeType=application/octet-stream;\n"_s;

// Desktop and applications folders may not exist yet on a fresh account.
bool MakePathFor(const QString &path)
{
    return QDir().mkpath(QFileInfo(path).path());
}

bool appendLine(const QString &path, const QString &line)
{
    QFile file(path);
    if (!file.open(QIODevice::Append))
        return false;
    return file.write(line.toUtf8()) == line.toUtf8().size();
}

} // namespace

QString ShortcutPath(int FolderId)
{
    const QString folder = GetSpecialFolder(0, FolderId);
    return folder.isEmpty() ? QString() : AddBackslash(folder) + gAppTitle + u".desktop"_s;
}

bool CreateProgramShortcut(int FolderId)
{
    const QString path = ShortcutPath(FolderId);
    if (path.isEmpty() || !MakePathFor(path))
        return false;
    const QString program = GetModulePath();
    if (!CreateShortcutFile(
            path, program, QCoreApplication::applicationDirPath(), QString(), gAppTitle, 1, program, 0))
        return false;
    return FolderId != CSIDL_SENDTO || appendLine(path, kOpensTypes);
}

QString ContextEntryPath()
{
    const QString folder = GetSpecialFolder(0, CSIDL_SENDTO);
    return folder.isEmpty() ? QString() : AddBackslash(folder) + u"quillbox-desk-context.desktop"_s;
}

bool WriteContextEntry()
{
    const QString path = ContextEntryPath();
    if (path.isEmpty() || !MakePathFor(path))
        return false;
    const QString program = GetModulePath();
    if (!CreateShortcutFile(path, program, QString(), QString(), gContextCaption, 1, program, 0))
        return false;
    // The entry's name is the caption itself, as the menu shows it.
    QFile file(path);
    if (!file.open(QIODevice::ReadOnly))
        return false;
    QString text = QString::fromUtf8(file.readAll());
    file.close();
    const qsizetype nameAt = text.indexOf(u"\nName="_s);
    if (nameAt >= 0) {
        const qsizetype end = text.indexOf(u'\n', nameAt + 1);
        text.replace(nameAt + 1, end - nameAt - 1, u"Name="_s + gContextCaption);
    }
    text += kOpensTypes;
    QSaveFile out(path);
    if (!out.open(QIODevice::WriteOnly))
        return false;
    out.write(text.toUtf8());
    return out.commit();
}

bool RemoveContextEntry()
{
    const QString path = ContextEntryPath();
    return !path.isEmpty() && (!QFile::exists(path) || QFile::remove(path));
}

} // namespace qb::workbench
