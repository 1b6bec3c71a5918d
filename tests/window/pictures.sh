#!/usr/bin/env bash
# Takes a picture of every window into build/pictures: each of those in docs/images can be taken anew, and shows
# something. Whether it looks well is for a person to see.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
rm -rf build/pictures
scripts/screenshots.sh build/pictures
for documented in docs/images/*.png; do
  taken=build/pictures/${documented##*/}
  [ -s "$taken" ] || { echo "[  FAILED  ] no picture: $taken"; exit 1; }
  colours=$(identify -format %k "$taken")
  [ "$colours" -ge 8 ] || { echo "[  FAILED  ] $taken has $colours colours"; exit 1; }
done
echo "[  PASSED  ] $(ls build/pictures/*.png | wc -l) pictures"
