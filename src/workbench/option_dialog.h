// frmOption: the settings of a build (compression type, level, what to do when done) and the
// desktop shortcuts. Modal; Esc leaves without saving.
#pragma once

#include <QDialog>

#include <array>
#include <functional>

class QComboBox;
class QLabel;
class QPushButton;

namespace qb::workbench {

class frmOption : public QDialog
{
    Q_OBJECT

public:
    explicit frmOption(QWidget *parent = nullptr);

    std::array<QLabel *, 5> Label1 {};
    std::array<QComboBox *, 3> Combo1 {};
    std::array<QPushButton *, 5> Command1 {};

    // The click handler of the buttons, by index.
    void Command1_Click(int Index);

    // How the dialog tells the user that something was done; a message box unless replaced.
    std::function<void(const QString &text)> inform;

protected:
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;

private:
    void refreshShortcutCaptions();
    void onTypeChanged(int index);
    void toggleShortcut(int FolderId, const QString &removeCaption);
};

} // namespace qb::workbench
