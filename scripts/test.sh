#!/usr/bin/env bash
# Installs what is missing, builds, and runs every test through CTest; non-zero on any failure.
#   QB_SANITIZE=0      skip the ASan+UBSan build (with the fuzz targets) that runs by default
#   QB_FUZZ_SECONDS=N  how long each fuzz target runs in the sanitizer build (default 6)
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh

jobs=${QB_JOBS:-2}

if [ "${QB_SANITIZE:-1}" = 1 ]; then
  echo "== ASan+UBSan build with fuzz targets (build-asan/) =="
  CC=clang CXX=clang++ cmake -S . -B build-asan -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DQB_SANITIZE=ON -DQB_FUZZ=ON -DQB_BUILD_BENCH=OFF -DQB_FUZZ_SECONDS="${QB_FUZZ_SECONDS:-6}"
  cmake --build build-asan -j"$jobs"
  ASAN_OPTIONS=detect_leaks=1:abort_on_error=1 UBSAN_OPTIONS=print_stacktrace=1:halt_on_error=1 \
    ctest --test-dir build-asan --output-on-failure -j"$jobs" --timeout 900
fi

echo "== Release build (build/) =="
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release
cmake --build build -j"$jobs"
ctest --test-dir build --output-on-failure -j"$jobs" --timeout 900
