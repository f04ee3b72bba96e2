// The settings dialog.
#include "workbench/option_dialog.h"

#include "util/number_text.h"
#include "workbench/app_context.h"
#include "workbench/general_procedures.h"
#include "workbench/shell_integration.h"

#include <QComboBox>
#include <QFile>
#include <QGridLayout>
#include <QKeyEvent>
#include <QLabel>
#include <QMessageBox>
#include <QPainter>
#include <QPushButton>

using namespace Qt::StringLiterals;

namespace qb::workbench {

namespace {

// The white band leaves this much of the dialog's foot grey, under the OK button.
constexpr int kBandMargin = 48;

int storedIndex(QStringView name)
{
    return int(util::Val(ReadSetting(name)));
}

} // namespace

frmOption::frmOption(QWidget *parent)
    : QDialog(parent)
    , inform([this](const QString &text) { QMessageBox::information(this, gAppTitle, text); })
{
    setWindowTitle(u"设置"_s);
    if (parent)
        setWindowIcon(parent->windowIcon());
    setModal(true);

    const QStringList labels {
        u"设置压缩类型:"_s, u"设置压缩级别:"_s, u"创建快捷方式:"_s, u"系统关联菜单:"_s, u"压缩完成动作:"_s};
    for (size_t i = 0; i < Label1.size(); ++i)
        Label1[i] = new QLabel(labels[qsizetype(i)], this);
    for (QComboBox *&combo : Combo1) {
        combo = new QComboBox(this);
        combo->installEventFilter(this);
    }
    for (size_t i = 0; i < Command1.size(); ++i) {
        Command1[i] = new QPushButton(this);
        connect(Command1[i], &QPushButton::clicked, this, [this, i] { Command1_Click(int(i)); });
    }
    Command1[0]->setText(u"确定"_s);
    Command1[3]->setText(u"建立关联菜单"_s);
    Command1[4]->setText(u"移除关联菜单"_s);
    // The context-menu entries stay out of reach on purpose; their handlers are complete.
    Command1[3]->setEnabled(false);
    Command1[4]->setEnabled(false);
    refreshShortcutCaptions();

    auto *grid = new QGridLayout(this);
    grid->addWidget(Label1[0], 0, 0);
    grid->addWidget(Combo1[0], 0, 1, 1, 2);
    grid->addWidget(Label1[1], 1, 0);
    grid->addWidget(Combo1[1], 1, 1, 1, 2);
    grid->addWidget(Label1[4], 2, 0);
    grid->addWidget(Combo1[2], 2, 1, 1, 2);
    grid->addWidget(Label1[2], 3, 0);
    grid->addWidget(Command1[1], 3, 1);
    grid->addWidget(Command1[2], 3, 2);
    grid->addWidget(Label1[3], 4, 0);
    grid->addWidget(Command1[3], 4, 1);
    grid->addWidget(Command1[4], 4, 2);
    grid->setRowMinimumHeight(5, kBandMargin / 2);
    grid->addWidget(Command1[0], 6, 2);

    connect(Combo1[0], &QComboBox::currentIndexChanged, this, &frmOption::onTypeChanged);
    Combo1[0]->addItems({u"NONE"_s, u"MSZIP"_s, u"LZX"_s});
    Combo1[1]->addItems({u"15"_s, u"16"_s, u"17"_s, u"18"_s, u"19"_s, u"20"_s, u"21"_s});
    Combo1[2]->addItems({u"无"_s, u"提示打开"_s});
    Combo1[0]->setCurrentIndex(storedIndex(u"CompressionType"));
    onTypeChanged(Combo1[0]->currentIndex());
    Combo1[1]->setCurrentIndex(storedIndex(u"CompressionMemory"));
    Combo1[2]->setCurrentIndex(storedIndex(u"CompleteAction"));
    Command1[0]->setDefault(true);
    Command1[0]->setFocus();
}

void frmOption::onTypeChanged(int index)
{
    // A level applies to LZX only.
    const bool lzx = index == 2;
    Label1[1]->setEnabled(lzx);
    Combo1[1]->setEnabled(lzx);
}

void frmOption::refreshShortcutCaptions()
{
    Command1[1]->setText(QFile::exists(ShortcutPath(CSIDL_DESKTOPDIRECTORY)) ? u"移除桌面快捷方式"_s
                                                                             : u"在桌面创建快捷方式"_s);
    Command1[2]->setText(QFile::exists(ShortcutPath(CSIDL_SENDTO)) ? u"移除发送到菜单快捷方式"_s
                                                                   : u"增加快捷方式到发送到菜单"_s);
}

void frmOption::toggleShortcut(int FolderId, const QString &)
{
    const QString path = ShortcutPath(FolderId);
    if (QFile::exists(path)) {
        QFile::remove(path);
        refreshShortcutCaptions();
        inform(u"快捷方式已经移除。"_s);
    } else {
        CreateProgramShortcut(FolderId);
        refreshShortcutCaptions();
        inform(u"快捷方式已经创建。"_s);
    }
}

void frmOption::Command1_Click(int Index)
{
    switch (Index) {
    case 0:
        WriteSetting(u"CompressionType", QString::number(Combo1[0]->currentIndex()));
        WriteSetting(u"CompressionMemory", QString::number(Combo1[1]->currentIndex()));
        WriteSetting(u"CompleteAction", QString::number(Combo1[2]->currentIndex()));
        accept();
        break;
    case 1:
        toggleShortcut(CSIDL_DESKTOPDIRECTORY, QString());
        break;
    case 2:
        toggleShortcut(CSIDL_SENDTO, QString());
        break;
    case 3:
        WriteContextEntry();
        inform(u"已整合到 Windows 资源管理器关联菜单。"_s);
        break;
    case 4:
        RemoveContextEntry();
        inform(u"已从 Windows 资源管理器关联菜单移除。"_s);
        break;
    default:
        break;
    }
}

bool frmOption::eventFilter(QObject *watched, QEvent *event)
{
    // The lists take no typing; Esc still reaches the dialog.
    if (event->type() == QEvent::KeyPress || event->type() == QEvent::KeyRelease) {
        for (QComboBox *combo : Combo1) {
            if (watched == combo) {
                const auto *key = static_cast<QKeyEvent *>(event);
                if (key->key() == Qt::Key_Escape) {
                    if (event->type() == QEvent::KeyPress)
                        reject();
                    return true;
                }
                return true;
            }
        }
    }
    return QDialog::eventFilter(watched, event);
}

void frmOption::paintEvent(QPaintEvent *event)
{
    QDialog::paintEvent(event);
    QPainter painter(this);
    painter.fillRect(0, 0, width(), std::max(0, height() - kBandMargin), QColor(0xFF, 0xFF, 0xFF));
}

} // namespace qb::workbench
