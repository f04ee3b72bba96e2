// Fuzz target: numbered blocks, plain text and the cue list, as whole files converted into every format.
#include "subtitle_file_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzSubtitleFile(data, size, {"srt", "utf", "txt", "stxt"});
    return 0;
}
