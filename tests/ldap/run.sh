#!/usr/bin/env bash
# Starts a private slapd (Debian's /usr/sbin/slapd, as the current user, on
# 127.0.0.1 and a free port) from examples/ldap, loads the demo directory into
# it, runs one command against it and stops the server by its PID, whatever
# happens to the command.
#
#   run.sh --source DIR [--ppolicy] -- COMMAND [ARGUMENTS...]
#
# With --ppolicy the server keeps the password-services state with its
# password policy overlay, last-bind times and an access log of binds
# (examples/ldap/slapd-config-ppolicy.ldif, policies.ldif).
#
# The command finds the server through the environment:
#   LXR_LDAP_URL            ldap://127.0.0.1:PORT
#   LXR_LDAP_BIND_DN        the API's service account
#   LXR_LDAP_PASSWORD_FILE  its password (one line)
#   LXR_LDAP_ROOT_DN        the database's root, and its password in
#   LXR_LDAP_ROOT_PASSWORD_FILE
#   LXR_LDAP_CA_FILE        the certificate for StartTLS ("" when openssl is missing)
#   LXR_LDAP_WORK           a scratch folder, removed afterwards
#   LXR_LDAP_SIZE_LIMIT     (read) the server's size limit, when not the
#                           examples' 500; the service account may page past it
#   LXR_LDAP_API_CONFIG     with --ppolicy: examples/ldap/lxrapi.toml for this
#                           server and its password policy, in the scratch
#                           folder; its audit file there, audit.db, is for the
#                           command to make (lxrdir create)
# Exit status: the command's; 77 (skipped) when slapd is not installed; 2
# when the server cannot be started or loaded.
set -u

source_dir='' ppolicy=0
while [ $# -gt 0 ]; do
    case "$1" in
        --source) source_dir=$2; shift 2 ;;
        --ppolicy) ppolicy=1; shift ;;
        --) shift; break ;;
        *) echo "run.sh: unknown option $1" >&2; exit 2 ;;
    esac
