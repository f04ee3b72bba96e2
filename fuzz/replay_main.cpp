// Runs saved fuzz inputs through a target without libFuzzer: each argument is a file or a
// folder of files. Exits non-zero by crashing, as a fuzzer would, or when an argument names
// nothing or a folder without files: a lost corpus must not pass as a clean replay.
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const uint8_t *data, size_t size);

namespace {

int runFile(const std::filesystem::path &file)
{
    std::ifstream in(file, std::ios::binary);
    std::vector<char> bytes((std::istreambuf_iterator<char>(in)), std::istreambuf_iterator<char>());
    // A heap copy of exactly the input's size, so that a read past the end is caught.
    std::vector<uint8_t> copy(bytes.begin(), bytes.end());
    LLVMFuzzerTestOneInput(copy.empty() ? nullptr : copy.data(), copy.size());
    return 1;
}

} // namespace

int main(int argc, char **argv)
{
    if (argc < 2) {
        std::fprintf(stderr, "usage: %s corpus-folder-or-input...\n", argv[0]);
        return 1;
    }
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path arg(argv[i]);
        if (std::filesystem::is_directory(arg)) {
            int inFolder = 0;
            for (const auto &entry : std::filesystem::recursive_directory_iterator(arg))
                if (entry.is_regular_file())
                    inFolder += runFile(entry.path());
            if (inFolder == 0) {
                std::fprintf(stderr, "corpus folder %s holds no inputs\n", arg.c_str());
                return 1;
            }
            count += inFolder;
        } else if (std::filesystem::is_regular_file(arg)) {
            count += runFile(arg);
        } else {
            std::fprintf(stderr, "no corpus folder or input at %s\n", arg.c_str());
            return 1;
        }
    }
    // The empty input is always worth one run.
    LLVMFuzzerTestOneInput(nullptr, 0);
    std::printf("replayed %d inputs\n", count);
    return 0;
}
