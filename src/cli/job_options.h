// The options a media job takes on the command line, parsed once for every command that sets up
// a job: convert, the script preview and whatever comes later.
#pragma once

#include <QString>
#include <QStringList>

namespace qb::engine {
class FFmpegX;
}

namespace qb::cli {

struct JobOptions
{
    QString problem; // why the options were refused, "" when they were taken
    QStringList rest; // what is no job option, in its order (sources, -o and the command's own)
};

// Sets the engine's properties from the job options among arguments: --format NAME,
// --output-dir DIR, --size WxH|N%, --vbr N, --bitrate K, --audio-bitrate K, --start S, --end S,
// --limit-mb N, --twopass, --subtitle FILE, --text TEXT, --logo IMAGE, --crop T,B,L,R|auto,
// --deinterlace, --volume N and --set PROPERTY=VALUE for any stored property.
JobOptions ApplyJobOptions(const QStringList &arguments, engine::FFmpegX &engine);

// One PROPERTY=VALUE for any stored property of the engine; why it was refused, or "".
QString SetJobProperty(engine::FFmpegX &engine, const QString &assignment);

// The lines of the usage text that describe the options above.
QString JobOptionsUsage();

} // namespace qb::cli
