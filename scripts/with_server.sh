#!/usr/bin/env bash
# Runs a command beside the misbehaving web server, whose address it finds in QUENLAR_TEST_SERVER (127.0.0.1:PORT).
# usage: scripts/with_server.sh SERVER COMMAND [ARGUMENTS ...]
set -euo pipefail
server=${1:?usage: scripts/with_server.sh SERVER COMMAND [ARGUMENTS ...]}
shift
exec 3< <(exec "$server")
server_pid=$!
trap 'kill "$server_pid" 2>/dev/null || true' EXIT
read -r QUENLAR_TEST_SERVER <&3
export QUENLAR_TEST_SERVER
"$@"
