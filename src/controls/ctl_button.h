// ctlButton: one owner-drawn control in nine roles (button, check and option button, labelled text
// field and combo box, status bar, folder and file picker, window drag bar) and 28 looks. It keeps
// four pre-rendered pictures, one per visual state, and shows a state by copying or cross-fading
// its picture; only ReDraw with bRefreshImage renders. Its properties persist through a property bag.
#pragma once

#include "controls/ctl_button_properties.h"
#include "controls/masked_time_input.h"
#include "controls/message_interception.h"

#include <QImage>
#include <QPointer>
#include <QRegion>
#include <QWidget>

#include <array>

class QAction;
class QLineEdit;
class QMenu;
class QSettings;
class QTimer;

namespace qb::controls {

class ButtonComboBox;
class PropertyBag;

class ctlButton : public QWidget, public MessageInterception
{
    Q_OBJECT

    Q_PROPERTY(bool SubclassEnabled READ SubclassEnabled WRITE setSubclassEnabled)
    Q_PROPERTY(bool Enabled READ Enabled WRITE setEnabled)
    Q_PROPERTY(bool Refresh READ Refresh WRITE setRefresh)
    Q_PROPERTY(int Status READ Status WRITE setStatus)
    Q_PROPERTY(int Alignment READ Alignment WRITE setAlignment)
    Q_PROPERTY(QString Caption READ Caption WRITE setCaption)
    Q_PROPERTY(QString CaptionComment READ CaptionComment WRITE setCaptionComment)
    Q_PROPERTY(QString CaptionNullText READ CaptionNullText WRITE setCaptionNullText)
    Q_PROPERTY(QString CaptionAddText READ CaptionAddText WRITE setCaptionAddText)
    Q_PROPERTY(int CaptionEffects READ CaptionEffects WRITE setCaptionEffects)
    Q_PROPERTY(QString Title READ Title WRITE setTitle)
    Q_PROPERTY(int TitleWidth READ TitleWidth WRITE setTitleWidth)
    Q_PROPERTY(bool ShowCorner READ ShowCorner WRITE setShowCorner)
    Q_PROPERTY(bool ShowLight READ ShowLight WRITE setShowLight)
    Q_PROPERTY(bool ShowFocus READ ShowFocus WRITE setShowFocus)
    Q_PROPERTY(bool ShowEffect READ ShowEffect WRITE setShowEffect)
    Q_PROPERTY(int ShowBorder READ ShowBorder WRITE setShowBorder)
    Q_PROPERTY(int ShowDropDownSymbol READ ShowDropDownSymbol WRITE setShowDropDownSymbol)
    Q_PROPERTY(bool ShowSeparator READ ShowSeparator WRITE setShowSeparator)
    Q_PROPERTY(int ShowInnerLine READ ShowInnerLine WRITE setShowInnerLine)
    Q_PROPERTY(int InnerLineWidth READ InnerLineWidth WRITE setInnerLineWidth)
    Q_PROPERTY(int InnerLinePadding READ InnerLinePadding WRITE setInnerLinePadding)
    Q_PROPERTY(bool SmoothingCorner READ SmoothingCorner WRITE setSmoothingCorner)
    Q_PROPERTY(int EffectSpeed READ EffectSpeed WRITE setEffectSpeed)
    Q_PROPERTY(bool TransparentBack READ TransparentBack WRITE setTransparentBack)
    Q_PROPERTY(int Transparent READ Transparent WRITE setTransparent)
    Q_PROPERTY(int TransparentHover READ TransparentHover WRITE setTransparentHover)
    Q_PROPERTY(int TransparentPressed READ TransparentPressed WRITE setTransparentPressed)
    Q_PROPERTY(int TransparentDisable READ TransparentDisable WRITE setTransparentDisable)
    Q_PROPERTY(int Style READ Style WRITE setStyle)
    Q_PROPERTY(bool StatusBarResize READ StatusBarResize WRITE setStatusBarResize)
    Q_PROPERTY(bool WindowSizeLimit READ WindowSizeLimit WRITE setWindowSizeLimit)
    Q_PROPERTY(int WindowSizeMaxWidth READ WindowSizeMaxWidth WRITE setWindowSizeMaxWidth)
    Q_PROPERTY(int WindowSizeMaxHeight READ WindowSizeMaxHeight WRITE setWindowSizeMaxHeight)
    Q_PROPERTY(int WindowSizeMinWidth READ WindowSizeMinWidth WRITE setWindowSizeMinWidth)
    Q_PROPERTY(int WindowSizeMinHeight READ WindowSizeMinHeight WRITE setWindowSizeMinHeight)
    Q_PROPERTY(int Mode READ Mode WRITE setMode)
    Q_PROPERTY(int TextFormat READ TextFormat WRITE setTextFormat)
    Q_PROPERTY(QString FileFilter READ FileFilter WRITE setFileFilter)
    Q_PROPERTY(bool CancelClear READ CancelClear WRITE setCancelClear)
    Q_PROPERTY(bool UseGDIPlus READ UseGDIPlus WRITE setUseGDIPlus)
    Q_PROPERTY(QString ComboBoxItems READ ComboBoxItems WRITE setComboBoxItems)
    Q_PROPERTY(bool Checked READ Checked WRITE setChecked)
    Q_PROPERTY(uint ForeColor READ ForeColor WRITE setForeColor)
    Q_PROPERTY(uint ForeColorHover READ ForeColorHover WRITE setForeColorHover)
    Q_PROPERTY(uint ForeColorPressed READ ForeColorPressed WRITE setForeColorPressed)
    Q_PROPERTY(uint ForeColorDisable READ ForeColorDisable WRITE setForeColorDisable)
    Q_PROPERTY(uint BackColor READ BackColor WRITE setBackColor)
    Q_PROPERTY(uint BackColorHover READ BackColorHover WRITE setBackColorHover)
    Q_PROPERTY(uint BackColorPressed READ BackColorPressed WRITE setBackColorPressed)
    Q_PROPERTY(uint BackColorDisable READ BackColorDisable WRITE setBackColorDisable)
    Q_PROPERTY(uint LightColor READ LightColor WRITE setLightColor)
    Q_PROPERTY(uint BorderColor READ BorderColor WRITE setBorderColor)
    Q_PROPERTY(uint BorderColorHover READ BorderColorHover WRITE setBorderColorHover)
    Q_PROPERTY(uint BorderColorPressed READ BorderColorPressed WRITE setBorderColorPressed)
    Q_PROPERTY(uint BorderColorDisable READ BorderColorDisable WRITE setBorderColorDisable)
    Q_PROPERTY(uint FadeColor READ FadeColor WRITE setFadeColor)
    Q_PROPERTY(uint FadeColorHover READ FadeColorHover WRITE setFadeColorHover)
    Q_PROPERTY(uint FadeColorPressed READ FadeColorPressed WRITE setFadeColorPressed)
    Q_PROPERTY(uint FadeColorDisable READ FadeColorDisable WRITE setFadeColorDisable)
    Q_PROPERTY(uint ProgressColor READ ProgressColor WRITE setProgressColor)
    Q_PROPERTY(uint InnerLineColor READ InnerLineColor WRITE setInnerLineColor)
    Q_PROPERTY(QPixmap Icon READ Icon WRITE setIcon)
    Q_PROPERTY(int IconSize READ IconSize WRITE setIconSize)
    Q_PROPERTY(QString IconText READ IconText WRITE setIconText)
    Q_PROPERTY(QString IconFontName READ IconFontName WRITE setIconFontName)
    Q_PROPERTY(QFont Font READ Font WRITE setFont)
    Q_PROPERTY(bool TimerEnabled READ TimerEnabled WRITE setTimerEnabled)
    Q_PROPERTY(int TimerDuration READ TimerDuration WRITE setTimerDuration)
    Q_PROPERTY(int TimerInterval READ TimerInterval WRITE setTimerInterval)
    Q_PROPERTY(int ThreadPriority READ ThreadPriority WRITE setThreadPriority)
    Q_PROPERTY(int TimerType READ TimerType WRITE setTimerType)
    Q_PROPERTY(int TooltipType READ TooltipType WRITE setTooltipType)
    Q_PROPERTY(int ToolTipIcon READ ToolTipIcon WRITE setToolTipIcon)
    Q_PROPERTY(QString TooltipTitle READ TooltipTitle WRITE setTooltipTitle)
    Q_PROPERTY(QString Tooltip READ Tooltip WRITE setTooltip)
    Q_PROPERTY(bool TooltipCentered READ TooltipCentered WRITE setTooltipCentered)
    Q_PROPERTY(bool TooltipRightToLeft READ TooltipRightToLeft WRITE setTooltipRightToLeft)
    Q_PROPERTY(double Max READ Max WRITE setMax)
    Q_PROPERTY(double Min READ Min WRITE setMin)
    Q_PROPERTY(double value READ value WRITE setvalue)
    Q_PROPERTY(int ListIndex READ ListIndex WRITE setListIndex STORED false)
    Q_PROPERTY(int ListCount READ ListCount STORED false)
    Q_PROPERTY(bool TextBoxVisible READ TextBoxVisible STORED false)
    Q_PROPERTY(QImage Image READ Image STORED false)
    Q_PROPERTY(qulonglong hdc READ hdc STORED false)
    Q_PROPERTY(qulonglong hwnd READ hwnd STORED false)
    Q_PROPERTY(bool IsWinNT READ IsWinNT STORED false)

public:
    enum ucMode {
        ucModeButton = 0,
        ucModeCheck = 1,
        ucModeOption = 2,
        ucModeText = 3,
        ucModeCombo = 4,
        ucModeStatusBar = 5,
        ucModeFolder = 6,
        ucModeFile = 7,
        ucModeDragBar = 8,
    };
    Q_ENUM(ucMode)

