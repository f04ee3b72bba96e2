#include "imaging/jpeg_metadata.h"

#include <QFile>
#include <QSaveFile>

namespace qb::imaging {

namespace {

constexpr uchar kMarker = 0xFF;
constexpr uchar kStartOfImage = 0xD8;
constexpr uchar kStartOfScan = 0xDA;
constexpr uchar kApp0 = 0xE0;
constexpr uchar kApp1 = 0xE1;

struct Segment
{
    qsizetype at = -1; // of its marker
    uchar type = 0;
    qsizetype size = 0; // marker, length and data
};

// The segment at offset, or one with at -1 when the bytes end or break the layout.
Segment segmentAt(const QByteArray &jpeg, qsizetype offset)
{
    const auto byte = [&jpeg](qsizetype i) { return uchar(jpeg.at(i)); };
    if (offset + 4 > jpeg.size() || byte(offset) != kMarker)
        return {};
    const qsizetype length = (qsizetype(byte(offset + 2)) << 8) | byte(offset + 3);
    if (length < 2 || offset + 2 + length > jpeg.size())
        return {};
    return {offset, byte(offset + 1), 2 + length};
}

bool isJpeg(const QByteArray &bytes)
{
    return bytes.size() >= 4 && uchar(bytes.at(0)) == kMarker && uchar(bytes.at(1)) == kStartOfImage;
}

} // namespace

QByteArray ReadJpegExif(const QByteArray &jpeg)
{
    if (!isJpeg(jpeg))
        return {};
    for (qsizetype offset = 2;;) {
        const Segment s = segmentAt(jpeg, offset);
        if (s.at < 0 || s.type == kStartOfScan)
            return {};
        if (s.type == kApp1 && jpeg.mid(s.at + 4, 6) == QByteArray("Exif\0\0", 6))
            return jpeg.mid(s.at, s.size);
        offset += s.size;
    }
}

bool InsertJpegExif(const QString &fileName, const QByteArray &segment)
{
    QFile in(fileName);
    if (segment.isEmpty() || !in.open(QIODevice::ReadOnly))
        return false;
    const QByteArray jpeg = in.readAll();
    in.close();
    if (!isJpeg(jpeg))
        return false;
    qsizetype insertAt = 2;
    const Segment first = segmentAt(jpeg, 2);
    if (first.at >= 0 && first.type == kApp0)
        insertAt += first.size;
    QSaveFile out(fileName);
    if (!out.open(QIODevice::WriteOnly))
        return false;
    out.write(jpeg.left(insertAt));
    out.write(segment);
    out.write(jpeg.mid(insertAt));
    return out.commit();
}

} // namespace qb::imaging
