#!/usr/bin/env bash
# Installs everything needed to build, run and test the composer on Debian 12.
# Idempotent: does nothing when every package is already there.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git
  qt6-base-dev qt6-base-dev-tools libgl-dev libqt6svg6 qt6-translations-l10n
  libarchive-dev libturbojpeg0-dev libjpeg62-turbo-dev libjpeg-turbo-progs libgif-dev
  libfluidsynth-dev fluid-soundfont-gm libopencore-amrnb-dev qt6-multimedia-dev
  libavformat-dev libavcodec-dev libswresample-dev libswscale-dev libavutil-dev ffmpeg
  libgtest-dev libgmock-dev libbenchmark-dev
  xvfb xauth
  clang-14 libclang-rt-14-dev clang-format
  python3-mido imagemagick tshark
  libsmf-dev
  mmsd-tng dbus python3-dbusmock
  desktop-file-utils appstream lintian man-db
)

missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep "install ok installed" >/dev/null || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

sudo=""
[ "$(id -u)" -ne 0 ] && sudo="sudo"
export DEBIAN_FRONTEND=noninteractive
$sudo apt-get update -qq
$sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
