#!/usr/bin/env bash
# Web throughput benchmark: LXRAdmin's user display page for a demo user, and
# a trivial compiled CGI that prints a fixed page, both through the same
# lighttpd (web/lighttpd.sh) in the same run, measured with wrk on loopback.
# Then the peak memory of one LXRAdmin process serving that page, and its CPU
# time per process against the trivial CGI's (when perf is installed).
#
#   bench/web/run.sh [BUILD_DIR] [SECONDS]     (defaults: build, 10)
#
# Build first: ninja -C BUILD_DIR LXRAdmin lxrdir web_trivial_cgi web_spawn_time \
#   web_floor_cxx web_floor_icu web_floor_store web_floor_api
# Targets: the display page at half the trivial CGI's rate or better; peak
# resident memory of one LXRAdmin process under 8 MB; its CPU time per
# process at most twice the trivial CGI's.
set -euo pipefail
root=$(cd "$(dirname "$0")/../.." && pwd)
build=$(cd "${1:-$root/build}" && pwd)
seconds=${2:-10}
exe=$build/src/driver/LXRAdmin
trivial=$build/bench/web/web_trivial_cgi
spawn=$build/bench/web/web_spawn_time
floors=(web_floor_cxx web_floor_icu web_floor_store web_floor_api)
for f in "$exe" "$trivial" "$spawn" "${floors[@]/#/$build/bench/web/}"; do
  [ -x "$f" ] || { echo "missing $f; build it first" >&2; exit 2; }
done
command -v wrk >/dev/null || { echo "wrk is not installed (bash scripts/deps.sh)" >&2; exit 2; }

work=$(mktemp -d "${TMPDIR:-/tmp}/lxr-webbench.XXXXXX")
run=$work/server
cleanup() {
  bash "$root/web/lighttpd.sh" stop --run "$run" >/dev/null 2>&1 || true
  rm -rf "$work"
}
trap cleanup EXIT

# A private copy of the demo directory; its settings (the demo user, the
# administrator's identity) come from web/demo.env.
bash "$root/web/make-demo.sh" --build "$build" --dir "$work/demo" >/dev/null
# shellcheck source=/dev/null
. "$work/demo/demo.env"

