// The picture conversion's settings read from the engine's image families.
#pragma once

#include "engine/properties_image.h"
#include "imaging/image_conversion.h"

namespace qb::engine {

imaging::ConversionSettings ConversionSettingsOf(
    const ImageFamily &image, const ImageWatermarkFamily &marks, const QString &encoderFormat);

} // namespace qb::engine
