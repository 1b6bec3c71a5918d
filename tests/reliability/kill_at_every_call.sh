#!/usr/bin/env bash
# Kills a program that replaces files at each of its system calls in turn, from its first look at the program folder to its
# end. After every kill each file must be the old one or the new one, byte for byte, and the same
# command, not killed, must come to the same end as if nothing had happened and leave no temporary file behind.
# usage: tests/reliability/kill_at_every_call.sh [PROGRAM]     (default: build/linux/quenlar; needs strace)
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/../.."
program=${1:-$PWD/build/linux/quenlar}
command -v strace >/dev/null || {
  echo "kill_at_every_call: strace is not installed" >&2
  exit 2
}
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
case= call=0
fail() {
  echo "kill_at_every_call: $case, call $call: $*" >&2
  exit 1
}

page() { # FROM TO: a page with one address and one link a number
  local n
  printf '{"name":"M1http://www.h0.example","text":"<title>Page</title>'
  for n in $(seq "$1" "$2"); do printf '<p>a%s@h0.example.org</p><a href=/l%s>l</a>' "$n" "$n"; done
  printf '"}\n'
}
project() { # FROM TO: requests that open the project, read a page and save; fewer than 100 new addresses make one save
  printf '{"settings":{"SaveInterval":2}}\n{"open":"www.h0.example"}\n'
  page "$1" "$2"
  printf '{"save":true}\n'
}

# What is killed: it brings a prepared folder $home into its new state, from the old one as well as from the new one.
project_prepare() { project 1 200 | "$program" --home "$1" analyze --jsonl; }
project_arguments=(analyze --jsonl)
project 150 249 >"$work/project.input"

settings_prepare() { "$program" --home "$1" options StopNumber 100; }
settings_arguments=(options StopNumber 200)
: >"$work/settings.input"

filter_prepare() { "$program" --home "$1" filter --remove old; }
filter_arguments=(filter --remove new newer --extract newest)
: >"$work/filter.input"

report_prepare() {
  project_prepare "$1" && "$program" --home "$1" options Export 1
  mv "$1/report/h0_example.rpt" "$work/longer"
  head -n 100 "$work/longer" >"$1/report/h0_example.rpt"
}
report_arguments=(report www.h0.example)
: >"$work/report.input"

# The folder as text: every file but the lock, with a sum.
state() { (cd "$1" && find . -type f ! -name '*.lock' ! -name '*.partial' -exec sha256sum {} + | LC_ALL=C sort -k2); }
sum_of() { awk -v path="$2" '$2 == path { print $1 }' "$1"; }

# The system calls of an undisturbed command from the first one that names the folder on, each as "name n": the n-th call
# of that name since the start of the process, which is how strace counts.
calls_of() { # CASE: from its trace
  sed -n 's/^\([a-z0-9_]*\)(.*/&/p' "$work/trace" |
    awk -v home="$work/$1.home" '{ name = $0; sub(/\(.*/, "", name); n = ++count[name]; if (index($0, home)) seen++
                                   if (seen > 1) print name, n }'
}

begin_anew() { rm -rf "$home" && cp -r "$old" "$home"; }
undisturbed() { "$program" --home "$home" "${arguments[@]}" <"$input" >/dev/null 2>&1; }

check_files() { # every file is the old or the new one, and none has gone
  local path sum
  state "$home" >"$work/state"
  while read -r sum path; do
    [ "$sum" = "$(sum_of "$work/old_state" "$path")" ] || [ "$sum" = "$(sum_of "$work/new_state" "$path")" ] ||
      fail "$path is neither the old file nor the new one"
  done <"$work/state"
  while read -r sum path; do
    [ -n "$(sum_of "$work/state" "$path")" ] || fail "$path has gone"
  done <"$work/old_state"
}

kill_at_every_call() { # CASE
  case=$1 call=none
  local -n arguments=$1_arguments
  local input=$work/$1.input old=$work/$1.old home=$work/$1.home name n status killed=0 changed=0 calls=0
  rm -rf "$old" && mkdir "$old"
  "$1_prepare" "$old" >/dev/null
  begin_anew
  undisturbed || fail "the undisturbed command has failed"
  state "$old" >"$work/old_state"
  state "$home" >"$work/new_state"
  ! cmp -s "$work/old_state" "$work/new_state" || fail "the undisturbed command changes nothing"
  begin_anew
  strace -o "$work/trace" "$program" --home "$home" "${arguments[@]}" <"$input" >/dev/null 2>&1
  calls_of "$1" >"$work/calls"

  while read -r -u 5 name n; do
    call="$name $n" calls=$((calls + 1)) status=0
    begin_anew
    (strace -o /dev/null -e trace="$name" -e inject="$name:signal=KILL:when=$n" \
      "$program" --home "$home" "${arguments[@]}" <"$input" >/dev/null 2>&1; exit $?) 2>/dev/null || status=$?
    check_files
    case "$status" in
      0) cmp -s "$work/state" "$work/new_state" || fail "a command that lived comes to another end" ;;
      137) killed=$((killed + 1)) ;;
      *) fail "exit status $status" ;;
    esac
    cmp -s "$work/state" "$work/old_state" || changed=$((changed + 1))
    undisturbed || fail "the next start has failed"
    state "$home" | cmp -s - "$work/new_state" || fail "the next start comes to another end"
    [ -z "$(find "$home" -name '*.partial')" ] || fail "a temporary file stays"
  done 5<"$work/calls"
  # The number of calls that only ask the time or look for events can differ from run to run.
  [ "$killed" -ge $((calls * 9 / 10)) ] || fail "only $killed of $calls calls were reached"
  [ "$changed" -gt 0 ] && [ "$changed" -lt "$killed" ] || fail "no kill came before, or none after the replacement"
  echo "kill_at_every_call: $case: killed at $killed of $calls system calls, $changed times after a file was replaced."
}

for one in project settings filter report; do kill_at_every_call "$one"; done
