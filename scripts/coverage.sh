#!/usr/bin/env bash
# scripts/coverage.sh: which lines, branches and functions of the library the tests reach. Prints the figures
# and the functions that no test calls; the lines are told in build/coverage/lines.txt.
set -euo pipefail
source "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/setup.sh"
cd -- "$talibis_root"

talibis_require_packages "${talibis_packages[@]}" gcovr
talibis_is_configured coverage || cmake --fresh --preset coverage >/dev/null
cmake --build --preset coverage --parallel 2
find build/coverage -name '*.gcda' -delete
ctest --preset coverage --parallel 2 | tail -n 3
# A branch that only an exception takes is no branch of the source.
gcovr --root . --filter 'ibis/' --filter 'platform/' --exclude-throw-branches --exclude-unreachable-branches \
    --json build/coverage/coverage.json --txt build/coverage/lines.txt --print-summary build/coverage
python3 - build/coverage/coverage.json <<'END'
import json
import sys

called = {}
for file in json.load(open(sys.argv[1]))["files"]:
    # Of the instances of a template, which share a line, the report names one; the line counts for all.
    lines = {line["line_number"]: line["count"] for line in file["lines"]}
    for function in file.get("functions", []):
        place = (file["file"], function["lineno"])
        count, _ = called.get(place, (0, ""))
        count += function["execution_count"] + lines.get(function["lineno"], 0)
        called[place] = (count, function["name"])
missed = [(place, name) for place, (count, name) in sorted(called.items()) if count == 0]
print(f"functions: {len(called)}, of which no test calls {len(missed)}")
for (file, line), name in missed:
    print(f"  {file}:{line}: {name}")
END
