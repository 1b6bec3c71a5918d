#!/usr/bin/env bash
# The real program from outside: results, exit statuses, signals, pipes that close, a second program on one folder.
# usage: program_test.sh WORD ...        the program and what launches it
#   FARM_SERVER=PROGRAM                  the generated web (tests/reliability/farm_server.cpp), a program of this machine
set -uo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)
program=("$@")
work=$(mktemp -d)
farm_pids=()
cleanup() {
  [ ${#farm_pids[@]} -eq 0 ] || kill "${farm_pids[@]}" 2>/dev/null
  rm -rf "$work"
}
trap cleanup EXIT
unset QUENLAR_HOME http_proxy https_proxy all_proxy no_proxy HTTP_PROXY HTTPS_PROXY ALL_PROXY NO_PROXY
export XDG_CONFIG_HOME=$work/config XDG_DATA_HOME=$work/data
windows=
case "${program[*]}" in *.exe) windows=yes ;; esac

failures=0 title=
begin() { title=$*; }
fail() {
  echo "[  FAILED  ] $title: $*"
  failures=$((failures + 1))
}
expect() { # WHAT WANTED FOUND
  [ "$2" = "$3" ] || fail "$1: expected '$2', got '$3'"
}
expect_in() { # WHAT PART WHOLE
  case "$3" in *"$2"*) ;; *) fail "$1: '$2' is not in '$3'" ;; esac
}
folder() { # a path as the program takes it
  if [ -n "$windows" ]; then echo "Z:$1" | tr / '\\'; else echo "$1"; fi
}
quenlar() { "${program[@]}" "$@"; }
at() { # HOME ARGUMENTS ...
  local home
  home=$(folder "$1")
  shift
  "${program[@]}" --home "$home" "$@"
}
plain() { tr -d '\r' <"$1"; }
messages() { plain "$work/err" | grep -v '^wine.sh: '; }
sorted_lines() { tr -d '\r' | LC_ALL=C sort; }
# In the background, so that its process is the program itself; $! is where a signal goes.
at_in_background() { exec "${program[@]}" --home "$@"; }
addresses_of() { # REPORT: the address list at its top
  tail -n +3 "$1" | tr -d '\r ' | LC_ALL=C sort
}

# The settings of Windows are a part of the registry, wherever the program folder lies; an earlier run has left some.
[ -z "$windows" ] || "${program[0]}" reg delete 'HKLM\Software\Quenlar\Project' /f >/dev/null 2>&1

begin "the demonstration finds what its site holds"
at "$work/demo" demo >"$work/out" 2>"$work/err"
expect "exit status" 0 $?
expect "addresses" 16 "$(plain "$work/out" | sed '/^== quenlar suppress/,$d' | grep -c '@')"
expect "messages" 2 "$(plain "$work/err" | grep -c '^All links have been parsed !$')"
for report in garden_tools_en museum_example; do
  [ -s "$work/demo/report/$report.rpt" ] || fail "there is no report $report"
done

begin "the demonstration collects what is new, over https where an authority can be made for it"
site=https://www.library.example
[ -z "$windows" ] || site=http://www.library.example
expect "what is collected" "\"desk@library.test\",\"$site/\",\"The library\",\"mailto\"
\"letters@library.example\",\"$site/contact\",\"Contact\",\"text\"
\"loans@library.test\",\"$site/loans\",\"Loans\",\"attribute\"
\"press@library.test\",\"$site/loans\",\"Loans\",\"script\"
\"shop@library.test\",\"${site/www/shop}/\",\"Shop\",\"text\"" \
  "$(plain "$work/out" | sed -n '/^== quenlar collect/,/^== quenlar why/p' | grep '@' | LC_ALL=C sort)"
expect_in "protected and suppressed" "1 refused, 1 protected address not listed, 1 address suppressed." "$(messages)"
expect_in "why" "robots.txt forbids it (line 2: Disallow: /stacks/)" "$(plain "$work/out")"
expect "suppressed" "reader@library.test" "$(at "$work/demo" suppress | tr -d '\r')"
expect "collections" "library_example	5	4	0" "$(at "$work/demo" collections | tr -d '\r')"
[ ! -e "$work/demo/demo-authority.pem" ] || fail "the authority is left"

