// frmMain: the program's window. A menu bar, the list filling the client area and the status strip
// along the bottom; the logic behind them is the Workbench, which sees the list, the strip and the
// menus through small adapters.
#pragma once

#include "controls/ctl_button.h"
#include "controls/ctl_list_view.h"
#include "host/prev_instance.h"
#include "workbench/list_surface.h"
#include "workbench/menu_surface.h"
#include "workbench/strip_surface.h"
#include "workbench/user_dialogs.h"
#include "workbench/workbench.h"

#include <QMainWindow>
#include <QTimer>

#include <array>
#include <map>
#include <memory>

class QAction;
class QMenu;

namespace qb::workbench {

// The list control behind the list surface.
class ListViewSurface : public ListSurface
{
public:
    explicit ListViewSurface(controls::ctlListView &list)
        : m_list(list)
    { }
    bool Enabled() const override { return m_list.Enabled(); }
    void setEnabled(bool on) override { m_list.setEnabled(on); }
    void SetRedraw(bool on) override { m_list.SetRedraw(on); }
    void AddItem(const QString &ItemsText, const QString &FileName, const QString &Tag) override
    {
        if (m_list.AddItem(ItemsText, FileName))
            m_list.setItemTag(m_list.Count() - 1, Tag);
    }
    void Clear() override { m_list.Clear(); }
    int Count() const override { return m_list.Count(); }
    int ItemIndex() const override { return m_list.ItemIndex(); }
    void ItemRemove(int Index) override { m_list.ItemRemove(Index); }
    bool ItemSelected(int Index) const override { return m_list.ItemSelected(Index); }
    QString ItemText(int Index, int Column) const override { return m_list.ItemText(Index, Column); }
    QString ItemFile(int Index) const override { return m_list.ItemFile(Index); }
    QString ItemTag(int Index) const override { return m_list.ItemTag(Index); }

private:
    controls::ctlListView &m_list;
};

// The status strip behind the strip surface.
class ButtonStripSurface : public StripSurface
{
public:
    explicit ButtonStripSurface(controls::ctlButton &strip)
        : m_strip(strip)
    { }
    QString Caption() const override { return m_strip.Caption(); }
    void setCaption(const QString &text) override { m_strip.setCaption(text); }
    double value() const override { return m_strip.value(); }
    void setvalue(double position) override { m_strip.setvalue(position); }
    double Max() const override { return m_strip.Max(); }
    void setMax(double end) override { m_strip.setMax(end); }
    bool Refresh() const override { return m_strip.Refresh(); }
    void setRefresh(bool on) override { m_strip.setRefresh(on); }

private:
    controls::ctlButton &m_strip;
};

// Menu entries as window actions.
class ActionMenus : public MenuSurface
{
public:
    void add(Menu menu, QAction *action) { m_actions[menu] = action; }
    void setMenuEnabled(Menu menu, bool on) override;
    bool menuEnabled(Menu menu) const override;

private:
    std::map<Menu, QAction *> m_actions;
};

class frmMain : public QMainWindow
{
    Q_OBJECT

public:
    // dialogs: how the window asks and tells; the desktop's dialogs when null.
    explicit frmMain(std::unique_ptr<UserDialogs> dialogs = nullptr, QWidget *parent = nullptr);
    ~frmMain() override;

    // The load: hands this start's command line to a running instance and returns false when
    // one took it (this window then closes); otherwise sets the window up, shows it and returns true.
    bool Load(const QStringList &arguments);

    // The window's caption: title, major.minor, and " Build " + revision when there is one.
    static QString CaptionText();
    // The about box's title and text.
    static QString AboutTitle();
    QString AboutText() const;

    Workbench &bench() { return *m_bench; }
    controls::ctlListView *ctlListView1 = nullptr;
    controls::ctlButton *ctlButton1 = nullptr;

    // Menus.
    QMenu *mnuFileBase = nullptr;
    QAction *mnuOpen = nullptr;
    QAction *mnuExtract = nullptr;
    std::array<QAction *, 2> mnuSave {};
    QAction *mnuCancel = nullptr;
    QMenu *mnuAddBase = nullptr;
    std::array<QAction *, 2> mnuAdd {};
    QAction *mnuDelete = nullptr;
    QAction *mnuClear = nullptr;
    QAction *mnuOption = nullptr;
    QAction *mnuExit = nullptr;
    QMenu *mnuHelpBase = nullptr;
    QAction *mnuAbout = nullptr;

    void AboutMe();
    // Files and folders dropped on the window (or handed over by a test).
    void DropPaths(const QStringList &paths);
    // Runs the docking rule now, as at the end of a move.
    void Dock();

protected:
    void closeEvent(QCloseEvent *event) override;
    void keyPressEvent(QKeyEvent *event) override;
    void dragEnterEvent(QDragEnterEvent *event) override;
    void dropEvent(QDropEvent *event) override;
    void moveEvent(QMoveEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;

private:
    void buildMenus();
    void setUpStrip();
    void setUpList();
    void restoreWindow();

    std::unique_ptr<UserDialogs> m_dialogs;
    std::unique_ptr<ListViewSurface> m_listSurface;
    std::unique_ptr<ButtonStripSurface> m_stripSurface;
    ActionMenus m_menus;
    std::unique_ptr<Workbench> m_bench;
    host::clsPrevInstance *cPrevInstance = nullptr;
    QTimer m_moveEnded; // a move or resize counts as ended when the window has been still briefly
};

} // namespace qb::workbench
