#!/usr/bin/env bash
# Scale benchmark, run by hand: whole LXRAdmin processes, as a CGI server or a
# shell starts them, against the demo directory and against a directory of
# 100,000 generated users (the demo's entries plus the generated ones), in one
# run, so that the ratios compare like with like.
#
#   bench/scale/run.sh [BUILD_DIR] [USERS]       (defaults: build, 100000)
#
# Build first: ninja -C BUILD_DIR LXRAdmin lxrdir
# Measures (CPU time per process, perf stat task-clock, and wall clock):
#   - a command-line read by name and by DN and a command-line write, demo
#     against the large directory;
#   - the display page of a user with 10,000 login-history entries, with the
#     demo's history limit and without one (then the reply's room decides);
#   - the display page as its history grows (0 to 10,000 stored entries);
#   - lists of users (lxrdir list) in the large directory: a page of 1,000
#     users, a search by the start of a name, the locked list, against
#     reading one user with lxrdir in the same run.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "${1:-$root/build}" && pwd)
users=${2:-100000}
exe=$build/src/driver/LXRAdmin
lxrdir=$(find "$build/src/api" -maxdepth 3 -type f -name lxrdir -perm -u+x | head -1)
[ -x "$exe" ] && [ -n "$lxrdir" ] || { echo "build LXRAdmin and lxrdir first" >&2; exit 2; }
command -v perf >/dev/null || { echo "perf is not installed (linux-perf)" >&2; exit 2; }
runs=${LXR_BENCH_RUNS:-200}

work=$(mktemp -d "${TMPDIR:-/tmp}/lxr-scale.XXXXXX")
trap 'rm -rf "$work"' EXIT
now=1780315200
admin=uid=hd.lead,ou=admins,o=example

sizes=(0 10 100 1000 10000)
# The demo's entries plus users h0, h10, ... whose login history holds that
# many entries (one a minute back from "now", newest first, as a store keeps
# them); and the generated users, which look like the demo's: names, mail,
# counters, a short login history, a redirect.
python3 - "$root/examples/demo.ldif" "$work" "$now" "$users" "${sizes[@]}" <<'PY'
import sys, time
demo, work, now, users, sizes = sys.argv[1], sys.argv[2], int(sys.argv[3]), int(sys.argv[4]), sys.argv[5:]
stamp = lambda t: time.strftime("%Y%m%d%H%M%SZ", time.gmtime(t))
with open(f"{work}/demo.ldif", "w") as out:
    out.write(open(demo).read() + "\n")
    for n in map(int, sizes):
        uid = f"h{n}"
        out.write(f"dn: uid={uid},ou=staff,o=example\nobjectClass: inetOrgPerson\nuid: {uid}\n"
                  f"cn: {uid}\nsn: {uid}\nkvlxrFailureCount: 9 {stamp(now - 60)} 203.0.113.66\n")
        for i in range(1, n + 1):
            out.write(f"kvlxrLoginHistory: {stamp(now - 60 * i)} FAILED 203.0.113.66 try-{i}\n")
        out.write("\n")
with open(f"{work}/users.ldif", "w") as out:
    for i in range(1, users + 1):
        out.write(f"dn: uid=user{i:06d},ou=staff,o=example\nobjectClass: inetOrgPerson\n"
                  f"uid: user{i:06d}\ncn: User {i:06d}\nsn: {i:06d}\nmail: user{i:06d}@example.com\n"
                  f"kvlxrLastLogin: 20260531083015Z 10.{i % 250}.{i // 250 % 250}.{i % 7}\n"
                  f"kvlxrFailureCount: {i % 4} 20260530080911Z 203.0.113.9\n"
                  f"kvlxrTotalLogins: {i % 977}\n"
                  "kvlxrLoginHistory: 20260531083015Z SUCCESS 10.0.0.21 browser\n"
                  "kvlxrLoginHistory: 20260530080911Z FAILED 203.0.113.9 bad-password\n"
                  f"kvlxrGenerationalRedirects: PORTAL=https://portal.example.com/{i} "
                  "20260101000000Z 10.1.1.1 moved\n\n")
PY
cat "$work/demo.ldif" "$work/users.ldif" >"$work/large.ldif"

for d in demo large; do
  mkdir -p "$work/$d"
  echo "creating the $d directory ($(grep -c '^dn:' "$work/$d.ldif") entries)" >&2
  "$lxrdir" create "$work/$d/store.db" "$work/$d.ldif" >/dev/null
  sed -E 's|^([[:space:]]*store[[:space:]]*=[[:space:]]*)"[^"]*"|\1"store.db"|' \
    "$root/examples/lxrapi.toml" >"$work/$d/lxrapi.toml"
  sed -E 's|^history_limit = [0-9]+|history_limit = 100000|' "$work/$d/lxrapi.toml" \
    >"$work/$d/unlimited.toml"
done
printf '<User name="uid=judy,ou=staff,o=example"><Attribute name="kvlxrFailureCount"><Value>0 20260601120000Z</Value></Attribute></User>\n' \
  >"$work/write.xml"

