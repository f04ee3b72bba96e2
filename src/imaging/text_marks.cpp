#include "imaging/text_marks.h"

#include "imaging/drawing_colors.h"
#include "imaging/psd_reader.h"
#include "imaging/shadow_stage.h"

#include <QFileInfo>
#include <QFontMetricsF>
#include <QImageReader>
#include <QPainter>
#include <QPainterPath>
#include <QRegularExpression>

#include <algorithm>
#include <cmath>

using namespace Qt::StringLiterals;

namespace qb::imaging {

namespace {

constexpr int kMaxOutline = 256;

// Pictures carry their own resolutions; sizes in points are turned into pixels at 96 per inch so
// that a text looks the same on every picture.
QFont PixelFont(QFont font)
{
    if (font.pixelSize() <= 0)
        font.setPixelSize(std::max(1, int(std::lround(font.pointSizeF() * 96.0 / 72.0))));
    return font;
}

bool TrueText(const QString &field)
{
    const QString t = field.trimmed();
    return t.compare("true"_L1, Qt::CaseInsensitive) == 0 || t == "1"_L1 || t == "-1"_L1;
}

QStringList Lines(const QString &text)
{
    static const QRegularExpression breaks(u"\r\n|\n|\r"_s);
    return text.split(breaks);
}

// Lines stacked by the font's line spacing, each centred on the widest.
QPainterPath TextPath(const QStringList &lines, const QFont &font)
{
    const QFontMetricsF metrics(font);
    double widest = 0;
    for (const QString &line : lines)
        widest = std::max(widest, metrics.horizontalAdvance(line));
    QPainterPath path;
    for (qsizetype i = 0; i < lines.size(); ++i) {
        const double x = (widest - metrics.horizontalAdvance(lines[i])) / 2;
        path.addText(QPointF(x, metrics.ascent() + double(i) * metrics.lineSpacing()), font, lines[i]);
    }
    return path;
}

// The letters, outlined underneath so that the outline only shows around them, on a picture as
// tight as the ink with the back colour filling it.
QImage InkImage(
    const QPainterPath &path, const QColor &fore, const QColor &outline, int outlineWidth, const QColor &back)
{
    if (path.isEmpty() || path.boundingRect().isEmpty())
        return {};
    const int grow = std::clamp(outlineWidth, 0, kMaxOutline);
    const QRect box = path.boundingRect().adjusted(-grow, -grow, grow, grow).toAlignedRect();
    if (box.width() > 32767 || box.height() > 32767 || qint64(box.width()) * box.height() > (qint64(1) << 28))
        return {};
    QImage ink(box.size(), QImage::Format_ARGB32_Premultiplied);
    if (ink.isNull())
        return {};
    ink.fill(back);
    QPainter painter(&ink);
    painter.setRenderHint(QPainter::Antialiasing);
    painter.translate(-box.topLeft());
    if (grow > 0)
        painter.strokePath(path, QPen(outline, 2.0 * grow, Qt::SolidLine, Qt::RoundCap, Qt::RoundJoin));
    painter.fillPath(path, fore);
    return ink;
}

void ScaleAlpha(QImage &picture, int alpha)
{
    if (alpha >= 255 || picture.isNull())
        return;
    QPainter painter(&picture);
    painter.setCompositionMode(QPainter::CompositionMode_DestinationIn);
    painter.fillRect(picture.rect(), QColor(0, 0, 0, std::max(0, alpha)));
}

// Back colour under the picture, its shadow, then its alpha.
QImage FinishMark(const QImage &content, const QColor &back, int shadowDepth, const QColor &shadow, int alpha)
{
    QImage mark(content.size(), QImage::Format_ARGB32_Premultiplied);
    mark.fill(back);
    {
        QPainter painter(&mark);
        painter.drawImage(0, 0, content);
    }
    DropShadow(mark, shadowDepth, shadow);
    ScaleAlpha(mark, alpha);
    return mark;
}

QImage LoadMarkPicture(const QString &file)
{
    if (file.isEmpty())
        return {};
    if (QFileInfo(file).suffix().compare("psd"_L1, Qt::CaseInsensitive) == 0)
        return QImage::fromData(LoadPsdFileToByte(file));
    QImageReader reader(file);
    reader.setAutoTransform(true);
    return reader.read();
}

void MakePaintable(QImage &image)
{
    const QImage::Format f = image.format();
    if (f != QImage::Format_ARGB32_Premultiplied && f != QImage::Format_ARGB32 && f != QImage::Format_RGB32)
        image.convertTo(image.hasAlphaChannel() ? QImage::Format_ARGB32_Premultiplied : QImage::Format_RGB32);
}

void DrawAt(QImage &image, const QImage &mark, int align, int padding)
{
    if (mark.isNull())
        return;
    MakePaintable(image);
    QPainter painter(&image);
    painter.drawImage(KeypadPosition(image.size(), mark.size(), align, padding), mark);
}

} // namespace

QString DefaultFontString()
{
    return u"Arial, 20, False, False, 0, False, False, 400"_s;
}

QFont FontFromString(const QString &fontString)
{
    QFont font(u"Arial"_s);
    font.setStyleHint(QFont::SansSerif);
    font.setPointSizeF(20);
    const QStringList fields = fontString.split(u',');
    const auto field = [&](int i) { return i < fields.size() ? fields[i].trimmed() : QString(); };

    if (!field(0).isEmpty())
        font.setFamily(field(0));
    bool ok = false;
    const double size = field(1).toDouble(&ok);
    if (ok && std::isfinite(size) && size > 0)
        font.setPointSizeF(std::clamp(size, 1.0, 1000.0));
    font.setItalic(TrueText(field(3)));
    font.setStrikeOut(TrueText(field(5)));
    font.setUnderline(TrueText(field(6)));
    const int weight = field(7).toInt(&ok);
    int chosen = ok && weight >= 1 && weight <= 1000 ? weight : int(QFont::Normal);
    if (TrueText(field(2)))
        chosen = std::max(chosen, int(QFont::Bold));
    font.setWeight(QFont::Weight(chosen));
    return font;
}

QPoint KeypadPosition(QSize canvas, QSize mark, int align, int padding)
{
    const int freeX = canvas.width() - mark.width();
    const int freeY = canvas.height() - mark.height();
    int x = freeX / 2;
    int y = freeY / 2;
    if (align >= 1 && align <= 9) {
        const int column = (align - 1) % 3; // 0 left, 1 centre, 2 right
        const int row = (align - 1) / 3; // 0 bottom, 1 middle, 2 top
        if (column == 0)
            x = padding;
        else if (column == 2)
            x = freeX - padding;
        if (row == 0)
            y = freeY - padding;
        else if (row == 2)
            y = padding;
    }
    return {std::clamp(x, 0, std::max(0, freeX)), std::clamp(y, 0, std::max(0, freeY))};
}

void DrawTextLines(QImage &image, const QString &title, const QString &bottom, const QString &fontString)
{
    if (image.isNull())
        return;
    const QFont font = PixelFont(FontFromString(fontString));
    const int margin = std::max(2, font.pixelSize() / 4);
    const int outline = std::max(1, font.pixelSize() / 12);
    const QFontMetricsF metrics(font);
    const auto draw = [&](const QString &text, int align) {
        QString line = text;
        line.replace(QRegularExpression(u"\r\n|\n|\r"_s), u" "_s);
        if (line.trimmed().isEmpty())
            return;
        line
            = metrics.elidedText(line, Qt::ElideRight, std::max(1, image.width() - 2 * margin - 2 * outline));
        const QImage ink = InkImage(TextPath({line}, font), Qt::white, Qt::black, outline, Qt::transparent);
        DrawAt(image, ink, align, margin);
    };
    draw(title, 8);
    draw(bottom, 2);
}

QImage RenderTextMark(const TextMark &mark)
{
    const QImage ink = InkImage(TextPath(Lines(mark.text), PixelFont(FontFromString(mark.font))),
        DrawingColor(mark.foreColor), DrawingColor(mark.outlineColor), mark.outlineWidth, Qt::transparent);
    if (ink.isNull())
        return {};
    return FinishMark(ink, DrawingColor(mark.backColor, mark.backAlpha), mark.shadowDepth,
        DrawingColor(mark.shadowColor, mark.shadowAlpha), mark.alpha);
}

void ApplyWatermarks(QImage &image, const TextMark &text, const ImageMark &picture)
{
    if (image.isNull())
        return;
    if (text.enabled && !text.text.isEmpty())
        DrawAt(image, RenderTextMark(text), text.align, text.padding);
    if (picture.enabled) {
        const QImage content = LoadMarkPicture(picture.file);
        if (!content.isNull()) {
            const QImage mark = FinishMark(content, DrawingColor(picture.backColor, picture.backAlpha),
                picture.shadowDepth, DrawingColor(picture.shadowColor, picture.shadowAlpha), picture.alpha);
            DrawAt(image, mark, picture.align, picture.padding);
        }
    }
}

QImage CreateStringImage(const QString &text, const QString &fontString, const QString &foreColor,
    const QString &outlineColor, int outlineWidth, const QString &backColor, int backAlpha)
{
    return InkImage(TextPath(Lines(text), PixelFont(FontFromString(fontString))), DrawingColor(foreColor),
        DrawingColor(outlineColor), outlineWidth, DrawingColor(backColor, backAlpha));
}

} // namespace qb::imaging
