#!/usr/bin/env bash
# Builds (Release) and runs every benchmark, printing their figures.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j"${QB_JOBS:-2}"
for b in build/bench/bench_*; do
  [ -x "$b" ] || continue
  echo "== $(basename "$b") =="
  "$b"
done
