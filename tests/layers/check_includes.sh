#!/usr/bin/env bash
# Lists every include in src/<folder> that names a folder the layer order
# does not allow it (cmake/LxrLayers.cmake), and fails when there is one.
# Test files may also include the shared test helpers (tests/support). The API
# library stands apart: of the program's folders it reads the locale lists
# only; its tests read its documents back with the program's readers.
set -euo pipefail
src=${1:?usage: check_includes.sh <src folder>}

declare -A allowed=(
  [platform]="platform"
  [state]="state platform"
  [cgi]="cgi state platform"
  [i18n]="i18n state platform"
  [html]="html i18n cgi state platform"
  [fields]="fields i18n cgi state platform"
  [pages]="pages html fields i18n cgi state platform"
  [driver]="driver pages html fields i18n cgi state platform"
  [list]="list driver pages html fields i18n cgi state platform"
)
program_folders="${!allowed[*]}"

bad=0
report() {
  echo "$1: includes \"$2\" against the layer order" >&2
  bad=1
}

for folder in "${!allowed[@]}"; do
  while IFS= read -r file; do
    testfile=0
    case $file in *_test.cc | *_test_support.h | */testing/*) testfile=1 ;; esac
    while IFS= read -r header; do
      case $header in ../* | */../*) report "$file" "$header"; continue ;; esac
      [[ $header == */* ]] || continue
      top=${header%%/*}
      [[ " ${allowed[$folder]} " == *" $top "* ]] && continue
      [[ $testfile == 1 && $header == support/* ]] && continue
      report "$file" "$header"
    done < <(sed -n 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*"\([^"]*\)".*/\1/p' "$file")
  done < <(find "$src/$folder" -name '*.h' -o -name '*.cc')
done

while IFS= read -r file; do
  testfile=0
  case $file in *_test.cc | *_test_support.*) testfile=1 ;; esac
  while IFS= read -r header; do
    top=${header%%/*}
    [[ $header == */* && " $program_folders " == *" $top "* ]] || continue
    [[ $header == i18n/locale_list.h ]] && continue
    [[ $testfile == 1 && ($header == pages/elements.h || $header == pages/directory_list.h) ]] &&
      continue
    report "$file" "$header"
  done < <(sed -n 's/^[[:space:]]*#[[:space:]]*include[[:space:]]*"\([^"]*\)".*/\1/p' "$file")
done < <(find "$src/api" -name '*.h' -o -name '*.cc')

exit $bad