    // The direction a wheel notch reports.
    enum ucMouseWheel {
        ucMouseWheelUp = 1,
        ucMouseWheelDown = -1,
    };
    Q_ENUM(ucMouseWheel)

    explicit ctlButton(QWidget *parent = nullptr);
    ~ctlButton() override;

    // Properties. Writing one that changes the look renders the pictures again (unless Refresh is
    // False); the others are only stored.
    bool SubclassEnabled() const { return m_p.SubclassEnabled; }
    void setSubclassEnabled(bool on);
    bool Enabled() const { return m_p.Enabled; }
    void setEnabled(bool on);
    bool Refresh() const { return m_p.Refresh; }
    // False holds every ReDraw back; True renders once.
    void setRefresh(bool on);
    int Status() const { return m_p.Status; }
    // 0 idle, 1 mouse over, 2 pressed, 3 click completed: shows that state's picture.
    void setStatus(int status);
    int Alignment() const { return m_p.Alignment; }
    void setAlignment(int alignment);
    QString Caption() const { return m_p.Caption; }
    // In TextFormat 1 a text outside the mask "##:##:##,###" is ignored.
    void setCaption(const QString &text);
    QString CaptionComment() const { return m_p.CaptionComment; }
    void setCaptionComment(const QString &text);
    QString CaptionNullText() const { return m_p.CaptionNullText; }
    void setCaptionNullText(const QString &text);
    QString CaptionAddText() const { return m_p.CaptionAddText; }
    void setCaptionAddText(const QString &text);
    int CaptionEffects() const { return m_p.CaptionEffects; }
    void setCaptionEffects(int effects) { m_p.CaptionEffects = effects; }
    QString Title() const { return m_p.Title; }
    void setTitle(const QString &text);
    int TitleWidth() const { return m_p.TitleWidth; }
    void setTitleWidth(int width);
    bool ShowCorner() const { return m_p.ShowCorner; }
    void setShowCorner(bool on);
    bool ShowLight() const { return m_p.ShowLight; }
    void setShowLight(bool on);
    bool ShowFocus() const { return m_p.ShowFocus; }
    void setShowFocus(bool on);
    bool ShowEffect() const { return m_p.ShowEffect; }
    void setShowEffect(bool on) { m_p.ShowEffect = on; }
    int ShowBorder() const { return m_p.ShowBorder; }
    void setShowBorder(int shape);
    int ShowDropDownSymbol() const { return m_p.ShowDropDownSymbol; }
    void setShowDropDownSymbol(int symbol);
    bool ShowSeparator() const { return m_p.ShowSeparator; }
    void setShowSeparator(bool on);
    int ShowInnerLine() const { return m_p.ShowInnerLine; }
    void setShowInnerLine(int sides);
    int InnerLineWidth() const { return m_p.InnerLineWidth; }
    void setInnerLineWidth(int width);
    int InnerLinePadding() const { return m_p.InnerLinePadding; }
    void setInnerLinePadding(int padding);
    bool SmoothingCorner() const { return m_p.SmoothingCorner; }
    void setSmoothingCorner(bool on);
    int EffectSpeed() const { return m_p.EffectSpeed; }
    void setEffectSpeed(int milliseconds) { m_p.EffectSpeed = milliseconds; }
    bool TransparentBack() const { return m_p.TransparentBack; }
    void setTransparentBack(bool on);
    int Transparent() const { return m_p.Transparent; }
    // Sets all four transparencies.
    void setTransparent(int alpha);
    int TransparentHover() const { return m_p.TransparentHover; }
    void setTransparentHover(int alpha);
    int TransparentPressed() const { return m_p.TransparentPressed; }
    void setTransparentPressed(int alpha);
    int TransparentDisable() const { return m_p.TransparentDisable; }
    void setTransparentDisable(int alpha);
    int Style() const { return m_p.Style; }
    // Sets the look's outline, corners and colours (earlier colour writes are overwritten).
    void setStyle(int style);
    using QWidget::setStyle;
    bool StatusBarResize() const { return m_p.StatusBarResize; }
    void setStatusBarResize(bool on);
    bool WindowSizeLimit() const { return m_p.WindowSizeLimit; }
    void setWindowSizeLimit(bool on);
    int WindowSizeMaxWidth() const { return m_p.WindowSizeMaxWidth; }
    void setWindowSizeMaxWidth(int pixels);
    int WindowSizeMaxHeight() const { return m_p.WindowSizeMaxHeight; }
    void setWindowSizeMaxHeight(int pixels);
    int WindowSizeMinWidth() const { return m_p.WindowSizeMinWidth; }
    void setWindowSizeMinWidth(int pixels);
    int WindowSizeMinHeight() const { return m_p.WindowSizeMinHeight; }
    void setWindowSizeMinHeight(int pixels);
    int Mode() const { return m_p.Mode; }
    // 0 clears the siblings' checks; 5 and 8 turn ShowCorner off.
    void setMode(int mode);
    int TextFormat() const { return m_p.TextFormat; }
    void setTextFormat(int format) { m_p.TextFormat = format; }
    QString FileFilter() const { return m_p.FileFilter; }
    void setFileFilter(const QString &filter) { m_p.FileFilter = filter; }
    bool CancelClear() const { return m_p.CancelClear; }
    void setCancelClear(bool on) { m_p.CancelClear = on; }
    bool UseGDIPlus() const { return m_p.UseGDIPlus; }
    // The smoothed drawing of lines.
    void setUseGDIPlus(bool on);
    QString ComboBoxItems() const { return m_p.ComboBoxItems; }
    void setComboBoxItems(const QString &items) { m_p.ComboBoxItems = items; }
    bool Checked() const { return m_p.Checked; }
    void setChecked(bool on);
    uint ForeColor() const { return m_p.ForeColor; }
    void setForeColor(uint color);
    uint ForeColorHover() const { return m_p.ForeColorHover; }
    void setForeColorHover(uint color);
    uint ForeColorPressed() const { return m_p.ForeColorPressed; }
    void setForeColorPressed(uint color);
    uint ForeColorDisable() const { return m_p.ForeColorDisable; }
    void setForeColorDisable(uint color);
    uint BackColor() const { return m_p.BackColor; }
    // A new value derives the other colours again.
    void setBackColor(uint color);
    uint BackColorHover() const { return m_p.BackColorHover; }
    void setBackColorHover(uint color);
    uint BackColorPressed() const { return m_p.BackColorPressed; }
    void setBackColorPressed(uint color);
    uint BackColorDisable() const { return m_p.BackColorDisable; }
    void setBackColorDisable(uint color);
    uint LightColor() const { return m_p.LightColor; }
    void setLightColor(uint color);
    uint BorderColor() const { return m_p.BorderColor; }
    void setBorderColor(uint color);
    uint BorderColorHover() const { return m_p.BorderColorHover; }
    void setBorderColorHover(uint color);
    uint BorderColorPressed() const { return m_p.BorderColorPressed; }
    void setBorderColorPressed(uint color);
    uint BorderColorDisable() const { return m_p.BorderColorDisable; }
    void setBorderColorDisable(uint color);
    uint FadeColor() const { return m_p.FadeColor; }
    void setFadeColor(uint color);
    uint FadeColorHover() const { return m_p.FadeColorHover; }
    void setFadeColorHover(uint color);
    uint FadeColorPressed() const { return m_p.FadeColorPressed; }
    void setFadeColorPressed(uint color);
    uint FadeColorDisable() const { return m_p.FadeColorDisable; }
    void setFadeColorDisable(uint color);
    uint ProgressColor() const { return m_p.ProgressColor; }
    void setProgressColor(uint color);
    uint InnerLineColor() const { return m_p.InnerLineColor; }
    void setInnerLineColor(uint color);
    QPixmap Icon() const { return m_p.Icon; }
    void setIcon(const QPixmap &icon);
    int IconSize() const { return m_p.IconSize; }
    void setIconSize(int size);
    QString IconText() const { return m_p.IconText; }
    void setIconText(const QString &glyphs);
    QString IconFontName() const { return m_p.IconFontName; }
    void setIconFontName(const QString &name);
    QFont Font() const { return m_p.Font; }
    void setFont(const QFont &font);
    bool TimerEnabled() const { return m_p.TimerEnabled; }
    // Starting raises TimerInitailized; stopping resets the count and raises TimerTerminated.
    void setTimerEnabled(bool on);
    int TimerDuration() const { return m_p.TimerDuration; }
    void setTimerDuration(int milliseconds) { m_p.TimerDuration = milliseconds; }
    int TimerInterval() const { return m_p.TimerInterval; }
    void setTimerInterval(int milliseconds);
    int ThreadPriority() const { return m_p.ThreadPriority; }
    // A priority class for the whole process (32 normal, 64 idle, 16384 below normal...).
    void setThreadPriority(int priorityClass);
    int TimerType() const { return m_p.TimerType; }
    void setTimerType(int type) { m_p.TimerType = type; }
    int TooltipType() const { return m_p.TooltipType; }
    void setTooltipType(int type);
    int ToolTipIcon() const { return m_p.ToolTipIcon; }
    void setToolTipIcon(int icon);
    QString TooltipTitle() const { return m_p.TooltipTitle; }
    void setTooltipTitle(const QString &text);
    QString Tooltip() const { return m_p.Tooltip; }
    void setTooltip(const QString &text);
    bool TooltipCentered() const { return m_p.TooltipCentered; }
    void setTooltipCentered(bool on);
    bool TooltipRightToLeft() const { return m_p.TooltipRightToLeft; }
    void setTooltipRightToLeft(bool on);
    double Max() const { return m_p.Max; }
    // A value above the new end comes down to it.
    void setMax(double end);
    double Min() const { return m_p.Min; }
    void setMin(double start);
    double value() const { return m_p.value; }
    // Clamped to 0..Max (-1 means Max). A rise of 2 or more is animated in up to 8 repaints.
    void setvalue(double position);
    // The index of Caption among the "|"-separated ComboBoxItems, -1 when absent or without a "|".
    int ListIndex() const;
    void setListIndex(int index);
    // The number of items; 0 when ComboBoxItems has no "|".
    int ListCount() const;
    bool TextBoxVisible() const;
    // The picture the control shows now.
    QImage Image() const { return m_screen; }
    qulonglong hdc() const { return qulonglong(quintptr(static_cast<const QPaintDevice *>(this))); }
    qulonglong hwnd() const { return qulonglong(quintptr(this)); }
    bool IsWinNT() const { return true; }

