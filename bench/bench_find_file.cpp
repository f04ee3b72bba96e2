// Walks a generated tree of 100,000 files in 1,000 folders with clsFindFile and prints files per
// second (cold first pass, then warm passes) and the process's peak memory.
#include "host/find_file.h"

#include <QByteArray>
#include <QString>

#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <sys/resource.h>

namespace fs = std::filesystem;

namespace {

long peakKiB()
{
    rusage usage {};
    getrusage(RUSAGE_SELF, &usage);
    return usage.ru_maxrss;
}

void makeTree(const fs::path &root, int folders, int filesPerFolder)
{
    // Ten top folders of a hundred folders each, so the walk has depth and breadth.
    for (int f = 0; f < folders; ++f) {
        const fs::path folder = root / ("top" + std::to_string(f % 10)) / ("folder" + std::to_string(f));
        fs::create_directories(folder);
        for (int i = 0; i < filesPerFolder; ++i) {
            std::ofstream out(folder / ("file" + std::to_string(i) + (i % 3 == 0 ? ".txt" : ".bin")));
            out << i;
        }
    }
}

} // namespace

int main(int argc, char **argv)
{
    const int folders = argc > 1 ? std::atoi(argv[1]) : 1000;
    const int perFolder = argc > 2 ? std::atoi(argv[2]) : 100;
    const fs::path root = fs::temp_directory_path() / ("qb-bench-find-" + std::to_string(::getpid()));
    std::printf("generating %d folders x %d files in %s\n", folders, perFolder, root.c_str());
    makeTree(root, folders, perFolder);
    const long baseline = peakKiB();

    qb::host::clsFindFile finder;
    const QString start = QString::fromStdString(root.string());
    double best = 0;
    for (int pass = 0; pass < 6; ++pass) {
        const auto t0 = std::chrono::steady_clock::now();
        finder.FindFiles(start, QStringLiteral("*.*"), 8, true);
        const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
        const double rate = finder.Count() / seconds;
        std::printf("pass %d (%s): %.0f files in %.3f s = %.0f files/s\n", pass + 1,
            pass == 0 ? "first" : "warm", finder.Count(), seconds, rate);
        if (pass > 0 && rate > best)
            best = rate;
    }
    const auto t0 = std::chrono::steady_clock::now();
    finder.FindFiles(start, QStringLiteral("*.txt"), 8, true);
    const double seconds = std::chrono::duration<double>(std::chrono::steady_clock::now() - t0).count();
    std::printf("pattern *.txt: %.0f of %d files in %.3f s\n", finder.Count(), folders * perFolder, seconds);

    std::printf("best warm rate: %.0f files/s (target 200000)\n", best);
    std::printf("peak memory: %ld KiB (tree generation left %ld KiB)\n", peakKiB(), baseline);
    fs::remove_all(root);
    return 0;
}
