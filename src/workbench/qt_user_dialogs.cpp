// Message boxes and file dialogs.
#include "workbench/qt_user_dialogs.h"

#include "workbench/app_context.h"

#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QMessageBox>
#include <QUrl>

using namespace Qt::StringLiterals;

namespace qb::workbench {

QString QtUserDialogs::DialogFilter(const QString &pattern)
{
    if (pattern == u"*.*"_s || pattern.isEmpty())
        return u"* (*)"_s;
    return pattern + u" ("_s + pattern + u')';
}

int QtUserDialogs::MsgBox(const QString &Prompt, int Buttons)
{
    return MsgBoxTitled(Prompt, Buttons, gAppTitle);
}

int QtUserDialogs::MsgBoxTitled(const QString &Prompt, int Buttons, const QString &Title)
{
    if (Buttons & kYesNo) {
        return QMessageBox::question(m_parent, Title, Prompt, QMessageBox::Yes | QMessageBox::No)
                == QMessageBox::Yes
            ? kAnswerYes
            : kAnswerNo;
    }
    // The icon is one value of the bits 0x70, not a set of flags: 48 holds the bit of 16.
    const int icon = Buttons & 0x70;
    if (icon == kCritical)
        QMessageBox::critical(m_parent, Title, Prompt);
    else if (icon == kExclamation)
        QMessageBox::warning(m_parent, Title, Prompt);
    else
        QMessageBox::information(m_parent, Title, Prompt);
    return kAnswerOk;
}

ChosenFiles QtUserDialogs::GetOpenFiles(const QString &filter, const QString &initialFolder, bool several)
{
    QStringList paths;
    if (several) {
        paths = QFileDialog::getOpenFileNames(m_parent, QString(), initialFolder, DialogFilter(filter));
    } else {
        const QString path
            = QFileDialog::getOpenFileName(m_parent, QString(), initialFolder, DialogFilter(filter));
        if (!path.isEmpty())
            paths.append(path);
    }
    ChosenFiles chosen;
    if (paths.isEmpty())
        return chosen;
    chosen.folder = QFileInfo(paths.first()).path();
    for (const QString &path : std::as_const(paths))
        chosen.names.append(QFileInfo(path).fileName());
    return chosen;
}

QString QtUserDialogs::GetSaveFile(const QString &filter, const QString &proposed)
{
    QFileDialog dialog(m_parent, QString(), proposed, DialogFilter(filter));
    dialog.setAcceptMode(QFileDialog::AcceptSave);
    dialog.setOption(QFileDialog::DontConfirmOverwrite, true); // an existing name gets a new one instead
    dialog.setDefaultSuffix(u"cab"_s);
    dialog.selectFile(proposed);
    if (dialog.exec() != QDialog::Accepted || dialog.selectedFiles().isEmpty())
        return {};
    return dialog.selectedFiles().first();
}

QString QtUserDialogs::SelectFolder(const QString &Title)
{
    return QFileDialog::getExistingDirectory(m_parent, Title);
}

void QtUserDialogs::OpenWithSystem(const QString &path)
{
    QDesktopServices::openUrl(QUrl::fromLocalFile(path));
}

} // namespace qb::workbench
