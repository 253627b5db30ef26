#!/usr/bin/env bash
# Installs the Debian 12 packages the build and tests need, if missing.
set -euo pipefail
PACKAGES=(build-essential cmake pkg-config libepoxy-dev libegl-dev libegl-mesa0 libgl1-mesa-dri libglu1-mesa-dev
          libx11-dev libglfw3-dev libxrandr-dev libpng-dev libgtest-dev libgmock-dev libbenchmark-dev xvfb xauth
          clang libclang-rt-14-dev
          libjpeg-dev libgif-dev libtiff-dev
          libfontconfig-dev libfreetype-dev librecad-data fonts-wqy-microhei
          libassimp-dev assimp-testmodels libimgui-dev)
missing=()
for p in "${PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
if [ ${#missing[@]} -eq 0 ]; then
  echo "deps: all packages present"
  exit 0
fi
echo "deps: installing ${missing[*]}"
SUDO=""
[ "$(id -u)" -ne 0 ] && SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
