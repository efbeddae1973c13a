#!/usr/bin/env bash
# The whole program over the LDAP store, run by run.sh (which starts slapd and
# exports LXR_LDAP_*): the real LXRAdmin reads users (-R), writes update files
# (-W) and shows a display page (CGI GET) once with examples/ldap/lxrapi.toml
# against the server and once with examples/lxrapi.toml against an embedded
# store made from the same demo LDIF. Both must answer byte for byte alike,
# and lxrdir must show the same audit trail. Then a server that cannot be
# reached must give -7 with a message naming it.
#
#   program.sh --exe LXRAdmin --lxrdir lxrdir --source DIR
set -u

exe='' lxrdir='' source=''
while [ $# -gt 0 ]; do
    case "$1" in
        --exe) exe=$2; shift 2 ;;
        --lxrdir) lxrdir=$2; shift 2 ;;
        --source) source=$2; shift 2 ;;
        *) echo "program.sh: unknown option $1" >&2; exit 2 ;;
    esac
done
if [ ! -x "$exe" ] || [ ! -x "$lxrdir" ] || [ ! -d "$source" ]; then
    echo "program.sh: bad options" >&2
    exit 2
fi
: "${LXR_LDAP_URL:?run through run.sh}" "${LXR_LDAP_WORK:?}" "${LXR_LDAP_PASSWORD_FILE:?}"
absolute() { echo "$(cd "$(dirname "$1")" && pwd)/$(basename "$1")"; }
exe=$(absolute "$exe") lxrdir=$(absolute "$lxrdir") source=$(cd "$source" && pwd)

work=$LXR_LDAP_WORK
mkdir -p "$work/embedded" "$work/ldap" "$work/out"
"$lxrdir" create "$work/embedded/demo.db" "$source/examples/demo.ldif" >/dev/null || exit 2
sed -e 's|"../var/demo.db"|"demo.db"|' "$source/examples/lxrapi.toml" >"$work/embedded/lxrapi.toml"
"$lxrdir" create "$work/ldap/audit.db" >/dev/null || exit 2
ldap_config() { # URL: the example's LDAP configuration for that server
    sed -e "s|ldap://127.0.0.1:3890|$1|" \
        -e "s|\"../../var/ldap.secret\"|\"$LXR_LDAP_PASSWORD_FILE\"|" \
        -e 's|"../../var/ldap-audit.db"|"audit.db"|' "$source/examples/ldap/lxrapi.toml"
}
ldap_config "$LXR_LDAP_URL" >"$work/ldap/lxrapi.toml"

export LXR_NOW=1780315200 LXRADMIN_CATALOGUE=$work/no-catalogue
lead=LDAP://demo/uid=hd.lead,ou=admins,o=example

# run NAME SIDE [VAR=VALUE...] -- ARGUMENTS: LXRAdmin with the side's
# configuration; exit status, output and errors into out/NAME.SIDE.
run() {
    local name=$1 side=$2
    shift 2
    local vars=()
    while [ "$1" != -- ]; do vars+=("$1"); shift; done
    shift
    local out=$work/out/$name.$side
    (cd "$work" && env "${vars[@]+"${vars[@]}"}" LXRAPI_CONFIG="$work/$side/lxrapi.toml" \
        "$exe" "$@" >"$out.stdout" 2>"$out.stderr" </dev/null)
    local status=$?
    {
        echo "exit $status"
        cat "$out.stdout"
        echo "--- stderr"
        cat "$out.stderr"
    } >"$out"
}

