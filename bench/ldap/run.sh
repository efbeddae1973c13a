#!/usr/bin/env bash
# The LDAP store with the server's password policy against the embedded
# store, in the same run: LXRAdmin's display page (a CGI GET) and a write
# (-W, a failure count reset) for one user over each, and the display page
# of a user with the most failures the policy records (5) and 1,000 access
# log records, and of a user with a lifetime override (a per-user policy).
# Median wall clock by hyperfine; ratios to the embedded store.
#
#   bench/ldap/run.sh BUILD_DIR        (a Release tree: LXRAdmin and lxrdir)
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "${1:?usage: bench/ldap/run.sh BUILD_DIR}" && pwd)
if [ -z "${LXR_LDAP_URL:-}" ]; then
  exec bash "$root/tests/ldap/run.sh" --source "$root" --ppolicy -- bash "$0" "$build"
fi
command -v hyperfine >/dev/null || { echo "hyperfine is not installed" >&2; exit 2; }
exe=$build/src/driver/LXRAdmin lxrdir=$build/src/api/lxrdir w=$LXR_LDAP_WORK
unset LXR_NOW

"$lxrdir" create "$w/demo.db" "$root/examples/demo.ldif" >/dev/null
sed -e "s|\"../var/demo.db\"|\"$w/demo.db\"|" "$root/examples/lxrapi.toml" >"$w/embedded.toml"
"$lxrdir" create "$w/audit.db" >/dev/null
cp "$LXR_LDAP_API_CONFIG" "$w/ldap.toml"

# rupert: five failures (the most the policy records) and 1,000 log records.
who() { ldapwhoami -x -H "$LXR_LDAP_URL" -D uid=rupert,ou=staff,o=example -w "$1" >/dev/null 2>&1 || true; }
for _ in $(seq 995); do who Demo-pass1; done
for _ in $(seq 5); do who wrong; done

cat >"$w/page.sh" <<SH
#!/usr/bin/env bash
export REQUEST_METHOD=GET HTTP_KV_USERDN=uid=hd.lead,ou=admins,o=example \
  HTTP_USERPATH=LDAP://demo/uid=hd.lead,ou=admins,o=example HTTP_LXRADMIN=helpdesk \
  SCRIPT_NAME=/cgi-bin/LXRAdmin QUERY_STRING="USERDIR=staff&USER=\$2" LXRAPI_CONFIG=\$1
exec "$exe" >/dev/null
SH
printf '<User name="uid=judy,ou=staff,o=example"><Attribute name="kvlxrFailureCount"><Value>0 20260601120000Z</Value></Attribute></User>' >"$w/judy.xml"
write() { echo "LXRAPI_CONFIG=$1 $exe -ALDAP://demo/uid=hd.lead,ou=admins,o=example -Chelpdesk -W$w/$2.xml"; }
# mallory: a lifetime override, so her page reads her per-user policy too.
printf '<User name="uid=mallory,ou=staff,o=example"><Attribute name="kvlxrExpirePasswordDays"><Value>90 finance-policy</Value></Attribute></User>' >"$w/mallory.xml"
env $(write "$w/ldap.toml" mallory) >/dev/null

hyperfine -N --warmup 3 --runs "${LXR_BENCH_RUNS:-40}" --export-json "$w/bench.json" \
  -n page-embedded "bash $w/page.sh $w/embedded.toml alice" \
  -n page-ldap "bash $w/page.sh $w/ldap.toml alice" \
  -n write-embedded "env $(write "$w/embedded.toml" judy)" \
  -n write-ldap "env $(write "$w/ldap.toml" judy)" \
  -n page-ldap-rupert-1000-records "bash $w/page.sh $w/ldap.toml rupert" \
  -n page-ldap-mallory-override "bash $w/page.sh $w/ldap.toml mallory" >/dev/null
python3 - "$w/bench.json" <<'PY'
import json, sys
r = {x["command"]: x["median"] for x in json.load(open(sys.argv[1]))["results"]}
base = {"page": r["page-embedded"], "write": r["write-embedded"]}
for name, median in r.items():
    kind = name.split("-")[0]
    print(f"{name:32s} median {median * 1000:8.2f} ms   x{median / base[kind]:.2f} of {kind}-embedded")
PY
