#!/usr/bin/env bash
# Takes a picture of every window of Quenlar.exe under Wine on a virtual screen.
# usage: scripts/screenshots.sh [FOLDER]   (default: docs/images)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
images=${1:-docs/images}
export QUENLAR_WINE_FOLDER=$PWD/build/wine-pictures

if [ "${2:-}" != on-screen ]; then
  scripts/install.sh window
  scripts/build.sh windows Quenlar window_tour
  mkdir -p "$images"
  for dpi in 96 144; do QUENLAR_SCREEN=1440x1000 scripts/screen.sh "$0" "$images" on-screen $dpi; done
  exit 0
fi

# On the screen: at this many dots per inch, with the visual style on, which tests have off.
dpi=$3
scripts/wine.sh reg add 'HKCU\Control Panel\Desktop' /v LogPixels /t REG_DWORD /d "$dpi" /f >/dev/null
scripts/wine.sh reg add 'HKCU\Software\Microsoft\Windows\CurrentVersion\ThemeManager' /v ThemeActive /d 1 /f >/dev/null
suffix=
[ "$dpi" = 96 ] || suffix=-$dpi

coproc TOUR { QUENLAR_PROGRAM=$PWD/build/windows/Quenlar.exe scripts/wine.sh build/windows/window_tour.exe \
  $([ "$dpi" = 96 ] || echo main); }
tour=$TOUR_PID
while IFS= read -r line <&"${TOUR[0]}"; do
  line=${line%$'\r'}
  name=${line%%$'\t'*} window=${line#*$'\t'}
  # At other resolutions one picture is enough.
  if [ "$dpi" != 96 ] && [ "$name" != main ]; then
    echo >&"${TOUR[1]}"
    continue
  fi
  case "$window" in
    $'\t'*) part=(-window root -crop "${window#$'\t'}" +repage) ;;
    *) part=(-frame -window "$window") ;;
  esac
  # A picture is right when it looks the same twice: everything has been drawn.
  before=
  for _ in $(seq 100); do
    DISPLAY=$QUENLAR_WINE_DISPLAY import "${part[@]}" "png:build/picture.png"
    now=$(convert build/picture.png rgba:- | md5sum)
    [ "$now" != "$before" ] || break
    before=$now
    sleep 0.2
  done
  convert build/picture.png -strip +dither -colors 128 "png8:$images/$name$suffix.png"
  echo "$images/$name$suffix.png"
  echo >&"${TOUR[1]}"
done
wait "$tour"
