#!/usr/bin/env bash
# Kills a run of a collection at random instants and continues it, again and again. In the end the addresses are those
# of a run that nobody disturbed, and no page that was finished has been asked for again: of what a host was asked for in
# a run that was killed, only the last page may come again. The same holds for the visit that --again begins.
# usage: tests/reliability/collect_kill_loop.sh KILLS FARM_SERVER PROGRAM ...
#   KILL_WITHIN_MS=400     the latest instant of a kill, from the start of the program on
#   QUENLAR_KILLS=1000     so many instead of KILLS
set -euo pipefail
kills=${QUENLAR_KILLS:-$1}
farm_server=$2
shift 2
program=("$@")
here=$(dirname "${BASH_SOURCE[0]}")
work=$(mktemp -d)
farm_pid=
cleanup() {
  [ -z "$farm_pid" ] || kill "$farm_pid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
fail() {
  echo "[  FAILED  ] collect_kill_loop: $*"
  tail -5 "$work/err" 2>/dev/null || true
  exit 1
}

mkfifo "$work/keep" "$work/port" "$work/never"
log=$work/log
: >"$log"
"$farm_server" 30 12 2 1 "$log" <"$work/keep" >"$work/port" &
farm_pid=$!
exec 9>"$work/keep"
read -r port <"$work/port"
home=$work/home
run=(collect http://www.h0.example/ --scope anywhere --delay 0 --proxy "http://127.0.0.1:$port" --assume-online)

"${program[@]}" --home "$work/calm" "${run[@]}" 2>"$work/err" | LC_ALL=C sort >"$work/expected"
[ -s "$work/expected" ] || fail "the undisturbed run found nothing"
: >"$log"

check_log() {
  awk -f "$here/asked_twice.awk" "$log" >"$work/twice"
  [ ! -s "$work/twice" ] || fail "$(cat "$work/twice") was finished, and was asked for again"
}

check_addresses() {
  "${program[@]}" --home "$home" addresses h0_example | LC_ALL=C sort >"$work/found"
  cmp -s "$work/found" "$work/expected" ||
    fail "after $killed kills: $(wc -l <"$work/found") of $(wc -l <"$work/expected") addresses"
}

nothing_is_left() {
  "${program[@]}" --home "$home" collections 2>/dev/null | awk -F'\t' '$3 > 0 && $4 == 0 { yes = 1 } END { exit !yes }'
}

# One run that may be killed. Gives 0 where nothing was left to visit by then: the next --again would begin anew.
disturbed_run() {
  local pid status=0
  echo run >>"$log"
  "${program[@]}" --home "$home" "${run[@]}" "$@" >/dev/null 2>"$work/err" &
  pid=$!
  # A random instant within the run: the instant is what is random here, nothing waits for it to be long enough.
  read -r -t "0.$(printf '%03d' $((RANDOM % ${KILL_WITHIN_MS:-400})))" _ <>"$work/never" 2>/dev/null || true
  kill -9 "$pid" 2>/dev/null || true
  wait "$pid" 2>/dev/null || status=$?
  [ "$status" -eq 0 ] || [ "$status" -eq 137 ] || fail "a continued run ended with exit status $status"
  check_log
  [ "$status" -eq 0 ] || nothing_is_left
}

killed=0 collections=0
while [ "$killed" -lt "$kills" ]; do
  rm -rf "$home"
  for again in "" --again; do
    echo visit >>"$log"
    finished=
    while [ -z "$finished" ] && [ "$killed" -lt "$kills" ]; do
      if disturbed_run $again; then finished=yes; else killed=$((killed + 1)); fi
    done
    if [ -z "$finished" ]; then # the last one comes to its end in peace
      echo run >>"$log"
      "${program[@]}" --home "$home" "${run[@]}" $again >/dev/null 2>"$work/err" || fail "the last run ended with status $?"
      check_log
    fi
    check_addresses
    [ "$killed" -lt "$kills" ] || break
  done
  collections=$((collections + 1))
done
echo "[  PASSED  ] collect_kill_loop: $killed kills, $collections collections, $(wc -l <"$work/expected") addresses"
