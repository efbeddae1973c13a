#!/usr/bin/env bash
# Interim demo of the administration API: installs what is needed, builds,
# creates the demo directory var/demo.db from examples/demo.ldif (once;
# --reset makes it anew), and shows one demo user's document as the helpdesk
# sees it. Safe to run again: an existing directory is kept with its changes.
#
#   bash scripts/demo.sh [--reset]        (LXR_BUILD_DIR picks the build folder)
set -euo pipefail
cd "$(dirname "$0")/.."

RESET=0
case "${1:-}" in
  --reset) RESET=1 ;;
  "") ;;
  *) echo "usage: bash scripts/demo.sh [--reset]" >&2; exit 2 ;;
esac

bash scripts/deps.sh
BUILD_DIR=${LXR_BUILD_DIR:-build}
if ! bash scripts/build.sh; then
  echo "demo: the full build failed; building the API and its tool only" >&2
  ninja -C "$BUILD_DIR" LXRAPI lxrdir
fi
LXRDIR="$BUILD_DIR/src/api/lxrdir"

mkdir -p var
if [ "$RESET" = 1 ]; then
  rm -f var/demo.db var/demo.db-wal var/demo.db-shm
fi
if [ -f var/demo.db ]; then
  echo "demo: var/demo.db exists; kept (--reset makes it anew)"
else
  "$LXRDIR" create var/demo.db examples/demo.ldif
fi

export LXRAPI_CONFIG="$PWD/examples/lxrapi.toml"
export LXR_NOW=${LXR_NOW:-1780315200}   # 2026-06-01T12:00:00Z, the demo data's "now"
ADMIN="LDAP://ldap.example.com/uid=hd.lead,ou=admins,o=example"

echo "== Directories of the role helpdesk"
"$LXRDIR" directories helpdesk
echo "== staff/rupert as the helpdesk sees him"
"$LXRDIR" read helpdesk "$ADMIN" staff/rupert
if [ -x "$BUILD_DIR/src/driver/LXRAdmin" ]; then
  echo "== The same through LXRAdmin's command line"
  (cd /tmp && "$OLDPWD/$BUILD_DIR/src/driver/LXRAdmin" "-A$ADMIN" -Chelpdesk -Rstaff/rupert) ||
    echo "demo: LXRAdmin's command line did not answer (result $?)"
fi
echo "== More: docs/api.md lists the demo accounts; for example"
echo "   LXRAPI_CONFIG=$LXRAPI_CONFIG LXR_NOW=$LXR_NOW $LXRDIR read auditor uid=auditor,ou=admins,o=example staff/ivan"
