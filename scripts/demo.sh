#!/usr/bin/env bash
# The demo: LXRAdmin in a browser, served by lighttpd on 127.0.0.1 over the
# demo directory. Installs what is needed, builds, creates the demo directory
# var/demo.db from examples/demo.ldif (once; --reset makes it anew, otherwise
# it is kept with the changes made through the pages), starts lighttpd with
# LXRAdmin as a CGI and prints the address to open.
#
#   bash scripts/demo.sh [--reset] [--port N] [--background]
#   bash scripts/demo.sh stop          (ends a --background server, by its PID)
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

RESET=0 PORT=${LXR_DEMO_PORT:-} BACKGROUND=0
while [ $# -gt 0 ]; do
  case $1 in
    --reset) RESET=1; shift ;;
    --port) PORT=$2; shift 2 ;;
    --background) BACKGROUND=1; shift ;;
    stop) exec bash web/lighttpd.sh stop --run "$RUN" ;;
    *) echo "usage: bash scripts/demo.sh [--reset] [--port N] [--background] | stop" >&2; exit 2 ;;
  esac
done

bash scripts/deps.sh
BUILD_DIR=${LXR_BUILD_DIR:-build}
bash scripts/build.sh
LXRDIR="$BUILD_DIR/src/api/lxrdir"
EXE="$ROOT/$BUILD_DIR/src/driver/LXRAdmin"

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
