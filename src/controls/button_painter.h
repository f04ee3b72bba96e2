// The painter of the multi-mode control: renders the whole control for one state as a fixed stack of
// layers over the style's background, and the window region of its outline.
#pragma once

#include "controls/ctl_button_properties.h"

#include <QImage>
#include <QRect>
#include <QRegion>

class QPainter;
class QWidget;

namespace qb::controls {

// Text flags of DrawCaptionText, in the classic values.
inline constexpr int kTextCenter = 0x1;
inline constexpr int kTextRight = 0x2;
inline constexpr int kTextVCenter = 0x4;
inline constexpr int kTextBottom = 0x8;
inline constexpr int kTextWordBreak = 0x10;
inline constexpr int kTextSingleLine = 0x20;
inline constexpr int kTextExpandTabs = 0x40;
inline constexpr int kTextNoClip = 0x100;
inline constexpr int kTextNoPrefix = 0x800;
inline constexpr int kTextPathEllipsis = 0x4000;
inline constexpr int kTextEndEllipsis = 0x8000;
inline constexpr int kTextWordEllipsis = 0x40000;
inline constexpr int kTitleFlags = 16741; // centred, single line, ellipsis in the middle
inline constexpr int kSymbolFlags = 37; // centred both ways, single line

// The width of the drop-down symbol's zone at the right edge.
inline constexpr int kSymbolZone = 15;

// What the painter needs besides the properties.
struct ButtonPaintInput
{
    const ButtonProperties *p = nullptr;
    QSize size;
    int state = 0; // 0 normal, 1 hover, 2 pressed, 3 click completed
    qint64 forceBorderColor = -1; // -1: the state's border colour
    bool hasFocus = false;
    bool hostMaximized = false;
    const QImage *containerBackground = nullptr; // the container under the control, for TransparentBack
    QWidget *widget = nullptr; // its platform style draws style 24
};

// Renders the whole control for one state onto painter (which covers image, whose pixels the
// corner smoothing reads).
void PaintState(QPainter &painter, const QImage &image, const ButtonPaintInput &in);

// The colour family index a state paints with: 3 (disabled) for a disabled control, and a click
// completed paints as hover.
int StateColorIndex(bool enabled, int state);

// The size grip at the bottom right corner, whose left edge the hit test of the bars uses.
QRect GripRect(QSize size);

// The window region: a rectangle with cut corners, some squared again by ShowBorder, or the plain
// rectangle without ShowCorner.
QRegion WindowRegion(QSize size, bool ShowCorner, int ShowBorder);

// The sides of the outline ShowBorder keeps, as bits: left 1, top 2, right 4, bottom 8.
int BorderSides(int ShowBorder);

// Draws text in a rectangle with the classic text flags.
void DrawCaptionText(
    QPainter &painter, const QString &text, const QRect &rect, const QColor &color, int flags);

// The text flags of an Alignment value (0 to 4).
int AlignmentFlags(int Alignment);

// Where the caption goes: after the title column and the icon zone, before the symbol zone and grip.
QRect CaptionRect(const ButtonProperties &p, QSize size, bool gripShown);

// The next fade alpha of a fade tick for a status; 255 at most.
int NextFadeAlpha(int alpha, int status);

} // namespace qb::controls