    // Methods.
    Q_INVOKABLE uint ShiftColor(uint Color, double PercentInDecimal) const;
    // Draws hImage into the rectangle (W or H 0: the image's own) with an overall opacity of
    // MaxAlpha (0-255), MaskColor (not -1) made transparent, and a shadow of the image's shape in
    // ShadowColor at ShadowOpacity (0-255) moved by xOffset, yOffset.
    void PaintImage(const QImage &hImage, QPaintDevice *hdc, int x, int y, int W, int H, int MaxAlpha = 255,
        qint64 MaskColor = -1, uint ShadowColor = 0, int ShadowOpacity = 0, int xOffset = 0,
        int yOffset = 0) const;
    // Whether a window shows with a constant transparency, and setting it (Alpha 0-255).
    bool IsLayeredWindow(QWidget *hwnd) const;
    void SetLayeredWindow(QWidget *hwnd, bool bIsLayered, int Alpha);
    // A menu of "|"-separated items ("-" a separator); bDefault is the index shown bold, and
    // bChecked, bDisabled and bGrayed are "|"-separated lists of item indices. x, y: where, in the
    // control's coordinates with bControlHwnd, else on the screen; both -1: at the pointer.
    // Returns the chosen item's index, or -1.
    int PopupMenu(const QString &bItems, int bDefault = -1, const QString &bChecked = QString(),
        const QString &bDisabled = QString(), const QString &bGrayed = QString(), int x = -1, int y = -1,
        bool bControlHwnd = true);
    // What a finished click does; ClickMode -1 takes Mode, values above 7 do nothing.
    Q_INVOKABLE void MouseClick(int ClickMode = -1, const QString &strStatus = QString());
    // A left click from code; fullselect selects the text box's whole text.
    Q_INVOKABLE void ClickIt(bool fullselect = false);
    // Opens Caption (a file or folder) with the desktop's default application.
    Q_INVOKABLE bool ShellOpen();
    // Asks for a folder; empty when cancelled. Virtual so that a host or a test can answer instead.
    virtual QString SelectForFolder(QWidget *hwnd, const QString &Title, const QString &RootPath);
    // A theme's base (0 to 16) or bColor (not -1) becomes BackColor and the others follow.
    Q_INVOKABLE void SetThemeColor(int bThemeColor = -1, qint64 bColor = -1);
    // A picture of a rectangle of a widget.
    QPixmap hDCToPicture(QWidget *hdcSrc, int LeftSrc, int TopSrc, int WidthSrc, int HeightSrc) const;
    // A soft disc of lngColor (peak opacity lngIntensity, 0-255) with hImage centred on it.
    void DrawCircleDIB(QPaintDevice *lHDC, const QImage &hImage, int X1, int Y1, int W, int H,
        int lngIntensity, uint lngColor) const;
    // Shows the pressed look (with ForceBorderColor, not -1, as the outline) for the interval.
    Q_INVOKABLE void FlashButton(int IntervalMilliseconds, qint64 ForceBorderColor = -1);
    // Shows state bStatus: at once, or cross-faded at bEffectInterval ms when bShowEffect and
    // ShowEffect. bRefreshImage renders the four pictures first. Nothing at all while Refresh is False.
    Q_INVOKABLE void ReDraw(const QString &strStatus, int bStatus, bool bShowEffect, int bEffectInterval,
        bool bRefreshImage, qint64 ForceBorderColor = -1);
    // A soft shadow of the control on its container: ShadowRange pixels wide, in ShadowColor at
    // AlphaShadowColor, scaled by ImageAlpha (0-255).
    void DrawShadowToContainer(int ShadowRange, uint ShadowColor, int AlphaShadowColor, int ImageAlpha);
    Q_INVOKABLE void About();
    // Writes Checked of every other control of the container that is checked and in a mode above 0.
    void ClearSiblingChecks(bool value);

