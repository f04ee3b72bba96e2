#include "imaging/contact_sheet.h"

#include "imaging/drawing_colors.h"

#include <QFont>
#include <QGuiApplication>
#include <QLinearGradient>
#include <QPainter>

#include <algorithm>

namespace qb::imaging {

namespace {

bool canDrawText()
{
    return qobject_cast<QGuiApplication *>(QCoreApplication::instance()) != nullptr;
}

// Text with a one-pixel dark shadow, readable on any frame.
void drawShadowedText(
    QPainter &painter, const QRect &box, int flags, const QString &text, const QColor &color)
{
    painter.setPen(QColor(0, 0, 0, 160));
    painter.drawText(box.translated(1, 1), flags, text);
    painter.setPen(color);
    painter.drawText(box, flags, text);
}

} // namespace

qint32 ShiftColor(qint32 color, int amount)
{
    const auto shift = [amount](int channel) { return std::clamp(channel + amount, 0, 255); };
    return shift(color & 0xFF) | (shift((color >> 8) & 0xFF) << 8) | (shift((color >> 16) & 0xFF) << 16);
}

int SheetHeaderHeight(const SheetSettings &settings)
{
    if (settings.header.isEmpty())
        return 0;
    return int(settings.header.size() * settings.fontSize * 1.5) + 8;
}

QSize SheetSize(const SheetSettings &settings)
{
    const int margin = settings.edgeWidth + settings.borderIndentation;
    return {settings.columns * settings.frame.width() + margin,
        settings.rows * settings.frame.height() + margin + SheetHeaderHeight(settings)};
}

QList<double> SheetTimePoints(double duration, int count)
{
    QList<double> points;
    for (int i = 0; i < count; ++i)
        points << std::max(0.0, duration) * (i + 1) / (count + 1);
    return points;
}

QImage DrawContactSheet(const QList<QImage> &frames, const SheetSettings &settings)
{
    const QSize size = SheetSize(settings);
    if (size.width() < 1 || size.height() < 1 || settings.columns < 1 || settings.rows < 1)
        return {};
    QImage sheet(size, QImage::Format_RGB32);
    const QColor back = DrawingColor(settings.backColor);
    const QColor shifted = DrawingColor(ShiftColor(settings.backColor, 48));
    QPainter painter(&sheet);
    painter.setRenderHint(QPainter::SmoothPixmapTransform);
    if (settings.backStyle == 1 || settings.backStyle == 2) {
        QLinearGradient fade(
            0, 0, settings.backStyle == 2 ? size.width() : 0, settings.backStyle == 1 ? size.height() : 0);
        fade.setColorAt(0, back);
        fade.setColorAt(1, shifted);
        painter.fillRect(sheet.rect(), fade);
    } else {
        painter.fillRect(sheet.rect(), back);
    }

    const int margin = settings.edgeWidth + settings.borderIndentation;
    const int headerHeight = SheetHeaderHeight(settings);
    const QPoint origin(margin / 2, headerHeight + margin / 2);
    const int count = std::min<int>(int(frames.size()), settings.columns * settings.rows);
    for (int i = 0; i < count; ++i) {
        if (frames.at(i).isNull())
            continue;
        const QRect cell(origin
                + QPoint(i % settings.columns * settings.frame.width(),
                    i / settings.columns * settings.frame.height()),
            settings.frame);
        painter.drawImage(cell, frames.at(i));
    }
    if (!canDrawText())
        return sheet;

    QFont font(settings.fontName);
    font.setPixelSize(std::max(1, settings.fontSize));
    painter.setFont(font);
    const QColor fore = DrawingColor(settings.foreColor);
    if (headerHeight > 0) {
        drawShadowedText(painter, QRect(margin / 2 + 4, 4, size.width() - margin - 8, headerHeight - 8),
            Qt::AlignLeft | Qt::AlignVCenter, settings.header.join(u'\n'), fore);
    }
    for (int i = 0; i < count && i < settings.frameTimes.size(); ++i) {
        const QRect cell(origin
                + QPoint(i % settings.columns * settings.frame.width(),
                    i / settings.columns * settings.frame.height()),
            settings.frame);
        drawShadowedText(painter, cell.adjusted(2, 2, -4, -2), Qt::AlignRight | Qt::AlignBottom,
            settings.frameTimes.at(i), fore);
    }
    if (!settings.comment.isEmpty()) {
        drawShadowedText(painter, sheet.rect().adjusted(margin / 2 + 4, 0, -4, -margin / 2 - 2),
            Qt::AlignLeft | Qt::AlignBottom, settings.comment, fore);
    }
    return sheet;
}

} // namespace qb::imaging
