// The main window: set-up, menus, drops, docking, the close guard and the about box.
#include "workbench/main_window.h"

#include "workbench/app_context.h"
#include "workbench/general_procedures.h"
#include "workbench/option_dialog.h"
#include "workbench/qt_user_dialogs.h"
#include "workbench/window_docking.h"

#include <QAction>
#include <QCloseEvent>
#include <QCoreApplication>
#include <QDesktopServices>
#include <QDir>
#include <QDragEnterEvent>
#include <QDropEvent>
#include <QKeyEvent>
#include <QMenuBar>
#include <QMimeData>
#include <QScreen>
#include <QUrl>
#include <QVBoxLayout>
#include <QVersionNumber>

using namespace Qt::StringLiterals;

namespace qb::workbench {

namespace {

// The smallest window: 13275 by 7410 twips at 15 twips a pixel.
constexpr int kMinWidth = 885;
constexpr int kMinHeight = 494;
constexpr int kStripHeight = 24;
constexpr int kMoveSettleMs = 250;

// Shares of the client width the columns get at load; the source column is hidden but kept.
struct ColumnSpec
{
    const char16_t *title;
    double share;
};
constexpr std::array<ColumnSpec, 6> kColumns {
    {{u"文件名", 0.3}, {u"路径", 0.25}, {u"类型", 0.15}, {u"大小", 0.1}, {u"日期", 0.15}, {u"来源", 0.0}}};

} // namespace

void ActionMenus::setMenuEnabled(Menu menu, bool on)
{
    const auto found = m_actions.find(menu);
    if (found != m_actions.end() && found->second)
        found->second->setEnabled(on);
}

bool ActionMenus::menuEnabled(Menu menu) const
{
    const auto found = m_actions.find(menu);
    return found != m_actions.end() && found->second && found->second->isEnabled();
}

frmMain::frmMain(std::unique_ptr<UserDialogs> dialogs, QWidget *parent)
    : QMainWindow(parent)
    , m_dialogs(dialogs ? std::move(dialogs) : std::make_unique<QtUserDialogs>(this))
{
    auto *central = new QWidget(this);
    auto *layout = new QVBoxLayout(central);
    layout->setContentsMargins(0, 0, 0, 0);
    layout->setSpacing(0);
    ctlListView1 = new controls::ctlListView(central);
    ctlButton1 = new controls::ctlButton(central);
    ctlButton1->setFixedHeight(kStripHeight);
    layout->addWidget(ctlListView1, 1);
    layout->addWidget(ctlButton1);
    setCentralWidget(central);

    m_listSurface = std::make_unique<ListViewSurface>(*ctlListView1);
    m_stripSurface = std::make_unique<ButtonStripSurface>(*ctlButton1);
    m_bench = std::make_unique<Workbench>(*m_listSurface, *m_stripSurface, m_menus, *m_dialogs);
    m_bench->restoreWindow = [this] { restoreWindow(); };

    m_moveEnded.setSingleShot(true);
    m_moveEnded.setInterval(kMoveSettleMs);
    connect(&m_moveEnded, &QTimer::timeout, this, &frmMain::Dock);
    buildMenus();
}

frmMain::~frmMain()
{
    // The engine may still hold a tool; it goes with the bench, before the controls it reports to.
    m_bench.reset();
}

QString frmMain::CaptionText()
{
    const QVersionNumber version = QVersionNumber::fromString(QCoreApplication::applicationVersion());
    QString text = gAppTitle + u' ' + QString::number(version.majorVersion()) + u'.'
        + QString::number(version.minorVersion());
    if (version.microVersion() > 0)
        text += u" Build "_s + QString::number(version.microVersion());
    return text;
}

bool frmMain::Load(const QStringList &arguments)
{
    // Relative paths mean the caller's folder, also when another instance receives them.
    cPrevInstance = new host::clsPrevInstance(
        host::clsPrevInstance::JoinCommandLine(
            host::clsPrevInstance::AbsoluteArguments(arguments, QDir::currentPath())),
        this);
    if (cPrevInstance->PrevInstance(QString(), QString()) != 0)
        return false;
    connect(cPrevInstance,
        qOverload<const QString &, bool, const QStringList &, const QStringList &, const QStringList &>(
            &host::clsPrevInstance::PrevInstance),
        this,
        [this](const QString &command, bool ready, const QStringList &files, const QStringList &folders,
            const QStringList &parameters) {
            m_bench->cPrevInstance_PrevInstance(command, ready, files, folders, parameters);
        });

    setWindowTitle(CaptionText());
    setAcceptDrops(true);
    mnuCancel->setEnabled(false);
    setUpStrip();
    show();
    setUpList();
    cPrevInstance->setReady(true);
    return true;
}

void frmMain::buildMenus()
{
    mnuFileBase = menuBar()->addMenu(u"文件 (&F)"_s);
    mnuOpen = mnuFileBase->addAction(u"打开 (&O)"_s, this, [this] { m_bench->mnuOpen(); });
    mnuExtract = mnuFileBase->addAction(u"释放 (&E)"_s, this, [this] { m_bench->mnuExtract(); });
    mnuFileBase->addSeparator();
    mnuSave[0] = mnuFileBase->addAction(u"保存 (&S)"_s, this, [this] { m_bench->mnuSave(0); });
    mnuSave[1] = mnuFileBase->addAction(u"另存为 (&A)"_s, this, [this] { m_bench->mnuSave(1); });
    mnuFileBase->addSeparator();
    mnuCancel = mnuFileBase->addAction(u"取消压缩 (&C)"_s, this, [this] { m_bench->mnuCancel(); });
    mnuCancel->setEnabled(false);
    mnuFileBase->addSeparator();
    mnuAddBase = mnuFileBase->addMenu(u"添加 (&A)"_s);
    mnuAdd[0] = mnuAddBase->addAction(u"文件 (&F)"_s, this, [this] { m_bench->mnuAdd(0); });
    mnuAdd[1] = mnuAddBase->addAction(u"目录 (&D)"_s, this, [this] { m_bench->mnuAdd(1); });
    mnuDelete = mnuFileBase->addAction(u"删除"_s, this, [this] { m_bench->mnuDelete(); });
    mnuClear = mnuFileBase->addAction(u"清除"_s, this, [this] { m_bench->mnuClear(); });
    mnuFileBase->addSeparator();
    mnuOption = mnuFileBase->addAction(u"设置 (&O)"_s, this, [this] {
        frmOption dialog(this);
        dialog.exec();
    });
    mnuFileBase->addSeparator();
    mnuExit = mnuFileBase->addAction(u"退出 (&X)"_s, this, &QWidget::close);
    mnuHelpBase = menuBar()->addMenu(u"帮助 (&H)"_s);
    mnuAbout = mnuHelpBase->addAction(u"关于 (&A)"_s, this, &frmMain::AboutMe);

    m_menus.add(Menu::Open, mnuOpen);
    m_menus.add(Menu::Extract, mnuExtract);
    m_menus.add(Menu::Save, mnuSave[0]);
    m_menus.add(Menu::SaveAs, mnuSave[1]);
    m_menus.add(Menu::AddBase, mnuAddBase->menuAction());
    m_menus.add(Menu::Delete, mnuDelete);
    m_menus.add(Menu::Clear, mnuClear);
    m_menus.add(Menu::Cancel, mnuCancel);
}

void frmMain::setUpStrip()
{
    ctlButton1->setRefresh(false);
    ctlButton1->setStyle(27);
    ctlButton1->setBackColor(0xF0F0F0);
    ctlButton1->setForeColor(0);
    ctlButton1->setMode(controls::ctlButton::ucModeStatusBar);
    ctlButton1->setShowBorder(8);
    ctlButton1->setStatusBarResize(true);
    ctlButton1->setMax(100);
    ctlButton1->setvalue(0);
    ctlButton1->setAlignment(0);
    ctlButton1->setShowEffect(false);
    ctlButton1->setWindowSizeMinWidth(kMinWidth);
    ctlButton1->setWindowSizeMinHeight(kMinHeight);
    const QSize screenSize = screen() ? screen()->size() : QSize(kMinWidth, kMinHeight);
    ctlButton1->setWindowSizeMaxWidth(screenSize.width());
    ctlButton1->setWindowSizeMaxHeight(screenSize.height());
    ctlButton1->setWindowSizeLimit(true);
    // The strip watches the window through interception: size limits, the grip and the drag.
    ctlButton1->setSubclassEnabled(true);
    ctlButton1->setRefresh(true);
    setMinimumSize(kMinWidth, kMinHeight);
    if (width() < kMinWidth || height() < kMinHeight)
        resize(std::max(width(), kMinWidth), std::max(height(), kMinHeight));
}

void frmMain::setUpList()
{
    ctlListView1->SetRedraw(false);
    ctlListView1->Initialize(QString(), u"|"_s, 1);
    ctlListView1->SetThumbnailSize(64, 64);
    ctlListView1->setOLEDropMode(0);
    ctlListView1->setBorderStyle(0);
    ctlListView1->setMultiSelect(true);
    const int client = centralWidget() ? centralWidget()->width() : width();
    for (size_t i = 0; i < kColumns.size(); ++i)
        ctlListView1->AddColumn(
            int(i), QString::fromUtf16(kColumns[i].title), int(client * kColumns[i].share));
    ctlListView1->SetRedraw(true);
}

QString frmMain::AboutTitle()
{
    return u"关于"_s + u' ' + gAppTitle;
}

QString frmMain::AboutText() const
{
    const QVersionNumber version = QVersionNumber::fromString(QCoreApplication::applicationVersion());
    QString versionText
        = QString::number(version.majorVersion()) + u'.' + QString::number(version.minorVersion());
    if (version.microVersion() > 0)
        versionText += u" Build "_s + QString::number(version.microVersion());
    return gAppTitle + u" "_s + versionText + u"\r\n\r\n"_s + u"把文件或目录拖到窗口中即可加入压缩包；"_s
        + u"“保存”生成 CAB 压缩包，“打开”和“释放”查看并释放已有的压缩包。"_s + u"\r\n"_s
        + u"压缩类型和级别可在“设置”中修改，下一次压缩时生效。"_s + u"\r\n\r\n"_s
        + u"是否打开程序所在的目录？"_s;
}

void frmMain::AboutMe()
{
    if (m_dialogs->MsgBoxTitled(AboutText(), kYesNo, AboutTitle()) == kAnswerYes)
        m_dialogs->OpenWithSystem(QCoreApplication::applicationDirPath());
}

void frmMain::restoreWindow()
{
    if (windowState() & (Qt::WindowMinimized | Qt::WindowMaximized))
        setWindowState(windowState() & ~(Qt::WindowMinimized | Qt::WindowMaximized));
    show();
    raise();
    activateWindow();
}

void frmMain::DropPaths(const QStringList &paths)
{
    if (FileExists(m_bench->cCab().CabName())) {
        if (m_dialogs->MsgBox(u"是否关闭已经打开的 CAB 文件包？"_s, kYesNo) != kAnswerYes)
            return;
        ctlListView1->Clear();
    }
    m_bench->DropFile(paths, QString());
}

void frmMain::dragEnterEvent(QDragEnterEvent *event)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
}

