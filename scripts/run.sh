#!/usr/bin/env bash
# Installs what is missing, builds (Release) into build/, and starts the program with the given arguments.
set -euo pipefail
cd "$(dirname "$0")/.."

scripts/install-deps.sh
cmake -S . -B build -G Ninja -DCMAKE_BUILD_TYPE=Release >/dev/null
cmake --build build -j"${QB_JOBS:-2}" >&2

exec build/bin/quillbox-desk "$@"
