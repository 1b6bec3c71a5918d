#!/usr/bin/env bash
# Kills a collection, a harvest that fills one, and an erasure, at each of their system calls in turn. After every kill the
# collection can be read, and the same command, not killed, comes to the end of an undisturbed one: with the same
# addresses, without a page that was finished and is asked for again, without a row that is printed twice, without a byte
# of what is erased.
# usage: kill_commands_at_every_call.sh KILL_AT_CALL FARM_SERVER PROGRAM [STEP [COMMAND ...]]
#   STEP      from one call to the next (default 1)
#   COMMAND   of: collect harvest erase (default: all)
set -euo pipefail
kill_at_call=$1 farm_server=$2 program=$3 step=${4:-1}
shift 3
shift $(($# > 0))
here=$(dirname "${BASH_SOURCE[0]}")
work=$(mktemp -d)
farm_pid= case= call=0
cleanup() {
  [ -z "$farm_pid" ] || kill "$farm_pid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
fail() {
  echo "[  FAILED  ] kill_commands_at_every_call: $case, call $call: $*"
  tail -5 "$work/err" 2>/dev/null || true
  exit 1
}

home=$work/home
log=$work/log
quenlar() { "$program" --home "$home" "$@" 2>"$work/err"; }
held() { quenlar addresses all | LC_ALL=C sort; }

# What is killed. *_prepare makes the folder in which it begins, *_check looks at the end of the command that was not killed.
collect_prepare() { : >"$log"; }
collect_arguments() {
  arguments=(collect http://www.h0.example/ --name all --scope anywhere --delay 0 --assume-online
    --proxy "http://127.0.0.1:$port")
}
collect_check() {
  awk -f "$here/asked_twice.awk" "$log" >"$work/twice"
  [ ! -s "$work/twice" ] || fail "$(cat "$work/twice") was finished, and was asked for again"
}

record() { # NUMBER
  local page block
  page="<title>Page $1</title><p>a$1@firma.de, b$1@firma.de"
  block=$'HTTP/1.1 200 OK\r\nContent-Type: text/html\r\n\r\n'$page
  printf 'WARC/1.1\r\nWARC-Type: response\r\nWARC-Date: 2026-11-22T13:20:32Z\r\n'
  printf 'WARC-Target-URI: http://www.firma.de/%s\r\nContent-Length: %s\r\n\r\n%s\r\n\r\n' "$1" ${#block} "$block"
}
mkdir "$work/in"
{ record 1; record 2; } >"$work/in/a.warc"
{ record 3; record 4; } | gzip >"$work/in/b.warc.gz"
harvest_prepare() { :; }
harvest_arguments() { arguments=(harvest --name all --format jsonl "$work/in"); }
harvest_check() {
  # A row that the kill cut off before it was printed is in the collection already.
  sort "$work/killed_out" "$work/out" | uniq -d >"$work/twice"
  [ ! -s "$work/twice" ] || fail "$(head -n 1 "$work/twice") was printed twice"
}

erase_prepare() { quenlar harvest --name all "$work/in" >/dev/null; }
erase_arguments() { arguments=(erase b3@firma.de --yes); }
erase_check() { ! grep -rqa 'b3@firma.de' "$home" || fail "bytes of the erased address stay"; }

begin_anew() {
  rm -rf "$home"
  "${case}_prepare"
}
calm_run() { quenlar "${arguments[@]}" >"$work/out" || fail "the next one ends with exit status $?"; }

# The collection can be read after a kill, as soon as there is one; what it holds is a part of the whole.
check_readable() {
  [ -s "$home/data/all.sqlite" ] || return 0
  quenlar collections >/dev/null || fail "the collections cannot be listed"
  ! compgen -G "$home/data/*.bak*" >/dev/null || fail "the collection was taken for damaged"
  held >"$work/held" 2>/dev/null || grep -q 'nothing has been collected' "$work/err" || fail "the collection cannot be read"
  [ -z "$(LC_ALL=C comm -23 "$work/held" "$work/all_held")" ] || fail "there is more than was ever found"
}

kill_at_every_call() { # COMMAND
  local status killed=0 within=0 lived=0
  case=$1 call=none
  "${case}_arguments"
  begin_anew
  held >"$work/all_held" 2>/dev/null || true
  calm_run
  held >"$work/expected"
  [ -s "$work/expected" ] || fail "the undisturbed command has found nothing"
  [ -s "$work/all_held" ] || cp "$work/expected" "$work/all_held"
  # The number of calls differs a little from run to run: it ends where several commands have lived.
  for ((call = 1; lived < 3; call += step)); do
    begin_anew
    status=0
    (exec 2>/dev/null; "$kill_at_call" "$call" "$work/calls" "$program" --home "$home" "${arguments[@]}" >"$work/killed_out") || status=$?
    case "$status" in
      0) lived=$((lived + 1)) ;;
      137) killed=$((killed + 1)) ;;
      *) fail "exit status $status" ;;
    esac
    [ ! -s "$home/data/all.sqlite" ] || within=$((within + 1))
    [ "$case" = erase ] || check_readable
    echo run >>"$log"
    calm_run
    "${case}_check"
    ! compgen -G "$home/data/*.bak*" >/dev/null || fail "the collection was taken for damaged"
    held | cmp -s - "$work/expected" || fail "the next one comes to another end"
  done
  [ "$killed" -gt 0 ] && [ "$within" -gt 0 ] || fail "no kill was within the command"
  echo "kill_commands_at_every_call: $case: killed at $killed system calls, at $within of them with a collection in the folder"
}

mkfifo "$work/keep" "$work/port"
: >"$log"
"$farm_server" 3 2 2 0 "$log" <"$work/keep" >"$work/port" &
farm_pid=$!
exec 9>"$work/keep"
read -r port <"$work/port"
[ $# -gt 0 ] || set -- collect harvest erase
for one in "$@"; do kill_at_every_call "$one"; done
echo "[  PASSED  ]"
