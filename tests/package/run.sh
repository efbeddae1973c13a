#!/usr/bin/env bash
# The packages end to end; see CMakeLists.txt. Changes this machine while it
# runs (installs, removes and purges lxradmin) and restores what it changed:
# the Apache modules the package enabled and the store it left behind.
#   bash tests/package/run.sh --source DIR --out DIR
set -euo pipefail
SOURCE="" OUT=""
while [ $# -gt 0 ]; do
  case $1 in
    --source) SOURCE=$2; shift 2 ;;
    --out) OUT=$2; shift 2 ;;
    *) echo "usage: run.sh --source DIR --out DIR" >&2; exit 2 ;;
  esac
done
skip() { echo "SKIP: $*"; exit 77; }
fail() { echo "FAIL: $*" >&2; exit 1; }
[ "$(id -u)" = 0 ] || skip "installing a package needs root"
for tool in dpkg-buildpackage dh lintian apache2 htpasswd curl a2query; do
  command -v "$tool" >/dev/null || [ -x "/usr/sbin/$tool" ] || skip "$tool is not installed (bash scripts/deps.sh)"
done
PACKAGES=(lxradmin liblxrapi0 liblxrapi-dev)
for p in "${PACKAGES[@]}"; do
  ! dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'installed\|config-files' ||
    skip "$p is already on this machine; the test installs and purges its own"
done
[ ! -e /var/lib/lxradmin ] || skip "/var/lib/lxradmin exists; the test leaves stores it did not make alone"

STATE=/var/lib/lxradmin
RUN=$(mktemp -d /tmp/lxr-package.XXXXXX)
chmod 0755 "$RUN"
modules_before=$(ls /etc/apache2/mods-enabled/)
apache_state_before=$(find /var/lib/apache2 -type f 2>/dev/null | sort)

