// Cuts arbitrary requests from another instance into files, folders and words.
#include "fuzz_check.h"
#include "host/prev_instance.h"

#include <cstdint>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    const QString text = QString::fromUtf8(reinterpret_cast<const char *>(data), qsizetype(size));
    const qb::host::clsPrevInstance::ParsedCommand parsed = qb::host::clsPrevInstance::ParseCommand(text);
    // Words are never empty and hold no blank; folders end in "/".
    for (const QString &word : parsed.Parameters)
        check(!word.isEmpty() && !word.contains(u' '));
    for (const QString &folder : parsed.Folders)
        check(folder.endsWith(u'/'));
    for (const QString &file : parsed.Files)
        check(!file.isEmpty() && !file.contains(u'"'));
    return 0;
}
