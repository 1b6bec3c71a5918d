#!/usr/bin/env bash
# Takes a picture of every window of Quenlar.exe under Wine on a virtual screen, into build/pictures: at 96 and 192 dots
# per inch and in the colours of high contrast, and of the main window alone at 144. usage: scripts/screenshots.sh [docs]
# With `docs`, those that the documentation shows go to docs/images.
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
images=build/pictures
export QUENLAR_WINE_FOLDER=$PWD/build/wine-pictures

if [ "${1:-}" != on-screen ]; then
  scripts/install.sh window
  scripts/build.sh windows Quenlar window_tour
  rm -rf "$images"
  mkdir -p "$images"
  QUENLAR_SCREEN=1440x1000 scripts/screen.sh "$0" on-screen 96
  QUENLAR_SCREEN=1440x1000 scripts/screen.sh "$0" on-screen 144 main
  QUENLAR_SCREEN=1920x1200 scripts/screen.sh "$0" on-screen 192
  QUENLAR_SCREEN=1440x1000 scripts/screen.sh "$0" on-screen contrast
  if [ "${1:-}" = docs ]; then
    for picture in $(grep -ohE 'images/[a-z0-9-]+\.png' README.md docs/*.md | sort -u); do
      # The browser's tests take those of the page of a collection.
      [ ! -f "$images/${picture#images/}" ] || cp "$images/${picture#images/}" "docs/$picture"
    done
  fi
  exit 0
fi

# The look is set anew each time. The visual style, which tests have off, is on; high contrast has none.
look=$2 what=${3:-}
suffix='' dpi=96 theme=1
case "$look" in
  96) ;;
  contrast) suffix=-contrast theme=0 ;;
  *) suffix=-$look dpi=$look ;;
esac
black_scheme() {
  local name colour
  while read -r name colour; do echo "\"$name\"=\"$colour\""; done <<END
ActiveTitle 0 0 128
ButtonDkShadow 255 255 255
ButtonFace 0 0 0
ButtonHilight 192 192 192
ButtonLight 255 255 255
ButtonShadow 128 128 128
ButtonText 255 255 255
GrayText 0 255 0
Hilight 0 128 0
HilightText 255 255 255
HotTrackingColor 0 255 255
Menu 0 0 0
MenuBar 0 0 0
MenuHilight 0 128 0
MenuText 255 255 255
Scrollbar 0 0 0
TitleText 255 255 255
Window 0 0 0
WindowFrame 255 255 255
WindowText 255 255 255
END
}
{
  cat <<END
REGEDIT4

[HKEY_CURRENT_USER\Control Panel\Desktop]
"LogPixels"=dword:$(printf %08x "$dpi")

[HKEY_CURRENT_USER\Software\Microsoft\Windows\CurrentVersion\ThemeManager]
"ThemeActive"="$theme"

[-HKEY_CURRENT_USER\Control Panel\Colors]

[HKEY_CURRENT_USER\Control Panel\Colors]
END
  [ "$look" != contrast ] || black_scheme
} >build/look.reg
scripts/wine.sh reg import build/look.reg >/dev/null

coproc TOUR { QUENLAR_PROGRAM=$PWD/build/windows/Quenlar.exe scripts/wine.sh build/windows/window_tour.exe $what; }
tour=$TOUR_PID
while IFS= read -r line <&"${TOUR[0]}"; do
  line=${line%$'\r'}
  name=${line%%$'\t'*} window=${line#*$'\t'}
  case "$window" in
    $'\t'*) part=(-window root -crop "${window#$'\t'}" +repage) ;;
    *) part=(-frame -window "$window") ;;
  esac
  # A picture is right when it looks the same twice: everything has been drawn.
  before=
  for _ in $(seq 100); do
    DISPLAY=$QUENLAR_WINE_DISPLAY import "${part[@]}" ppm:build/picture.ppm
    now=$(md5sum <build/picture.ppm)
    [ "$now" != "$before" ] || break
    before=$now
    sleep 0.2
  done
  convert build/picture.ppm -strip +dither -colors 128 "png8:$images/$name$suffix.png"
  echo "$images/$name$suffix.png"
  echo >&"${TOUR[1]}"
done
wait "$tour"
