#!/usr/bin/env bash
# A crawl of 2,001 small pages of one host on loopback (nginx), by Quenlar and by other clients, in turns; then the same
# with 20 ms added to each answer. All go through the same nginx, addressed as a proxy. usage: bench/crawl.sh ROUNDS
set -euo pipefail
cd "$(dirname "${BASH_SOURCE[0]}")/.."
rounds=${1:-5}
quenlar=${QUENLAR:-$PWD/build/bench/quenlar}
work=$(mktemp -d)
chmod 755 "$work"  # started by root, nginx works as somebody else
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
mkdir -p "$work/logs"
make_pages() { # FOLDER own|shared: an address of its own on every page, or the same one on all
  local folder=$1 address=webmaster
  mkdir -p "$folder"
  {
    echo "<html><head><title>Start</title></head><body>"
    for i in $(seq $pages); do echo "<a href=\"page$i.html\">page $i</a>"; done
    echo "</body></html>"
  } >"$folder/index.html"
  for i in $(seq $pages); do
    [ "$2" = shared ] || address=person$i
    {
      echo "<html><head><title>Page $i</title></head><body><h1>Page $i</h1>"
      for k in 1 2 3 4 5 6 7 8; do
        echo "<p>Some words of a page that is about nothing, number $i and $k. <a href=\"page$(((i * 7 + k) % pages + 1)).html\">next</a></p>"
      done
      echo "Write to $address@mail.example.org</body></html>"
    } >"$folder/page$i.html"
  done
}
make_pages "$site" shared
make_pages "$site/people" own

port=$(free_port)
cat >"$work/nginx.conf" <<CONF
worker_processes 1;
daemon off;
pid $work/nginx.pid;
error_log $work/logs/error.log;
events { worker_connections 512; }
http {
  access_log $work/logs/access.log;
  keepalive_requests 1000000;
  types { text/html html; }
  client_body_temp_path $work/t1; proxy_temp_path $work/t2; fastcgi_temp_path $work/t3; uwsgi_temp_path $work/t4; scgi_temp_path $work/t5;
  server { listen 127.0.0.1:$port; root $site; }
}
CONF
nginx -c "$work/nginx.conf" -p "$work" &
nginx_pid=$!
until (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null; do :; done

# measure NAME COMMAND...: pages that the server has answered, pages a second, processor seconds per 1,000 pages, memory MB
measure() {
  local name=$1
  shift
  rm -rf "$work/run"
  mkdir -p "$work/run"
  : >"$work/logs/access.log"
  (cd "$work/run" && /usr/bin/time -f '%e %U %S %M' -o "$work/time" "$@" >/dev/null 2>&1) || true
  local answered
  answered=$(awk '$9 == 200' "$work/logs/access.log" | wc -l)
  tail -n 1 "$work/time" | awk -v name="$name" -v n="$answered" \
    '{ n = n ? n : 1; t = $1 > 0 ? $1 : 0.01; printf "%s\t%d\t%.0f\t%.4f\t%.1f\n", name, n, n / t, ($2 + $3) * 1000 / n, $4 / 1024 }' \
    >>"$work/results"
}
urls=$work/urls
{ for i in $(seq $pages); do echo "url = \"http://www.bench.example/page$i.html\""; echo 'output = "/dev/null"'; done; } >"$urls"

quenlar_crawls() { # PROXY-PORT [FOLDER/]
  measure "quenlar (1 + 2 connections)" "$quenlar" --home "$work/run" extract "www.bench.example/${2:-}index.html" \
    --proxy "http://127.0.0.1:$1" --assume-online
}
wget2_crawls() { # PROXY-PORT [FOLDER/]
  measure "wget2 -r, 3 threads" env http_proxy="http://127.0.0.1:$1" wget2 -q -r -l 2 --max-threads=3 "http://www.bench.example/${2:-}index.html"
}
others_crawl() { # PROXY-PORT
  measure "wget -r" env http_proxy="http://127.0.0.1:$1" wget -q -r -l 2 http://www.bench.example/index.html
  measure "curl with a list, 3 at a time" curl -s -Z --parallel-max 3 -x "http://127.0.0.1:$1" -K "$urls"
}

value() { # NAME COLUMN: the median of the rounds
  awk -F'\t' -v n="$1" '$1 == n' "$work/results" | cut -f"$2" | sort -g | awk '{ v[NR] = $1 } END { print v[int((NR + 1) / 2)] }'
}
report() { # TITLE
  printf '\n### %s\n\n| client | pages | pages/s (median) | processor s per 1,000 pages | memory MB |\n|---|---|---|---|---|\n' "$1"
  cut -f1 "$work/results" | awk '!seen[$0]++' | while read -r name; do
    echo "| $name | $(value "$name" 2) | $(value "$name" 3) | $(value "$name" 4) | $(value "$name" 5) |"
  done
}
us="quenlar (1 + 2 connections)"
them="wget2 -r, 3 threads"
ratio() { awk -v a="$1" -v b="$2" 'BEGIN { printf "%.3f", a / b }'; }

printf '\n## Crawl\n\n%s pages of one host, %s rounds in turns.\n' $((pages + 1)) "$rounds"
: >"$work/results"
for _ in $(seq "$rounds"); do
  quenlar_crawls "$port"
  wget2_crawls "$port"
  others_crawl "$port"
done
report "Loopback, no delay"
bench/goal.sh "crawl: processor time a page, times wget2's" at-most 0.5 "$(ratio "$(value "$us" 4)" "$(value "$them" 4)")"
bench/goal.sh "crawl: pages a second, times wget2's at 3 connections" at-least 2 "$(ratio "$(value "$us" 3)" "$(value "$them" 3)")"
bench/goal.sh "crawl: memory, times wget2's" at-most 2 "$(ratio "$(value "$us" 5)" "$(value "$them" 5)")"

: >"$work/results"
for _ in $(seq "$rounds"); do
  quenlar_crawls "$port" people/
  wget2_crawls "$port" people/
done
report "Loopback, no delay, an address of its own on every page"
printf '\nHere the program saves its project every 30 addresses, flushed to the disk each time (fsync): the disk decides.\n'

# Here the number of connections decides, so few rounds do.
slow_port=$(free_port)
build/bench/delay_proxy "$slow_port" "$port" 20 &
delay_pid=$!
until (exec 3<>"/dev/tcp/127.0.0.1/$slow_port") 2>/dev/null; do :; done
: >"$work/results"
for _ in $(seq $((rounds > 2 ? 2 : rounds))); do
  quenlar_crawls "$slow_port"
  wget2_crawls "$slow_port"
done
report "20 ms added to each answer"
bench/goal.sh "crawl: pages a second at 20 ms an answer, share of two connections' 100" at-least 0.97 "$(ratio "$(value "$us" 3)" 100)"
