#!/usr/bin/env bash
# Writes how a measured value stands to its goal, as the benchmark programs do.
# usage: bench/goal.sh NAME at-least|at-most WANTED MEASURED
set -euo pipefail
awk -v name="$1" -v way="${2/-/ }" -v wanted="$3" -v measured="$4" 'BEGIN {
  met = way == "at least" ? measured >= wanted : measured <= wanted
  printf "\nGoal: %s (%s %.2f). Measured: %.2f, %s.\n", name, way, wanted, measured, met ? "met" : "**not met**" }'
