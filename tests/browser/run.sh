#!/usr/bin/env bash
# Runs one suite of the web tests (headers | apache | pages | languages | attacks | ldap)
# with node's test runner. CTest calls it with LXR_EXE, LXR_LXRDIR, LXR_PROBE,
# LXR_SOURCE_DIR and LXR_ARTIFACTS set (tests/browser/CMakeLists.txt); by hand:
#   LXR_BUILD_DIR=build bash tests/browser/run.sh pages
# Exit 77 (CTest: skipped) when the suite's browser or server is not there.
set -euo pipefail
here=$(cd "$(dirname "$0")" && pwd)
suite=${1:?usage: run.sh headers|apache|pages|languages|attacks|ldap|list}

skip() { echo "SKIP: $* (install with: LXR_WITH_BROWSER=1 bash scripts/deps.sh)"; exit 77; }
case $suite in
  pages|languages|attacks|ldap|list) [ -x "${LXR_CHROMIUM:-/usr/bin/chromium}" ] || skip "Chromium is not installed" ;;
  apache) command -v apache2 >/dev/null || [ -x /usr/sbin/apache2 ] || skip "apache2 is not installed" ;;
  headers) ;;
  *) echo "unknown suite: $suite" >&2; exit 2 ;;
esac
command -v node >/dev/null || skip "node is not installed"
command -v lighttpd >/dev/null || [ -x /usr/sbin/lighttpd ] || { echo "lighttpd is not installed" >&2; exit 1; }

if [ -z "${LXR_EXE:-}" ]; then
  build=$(cd "${LXR_BUILD_DIR:-$here/../../build}" && pwd)
  export LXR_EXE=$build/src/driver/LXRAdmin
  export LXR_PROBE=$build/tests/browser/lxr_env_probe
  export LXR_LXRDIR=${LXR_LXRDIR:-$(find "$build/src/api" -type f -name lxrdir -perm -u+x 2>/dev/null | head -1)}
  LXR_SOURCE_DIR=$(cd "$here/../.." && pwd)
  export LXR_SOURCE_DIR
  export LXR_ARTIFACTS=$here/artifacts
fi

# The npm packages, installed from the committed lock file; one installer at a
# time when CTest runs suites side by side.
(
  flock 9
  if ! cmp -s "$here/package-lock.json" "$here/node_modules/.lxr-installed-lock" 2>/dev/null; then
    (cd "$here" && npm ci --no-audit --no-fund --loglevel=error)
    cp "$here/package-lock.json" "$here/node_modules/.lxr-installed-lock"
  fi
) 9>"$here/.npm-install.lock"

cd "$here"
exec node --test --test-concurrency=1 --test-reporter=spec "$suite.test.mjs"
