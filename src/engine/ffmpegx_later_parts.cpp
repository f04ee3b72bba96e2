// Steps of a job that belong to later parts of the engine: converting pictures, grabbing frames
// and contact sheets. Until those parts are built each reports that it
// made nothing, so a job that needs one ends with the error its caller raises for a missing
// result, never with a false success.
#include "engine/ffmpegx.h"

namespace qb::engine {

bool FFmpegX::ImageConversion(const QStringList &files, const QString &output, const QString &format)
{
    Q_UNUSED(files);
    Q_UNUSED(output);
    Q_UNUSED(format);
    return false;
}

bool FFmpegX::Screenshot(const QString &source, const QString &output, int width, int height, double seconds)
{
    Q_UNUSED(source);
    Q_UNUSED(output);
    Q_UNUSED(width);
    Q_UNUSED(height);
    Q_UNUSED(seconds);
    return false;
}

bool FFmpegX::WriteContactSheet(const QString &source, const QString &output)
{
    Q_UNUSED(source);
    Q_UNUSED(output);
    return false;
}

} // namespace qb::engine
