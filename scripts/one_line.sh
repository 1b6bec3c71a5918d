#!/usr/bin/env bash
# Says TITLE on standard error as soon as there is a line to read. Where that is a terminal, each line then stands below it
# in the place of the one before, so that a long step takes two lines. usage: COMMAND | scripts/one_line.sh TITLE
set -euo pipefail
IFS= read -r line || exit 0
echo "$1" >&2
[ -t 2 ] || exec cat >/dev/null
width=$(tput cols 2>/dev/null || echo 80)
while
  printf '\r\033[K%s' "${line:0:$((width - 1))}" >&2
  IFS= read -r line
do :; done
printf '\r\033[K' >&2
