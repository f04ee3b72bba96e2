#!/usr/bin/env bash
# Installs, from Debian's packages, exactly what the build and the tests need. Safe to run again.
set -euo pipefail

packages=(
  # build
  build-essential cmake ninja-build pkg-config clang libclang-rt-14-dev
  qt6-base-dev libmspack-dev zlib1g-dev libopencc-dev
  # pictures: GIF with an optimal palette, TIFF with its compressions
  libgif-dev libimagequant-dev libtiff-dev
  # Qt's own Chinese texts for the standard buttons and dialogs
  qt6-translations-l10n
  # tests and benchmarks
  libgtest-dev libgmock-dev libbenchmark-dev
  # the LZX benchmark compares with libwim's compressor
  libwim-dev
  # outside oracles called by the tests
  cabextract 7zip gcab ffmpeg libarchive-tools imagemagick
  # the media engine detects and drives these tools in its tests
  mencoder x264 mkvtoolnix
  # the desktop program's end-to-end test: a virtual X display, typed keys
  xvfb xauth xdotool
  # the user interface is Chinese
  fonts-wqy-microhei
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

if [ "$(id -u)" -ne 0 ]; then
  echo "install-deps: these Debian packages are missing: ${missing[*]}" >&2
  echo "install-deps: run this script as root (or: sudo apt-get install ${missing[*]})" >&2
  exit 1
fi
if ! command -v apt-get >/dev/null 2>&1; then
  echo "install-deps: apt-get not found; this project is built on Debian 12" >&2
  exit 1
fi

echo "install-deps: installing ${missing[*]}"
export DEBIAN_FRONTEND=noninteractive
apt-get update -qq
apt-get install -y -qq --no-install-recommends "${missing[@]}"
