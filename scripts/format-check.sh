#!/usr/bin/env bash
# Fails when a tracked C++ file differs from what the committed .clang-format
# makes of it, and names the files. `bash scripts/format-check.sh --fix`
# rewrites them instead.
set -euo pipefail
cd "$(dirname "$0")/.."
command -v clang-format >/dev/null || { echo "format-check: clang-format is not installed (apt-get install clang-format)" >&2; exit 2; }
mapfile -t files < <(git ls-files '*.cc' '*.h' '*.cpp' '*.hpp' | grep -v '^third_party/' || true)
if [[ "${1:-}" == "--fix" ]]; then
  clang-format -i "${files[@]}"
  exit 0
fi
bad=()
for f in "${files[@]}"; do
  clang-format --dry-run --Werror "$f" >/dev/null 2>&1 || bad+=("$f")
done
if ((${#bad[@]})); then
  printf 'format-check: not formatted with .clang-format: %s\n' "${bad[@]}" >&2
  echo "format-check: run 'bash scripts/format-check.sh --fix'" >&2
  exit 1
fi
echo "format-check: ${#files[@]} files formatted"
