// The overlay documents' descriptions read from the engine's property families.
#pragma once

#include "engine/properties_overlay.h"
#include "subtitle/overlay_script.h"

namespace qb::engine {

// The timed title, banner and logo; source is the job's current input, now the macros' moment.
subtitle::WatermarkOverlay WatermarkOverlayOf(
    const AVFilterVideoWatermarkFamily &family, const QString &source, const QDateTime &now);

// The script path's title, logo and banner with the user's subtitle file, if any.
subtitle::AvsSubtitleOverlay AvsOverlayOf(const AVSFamily &family, const QString &userSubtitle);

} // namespace qb::engine
