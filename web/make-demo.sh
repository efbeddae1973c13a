#!/usr/bin/env bash
# Creates a private demo directory for the web server: the demo store built
# from examples/demo.ldif, the API configuration examples/lxrapi.toml with its
# stores pointed at that copy, and the demo administrator for the server.
#
#   web/make-demo.sh --build BUILD_DIR --dir DIR [--ldif FILE] [--config FILE]
#   web/make-demo.sh --lxrdir LXRDIR --dir DIR ...   (the tool itself, not a build)
#
# Leaves in DIR: demo.db, lxrapi.toml, agent.conf (web/lighttpd/demo-agent.conf)
# and demo.env, a shell fragment with LXRAPI_CONFIG, LXR_NOW (the demo's
# reference time), the demo user and directory (DEMO_USER, DEMO_USERDIR) and
# the administrator's values (AGENT_USERDN, AGENT_IDENTITY, ...). An existing
# DIR/demo.db is replaced.
set -euo pipefail
root=$(cd "$(dirname "$0")/.." && pwd)
build="" lxrdir="" dir="" ldif=$root/examples/demo.ldif config=$root/examples/lxrapi.toml
while [ $# -gt 0 ]; do
  case $1 in
    --build) build=$2; shift 2 ;;
    --lxrdir) lxrdir=$2; shift 2 ;;
    --dir) dir=$2; shift 2 ;;
    --ldif) ldif=$2; shift 2 ;;
    --config) config=$2; shift 2 ;;
    *) echo "make-demo.sh: unknown argument: $1" >&2; exit 2 ;;
  esac
done
[ -n "$build$lxrdir" ] && [ -n "$dir" ] || { echo "usage: make-demo.sh --build BUILD_DIR --dir DIR" >&2; exit 2; }
if [ -z "$lxrdir" ]; then
  build=$(cd "$build" && pwd)
  lxrdir=$(find "$build/src/api" -type f -name lxrdir -perm -u+x 2>/dev/null | head -1)
  [ -n "$lxrdir" ] || { echo "make-demo.sh: lxrdir is not built in $build" >&2; exit 1; }
fi
[ -x "$lxrdir" ] || { echo "make-demo.sh: not an executable: $lxrdir" >&2; exit 1; }
lxrdir=$(cd "$(dirname "$lxrdir")" && pwd)/$(basename "$lxrdir")

mkdir -p "$dir"
dir=$(cd "$dir" && pwd)
rm -f "$dir/demo.db" "$dir/demo.db-journal" "$dir/demo.db-wal" "$dir/demo.db-shm"
"$lxrdir" create "$dir/demo.db" "$ldif" >/dev/null
# Every store of the example configuration is the one demo store.
sed -E 's|^([[:space:]]*store[[:space:]]*=[[:space:]]*)"[^"]*"|\1"demo.db"|' "$config" >"$dir/lxrapi.toml"
cp "$root/web/lighttpd/demo-agent.conf" "$dir/agent.conf"

# The reference time the demo data is written for (see the head of the LDIF).
now=$(sed -nE 's/.*LXR_NOW=([0-9]+).*/\1/p' "$ldif" | head -1)
agent() { sed -nE "s/^var\.agent_$1[[:space:]]*=[[:space:]]*\"([^\"]*)\".*/\1/p" "$dir/agent.conf"; }
{
  echo "LXRAPI_CONFIG='$dir/lxrapi.toml'"
  echo "LXR_NOW='$now'"
  echo "LXRDIR='$lxrdir'"
  echo "DEMO_STORE='$dir/demo.db'"
  echo "DEMO_USERDIR='staff'"
  echo "DEMO_USER='alice'"
  for k in userdn namespace server userpath identity context; do
    echo "AGENT_${k^^}='$(agent "$k")'"
  done
} >"$dir/demo.env"
echo "$dir"
