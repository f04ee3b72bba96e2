// Fuzz target: lyrics, karaoke, SAMI and the numbered-time texts, as whole files converted into every format.
#include "subtitle_file_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzSubtitleFile(data, size, {"lrc", "ksc", "krc", "smi", "snc", "qly"});
    return 0;
}
