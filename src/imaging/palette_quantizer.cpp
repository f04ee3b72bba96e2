#include "imaging/palette_quantizer.h"
#include "imaging/opaque_picture.h"

#include <libimagequant.h>

#include <memory>

using namespace Qt::StringLiterals;

namespace qb::imaging {
namespace {

template<typename T, void (*Destroy)(T *)>
struct Destroyer
{
    void operator()(T *object) const
    {
        if (object)
            Destroy(object);
    }
};

using Attributes = std::unique_ptr<liq_attr, Destroyer<liq_attr, liq_attr_destroy>>;
using Image = std::unique_ptr<liq_image, Destroyer<liq_image, liq_image_destroy>>;
using Result = std::unique_ptr<liq_result, Destroyer<liq_result, liq_result_destroy>>;

bool fail(QString *problem, const QString &text)
{
    if (problem)
        *problem = text;
    return false;
}

} // namespace

bool QuantizeToPalette(const QImage &image, int maxColors, IndexedPicture &out, QString *problem)
{
    if (image.isNull())
        return fail(problem, u"the picture is empty"_s);
    // The quantizer reads rows of R, G, B, A bytes; alpha is 255 everywhere after flattening.
    QImage rgba = FlattenOverBlack(image).convertToFormat(QImage::Format_RGBA8888);
    const int width = rgba.width();
    const int height = rgba.height();
    std::vector<void *> rows(static_cast<size_t>(height));
    for (int y = 0; y < height; ++y)
        rows[size_t(y)] = rgba.scanLine(y);

    const Attributes attributes(liq_attr_create());
    if (!attributes)
        return fail(problem, u"the palette quantizer could not start"_s);
    if (liq_set_max_colors(attributes.get(), maxColors) != LIQ_OK)
        return fail(problem, u"a palette of %1 colours cannot be made"_s.arg(maxColors));
    const Image input(liq_image_create_rgba_rows(attributes.get(), rows.data(), width, height, 0));
    if (!input)
        return fail(problem, u"the palette quantizer refuses a picture of %1 x %2"_s.arg(width).arg(height));
    liq_result *raw = nullptr;
    const liq_error quantized = liq_image_quantize(input.get(), attributes.get(), &raw);
    const Result result(raw);
    if (quantized != LIQ_OK || !result)
        return fail(
            problem, u"no palette could be made for the picture (quantizer error %1)"_s.arg(int(quantized)));
    liq_set_dithering_level(result.get(), 1.0f);

    out.width = width;
    out.height = height;
    out.indices.assign(size_t(width) * size_t(height), 0);
    const liq_error remapped
        = liq_write_remapped_image(result.get(), input.get(), out.indices.data(), out.indices.size());
    if (remapped != LIQ_OK)
        return fail(problem,
            u"the picture could not be mapped onto its palette (quantizer error %1)"_s.arg(int(remapped)));
    // Remapping may still refine the palette, so it is read afterwards.
    const liq_palette *palette = liq_get_palette(result.get());
    out.palette.clear();
    for (unsigned i = 0; i < palette->count; ++i) {
        const liq_color &c = palette->entries[i];
        out.palette << qRgb(c.r, c.g, c.b);
    }
    return true;
}

} // namespace qb::imaging
