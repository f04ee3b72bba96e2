// Feeds arbitrary bytes to the profile-file parser and its editing, which must round-trip.
#include "util/profile_file.h"

#include <cstdint>
#include <cstdlib>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QByteArray bytes(reinterpret_cast<const char *>(data), qsizetype(size));
    qb::util::ProfileFile profile = qb::util::ProfileFile::parse(bytes);
    QString value;
    profile.value(QStringLiteral("Settings"), QStringLiteral("Key"), value);
    profile.setValue(QStringLiteral("Settings"), QStringLiteral("Key"), QStringLiteral("v"));
    if (!profile.value(QStringLiteral("Settings"), QStringLiteral("Key"), value)
        || value != QStringLiteral("v"))
        std::abort();
    const QByteArray once = profile.serialize();
    if (qb::util::ProfileFile::parse(once).serialize() != once)
        std::abort();
    profile.removeSection(QStringLiteral("Settings"));
    return 0;
}
