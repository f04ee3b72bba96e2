// Fuzz target: the picture loader on arbitrary bytes, saved under the extension the first byte
// picks, so that both the by-name reader and the retry from the bytes run. A picture it hands back
// has a size; a refusal is a null picture, never a crash.
#include "fuzz_check.h"
#include "imaging/image_container.h"
#include "imaging/jpeg_metadata.h"

#include <QFile>
#include <QTemporaryDir>

#include <cstdint>
#include <iterator>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    if (size == 0)
        return 0;
    static const char *const kExtensions[] = {"psd", "png", "jpg", "gif", "bmp", "tif", "txt"};
    static QTemporaryDir folder;
    const QString file = folder.filePath(
        QStringLiteral("in.") + QLatin1String(kExtensions[data[0] % std::size(kExtensions)]));
    {
        QFile out(file);
        check(out.open(QIODevice::WriteOnly | QIODevice::Truncate));
        out.write(reinterpret_cast<const char *>(data + 1), qint64(size - 1));
    }
    const QImage image = qb::imaging::LoadImageToGdip(file);
    check(image.isNull() || (image.width() > 0 && image.height() > 0));
    const QByteArray bytes(reinterpret_cast<const char *>(data + 1), qsizetype(size - 1));
    const QImage fromBytes = qb::imaging::ConvertByteToImage(bytes);
    check(fromBytes.isNull() || qb::imaging::GetImageSizeFromByte(bytes) == fromBytes.size());
    // The metadata block, when found, lies inside the bytes and is a whole segment.
    const QByteArray exif = qb::imaging::ReadJpegExif(bytes);
    check(exif.isEmpty() || (bytes.contains(exif) && exif.startsWith("\xFF\xE1")));
    QFile::remove(file);
    return 0;
}