    // Persistence: every key in order, with the defaults for missing ones (the container's font for
    // Font). Reading renders once and starts interception when SubclassEnabled.
    void ReadProperties(const PropertyBag &bag);
    void WriteProperties(PropertyBag &bag) const;
    const ButtonProperties &properties() const { return m_p; }

    // For hosts and tests: what the control has rendered and shows.
    int renderCount() const { return m_renderCount; }
    QImage stateImage(int state) const;
    QRegion windowRegion() const { return m_region; }
    int fadeAlpha() const { return m_fadeAlpha; }
    QRect gripRect() const;
    QLineEdit *textBox() const { return m_text; }
    ButtonComboBox *comboBox() const { return m_combo; }

    QSize sizeHint() const override;

    void zSubclass_Proc(bool bBefore, bool &bHandled, qintptr &lReturn, QObject *lng_hWnd, int &uMsg,
        QEvent *wParam, qintptr &lParam) override;

Q_SIGNALS:
    void Click();
    void DblClick();
    void MouseEnter();
    void MouseMove(int Button, int Shift, float x, float y);
    void MouseLeave();
    void MouseDown(int Button, int Shift, float x, float y);
    void MouseUp(int Button, int Shift, float x, float y);
    void MouseWheel(int ucMouseWheel);
    void MouseActivate();
    void KeyDown(int KeyCode, int Shift);
    void KeyPress(int KeyAscii);
    void KeyUp(int KeyCode, int Shift);
    void ValueChange();
    void CaptionChange();
    void SelectedChange();
    void InputError(int KeyAscii);
    void Status(const QString &sStatus);
    void WindowPosChanged();
    void Resize();
    void ExitSized();
    void ExitSizeMove();
    void WindowActivated(bool bActivated);
    void WindowMINIMIZE();
    void WindowMAXIMIZE();
    void TimerInitailized();
    void TimerElapsed(double nTime);
    void TimerRemaining(double nTime);
    void TimerTerminated();

protected:
    // The open-file dialog of mode 7; empty when cancelled.
    virtual QString askOpenFileName(
        QWidget *host, const QString &title, const QString &folder, const QString &filter);
    // Hands the host window to the window system's move or resize; false when it can't.
    virtual bool requestSystemMove(QWidget *host);
    virtual bool requestSystemResize(QWidget *host, Qt::Edges edges);
    // Runs a popup menu; the chosen action or null.
    virtual QAction *execPopupMenu(QMenu &menu, const QPoint &globalPos);
    // Each ReDraw that runs, with the name of its caller.
    virtual void logRedraw(const QString &strStatus, bool bRefreshImage);