begin "requests of analyze are answered as the files say, whatever the environment"
for requests in "$here"/analyze/*.requests.jsonl; do
  name=$(basename "$requests" .requests.jsonl)
  at "$work/analyze-$name" analyze --jsonl <"$requests" >"$work/out" 2>"$work/err"
  expect "exit status of $name" 0 $?
  cmp -s "$work/out" "$here/analyze/$name.replies.jsonl" || fail "$name is answered otherwise"
  expect "messages of $name" "" "$(cat "$work/err")"
done
if [ -z "$windows" ]; then
  for requests in "$here"/analyze/*.requests.jsonl; do
    name=$(basename "$requests" .requests.jsonl)
    env -i LC_ALL=tr_TR.UTF-8 TZ=Asia/Tokyo "${program[@]}" --home "$work/other-$name" analyze --jsonl <"$requests" |
      cmp -s - "$here/analyze/$name.replies.jsonl" || fail "$name depends on the environment"
  done
fi

begin "wrong usage is answered with status 2"
quenlar >"$work/out" 2>"$work/err"
expect "status without a command" 2 $?
quenlar extract >"$work/out" 2>"$work/err"
expect "status without a text" 2 $?
expect_in "hint" "quenlar extract --help" "$(cat "$work/err")"
quenlar extract a --format xml >"$work/out" 2>"$work/err"
expect "status of a wrong format" 2 $?
expect "results" "" "$(cat "$work/out")"
expect "version" "quenlar 3.0" "$(quenlar --version | tr -d '\r')"
expect_in "help" "Examples:" "$(quenlar merge --help)"

if [ -e /dev/full ] && [ -z "$windows" ]; then
  begin "results that no space is left for are a failure"
  echo '{"host":"a"}' | quenlar analyze --jsonl >/dev/full 2>"$work/err"
  expect "exit status" 1 $?
  expect "message" "quenlar: no space is left for the results" "$(cat "$work/err")"
fi

begin "a merged list is written once"
mkdir -p "$work/merge"
printf 'a@x.test, b@x.test\r\nA@X.test\r\n' >"$work/merge/one.txt"
printf 'c@x.test' >"$work/merge/two.txt"
quenlar merge "$(folder "$work/merge/one.txt")" "$(folder "$work/merge/two.txt")" \
  --output "$(folder "$work/merge/all.txt")" 2>"$work/err"
expect "exit status" 0 $?
expect "addresses" "a@x.test b@x.test c@x.test" "$(tr -d '\r' <"$work/merge/all.txt" | tr -d '\n' | sed 's/ $//')"
quenlar merge "$(folder "$work/merge/one.txt")" --output "$(folder "$work/merge/all.txt")" 2>"$work/err"
expect "exit status of the second" 1 $?

mkfifo "$work/keep" "$work/port" "$work/lines"
exec 9<>"$work/keep"
start_farm() { # ADDRESSES-PER-PAGE; sets proxy
  local port
  "$FARM_SERVER" 4 6 "$1" 2 <"$work/keep" >"$work/port" &
  farm_pids+=($!)
  read -r port <"$work/port"
  proxy=http://127.0.0.1:$port
}
# The lines of a whole run over the rich web are more than a pipe holds: while nobody reads them, no run comes to its end.
start_farm 400
rich_run=(extract www.h0.example --proxy "$proxy" --assume-online)
rich_crawl=(collect http://www.h0.example/ --scope anywhere --delay 0 --proxy "$proxy" --assume-online)
start_farm 3
run=(extract www.h0.example --proxy "$proxy" --assume-online)

begin "a run through a proxy comes to its end"
at "$work/calm" "${run[@]}" --summary "$(folder "$work/summary")" >"$work/out" 2>"$work/err"
expect "exit status" 0 $?
expect "messages" "All links have been parsed !" "$(plain "$work/err")"
sorted_lines <"$work/out" >"$work/expected"
expect "addresses" 84 "$(sort -u "$work/expected" | wc -l)"
expect_in "summary" '"reason":"All links have been parsed !","addresses":84,"new":84,"scanned":28,' "$(cat "$work/summary")"
expect_in "summary" "\"DataFile\":\"$(folder "$work/calm/data/h0_example.dat" | sed 's/\\/&&/g')\"" "$(cat "$work/summary")"
addresses_of "$work/calm/report/h0_example.rpt" | cmp -s - "$work/expected" || fail "the report has other addresses"
at "$work/rich" "${rich_run[@]}" 2>/dev/null | sorted_lines >"$work/expected_rich"
expect "addresses of the rich web" 11200 "$(sort -u "$work/expected_rich" | wc -l)"

begin "a collection through a proxy comes to its end, and the same command does nothing more"
crawl=(collect http://www.h0.example/ --scope anywhere --delay 0 --proxy "$proxy" --assume-online)
at "$work/crawl" "${crawl[@]}" --summary "$(folder "$work/summary")" >"$work/out" 2>"$work/err"
expect "exit status" 0 $?
expect "addresses" 84 "$(sorted_lines <"$work/out" | uniq | wc -l)"
sorted_lines <"$work/out" | cmp -s - "$work/expected" || fail "the addresses are not those of the classic run"
expect_in "summary" '{"reason":"finished","addresses":84,"new":84,"pages":28,"failed":0,"refused":0,"left":0,' "$(cat "$work/summary")"
expect_in "messages" "--contact TEXT" "$(messages)"
at "$work/crawl" "${crawl[@]}" --summary "$(folder "$work/summary")" >"$work/out" 2>"$work/err"
expect "exit status of the second" 0 $?
expect "addresses of the second" "" "$(cat "$work/out")"
expect_in "summary of the second" '"reason":"nothing to do","addresses":84,"new":0,"pages":0,' "$(cat "$work/summary")"

begin "starts may be lines of a file that an editor of Windows has written"
printf '\357\273\277# my sites\r\n\r\n  http://www.h0.example/  \r\n' >"$work/starts"
at "$work/from" collect --from "$(folder "$work/starts")" "${crawl[@]:2}" >"$work/out" 2>"$work/err"
expect "exit status" 0 $?
sorted_lines <"$work/out" | cmp -s - "$work/expected" || fail "the addresses are others"
printf '\357\273\277http://www.h0.example/\n' | at "$work/piped" collect --from - "${crawl[@]:2}" >"$work/out" 2>"$work/err"
expect "exit status of a pipe" 0 $?
sorted_lines <"$work/out" | cmp -s - "$work/expected" || fail "the addresses out of a pipe are others"

begin "the stored language is that of searches"
at "$work/language" options Search 2 >/dev/null
at "$work/language" collect 'red cars' --assume-online 2>"$work/err"
expect "exit status without a search service" 1 $?
expect "collections" "red_cars_de	0	0	0" "$(at "$work/language" collections | tr -d '\r')"

begin "what a collection holds can be asked for"
expect "collections" "h0_example	84	28	0" "$(at "$work/crawl" collections | tr -d '\r')"
at "$work/crawl" addresses h0_example | sorted_lines | cmp -s - "$work/expected" || fail "addresses lists others"
at "$work/crawl" addresses h0_example --format html | tr -d '\r' >"$work/page.html"
expect "first line of the web page" "<!DOCTYPE html>" "$(head -1 "$work/page.html")"
expect "last line of the web page" "</html>" "$(tail -1 "$work/page.html")"
sed -nE 's/^\["([^"]*@[^"]*)",\[.*/\1/p' "$work/page.html" | sorted_lines | cmp -s - "$work/expected" ||
  fail "the web page has other addresses"
