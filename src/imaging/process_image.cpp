#include "imaging/process_image.h"

#include "imaging/blur_stage.h"
#include "imaging/placement_stage.h"
#include "imaging/shadow_stage.h"
#include "imaging/target_size_rule.h"
#include "imaging/tone_stage.h"
#include "imaging/torn_edge_stage.h"

namespace qb::imaging {

QImage ProcessImage(const QImage &source, const ProcessSettings &s)
{
    if (source.isNull())
        return {};
    QImage picture = source;
    if (s.brightness != 0 || s.contrast != 0)
        picture = AdjustBrightnessContrast(picture, s.brightness, s.contrast);
    if (s.sharpen)
        picture = SharpenImage(picture);
    if (s.blur.width() > 0 && s.blur.height() > 0)
        picture = BlurRectangle(
            picture, s.blur.x(), s.blur.y(), s.blur.width(), s.blur.height(), s.blurRadius, s.blurExpandEdge);
    const QRect cut = CutRectangle(s.cutX, s.cutY, s.cutW, s.cutH, s.style, picture.size());
    int w = picture.width();
    int h = picture.height();
    double scale = 1;
    ParseTargetSize(s.targetSize, picture.width(), picture.height(), w, h, scale);
    QImage placed = PlacePicture(picture, w, h, s.style, cut, s.backColor, s.backAlpha, s.seed);
    // A canvas too large for memory leaves the picture at its own size.
    if (!placed.isNull())
        picture = placed;
    ApplyFrame(picture, s.frame);
    if (s.tornEdge != 0)
        picture = TearEdges(picture, s.tornEdge);
    if (s.invert)
        picture = InvertImage(picture);
    if (s.shadowDepth > 0)
        DropShadow(picture, s.shadowDepth, s.shadowColor, s.shadowAlpha);
    return picture;
}

} // namespace qb::imaging