void frmMain::dropEvent(QDropEvent *event)
{
    QStringList paths;
    for (const QUrl &url : event->mimeData()->urls()) {
        if (url.isLocalFile())
            paths.append(url.toLocalFile());
    }
    event->acceptProposedAction();
    if (!paths.isEmpty())
        DropPaths(paths);
}

void frmMain::Dock()
{
    QScreen *current = screen();
    if (!current)
        return;
    const QRect screenRect = current->geometry();
    const QRect work = current->availableGeometry();
    if (work.isEmpty())
        return;
    // The rule works in the screen's own coordinates.
    const QRect window = frameGeometry().translated(-screenRect.topLeft());
    const QPoint docked = DockedPosition(window, screenRect.size(), work.translated(-screenRect.topLeft()));
    if (docked != window.topLeft())
        move(docked + screenRect.topLeft());
}

void frmMain::moveEvent(QMoveEvent *event)
{
    QMainWindow::moveEvent(event);
    if (isVisible())
        m_moveEnded.start();
}

void frmMain::resizeEvent(QResizeEvent *event)
{
    QMainWindow::resizeEvent(event);
    if (isVisible())
        m_moveEnded.start();
}

void frmMain::keyPressEvent(QKeyEvent *event)
{
    if (event->key() == Qt::Key_Escape) {
        close();
        return;
    }
    QMainWindow::keyPressEvent(event);
}

void frmMain::closeEvent(QCloseEvent *event)
{
    if (m_bench->FFmpegX1().Processing() || m_bench->mExtractCount >= 1) {
        event->ignore();
        m_dialogs->MsgBox(u"请等待任务完成，或手工取消任务。"_s, kCritical);
        return;
    }
    event->accept();
}

} // namespace qb::workbench