expect "addresses of a site" 21 "$(at "$work/crawl" addresses h0_example --site h2.example --format csv | wc -l)"
expect "why" "http://www.h3.example/p1.html" "$(at "$work/crawl" why h0_example http://www.h3.example/p1.html | head -1 | tr -d '\r')"
at "$work/crawl" why h0_example nobody@h0.example.org >"$work/out" 2>"$work/err"
expect "status of an address that nobody has" 1 $?
at "$work/crawl" addresses nothing 2>"$work/err"
expect "status of a collection that is not there" 1 $?
expect_in "message" "There is no collection nothing" "$(messages)"
at "$work/crawl" collect --name h0_example --links "$(folder "$work/missing")" --summary "$(folder "$work/summary")" \
  2>"$work/err"
expect "status of a run that cannot begin" 1 $?
expect_in "its summary" '"reason":"failed"' "$(cat "$work/summary")"
expect_in "its summary" '"collection":"h0_example"' "$(cat "$work/summary")"

if [ -z "$windows" ]; then
  expect "projects, to which collections do not belong" "" "$(at "$work/crawl" projects)"
  begin "lists have columns and a heading on a terminal, the last run first"
  second=$(date +%s)
  until [ "$(date +%s)" != "$second" ]; do :; done
  at "$work/crawl" collect 'red cars' --name later --assume-online 2>"$work/err"
  expect "collections" "name	addresses	pages	left
