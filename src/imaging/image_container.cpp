#include "imaging/image_container.h"

#include "imaging/psd_reader.h"

#include <QBuffer>
#include <QFile>
#include <QFileInfo>
#include <QImageReader>
#include <QPainter>
#include <QTransform>

namespace qb::imaging {

namespace {

bool isLayeredFile(const QString &fileName)
{
    const qsizetype dot = fileName.lastIndexOf(u'.');
    return dot >= 0 && fileName.mid(dot + 1).toLower() == QLatin1String("psd");
}

QImage decode(const QByteArray &bytes)
{
    if (bytes.startsWith("8BPS"))
        return ReadPsdComposite(bytes).image;
    QImage image;
    image.loadFromData(bytes);
    return image;
}

} // namespace

QByteArray LoadImageFileToByte(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    return file.readAll();
}

QByteArray ConvertImageToByte(const QImage &image)
{
    if (image.isNull())
        return {};
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    return image.save(&buffer, "PNG") ? png : QByteArray();
}

QImage ConvertByteToImage(const QByteArray &bytes)
{
    return bytes.isEmpty() ? QImage() : decode(bytes);
}

QImage ConvertByteToStdPicture(const QByteArray &bytes, qint32 backColor)
{
    const QImage source = ConvertByteToImage(bytes);
    if (source.isNull())
        return {};
    QImage flat(source.size(), QImage::Format_RGB32);
    flat.setDotsPerMeterX(source.dotsPerMeterX());
    flat.setDotsPerMeterY(source.dotsPerMeterY());
    flat.fill(QColor(backColor & 0xFF, (backColor >> 8) & 0xFF, (backColor >> 16) & 0xFF));
    QPainter painter(&flat);
    painter.drawImage(0, 0, source);
    return flat;
}

QImage LoadImageToGdip(const QString &fileName, const std::function<bool(const QString &)> &isVideo,
    const VideoFrameGrabber &grabFrame, QSize atLeast)
{
    if (QFileInfo(fileName).isFile()) {
        if (isLayeredFile(fileName))
            return ReadPsdComposite(LoadImageFileToByte(fileName)).image;
        QImageReader reader(fileName);
        reader.setAutoTransform(false);
        if (atLeast.isValid() && !atLeast.isEmpty() && reader.supportsOption(QImageIOHandler::ScaledSize)) {
            const QSize full = reader.size();
            const QSize wanted = full.scaled(atLeast, Qt::KeepAspectRatioByExpanding);
            if (full.isValid() && wanted.width() < full.width() && wanted.height() < full.height())
                reader.setScaledSize(wanted);
        }
        QImage image = reader.read();
        // A name whose extension lies about the content still decodes from its bytes.
        if (image.isNull())
            image = decode(LoadImageFileToByte(fileName));
        if (!image.isNull())
            return image;
    }
    if (isVideo && grabFrame && isVideo(fileName))
        return grabFrame(fileName);
    return {};
}

namespace {

QSize sizeOf(const QImage &image)
{
    return image.isNull() ? QSize() : image.size();
}

} // namespace

QSize GetImageSize(const QString &fileName)
{
    if (!isLayeredFile(fileName)) {
        const QSize size = QImageReader(fileName).size();
        if (size.isValid() && !size.isEmpty())
            return size;
    }
    return sizeOf(LoadImageToGdip(fileName));
}

QSize GetImageSizeFromByte(const QByteArray &bytes)
{
    return sizeOf(ConvertByteToImage(bytes));
}

QImage RotateFlip(const QImage &image, int code)
{
    if (code < 1 || code > 7 || image.isNull())
        return image;
    QImage out = image;
    const int quarter = code % 4;
    if (quarter != 0)
        out = out.transformed(QTransform().rotate(90.0 * quarter));
    if (code >= 4)
        out = out.mirrored(true, false);
    return out;
}

} // namespace qb::imaging
