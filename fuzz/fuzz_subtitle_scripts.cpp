// Fuzz target: the script formats, the tabular and one-line forms and bracket pairs, as whole files converted
// into every format.
#include "subtitle_file_fuzz.h"

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size)
{
    FuzzSubtitleFile(data, size, {"ass", "ssa", "stl", "vsf", "dks"});
    return 0;
}
