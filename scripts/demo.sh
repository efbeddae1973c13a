#!/usr/bin/env bash
# The demo: LXRAdmin in a browser, served by lighttpd on 127.0.0.1 over the
# demo directory. Installs what is needed, builds, creates the demo directory
# var/demo.db from examples/demo.ldif (once; --reset makes it anew, otherwise
# it is kept with the changes made through the pages), starts lighttpd with
# LXRAdmin as a CGI and prints the address to open.
#
#   bash scripts/demo.sh [--reset] [--port N] [--background]
#   bash scripts/demo.sh --ldap [--port N]
#   bash scripts/demo.sh stop          (ends a --background server, by its PID)
#
# --ldap keeps the demo directory in a private slapd instead (127.0.0.1, a
# free port, in a temporary folder, stopped by its PID when the demo ends)
# whose password policy holds the users' state (docs/ldap.md): rupert is
# locked out by five real wrong passwords, alice has one failed and one good
# bind. It runs in the foreground and at the real time, which the server
# judges by.
#
# In the foreground, Ctrl-C stops the server. The server plays the web
# agent's part for a fixed administrator, the helpdesk lead
# (web/lighttpd/demo-agent.conf), and runs the program at the demo data's
# reference time (LXR_NOW, 2026-06-01 12:00 UTC) so that its disabled
# reasons show as described in docs/api.md. LXR_BUILD_DIR picks the build
# folder (default build).
set -euo pipefail
cd "$(dirname "$0")/.."
ROOT=$PWD
RUN=$ROOT/var/demo-server

RESET=0 PORT=${LXR_DEMO_PORT:-} BACKGROUND=0 LDAP=0 SERVE=0
while [ $# -gt 0 ]; do
  case $1 in
    --reset) RESET=1; shift ;;
    --port) PORT=$2; shift 2 ;;
    --background) BACKGROUND=1; shift ;;
    --ldap) LDAP=1; shift ;;
    --ldap-serve) SERVE=1; shift ;;  # inside tests/ldap/run.sh, which started slapd
    stop) exec bash web/lighttpd.sh stop --run "$RUN" ;;
    *) echo "usage: bash scripts/demo.sh [--reset] [--port N] [--background] | --ldap [--port N] | stop" >&2; exit 2 ;;
  esac
done

BUILD_DIR=${LXR_BUILD_DIR:-build}
LXRDIR="$BUILD_DIR/src/api/lxrdir"
EXE="$ROOT/$BUILD_DIR/src/driver/LXRAdmin"

# The LDAP demo's second half, with slapd running: the API's configuration
# for it, the users' state made by real binds, then the pages.
if [ "$SERVE" = 1 ]; then
  : "${LXR_LDAP_URL:?}" "${LXR_LDAP_WORK:?}" "${LXR_LDAP_API_CONFIG:?}"
  unset LXR_NOW  # the server judges by its own clock
  work=$LXR_LDAP_WORK
  "$LXRDIR" create "$work/audit.db" >/dev/null
  who() { ldapwhoami -x -H "$LXR_LDAP_URL" -D "uid=$1,ou=staff,o=example" -w "$2" >/dev/null 2>&1 || true; }
  for _ in 1 2 3 4 5; do who rupert wrong-password; done
  who alice wrong-password
  who alice Demo-pass1
  # mallory's 90-day password lifetime becomes a per-user policy.
  printf '<User name="uid=mallory,ou=staff,o=example"><Attribute name="kvlxrExpirePasswordDays"><Value>90 finance-policy</Value></Attribute></User>' >"$work/mallory.xml"
  LXRAPI_CONFIG=$LXR_LDAP_API_CONFIG "$LXRDIR" write helpdesk \
    LDAP://demo/uid=hd.lead,ou=admins,o=example "$work/mallory.xml" >/dev/null
  run=$work/web
  ARGS=(--run "$run" --cgi "$EXE" --agent web/lighttpd/demo-agent.conf
    --env "LXRAPI_CONFIG=$LXR_LDAP_API_CONFIG")
  [ -n "$PORT" ] && ARGS+=(--port "$PORT")
  cat <<INFO
demo: the directory is in slapd at $LXR_LDAP_URL, with its password policy.
      rupert is locked out by five wrong passwords; every password is Demo-pass1.
      Try a wrong one, then look at alice's Failure Count on her page:
        ldapwhoami -x -H $LXR_LDAP_URL -D uid=alice,ou=staff,o=example -w wrong
      rupert cannot bind until "Reset to Now" is saved on his page:
        ldapwhoami -x -H $LXR_LDAP_URL -D uid=rupert,ou=staff,o=example -w Demo-pass1
demo: Ctrl-C stops the pages and slapd; open the address below
INFO
  exec bash web/lighttpd.sh start "${ARGS[@]}" --foreground
fi

bash scripts/deps.sh
bash scripts/build.sh

if [ "$LDAP" = 1 ]; then
  SERVE_ARGS=(--ldap-serve)
  [ -n "$PORT" ] && SERVE_ARGS+=(--port "$PORT")
  exec bash tests/ldap/run.sh --source "$ROOT" --ppolicy -- \
    env LXR_BUILD_DIR="$BUILD_DIR" bash scripts/demo.sh "${SERVE_ARGS[@]}"
fi

mkdir -p var
if [ "$RESET" = 1 ]; then
  rm -f var/demo.db var/demo.db-journal var/demo.db-wal var/demo.db-shm
fi
if [ -f var/demo.db ]; then
  echo "demo: var/demo.db exists; kept (--reset makes it anew)"
else
  "$LXRDIR" create var/demo.db examples/demo.ldif
fi

export LXRAPI_CONFIG="$ROOT/examples/lxrapi.toml"
export LXR_NOW=${LXR_NOW:-1780315200}   # 2026-06-01T12:00:00Z, the demo data's "now"

# A server of an earlier run is stopped first; a taken port 8080 means another.
bash web/lighttpd.sh stop --run "$RUN" >/dev/null 2>&1 || true
if [ -z "$PORT" ] && ! (exec 3<>/dev/tcp/127.0.0.1/8080) 2>/dev/null; then
  PORT=8080
fi
ARGS=(--run "$RUN" --cgi "$EXE" --agent web/lighttpd/demo-agent.conf
  --env "LXRAPI_CONFIG=$LXRAPI_CONFIG" --env "LXR_NOW=$LXR_NOW")
[ -n "$PORT" ] && ARGS+=(--port "$PORT")

cat <<INFO
demo: signed in as uid=hd.lead,ou=admins,o=example (role helpdesk); try the
      directory "Example Corp Staff" and the users alice, rupert, carol, sybil.
      The demo accounts are listed in docs/api.md; to look at the directory:
      LXRAPI_CONFIG=$LXRAPI_CONFIG $LXRDIR show var/demo.db uid=alice,ou=staff,o=example
INFO
if [ "$BACKGROUND" = 1 ]; then
  url=$(bash web/lighttpd.sh start "${ARGS[@]}")
  echo "demo: open $url/cgi-bin/LXRAdmin"
  echo "demo: stop it with: bash scripts/demo.sh stop"
else
  echo "demo: Ctrl-C stops the server; open the address below"
  exec bash web/lighttpd.sh start "${ARGS[@]}" --foreground
fi
