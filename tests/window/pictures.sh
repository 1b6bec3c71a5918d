#!/usr/bin/env bash
# Takes a picture of every window into build/pictures: each of those in docs/images can be taken anew, and shows
# something. Whether it looks well is for a person to see.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
scripts/screenshots.sh
for documented in docs/images/*.png; do
  taken=build/pictures/${documented##*/}
  case "$taken" in */overview*) continue ;; esac  # the web page of a collection: tests/docs/pictures.py
  [ -s "$taken" ] || { echo "[  FAILED  ] no picture: $taken"; exit 1; }
  colours=$(identify -format %k "$taken")
  [ "$colours" -ge 8 ] || { echo "[  FAILED  ] $taken has $colours colours"; exit 1; }
done

shows() {  # PICTURE COLOUR WHAT: nearly this colour, since pictures are kept in few colours
  [ "$(convert "build/pictures/$1.png" -fuzz 8% -fill gray +opaque "$2" -format %k info:)" -gt 1 ] ||
    { echo "[  FAILED  ] $1.png does not show $3"; exit 1; }
}
shows main '#FF0000' 'a red address'
shows main-contrast '#FF0000' 'a red address'
shows about '#0000FF' 'a blue link'
shows about-contrast '#00FFFF' "a link in the system's colour, for blue cannot be read on black"
echo "[  PASSED  ] $(ls build/pictures/*.png | wc -l) pictures"
