#!/usr/bin/env bash
# Installs what Kestrane needs to build, run and test on Debian 12; packages
# already present are left alone.
set -euo pipefail

packages=(
  build-essential cmake ninja-build pkg-config git clang libclang-rt-14-dev
  qt6-base-dev qt6-base-dev-tools libqt6widgets6 libqt6test6 qt6-qpa-plugins
  libgtest-dev libgmock-dev
  libavformat-dev libavcodec-dev libavutil-dev libswresample-dev libicu-dev libmediainfo-dev
  mediainfo mkvtoolnix mplayer mencoder ffmpeg
  fonts-dejavu-core fontconfig
  xvfb xauth x11-apps imagemagick procps coreutils
  xdotool dbus-daemon at-spi2-core
)

missing=()
for package in "${packages[@]}"; do
  if ! dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed'; then
    missing+=("$package")
  fi
done

if ((${#missing[@]})); then
  echo "Installing: ${missing[*]}"
  sudo_cmd=()
  if [ "$(id -u)" -ne 0 ]; then sudo_cmd=(sudo); fi
  "${sudo_cmd[@]}" apt-get update -qq
  DEBIAN_FRONTEND=noninteractive "${sudo_cmd[@]}" apt-get install -y -qq --no-install-recommends "${missing[@]}"
fi
