#!/usr/bin/env bash
# Builds the Debian packages (lxradmin, liblxrapi0, liblxrapi-dev) with
# dpkg-buildpackage from a copy of the checkout, so that neither the checkout
# nor its parent folder gets the build's files.
#
#   bash scripts/package.sh [--out DIR]      (default DIR: build/package)
#
# The copy is DIR/lxradmin-VERSION; the .deb files, the .changes and the
# .buildinfo land in DIR. The copy's CMake folder (obj-*) is kept from one
# run to the next, so a second build compiles only what changed. Prints the
# path of the .changes file.
set -euo pipefail
cd "$(dirname "$0")/.."
ROOT=$PWD
OUT=build/package
while [ $# -gt 0 ]; do
  case $1 in
    --out) OUT=$2; shift 2 ;;
    *) echo "usage: bash scripts/package.sh [--out DIR]" >&2; exit 2 ;;
  esac
done

version=$(dpkg-parsechangelog -l debian/changelog -S Version)
mkdir -p "$OUT"
OUT=$(cd "$OUT" && pwd)
stage=$OUT/lxradmin-$version

# Only the project's files: what git tracks (or would, for new files), else
# everything but build output and local state.
list_files() {
  if git -C "$ROOT" rev-parse --is-inside-work-tree >/dev/null 2>&1; then
    git -C "$ROOT" ls-files -z --cached --others --exclude-standard |
      while IFS= read -r -d '' f; do [ -e "$f" ] && printf '%s\0' "$f"; done
  else
    find . -path ./.git -prune -o -path './build*' -prune -o -path ./var -prune \
      -o -name node_modules -prune -o -path './debian/tmp' -prune -o -type f -printf '%P\0'
  fi
}

mkdir -p "$stage"
find "$stage" -mindepth 1 -maxdepth 1 ! -name 'obj-*' -exec rm -rf {} +
# tar keeps the files' times, so the kept CMake folder sees unchanged sources.
list_files | tar -C "$ROOT" --null -T - -cf - | tar -C "$stage" -xf -
rm -f "$OUT"/*.deb "$OUT"/*.ddeb "$OUT"/*.changes "$OUT"/*.buildinfo

(cd "$stage" && dpkg-buildpackage -us -uc -b -nc -j"${LXR_PACKAGE_JOBS:-2}") >"$OUT/build.log" 2>&1 || {
  tail -40 "$OUT/build.log" >&2
  echo "package: dpkg-buildpackage failed; the whole log is $OUT/build.log" >&2
  exit 1
}
ls "$OUT"/lxradmin_"$version"_*.changes
