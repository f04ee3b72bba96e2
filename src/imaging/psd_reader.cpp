// Layout: a 26-byte header, three length-prefixed sections (colour table, resources, layers) that
// the merged picture does not need, then the compression word and the channels one after the
// other, each row by row, big-endian throughout.
#include "imaging/psd_reader.h"

#include <QBuffer>
#include <QFile>

#include <cstring>
#include <vector>

using namespace Qt::StringLiterals;

namespace qb::imaging {

namespace {

constexpr int kMaxSide = 30000; // the format's own limit
constexpr quint16 kGrey = 1;
constexpr quint16 kRgb = 3;
constexpr quint16 kRaw = 0;
constexpr quint16 kPackBits = 1;
// A packed run of two bytes gives at most 128: no row can be shorter than this share of its size.
constexpr qsizetype kMaxExpansion = 64;

class Reader
{
public:
    explicit Reader(const QByteArray &data)
        : m_data(reinterpret_cast<const uchar *>(data.constData()))
        , m_size(data.size())
    { }

    qsizetype left() const { return m_size - m_at; }
    bool skip(qsizetype n)
    {
        if (n < 0 || n > left())
            return false;
        m_at += n;
        return true;
    }
    bool u16(quint32 &out) { return number(2, out); }
    bool u32(quint32 &out) { return number(4, out); }
    const uchar *here() const { return m_data + m_at; }

private:
    bool number(int bytes, quint32 &out)
    {
        if (left() < bytes)
            return false;
        out = 0;
        for (int i = 0; i < bytes; ++i)
            out = (out << 8) | m_data[m_at++];
        return true;
    }