later	0	0	0
h0_example	84	28	0" "$(script -qec "${program[*]} --home '$work/crawl' collections" /dev/null | tr -d '\r')"
  rm "$work/crawl/data/later".*
fi

begin "bash completes the names of collections and settings"
offered() { # WORD ...: what may stand in the place of the last, which is empty
  (
    quenlar() { at "$work/crawl" "$@" | tr -d '\r'; }
    eval "$(quenlar describe bash)"
    COMP_WORDS=(quenlar "$@" '')
    COMP_CWORD=$(($# + 1))
    _quenlar
    echo "${COMPREPLY[*]}"
  )
}
expect "names to collect under" "h0_example" "$(offered collect --name)"
expect "names to list" "h0_example" "$(offered addresses)"
expect "projects for a contact" "" "$(offered collect --contact)"
expect_in "settings" "StopNumber" "$(offered options)"

begin "an address is erased from every file, and a suppressed one does not come back"
cp -r "$work/crawl" "$work/erased"
mkdir -p "$work/erased/report"
cp "$work/calm/report/h0_example.rpt" "$work/erased/report/"
erased=$(head -1 "$work/expected")
at "$work/erased" erase "$erased" </dev/null 2>"$work/err"
expect "exit status without a terminal" 1 $?
grep -rqiaF "$erased" "$work/erased" || fail "it is erased without a question"
at "$work/erased" erase "$erased" --yes 2>"$work/err"
expect "exit status" 0 $?
expect "message" "$erased: 1 address taken out of 1 collection and 1 file of projects." "$(messages)"
grep -rqiaF "$erased" "$work/erased" && fail "$erased still stands in $(grep -rliaF "$erased" "$work/erased")"
expect "addresses left" 83 "$(at "$work/erased" addresses h0_example | wc -l)"
at "$work/erased" erase "$erased" --suppress --yes 2>"$work/err"
expect "exit status of an address that nobody has" 0 $?
grep -qE '^sha256:[0-9a-f]{64}.?$' "$work/erased/suppressed.txt" || fail "its digest is not on the list"
domain=@$(sed -n '2s/.*@//p' "$work/expected")
at "$work/erased" suppress "$domain" 2>"$work/err"
expect "exit status of suppress" 0 $?
grep -vF "$domain" "$work/expected" | grep -vxF "$erased" >"$work/kept"
at "$work/erased" addresses h0_example | sorted_lines | cmp -s - "$work/kept" || fail "other addresses are left"
at "$work/erased" "${crawl[@]}" --again --summary "$(folder "$work/summary")" >"$work/out" 2>"$work/err"
expect "exit status of the next run" 0 $?
expect "its new addresses" "" "$(cat "$work/out")"
expect_in "its summary" '"protected":0,"suppressed":' "$(cat "$work/summary")"
at "$work/erased" addresses h0_example | sorted_lines | cmp -s - "$work/kept" || fail "a suppressed address came back"
grep -rqiaF "$erased" "$work/erased" && fail "$erased came back"
at "$work/erased" "${run[@]}" 2>"$work/err" | sorted_lines | grep -qF "$domain" && fail "the classic run lists it"
expect_in "why" "suppression list holds $domain" "$(at "$work/erased" why h0_example "x$domain" | tr -d '\r' | tail -1)"

begin "a collection goes on where it stopped"
at "$work/pieces" "${crawl[@]}" --pages 5 >"$work/out" 2>"$work/err"
expect "exit status" 0 $?
at "$work/pieces" "${crawl[@]}" --pages 9 >>"$work/out" 2>"$work/err"
at "$work/pieces" "${crawl[@]}" --summary "$(folder "$work/summary")" >>"$work/out" 2>"$work/err"
sorted_lines <"$work/out" | cmp -s - "$work/expected" || fail "the pieces are not the whole"
expect_in "summary" '"addresses":84,' "$(cat "$work/summary")"
expect_in "summary" '"pages":14,' "$(cat "$work/summary")"

begin "the settings and the list lie in the folder that is given, else in the user's own"
expect_in "list" "www.h0.example" "$(at "$work/calm" projects)"
if [ -z "$windows" ]; then
  expect "list" "www.h0.example" "$(at "$work/calm" projects)"
  expect "list of the user" "" "$(quenlar projects)"
  QUENLAR_HOME=$work/calm quenlar options Search 3
  expect "setting" 3 "$(at "$work/calm" options Search)"
  quenlar options Search 4
  [ -s "$work/config/quenlar/quenlar.conf" ] || fail "the user has no settings file"
  expect "setting of the other folder" 3 "$(at "$work/calm" options Search)"
fi

if [ -z "$windows" ]; then
  begin "settings that cannot be read or stored are a failure"
  mkdir -p "$work/unstored/quenlar.conf"
  for arguments in options projects "options Search 1" "delete a.example --yes"; do
    at "$work/unstored" $arguments >"$work/out" 2>"$work/err"
    expect "exit status of $arguments" 1 $?
    expect "results of $arguments" "" "$(cat "$work/out")"
    expect_in "message of $arguments" "$work/unstored/quenlar.conf" "$(cat "$work/err")"
  done
  at "$work/unstored" "${run[@]}" >/dev/null 2>"$work/err"
  expect "exit status of the run" 1 $?
  expect_in "message of the run" "$work/unstored/quenlar.conf" "$(cat "$work/err")"
fi

begin "the other formats hold the same addresses"
at "$work/csv" "${run[@]}" --format csv 2>/dev/null | sed 's/^"\([^"]*\)".*/\1/' | sorted_lines |
  cmp -s - "$work/expected" || fail "csv differs"
at "$work/jsonl" "${run[@]}" --format jsonl 2>/dev/null | sed 's/.*"Address":"\([^"]*\)".*/\1/' | sorted_lines |
  cmp -s - "$work/expected" || fail "jsonl differs"

begin "without --proxy the environment names the proxy"
if [ -z "$windows" ]; then  # scripts/wine.sh hands no proxy on
  http_proxy=$proxy at "$work/env" extract www.h0.example --assume-online 2>/dev/null | LC_ALL=C sort |
    cmp -s - "$work/expected" || fail "http_proxy is not used"
fi

begin "a dead proxy is no way round it"
at "$work/dead" extract www.h0.example --assume-online --proxy http://127.0.0.1:1 >"$work/out" 2>"$work/err"
expect "exit status" 0 $?
expect "addresses" "" "$(cat "$work/out")"

expect_nothing_lost_of_the_rich_web() {
  at "$work/stop" "${rich_run[@]}" >/dev/null 2>&1
  expect "exit status of the last run" 0 $?
  addresses_of "$work/stop/report/h0_example.rpt" | cmp -s - "$work/expected_rich" || fail "addresses are lost"
}

# Starts a run, reads some of its lines, sends the signals, reads the rest.
stopped_run() { # LINES SIGNALS RUN ...
  local lines=$1 signals=$2 pid signal line count=0
  shift 2
  at_in_background "$work/stop" "$@" >"$work/lines" 2>"$work/err" &
  pid=$!
  exec 8<"$work/lines"
  while [ "$count" -lt "$lines" ] && read -r line <&8; do count=$((count + 1)); done
  for signal in $signals; do kill "-$signal" "$pid" 2>/dev/null; done
  cat <&8 >/dev/null
  exec 8<&-
  wait "$pid"
}

if [ -z "$windows" ]; then  # Windows knows no signals
  begin "a stopped run is continued without loss"
  for lines in 0 1 2 3 5 8 13 21 34 55 70 80 83; do
    signal=$([ $((lines % 2)) -eq 0 ] && echo INT || echo TERM)
    rm -rf "$work/stop"
    mkdir -p "$work/stop"
    stopped_run "$lines" "$signal" "${run[@]}"
    status=$?
    case $status in
      # A signal may come before the program has begun, or when all is done.
      130) [ "$lines" -eq 0 ] || expect "message after $lines" "You press the stop button !" "$(cat "$work/err")" ;;
      0) ;;
      *) fail "exit status $status after $lines lines" ;;
    esac
    at "$work/stop" "${run[@]}" >/dev/null 2>"$work/err"
    expect "exit status of the second run" 0 $?
    addresses_of "$work/stop/report/h0_example.rpt" | cmp -s - "$work/expected" ||
      fail "$signal after $lines lines: $(addresses_of "$work/stop/report/h0_example.rpt" | wc -l) addresses"
  done

  begin "a hang-up and two signals in a row end in order too"
  for signals in HUP "INT INT"; do
    rm -rf "$work/stop"
    stopped_run 4 "$signals" "${rich_run[@]}"
    expect "exit status of $signals" 130 $?
    expect_nothing_lost_of_the_rich_web
  done
