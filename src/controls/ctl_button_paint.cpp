// ctlButton on screen: ReDraw with its four cached pictures, the window region, the fade and the
// flash, and the picture helpers of the public surface.
#include "controls/ctl_button.h"

#include "controls/button_colors.h"
#include "controls/button_painter.h"

#include <QGraphicsDropShadowEffect>
#include <QLoggingCategory>
#include <QPaintEvent>
#include <QPainter>
#include <QRadialGradient>
#include <QTimer>

namespace qb::controls {

namespace {

// Off unless asked for (QT_LOGGING_RULES="qb.controls.button.debug=true").
Q_LOGGING_CATEGORY(lcButton, "qb.controls.button", QtInfoMsg)

} // namespace

void ctlButton::logRedraw(const QString &strStatus, bool bRefreshImage)
{
    qCDebug(lcButton) << "ReDraw" << strStatus << (bRefreshImage ? "render" : "show");
}

void ctlButton::ReDraw(const QString &strStatus, int bStatus, bool bShowEffect, int bEffectInterval,
    bool bRefreshImage, qint64 ForceBorderColor)
{
    if (!m_p.Refresh)
        return;
    logRedraw(strStatus, bRefreshImage);
    if (bRefreshImage)
        renderStates(ForceBorderColor);
    const int state = std::clamp(bStatus, 0, 3);
    const bool fade = m_p.Enabled && m_p.ShowEffect && bShowEffect;
    if (fade && !m_screen.isNull() && !m_states[size_t(state)].isNull()) {
        m_fadeAlpha = 1;
        m_fadeStopped = false;
        m_fadeStatus = state;
        m_fadeTimer->start(std::max(1, bEffectInterval));
        return;
    }
    m_fadeTimer->stop();
    m_fadeAlpha = 255;
    m_fadeStopped = true;
    m_screen = m_states[size_t(state)];
    if (isVisible())
        repaint();
}

void ctlButton::renderStates(qint64 forceBorderColor)
{
    // Rendering the container sends it and its children their pending events, this control's
    // resize among them: the render under way covers that.
    if (m_grabbingContainer)
        return;
    const QSize logical = size();
    const qreal ratio = devicePixelRatioF();
    QImage container;
    if (m_p.TransparentBack) {
        m_grabbingContainer = true;
        container = grabContainer();
        m_grabbingContainer = false;
    }
    ButtonPaintInput in;
    in.p = &m_p;
    in.size = logical;
    in.forceBorderColor = forceBorderColor;
    in.hasFocus = hasFocus();
    in.hostMaximized = hostMaximized();
    in.containerBackground = container.isNull() ? nullptr : &container;
    in.widget = this;
    for (int state = 0; state < 4; ++state) {
        QImage image((QSizeF(logical) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
        image.setDevicePixelRatio(ratio);
        image.fill(Qt::transparent);
        if (!logical.isEmpty()) {
            QPainter painter(&image);
            in.state = m_p.Checked ? 2 : state;
            PaintState(painter, image, in);
            ++m_renderCount;
        }
        m_states[size_t(state)] = image;
    }
    m_renderedMaximized = in.hostMaximized;

    const QRegion region = WindowRegion(logical, m_p.ShowCorner, m_p.ShowBorder);
    if (region != m_region) {
        m_region = region;
        if ((QRegion(rect()) - region).isEmpty()) // covers the whole control: no mask needed
            clearMask();
        else
            setMask(region);
    }
}

QImage ctlButton::grabContainer() const
{
    // What the container paints itself under the control, without its other children.
    QWidget *container = parentWidget();
    if (!container || size().isEmpty())
        return QImage();
    const qreal ratio = devicePixelRatioF();
    QImage image((QSizeF(size()) * ratio).toSize(), QImage::Format_ARGB32_Premultiplied);
    image.setDevicePixelRatio(ratio);
    image.fill(Qt::transparent);
    container->render(&image, QPoint(), QRegion(geometry()), QWidget::DrawWindowBackground);
    return image;
}

bool ctlButton::hostMaximized() const
{
    return window()->isMaximized();
}

QImage ctlButton::stateImage(int state) const
{
    return state >= 0 && state < 4 ? m_states[size_t(state)] : QImage();
}

QRect ctlButton::gripRect() const
{
    return GripRect(size());
}

void ctlButton::fadeTick()
{
    if (m_fadeStopped || m_fadeAlpha >= 255) {
        m_fadeTimer->stop();
        return;
    }
    m_fadeAlpha = NextFadeAlpha(m_fadeAlpha, m_fadeStatus);
    // Each step lays the picture over what is shown, so the fade quickens as it goes.
    const QImage &target = m_states[size_t(m_fadeStatus)];
    if (!target.isNull() && m_screen.size() == target.size()) {
        QPainter painter(&m_screen);
        painter.setOpacity(m_fadeAlpha / 255.0);
        painter.drawImage(QPoint(0, 0), target);
    } else {
        m_screen = target;
    }
    if (m_fadeAlpha >= 255) {
        m_fadeTimer->stop();
        m_screen = target;
    }
    update();
}

void ctlButton::FlashButton(int IntervalMilliseconds, qint64 ForceBorderColor)
{
    m_flashForced = ForceBorderColor != -1;
    m_p.Status = 2;
    ReDraw(QStringLiteral("FlashButton"), 2, false, m_p.EffectSpeed, m_flashForced, ForceBorderColor);
    m_flashTimer->start(std::max(1, IntervalMilliseconds));
}

void ctlButton::flashTick()
{
    m_flashTimer->stop();
    m_p.Status = 0;
    // A forced outline goes with the flash.
    ReDraw(QStringLiteral("Status"), 0, false, m_p.EffectSpeed, m_flashForced);
    m_flashForced = false;
}

void ctlButton::paintEvent(QPaintEvent *event)
{
    if (m_renderedMaximized != hostMaximized() && m_p.Mode == ucModeStatusBar && m_p.StatusBarResize) {
        // The grip comes and goes with the host's maximised state; render outside the paint.
        QTimer::singleShot(0, this, [this] { rerender(QStringLiteral("WindowState")); });
    }
    if (m_screen.isNull())
        return;
    QPainter painter(this);
    painter.setClipRegion(event->region());
    painter.drawImage(QPoint(0, 0), m_screen);
}

void ctlButton::resizeEvent(QResizeEvent *event)
{
    QWidget::resizeEvent(event);
    rerender(QStringLiteral("UserControl_Resize"));
}

void ctlButton::changeEvent(QEvent *event)
{
    QWidget::changeEvent(event);
    switch (event->type()) {
    case QEvent::PaletteChange:
    case QEvent::StyleChange:
        rerender(QStringLiteral("UserControl_Paint"));
        break;
    default:
        break;
    }
}

void ctlButton::PaintImage(const QImage &hImage, QPaintDevice *hdc, int x, int y, int W, int H, int MaxAlpha,
    qint64 MaskColor, uint ShadowColor, int ShadowOpacity, int xOffset, int yOffset) const
{
    if (hImage.isNull() || !hdc)
        return;
    QImage image = hImage.convertToFormat(QImage::Format_ARGB32_Premultiplied);
    if (MaskColor != -1) {
        const QColor masked = ToQColor(ButtonColor(MaskColor));
        const QImage mask = hImage.createMaskFromColor(masked.rgb(), Qt::MaskOutColor);
        image.setAlphaChannel(mask.convertToFormat(QImage::Format_Grayscale8));
    }
    const QRect target(x, y, W > 0 ? W : image.width(), H > 0 ? H : image.height());
    QPainter painter(hdc);
    painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
    if (ShadowOpacity > 0) {
        // The image's shape in the shadow colour.
        QImage shadow(image.size(), QImage::Format_ARGB32_Premultiplied);
        shadow.fill(ToQColor(ShadowColor));
        QPainter shape(&shadow);
        shape.setCompositionMode(QPainter::CompositionMode_DestinationIn);
        shape.drawImage(QPoint(0, 0), image);
        shape.end();
        painter.setOpacity(std::clamp(ShadowOpacity, 0, 255) / 255.0);
        painter.drawImage(target.translated(xOffset, yOffset), shadow);
    }
    painter.setOpacity(std::clamp(MaxAlpha, 0, 255) / 255.0);
    painter.drawImage(target, image);
}

void ctlButton::DrawCircleDIB(QPaintDevice *lHDC, const QImage &hImage, int X1, int Y1, int W, int H,
    int lngIntensity, uint lngColor) const
{
    if (!lHDC || W <= 0 || H <= 0)
        return;
    QPainter painter(lHDC);
    painter.setRenderHint(QPainter::Antialiasing, true);
    QColor centre = ToQColor(lngColor);
    centre.setAlpha(std::clamp(lngIntensity, 0, 255));
    QColor edge = centre;
    edge.setAlpha(0);
    const QRectF disc(X1, Y1, W, H);
    QRadialGradient gradient(disc.center(), std::max(W, H) / 2.0);
    gradient.setColorAt(0, centre);
    gradient.setColorAt(1, edge);
    painter.setPen(Qt::NoPen);
    painter.setBrush(gradient);
    painter.drawEllipse(disc);
    if (!hImage.isNull()) {
        const QSize fitted = hImage.size().scaled(QSize(W, H), Qt::KeepAspectRatio).boundedTo(hImage.size());
        QRect place(QPoint(0, 0), fitted);
        place.moveCenter(disc.center().toPoint());
        painter.setRenderHint(QPainter::SmoothPixmapTransform, true);
        painter.drawImage(place, hImage);
    }
}

QPixmap ctlButton::hDCToPicture(QWidget *hdcSrc, int LeftSrc, int TopSrc, int WidthSrc, int HeightSrc) const
{
    if (!hdcSrc)
        return QPixmap();
    return hdcSrc->grab(QRect(LeftSrc, TopSrc, WidthSrc, HeightSrc));
}

void ctlButton::DrawShadowToContainer(int ShadowRange, uint ShadowColor, int AlphaShadowColor, int ImageAlpha)
{
    if (ShadowRange <= 0) {
        setGraphicsEffect(nullptr);
        return;
    }
    auto *shadow = new QGraphicsDropShadowEffect(this);
    shadow->setBlurRadius(ShadowRange);
    shadow->setOffset(0, 0);
    QColor color = ToQColor(ShadowColor);
    color.setAlpha(std::clamp(AlphaShadowColor, 0, 255) * std::clamp(ImageAlpha, 0, 255) / 255);
    shadow->setColor(color);
    setGraphicsEffect(shadow);
}

} // namespace qb::controls