    const uchar *m_data;
    qsizetype m_size;
    qsizetype m_at = 0;
};

// Unpacks one row of exactly size bytes; false when the packed bytes run short or overshoot.
bool unpackRow(const uchar *in, qsizetype inSize, uchar *out, qsizetype size)
{
    qsizetype i = 0;
    qsizetype o = 0;
    while (o < size) {
        if (i >= inSize)
            return false;
        const int header = static_cast<signed char>(in[i++]);
        if (header >= 0) {
            const qsizetype n = header + 1;
            if (i + n > inSize || o + n > size)
                return false;
            std::memcpy(out + o, in + i, size_t(n));
            i += n;
            o += n;
        } else if (header != -128) {
            const qsizetype n = 1 - header;
            if (i >= inSize || o + n > size)
                return false;
            std::memset(out + o, in[i++], size_t(n));
            o += n;
        }
    }
    return true;
}

PsdResult refuse(const QString &problem)
{
    return {QImage(), problem};
}

} // namespace

PsdResult ReadPsdComposite(const QByteArray &data)
{
    Reader in(data);
    quint32 version = 0, channels = 0, height = 0, width = 0, depth = 0, mode = 0;
    if (data.size() < 26 || !data.startsWith("8BPS"))
        return refuse(u"not a layered-image file (no 8BPS signature)"_s);
    in.skip(4);
    in.u16(version);
    if (version != 1)
        return refuse(u"version %1 of the format is not read (only 1)"_s.arg(version));
    in.skip(6);
    in.u16(channels);
    in.u32(height);
    in.u32(width);
    in.u16(depth);
    in.u16(mode);
    if (channels < 1 || channels > 56 || width < 1 || height < 1 || width > kMaxSide || height > kMaxSide)
        return refuse(
            u"the header is damaged (%1 channels, %2 by %3)"_s.arg(channels).arg(width).arg(height));
    if (mode != kRgb && mode != kGrey)
        return refuse(u"colour mode %1 is not read (RGB and grey are)"_s.arg(mode));
    if (depth != 8 && depth != 16)
        return refuse(u"%1 bits a channel are not read (8 and 16 are)"_s.arg(depth));
    const quint32 colours = mode == kRgb ? 3 : 1;
    if (channels < colours)
        return refuse(u"an RGB picture needs three channels, this one has %1"_s.arg(channels));
    for (int section = 0; section < 3; ++section) {
        quint32 length = 0;
        if (!in.u32(length) || !in.skip(qsizetype(length)))
            return refuse(u"the file ends inside its header sections"_s);
    }
    quint32 compression = 0;
    if (!in.u16(compression))
        return refuse(u"the file ends before its picture"_s);
    if (compression != kRaw && compression != kPackBits)
        return refuse(u"compression %1 is not read (raw and packed rows are)"_s.arg(compression));

    // Only the colours and one alpha channel are used; the rest are spot or mask channels.
    const bool alpha = channels > colours;
    const quint32 used = colours + (alpha ? 1 : 0);
    const qsizetype rowBytes = qsizetype(width) * (depth / 8);
    const qsizetype rows = qsizetype(channels) * height;
    std::vector<quint32> packed;
    if (compression == kPackBits) {
        if (in.left() < rows * 2)
            return refuse(u"the file ends inside its row table"_s);
        packed.resize(size_t(rows));
        qsizetype total = 0;
        for (quint32 &count : packed) {
            in.u16(count);
            total += count;
            if (count * kMaxExpansion < rowBytes)
                return refuse(u"a packed row is too short for its width"_s);
        }
        if (total > in.left())
            return refuse(u"the file ends inside its picture"_s);
    } else if (in.left() / rowBytes < rows) {
        return refuse(u"the file ends inside its picture"_s);
    }

    // The planes of the used channels, each height rows of rowBytes.
    std::vector<std::vector<uchar>> planes(used, std::vector<uchar>(size_t(rowBytes * height)));
    const uchar *at = in.here();
    for (quint32 c = 0; c < channels; ++c) {
        for (quint32 y = 0; y < height; ++y) {
            const qsizetype length = compression == kPackBits ? packed[size_t(c * height + y)] : rowBytes;
            if (c < used) {
                uchar *row = planes[c].data() + qsizetype(y) * rowBytes;
                if (compression == kRaw)
                    std::memcpy(row, at, size_t(rowBytes));
                else if (!unpackRow(at, length, row, rowBytes))
                    return refuse(u"a packed row does not unpack to its width"_s);
            }
            at += length;
        }
    }

    const bool wide = depth == 16;
    const QImage::Format format = mode == kGrey && !alpha
        ? (wide ? QImage::Format_Grayscale16 : QImage::Format_Grayscale8)
        : (wide ? QImage::Format_RGBA64 : QImage::Format_ARGB32);
    QImage image(int(width), int(height), format);
    if (image.isNull())
        return refuse(u"not enough memory for a %1 by %2 picture"_s.arg(width).arg(height));
    const auto sample = [&](quint32 channel, qsizetype offset) -> quint16 {
        const uchar *p = planes[channel].data() + offset * (wide ? 2 : 1);
        return wide ? quint16((p[0] << 8) | p[1]) : p[0];
    };
    for (quint32 y = 0; y < height; ++y) {
        for (quint32 x = 0; x < width; ++x) {
            const qsizetype o = qsizetype(y) * width + x;
            const quint16 r = sample(0, o);
            const quint16 g = colours == 3 ? sample(1, o) : r;
            const quint16 b = colours == 3 ? sample(2, o) : r;
            const quint16 a = alpha ? sample(colours, o) : (wide ? 0xFFFF : 0xFF);
            if (format == QImage::Format_Grayscale8)
                image.scanLine(int(y))[x] = uchar(r);
            else if (format == QImage::Format_Grayscale16)
                reinterpret_cast<quint16 *>(image.scanLine(int(y)))[x] = r;
            else if (wide)
                reinterpret_cast<QRgba64 *>(image.scanLine(int(y)))[x] = QRgba64::fromRgba64(r, g, b, a);
            else
                reinterpret_cast<QRgb *>(image.scanLine(int(y)))[x] = qRgba(r, g, b, a);
        }
    }
    return {image, {}};
}

QByteArray LoadPsdFileToByte(const QString &fileName)
{
    QFile file(fileName);
    if (!file.open(QIODevice::ReadOnly))
        return {};
    const PsdResult read = ReadPsdComposite(file.readAll());
    if (read.image.isNull())
        return {};
    QByteArray png;
    QBuffer buffer(&png);
    buffer.open(QIODevice::WriteOnly);
    return read.image.save(&buffer, "PNG") ? png : QByteArray();
}

} // namespace qb::imaging