cli() {  # store-folder arguments...
  echo "env -i LXR_NOW=$now LXRAPI_CONFIG=$work/$1/lxrapi.toml $exe -ALDAP://demo/$admin -Chelpdesk ${*:2}"
}
page() {  # config user
  echo "env -i LXR_NOW=$now LXRAPI_CONFIG=$1 REQUEST_METHOD=GET QUERY_STRING=USERDIR=staff&USER=$2 SCRIPT_NAME=/cgi-bin/LXRAdmin HTTP_KV_USERDN=$admin HTTP_KV_AUTHDIRNAMESPACE=LDAP: HTTP_KV_AUTHDIRSERVER=demo HTTP_LXRADMIN=helpdesk $exe"
}

lister() {  # request: lxrdir list over the large directory
  printf '%s\n' "env -i LXR_NOW=$now LXRAPI_CONFIG=$work/large/lxrapi.toml $lxrdir list helpdesk LDAP://demo/$admin $1"
}

names=() commands=()
add() { names+=("$1"); commands+=("$2"); }
for d in demo large; do
  add "$d:read-by-name" "$(cli "$d" -Rstaff/alice)"
  add "$d:read-by-dn" "$(cli "$d" -Rstaff/uid=rupert,ou=staff,o=example)"
  add "$d:write" "$(cli "$d" -W"$work/write.xml")"
done
add "page:alice" "$(page "$work/large/lxrapi.toml" alice)"
add "page:h10000-limit" "$(page "$work/large/lxrapi.toml" h10000)"
add "page:h10000-room" "$(page "$work/large/unlimited.toml" h10000)"
for n in "${sizes[@]}"; do add "page:h$n" "$(page "$work/demo/unlimited.toml" "h$n")"; done
add "list:read-one" "env -i LXR_NOW=$now LXRAPI_CONFIG=$work/large/lxrapi.toml $lxrdir read helpdesk LDAP://demo/$admin staff/user050000"
add "list:page-1000" "$(lister '<ListRequest directory="staff" list="search" size="1000"/>')"
add "list:search" "$(lister '<ListRequest directory="staff" list="search" start="user0999"/>')"
add "list:locked" "$(lister '<ListRequest directory="staff" list="locked"/>')"

# Each command once: it must succeed, and its output size is the page size.
for i in "${!names[@]}"; do
  # shellcheck disable=SC2086  # the commands are word lists
  ${commands[$i]} >"$work/out" 2>"$work/err" || { echo "${names[$i]} failed:" >&2; cat "$work/err" >&2; exit 1; }
  case ${names[$i]} in page:*) grep -q 'NAME="PostForm"' "$work/out" || { echo "${names[$i]}: not a user page" >&2; head -30 "$work/out" >&2; exit 1; } ;; esac
  case ${names[$i]} in
    list:read-one) shown=1 ;;
    list:*) shown=$(grep -c '^<User ' "$work/out" || true) ;;
    *) shown=$(grep -c "LogEntry(W, '" "$work/out" || true) ;;
  esac
  echo "${names[$i]} $(wc -c <"$work/out") $shown" >>"$work/sizes.txt"
done

# CPU time per process, all commands in turn, twice over, so that a burst of
# other load hits both sides of a comparison alike.
: >"$work/cpu.txt"
for round in 1 2; do
  for i in "${!names[@]}"; do
    # shellcheck disable=SC2086
    ms=$(perf stat -r "$runs" -x, -e task-clock ${commands[$i]} 2>&1 >/dev/null | tail -1 | cut -d, -f1)
    echo "${names[$i]} $round $ms" >>"$work/cpu.txt"
  done
done

python3 - "$work/sizes.txt" "$work/cpu.txt" "$users" <<'PY'
import sys
sizes = {l.split()[0]: (int(l.split()[1]), int(l.split()[2])) for l in open(sys.argv[1])}
cpu = {}
for line in open(sys.argv[2]):
    name, _, ms = line.split()
    cpu.setdefault(name, []).append(float(ms))
best = {n: min(v) for n, v in cpu.items()}
def row(name, base):
    b, shown = sizes[name]
    spread = "-".join(f"{v:.2f}" for v in sorted(cpu[name]))
    print(f"{name:<22} {spread:>13} {best[name] / best[base]:6.2f} {b:>9} {shown:>6}")
print(f"CPU ms per process (perf stat task-clock, two rounds); large = demo + {int(sys.argv[3]):,} users")
print(f"{'command':<22} {'cpu ms':>13} {'ratio':>6} {'bytes':>9} {'shown':>6}")
for op in ("read-by-name", "read-by-dn", "write"):
    row(f"demo:{op}", f"demo:{op}")
    row(f"large:{op}", f"demo:{op}")
for name in ("page:alice", "page:h10000-limit", "page:h10000-room"):
    row(name, "page:alice")
for name in ("list:read-one", "list:page-1000", "list:search", "list:locked"):
    row(name, "list:read-one")
for name in sorted((n for n in sizes if n.startswith("page:h") and n[6:].isdigit()), key=lambda n: int(n[6:])):
    row(name, "page:h0")
PY
