// Runs saved fuzz inputs through a target without libFuzzer: each argument is a file or a
// folder of files. Exits non-zero only by crashing, as a fuzzer would.
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
    int count = 0;
    for (int i = 1; i < argc; ++i) {
        const std::filesystem::path arg(argv[i]);
        if (std::filesystem::is_directory(arg)) {
            for (const auto &entry : std::filesystem::recursive_directory_iterator(arg))
                if (entry.is_regular_file())
                    count += runFile(entry.path());
        } else if (std::filesystem::is_regular_file(arg)) {
            count += runFile(arg);
        }
    }
    // The empty input is always worth one run.
    LLVMFuzzerTestOneInput(nullptr, 0);
    std::printf("replayed %d inputs\n", count);
    return 0;
}