fi

if [ -z "$windows" ]; then
  begin "a collection that is stopped says so and goes on where it stopped"
  for signal in INT TERM HUP; do
    rm -rf "$work/stop"
    stopped_run 5 "$signal" "${rich_crawl[@]}" >"$work/out"
    expect "exit status of $signal" 130 $?
    expect_in "message of $signal" "Stopped. The same command goes on." "$(messages)"
    at "$work/stop" "${rich_crawl[@]}" >/dev/null 2>"$work/err"
    expect "exit status of the second run" 0 $?
    at "$work/stop" addresses h0_example | sorted_lines | cmp -s - "$work/expected_rich" ||
      fail "$signal: $(at "$work/stop" addresses h0_example | wc -l) addresses"
  done
fi

begin "a reader that goes away ends the run quietly, with everything saved"
rm -rf "$work/stop"
at "$work/stop" "${rich_run[@]}" 2>"$work/err" | head -2 >/dev/null
expect "exit status" 130 "${PIPESTATUS[0]}"
expect "messages" "" "$(messages)"
expect_nothing_lost_of_the_rich_web
yes '{"host":"a"}' | at "$work/analyze" analyze --jsonl 2>"$work/err" | head -1 >/dev/null
expect "exit status of analyze" 0 "${PIPESTATUS[1]}"
expect "messages of analyze" "" "$(messages)"
if [ -z "$windows" ]; then
  at "$work/analyze" analyze --jsonl <&- >"$work/out" 2>"$work/err"
  expect "exit status without an input" 0 $?
  rm -rf "$work/stop"
  at "$work/stop" "${rich_run[@]}" >&- 2>"$work/err"
  expect "exit status without an output" 130 $?
  expect_nothing_lost_of_the_rich_web
