#!/usr/bin/env bash
# Builds every libFuzzer target under fuzz/*/ into build-fuzz (clang, with
# -DLXR_FUZZ=ON) and runs each one for a number of seconds over its corpus.
#
#   fuzz/run.sh [seconds] [target...]     seconds defaults to 60
#
# A target is found by its seed corpus: fuzz/<dir>/corpus/<target>/ names the
# executable <target> built from fuzz/<dir>/CMakeLists.txt. Inputs in
# fuzz/<dir>/regressions/<target>/ are replayed first, once each. New corpus
# entries go to build-fuzz/corpus/<target>/ (the seeds in the tree are never
# written); crashes go to build-fuzz/artifacts/<target>/. Copy a crash input
# into the regressions folder once it is fixed.
#
# Environment: LXR_FUZZ_BUILD (build directory, default <repo>/build-fuzz),
# LXR_FUZZ_JOBS (ninja -j, default 2). Exit status 1 when any target failed.
set -u -o pipefail

seconds=${1:-60}
shift || true
root=$(cd "$(dirname "$0")/.." && pwd)
build=${LXR_FUZZ_BUILD:-$root/build-fuzz}
jobs=${LXR_FUZZ_JOBS:-2}

declare -a names=() dirs=()
for corpus in "$root"/fuzz/*/corpus/*/; do
    [ -d "$corpus" ] || continue
    name=$(basename "$corpus")
    dir=$(dirname "$(dirname "$corpus")")
    [ -f "$dir/CMakeLists.txt" ] || continue
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

failed=()
for i in "${!names[@]}"; do
    name=${names[$i]}
    dir=${dirs[$i]}
    binary=$(find "$build" -type f -name "$name" -perm -u+x | head -n 1)
    if [ -z "$binary" ]; then
        echo "fuzz/run.sh: $name was not built" >&2
        failed+=("$name")
        continue
    fi
    artifacts="$build/artifacts/$name"
    work="$build/corpus/$name"
    mkdir -p "$artifacts" "$work"

    regressions="$dir/regressions/$name"
    if [ -d "$regressions" ] && [ -n "$(ls -A "$regressions")" ]; then
        echo "== $name: replaying $(ls -A "$regressions" | wc -l) regression input(s)"
        if ! "$binary" -artifact_prefix="$artifacts/" "$regressions"/*; then
            failed+=("$name")
            continue
        fi
    fi

    echo "== $name: fuzzing for $seconds s"
    if ! "$binary" -max_total_time="$seconds" -timeout=10 -rss_limit_mb=2048 \
        -print_final_stats=1 -artifact_prefix="$artifacts/" "$work" "$dir/corpus/$name"; then
        failed+=("$name")
    fi
done

if [ ${#failed[@]} -gt 0 ]; then
    echo "fuzz/run.sh: failed: ${failed[*]} (inputs in $build/artifacts/)" >&2
    exit 1
fi
echo "fuzz/run.sh: all ${#names[@]} target(s) ran clean"
