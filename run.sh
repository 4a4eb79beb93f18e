#!/usr/bin/env bash
# ./run.sh [ARGUMENT...] runs the talibis command line in the caller's directory, with everything installed
# and built that it needs. Without arguments it checks the files of examples/.
set -euo pipefail
source "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/scripts/setup.sh"

talibis_build release talibis_cli

if (($# == 0)); then
    cd -- "$talibis_root"
    set -- check examples
fi
exec "$talibis_root/build/release/talibis" "$@"
