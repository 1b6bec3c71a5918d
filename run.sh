#!/usr/bin/env bash
# Installs what is missing, builds, and runs Quenlar.
#   ./run.sh                    a demonstration: a small web site on this machine and a complete run over it
#   ./run.sh window             the Windows program (under Wine; on a virtual screen where there is none)
#   ./run.sh COMMAND ...        any command of the command line, such as: ./run.sh extract www.example.org
set -euo pipefail
here=$(cd "$(dirname "${BASH_SOURCE[0]}")" && pwd)

if [ "${1:-}" = window ]; then
  shift
  exec "$here/scripts/window.sh" "$@"
fi

"$here/scripts/install.sh" run
"$here/scripts/build.sh" linux quenlar
[ $# -gt 0 ] || set -- demo
exec "$here/build/linux/quenlar" "$@"
