#!/usr/bin/env bash
# Runs a command on a virtual screen of its own, under a window manager, with Wine programs (scripts/wine.sh) drawn
# there. One at a time. usage: scripts/screen.sh COMMAND [ARGUMENTS ...]
#   QUENLAR_SCREEN=1280x900   size of the screen
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)
folder=${QUENLAR_WINE_FOLDER:-$here/build/wine}
[ $# -gt 0 ] || { sed -n '2,4p' "${BASH_SOURCE[0]}" >&2; exit 2; }
mkdir -p "$folder"
exec 8>"$folder/screen.lock"
flock 8

# Wine's desktop belongs to the display on which it was started, so it must not outlive the screen.
end_wine() {
  local server
  for server in wineserver64 /usr/lib/wine/wineserver64 wineserver; do
    if command -v "$server" >/dev/null; then
      WINEPREFIX=$folder/display "$server" -k 2>/dev/null || true
      WINEPREFIX=$folder/display "$server" -w 2>/dev/null || true
      return
    fi
  done
}
started=()
command=
end() {
  trap - EXIT TERM INT HUP
  [ -z "$command" ] || kill "$command" 2>/dev/null || true
  [ ! -d "$folder/display" ] || end_wine
  [ ${#started[@]} -eq 0 ] || kill "${started[@]}" 2>/dev/null || true
  wait
  rm -f "$number"
}
number=$(mktemp)
trap end EXIT
trap 'exit 143' TERM INT HUP
[ ! -d "$folder/display" ] || end_wine

# Nothing that is started here may outlive this script, not even when it is killed.
setpriv --pdeathsig TERM Xvfb -displayfd 3 -screen 0 "${QUENLAR_SCREEN:-1280x900}x24" -nolisten tcp 3>"$number" 8>&- >/dev/null 2>&1 &
started+=($!)
until [ -s "$number" ]; do
  kill -0 "${started[0]}" 2>/dev/null || { echo "screen.sh: no virtual screen" >&2; exit 1; }
  sleep 0.05
done
QUENLAR_WINE_DISPLAY=:$(tr -d '[:space:]' <"$number")
export QUENLAR_WINE_DISPLAY

# Without a window manager windows have no captions.
if command -v openbox >/dev/null; then
  DISPLAY=$QUENLAR_WINE_DISPLAY setpriv --pdeathsig TERM openbox --config-file /etc/xdg/openbox/rc.xml 8>&- >/dev/null 2>&1 &
  started+=($!)
fi

# In the background, since a shell hears a signal only between commands and while it waits.
setpriv --pdeathsig TERM "$@" 8>&- <&0 &
command=$!
status=0
wait "$command" || status=$?
command=
exit "$status"
