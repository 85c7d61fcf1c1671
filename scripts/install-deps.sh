#!/usr/bin/env bash
# Installs the Debian packages that building, testing and running need, and
# only those that are missing.
set -euo pipefail

packages=(
  cmake ninja-build g++ pkg-config
  libgtest-dev libbenchmark-dev
  clang libclang-rt-14-dev
  qt6-base-dev libqt6opengl6-dev qt6-image-formats-plugins
  libavcodec-dev libavformat-dev libswscale-dev libavutil-dev ffmpeg
  libgl1-mesa-dri libglu1-mesa-dev
  xvfb xauth fonts-dejavu-core
  libxcb1-dev
  openbox xdotool x11-utils
  dpkg-dev file appstream man-db
  libopenmpi-dev openmpi-bin
  python3-dev pybind11-dev python3-numpy python3-pytest python3-matplotlib
)

missing=()
for p in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$p")
  fi
done

if [ ${#missing[@]} -eq 0 ]; then
  exit 0
fi

sudo=""
if [ "$(id -u)" -ne 0 ]; then
  sudo="sudo"
fi
echo "Installing: ${missing[*]}"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq "${missing[@]}"
