// ctlButton under the pointer and the keyboard: mouse events and their status texts, what a click
// does in each mode, the pickers, the text box with its masked keys, the combo box and the menu.
#include "controls/ctl_button.h"

#include "controls/button_colors.h"
#include "controls/button_keys.h"
#include "controls/button_painter.h"
#include "controls/ctl_button_children.h"
#include "controls/input_codes.h"
#include "util/time_format.h"

#include <QAbstractItemView>
#include <QDesktopServices>
#include <QFileDialog>
#include <QFileInfo>
#include <QFontDatabase>
#include <QKeyEvent>
#include <QKeySequence>
#include <QLineEdit>
#include <QMenu>
#include <QMouseEvent>
#include <QUrl>
#include <QWheelEvent>

namespace qb::controls {

namespace {

QString buttonText(int button, const char *what)
{
    const char *name = button == 2 ? "RButton " : button == 4 ? "MButton " : "LButton ";
    return QString::fromLatin1(name) + QString::fromLatin1(what);
}

QList<int> indexList(const QString &text)
{
    QList<int> indices;
    for (const QString &part : text.split(u'|', Qt::SkipEmptyParts)) {
        bool ok = false;
        const int index = part.trimmed().toInt(&ok);
        if (ok)
            indices.append(index);
    }
    return indices;
}

// Keys that would edit a masked text behind the handlers' back.
bool editsText(const QKeyEvent &event)
{
    return event.matches(QKeySequence::Paste) || event.matches(QKeySequence::Cut)
        || event.matches(QKeySequence::Undo) || event.matches(QKeySequence::Redo)
        || event.matches(QKeySequence::DeleteEndOfWord) || event.matches(QKeySequence::DeleteStartOfWord)
        || event.matches(QKeySequence::DeleteEndOfLine) || event.matches(QKeySequence::DeleteCompleteLine);
}

TextBoxState mirror(const QLineEdit &edit)
{
    TextBoxState box;
    box.Text = edit.text();
    if (edit.hasSelectedText()) {
        box.SelStart = edit.selectionStart();
        box.SelLength = int(edit.selectedText().size());
    } else {
        box.SelStart = edit.cursorPosition();
    }
    box.Visible = true;
    return box;
}

void applyTo(QLineEdit &edit, const TextBoxState &box)
{
    if (edit.text() != box.Text)
        edit.setText(box.Text);
    if (box.SelLength > 0)
        edit.setSelection(box.SelStart, box.SelLength);
    else
        edit.setCursorPosition(box.SelStart);
}

} // namespace

// The Qt file dialog wants "label (patterns)" pairs; the filter text holds "label|pattern|..." with
// ";"-separated patterns. "*.*" means every file, with or without a dot.
QString QtFileFilter(const QString &FileFilter)
{
    const QStringList parts = FileFilter.split(u'|');
    QStringList filters;
    for (qsizetype i = 0; i + 1 < parts.size(); i += 2) {
        QStringList patterns = parts.at(i + 1).split(u';', Qt::SkipEmptyParts);
        for (QString &pattern : patterns) {
            pattern = pattern.trimmed();
            if (pattern == u"*.*")
                pattern = QStringLiteral("*");
        }
        filters.append(parts.at(i) + QStringLiteral(" (") + patterns.join(u' ') + u')');
    }
    return filters.join(QStringLiteral(";;"));
}

void ctlButton::enterEvent(QEnterEvent *event)
{
    QWidget::enterEvent(event);
    m_mouseInside = true;
    Q_EMIT MouseEnter();
    Q_EMIT Status(QStringLiteral("Mouse Enter"));
    setStatus(m_mousePressed ? 2 : 1);
}

void ctlButton::leaveEvent(QEvent *event)
{
    QWidget::leaveEvent(event);
    m_mouseInside = false;
    Q_EMIT MouseLeave();
    Q_EMIT Status(QStringLiteral("Mouse Leave"));
    setStatus(0);
}

void ctlButton::mousePressEvent(QMouseEvent *event)
{
    const int button = ButtonState(event->button());
    if (button == 0)
        return QWidget::mousePressEvent(event);
    m_clickButton = button;
    m_mousePressed = true;
    m_afterDoubleClick = false;
    const QPointF at = event->position();
    if (button != 4 && m_p.Mode != ucModeStatusBar && m_p.Mode != ucModeDragBar)
        setStatus(2);
    Q_EMIT MouseDown(button, ShiftState(event->modifiers()), float(at.x()), float(at.y()));
    Q_EMIT Status(buttonText(button, "Down"));
}

void ctlButton::mouseReleaseEvent(QMouseEvent *event)
{
    const int button = ButtonState(event->button());
    if (button == 0)
        return QWidget::mouseReleaseEvent(event);
    m_mousePressed = false;
    const QPointF at = event->position();
    const bool inside = rect().contains(at.toPoint());
    Q_EMIT MouseUp(button, ShiftState(event->modifiers()), float(at.x()), float(at.y()));
    Q_EMIT Status(buttonText(button, "Up"));
    const bool afterDoubleClick = m_afterDoubleClick;
    m_afterDoubleClick = false;
    if (!inside) {
        setStatus(0);
        return;
    }
    if (!afterDoubleClick && button == 1) {
        if (m_p.Mode == ucModeCheck) {
            setChecked(!m_p.Checked);
        } else if (m_p.Mode == ucModeOption) {
            ClearSiblingChecks(false);
            setChecked(true);
        }
    }
    setStatus(m_p.Mode == ucModeStatusBar || m_p.Mode == ucModeDragBar ? 1 : 3);
    if (!afterDoubleClick)
        MouseClick(-1, QStringLiteral("MouseUp"));
}

void ctlButton::mouseDoubleClickEvent(QMouseEvent *event)
{
    const int button = ButtonState(event->button());
    if (button == 0)
        return QWidget::mouseDoubleClickEvent(event);
    // The second press of a double click: no new click follows its release.
    m_clickButton = button;
    m_mousePressed = true;
    m_afterDoubleClick = true;
    if (button == 1) {
        if (rect().contains(event->position().toPoint())) {
            Q_EMIT DblClick();
            Q_EMIT Status(QStringLiteral("DblClick"));
        }
    } else {
        Q_EMIT Status(buttonText(button, "DblClick"));
    }
}

void ctlButton::mouseMoveEvent(QMouseEvent *event)
{
    const QPointF at = event->position();
    Q_EMIT MouseMove(
        ButtonState(event->buttons()), ShiftState(event->modifiers()), float(at.x()), float(at.y()));
}

void ctlButton::wheelEvent(QWheelEvent *event)
{
    const int delta = event->angleDelta().y();
    if (delta == 0)
        return QWidget::wheelEvent(event);
    const bool up = delta > 0;
    Q_EMIT MouseWheel(up ? ucMouseWheelUp : ucMouseWheelDown);
    Q_EMIT Status(up ? QStringLiteral("MouseWheel - Up") : QStringLiteral("MouseWheel - Down"));
    event->accept();
}

void ctlButton::focusInEvent(QFocusEvent *event)
{
    QWidget::focusInEvent(event);
    if (m_p.ShowFocus)
        rerender(QStringLiteral("GotFocus"));
}

void ctlButton::focusOutEvent(QFocusEvent *event)
{
    QWidget::focusOutEvent(event);
    if (m_p.ShowFocus)
        rerender(QStringLiteral("LostFocus"));
}

void ctlButton::MouseClick(int ClickMode, const QString &strStatus)
{
    Q_UNUSED(strStatus) // names the caller, as ReDraw's does
    const int mode = ClickMode == -1 ? m_p.Mode : ClickMode;
    switch (mode) {
    case ucModeButton:
    case ucModeCheck:
    case ucModeOption:
        if (m_clickButton == 1) {
            Q_EMIT Click();
            Q_EMIT Status(QStringLiteral("Click"));
        }
        break;
    case ucModeText:
        if (m_clickButton == 1 || m_clickButton == 2)
            showTextBox();
        break;
    case ucModeCombo:
        if (m_clickButton == 1)
            showComboBox();
        break;
    case ucModeFolder: {
        const QString folder = SelectForFolder(window(), m_p.Title, m_p.Caption);
        if (folder.isEmpty() && !m_p.CancelClear)
            break;
        m_p.Caption = folder;
        Q_EMIT ValueChange();
        Q_EMIT SelectedChange();
        rerender(QStringLiteral("MouseClick_ucModeFolder"));
        break;
    }
    case ucModeFile: {
        const QString folder = m_p.Caption.isEmpty() ? QString() : QFileInfo(m_p.Caption).absolutePath();
        const QString file = askOpenFileName(window(), m_p.Title, folder, QtFileFilter(m_p.FileFilter));
        if (file.isEmpty() && !m_p.CancelClear)
            break;
        m_p.Caption = file;
        Q_EMIT ValueChange();
        Q_EMIT SelectedChange();
        rerender(QStringLiteral("MouseClick_ucModeFile"));
        break;
    }
    default: // the bars have no click, and values above 7 do nothing
        break;
    }
}

void ctlButton::ClickIt(bool fullselect)
{
    m_clickButton = 1;
    MouseClick(-1, QStringLiteral("ClickIt"));
    if (fullselect && TextBoxVisible())
        m_text->selectAll();
    if (m_combo->isVisibleTo(this))
        m_combo->setFocus();
    else if (TextBoxVisible())
        m_text->setFocus();
}

QString ctlButton::SelectForFolder(QWidget *hwnd, const QString &Title, const QString &RootPath)
{
    return QFileDialog::getExistingDirectory(hwnd, Title, RootPath);
}

QString ctlButton::askOpenFileName(
    QWidget *host, const QString &title, const QString &folder, const QString &filter)
{
    return QFileDialog::getOpenFileName(host, title, folder, filter);
}

bool ctlButton::ShellOpen()
{
    if (m_p.Caption.isEmpty())
        return false;
    return QDesktopServices::openUrl(QUrl::fromLocalFile(m_p.Caption));
}

void ctlButton::ClearSiblingChecks(bool value)
{
    QWidget *container = parentWidget();
    if (!container)
        return;
    const QList<ctlButton *> siblings = container->findChildren<ctlButton *>(Qt::FindDirectChildrenOnly);
    for (ctlButton *other : siblings) {
        if (other->hwnd() != hwnd() && other->Checked() && other->Mode() > 0)
            other->setChecked(value);
    }
}

QRect ctlButton::fieldRect() const
{
    // The field right of the title column and the icon, left of the symbol and inside the outline.
    const bool titled = !m_p.Title.isEmpty() && m_p.TitleWidth >= 1;
    const int titleWidth = titled ? m_p.TitleWidth : 0;
    const bool icon = !m_p.Icon.isNull() || !m_p.IconText.isEmpty();
    const int left = titleWidth + (icon ? m_p.IconSize + 8 : 0);
    int fieldWidth = width() - titleWidth;
    if (m_p.ShowDropDownSymbol != 0)
        fieldWidth -= kSymbolZone;
    if (icon)
        fieldWidth -= m_p.IconSize / 2 + 8;
    if (m_p.ShowBorder != 0)
        fieldWidth -= m_p.ShowBorder == 1 ? 2 : 1;
    const int fieldHeight = std::max(1, height() - 8);
    const int top = qRound((height() - fieldHeight) / 2.0);
    return QRect(left, top, std::max(1, fieldWidth), fieldHeight);
}

void ctlButton::showTextBox()
{
    QFont font(m_p.Font.family());
    if (m_p.Font.pointSizeF() > 0)
        font.setPointSizeF(m_p.Font.pointSizeF());
    else if (m_p.Font.pixelSize() > 0)
        font.setPixelSize(m_p.Font.pixelSize());
    font.setBold(m_p.Font.bold());
    if (m_p.TextFormat == kTextFormatTime) {
        // Digits of one width, so the mask's fields stay put under the caret.
        QFont fixed = QFontDatabase::systemFont(QFontDatabase::FixedFont);
        fixed.setPointSizeF(font.pointSizeF() > 0 ? font.pointSizeF() : fixed.pointSizeF());
        fixed.setBold(font.bold());
        font = fixed;
    }
    m_text->setFont(font);
    QPalette palette = m_text->palette();
    palette.setColor(QPalette::Base, ToQColor(m_p.BackColor));
    palette.setColor(QPalette::Text, ToQColor(m_p.ForeColor));
    m_text->setPalette(palette);
    m_text->setAlignment((m_p.Alignment == 1                                ? Qt::AlignRight
                                 : m_p.Alignment == 2 || m_p.Alignment == 4 ? Qt::AlignHCenter
                                                                            : Qt::AlignLeft)
        | Qt::AlignVCenter);
    QString text = m_p.Caption;
    if (m_p.TextFormat == kTextFormatTime && text.isEmpty())
        text = util::FormatTime(0, true, QStringLiteral(","));
    m_text->setText(text);
    // The masked formats are edited by their key handlers alone: no pasting or dropping around them.
    const bool masked = m_p.TextFormat == kTextFormatTime || m_p.TextFormat == kTextFormatOverwrite;
    m_text->setContextMenuPolicy(masked ? Qt::NoContextMenu : Qt::DefaultContextMenu);
    m_text->setAcceptDrops(!masked);
    m_textAtOpen = m_p.Caption;
    m_text->setGeometry(fieldRect());
    m_text->show();
    m_text->raise();
    m_text->setCursorPosition(0);
    m_text->setFocus();
}

void ctlButton::hideTextBox()
{
    if (!m_text->isVisibleTo(this))
        return;
    m_text->hide();
    const QString text = m_text->text();
    if (text != m_textAtOpen) {
        setCaption(text);
        Q_EMIT SelectedChange();
    }
}

void ctlButton::showComboBox()
{
    m_combo->clear();
    const QStringList items = m_p.ComboBoxItems.split(u'|');
    if (m_p.ComboBoxItems.contains(u'|'))
        m_combo->addItems(items);
    else if (!m_p.ComboBoxItems.isEmpty())
        m_combo->addItem(m_p.ComboBoxItems);
    m_combo->setFont(m_p.Font);
    const int current = m_combo->findText(m_p.Caption, Qt::MatchExactly | Qt::MatchCaseSensitive);
    m_combo->setCurrentIndex(current);
    m_combo->setGeometry(fieldRect());
    m_combo->show();
    m_combo->raise();
    m_combo->setFocus();
    if (m_combo->isVisible()) // the list needs the control on the screen
        m_combo->showPopup();
}

void ctlButton::comboChosen(int index)
{
    m_combo->hide();
    if (index < 0)
        return;
    setCaption(m_combo->itemText(index));
    Q_EMIT SelectedChange();
}

bool ctlButton::textBoxKeyPress(QKeyEvent *event)
{
    const int format = m_p.TextFormat;
    const bool masked = format == kTextFormatTime || format == kTextFormatOverwrite;
    const int shift = ShiftState(event->modifiers());
    const int keyCode = VirtualKeyCode(event->key(), event->modifiers());

    auto raise = [this](const std::vector<MaskEvent> &events, int key) {
        for (const MaskEvent e : events) {
            switch (e) {
            case MaskEvent::ValueChange:
                Q_EMIT ValueChange();
                break;
            case MaskEvent::SelectedChange:
                Q_EMIT SelectedChange();
                break;
            case MaskEvent::InputError:
                Q_EMIT InputError(key);
                break;
            case MaskEvent::ReDraw:
                ReDraw(QStringLiteral("txtText_KeyPress"), m_p.Status, false, m_p.EffectSpeed, true);
                break;
            }
        }
    };

    // The key going down.
    TextBoxState box = mirror(*m_text);
    const KeyOutcome down = m_mask.KeyDown(box, format, keyCode, shift);
    if (masked)
        applyTo(*m_text, box);
    raise(down.events, keyCode);
    Q_EMIT KeyDown(down.key, shift);
    if (keyCode != 0 && down.key == 0)
        return true;
    if (event->key() == Qt::Key_Tab || event->key() == Qt::Key_Backtab)
        return false; // the focus moves on, and the box closes with it

    // The character it types.
    const int ascii = KeyAsciiOf(*event);
    if (ascii == 0)
        return masked && editsText(*event);
    box = mirror(*m_text);
    const KeyOutcome press = m_mask.KeyPress(box, format, ascii);
    if (masked)
        applyTo(*m_text, box);
    raise(press.events, ascii);
    Q_EMIT KeyPress(press.key);
    Q_EMIT Status(QStringLiteral("Char"));
    const bool closes = !box.Visible || (!masked && (ascii == kKeyReturn || ascii == kKeyEscape));
    if (closes) {
        hideTextBox();
        return true;
    }
    return press.key == 0;
}

bool ctlButton::eventFilter(QObject *watched, QEvent *event)
{
    if (watched == m_text) {
        switch (event->type()) {
        case QEvent::KeyPress:
            return textBoxKeyPress(static_cast<QKeyEvent *>(event));
        case QEvent::KeyRelease: {
            const auto *key = static_cast<QKeyEvent *>(event);
            if (!key->isAutoRepeat()) {
                Q_EMIT KeyUp(VirtualKeyCode(key->key(), key->modifiers()), ShiftState(key->modifiers()));
                Q_EMIT Status(QStringLiteral("Key Up"));
            }
            break;
        }
        case QEvent::MouseButtonRelease:
            if (static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
                Q_EMIT Click();
                Q_EMIT Status(QStringLiteral("Click"));
            }
            break;
        case QEvent::MouseButtonDblClick:
            if (static_cast<QMouseEvent *>(event)->button() == Qt::LeftButton) {
                Q_EMIT DblClick();
                Q_EMIT Status(QStringLiteral("DblClick"));
            }
            break;
        case QEvent::FocusOut:
            if (static_cast<QFocusEvent *>(event)->reason() != Qt::PopupFocusReason)
                hideTextBox();
            break;
        default:
            break;
        }
        return false;
    }
    if (watched == m_combo && event->type() == QEvent::FocusOut && !m_combo->view()->isVisible()
        && static_cast<QFocusEvent *>(event)->reason() != Qt::PopupFocusReason) {
        m_combo->hide();
    }
    return QWidget::eventFilter(watched, event);
}

QAction *ctlButton::execPopupMenu(QMenu &menu, const QPoint &globalPos)
{
    return menu.exec(globalPos);
}

int ctlButton::PopupMenu(const QString &bItems, int bDefault, const QString &bChecked,
    const QString &bDisabled, const QString &bGrayed, int x, int y, bool bControlHwnd)
{
    QMenu menu(this);
    const QStringList items = bItems.split(u'|');
    const QList<int> checked = indexList(bChecked);
    const QList<int> disabled = indexList(bDisabled) + indexList(bGrayed);
    for (int i = 0; i < items.size(); ++i) {
        if (items.at(i) == u"-") {
            menu.addSeparator();
            continue;
        }
        QAction *action = menu.addAction(items.at(i));
        action->setData(i);
        if (checked.contains(i)) {
            action->setCheckable(true);
            action->setChecked(true);
        }
        action->setEnabled(!disabled.contains(i));
        if (i == bDefault) {
            QFont bold = action->font();
            bold.setBold(true);
            action->setFont(bold);
            menu.setDefaultAction(action);
        }
    }
    QPoint at = QCursor::pos();
    if (x != -1 || y != -1)
        at = bControlHwnd ? mapToGlobal(QPoint(x, y)) : QPoint(x, y);
    const QAction *chosen = execPopupMenu(menu, at);
    return chosen ? chosen->data().toInt() : -1;
}

} // namespace qb::controls
