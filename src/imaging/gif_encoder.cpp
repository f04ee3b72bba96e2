#include "imaging/gif_encoder.h"
#include "imaging/palette_quantizer.h"

#include <gif_lib.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace qb::imaging {
namespace {

// The format keeps sizes in 16 bits.
constexpr int kMaxSide = 65535;

struct MapFree
{
    void operator()(ColorMapObject *map) const { GifFreeMapObject(map); }
};

int writeToDevice(GifFileType *gif, const GifByteType *data, int length)
{
    auto *device = static_cast<QIODevice *>(gif->UserData);
    return int(device->write(reinterpret_cast<const char *>(data), length));
}

QString gifError(int code)
{
    const char *text = GifErrorString(code);
    return text ? QString::fromUtf8(text) : u"GIF error %1"_s.arg(code);
}

bool fail(QString *problem, const QString &text)
{
    if (problem)
        *problem = text;
    return false;
}

// Screen, optional graphic control block, one image; the caller closes the file.
bool writeBody(GifFileType *gif, IndexedPicture &picture, int transparentIndex)
{
    const int count = int(picture.palette.size());
    const std::unique_ptr<ColorMapObject, MapFree> map(GifMakeMapObject(1 << GifBitSize(count), nullptr));
    if (!map) {
        gif->Error = E_GIF_ERR_NOT_ENOUGH_MEM;
        return false;
    }
    // Entries past the palette stay black; no pixel points at them.
    for (int i = 0; i < count; ++i) {
        const QRgb c = picture.palette.at(i);
        map->Colors[i] = {GifByteType(qRed(c)), GifByteType(qGreen(c)), GifByteType(qBlue(c))};
    }
    EGifSetGifVersion(gif, transparentIndex >= 0);
    if (EGifPutScreenDesc(gif, picture.width, picture.height, 8, 0, map.get()) == GIF_ERROR)
        return false;
    if (transparentIndex >= 0) {
        GraphicsControlBlock control {};
        control.DisposalMode = DISPOSAL_UNSPECIFIED;
        control.UserInputFlag = false;
        control.DelayTime = 0;
        control.TransparentColor = transparentIndex;
        GifByteType extension[4];
        const size_t length = EGifGCBToExtension(&control, extension);
        if (EGifPutExtension(gif, GRAPHICS_EXT_FUNC_CODE, int(length), extension) == GIF_ERROR)
            return false;
    }
    if (EGifPutImageDesc(gif, 0, 0, picture.width, picture.height, false, nullptr) == GIF_ERROR)
        return false;
    for (int y = 0; y < picture.height; ++y) {
        GifPixelType *row = picture.indices.data() + size_t(y) * size_t(picture.width);
        if (EGifPutLine(gif, row, picture.width) == GIF_ERROR)
            return false;
    }
    return true;
}

} // namespace

int TransparentPaletteIndex(const QList<QRgb> &palette, qint32 transparencyColor)
{
    if (transparencyColor == -1)
        return -1;
    const int red = transparencyColor & 0xFF;
    const int green = (transparencyColor >> 8) & 0xFF;
    const int blue = (transparencyColor >> 16) & 0xFF;
    for (qsizetype i = 0; i < palette.size(); ++i) {
        const QRgb c = palette.at(i);
        if (qRed(c) == red && qGreen(c) == green && qBlue(c) == blue)
            return int(i);
    }
    return -1;
}

bool WriteGif(const QImage &image, qint32 transparencyColor, QIODevice &out, QString *problem)
{
    if (image.width() > kMaxSide || image.height() > kMaxSide) {
        return fail(problem,
            u"a GIF picture is at most %1 pixels a side; this one is %2 x %3"_s.arg(kMaxSide)
                .arg(image.width())
                .arg(image.height()));
    }
    IndexedPicture picture;
    if (!QuantizeToPalette(image, 256, picture, problem))
        return false;
    const int transparentIndex = TransparentPaletteIndex(picture.palette, transparencyColor);

    int error = 0;
    GifFileType *gif = EGifOpen(&out, writeToDevice, &error);
    if (!gif)
        return fail(problem, u"the GIF writer could not start: "_s + gifError(error));
    const bool written = writeBody(gif, picture, transparentIndex);
    const int bodyError = gif->Error;
    // Closing writes the trailer and frees the writer whatever happened before.
    const bool closed = EGifCloseFile(gif, &error) != GIF_ERROR;
    if (!written)
        return fail(problem, u"the GIF file could not be written: "_s + gifError(bodyError));
    if (!closed)
        return fail(problem, u"the GIF file could not be finished: "_s + gifError(error));
    return true;
}

} // namespace qb::imaging
