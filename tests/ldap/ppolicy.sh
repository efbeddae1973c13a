#!/usr/bin/env bash
# The password-services state kept by the server's password policy, run by
# run.sh --ppolicy: every change made through the API is proved by real binds
# with ldapwhoami, and every state made by real binds is read back through
# the API (lxrdir read/write, the library's own C calls).
#
#   ppolicy.sh --lxrdir lxrdir --source DIR
set -u

lxrdir='' source=''
while [ $# -gt 0 ]; do
    case "$1" in
        --lxrdir) lxrdir=$2; shift 2 ;;
        --source) source=$2; shift 2 ;;
        *) echo "ppolicy.sh: unknown option $1" >&2; exit 2 ;;
    esac
done
[ -x "$lxrdir" ] && [ -d "$source" ] || { echo "ppolicy.sh: bad options" >&2; exit 2; }
: "${LXR_LDAP_URL:?run through run.sh --ppolicy}" "${LXR_LDAP_WORK:?}"
work=$LXR_LDAP_WORK H=$LXR_LDAP_URL
unset LXR_NOW  # the server judges by its own clock, so the API must too

"$lxrdir" create "$work/audit.db" >/dev/null || exit 2
sed -e "s|ldap://127.0.0.1:3890|$H|" \
    -e "s|\"../../var/ldap.secret\"|\"$LXR_LDAP_PASSWORD_FILE\"|" \
    -e "s|\"../../var/ldap-audit.db\"|\"$work/audit.db\"|" \
    -e 's|^auxiliary_class = .*|&\npolicy = "ppolicy"\ndefault_policy = "cn=default,ou=policies,o=example"|' \
    "$source/examples/ldap/lxrapi.toml" >"$work/lxrapi.toml"
export LXRAPI_CONFIG=$work/lxrapi.toml
lead=LDAP://demo/uid=hd.lead,ou=admins,o=example
staff=ou=staff,o=example

failures=0
check() { # NAME EXPECTED ACTUAL
    if [ "$2" = "$3" ]; then echo "ok   $1"; else
        echo "FAIL $1: expected [$2], got [$3]"; failures=$((failures + 1)); fi
}
bind() { # USER [PASSWORD]: ldapwhoami's exit status
    ldapwhoami -x -H "$H" -D "uid=$1,$staff" -w "${2:-Demo-pass1}" >/dev/null 2>&1; echo $?
}
search_as() { # USER PASSWORD: a search after the bind (refused while a change is due)
    ldapsearch -x -H "$H" -D "uid=$1,$staff" -w "$2" -b "uid=$1,$staff" -s base 1.1 >/dev/null 2>&1
    echo $?
}
read_user() { "$lxrdir" read helpdesk "$lead" "staff/$1" 2>/dev/null; }
value() { # USER ATTRIBUTE: the attribute's values as read, one per line
    read_user "$1" | tr -d '\n' | grep -o "<Attribute name=\"$2\"[^>]*>.*" |
        sed 's|</Attribute>.*||' | grep -o '<Value>[^<]*</Value>' | sed 's|</*Value>||g'
}
disabled() { read_user "$1" | sed -n 's|.*<User [^>]*disabled="\([^"]*\)".*|\1|p'; }
write() { # USER BODY: writes <User name=...>BODY</User>; prints the exit status and message
    printf '<User name="uid=%s,%s">%s</User>' "$1" "$staff" "$2" >"$work/update.xml"
    "$lxrdir" write helpdesk "$lead" "$work/update.xml" >"$work/write.out" 2>&1
    local status=$?
    [ "$status" = 0 ] || sed 's/^/    /' "$work/write.out" >&2
    echo $status
}
attribute() { printf '<Attribute name="%s"><Value>%s</Value></Attribute>' "$1" "$2"; }
root_modify() { # DN, LDIF changes on stdin, with Relax Rules
    { printf 'dn: %s\nchangetype: modify\n' "$1"; cat; } |
        ldapmodify -x -e relax -H "$H" -D "$LXR_LDAP_ROOT_DN" -y "$LXR_LDAP_ROOT_PASSWORD_FILE" >/dev/null
}
now() { date -u +%Y%m%d%H%M%SZ; }
locked_page() { # SIZE CONTINUATION: one page of the staff's locked list
    "$lxrdir" list helpdesk "$lead" \
        "<ListRequest directory=\"staff\" list=\"locked\" size=\"$1\" continuation=\"$2\"/>" 2>/dev/null
}
names() { sed -n 's|^<User name="\([^"]*\)".*|\1|p'; }
locked_by_ones() { # the locked list walked one user a page
    local continuation='' page
    for _ in $(seq 50); do
        page=$(locked_page 1 "$continuation")
        echo "$page" | names
        continuation=$(echo "$page" | sed -n 's|^<UserList .*continuation="\([^"]*\)".*|\1|p')
        [ -n "$continuation" ] || return
    done
}

# Wrong passwords count and lock; "Reset to Now" lets the user in again.
for _ in 1 2 3 4 5; do bind alice wrong >/dev/null; done
check "five failed binds are counted" 5 "$(value alice kvlxrFailureCount | cut -d' ' -f1)"
check "the lockout is a disabled reason" "Locked after 5 failed logins" "$(disabled alice)"
check "the locked user's right password is refused" 49 "$(bind alice)"
check "the locked list names her" alice "$(locked_page 1000 '' | names | grep -x alice)"
check "a page of one user at a time gives the same list" "$(locked_page 1000 '' | names)" \
    "$(locked_by_ones)"
