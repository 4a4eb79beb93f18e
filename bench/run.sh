#!/usr/bin/env bash
# bench/run.sh [PAIRS] compares `talibis check` with the floor, a program that only splits the lines of a file and
# converts their numbers: on files of 1, 10 and 100 MB, pinned to one core, as the median of PAIRS ratios (11).
# Goals: at most 2.5 times the user time of the floor at every size, at most 10.5 times the time for ten times the
# file, a peak of at most 4 times the file, and a file of 10 kB in less than 5 ms from start to end.
set -euo pipefail
source "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/../scripts/setup.sh"

for target in talibis_cli talibis_generate talibis_limit talibis_compare; do
    talibis_build release "$target"
done

bin="$talibis_root/build/release"
pairs="${1:-11}"
core="$(($(nproc --all) - 1))"
folder="$(mktemp -d)"
trap 'rm -rf -- "$folder"' EXIT

echo "load of the machine: $(cut -d' ' -f1-3 /proc/loadavg), $(nproc) cores"
printf '%-10s %10s %10s %8s %10s %8s\n' file "floor ms" "check ms" ratio "start-end" "peak"
for file in 10k.ibs 1M.ibs 10M.ibs 100M.ibs 10M.pkg 10M.ami; do
    "$bin/talibis_generate" "$folder/$file" "${file%.*}"
    bytes="$(stat -c %s "$folder/$file")"
    printf '%-10s ' "$file"
    taskset -c "$core" "$bin/talibis_compare" "$pairs" "$bytes" "$bin/talibis_limit" "$folder/$file" -- \
        "$bin/talibis" check "$folder/$file"
done