cleanup() {
  [ -f "$RUN/httpd.pid" ] && kill "$(cat "$RUN/httpd.pid")" 2>/dev/null
  dpkg --purge "${PACKAGES[@]}" >/dev/null 2>&1 || true
  # The modules the package enabled, and nothing else, are disabled again,
  # as a package would (-m), and the helper's records of them are dropped,
  # so that the next installation enables them again.
  for link in /etc/apache2/mods-enabled/*.load; do
    name=$(basename "$link" .load)
    grep -qx "$name.load" <<<"$modules_before" || a2dismod -q -m -f "$name" >/dev/null 2>&1 || true
  done
  find /var/lib/apache2 -type f 2>/dev/null | sort | comm -13 <(echo "$apache_state_before") - |
    while read -r record; do rm -f "$record"; done
  rm -rf "$STATE" "$RUN"
}
trap cleanup EXIT

# dpkg waits for no one: another installer holding its lock is waited out.
dpkg_retry() {
  for _ in $(seq 60); do
    if dpkg "$@" >"$RUN/dpkg.log" 2>&1; then cat "$RUN/dpkg.log"; return 0; fi
    grep -q 'lock' "$RUN/dpkg.log" || { cat "$RUN/dpkg.log" >&2; return 1; }
    sleep 5
  done
  cat "$RUN/dpkg.log" >&2; return 1
}

# 1. Build, and lintian: no error, no warning (overrides carry their reason).
changes=$(DEB_BUILD_OPTIONS="noddebs ${DEB_BUILD_OPTIONS:-}" bash "$SOURCE/scripts/package.sh" --out "$OUT")
echo "built: $(cd "$OUT" && ls ./*.deb | tr '\n' ' ')"
lintian --fail-on error,warning --tag-display-limit 0 "$changes" >"$RUN/lintian.log" 2>&1 ||
  { cat "$RUN/lintian.log" >&2; fail "lintian"; }
sed 's/^/lintian: /' "$RUN/lintian.log"

# 2. Installed: every file in place, no path of the source or build trees in
# any of them, the program without a run path, the manual pages answering.
dpkg_retry -i "$OUT"/*.deb >/dev/null || fail "dpkg -i"
multiarch=$(dpkg-architecture -q DEB_HOST_MULTIARCH)
for f in /usr/lib/cgi-bin/lxradmin/LXRAdmin /usr/lib/cgi-bin/lxradmin/catalogue/LXRAdmin/de.res \
         /usr/lib/cgi-bin/lxradmin/LXRList /usr/lib/cgi-bin/lxradmin/catalogue/LXRList/de.res \
         "/usr/lib/$multiarch/libLXRAPI.so.0" /usr/sbin/lxrdir /usr/include/lxrapi.h \
         /usr/share/lxradmin/images/Disabled.gif /etc/lxradmin/lxrapi.toml \
         /etc/lxradmin/agents.map /etc/lxradmin/htpasswd /etc/apache2/conf-enabled/lxradmin.conf \
         /etc/lighttpd/conf-available/50-lxradmin.conf "$STATE/demo.db"; do
  [ -e "$f" ] || fail "not installed: $f"
done
[ "$(stat -c %U "$STATE")" = www-data ] || fail "$STATE is not owned by www-data"
[ "$(stat -c '%U %a %s' "$STATE/list.secret")" = "www-data 600 48" ] ||
  fail "the list page's secret: $(stat -c '%U %a %s' "$STATE/list.secret")"
[ "$(pkg-config --modversion lxrapi)" = "$(dpkg-query -W -f='${Version}' lxradmin)" ] ||
  fail "pkg-config lxrapi does not give the package's version"
mapfile -t installed < <(dpkg -L "${PACKAGES[@]}" | sort -u | while read -r f; do [ -f "$f" ] && echo "$f"; done)
leaks=$(grep -l -F -e "$SOURCE" -e "$OUT" "${installed[@]}" || true)
[ -z "$leaks" ] || fail "build paths in installed files: $leaks"
for exe in LXRAdmin LXRList; do
  readelf -d "/usr/lib/cgi-bin/lxradmin/$exe" | grep -q 'RUNPATH\|RPATH' && fail "$exe keeps a run path"
done
for page in LXRAdmin lxrdir lxrapi.toml; do
  man -w "$page" >/dev/null || fail "man $page does not answer"
done

# 3. The documented step: name an administrator.
htpasswd -b -B /etc/lxradmin/htpasswd hanna 'secret' 2>/dev/null
echo 'hanna uid=hd.lead,ou=admins,o=example|helpdesk' >>/etc/lxradmin/agents.map

# 4. A private Apache made like Debian's own: the enabled modules and
# configurations of /etc/apache2 and a virtual host for the site.
port=""
for _ in $(seq 20); do
  candidate=$((20000 + RANDOM % 40000))
  (exec 3<>"/dev/tcp/127.0.0.1/$candidate") 2>/dev/null || { port=$candidate; break; }
done
[ -n "$port" ] || fail "no free port"
mkdir -p "$RUN/www" "$RUN/logs" "$RUN/socks"   # socks: the cgid module's socket
cat >"$RUN/httpd.conf" <<CONF
Define APACHE_RUN_DIR $RUN
Define APACHE_LOCK_DIR $RUN
Define APACHE_LOG_DIR $RUN/logs
ServerRoot /etc/apache2
PidFile $RUN/httpd.pid
DefaultRuntimeDir $RUN
Mutex file:$RUN default
ErrorLog $RUN/logs/error.log
LogLevel warn
User www-data
Group www-data
Listen 127.0.0.1:$port
ServerName 127.0.0.1
IncludeOptional mods-enabled/*.load
IncludeOptional mods-enabled/*.conf
IncludeOptional conf-enabled/*.conf
<VirtualHost 127.0.0.1:$port>
    DocumentRoot $RUN/www
</VirtualHost>
CONF
apache2 -d /etc/apache2 -f "$RUN/httpd.conf" -t >"$RUN/check.log" 2>&1 || { cat "$RUN/check.log" >&2; fail "apache2 -t"; }
apache2 -d /etc/apache2 -f "$RUN/httpd.conf" -k start || fail "apache2 did not start"
for _ in $(seq 100); do
  [ -s "$RUN/httpd.pid" ] && (exec 3<>"/dev/tcp/127.0.0.1/$port") 2>/dev/null && break
  sleep 0.1
done
base=http://127.0.0.1:$port

get() { curl -s -o "$RUN/body" -w '%{http_code}' "$@"; }
[ "$(get "$base/cgi-bin/LXRAdmin?USERDIR=staff&USER=rupert")" = 401 ] || fail "no login asked"
[ "$(get -u hanna:secret "$base/cgi-bin/LXRAdmin?USERDIR=staff&USER=rupert")" = 200 ] ||
  fail "display page: $(head -c 400 "$RUN/body"; tail -5 "$RUN/logs/error.log")"
for text in '<title>LXR Administration Service' \
            'NAME="LXR-USERDN" VALUE="uid=rupert,ou=staff,o=example"' \
            '../korvelagent/dmspages/Disabled.gif'; do
  grep -qF "$text" "$RUN/body" || fail "display page lacks: $text"
done
# The list page beside it: the same login, its own form, a token for the bulk form.
[ "$(get "$base/cgi-bin/LXRList")" = 401 ] || fail "the list page asks no login"
[ "$(get -u hanna:secret -H 'Accept-Language: de' "$base/cgi-bin/LXRList")" = 200 ] ||
  fail "list page: $(head -c 400 "$RUN/body"; tail -5 "$RUN/logs/error.log")"
grep -qF '<option value="staff">Example Corp Staff</option>' "$RUN/body" ||
  fail "list page lacks the directories: $(head -c 400 "$RUN/body")"
grep -qF 'Konten, die Aufmerksamkeit brauchen' "$RUN/body" || fail "list page not in German"
[ "$(get -u hanna:secret "$base/korvelagent/dmspages/Disabled.gif")" = 200 ] &&
  cmp -s "$RUN/body" /usr/share/lxradmin/images/Disabled.gif || fail "picture not served"

# A write, as the display page's PostForm posts it; read back from the store.
count() { lxrdir show "$STATE/demo.db" uid=rupert,ou=staff,o=example | sed -n 's/^kvlxrFailureCount: //p'; }
[ "$(count | cut -d' ' -f1)" = 7 ] || fail "the demo's rupert has not 7 failures: $(count)"
[ "$(get -u hanna:secret --data 'kvlxrFailureCount=0&LXR-USERDN=uid%3Drupert%2Cou%3Dstaff%2Co%3Dexample' \
      "$base/cgi-bin/LXRAdmin?USERDIR=staff&USER=rupert")" = 200 ] || fail "post: $(head -c 400 "$RUN/body")"
[ "$(count | cut -d' ' -f1)" = 0 ] ||
  fail "the post did not reset the count: $(count); page: $(grep -o 'alert([^)]*)' "$RUN/body" | head -1)"
# The requests kept the parsed configuration in the package's cache folder.
[ "$(stat -c %U /var/cache/lxradmin/config-* 2>/dev/null | sort -u)" = www-data ] ||
  fail "no configuration image of www-data in /var/cache/lxradmin"
kill "$(cat "$RUN/httpd.pid")"; rm -f "$RUN/httpd.pid"

# 5. Remove keeps configuration and store; purge says where the store is,
# removes the configuration and the cache folder, and keeps the store.
dpkg_retry --remove "${PACKAGES[@]}" >"$RUN/remove.log" || fail "dpkg --remove"
[ ! -e /usr/lib/cgi-bin/lxradmin/LXRAdmin ] || fail "remove left the program"
[ ! -e /etc/apache2/conf-enabled/lxradmin.conf ] || fail "remove left the Apache configuration enabled"
[ -f /etc/lxradmin/lxrapi.toml ] && [ -f /etc/lxradmin/htpasswd ] || fail "remove took the configuration"
[ -f "$STATE/demo.db" ] || fail "remove took the store"
dpkg_retry --purge "${PACKAGES[@]}" >"$RUN/purge.log" || fail "dpkg --purge"
grep -q "$STATE" "$RUN/purge.log" || fail "purge did not say where the store is: $(cat "$RUN/purge.log")"
for f in /etc/lxradmin /var/cache/lxradmin /etc/apache2/conf-available/lxradmin.conf \
         /etc/lighttpd/conf-available/50-lxradmin.conf; do
  [ ! -e "$f" ] || fail "purge left $f"
done
[ -s "$STATE/demo.db" ] || fail "purge took the store"
echo "package: built, lintian-clean, installed, served, written, removed and purged"
