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

cmds=(-n trivial "$trivial_cmd" -n failure-page "$failure_cmd")
[ -n "$read_cmd" ] && cmds+=(-n command-line-read "$read_cmd")

cd "$work"
hyperfine -N --warmup 20 --min-runs 300 --export-json "$work/result.json" "${cmds[@]}" >&2

python3 - "$work/result.json" <<'PY'
import json, sys
results = {r["command"]: r for r in json.load(open(sys.argv[1]))["results"]}
base = results["trivial"]["mean"]
print(f"{'command':<20} {'mean ms':>9} {'stddev ms':>10} {'ratio':>7}")
for name, r in results.items():
    print(f"{name:<20} {r['mean'] * 1e3:9.3f} {r['stddev'] * 1e3:10.3f} {r['mean'] / base:7.2f}")
ratio = results["failure-page"]["mean"] / base
print(f"failure page / trivial = {ratio:.2f} (target: at most 1.5)")
PY
