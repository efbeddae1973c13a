#!/usr/bin/env bash
# List page benchmark, run by hand: whole CGI processes as the web server
# starts them, in one run so that the ratios compare like with like, over a
# directory of the demo's entries plus USERS generated ones (default 100,000),
# of which every hundredth is locked out (failure count at the maximum):
#   - user-page:   LXRAdmin's display page of one user (the baseline);
#   - list-1000:   LXRList's locked-out list, 1,000 rows on one page;
#   - search:      LXRList's search by a name start, one page of 50 rows;
#   - csv-1000:    the locked-out list as CSV.
#
#   bench/list/run.sh [BUILD_DIR] [USERS]        (defaults: build, 100000)
#
# Build first: ninja -C BUILD_DIR LXRAdmin LXRList lxrdir LXRAPI lxr_catalogue
# Reports CPU time per process (perf stat task-clock) when perf is
# installed, and the median wall clock (hyperfine), each as a ratio to the
# user page.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "${1:-$root/build}" && pwd)
users=${2:-100000}
admin_exe=$build/src/driver/LXRAdmin
list_exe=$build/src/driver/LXRList
lxrdir=$(find "$build/src/api" -maxdepth 3 -type f -name lxrdir -perm -u+x | head -1)
[ -x "$admin_exe" ] && [ -x "$list_exe" ] && [ -n "$lxrdir" ] ||
  { echo "build LXRAdmin, LXRList and lxrdir first" >&2; exit 2; }
command -v hyperfine >/dev/null || { echo "hyperfine is not installed" >&2; exit 2; }
runs=${LXR_BENCH_RUNS:-30}

work=$(mktemp -d "${TMPDIR:-/tmp}/lxr-list-bench.XXXXXX")
trap 'rm -rf "$work"' EXIT
python3 - "$root/examples/demo.ldif" "$work/bench.ldif" "$users" <<'PY'
import sys
demo, out_file, users = sys.argv[1], sys.argv[2], int(sys.argv[3])
with open(out_file, "w") as out:
    out.write(open(demo).read() + "\n")
    for i in range(1, users + 1):
        failures = 5 if i % 100 == 0 else i % 4
        out.write(f"dn: uid=user{i:06d},ou=staff,o=example\nobjectClass: inetOrgPerson\n"
                  f"uid: user{i:06d}\ncn: User {i:06d}\nsn: {i:06d}\nmail: user{i:06d}@example.com\n"
                  f"kvlxrLastLogin: 20260531083015Z 10.{i % 250}.{i // 250 % 250}.{i % 7}\n"
                  f"kvlxrFailureCount: {failures} 20260530080911Z 203.0.113.9\n\n")
PY
sed -e 's|^\([[:space:]]*store[[:space:]]*=[[:space:]]*\)".*"|\1"bench.db"|' \
  "$root/examples/lxrapi.toml" >"$work/lxrapi.toml"
"$lxrdir" create "$work/bench.db" "$work/bench.ldif" >/dev/null
head -c 48 /dev/urandom >"$work/list.secret"

common=(REQUEST_METHOD=GET HTTP_KV_USERDN=uid=hd.lead,ou=admins,o=example
  HTTP_KV_AUTHDIRNAMESPACE=LDAP: HTTP_KV_AUTHDIRSERVER=ldap.example.com HTTP_LXRADMIN=helpdesk
  LXRAPI_CONFIG="$work/lxrapi.toml" LXR_NOW=1780315200 LXR_LIST_SECRET="$work/list.secret")
cases=(
  "user-page|QUERY_STRING=USERDIR=staff&USER=alice|$admin_exe"
  "list-1000|QUERY_STRING=DIR=staff&LIST=locked&SIZE=1000|$list_exe"
  "search|QUERY_STRING=DIR=staff&LIST=search&START=user0999&SIZE=50|$list_exe"
  "csv-1000|QUERY_STRING=DIR=staff&LIST=locked&SIZE=1000&FORMAT=csv|$list_exe"
)
# No value holds a blank, so each command runs without a shell (hyperfine -N).
commands=() names=()
for c in "${cases[@]}"; do
  IFS='|' read -r name query exe <<<"$c"
  names+=("$name")
  commands+=("env -i ${common[*]} $query $exe")
  if [ "$exe" = "$list_exe" ]; then
    rows=$(env -i "${common[@]}" "$query" "$exe" | grep -c '^<tr><td>\|^[^,]*,"uid=' || true)
    echo "$name: $rows rows"
  fi
done
hyperfine -N --warmup 3 --runs "$runs" --export-json "$work/h.json" "${commands[@]}" >/dev/null
python3 - "$work/h.json" "${names[@]}" <<'PY'
import json, sys
r = json.load(open(sys.argv[1]))["results"]
base = r[0]["median"]
for name, x in zip(sys.argv[2:], r):
    print(f"{name:10s} wall median {x['median']*1000:8.2f} ms  ratio {x['median']/base:5.2f}")
PY
if command -v perf >/dev/null; then
  base=""
  for i in "${!commands[@]}"; do
    # shellcheck disable=SC2086
    ms=$(perf stat -x, -e task-clock -r "$runs" ${commands[$i]} 2>&1 >/dev/null | cut -d, -f1 | tail -1)
    base=${base:-$ms}
    printf '%-10s cpu  %8.2f ms  ratio %5.2f\n' "${names[$i]}" "$ms" "$(awk -v a="$ms" -v b="$base" 'BEGIN { print a / b }')"
  done
fi
