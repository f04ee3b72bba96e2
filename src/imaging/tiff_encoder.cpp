#include "imaging/tiff_encoder.h"
#include "imaging/opaque_picture.h"
#include "imaging/palette_quantizer.h"

#include <tiffio.h>

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

using namespace Qt::StringLiterals;

namespace qb::imaging {
namespace {

struct Compression
{
    int value; // as the settings number it
    uint16_t code; // the TIFF tag value
    const char *name;
    bool blackAndWhiteOnly;
};

constexpr Compression kCompressions[] = {
    {2, COMPRESSION_LZW, "LZW", false},
    {3, COMPRESSION_CCITTFAX3, "CCITT group 3", true},
    {4, COMPRESSION_CCITTFAX4, "CCITT group 4", true},
    {5, COMPRESSION_CCITTRLE, "CCITT run length", true},
    {6, COMPRESSION_NONE, "none", false},
};

constexpr int kDepths[] = {1, 4, 8, 24, 32};

const Compression *findCompression(int value)
{
    const auto *found = std::find_if(std::begin(kCompressions), std::end(kCompressions),
        [value](const Compression &c) { return c.value == value; });
    return found == std::end(kCompressions) ? nullptr : found;
}

bool fail(QString *problem, const QString &text)
{
    if (problem)
        *problem = text;
    return false;
}

// libtiff reads and writes through these, so the file can be any device, a QSaveFile above all.
QIODevice *device(thandle_t handle)
{
    return static_cast<QIODevice *>(handle);
}

tmsize_t readDevice(thandle_t handle, void *data, tmsize_t size)
{
    return device(handle)->read(static_cast<char *>(data), size);
}

tmsize_t writeDevice(thandle_t handle, void *data, tmsize_t size)
{
    return device(handle)->write(static_cast<const char *>(data), size);
}

toff_t seekDevice(thandle_t handle, toff_t offset, int whence)
{
    QIODevice *d = device(handle);
    const qint64 base = whence == SEEK_CUR ? d->pos() : whence == SEEK_END ? d->size() : 0;
    const qint64 target = base + qint64(offset);
    if (target < 0 || !d->seek(target))
        return toff_t(-1);
    return toff_t(target);
}

// The device belongs to the caller, who commits or discards it.
int closeDevice(thandle_t)
{
    return 0;
}

toff_t deviceSize(thandle_t handle)
{
    return toff_t(device(handle)->size());
}

int noMap(thandle_t, void **, toff_t *)
{
    return 0;
}

void noUnmap(thandle_t, void *, toff_t) { }

// The first error libtiff reports is the one worth telling; warnings are dropped.
int keepFirstError(TIFF *, void *userData, const char *module, const char *format, va_list args)
{
    auto *first = static_cast<QString *>(userData);
    if (first->isEmpty()) {
        char text[512];
        std::vsnprintf(text, sizeof text, format, args);
        *first = QString::fromUtf8(module ? module : "libtiff") + u": "_s + QString::fromUtf8(text);
    }
    return 1;
}

int dropWarning(TIFF *, void *, const char *, const char *, va_list)
{
    return 1;
}

struct TiffClose
{
    void operator()(TIFF *tif) const { TIFFClose(tif); }
};

// Luminance below the middle is black; a set bit is black (min-is-white, as fax pages are).
void packBlackAndWhite(const QImage &opaque, int y, uchar *row)
{
    const auto *pixels = reinterpret_cast<const QRgb *>(opaque.constScanLine(y));
    std::memset(row, 0, size_t(opaque.width() + 7) / 8);
    for (int x = 0; x < opaque.width(); ++x) {
        if (qGray(pixels[x]) < 128)
            row[x / 8] |= uchar(0x80 >> (x % 8));
    }
}

void packIndices(const IndexedPicture &picture, int bits, int y, uchar *row)
{
    const uchar *indices = picture.indices.data() + size_t(y) * size_t(picture.width);
    if (bits == 8) {
        std::memcpy(row, indices, size_t(picture.width));
        return;
    }
    std::memset(row, 0, size_t(picture.width + 1) / 2);
    for (int x = 0; x < picture.width; ++x)
        row[x / 2] |= uchar(x % 2 ? indices[x] : indices[x] << 4);
}

bool setColorMap(TIFF *tif, const QList<QRgb> &palette, int bits)
{
    const size_t size = size_t(1) << bits;
    std::vector<uint16_t> red(size), green(size), blue(size);
    for (qsizetype i = 0; i < palette.size() && size_t(i) < size; ++i) {
        red[size_t(i)] = uint16_t(qRed(palette.at(i)) * 257);
        green[size_t(i)] = uint16_t(qGreen(palette.at(i)) * 257);
        blue[size_t(i)] = uint16_t(qBlue(palette.at(i)) * 257);
    }
    return TIFFSetField(tif, TIFFTAG_COLORMAP, red.data(), green.data(), blue.data());
}

bool setResolution(TIFF *tif, const QImage &image)
{
    if (image.dotsPerMeterX() <= 0 || image.dotsPerMeterY() <= 0)
        return true;
    return TIFFSetField(tif, TIFFTAG_XRESOLUTION, image.dotsPerMeterX() * 0.0254)
        && TIFFSetField(tif, TIFFTAG_YRESOLUTION, image.dotsPerMeterY() * 0.0254)
        && TIFFSetField(tif, TIFFTAG_RESOLUTIONUNIT, RESUNIT_INCH);
}

} // namespace

QString TiffSettingsProblem(int colorDepth, int compression)
{
    if (!findCompression(compression)) {
        QStringList accepted;
        for (const Compression &c : kCompressions)
            accepted << u"%1 (%2)"_s.arg(c.value).arg(QString::fromUtf8(c.name));
        return u"TIFF compression %1 is not supported; the accepted values are %2"_s.arg(compression)
            .arg(accepted.join(u", "_s));
    }
    if (std::find(std::begin(kDepths), std::end(kDepths), colorDepth) == std::end(kDepths)) {
        QStringList accepted;
        for (int depth : kDepths)
            accepted << QString::number(depth);
        return u"TIFF colour depth %1 is not supported; the accepted depths are %2"_s.arg(colorDepth)
            .arg(accepted.join(u", "_s));
    }
    return {};
}

bool WriteTiff(const QImage &image, int colorDepth, int compression, QIODevice &out, QString *problem)
{
    if (const QString refused = TiffSettingsProblem(colorDepth, compression); !refused.isEmpty())
        return fail(problem, refused);
    if (image.isNull())
        return fail(problem, u"the picture is empty"_s);
    const Compression &method = *findCompression(compression);
    const int bits = method.blackAndWhiteOnly ? 1 : colorDepth;

    // The picture in the form its rows are copied from.
    QImage pixels;
    IndexedPicture indexed;
    if (bits == 32)
        pixels = image.convertToFormat(QImage::Format_RGBA8888);
    else if (bits == 24)
        pixels = FlattenOverBlack(image).convertToFormat(QImage::Format_RGB888);
    else if (bits == 1)
        pixels = FlattenOverBlack(image).convertToFormat(QImage::Format_RGB32);
    else if (!QuantizeToPalette(image, 1 << bits, indexed, problem))
        return false;

    QString firstError;
    TIFFOpenOptions *options = TIFFOpenOptionsAlloc();
    if (!options)
        return fail(problem, u"the TIFF writer could not start"_s);
    TIFFOpenOptionsSetErrorHandlerExtR(options, keepFirstError, &firstError);
    TIFFOpenOptionsSetWarningHandlerExtR(options, dropWarning, nullptr);
    std::unique_ptr<TIFF, TiffClose> tif(TIFFClientOpenExt("picture.tif", "w", &out, readDevice, writeDevice,
        seekDevice, closeDevice, deviceSize, noMap, noUnmap, options));
    TIFFOpenOptionsFree(options);
    const auto failed = [&](const QString &what) {
        return fail(problem, firstError.isEmpty() ? what : what + u" ("_s + firstError + u")"_s);
    };
    if (!tif)
        return failed(u"the TIFF writer could not start"_s);

    const uint16_t samples = bits == 32 ? 4 : bits == 24 ? 3 : 1;
    const uint16_t photometric = bits == 1 ? PHOTOMETRIC_MINISWHITE
        : bits <= 8                        ? PHOTOMETRIC_PALETTE
                                           : PHOTOMETRIC_RGB;
    bool ok = TIFFSetField(tif.get(), TIFFTAG_IMAGEWIDTH, uint32_t(image.width()))
        && TIFFSetField(tif.get(), TIFFTAG_IMAGELENGTH, uint32_t(image.height()))
        && TIFFSetField(tif.get(), TIFFTAG_BITSPERSAMPLE, uint16_t(bits >= 24 ? 8 : bits))
        && TIFFSetField(tif.get(), TIFFTAG_SAMPLESPERPIXEL, samples)
        && TIFFSetField(tif.get(), TIFFTAG_PHOTOMETRIC, photometric)
        && TIFFSetField(tif.get(), TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG)
        && TIFFSetField(tif.get(), TIFFTAG_COMPRESSION, method.code) && setResolution(tif.get(), image);
    if (ok && bits == 32) {
        const uint16_t alpha[] = {EXTRASAMPLE_UNASSALPHA};
        ok = TIFFSetField(tif.get(), TIFFTAG_EXTRASAMPLES, uint16_t(1), alpha);
    }
    if (ok && (bits == 4 || bits == 8))
        ok = setColorMap(tif.get(), indexed.palette, bits);
    if (ok)
        ok = TIFFSetField(tif.get(), TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tif.get(), 0));
    if (!ok)
        return failed(u"the TIFF fields for %1 bits with %2 compression were refused"_s.arg(bits).arg(
            QString::fromUtf8(method.name)));

    std::vector<uchar> row(size_t(TIFFScanlineSize(tif.get())));
    const size_t copied = size_t(image.width()) * samples;
    for (int y = 0; y < image.height(); ++y) {
        if (bits == 1)
            packBlackAndWhite(pixels, y, row.data());
        else if (bits <= 8)
            packIndices(indexed, bits, y, row.data());
        else
            std::memcpy(row.data(), pixels.constScanLine(y), copied);
        if (TIFFWriteScanline(tif.get(), row.data(), uint32_t(y), 0) < 0)
            return failed(u"row %1 of the TIFF file could not be written"_s.arg(y));
    }
    // Flushing writes the directory; closing alone would not say whether that worked.
    if (!TIFFFlush(tif.get()))
        return failed(u"the TIFF file could not be finished"_s);
    tif.reset();
    if (!firstError.isEmpty())
        return failed(u"the TIFF file could not be finished"_s);
    return true;
}

} // namespace qb::imaging
