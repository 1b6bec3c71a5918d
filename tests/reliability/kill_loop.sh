#!/usr/bin/env bash
# Kills a real run at random instants and continues it, again and again; after each kill every file must be whole, and in
# the end nothing may be missing: the addresses are those of a run that nobody disturbed.
# usage: tests/reliability/kill_loop.sh KILLS [PROGRAM ...]     (default program: build/linux/quenlar)
#   KILL_WITHIN_MS=250     the latest instant of a kill, from the start of the program on
# Under Wine:
#   KILL_WITHIN_MS=999 tests/reliability/kill_loop.sh 50 scripts/wine.sh build/windows/quenlar-cli.exe
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
kills=${1:-1000}
shift || true
program=("$@")
[ ${#program[@]} -gt 0 ] || program=("$PWD/build/linux/quenlar")
windows=
case "${program[*]}" in *.exe) windows=yes ;; esac
work=$(mktemp -d)
farm_pid=
cleanup() {
  [ -z "$farm_pid" ] || kill "$farm_pid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT
fail() {
  echo "kill_loop: $*" >&2
  cp -r "$work/home" "${TMPDIR:-/tmp}/kill_loop_failure.$$" 2>/dev/null || true
  exit 1
}

folder() { # a path as the program takes it
  if [ -n "$windows" ]; then echo "Z:$1" | tr / '\\'; else echo "$1"; fi
}
# Under Wine the program is the child of what was started.
victim() {
  if [ -n "$windows" ]; then pgrep -P "$1" -f "${program[-1]##*/}" || true; else echo "$1"; fi
}

mkfifo "$work/keep" "$work/port" "$work/never"
build/linux/farm_server "${FARM_HOSTS:-40}" 8 3 "${FARM_DELAY_MS:-1}" <"$work/keep" >"$work/port" &
farm_pid=$!
exec 9>"$work/keep"
read -r port <"$work/port"
run=(extract www.h0.example --proxy "http://127.0.0.1:$port" --assume-online --save-interval 30 --other-sites yes)

# The undisturbed run.
"${program[@]}" --home "$(folder "$work/calm")" "${run[@]}" 2>/dev/null | tr -d '\r' | LC_ALL=C sort >"$work/expected"
[ -s "$work/expected" ] || fail "the undisturbed run found nothing"

check_files() { # the files are whole: a data file has all sections in order, every line has its end
  local data=$work/home/data/h0_example.dat report=$work/home/report/h0_example.rpt
  if [ -e "$data" ]; then
    [ "$(grep -aoE '^\[[A-JM]\]' "$data" | tr -d '\n')" = "[A][B][C][D][E][M][F][G][H][I][J]" ] || fail "sections of $data"
    [ "$(tail -c1 "$data" | od -An -c | tr -d ' ')" = '\n' ] || fail "the end of $data"
    [ "$(head -1 "$data" | cut -c1-20)" = "Brenvy Quenlar Pro, " ] || fail "header of $data"
  fi
  if [ -e "$report" ]; then
    [ "$(tail -c1 "$report" | od -An -c | tr -d ' ')" = '\n' ] || fail "the end of $report"
    ! tail -n +3 "$report" | tr -d '\r' | grep -avqE '^u[0-9]+p[0-9]+n[0-9]+@h[0-9]+\.example\.org *$' || fail "a line of $report"
  fi
  [ "$(find "$work/home/data" "$work/home/report" -type f 2>/dev/null | wc -l)" -le 8 ] || fail "temporary files pile up"
}

killed=0 finished=0
home=$(folder "$work/home")
while [ "$killed" -lt "$kills" ]; do
  "${program[@]}" --home "$home" "${run[@]}" >/dev/null 2>"$work/err" &
  pid=$!
  while kill -0 "$pid" 2>/dev/null && [ -z "$(victim "$pid")" ]; do
    read -r -t 0.01 _ <>"$work/never" 2>/dev/null || true
  done
  # A random instant within the run: the instant is what is random here, nothing waits for it to be long enough.
  read -r -t "0.$(printf '%03d' $((RANDOM % ${KILL_WITHIN_MS:-250})))" _ <>"$work/never" 2>/dev/null || true
  for one in $(victim "$pid"); do kill -9 "$one" 2>/dev/null || true; done
  status=0
  wait "$pid" 2>/dev/null || status=$?
  case "$status" in
    0) finished=$((finished + 1)) ;;
    137) killed=$((killed + 1)) ;;
    # The one before is dead, but Wine has not yet taken its lock away.
    *) { [ -n "$windows" ] && grep -q "Another Quenlar" "$work/err"; } || fail "a continued run ended with exit status $status" ;;
  esac
  check_files
  if [ "$finished" -ge 3 ]; then # start anew, so that kills hit every stage of a project
    "${program[@]}" --home "$home" report www.h0.example >/dev/null 2>&1 || fail "the report cannot be written"
    compare=1
  else
    compare=0
  fi
  if [ "$compare" -eq 1 ]; then
    tail -n +3 "$work/home/report/h0_example.rpt" | tr -d '\r ' | LC_ALL=C sort -u >"$work/found"
    cmp -s "$work/found" "$work/expected" || fail "after $killed kills: $(wc -l <"$work/found") of $(wc -l <"$work/expected") addresses"
    rm -rf "$work/home"
    finished=0
    rounds=$((${rounds:-0} + 1))
  fi
done

"${program[@]}" --home "$home" "${run[@]}" >/dev/null 2>&1 || fail "the last run ended with exit status $?"
check_files
tail -n +3 "$work/home/report/h0_example.rpt" | tr -d '\r ' | LC_ALL=C sort -u >"$work/found"
cmp -s "$work/found" "$work/expected" || fail "in the end: $(wc -l <"$work/found") of $(wc -l <"$work/expected") addresses"
echo "kill_loop: $killed kills, ${rounds:-0} projects finished in between, $(wc -l <"$work/expected") addresses, nothing lost."