check "reset to now is written" 0 "$(write alice "$(attribute kvlxrFailureCount "0 $(now)")")"
check "after the reset the right password works" 0 "$(bind alice)"
check "and she has left the locked list" "" "$(locked_page 1000 '' | names | grep -x alice)"
check "and no failures are shown" "" "$(value alice kvlxrFailureCount)"

# Forever, also when the same post resets the password.
check "Forever is written" 0 "$(write bob "$(attribute kvlxrDisableUntil 'FOREVER left the firm')")"
check "Forever refuses the right password" 49 "$(bind bob)"
check "Forever reads back with its comment" "FOREVER left the firm" "$(value bob kvlxrDisableUntil)"
check "Forever is a disabled reason" "Locked by an administrator" "$(disabled bob)"
check "a reset with Forever kept is written" 0 \
    "$(write bob "$(attribute userPassword Fresh-pass7)$(attribute kvlxrDisableUntil 'FOREVER left the firm')")"
check "Forever survives the password reset" 49 "$(bind bob Fresh-pass7)"
check "Not Set is written" 0 "$(write bob "$(attribute kvlxrDisableUntil '')")"
check "the new password then binds" 0 "$(bind bob Fresh-pass7)"
check "Forever set in the post of a reset is written" 0 \
    "$(write judy "$(attribute userPassword Fresh-pass7)$(attribute kvlxrDisableUntil 'FOREVER x')")"
check "and holds after it" 49 "$(bind judy Fresh-pass7)"

# Start and end dates.
check "a future disable-until date is written" 0 "$(write carol "$(attribute kvlxrDisableUntil 20991231000000Z)")"
check "it refuses the bind" 49 "$(bind carol)"
check "it is shown" "Not valid before 2099-12-31 00:00 UTC" "$(disabled carol)"
write carol "$(attribute kvlxrDisableUntil '')" >/dev/null
check "removing it lets the user in" 0 "$(bind carol)"
check "a past disable-after date is written" 0 "$(write dave "$(attribute kvlxrDisableAfter '20200101000000Z contract ended')")"
check "it refuses the bind" 49 "$(bind dave)"
check "it reads back with its comment" "20200101000000Z contract ended" "$(value dave kvlxrDisableAfter)"

# Must change at the next login.
check "must-change is written" 0 "$(write erin "$(attribute kvlxrImmediateChange 'YES via LXRAdmin')")"
check "the bind goes through" 0 "$(bind erin)"
check "but a search is refused" 50 "$(search_as erin Demo-pass1)"
check "must-change is a disabled reason" "Must change the password before anything else" "$(disabled erin)"
write erin "$(attribute kvlxrImmediateChange '')" >/dev/null
check "clearing it lets the search through" 0 "$(search_as erin Demo-pass1)"

# Grace logins after the password expired (the policy allows two).
printf 'replace: pwdChangedTime\npwdChangedTime: 20200101000000Z\n' | root_modify "uid=frank,$staff"
check "an expired password binds on a grace login" 0 "$(bind frank)"
check "the grace login is counted" 1 "$(value frank kvlxrGraceLoginsUsed)"
check "expiry with grace logins left is a reason" \
    "Password expired 2020-06-29 00:00 UTC; 1 grace logins left" "$(disabled frank)"
bind frank >/dev/null
check "without grace logins left the bind is refused" 49 "$(bind frank)"
check "grace logins are given back" 0 "$(write frank "$(attribute kvlxrGraceLoginsUsed '')")"
check "so the user binds again" 0 "$(bind frank)"

# A password reset through the server's own checks.
check "a reset with must-change is written" 0 \
    "$(write grace "$(attribute userPassword Second-pass8)$(attribute kvlxrImmediateChange YES)")"
check "the new password binds" 0 "$(bind grace Second-pass8)"
check "but a change is due" 50 "$(search_as grace Second-pass8)"
check "the old one does not bind" 49 "$(bind grace)"
write grace "$(attribute userPassword Third-pass9)" >/dev/null
check "the server's history check refuses a reuse" 1 "$(write grace "$(attribute userPassword Second-pass8)")"
check "with its own reason" 1 \
    "$(grep -c 'refused the new password of .uid=grace.*history of old passwords' "$work/write.out")"
check "and the password stays" 0 "$(bind grace Third-pass9)"

# The login history from the access log, newest first; clearing empties it.
bind heidi wrong >/dev/null
sleep 1
bind heidi >/dev/null
check "the history lists the binds newest first" "SUCCESS FAILED" \
    "$(value heidi kvlxrLoginHistory | cut -d' ' -f2 | tr '\n' ' ' | sed 's/ $//')"
check "clearing the history is written" 0 "$(write heidi '<Attribute name="kvlxrLoginHistory"/>')"
check "and empties it" "" "$(value heidi kvlxrLoginHistory)"

# A post the server refuses in its last step changes nothing: the group
# keeps its only member (a groupOfNames needs one), so removing it fails
# after the user's password and lock were changed, and both are undone.
printf 'replace: member\nmember: uid=ivan,%s\n' "$staff" | root_modify "cn=vpn-users,ou=groups,o=example"
for _ in 1 2; do bind ivan wrong >/dev/null; done
check "a failed post is refused" 1 "$(write ivan "$(attribute userPassword Third-pass9)$(attribute kvlxrDisableUntil 'FOREVER x')<Group name=\"vpn-users\" member=\"0\"/>")"
grep -q 'refused the change of .cn=vpn-users' "$work/write.out" || cat "$work/write.out"
check "the old password still binds" 0 "$(bind ivan)"
check "the new one does not" 49 "$(bind ivan Third-pass9)"
check "no lock was left" "" "$(value ivan kvlxrDisableUntil)"

exit $((failures > 0))
