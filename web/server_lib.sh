# Helpers shared by web/lighttpd.sh and web/apache.sh; sourced, not run.
# The sourcing script sets SERVER_NAME (for messages) before sourcing.

die() { echo "$SERVER_NAME: $*" >&2; exit 1; }

# A value goes between double quotes in the generated configuration.
quote() {
  case $1 in *'"'* | *'\'*) die "value may not contain quotes or backslashes: $1" ;; esac
  printf '"%s"' "$1"
}

port_answers() { (exec 3<>"/dev/tcp/$1/$2") 2>/dev/null; }

# Ends the server whose PID is in the file $1 (by that PID only) and waits
# up to $2 tenths of a second for it to go.
stop_pidfile() {
  local pidfile=$1 tenths=$2 pid
  [ -f "$pidfile" ] || { echo "$SERVER_NAME: no server recorded in $(dirname "$pidfile")" >&2; return 0; }
  pid=$(cat "$pidfile")
  if kill "$pid" 2>/dev/null; then
    for _ in $(seq "$tenths"); do kill -0 "$pid" 2>/dev/null || break; sleep 0.1; done
  fi
  rm -f "$pidfile"
}
