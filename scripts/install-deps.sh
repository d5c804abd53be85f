#!/usr/bin/env bash
# Installs what a fresh Debian 12 machine lacks to build, test and run the program, and the
# packages named as arguments.
set -euo pipefail
packages=(build-essential cmake qt6-base-dev qt6-serialport-dev libqt6sql6-sqlite qt6-qpa-plugins
          libgl-dev libxkbcommon-dev libsqlite3-dev sqlite3 xvfb xauth poppler-utils desktop-file-utils
          "$@")
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}"
