#!/usr/bin/env bash
# Runs a Windows program under Wine, in a prefix of its own below build/wine that is made at the first call.
# usage: scripts/wine.sh PROGRAM.exe [ARGUMENTS ...]
#   QUENLAR_WINE_DISPLAY=:99       windows on that X display; without it they exist but are drawn nowhere
#   QUENLAR_WINE_LOCALE=ja_JP.UTF-8  decides the ANSI code page; C.UTF-8 (1252) without it
#   QUENLAR_WINE_FOLDER=FOLDER     where the prefixes lie, instead of build/wine
# The exit status is the program's; a program that ends badly is also told on stderr.
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
folder=${QUENLAR_WINE_FOLDER:-$here/build/wine}
[ $# -gt 0 ] || { sed -n '3,6p' "${BASH_SOURCE[0]}" >&2; exit 2; }

find_program() {  # NAMES ...: Debian's wine64 package alone puts nothing into PATH
  local name
  for name in "$@"; do
    if command -v "$name"; then return 0; fi
  done
  echo "wine.sh: Wine is missing; scripts/install.sh windows installs it" >&2
  return 127
}
wine=$(find_program wine64 /usr/lib/wine/wine64 wine)
wineserver=$(find_program wineserver64 /usr/lib/wine/wineserver64 wineserver)

# Nothing of the user's own session reaches the program: locale, time zone, home, proxies, display.
display=${QUENLAR_WINE_DISPLAY:-}
prefix=$folder/$([ -n "$display" ] && echo display || echo null)
locale=${QUENLAR_WINE_LOCALE:-C.UTF-8}
unset DISPLAY WAYLAND_DISPLAY LANG LANGUAGE ${!LC_*}
unset http_proxy https_proxy ftp_proxy all_proxy no_proxy HTTP_PROXY HTTPS_PROXY FTP_PROXY ALL_PROXY NO_PROXY
export WINEPREFIX=$prefix WINEDEBUG=${QUENLAR_WINE_DEBUG:--all} WINEARCH=win64 LC_ALL=C.UTF-8 TZ=UTC HOME=$folder/home
# Without its debugger a program that crashes ends at once and with a failure status.
export WINEDLLOVERRIDES="mscoree,mshtml,winedbg.exe,winemenubuilder.exe="

set_value() {  # KEY NAME DATA
  "$wine" reg add "$1" /v "$2" /d "$3" /f >/dev/null
}
make_prefix() {
  rm -rf "$prefix"
  mkdir -p "$prefix" "$HOME"
  "$wine" wineboot -i >/dev/null
  # Themed scroll bars cost milliseconds a row, a crash dialog waits for ever.
  set_value 'HKCU\Software\Microsoft\Windows\CurrentVersion\ThemeManager' ThemeActive 0
  "$wine" reg add 'HKCU\Software\Wine\WineDbg' /v ShowCrashDialog /t REG_DWORD /d 0 /f >/dev/null
  [ -n "$display" ] || set_value 'HKCU\Software\Wine\Drivers' Graphics null
  "$wineserver" -k || true
  "$wineserver" -w
  "$wine" --version >"$prefix/made-by"
}

mkdir -p "$folder"
exec 9>"$folder/lock"
flock 9
if [ "$(cat "$prefix/made-by" 2>/dev/null)" != "$("$wine" --version)" ]; then
  make_prefix 9>&- >"$folder/make.log" 2>&1 || { cat "$folder/make.log" >&2; echo "wine.sh: no prefix" >&2; exit 1; }
fi
[ -z "$display" ] || export DISPLAY=$display
# A server that outlives its last program for a minute, so that the next one starts at once. What Wine starts beside
# the first program must not hold our output open, or a reader of it would wait for that minute.
# A server that is just ending refuses a first program at times, so Wine is asked until it answers.
answer=refused
for _ in {1..20}; do
  "$wineserver" -p60 9>&- </dev/null >/dev/null 2>&1 || true
  if "$wine" cmd /c exit 9>&- </dev/null >"$folder/start.log" 2>&1; then answer=given; break; fi
  sleep 0.5
done
[ "$answer" = given ] || { cat "$folder/start.log" >&2; echo "wine.sh: Wine does not start" >&2; exit 1; }
flock -u 9
exec 9>&-
export LC_ALL=$locale

# The program must not outlive this script, which a test run may kill.
status=0
setpriv --pdeathsig KILL "$wine" "$@" || status=$?
[ "$status" -eq 0 ] || echo "wine.sh: ended with status $status: $1" >&2
exit "$status"
