#include "imaging/image_conversion.h"

#include "imaging/drawing_colors.h"
#include "imaging/histogram_stage.h"
#include "imaging/jpeg_metadata.h"
#include "imaging/stitch_layout.h"
#include "imaging/target_size_rule.h"

#include <QDir>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>

using namespace Qt::StringLiterals;

namespace qb::imaging {

namespace {

// PNG keeps transparency as it is; "gif_t" lays the picture over its back colour, which the GIF
// palette then makes transparent; every other format is flat over the back colour.
bool clearCanvas(const QString &format)
{
    return format.toLower() == u"png"_s;
}

// One file through the chain up to its text lines, on the canvas its format asks for.
// How large a picture must be decoded: when it only shrinks and no stage reads its own pixels by
// position (a blur rectangle, a cut) or by their neighbours (sharpening), twice the target is
// enough for a clean reduction; otherwise all of it.
QSize decodeAtLeast(const QString &file, const ProcessSettings &p)
{
    const bool positional = p.sharpen || (p.blur.width() > 0 && p.blur.height() > 0)
        || ((p.style == 1 || p.style == 3) && p.cutX != -1 && p.cutY != -1 && p.cutW != -1 && p.cutH != -1);
    if (positional)
        return {};
    const QSize full = QImageReader(file).size();
    int w = 0;
    int h = 0;
    double scale = 1;
    if (!full.isValid() || !ParseTargetSize(p.targetSize, full.width(), full.height(), w, h, scale))
        return {};
    return QSize(2 * w, 2 * h);
}

QImage convertOne(
    const QString &file, const ConversionSettings &s, const ConversionHooks &hooks, QImage &source)
{
    source = LoadImageToGdip(file, hooks.isVideo, hooks.grabFrame, decodeAtLeast(file, s.process));
    if (source.isNull())
        return {};
    // The core stage leaves what the picture does not cover clear; the format's canvas below
    // decides what shows there.
    ProcessSettings process = s.process;
    process.backAlpha = 0;
    const QImage processed = ProcessImage(source, process);
    QImage canvas(processed.size(), QImage::Format_ARGB32_Premultiplied);
    canvas.fill(clearCanvas(s.encoderFormat) ? QColor(Qt::transparent) : DrawingColor(s.backColor, 255));
    QPainter painter(&canvas);
    painter.setOpacity(std::clamp(s.alpha, 0, 255) / 255.0);
    painter.drawImage(0, 0, processed);
    painter.end();
    QString bottom = s.bottomString;
    if (bottom.isEmpty() && s.showFileName)
        bottom = QFileInfo(file).fileName();
    if (!s.titleString.isEmpty() || !bottom.isEmpty())
        DrawTextLines(canvas, s.titleString, bottom, s.fontString);
    return canvas;
}

bool fail(QString *problem, const QString &why)
{
    if (problem)
        *problem = why;
    return false;
}

} // namespace

bool ImageConversion(const QStringList &inputs, const QString &output, const ConversionSettings &s,
    const ConversionHooks &hooks, QString *problem)
{
    if (inputs.isEmpty())
        return fail(problem, u"no source to convert"_s);
    if (!QFileInfo(QFileInfo(output).absolutePath()).isDir())
        return fail(problem, QFileInfo(output).absolutePath() + u": no such folder"_s);
    QImage source;
    QImage picture;
    if (inputs.size() == 1) {
        picture = convertOne(inputs.first(), s, hooks, source);
        if (picture.isNull())
            return fail(problem, inputs.first() + u": not a picture this program reads"_s);
    } else {
        QSize tile;
        if (!ParseTileSize(s.stitchingSize, tile))
            return fail(problem, s.stitchingSize + u": the tile size is not WxH"_s);
        const QSize grid = StitchGrid(int(inputs.size()), s.stitchingRow);
        QList<QImage> tiles;
        for (qsizetype i = 0; i < inputs.size(); ++i) {
            QImage tileSource;
            tiles << convertOne(inputs.at(i), s, hooks, tileSource);
            if (tiles.last().isNull())
                return fail(problem, inputs.at(i) + u": not a picture this program reads"_s);
            if (source.isNull())
                source = tileSource;
            if (hooks.progress)
                hooks.progress(int(i + 1), int(inputs.size()));
        }
        picture = StitchTiles(tiles, tile, grid.width(), s.backColor, clearCanvas(s.encoderFormat) ? 0 : 255);
        if (picture.isNull())
            return fail(problem, u"the stitched picture would be too large"_s);
    }
    if (s.showHistogram)
        DrawHistogram(picture);
    ApplyWatermarks(picture, s.textMark, s.imageMark);
    picture = RotateFlip(picture, s.rotateFlip);
    // Resolution and text metadata of the (first) source survive.
    constexpr double kInchesPerMetre = 39.3700787;
    picture.setDotsPerMeterX(s.dpiX > 0 ? int(s.dpiX * kInchesPerMetre + 0.5) : source.dotsPerMeterX());
    picture.setDotsPerMeterY(s.dpiY > 0 ? int(s.dpiY * kInchesPerMetre + 0.5) : source.dotsPerMeterY());
    for (const QString &key : source.textKeys())
        picture.setText(key, source.text(key));

    EncodeSettings encode = s.encode;
    encode.encoderFormat = s.encoderFormat.toLower();
    if (encode.encoderFormat == u"gif_t"_s) {
        encode.encoderFormat = u"gif"_s;
        encode.gifTransparencyColor = s.backColor;
    }
    if (!SaveImageToFile(picture, output, encode, problem))
        return false;
    // A photograph made into a photograph keeps its camera's block.
    const bool jpegOut = encode.encoderFormat == u"jpg"_s || encode.encoderFormat == u"jpeg"_s;
    if (jpegOut && inputs.size() == 1) {
        const QByteArray exif = ReadJpegExif(LoadImageFileToByte(inputs.first()));
        if (!exif.isEmpty() && !InsertJpegExif(output, exif))
            return fail(problem, output + u": the source's metadata could not be added"_s);
    }
    return true;
}

} // namespace qb::imaging
