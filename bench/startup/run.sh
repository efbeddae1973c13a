#!/usr/bin/env bash
# Whole-process start-up benchmark: LXRAdmin serving the identity-failure page
# and a command-line read, against a trivial C program that prints a fixed
# page, all in one hyperfine run. Prints the mean times and the ratios.
#
#   bench/startup/run.sh [BUILD_DIR]      (default: build)
#
# Build first: ninja -C BUILD_DIR LXRAdmin lxrdir trivial_page
set -eu
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "${1:-$root/build}" && pwd)
exe=$build/src/driver/LXRAdmin
trivial=$build/bench/startup/trivial_page
lxrdir=$(find "$build/src/api" -maxdepth 3 -type f -name lxrdir -perm -u+x | head -1)
for f in "$exe" "$trivial"; do
    [ -x "$f" ] || { echo "missing $f; build it first" >&2; exit 2; }
done

work=$(mktemp -d "${TMPDIR:-/tmp}/lxr-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT

# A private demo directory for the command-line read.
read_cmd=
if [ -n "$lxrdir" ]; then
    sed -e 's|^\([[:space:]]*store[[:space:]]*=[[:space:]]*\)".*"|\1"demo.db"|' \
        "$root/examples/lxrapi.toml" >"$work/lxrapi.toml"
    "$lxrdir" create "$work/demo.db" "$root/examples/demo.ldif" >/dev/null
    read_cmd="env -i LXR_NOW=1780315200 LXRAPI_CONFIG=$work/lxrapi.toml $exe -ALDAP://demo/uid=hd.lead,ou=admins,o=example -Chelpdesk -Rstaff/alice"
else
    echo "lxrdir not built: the command-line read is left out" >&2
fi

failure_cmd="env -i LXR_NOW=1780315200 REQUEST_METHOD=GET $exe"
trivial_cmd="env -i $trivial"

names=(trivial failure-page)
commands=("$trivial_cmd" "$failure_cmd")
if [ -n "$read_cmd" ]; then
    names+=(command-line-read)
    commands+=("$read_cmd")
fi
args=()
for i in "${!names[@]}"; do args+=(-n "${names[$i]}" "${commands[$i]}"); done

cd "$work"
# Wall-clock times, all commands in one run.
hyperfine -N --warmup 20 --min-runs 300 --export-json "$work/result.json" "${args[@]}" >&2

# CPU time per process (task-clock) is far less disturbed by other load on
# the machine than wall-clock time; measured when perf is available.
: >"$work/cpu.txt"
if command -v perf >/dev/null 2>&1; then
    for i in "${!names[@]}"; do
        # shellcheck disable=SC2086  # the commands are word lists
        ms=$(perf stat -r 300 -x, -e task-clock ${commands[$i]} 2>&1 >/dev/null | tail -1 | cut -d, -f1)
        echo "${names[$i]} $ms" >>"$work/cpu.txt"
    done
fi

python3 - "$work/result.json" "$work/cpu.txt" <<'PY'
import json, sys
results = {r["command"]: r for r in json.load(open(sys.argv[1]))["results"]}
cpu = dict(line.split() for line in open(sys.argv[2]) if line.strip())
base = results["trivial"]["median"]
print(f"{'command':<20} {'mean ms':>8} {'median ms':>10} {'min ms':>7} {'ratio':>6} {'cpu ms':>7} {'ratio':>6}")
for name, r in results.items():
    line = (f"{name:<20} {r['mean'] * 1e3:8.3f} {r['median'] * 1e3:10.3f} {r['min'] * 1e3:7.3f}"
            f" {r['median'] / base:6.2f}")
    if name in cpu:
        line += f" {float(cpu[name]):7.3f} {float(cpu[name]) / float(cpu['trivial']):6.2f}"
    print(line)
ratio = results["failure-page"]["median"] / base
print(f"failure page / trivial (median wall clock) = {ratio:.2f}; target: at most 1.5")
if "failure-page" in cpu:
    print(f"failure page / trivial (CPU time) = {float(cpu['failure-page']) / float(cpu['trivial']):.2f}")
PY
