#!/usr/bin/env bash
# Builds every libFuzzer target under fuzz/*/ into build-fuzz (clang, with
# -DLXR_FUZZ=ON) and runs each one for a number of seconds over its corpus.
#
#   fuzz/run.sh [seconds] [target...]     seconds defaults to 60
#   fuzz/run.sh --campaign minutes [target...]
#
# A target is found by its seed corpus: fuzz/<dir>/corpus/<target>/ names the
# executable <target> that fuzz/CMakeLists.txt builds. Inputs in
# fuzz/<dir>/regressions/<target>/ are replayed first, once each. New corpus
# entries go to build-fuzz/corpus/<target>/ (the seeds in the tree are never
# written); crashes go to build-fuzz/artifacts/<target>/. Copy a crash input
# into the regressions folder once it is fixed.
#
# The first form is the short run CI makes: one target after the other, in
# the foreground. --campaign is the long one: every target for `minutes`,
# LXR_FUZZ_PARALLEL (default 2) of them at a time, at the lowest priority
# (nice 19) so that the machine stays usable. Each target's output goes to
# build-fuzz/campaign/<target>.log; at the end a table gives, per target, the
# executions, the corpus size and the crash inputs found. An input counts as
# hanging after LXR_FUZZ_TIMEOUT seconds (10 in the short run; 60 in a
# campaign, whose lowest priority lets a busy machine stall a run for a while).
# Start it in the background, e.g.
#
#   nohup fuzz/run.sh --campaign 30 > build-fuzz/campaign.log 2>&1 &
#
# Environment: LXR_FUZZ_BUILD (build directory, default <repo>/build-fuzz),
# LXR_FUZZ_JOBS (ninja -j, default 2). Exit status 1 when any target failed.
set -u -o pipefail

campaign=0
timeout=${LXR_FUZZ_TIMEOUT:-10}
if [ "${1:-}" = "--campaign" ]; then
    campaign=1
    timeout=${LXR_FUZZ_TIMEOUT:-60}
    shift
    seconds=$((${1:?fuzz/run.sh: --campaign needs the minutes per target} * 60))
else
    seconds=${1:-60}
fi
shift || true
root=$(cd "$(dirname "$0")/.." && pwd)
build=${LXR_FUZZ_BUILD:-$root/build-fuzz}
jobs=${LXR_FUZZ_JOBS:-2}

declare -a names=() dirs=()
for corpus in "$root"/fuzz/*/corpus/*/; do
    [ -d "$corpus" ] || continue
    name=$(basename "$corpus")
    dir=$(dirname "$(dirname "$corpus")")
    if [ $# -gt 0 ]; then
        case " $* " in *" $name "*) ;; *) continue ;; esac
    fi
    names+=("$name")
    dirs+=("$dir")
done
if [ ${#names[@]} -eq 0 ]; then
    echo "fuzz/run.sh: no fuzz targets found" >&2
    exit 1
fi

mkdir -p "$build"
cmake -S "$root" -B "$build" -G Ninja -DCMAKE_BUILD_TYPE=RelWithDebInfo \
    -DCMAKE_C_COMPILER=clang -DCMAKE_CXX_COMPILER=clang++ \
    -DLXR_FUZZ=ON -DLXR_BENCH=OFF >"$build/configure.log" 2>&1 || {
    cat "$build/configure.log" >&2
    echo "fuzz/run.sh: configure failed" >&2
    exit 1
}
ninja -C "$build" -j "$jobs" "${names[@]}" || {
    echo "fuzz/run.sh: build failed" >&2
    exit 1
}

# Replays the target's regression inputs, then fuzzes it for $seconds.
# Arguments: target name, its fuzz/<dir>. Fails when anything crashed.
fuzz_one() {
    local name=$1 dir=$2 binary artifacts work regressions
    binary=$(find "$build" -type f -name "$name" -perm -u+x | head -n 1)
    if [ -z "$binary" ]; then
        echo "fuzz/run.sh: $name was not built" >&2
        return 1
    fi
    artifacts="$build/artifacts/$name"
    work="$build/corpus/$name"
    mkdir -p "$artifacts" "$work"

    regressions="$dir/regressions/$name"
    if [ -d "$regressions" ] && [ -n "$(ls -A "$regressions")" ]; then
        echo "== $name: replaying $(ls -A "$regressions" | wc -l) regression input(s)"
        "$binary" -artifact_prefix="$artifacts/" "$regressions"/* || return 1
    fi

    echo "== $name: fuzzing for $seconds s"
    "$binary" -max_total_time="$seconds" -timeout="$timeout" -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$artifacts/" "$work" "$dir/corpus/$name"
}

failed=()
if [ $campaign -eq 1 ]; then
    parallel=${LXR_FUZZ_PARALLEL:-2}
    logs="$build/campaign"
    mkdir -p "$logs"
    declare -A pids=()
    for i in "${!names[@]}"; do
        while [ "$(jobs -rp | wc -l)" -ge "$parallel" ]; do wait -n || true; done
        echo "== $(date -u +%H:%M:%S) ${names[$i]}: started, log in $logs/${names[$i]}.log"
        nice -n 19 bash -c "$(declare -f fuzz_one); build='$build' seconds=$seconds timeout=$timeout \
            fuzz_one '${names[$i]}' '${dirs[$i]}'" >"$logs/${names[$i]}.log" 2>&1 &
        pids[${names[$i]}]=$!
    done
    for name in "${names[@]}"; do
        wait "${pids[$name]}" || failed+=("$name")
    done
    printf '%-28s %12s %8s %8s\n' target executions corpus crashes
    for name in "${names[@]}"; do
        runs=$(grep -o 'stat::number_of_executed_units: [0-9]*' "$logs/$name.log" | tail -n 1 |
            grep -o '[0-9]*$')
        printf '%-28s %12s %8s %8s\n' "$name" "${runs:-?}" \
            "$(ls -A "$build/corpus/$name" | wc -l)" \
            "$(find "$build/artifacts/$name" -type f | wc -l)"
    done
else
    for i in "${!names[@]}"; do
        fuzz_one "${names[$i]}" "${dirs[$i]}" || failed+=("${names[$i]}")
    done
fi

if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzz/run.sh: failed: ${failed[*]} (inputs in $build/artifacts/)" >&2
    exit 1
fi
echo "fuzz/run.sh: all ${#names[@]} target(s) ran clean"
