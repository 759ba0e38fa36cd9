#!/usr/bin/env bash
# Installs the Debian 12 packages the analyzer needs, if any are missing.
#   scripts/setup.sh          packages to build and run
#   scripts/setup.sh --test   also those the tests need (a headless browser, clang for the fuzz
#                             target) and the package checks (CPack's tools, lintian, validators,
#                             man)
set -euo pipefail

packages=(cmake ninja-build g++ qt6-base-dev qt6-base-dev-tools qt6-tools-dev qt6-l10n-tools
          libgl-dev psmisc fonts-dejavu-core qt6-translations-l10n)
# Without a display, scripts/run.sh serves a virtual one over VNC on loopback.
if [ -z "${DISPLAY:-}" ] && [ -z "${WAYLAND_DISPLAY:-}" ] || [ "${1:-}" = "--test" ]; then
    packages+=(xvfb x11vnc iproute2)
fi
if [ "${1:-}" = "--test" ]; then
    packages+=(chromium clang-14 libclang-rt-14-dev dpkg-dev file lintian desktop-file-utils
               appstream man-db)
fi

missing=()
for p in "${packages[@]}"; do
    dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q "install ok installed" || missing+=("$p")
done
[ ${#missing[@]} -eq 0 ] && exit 0

echo "Installing: ${missing[*]}"
sudo=""
[ "$(id -u)" -eq 0 ] || sudo="sudo"
$sudo apt-get update -qq
DEBIAN_FRONTEND=noninteractive $sudo apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
