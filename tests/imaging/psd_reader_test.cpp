// The layered-image reader: files written here in each mode it reads, compared pixel by pixel,
// and damaged or lying files refused with their reason.
#include "imaging/psd_reader.h"
#include "support/temp_tree.h"

#include <QBuffer>

#include <gtest/gtest.h>

#include <functional>

using namespace Qt::StringLiterals;

namespace qb::imaging {
namespace {

struct PsdShape
{
    quint16 channels = 3;
    quint32 width = 5;
    quint32 height = 3;
    quint16 depth = 8;
    quint16 mode = 3; // RGB
    quint16 compression = 0;
};

void put16(QByteArray &out, quint32 v)
{
    out += char(v >> 8);
    out += char(v);
}

void put32(QByteArray &out, quint32 v)
{
    put16(out, v >> 16);
    put16(out, v & 0xFFFF);
}

// A literal run for each row: the plainest packing a reader must accept, plus one repeat run
// where a row starts with two equal bytes.
QByteArray packRow(const QByteArray &row)
{
    QByteArray out;
    qsizetype i = 0;
    if (row.size() >= 2 && row.at(0) == row.at(1)) {
        out += char(-1);
        out += row.at(0);
        i = 2;
    }
    while (i < row.size()) {
        const qsizetype n = std::min<qsizetype>(128, row.size() - i);
        out += char(n - 1);
        out += row.mid(i, n);
        i += n;
    }
    return out;
}

// The sample of channel c at x, y: distinct everywhere, so a mixed-up plane shows.
quint16 sampleAt(quint16 c, quint32 x, quint32 y, quint16 depth)
{
    const quint32 v = (c * 71 + x * 13 + y * 29 + 7) % 251;
    return depth == 16 ? quint16(v * 257 + c) : quint16(v);
}

QByteArray writePsd(const PsdShape &s)
{
    QByteArray out("8BPS");
    put16(out, 1);
    out += QByteArray(6, '\0');
    put16(out, s.channels);
    put32(out, s.height);
    put32(out, s.width);
    put16(out, s.depth);
    put16(out, s.mode);
    put32(out, 0); // colour table
    put32(out, 4); // resources, skipped whatever they hold
    out += "junk";
    put32(out, 0); // layers
    put16(out, s.compression);
    QList<QByteArray> rows;
    for (quint16 c = 0; c < s.channels; ++c) {
        for (quint32 y = 0; y < s.height; ++y) {
            QByteArray row;
            for (quint32 x = 0; x < s.width; ++x) {
                const quint16 v = sampleAt(c, x, y, s.depth);
                if (s.depth == 16)
                    put16(row, v);
                else
                    row += char(v);
            }
            rows << (s.compression == 1 ? packRow(row) : row);
        }
    }
    if (s.compression == 1) {
        for (const QByteArray &row : rows)
            put16(out, quint32(row.size()));
    }
    for (const QByteArray &row : rows)
        out += row;
    return out;
}

TEST(PsdReader, EveryModeItReadsComesBackPixelForPixel)
{
    struct Case
    {
        const char *name;
        PsdShape shape;
        QImage::Format format;
    };
    const Case cases[] = {
        {"RGB 8 raw", {3, 5, 3, 8, 3, 0}, QImage::Format_ARGB32},
        {"RGB 8 packed with alpha and a spot channel", {5, 300, 2, 8, 3, 1}, QImage::Format_ARGB32},
        {"RGB 16 packed", {3, 4, 4, 16, 3, 1}, QImage::Format_RGBA64},
        {"grey 8 raw", {1, 6, 2, 8, 1, 0}, QImage::Format_Grayscale8},
        {"grey 16 raw", {1, 3, 3, 16, 1, 0}, QImage::Format_Grayscale16},
        {"grey 8 packed with alpha", {2, 7, 3, 8, 1, 1}, QImage::Format_ARGB32},
    };
    for (const Case &c : cases) {
        const PsdShape &s = c.shape;
        const PsdResult read = ReadPsdComposite(writePsd(s));
        ASSERT_FALSE(read.image.isNull()) << c.name << ": " << read.problem.toStdString();
        EXPECT_EQ(read.image.format(), c.format) << c.name;
        ASSERT_EQ(read.image.size(), QSize(int(s.width), int(s.height))) << c.name;
        const bool grey = s.mode == 1;
        const bool alpha = s.channels > (grey ? 1 : 3);
        const int wide = s.depth == 16 ? 1 : 0;
        int wrong = 0;
        for (quint32 y = 0; y < s.height; ++y) {
            for (quint32 x = 0; x < s.width; ++x) {
                const QRgba64 p = read.image.pixelColor(int(x), int(y)).rgba64();
                const auto want = [&](quint16 channel) {
                    const quint16 v = sampleAt(channel, x, y, s.depth);
                    return wide ? v : quint16(v * 257);
                };
                const quint16 r = want(0);
                const quint16 g = grey ? r : want(1);
                const quint16 b = grey ? r : want(2);
                const quint16 a = alpha ? want(grey ? 1 : 3) : 0xFFFF;
                wrong += p.red() != r || p.green() != g || p.blue() != b || p.alpha() != a;
            }
        }
        EXPECT_EQ(wrong, 0) << c.name;
    }
}

TEST(PsdReader, DamagedAndLyingFilesAreRefusedWithTheirReason)
{
    const QByteArray good = writePsd({3, 5, 3, 8, 3, 1});
    const auto patched = [&good](qsizetype at, QByteArray bytes) {
        QByteArray copy = good;
        copy.replace(at, bytes.size(), bytes);
        return copy;
    };
    const auto big = [](quint32 v) {
        QByteArray b;
        put32(b, v);
        return b;
    };
    struct Case
    {
        const char *name;
        QByteArray data;
        const char *says;
    };
    const Case cases[] = {
        {"another signature", patched(0, "GIF8"), "no 8BPS signature"},
        {"the large-document version", patched(4, QByteArray("\0\2", 2)), "version 2"},
        {"CMYK", writePsd({4, 2, 2, 8, 4, 0}), "colour mode 4"},
        {"32 bits", writePsd({3, 2, 2, 32, 3, 0}), "32 bits"},
        {"zip compression", writePsd({3, 2, 2, 8, 3, 2}), "compression 2"},
        {"an RGB picture of two channels", writePsd({2, 2, 2, 8, 3, 0}), "needs three channels"},
        {"a height beyond the format", patched(14, big(40000)), "header is damaged"},
        {"a lying height", patched(14, big(20000)), "ends inside its row table"},
        {"a lying width, packed", patched(18, big(29999)), "too short for its width"},
        {"a lying width, raw",
            [&] {
                QByteArray raw = writePsd({3, 5, 3, 8, 3, 0});
                return raw.replace(18, 4, big(29999));
            }(),
            "ends inside its picture"},
        {"a resource length past the end", patched(30, big(0x7FFFFFFF)), "ends inside its header sections"},
        {"cut inside the picture", good.left(good.size() - 3), "ends inside its picture"},
        {"cut inside the header", good.left(20), "no 8BPS signature"},
        {"empty", QByteArray(), "no 8BPS signature"},
    };
    for (const Case &c : cases) {
        const PsdResult read = ReadPsdComposite(c.data);
        EXPECT_TRUE(read.image.isNull()) << c.name;
        EXPECT_TRUE(read.problem.contains(QString::fromUtf8(c.says)))
            << c.name << ": " << read.problem.toStdString();
    }
}

TEST(PsdReader, TheFileLoaderHandsOverPng)
{
    test::TempTree tree;
    const QString file = tree.writeFile(u"a.psd"_s, writePsd({4, 9, 4, 8, 3, 1}));
    const QByteArray png = LoadPsdFileToByte(file);
    ASSERT_TRUE(png.startsWith("\x89PNG"));
    QImage back;
    ASSERT_TRUE(back.loadFromData(png, "PNG"));
    EXPECT_EQ(back.size(), QSize(9, 4));
    EXPECT_EQ(back, ReadPsdComposite(writePsd({4, 9, 4, 8, 3, 1})).image.convertToFormat(back.format()));
    EXPECT_TRUE(LoadPsdFileToByte(tree.path(u"gone.psd"_s)).isEmpty());
    EXPECT_TRUE(LoadPsdFileToByte(tree.writeFile(u"b.psd"_s, "8BPS")).isEmpty());
}

} // namespace
} // namespace qb::imaging
