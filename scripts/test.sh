#!/usr/bin/env bash
# Installs what is needed, builds, and runs every test.
set -euo pipefail
cd "$(dirname "$0")/.."
LXR_WITH_BROWSER=1 bash scripts/deps.sh
bash scripts/build.sh -DLXR_WERROR=ON
ctest --test-dir "${LXR_BUILD_DIR:-build}" --output-on-failure -j2
