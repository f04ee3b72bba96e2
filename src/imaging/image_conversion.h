// Picture conversion of one file, or of several stitched into one picture: the core stage, the
// canvas the format asks for, title lines, histogram, watermarks, rotation, resolution and the
// source's metadata, then the encoder.
#pragma once

#include "imaging/image_container.h"
#include "imaging/image_encoder.h"
#include "imaging/process_image.h"
#include "imaging/text_marks.h"

#include <QStringList>

#include <functional>

namespace qb::imaging {

struct ConversionSettings
{
    ProcessSettings process;
    // "gif_t" is a GIF whose back colour is transparent; "gif_t" and "png" keep transparency,
    // every other format is laid over the back colour.
    QString encoderFormat;
    EncodeSettings encode; // quality and the TIFF values; the format is taken from above
    qint32 backColor = 0xFFFFFF;
    int alpha = 255; // of the picture over its canvas
    QString titleString;
    QString bottomString;
    bool showFileName = false; // the file's name as the bottom string when none is given
    QString fontString = DefaultFontString();
    bool showHistogram = false;
    TextMark textMark;
    ImageMark imageMark;
    int rotateFlip = 0;
    int dpiX = 0; // 0 keeps the source's
    int dpiY = 0;
    QString stitchingSize = QStringLiteral("300x300");
    int stitchingRow = 0;
};

struct ConversionHooks
{
    std::function<bool(const QString &)> isVideo; // the loader's video test
    VideoFrameGrabber grabFrame;
    std::function<void(int done, int count)> progress; // between the files of a stitch
};

// Converts inputs (one file, or several to stitch) into output. False, with the reason in problem,
// when a source cannot be read, the output's folder is missing or the encoder refuses.
bool ImageConversion(const QStringList &inputs, const QString &output, const ConversionSettings &settings,
    const ConversionHooks &hooks = {}, QString *problem = nullptr);

} // namespace qb::imaging