cgi_env() {  # the display page's environment, one NAME=VALUE a line
  printf '%s\n' REQUEST_METHOD=GET "QUERY_STRING=USERDIR=$DEMO_USERDIR&USER=$DEMO_USER" \
    SCRIPT_NAME=/cgi-bin/LXRAdmin "HTTP_KV_USERDN=$AGENT_USERDN" "HTTP_USERPATH=$AGENT_USERPATH" \
    "HTTP_KV_AUTHDIRNAMESPACE=$AGENT_NAMESPACE" "HTTP_KV_AUTHDIRSERVER=$AGENT_SERVER" \
    "HTTP_LXRADMIN=$AGENT_IDENTITY" "LXRAPI_CONFIG=$LXRAPI_CONFIG" "LXR_NOW=$LXR_NOW"
}
cgi_env >"$work/env-display"
with_env() {  # ENVFILE COMMAND... -> COMMAND with that environment alone
  local vars
  mapfile -t vars <"$1"
  shift
  env -i "${vars[@]}" "$@"
}
# One process serving the same page, with the CGI environment the server
# gives it (the agent's headers included) and nothing in between.
as_cgi() {
  (cd "$(dirname "$exe")" && with_env "$work/env-display" "$@")
}
# The floors' environments (floor_store.c, floor_api.c): the demo user's
# entry key, the administrator's path as LXRAdmin builds it from the agent's
# headers, and the display page's size.
page_bytes=$(as_cgi "$exe" | wc -c)
user_key=$(sqlite3 "$DEMO_STORE" "SELECT dn_key FROM entry WHERE dn_key LIKE 'uid=' || lower('$DEMO_USER') || ',%' LIMIT 1")
admin_path=${AGENT_USERPATH:-$AGENT_NAMESPACE//$AGENT_SERVER/$AGENT_USERDN}
printf '%s\n' "LXR_FLOOR_STORE=$DEMO_STORE" "LXR_FLOOR_KEY=$user_key" \
  "LXR_FLOOR_BYTES=$page_bytes" >"$work/env-floor-store"
printf '%s\n' "LXR_FLOOR_LIBRARY=$build/src/api/libLXRAPI.so.0" "LXR_FLOOR_ADMIN=$admin_path" \
  "LXR_FLOOR_USER=$DEMO_USERDIR/$DEMO_USER" "HTTP_LXRADMIN=$AGENT_IDENTITY" \
  "LXRAPI_CONFIG=$LXRAPI_CONFIG" "LXR_NOW=$LXR_NOW" "LXR_FLOOR_BYTES=$page_bytes" >"$work/env-floor-api"
# The server passes the floors' own variables on to every CGI.
server_env=()
while IFS= read -r var; do server_env+=(--env "$var"); done \
  < <(cat "$work/env-floor-store" "$work/env-floor-api" | grep '^LXR_FLOOR_' | sort -u)
for floor in store api; do
  with_env "$work/env-floor-$floor" "$build/bench/web/web_floor_$floor" >/dev/null ||
    { echo "web_floor_$floor failed" >&2; exit 1; }
done
url=$(bash "$root/web/lighttpd.sh" start --run "$run" --cgi "$exe" \
  --agent "$work/demo/agent.conf" --env "LXRAPI_CONFIG=$LXRAPI_CONFIG" \
  --alias "/cgi-bin/trivial=$trivial" --alias "/cgi-bin/floor_store=$build/bench/web/web_floor_store" \
  --alias "/cgi-bin/floor_api=$build/bench/web/web_floor_api" "${server_env[@]}")
display="$url/cgi-bin/LXRAdmin?USERDIR=$DEMO_USERDIR&USER=$DEMO_USER"
fixed="$url/cgi-bin/trivial"
store_floor="$url/cgi-bin/floor_store"
api_floor="$url/cgi-bin/floor_api"

# Each answers properly before anything is measured.
http_get() {  # PATH -> the whole response, over a plain socket
  local port=${url##*:}
  exec 3<>"/dev/tcp/127.0.0.1/$port"
  printf 'GET %s HTTP/1.0\r\nHost: 127.0.0.1\r\n\r\n' "$1" >&3
  cat <&3
  exec 3<&-
}
page=$(http_get "${display#"$url"}")
case $page in *'NAME="PostForm"'*) ;; *) echo "display page is not a user page:" >&2; echo "$page" | head -20 >&2; exit 1 ;; esac
case $(http_get /cgi-bin/trivial) in "HTTP/1.0 200"*) ;; *) echo "trivial CGI failed" >&2; exit 1 ;; esac
for floor in floor_store floor_api; do
  case $(http_get "/cgi-bin/$floor") in "HTTP/1.0 200"*) ;; *) echo "$floor failed" >&2; exit 1 ;; esac
done

measure() {  # name url -> "name rate non2xx"
  local out rate bad
  out=$(wrk -t2 -c8 -d"${seconds}s" --latency "$2")
  echo "$out" >"$work/wrk-$1.txt"
  rate=$(awk '/^Requests\/sec:/ {print $2}' <<<"$out")
  bad=$(awk '/Non-2xx or 3xx responses:/ {print $5}' <<<"$out")
  echo "$1 $rate ${bad:-0}"
}
measure trivial "$fixed" >"$work/trivial.txt"
measure display "$display" >"$work/display.txt"
read -r _ trivial_rate trivial_bad <"$work/trivial.txt"
read -r _ display_rate display_bad <"$work/display.txt"
measure store "$store_floor" >"$work/store.txt"
measure api "$api_floor" >"$work/api.txt"
read -r _ store_rate store_bad <"$work/store.txt"
read -r _ api_rate api_bad <"$work/api.txt"

peak_kb=$(as_cgi /usr/bin/time -f '%M' "$exe" 2>&1 >/dev/null | tail -1)

