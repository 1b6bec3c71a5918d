#!/usr/bin/env bash
# The real program collects from a server that misbehaves in every way it knows (tests/server): each run comes to its
# end, counts what happened, lists nothing that was not whole, and goes nowhere it must not.
# usage: scripts/with_server.sh hostile_server tests/cli/hostile_collect.sh PROGRAM ...
set -uo pipefail
program=("$@")
server=http://$QUENLAR_TEST_SERVER
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
unset QUENLAR_HOME http_proxy https_proxy all_proxy no_proxy HTTP_PROXY HTTPS_PROXY ALL_PROXY NO_PROXY SSL_CERT_FILE
export XDG_CONFIG_HOME=$work/config

failures=0
fail() {
  echo "[  FAILED  ] $*"
  failures=$((failures + 1))
}
ask() { # PATH: what the server answers
  local line body=
  exec 7<>"/dev/tcp/${QUENLAR_TEST_SERVER/://}"
  printf 'GET %s HTTP/1.1\r\nHost: x\r\nConnection: close\r\n\r\n' "$1" >&7
  while read -r line <&7 && [ "${line%$'\r'}" != "" ]; do
    case ${line,,} in content-length:*) body=${line##*: } ;; esac
  done
  head -c "${body%$'\r'}" <&7
  exec 7<&-
}
collect() { # NAME ARGUMENTS ...: one run; its exit status, addresses, messages and summary lie in $work/NAME
  local name=$1 status=0
  shift
  mkdir -p "$work/$name"
  "${program[@]}" --home "$work/$name/home" collect "$@" --delay 0 --assume-online --summary "$work/$name/summary" \
    >"$work/$name/out" 2>"$work/$name/err" || status=$?
  echo "$status" >"$work/$name/status"
}
value() { sed -E "s/.*\"$2\":\"?([^\",}]*).*/\1/" "$work/$1/summary"; } # NAME MEMBER
expect() {                                                              # NAME STATUS REASON [MEMBER NUMBER ...]
  local name=$1 status=$2 reason=$3
  shift 3
  [ "$(cat "$work/$name/status")" = "$status" ] || fail "$name: exit status $(cat "$work/$name/status"), not $status"
  [ "$(value "$name" reason)" = "$reason" ] || fail "$name: $(value "$name" reason), not $reason"
  while [ $# -gt 0 ]; do
    [ "$(value "$name" "$1")" = "$2" ] || fail "$name: $1 is $(value "$name" "$1"), not $2"
    shift 2
  done
}
expect_message() { grep -qF -- "$2" "$work/$1/err" || fail "$1: no message has '$2': $(cat "$work/$1/err")"; } # NAME TEXT

pages() { # PAGES FAILED PATH ...: what becomes of a start at each of the paths
  local pages=$1 failed=$2 path name
  shift 2
  for path in "$@"; do
    name=path${path//[^a-z0-9]/-}
    collect "$name" "$server$path"
    expect "$name" 0 finished pages "$pages" failed "$failed" left 0
    [ "$failed" = 0 ] || [ ! -s "$work/$name/out" ] || fail "$name: half a page was listed"
  done
}

# Whole pages, however they come.
pages 1 0 /page /chunks/right /chunks/trailers /chunks/one-byte /gzip/right /gzip/two-members /deflate/raw /until-close \
  /identity /interim /closed-after /closed-on-next /redirect/301 /redirect/relative '/redirect/hops?n=5' \
  /redirect/utf8 /redirect/latin1 /redirect/blanks /redirect/tab
# What is cut at the limit is analysed as far as it goes.
pages 1 0 /endless /two-gigabytes /chunks/endless /gzip/bomb
# What is torn, lies or speaks another language.
pages 0 1 /length/negative /length/huge /length/wrapping /length/two-different /short /reset /chunks/bad-size \
  /chunks/overflow /chunks/no-last /chunks/cut /gzip/cut /gzip/corrupt /gzip/no-gzip /nested/two-lines /unasked/brotli \
  /gzip/empty-members /start/garbage /start/http09 /start/other-protocol /start/nothing /start/cut-in-head \
  /header/line-of-a-megabyte /header/endless /header/endless-line /interim/endless
# Statuses, with and without a body; nobody is asked for a password.
pages 0 1 '/status?code=404' '/status?code=500' /401 /401/no-challenge
# Redirects to nowhere, in circles, and to what is not the web.
pages 0 1 /redirect/loop /redirect/ping '/redirect/hops?n=6' '/redirect/hops?n=1000' /redirect/no-location /redirect/file \
  /redirect/javascript /redirect/data /redirect/ftp /redirect/megabyte

[ "$(cat "$work/path-gzip-right/out")" = someone@mail.example.org ] || fail "an address of a packed page is missing"

# A server that says nothing, or too little too slowly, cannot hold up the run beyond its time.
for path in /never '/trickle?ms=50' '/trickle-head?ms=50'; do
  name=slow${path//[^a-z]/-}
  collect "$name" "$server$path" --minutes 0.02
  expect "$name" 0 minutes pages 0 left 1
done

# Another host goes on meanwhile. The server takes itself for a proxy, so that there are as many hosts as names.
through_it=(--proxy "$server")
collect stuck http://stuck.example/never http://good.example/gzip/right --addresses 1 --minutes 2 "${through_it[@]}"
expect stuck 0 addresses pages 1 left 1
[ "$(cat "$work/stuck/out")" = someone@mail.example.org ] || fail "a stuck host holds up another one"

# Hosts that are not there.
closed=$(ask /closed-port)
collect dead "http://127.0.0.1:$closed/" http://no-such-host.invalid/
expect dead 1 failed pages 0 left 2
expect_message dead "http://127.0.0.1:$closed/: "
expect_message dead "http://no-such-host.invalid/: "
collect beside_dead "http://127.0.0.1:$closed/" "$server/gzip/right"
expect beside_dead 0 finished pages 1 left 1
expect_message beside_dead "left on http://127.0.0.1:$closed: "

# A dead proxy, or one that refuses, is not gone around.
collect dead_proxy "$server/hit-and-close?dead-proxy" --proxy "http://127.0.0.1:$closed"
expect dead_proxy 1 failed pages 0
collect closed_proxy http://any.example/407 "${through_it[@]}"
expect closed_proxy 0 finished pages 0 failed 1
[ "$(ask '/hits?dead-proxy')" = 0 ] || fail "a dead proxy was gone around"

# Where a proxy says that nothing answers by https, http is tried, as for a host that cannot be reached.
collect gateway 504.example/gzip/right "${through_it[@]}"
expect gateway 0 finished pages 1 failed 0 left 0

# A site is named in its own letters as well as in those of the domain name system.
collect letters http://www.bücher.example/gzip/right --name letters "${through_it[@]}"
expect letters 0 finished pages 1
for site in bücher.example BÜCHER.example xn--bcher-kva.example; do
  listed=$("${program[@]}" --home "$work/letters/home" addresses letters --site "$site")
  [ "$listed" = someone@mail.example.org ] || fail "the addresses of $site are '$listed'"
done

# A public page never leads to this machine.
collect private "http://public.example/redirect/to?$server/hit-and-close?private" "${through_it[@]}"
expect private 0 finished pages 0 refused 1 left 0
[ "$(ask '/hits?private')" = 0 ] || fail "a public page has led to this machine"

# Certificates are checked, against an authority that the person names.
ask /tls/authority >"$work/authority.pem"
export SSL_CERT_FILE=$work/authority.pem
collect certified "https://localhost:$(ask /tls/right)/page"
expect certified 0 finished pages 1 failed 0
for which in stranger expired not-yet wrong-name self-signed forged keyless keyless-tls12; do
  collect "$which" "https://localhost:$(ask "/tls/$which")/page" "localhost.:$(ask "/tls/$which")"
  expect "$which" 1 failed pages 0
  expect_message "$which" certificate
done
unset SSL_CERT_FILE

# A search service that is none.
for service in /page /status?code=403 /never-there/407; do
  name=search${service//[^a-z0-9]/-}
  collect "$name" "red cars" --search "$server$service"
  expect "$name" 1 failed pages 0
  expect_message "$name" "the search service at "
done

if [ "$failures" -gt 0 ]; then
  echo "$failures failures"
  exit 1
fi
echo "[  PASSED  ] a collection from a hostile server"