fi

begin "a second program on the same folder is refused"
# A session of analyze holds its folder from the first project it opened until its input ends.
mkdir -p "$work/held"
mkfifo "$work/requests" "$work/replies"
at "$work/held" analyze --jsonl <"$work/requests" >"$work/replies" 2>/dev/null &
pid=$!
exec 7>"$work/requests" 8<"$work/replies"
echo '{"open": "red roses"}' >&7
read -r line <&8
at "$work/held" "${run[@]}" >"$work/out" 2>"$work/err" 7>&- 8<&-
expect "exit status" 1 $?
expect "message" "Another Quenlar is at work in $(folder "$work/held") !" "$(messages)"
at "$work/held" options Search 1 2>/dev/null 7>&- 8<&-
expect "exit status of options" 1 $?
echo "someone@firma.de" >"$work/page.txt"
refused() { # COMMAND ...
  at "$work/held" "$@" >"$work/out" 2>"$work/err" 7>&- 8<&-
  expect "exit status of $1" 1 $?
  expect "results of $1" "" "$(cat "$work/out")"
  expect "message of $1" "Another Quenlar is at work in $(folder "$work/held") !" "$(messages)"
  [ ! -e "$work/held/data/h0_example.sqlite" ] || fail "$1 has made a collection"
}
refused "${crawl[@]}"
refused harvest --name h0_example "$(folder "$work/page.txt")"
exec 7>&- 8<&-
wait "$pid"
expect "exit status of the first" 0 $?
at "$work/held" options Search 1
expect "exit status once the first is gone" 0 $?

begin "a line without end takes bounded memory"
if [ -z "${QUENLAR_SANITIZED:-}$windows" ]; then  # neither bears a limit on its address space
  { head -c 1000000000 /dev/zero | tr '\0' x && printf '\n{"host":"a"}\n'; } |
    (ulimit -v 700000 && at "$work/analyze" analyze --jsonl) >"$work/out" 2>"$work/err"
  expect "exit status" 0 $?
  expect "answers" '{"error":"a line holds at most 134217728 bytes"} {"host":"http://a"}' "$(paste -sd' ' "$work/out")"
fi

[ "$failures" -eq 0 ] || exit 1
echo "[  PASSED  ] the program from outside"
