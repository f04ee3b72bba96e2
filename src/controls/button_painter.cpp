// The layer stack of the multi-mode control: background by style, progress, light, separators, grip,
// inner line, outline, focus, icon, title and caption, and the browse symbol.
#include "controls/button_painter.h"

#include "controls/small_int_set.h"

#include "controls/button_colors.h"
#include "controls/button_looks.h"

#include <QFontMetrics>
#include <QGuiApplication>
#include <QPainter>
#include <QPalette>
#include <QRadialGradient>
#include <QStyle>
#include <QStyleOptionButton>
#include <QStyleOptionHeader>
#include <QWidget>

#include <algorithm>
#include <array>
#include <initializer_list>

namespace qb::controls {

namespace {

// The ShowBorder values that square each corner of the region: top left, top right, bottom left,
// bottom right.
constexpr std::array<quint32, 4> kSquaredCorners {SmallIntSet({2, 3, 6, 7, 8}), SmallIntSet({3, 4, 6, 7, 8}),
    SmallIntSet({2, 5, 6, 7}), SmallIntSet({4, 5, 6, 7})};

constexpr int kLeft = 1;
constexpr int kTop = 2;
constexpr int kRight = 4;
constexpr int kBottom = 8;
constexpr int kAllSides = kLeft | kTop | kRight | kBottom;

// The sides of the outline by ShowBorder 0 to 9: the side where two squared corners meet is where
// the control joins a neighbour, and 8 and 9 keep one line (a strip under a list, a strip above).
constexpr std::array<int, 10> kBorderSides {0, kAllSides, kAllSides & ~kLeft, kAllSides & ~kTop,
    kAllSides & ~kRight, kAllSides & ~kBottom, kTop | kBottom, kLeft | kRight, kTop, kBottom};

// The sides of the inner line by ShowInnerLine; values not listed keep all four.
struct InnerLineSides
{
    int value;
    int sides;
};
constexpr std::array<InnerLineSides, 3> kInnerLineSides {{{2, kTop | kLeft}, {3, kTop}, {5, kTop | kBottom}}};

// Edge kinds of the classic 3D outline.
constexpr int kRaisedOuter = 1;
constexpr int kSunkenOuter = 2;
constexpr int kRaisedInner = 4;
constexpr int kSunkenInner = 8;

struct StateColors
{
    ButtonColor back;
    ButtonColor fore;
    ButtonColor border;
    ButtonColor fade;
};

StateColors colorsOf(const ButtonProperties &p, int index)
{
    switch (index) {
    case 1:
        return {p.BackColorHover, p.ForeColorHover, p.BorderColorHover, p.FadeColorHover};
    case 2:
        return {p.BackColorPressed, p.ForeColorPressed, p.BorderColorPressed, p.FadeColorPressed};
    case 3:
        return {p.BackColorDisable, p.ForeColorDisable, p.BorderColorDisable, p.FadeColorDisable};
    default:
        return {p.BackColor, p.ForeColor, p.BorderColor, p.FadeColor};
    }
}

bool cornerSquared(int corner, int ShowBorder)
{
    return ShowBorder != 1 && InSmallIntSet(ShowBorder, kSquaredCorners[size_t(corner)]);
}

// Reads a pixel of the image in the control's own coordinates.
QColor pixelAt(const QImage &image, int x, int y)
{
    const qreal ratio = image.devicePixelRatio();
    const QPoint at(int(x * ratio), int(y * ratio));
    if (!image.rect().contains(at))
        return QColor();
    return QColor::fromRgba(image.pixel(at));
}

void setPixel(QPainter &painter, int x, int y, const QColor &color)
{
    painter.fillRect(QRect(x, y, 1, 1), color);
}

void hLine(QPainter &painter, int x1, int x2, int y, int width, const QColor &color)
{
    if (x2 >= x1)
        painter.fillRect(QRect(x1, y, x2 - x1 + 1, width), color);
}

void vLine(QPainter &painter, int x, int y1, int y2, int width, const QColor &color)
{
    if (y2 >= y1)
        painter.fillRect(QRect(x, y1, width, y2 - y1 + 1), color);
}

// The classic 3D edge: the outer ring on the rectangle, the inner ring one pixel in.
void drawEdge(QPainter &painter, const QRect &rect, int edge, int sides)
{
    const QPalette palette = QGuiApplication::palette();
    auto ring = [&](const QRect &r, const QColor &topLeft, const QColor &bottomRight) {
        if (sides & kTop)
            hLine(painter, r.left(), r.right() - 1, r.top(), 1, topLeft);
        if (sides & kLeft)
            vLine(painter, r.left(), r.top(), r.bottom() - 1, 1, topLeft);
        if (sides & kBottom)
            hLine(painter, r.left(), r.right(), r.bottom(), 1, bottomRight);
        if (sides & kRight)
            vLine(painter, r.right(), r.top(), r.bottom(), 1, bottomRight);
    };
    if (edge & kRaisedOuter)
        ring(rect, palette.color(QPalette::Midlight), palette.color(QPalette::Shadow));
    else if (edge & kSunkenOuter)
        ring(rect, palette.color(QPalette::Dark), palette.color(QPalette::Light));
    const QRect inner = rect.adjusted(1, 1, -1, -1);
    if (edge & kRaisedInner)
        ring(inner, palette.color(QPalette::Light), palette.color(QPalette::Dark));
    else if (edge & kSunkenInner)
        ring(inner, palette.color(QPalette::Shadow), palette.color(QPalette::Midlight));
}

void drawLight(QPainter &painter, QSize size, ButtonColor light)
{
    // A glow rising from the bottom edge, from 0.6 of the height down.
    const qreal top = size.height() * 0.6;
    QColor glow = ToQColor(light);
    QColor clear = glow;
    clear.setAlpha(0);
    glow.setAlpha(200);
    painter.save();
    painter.setClipRect(QRectF(0, top, size.width(), size.height() - top));
    painter.translate(size.width() / 2.0, size.height());
    painter.scale(size.width() / 2.0, size.height() - top);
    QRadialGradient gradient(QPointF(0, 0), 1);
    gradient.setColorAt(0, glow);
    gradient.setColorAt(1, clear);
    painter.fillRect(QRectF(-1, -1, 2, 1), gradient);
    painter.restore();
}

void drawGrip(QPainter &painter, const QRect &grip, ButtonColor back)
{
    // Three diagonal rows of dots, each with a light twin below and right of it.
    const QColor dark = ToQColor(ShiftColor(back, -0.3));
    const QColor light = ToQColor(ShiftColor(back, 0.3));
    const int right = grip.right() - 2;
    const int bottom = grip.bottom() - 2;
    for (int row = 0; row < 3; ++row) {
        for (int col = 0; col <= row; ++col) {
            const int x = right - 1 - (row - col) * 4;
            const int y = bottom - 1 - col * 4;
            painter.fillRect(QRect(x + 1, y + 1, 2, 2), light);
            painter.fillRect(QRect(x, y, 2, 2), dark);
        }
    }
}

void drawInnerLine(QPainter &painter, const QImage &image, const ButtonProperties &p, QSize size)
{
    const int pad = p.InnerLinePadding;
    const int width = std::max(1, p.InnerLineWidth);
    const QRect r = QRect(0, 0, size.width(), size.height()).adjusted(pad, pad, -pad, -pad);
    if (r.width() < 1 || r.height() < 1)
        return;
    int sides = kAllSides;
    for (const InnerLineSides &row : kInnerLineSides) {
        if (row.value == p.ShowInnerLine)
            sides = row.sides;
    }
    const QColor color = ToQColor(p.InnerLineColor);
    if (p.UseGDIPlus) {
        painter.save();
        painter.setRenderHint(QPainter::Antialiasing, true);
        QPen pen(color, width);
        pen.setJoinStyle(Qt::RoundJoin);
        painter.setPen(pen);
        const QRectF f = QRectF(r).adjusted(width / 2.0, width / 2.0, 1 - width / 2.0, 1 - width / 2.0);
        if (sides == kAllSides) {
            painter.drawRoundedRect(f, 2, 2);
        } else {
            if (sides & kTop)
                painter.drawLine(f.topLeft(), f.topRight());
            if (sides & kBottom)
                painter.drawLine(f.bottomLeft(), f.bottomRight());
            if (sides & kLeft)
                painter.drawLine(f.topLeft(), f.bottomLeft());
            if (sides & kRight)
                painter.drawLine(f.topRight(), f.bottomRight());
        }
        painter.restore();
        return;
    }
    // The corners as they were before the line, to be mixed with it afterwards.
    const std::array<QPoint, 4> corners {r.topLeft(), r.topRight(), r.bottomLeft(), r.bottomRight()};
    std::array<QColor, 4> under;
    for (size_t i = 0; i < corners.size(); ++i)
        under[i] = pixelAt(image, corners[i].x(), corners[i].y());
    if (sides & kTop)
        hLine(painter, r.left(), r.right(), r.top(), width, color);
    if (sides & kBottom)
        hLine(painter, r.left(), r.right(), r.bottom() - width + 1, width, color);
    if (sides & kLeft)
        vLine(painter, r.left(), r.top(), r.bottom(), width, color);
    if (sides & kRight)
        vLine(painter, r.right() - width + 1, r.top(), r.bottom(), width, color);
    if (!p.ShowCorner)
        return;
    const bool cornerDrawn[4] = {(sides & (kTop | kLeft)) == (kTop | kLeft),
        (sides & (kTop | kRight)) == (kTop | kRight), (sides & (kBottom | kLeft)) == (kBottom | kLeft),
        (sides & (kBottom | kRight)) == (kBottom | kRight)};
    for (size_t i = 0; i < corners.size(); ++i) {
        if (cornerDrawn[i] && under[i].isValid())
            setPixel(painter, corners[i].x(), corners[i].y(),
                ToQColor(BlendColors(FromQColor(under[i]), p.InnerLineColor, 0.5)));
    }
}

void drawBorder(QPainter &painter, const QImage &image, const ButtonProperties &p, QSize size,
    ButtonColor border, ButtonColor back, bool pressed)
{
    const int sides = BorderSides(p.ShowBorder);
    const QRect rect(0, 0, size.width(), size.height());
    if (p.Style == 0) {
        drawEdge(painter, rect, pressed ? kSunkenOuter | kSunkenInner : kRaisedOuter | kRaisedInner, sides);
        return;
    }
    if (p.Style == 18) {
        drawEdge(painter, rect, pressed ? kSunkenOuter : kRaisedInner, sides);
        return;
    }
    const QColor line = ToQColor(border);
    const int l = rect.left();
    const int t = rect.top();
    const int r = rect.right();
    const int b = rect.bottom();
    if (sides & kTop)
        hLine(painter, l, r, t, 1, line);
    if (sides & kBottom)
        hLine(painter, l, r, b, 1, line);
    if (sides & kLeft)
        vLine(painter, l, t, b, 1, line);
    if (sides & kRight)
        vLine(painter, r, t, b, 1, line);
    if (!p.SmoothingCorner)
        return;
    // A rounded corner: the corner pixel takes the back colour, its neighbours on the sides half the
    // outline, and the pixel inside the corner is mixed with the outline.
    struct Corner
    {
        int index;
        int x, y, dx, dy, sides;
    };
    const Corner corners[] = {{0, l, t, 1, 1, kTop | kLeft}, {1, r, t, -1, 1, kTop | kRight},
        {2, l, b, 1, -1, kBottom | kLeft}, {3, r, b, -1, -1, kBottom | kRight}};
    const QColor backColor = ToQColor(back);
    const ButtonColor half = BlendColors(border, back, 0.5);
    for (const Corner &c : corners) {
        if ((sides & c.sides) != c.sides || cornerSquared(c.index, p.ShowBorder))
            continue;
        const QColor inside = pixelAt(image, c.x + c.dx, c.y + c.dy);
        setPixel(painter, c.x, c.y, backColor);
        setPixel(painter, c.x + c.dx, c.y, ToQColor(half));
        setPixel(painter, c.x, c.y + c.dy, ToQColor(half));
        if (inside.isValid())
            setPixel(painter, c.x + c.dx, c.y + c.dy, ToQColor(BlendColors(border, FromQColor(inside), 0.5)));
    }
}

void drawFocus(QPainter &painter, QSize size, ButtonColor fore)
{
    painter.save();
    QPen pen(ToQColor(fore), 0, Qt::DotLine);
    painter.setPen(pen);
    painter.setBrush(Qt::NoBrush);
    painter.drawRect(QRect(2, 2, size.width() - 5, size.height() - 5));
    painter.restore();
}

int titleColumn(const ButtonProperties &p)
{
    return !p.Title.isEmpty() && p.TitleWidth >= 1 ? p.TitleWidth : 0;
}

bool hasIcon(const ButtonProperties &p)
{
    return !p.Icon.isNull() || !p.IconText.isEmpty();
}

void drawIcon(QPainter &painter, const ButtonProperties &p, QSize size, ButtonColor fore)
{
    const QRect zone(titleColumn(p), 0, p.IconSize + 8, size.height());
    if (!p.Icon.isNull()) {
        const int side = std::max(1, std::min(p.IconSize, size.height() - 2));
        const QRect target(zone.left() + 4 + (p.IconSize - side) / 2, (size.height() - side) / 2, side, side);
        painter.save();
        painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
        painter.drawPixmap(target, p.Icon);
        painter.restore();
        return;
    }
    QFont font(p.IconFontName);
    font.setPixelSize(std::max(1, std::min(p.IconSize, size.height())));
    painter.save();
    painter.setFont(font);
    DrawCaptionText(painter, p.IconText, zone, ToQColor(fore), kSymbolFlags | kTextNoPrefix);
    painter.restore();
}

void drawCaption(QPainter &painter, const ButtonProperties &p, const QRect &rect, ButtonColor fore)
{
    if (p.Caption.isEmpty() && p.CaptionNullText.isEmpty())
        return;
    const bool placeholder = p.Caption.isEmpty();
    const QColor mainColor = ToQColor(placeholder ? p.ForeColorDisable : fore);
    const QColor commentColor = ToQColor(p.ForeColorDisable);
    QString main = (placeholder ? p.CaptionNullText : p.Caption) + p.CaptionAddText;
    const QString comment = p.CaptionComment.isEmpty() ? QString() : u' ' + p.CaptionComment;
    const int flags = AlignmentFlags(p.Alignment) | kTextNoPrefix;
    if (!(flags & kTextSingleLine)) {
        DrawCaptionText(painter, main + comment, rect, mainColor, flags);
        return;
    }
    // One line in two colours: the comment gives way first when the room is short.
    const QFontMetrics metrics = painter.fontMetrics();
    const int room = std::max(0, rect.width());
    int mainWidth = metrics.horizontalAdvance(main);
    QString tail = comment;
    int tailWidth = metrics.horizontalAdvance(tail);
    if (mainWidth + tailWidth > room) {
        if (mainWidth < room) {
            tail = metrics.elidedText(tail, Qt::ElideRight, room - mainWidth);
            tailWidth = metrics.horizontalAdvance(tail);
        } else {
            main = metrics.elidedText(main, Qt::ElideRight, room);
            mainWidth = metrics.horizontalAdvance(main);
            tail.clear();
            tailWidth = 0;
        }
    }
    const int total = mainWidth + tailWidth;
    int x = rect.left();
    if (flags & kTextCenter)
        x = rect.left() + (room - total) / 2;
    else if (flags & kTextRight)
        x = rect.left() + room - total;
    const int textFlags = Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine | Qt::TextDontClip;
    painter.setPen(mainColor);
    painter.drawText(QRect(x, rect.top(), mainWidth, rect.height()), textFlags, main);
    if (!tail.isEmpty()) {
        painter.setPen(commentColor);
        painter.drawText(QRect(x + mainWidth, rect.top(), tailWidth, rect.height()), textFlags, tail);
    }
}

void drawSymbol(QPainter &painter, const ButtonProperties &p, QSize size, ButtonColor fore)
{
    const QRect zone(size.width() - kSymbolZone, 0, kSymbolZone, size.height());
    const QColor color = ToQColor(fore);
    const int cx = zone.left() + kSymbolZone / 2;
    const int cy = size.height() / 2;
    switch (p.ShowDropDownSymbol) {
    case 1: // a solid arrow
        for (int row = 0; row < 4; ++row)
            hLine(painter, cx - 3 + row, cx + 3 - row, cy - 2 + row, 1, color);
        break;
    case 2: // an open chevron
        for (int step = 0; step < 4; ++step) {
            setPixel(painter, cx - 3 + step, cy - 2 + step, color);
            setPixel(painter, cx + 3 - step, cy - 2 + step, color);
        }
        break;
    case 3:
        DrawCaptionText(painter, QStringLiteral("..."), zone, color, kSymbolFlags | kTextNoPrefix);
        break;
    default:
        break;
    }
}

// Style 24 through the platform's style: a header section on the bars, a push button otherwise.
void paintThemed(QPainter &painter, const ButtonPaintInput &in, const QRect &rect)
{
    const ButtonProperties &p = *in.p;
    QWidget *widget = in.widget;
    QStyle *style = widget->style();
    const bool bar = p.Mode == 5 || p.Mode == 8;
    QStyle::State state = QStyle::State_None;
    bool defaulted = false;
    if (p.Enabled) {
        state |= QStyle::State_Enabled;
        if (in.state == 0 || p.Mode == 5)
            state |= QStyle::State_Raised;
        else if (in.state == 1)
            state |= QStyle::State_MouseOver | QStyle::State_Raised;
        else if (in.state == 2)
            state |= QStyle::State_Sunken;
        else
            defaulted = true;
    }
    if (bar) {
        QStyleOptionHeader option;
        option.initFrom(widget);
        option.rect = rect;
        option.state = state | QStyle::State_Horizontal;
        option.orientation = Qt::Horizontal;
        option.position = QStyleOptionHeader::OnlyOneSection;
        style->drawControl(QStyle::CE_HeaderSection, &option, &painter, widget);
        return;
    }
    QStyleOptionButton option;
    option.initFrom(widget);
    option.rect = rect;
    option.state = state;
    if (defaulted)
        option.features |= QStyleOptionButton::DefaultButton;
    style->drawPrimitive(QStyle::PE_PanelButtonCommand, &option, &painter, widget);
}

} // namespace

int StateColorIndex(bool enabled, int state)
{
    if (!enabled)
        return 3;
    switch (state) {
    case 1:
    case 3:
        return 1;
    case 2:
        return 2;
    default:
        return 0;
    }
}

QRect GripRect(QSize size)
{
    const int side = std::min(16, size.height());
    return QRect(size.width() - side, size.height() - side, side, side);
}

QRegion WindowRegion(QSize size, bool ShowCorner, int ShowBorder)
{
    const int w = size.width();
    const int h = size.height();
    if (!ShowCorner)
        return QRegion(0, 0, w + 1, h + 1);
    // A round rectangle with the smallest ellipse: one pixel off each corner.
    QRegion region(0, 0, w, h);
    region -= QRegion(0, 0, 1, 1);
    region -= QRegion(w - 1, 0, 1, 1);
    region -= QRegion(0, h - 1, 1, 1);
    region -= QRegion(w - 1, h - 1, 1, 1);
    if (ShowBorder != 1) {
        const int halfW = w / 2;
        const int halfH = h / 2;
        const std::array<QRect, 4> corners {QRect(0, 0, halfW, halfH), QRect(w - halfW, 0, halfW, halfH),
            QRect(0, h - halfH, halfW, halfH), QRect(w - halfW, h - halfH, halfW, halfH)};
        for (int corner = 0; corner < 4; ++corner) {
            if (cornerSquared(corner, ShowBorder))
                region |= corners[size_t(corner)];
        }
    }
    return region;
}

int BorderSides(int ShowBorder)
{
    if (ShowBorder >= 0 && ShowBorder < int(kBorderSides.size()))
        return kBorderSides[size_t(ShowBorder)];
    return kAllSides;
}

void DrawCaptionText(
    QPainter &painter, const QString &text, const QRect &rect, const QColor &color, int flags)
{
    if (text.isEmpty())
        return;
    int qtFlags = 0;
    if (flags & kTextCenter)
        qtFlags |= Qt::AlignHCenter;
    else if (flags & kTextRight)
        qtFlags |= Qt::AlignRight;
    else
        qtFlags |= Qt::AlignLeft;
    if (flags & kTextVCenter)
        qtFlags |= Qt::AlignVCenter;
    else if (flags & kTextBottom)
        qtFlags |= Qt::AlignBottom;
    else
        qtFlags |= Qt::AlignTop;
    const bool singleLine = flags & kTextSingleLine;
    if (singleLine)
        qtFlags |= Qt::TextSingleLine;
    else if (flags & kTextWordBreak)
        qtFlags |= Qt::TextWordWrap;
    if (flags & kTextExpandTabs)
        qtFlags |= Qt::TextExpandTabs;
    if (!(flags & kTextNoPrefix))
        qtFlags |= Qt::TextShowMnemonic;
    if (flags & kTextNoClip)
        qtFlags |= Qt::TextDontClip;
    QString shown = text;
    if (singleLine && (flags & (kTextPathEllipsis | kTextEndEllipsis | kTextWordEllipsis))) {
        const Qt::TextElideMode mode = (flags & kTextPathEllipsis) ? Qt::ElideMiddle : Qt::ElideRight;
        shown = painter.fontMetrics().elidedText(text, mode, std::max(0, rect.width()));
    }
    painter.setPen(color);
    painter.drawText(rect, qtFlags, shown);
}

int AlignmentFlags(int Alignment)
{
    const int line = kTextSingleLine | kTextVCenter | kTextEndEllipsis;
    switch (Alignment) {
    case 0:
        return line;
    case 1:
        return line | kTextRight;
    case 2:
        return line | kTextCenter;
    case 3: // left, wrapping over several lines
        return kTextWordBreak | kTextVCenter;
    case 4: // centred, wrapping
        return kTextWordBreak | kTextVCenter | kTextCenter;
    default:
        return 0;
    }
}

QRect CaptionRect(const ButtonProperties &p, QSize size, bool gripShown)
{
    constexpr int kPadding = 4;
    int left = titleColumn(p);
    if (hasIcon(p))
        left += p.IconSize + 8;
    int right = size.width();
    if (p.ShowDropDownSymbol != 0)
        right -= kSymbolZone;
    if (gripShown)
        right -= GripRect(size).width();
    return QRect(left + kPadding, 0, std::max(0, right - left - 2 * kPadding), size.height());
}

int NextFadeAlpha(int alpha, int status)
{
    double next = alpha;
    switch (status) {
    case 0:
        next += RoundHalfEvenConst(alpha / 255.0 * 15 + 2);
        break;
    case 2:
        next += 30;
        break;
    default: // hover, and a completed click that looks like it
        next += RoundHalfEvenConst(alpha / 255.0 * 60 + 2);
        break;
    }
    return int(std::min(next, 255.0));
}

void PaintState(QPainter &painter, const QImage &image, const ButtonPaintInput &in)
{
    const ButtonProperties &p = *in.p;
    const QSize size = in.size;
    if (size.isEmpty())
        return;
    const QRect rect(QPoint(0, 0), size);
    const int index = StateColorIndex(p.Enabled, in.state);
    const StateColors colors = colorsOf(p, index);
    painter.setFont(p.Font);

    // Background: what lies under the control, or the style's look.
    const bool overContainer = p.TransparentBack && !(in.state != 0 && p.Enabled && p.Mode != 5);
    if (overContainer) {
        if (in.containerBackground && !in.containerBackground->isNull())
            painter.drawImage(rect, *in.containerBackground);
    } else if (p.Style == kThemedStyle && in.widget) {
        paintThemed(painter, in, rect);
    } else {
        PaintLook(painter, rect, LookForStyle(p.Style), colors.back, colors.fade);
    }

    if (p.value > 0 && p.Max > 0) {
        const QColor progress = ToQColor(p.ProgressColor);
        FillGradientRect(painter, 0, 0, size.width() * std::min(p.value / p.Max, 1.0), size.height(), 270,
            progress, progress);
    }

    if (p.Enabled && in.state != 0 && p.ShowLight)
        drawLight(painter, size, p.LightColor);

    const ButtonColor border = in.forceBorderColor >= 0 ? ButtonColor(in.forceBorderColor) : colors.border;
    const QColor borderColor = ToQColor(border);
    if (p.ShowSeparator && !p.Title.isEmpty())
        vLine(painter, p.TitleWidth, 3, size.height() - 4, 1, borderColor);
    if (p.ShowDropDownSymbol != 0)
        vLine(painter, size.width() - kSymbolZone, 3, size.height() - 4, 1, borderColor);

    const bool grip = p.Mode == 5 && p.StatusBarResize && !in.hostMaximized;
    if (grip)
        drawGrip(painter, GripRect(size), colors.back);

    if (p.ShowInnerLine != 0 && p.Style != kThemedStyle)
        drawInnerLine(painter, image, p, size);
    if (p.ShowBorder != 0 && p.Style != kThemedStyle)
        drawBorder(painter, image, p, size, border, colors.back, index == 2);

    if (in.hasFocus && p.ShowFocus)
        drawFocus(painter, size, colors.fore);

    if (hasIcon(p))
        drawIcon(painter, p, size, colors.fore);

    if (titleColumn(p) > 0)
        DrawCaptionText(
            painter, p.Title, QRect(0, 0, p.TitleWidth, size.height()), ToQColor(colors.fore), kTitleFlags);
    drawCaption(painter, p, CaptionRect(p, size, grip), colors.fore);

    if (p.ShowDropDownSymbol != 0)
        drawSymbol(painter, p, size, colors.fore);
}

} // namespace qb::controls
