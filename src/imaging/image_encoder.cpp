#include "imaging/image_encoder.h"
#include "imaging/gif_encoder.h"
#include "imaging/opaque_picture.h"
#include "imaging/tiff_encoder.h"

#include <QImageWriter>
#include <QSaveFile>

#include <functional>
#include <iterator>

using namespace Qt::StringLiterals;

namespace qb::imaging {
namespace {

using Writer = std::function<bool(QIODevice &, QString *)>;

bool fail(QString *problem, const QString &text)
{
    if (problem)
        *problem = text;
    return false;
}

// Qt's own writers; the formats without alpha get the picture over black, as GIF and TIFF do.
Writer qtWriter(const QImage &image, const char *format, int quality = -1)
{
    return [image, format, quality](QIODevice &out, QString *problem) {
        QImageWriter writer(&out, format);
        writer.setQuality(quality);
        const bool keepsAlpha = qstrcmp(format, "png") == 0;
        if (writer.write(keepsAlpha ? image : FlattenOverBlack(image)))
            return true;
        return fail(problem, writer.errorString());
    };
}

// The writer for a format, or none with a reason when the settings are refused before any file
// is made.
Writer writerFor(const QImage &image, const EncodeSettings &settings, QString *problem)
{
    const QString format = settings.encoderFormat.toLower();
    if (format == u"jpg"_s || format == u"jpeg"_s) {
        if (settings.imageQuality < 0 || settings.imageQuality > 100) {
            fail(problem, u"JPEG quality %1 is outside 0 to 100"_s.arg(settings.imageQuality));
            return {};
        }
        return qtWriter(image, "jpeg", settings.imageQuality);
    }
    if (format == u"png"_s)
        return qtWriter(image, "png");
    if (format == u"gif"_s) {
        return [image, colour = settings.gifTransparencyColor](
                   QIODevice &out, QString *why) { return WriteGif(image, colour, out, why); };
    }
    if (format == u"tif"_s || format == u"tiff"_s) {
        const int depth = settings.tiffColorDepth;
        const int compression = settings.tiffCompression;
        if (const QString refused = TiffSettingsProblem(depth, compression); !refused.isEmpty()) {
            fail(problem, refused);
            return {};
        }
        return [image, depth, compression](
                   QIODevice &out, QString *why) { return WriteTiff(image, depth, compression, out, why); };
    }
    return qtWriter(image, "bmp");
}

} // namespace

bool SaveImageToFile(
    const QImage &image, const QString &fileName, const EncodeSettings &settings, QString *problem)
{
    if (image.isNull())
        return fail(problem, u"the picture is empty"_s);
    if (fileName.isEmpty())
        return fail(problem, u"no file name was given"_s);
    const Writer write = writerFor(image, settings, problem);
    if (!write)
        return false;

    // QSaveFile writes beside the target and renames over it on commit; a file it does not commit
    // is removed.
    QSaveFile file(fileName);
    if (!file.open(QIODevice::WriteOnly))
        return fail(problem, u"%1 cannot be written: %2"_s.arg(fileName, file.errorString()));
    QString why;
    if (!write(file, &why)) {
        file.cancelWriting();
        return fail(problem, u"%1 was not saved: %2"_s.arg(fileName, why));
    }
    if (!file.commit())
        return fail(problem, u"%1 could not be completed: %2"_s.arg(fileName, file.errorString()));
    if (problem)
        problem->clear();
    return true;
}

QString GdiplusStatusText(int status)
{
    static const char *const texts[] = {"OK.", "Generic Error.", "Invalid Parameter.", "Out Of Memory.",
        "Object Busy.", "Insufficient Buffer.", "Not Implemented.", "Win32 Error.", "Wrong State.",
        "Aborted.", "File Not Found.", "Value Overflow.", "Access Denied.", "Unknown Image Format.",
        "FontFamily Not Found.", "FontStyle Not Found.", "Not TrueType Font.", "Unsupported Gdiplus Version.",
        "Gdiplus Not Initialized.", "Property Not Found.", "Property Not Supported.", "Profile Not Found."};
    if (status < 0 || status >= int(std::size(texts)))
        return u"Unknown GDI+ Error."_s;
    return QString::fromLatin1(texts[status]);
}

} // namespace qb::imaging
