// Formats without alpha get the picture laid over black: each colour weighted by its alpha, the
// same as a premultiplied pixel. Fully transparent parts come out black whatever colour they held,
// so a saved file never shows colours that were invisible in the picture.
#pragma once

#include <QImage>

namespace qb::imaging {

// The picture over black as Format_RGB32; a picture without alpha comes back as it is.
QImage FlattenOverBlack(const QImage &image);

} // namespace qb::imaging
