#!/usr/bin/env bash
# fuzz/run.sh SECONDS [TARGET...]: runs each fuzz target (ibs, pkg, ebd, ami, ibis11, ami_output, query) for so
# long, on the stored corpus, the example of every message and examples/. Inputs that reach something new
# gather in build/fuzz/corpus; an input that breaks a target is left in build/fuzz/findings, and the exit
# status is 1.
set -euo pipefail
source "$(dirname -- "$(readlink -f -- "${BASH_SOURCE[0]}")")/../scripts/setup.sh"
cd -- "$talibis_root"

seconds=${1:?usage: fuzz/run.sh SECONDS [TARGET...]}
shift
targets=("$@")
((${#targets[@]})) || targets=(ibs pkg ebd ami ibis11 ami_output query)

talibis_require_packages "${talibis_packages[@]}" clang-14 libclang-rt-14-dev
talibis_is_configured fuzz || cmake --fresh --preset fuzz >/dev/null
cmake --build --preset fuzz --parallel 2
build=build/fuzz

# Seeds: the examples by their kind. A query's first byte tells the kind of the file behind it.
rm -rf "$build/seeds" "$build/examples"
mkdir -p "$build/findings"
"$build/talibis" explain --write "$build/examples" >/dev/null
for target in "${targets[@]}"; do
    mkdir -p "$build/seeds/$target" "$build/corpus/$target" "fuzz/corpus/$target"
done
find "$build/examples" examples -type f -size -16k | while read -r file; do
    name=$(tr / _ <<<"$file")
    type=${file##*.}
    [[ -d $build/seeds/$type ]] && cp -- "$file" "$build/seeds/$type/$name"
    case $type in
        ibs) first='\0' ;;
        pkg) first='\1' ;;
        ebd) first='\2' ;;
        *) continue ;;
    esac
    [[ -d $build/seeds/query ]] && { printf "$first"; cat -- "$file"; } >"$build/seeds/query/$name"
done
"$build/talibis" keywords | sed -n 's/^| `\([^`]*\)`.*/"[\1]"/p' >"$build/keywords.dict"

status=0
for target in "${targets[@]}"; do
    printf '%s: ' "$target"
    log=$build/findings/$target.log
    if "$build/${target}_fuzz" -max_total_time="$seconds" -timeout=20 -rss_limit_mb=3000 -max_len=20000 \
        -dict="$build/keywords.dict" -artifact_prefix="$build/findings/$target-" -print_final_stats=1 \
        "$build/corpus/$target" "fuzz/corpus/$target" "$build/seeds/$target" >"$log" 2>&1; then
        awk '/ cov: /{cov=$0} /number_of_executed_units/{runs=$2}
             END{match(cov, /cov: [0-9]+ ft: [0-9]+ corp: [^ ]+/)
                 print runs " inputs, " substr(cov, RSTART, RLENGTH)}' "$log"
    else
        status=1
        echo "an input broke it"
        tail -n 40 -- "$log"
    fi
done
exit "$status"