    bool event(QEvent *event) override;
    bool eventFilter(QObject *watched, QEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
    void resizeEvent(QResizeEvent *event) override;
    void changeEvent(QEvent *event) override;
    void enterEvent(QEnterEvent *event) override;
    void leaveEvent(QEvent *event) override;
    void mousePressEvent(QMouseEvent *event) override;
    void mouseReleaseEvent(QMouseEvent *event) override;
    void mouseDoubleClickEvent(QMouseEvent *event) override;
    void mouseMoveEvent(QMouseEvent *event) override;
    void wheelEvent(QWheelEvent *event) override;
    void focusInEvent(QFocusEvent *event) override;
    void focusOutEvent(QFocusEvent *event) override;

private:
    template<typename T>
    void assignAndRender(T ButtonProperties::*field, const T &value, const char *name);
    void rerender(const QString &why);
    void renderStates(qint64 forceBorderColor);
    QImage grabContainer() const;
    bool hostMaximized() const;
    void fadeTick();
    void flashTick();
    void timerTick();
    void applyTooltip();
    void applyFocusPolicy();
    // Interception of the control and its host window.
    void startInterception();
    void stopInterception();
    void applySizeLimits();
    bool overGrip(const QPoint &at) const;
    void hostSizeMove(bool sizing);
    void endSizeMove();
    // The children of modes 3 and 4.
    QRect fieldRect() const;
    void showTextBox();
    void hideTextBox();
    void showComboBox();
    bool textBoxKeyPress(QKeyEvent *event);
    void comboChosen(int index);

    ButtonProperties m_p;
    std::array<QImage, 4> m_states;
    QImage m_screen;
    QRegion m_region;
    int m_renderCount = 0;
    bool m_renderedMaximized = false;
    bool m_grabbingContainer = false;
    int m_fadeAlpha = 255;
    bool m_fadeStopped = true;
    int m_fadeStatus = 0;
    bool m_flashForced = false;
    int m_clickButton = 0;
    bool m_mouseInside = false;
    bool m_mousePressed = false;
    bool m_afterDoubleClick = false;
    double m_timerCount = 0;
    QTimer *m_fadeTimer = nullptr; // tmrTimer
    QTimer *m_flashTimer = nullptr; // tmrTimerFlash
    QTimer *m_userTimer = nullptr;
    QTimer *m_sizeMoveEnd = nullptr;
    bool m_sizing = false;
    bool m_moving = false;
    QLineEdit *m_text = nullptr; // txtText
    ButtonComboBox *m_combo = nullptr; // cmbCombo
    QString m_textAtOpen;
    MaskedTimeInput m_mask;
    QPointer<QWidget> m_host;
    bool m_intercepting = false;
    bool m_limitsSaved = false;
    QSize m_savedMinimum;
    QSize m_savedMaximum;
};

// The Qt file dialog's filter for a FileFilter of "label|patterns" pairs; "*.*" matches every file.
QString QtFileFilter(const QString &FileFilter);

} // namespace qb::controls
