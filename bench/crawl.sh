#!/usr/bin/env bash
# A crawl of 2,001 small pages of one host on loopback (nginx), by Quenlar and by other clients, in turns; then the same
# with 20 ms added to each answer. All go through the same nginx, addressed as a proxy. usage: bench/crawl.sh ROUNDS
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
rounds=${1:-5}
quenlar=${QUENLAR:-$PWD/build/bench/quenlar}
work=$(mktemp -d)
nginx_pid=
delay_pid=
cleanup() {
  [ -z "$nginx_pid" ] || kill "$nginx_pid" 2>/dev/null || true
  [ -z "$delay_pid" ] || kill "$delay_pid" 2>/dev/null || true
  rm -rf "$work"
}
trap cleanup EXIT

free_port() { # a port that nobody listens on
  local port
  while :; do
    port=$((20000 + RANDOM % 20000))
    (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null || { echo "$port"; return; }
  done
}

pages=2000
site=$work/site
mkdir -p "$site" "$work/logs"
{
  echo "<html><head><title>Start</title></head><body>"
  for i in $(seq $pages); do echo "<a href=\"page$i.html\">page $i</a>"; done
  echo "</body></html>"
} >"$site/index.html"
for i in $(seq $pages); do
  {
    echo "<html><head><title>Page $i</title></head><body><h1>Page $i</h1>"
    for k in 1 2 3 4 5 6 7 8; do
      echo "<p>Some words of a page that is about nothing, number $i and $k. <a href=\"page$(((i * 7 + k) % pages + 1)).html\">next</a></p>"
    done
    echo "Write to person$i@mail.example.org</body></html>"
  } >"$site/page$i.html"
done

port=$(free_port)
cat >"$work/nginx.conf" <<CONF
worker_processes 1;
daemon off;
pid $work/nginx.pid;
error_log $work/logs/error.log;
events { worker_connections 512; }
http {
  access_log off;
  keepalive_requests 1000000;
  types { text/html html; }
  client_body_temp_path $work/t1; proxy_temp_path $work/t2; fastcgi_temp_path $work/t3; uwsgi_temp_path $work/t4; scgi_temp_path $work/t5;
  server { listen 127.0.0.1:$port; root $site; }
}
CONF
nginx -c "$work/nginx.conf" -p "$work" &
nginx_pid=$!
until (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; do :; done

# measure NAME COMMAND...: pages a second, processor seconds per 1,000 pages, memory MB
measure() {
  local name=$1
  shift
  rm -rf "$work/run"
  mkdir -p "$work/run"
  (cd "$work/run" && /usr/bin/time -f '%e %U %S %M' -o "$work/time" "$@" >/dev/null 2>&1) || true
  awk -v name="$name" -v pages=$((pages + 1)) '{ printf "%s\t%.0f\t%.4f\t%.1f\n", name, pages / $1, ($2 + $3) * 1000 / pages, $4 / 1024 }' \
    "$work/time" >>"$work/results"
}
urls=$work/urls
{ for i in $(seq $pages); do echo "url = \"http://www.bench.example/page$i.html\""; echo 'output = "/dev/null"'; done; } >"$urls"

all_clients() { # PROXY
  local proxy=http://127.0.0.1:$1
  measure "quenlar (1 + 2 connections)" "$quenlar" --home "$work/run" extract www.bench.example/index.html --proxy "$proxy" --assume-online
  measure "wget -r" env http_proxy="$proxy" wget -q -r -l 2 http://www.bench.example/index.html
  measure "wget2 -r, 3 threads" env http_proxy="$proxy" wget2 -q -r -l 2 --max-threads=3 http://www.bench.example/index.html
  measure "curl with a list, 3 at a time" curl -s -Z --parallel-max 3 -x "$proxy" -K "$urls"
}

report() { # TITLE
  printf '\n### %s\n\n| client | pages/s (median) | processor s per 1,000 pages | memory MB |\n|---|---|---|---|\n' "$1"
  cut -f1 "$work/results" | awk '!seen[$0]++' | while read -r name; do
    awk -F'\t' -v n="$name" '$1 == n' "$work/results" >"$work/one"
    median() { cut -f"$1" "$work/one" | sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'; }
    echo "| $name | $(median 2) | $(median 3) | $(median 4) |"
  done
}

printf '\n## Crawl\n\n%s pages of one host, %s rounds in turns.\n' $((pages + 1)) "$rounds"
: >"$work/results"
for _ in $(seq "$rounds"); do all_clients "$port"; done
report "Loopback, no delay"

slow_port=$(free_port)
build/bench/delay_proxy "$slow_port" "$port" 20 &
delay_pid=$!
until (exec 3<>"/dev/tcp/127.0.0.1/$slow_port") 2>/dev/null; do :; done
: >"$work/results"
all_clients "$slow_port"
report "20 ms added to each answer"
printf '\nTwo connections at 20 ms an answer are 100 pages a second at most.\n'
