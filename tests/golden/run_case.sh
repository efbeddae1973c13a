#!/usr/bin/env bash
# Runs one golden case against the real LXRAdmin and compares the whole
# outcome (exit status, standard output, standard error) with its golden file.
#
#   run_case.sh --exe LXRAdmin --lxrdir lxrdir --catalogue DIR --source DIR \
#               --golden FILE CASEFILE
#
# With LXR_REGENERATE_GOLDEN=1 in the environment the golden file is
# (re)written from this run instead of compared; review the diff before
# committing it. The case format is described in README.md beside this file.
set -u

exe= lxrdir= catalogue= source= golden=
while [ $# -gt 1 ]; do
    case "$1" in
        --exe) exe=$2; shift 2 ;;
        --lxrdir) lxrdir=$2; shift 2 ;;
        --catalogue) catalogue=$2; shift 2 ;;
        --source) source=$2; shift 2 ;;
        --golden) golden=$2; shift 2 ;;
        *) echo "run_case.sh: unknown option $1" >&2; exit 2 ;;
    esac
done
casefile=${1:?usage: run_case.sh options CASEFILE}
[ -x "$exe" ] || { echo "run_case.sh: no LXRAdmin at '$exe'" >&2; exit 2; }

work=$(mktemp -d "${TMPDIR:-/tmp}/lxr-golden.XXXXXX") || exit 2
trap 'chmod -R u+rwx "$work" 2>/dev/null; rm -rf "$work"' EXIT
actual=$work/.actual
: >"$actual"
config=$work/demo/lxrapi.toml

subst() {
    local s=$1
    s=${s//@WORK@/$work}
    s=${s//@SOURCE@/$source}
    s=${s//@CATALOGUE@/$catalogue}
    s=${s//@CONFIG@/$config}
    s=${s//@PROGRAM_CATALOGUE@/$(dirname "$exe")/catalogue}
    printf '%s' "$s"
}

# A private copy of the demo directory, built from the demo LDIF, and an API
# configuration that points at it.
setup_demo() {
    [ -x "$lxrdir" ] || { echo "run_case.sh: no lxrdir at '$lxrdir'" >&2; exit 2; }
    mkdir -p "$work/demo"
    # Store paths are relative to the configuration file.
    sed -e 's|^\([[:space:]]*store[[:space:]]*=[[:space:]]*\)".*"|\1"demo.db"|' \
        "$source/examples/lxrapi.toml" >"$config"
    "$lxrdir" create "$work/demo/demo.db" "$source/examples/demo.ldif" >"$work/.lxrdir.log" 2>&1 || {
        echo "run_case.sh: lxrdir failed:" >&2
        cat "$work/.lxrdir.log" >&2
        exit 2
    }
}

# Outputs name the case's own temporary directory; show it as @WORK@.
normalise() { sed -e "s|$work|@WORK@|g" "$1"; }

runs=0
envs=() args=() stdin= auto_length=
run_now() {
    runs=$((runs + 1))
    local have_now= have_cat= have_cfg= e
    for e in "${envs[@]+"${envs[@]}"}"; do
        case "$e" in
            LXR_NOW=*) have_now=1 ;;
            LXRADMIN_CATALOGUE=*) have_cat=1 ;;
            LXRAPI_CONFIG=*) have_cfg=1 ;;
        esac
    done
    # Fixed "now", no catalogue and no API configuration unless the case says
    # otherwise, so that nothing of the machine leaks into the output.
    [ -n "$have_now" ] || envs+=("LXR_NOW=1780315200")
    [ -n "$have_cat" ] || envs+=("LXRADMIN_CATALOGUE=$work/no-catalogue")
    if [ -z "$have_cfg" ]; then
        if [ -f "$config" ]; then envs+=("LXRAPI_CONFIG=$config"); else envs+=("LXRAPI_CONFIG=$work/no-config.toml"); fi
    fi
    local in=/dev/null
    if [ -n "$stdin" ]; then in=$stdin; fi
    if [ -n "$auto_length" ]; then envs+=("CONTENT_LENGTH=$(wc -c <"$in")"); fi
    (cd "$work" && exec timeout 20 env -i "${envs[@]}" "$exe" "${args[@]+"${args[@]}"}" \
        <"$in" >"$work/.stdout" 2>"$work/.stderr")
    local status=$?
    normalise "$work/.stdout" >"$work/.stdout.n"
    normalise "$work/.stderr" >"$work/.stderr.n"
    {
        printf -- '--- run %d: exit %d\n' "$runs" "$status"
        printf -- '--- stdout: %d bytes\n' "$(wc -c <"$work/.stdout.n")"
        cat "$work/.stdout.n"
        printf -- '\n--- stderr: %d bytes\n' "$(wc -c <"$work/.stderr.n")"
        cat "$work/.stderr.n"
        printf -- '\n'
    } >>"$actual"
    envs=() args=() stdin= auto_length=
}

lineno=0
while IFS= read -r line || [ -n "$line" ]; do
    lineno=$((lineno + 1))
    case "$line" in '' | '#'*) continue ;; esac
    word=${line%% *}
    rest=
    [ "$word" != "$line" ] && rest=${line#* }
    case "$word" in
        env) envs+=("$(subst "$rest")") ;;
        arg) args+=("$(subst "$rest")") ;;
        stdin | stdin-line)
            [ -n "$stdin" ] || { stdin=$work/.stdin.$((runs + 1)); : >"$stdin"; }
            printf '%s' "$(subst "$rest")" >>"$stdin"
            [ "$word" = stdin-line ] && printf '\n' >>"$stdin"
            ;;
        file)
            name=${rest%% *}
            text=
            [ "$name" != "$rest" ] && text=${rest#* }
            mkdir -p "$(dirname "$work/$name")"
            printf '%s\n' "$(subst "$text")" >>"$work/$name"
            ;;
        content-length) auto_length=1 ;;
        mkdir) mkdir -p "$work/$rest" ;;
        demo) setup_demo ;;
        run) run_now ;;
        *) echo "$casefile:$lineno: unknown directive '$word'" >&2; exit 2 ;;
    esac
done <"$casefile"
# The last run needs no "run" line.
if [ ${#envs[@]} -gt 0 ] || [ ${#args[@]} -gt 0 ] || [ -n "$stdin" ] || [ "$runs" -eq 0 ]; then
    run_now
fi

if [ "${LXR_REGENERATE_GOLDEN:-0}" = 1 ]; then
    mkdir -p "$(dirname "$golden")"
    cp "$actual" "$golden"
    echo "regenerated $golden"
    exit 0
fi
if [ ! -f "$golden" ]; then
    echo "no golden file $golden; run with LXR_REGENERATE_GOLDEN=1 and review it" >&2
    cat "$actual"
    exit 1
fi
if ! cmp -s "$golden" "$actual"; then
    echo "output differs from $golden:" >&2
    diff -u "$golden" "$actual" | head -200
    exit 1
fi
exit 0
