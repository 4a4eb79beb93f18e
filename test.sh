#!/usr/bin/env bash
# ./test.sh [ARGUMENT...] builds everything and runs the tests; arguments go to ctest, such as -R NAME.
set -euo pipefail
source "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/scripts/setup.sh"

talibis_build release all

talibis_make_locale

cd -- "$talibis_root"
exec ctest --preset release --parallel "$(nproc)" "$@"
