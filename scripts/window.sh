#!/usr/bin/env bash
# Opens the Windows program under Wine on the user's screen; where there is none, takes pictures of its windows on a
# virtual one and says where they lie. usage: scripts/window.sh
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
if [ -z "${DISPLAY:-}" ]; then
  exec scripts/screenshots.sh
fi
scripts/install.sh windows
scripts/build.sh windows Quenlar
QUENLAR_WINE_DISPLAY=$DISPLAY exec scripts/wine.sh build/windows/Quenlar.exe