failures=0
same() { # NAME: both sides answered alike
    if grep -qx 'exit 12[67]' "$work/out/$1.embedded"; then
        echo "FAIL $1: the program did not run:"
        cat "$work/out/$1.embedded"
        failures=$((failures + 1))
    elif ! diff -u "$work/out/$1.embedded" "$work/out/$1.ldap" >"$work/out/$1.diff"; then
        echo "FAIL $1: the LDAP store answers otherwise than the embedded one:"
        head -n 40 "$work/out/$1.diff"
        failures=$((failures + 1))
    else
        echo "ok   $1"
    fi
}
both() { # NAME [VAR=VALUE...] -- ARGUMENTS
    local name=$1
    shift
    run "$name" embedded "$@"
    run "$name" ldap "$@"
    same "$name"
}
expect() { # NAME SIDE TEXT: the side's answer holds TEXT
    if grep -qF -- "$3" "$work/out/$1.$2"; then
        echo "ok   $1 holds '$3'"
    else
        echo "FAIL $1: '$3' not found in:"
        head -n 20 "$work/out/$1.$2"
        failures=$((failures + 1))
    fi
}

# A read on the command line (the API's answers over both stores, user by
# user, are compared in ldap_store_test.cc; here the program around them).
both read-rupert -- "-A$lead" -Chelpdesk -Rstaff/rupert
expect read-rupert ldap 'disabled="Disabled forever,Failure count 7 reached the maximum of 5,Suspended by security"'

# The display page of a CGI request.
both display-rupert REQUEST_METHOD=GET HTTP_KV_USERDN=uid=hd.lead,ou=admins,o=example \
    HTTP_USERPATH=$lead HTTP_LXRADMIN=helpdesk SCRIPT_NAME=/cgi-bin/LXRAdmin \
    "HTTP_USER_AGENT=Mozilla/5.0 (X11; Linux x86_64; rv:128.0) Gecko/20100101 Firefox/128.0" \
    QUERY_STRING='USERDIR=staff&USER=rupert' --

# A write from a file, read back, and the audit trail.
cat >"$work/judy.xml" <<'EOF'
<User name="uid=judy,ou=staff,o=example">
    <Attribute name="kvlxrFailureCount">
        <Value>0 20260601120000Z</Value>
    </Attribute>
    <Attribute name="kvlxrRealmBasedFailureCount"><Value/></Attribute>
    <Group name="vpn-users" member="1"/>
</User>
EOF
both write-judy -- "-A$lead" -Chelpdesk "-W$work/judy.xml"
both read-judy -- "-A$lead" -Chelpdesk -Rstaff/judy
expect read-judy ldap '<Value>0 20260601120000Z</Value>'
expect read-judy ldap '<Group name="vpn-users" prompt="#VPN Access" read="true" write="true" member="true"/>'
"$lxrdir" audit "$work/embedded/demo.db" >"$work/out/audit.embedded" 2>&1
"$lxrdir" audit "$work/ldap/audit.db" >"$work/out/audit.ldap" 2>&1
same audit
expect audit ldap 'group cn=vpn-users,ou=groups,o=example: "not a member" -> "member"'

# A server nobody answers on: -7 (exit 249) naming the server, on the
# command line and as the CGI error page.
dead=ldap://127.0.0.1:1
mkdir -p "$work/dead"
ldap_config "$dead" >"$work/dead/lxrapi.toml"
run dead-read dead -- "-A$lead" -Chelpdesk -Rstaff/alice
expect dead-read dead 'exit 249'
expect dead-read dead "Message: LDAP directory $dead cannot be reached: Can't contact LDAP server"
run dead-page dead REQUEST_METHOD=GET HTTP_KV_USERDN=uid=hd.lead,ou=admins,o=example \
    HTTP_USERPATH=$lead HTTP_LXRADMIN=helpdesk SCRIPT_NAME=/cgi-bin/LXRAdmin \
    QUERY_STRING='USERDIR=staff&USER=alice' --
expect dead-page dead 'Status: 503 SERVICE UNAVAILABLE'
expect dead-page dead "LDAP directory $dead cannot be reached"

[ "$failures" = 0 ] || { echo "program.sh: $failures checks failed"; exit 1; }
echo "program.sh: all checks passed"