done
if [ -z "$source_dir" ] || [ $# -eq 0 ]; then
    echo "usage: run.sh --source DIR -- COMMAND..." >&2
    exit 2
fi

SLAPD=/usr/sbin/slapd
if [ ! -x "$SLAPD" ]; then
    echo "run.sh: $SLAPD is not installed (Debian package slapd); skipped"
    exit 77
fi
for tool in slapadd slappasswd ldapadd ldapsearch; do
    command -v "$tool" >/dev/null 2>&1 || { echo "run.sh: $tool is missing (slapd, ldap-utils)" >&2; exit 2; }
done

work=$(mktemp -d "${TMPDIR:-/tmp}/lxr-ldap.XXXXXX") || exit 2
slapd_pid=
stop() {
    if [ -n "$slapd_pid" ] && kill -0 "$slapd_pid" 2>/dev/null; then
        kill "$slapd_pid" 2>/dev/null
        for _ in $(seq 50); do kill -0 "$slapd_pid" 2>/dev/null || break; sleep 0.1; done
        kill -9 "$slapd_pid" 2>/dev/null
        wait "$slapd_pid" 2>/dev/null
    fi
    slapd_pid=
}
trap 'stop; rm -rf "$work"' EXIT
trap 'exit 130' INT TERM

fail() {
    echo "run.sh: $*" >&2
    [ -f "$work/slapd.log" ] && sed 's/^/  slapd: /' "$work/slapd.log" >&2
    exit 2
}

# Passwords for this run only.
random_text() { head -c 18 /dev/urandom | base64 | tr -d '/+='; }
printf '%s' "$(random_text)" >"$work/root.pw"
printf '%s\n' "$(random_text)" >"$work/service.pw"
chmod 600 "$work/root.pw" "$work/service.pw"

# The server's configuration from the example, with this run's folders.
mkdir -p "$work/slapd.d" "$work/data" "$work/run" "$work/log"
template=$source_dir/examples/ldap/slapd-config.ldif
[ "$ppolicy" = 1 ] && template=$source_dir/examples/ldap/slapd-config-ppolicy.ldif
root_hash=$(slappasswd -h '{SSHA}' -T "$work/root.pw") || fail "slappasswd failed"
sed -e "s|@RUN@|$work/run|g" -e "s|@DATA@|$work/data|g" -e "s|@LOG@|$work/log|g" \
    -e "s|@SCHEMA@|$source_dir/examples/ldap/kvlxr.ldif|g" -e "s|@ROOTPW@|$root_hash|g" \
    "$template" >"$work/config.ldif"
# A smaller size limit than the examples' 500, for tests of long results;
# the service account may then page past it, as docs/ldap.md advises.
[ -n "${LXR_LDAP_SIZE_LIMIT:-}" ] &&
    sed -i -e "s|^olcSizeLimit: .*|olcSizeLimit: $LXR_LDAP_SIZE_LIMIT|" \
        -e "s|^olcRootPW: .*|&\nolcLimits: dn.exact=\"cn=lxradmin,ou=services,o=example\" size.prtotal=unlimited|" \
        "$work/config.ldif"
# StartTLS, when openssl can make the server a certificate (for 127.0.0.1,
# its own CA).
tls_ca=''
if command -v openssl >/dev/null 2>&1 &&
    openssl req -x509 -newkey ec -pkeyopt ec_paramgen_curve:prime256v1 -nodes -days 2 \
        -subj /CN=127.0.0.1 -addext subjectAltName=IP:127.0.0.1 \
        -keyout "$work/tls.key" -out "$work/tls.pem" >/dev/null 2>&1; then
    tls_lines="olcTLSCertificateFile: $work/tls.pem\nolcTLSCertificateKeyFile: $work/tls.key"
    sed -i "s|^olcLogLevel: none\$|&\n$tls_lines|" "$work/config.ldif"
    tls_ca=$work/tls.pem
fi
slapadd -n0 -F "$work/slapd.d" -l "$work/config.ldif" >"$work/slapadd.log" 2>&1 ||
    { cat "$work/slapadd.log" >&2; fail "slapadd of the configuration failed"; }

# A free port: a random one nobody answers on; should another process take
# it before slapd does, slapd exits and the next port is tried.
port_answers() { (exec 3<>"/dev/tcp/127.0.0.1/$1") 2>/dev/null; }
url=
for _ in $(seq 10); do
    port=$((20000 + RANDOM % 40000))
    port_answers "$port" && continue
    "$SLAPD" -d 0 -F "$work/slapd.d" -h "ldap://127.0.0.1:$port/" >"$work/slapd.log" 2>&1 &
    slapd_pid=$!
    for _ in $(seq 100); do
        kill -0 "$slapd_pid" 2>/dev/null || break
        if ldapsearch -x -LLL -H "ldap://127.0.0.1:$port" -b "" -s base 1.1 >/dev/null 2>&1; then
            url="ldap://127.0.0.1:$port"
            break 2
        fi
        sleep 0.05
    done
    stop
done
[ -n "$url" ] || fail "slapd did not start"

# The demo directory: users with password-services attributes get the
# auxiliary class their attributes need (users without any are left as they
# are, so that the API's adding of the class is tested too), then the
# service account.
awk 'BEGIN { RS = ""; ORS = "\n\n" }
     /\nkv(lxr|fps)[A-Za-z]*:/ { sub(/\nobjectClass: inetOrgPerson/, "&\nobjectClass: kvlxrAccount") }
     { print }' "$source_dir/examples/demo.ldif" >"$work/demo.ldif"
service_hash=$(slappasswd -h '{SSHA}' -s "$(head -n 1 "$work/service.pw")") || fail "slappasswd failed"
sed -e "s|@SERVICE_PASSWORD@|$service_hash|" "$source_dir/examples/ldap/service-account.ldif" \
    >"$work/service.ldif"
ldifs=("$work/demo.ldif" "$work/service.ldif")
[ "$ppolicy" = 1 ] && ldifs+=("$source_dir/examples/ldap/policies.ldif")
for ldif in "${ldifs[@]}"; do
    ldapadd -x -H "$url" -D "cn=admin,o=example" -y "$work/root.pw" -f "$ldif" \
        >"$work/ldapadd.log" 2>&1 || { cat "$work/ldapadd.log" >&2; fail "ldapadd of $ldif failed"; }
done

mkdir -p "$work/scratch"
api_config=
if [ "$ppolicy" = 1 ]; then
    api_config=$work/scratch/lxrapi.toml
    sed -e "s|ldap://127.0.0.1:3890|$url|" \
        -e "s|\"../../var/ldap.secret\"|\"$work/service.pw\"|" \
        -e "s|\"../../var/ldap-audit.db\"|\"$work/scratch/audit.db\"|" \
        -e 's|^auxiliary_class = .*|&\npolicy = "ppolicy"\ndefault_policy = "cn=default,ou=policies,o=example"\npolicy_base = "ou=user-policies,ou=policies,o=example"|' \
        "$source_dir/examples/ldap/lxrapi.toml" >"$api_config"
fi
LXR_LDAP_URL=$url \
LXR_LDAP_BIND_DN="cn=lxradmin,ou=services,o=example" \
LXR_LDAP_PASSWORD_FILE=$work/service.pw \
LXR_LDAP_ROOT_DN="cn=admin,o=example" \
LXR_LDAP_ROOT_PASSWORD_FILE=$work/root.pw \
LXR_LDAP_CA_FILE=$tls_ca \
LXR_LDAP_WORK=$work/scratch \
LXR_LDAP_API_CONFIG=$api_config \
    "$@"
status=$?
kill -0 "$slapd_pid" 2>/dev/null || { echo "run.sh: slapd died during the test" >&2; status=2; }
exit $status