# CPU time per process (perf stat task-clock, which other load disturbs far
# less than throughput): the display page and the trivial CGI, in turns,
# LXR_BENCH_ROUNDS rounds (default 2) of LXR_BENCH_RUNS processes each
# (default 300); the minimum and median of the round means are reported.
rounds=${LXR_BENCH_ROUNDS:-2} runs=${LXR_BENCH_RUNS:-300}
cpu_display="" cpu_trivial="" cpu_store="" cpu_api=""
if command -v perf >/dev/null 2>&1; then
  task_clock() { "$@" 2>&1 >/dev/null | awk -F, '/task-clock/ {print $1}'; }
  for _ in $(seq "$rounds"); do
    t=$(task_clock env -i perf stat -r "$runs" -x, -e task-clock "$trivial")
    d=$(task_clock as_cgi perf stat -r "$runs" -x, -e task-clock "$exe")
    fs=$(task_clock with_env "$work/env-floor-store" perf stat -r "$runs" -x, -e task-clock "$build/bench/web/web_floor_store")
    fa=$(task_clock with_env "$work/env-floor-api" perf stat -r "$runs" -x, -e task-clock "$build/bench/web/web_floor_api")
    echo "task-clock ms: trivial $t, display $d, store floor $fs, API floor $fa" >&2
    cpu_trivial="$cpu_trivial $t" cpu_display="$cpu_display $d"
    cpu_store="$cpu_store $fs" cpu_api="$cpu_api $fa"
  done
fi
# Wall time per process, fork to wait, the trivial CGI, the identity-failure
# page (no API call) and the display page in turns (LXR_BENCH_SPAWNS of each,
# default 500): the median of many single runs moves far less with other
# load than any mean.
: >"$work/env-trivial"
grep -v '^HTTP_LXRADMIN=' "$work/env-display" >"$work/env-identity"
spawn_table=$("$spawn" "${LXR_BENCH_SPAWNS:-500}" "$work/env-trivial" "$trivial" \
  "$work/env-trivial" "$build/bench/web/web_floor_cxx" "$work/env-trivial" "$build/bench/web/web_floor_icu" \
  "$work/env-floor-store" "$build/bench/web/web_floor_store" \
  "$work/env-floor-api" "$build/bench/web/web_floor_api" \
  "$work/env-identity" "$exe" "$work/env-display" "$exe")

min_median() {  # numbers -> "min median" (an even count: the middle two's mean)
  tr ' ' '\n' <<<"$1" | awk 'NF' | sort -n | awk '{ v[NR] = $1 } END {
    if (NR == 0) { print 0, 0; exit }
    m = NR % 2 ? v[(NR + 1) / 2] : (v[NR / 2] + v[NR / 2 + 1]) / 2
    print v[1], m }'
}
read -r ct_min ct <<<"$(min_median "$cpu_trivial")"
read -r cd_min cd <<<"$(min_median "$cpu_display")"
read -r _ cs <<<"$(min_median "$cpu_store")"
read -r _ ca <<<"$(min_median "$cpu_api")"

awk -v t="$trivial_rate" -v d="$display_rate" -v tb="$trivial_bad" -v db="$display_bad" \
    -v kb="$peak_kb" -v secs="$seconds" -v ct="$ct" -v cd="$cd" -v ctm="$ct_min" -v cdm="$cd_min" \
    -v rounds="$rounds" -v runs="$runs" -v cs="$cs" -v ca="$ca" -v s="$store_rate" -v sb="$store_bad" -v a="$api_rate" -v ab="$api_bad" 'BEGIN {
  printf "wrk -t2 -c8 -d%ss on 127.0.0.1, same lighttpd\n", secs
  printf "%-28s %12s %10s\n", "page", "requests/s", "non-2xx"
  printf "%-28s %12.1f %10d\n", "trivial CGI (fixed page)", t, tb
  printf "%-28s %12.1f %10d\n", "LXRAdmin user display page", d, db
  printf "%-28s %12.1f %10d\n", "floor: store alone", s, sb
  printf "%-28s %12.1f %10d\n", "floor: API alone", a, ab
  printf "display / trivial = %.2f (target: at least 0.50); floors / trivial: store %.2f, API %.2f\n", d / t, s / t, a / t
  printf "peak RSS of one LXRAdmin process: %.1f MB (target: under 8 MB)\n", kb / 1024
  if (ct > 0)
    printf "CPU per process (%d rounds of %d, min / median): display %.2f / %.2f ms, trivial %.2f / %.2f ms, ratio of medians %.2f (target: at most 2.0)\n", rounds, runs, cdm, cd, ctm, ct, cd / ct
  if (ct > 0 && cs > 0)
    printf "floors, median CPU per process x trivial: store alone %.2f, API alone %.2f\n", cs / ct, ca / ct
}'
echo "wall time per process, fork to wait (trivial CGI; floors: C++, C++ with static ICU, store alone, API alone; identity-failure page; display page):"
echo "$spawn_table"
