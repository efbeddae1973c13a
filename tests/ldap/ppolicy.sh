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
: "${LXR_LDAP_API_CONFIG:?run through run.sh --ppolicy}" "${LXR_LDAP_WORK:?}"
work=$LXR_LDAP_WORK H=$LXR_LDAP_URL
unset LXR_NOW  # the server judges by its own clock, so the API must too

"$lxrdir" create "$work/audit.db" >/dev/null || exit 2
export LXRAPI_CONFIG=$LXR_LDAP_API_CONFIG
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
root_add() { # LDIF on stdin
    ldapadd -x -H "$H" -D "$LXR_LDAP_ROOT_DN" -y "$LXR_LDAP_ROOT_PASSWORD_FILE" >/dev/null
}
root_value() { # DN ATTRIBUTE: its values as the server keeps them, one per line
    ldapsearch -x -LLL -o ldif-wrap=no -H "$H" -D "$LXR_LDAP_ROOT_DN" -y "$LXR_LDAP_ROOT_PASSWORD_FILE" \
        -b "$1" -s base "(objectClass=*)" "$2" 2>/dev/null | sed -n "s/^$2: //p"
}
user_policies="ou=user-policies,ou=policies,o=example"
policy_count() { # the per-user policies the API has made
    ldapsearch -x -LLL -H "$H" -D "$LXR_LDAP_ROOT_DN" -y "$LXR_LDAP_ROOT_PASSWORD_FILE" \
        -b "$user_policies" -s one "(objectClass=pwdPolicy)" 1.1 2>/dev/null | grep -c '^dn:'
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

# Lifetime and inactivity overrides: a per-user policy, copied from the
# user's own, that the server applies at the next bind; removing the last
# override gives the user's policy back. Steps in order, one per row:
# USER|FIELD|VALUE|BIND (- none)|DISABLED REASON|VALUE READ BACK
# victor's password expired in 2020 with no grace logins left; olivia's too,
# but she never logged in, so her idle time counts from that change (and
# her stored "30 temporary" has no policy behind it, so it is not in force).
for u in victor olivia; do
    printf 'replace: pwdChangedTime\npwdChangedTime: 20200101000000Z\n' | root_modify "uid=$u,$staff"
done
printf 'replace: pwdGraceUseTime\npwdGraceUseTime: 20200301000000.000001Z\npwdGraceUseTime: 20200301000000.000002Z\n' |
    root_modify "uid=victor,$staff"
check "an expired password without grace logins is refused" 49 "$(bind victor)"
check "a stored inactivity value without a policy is not shown" "" "$(value olivia kvlxrAccountInactivityDays)"
expired="Password expired 2020-06-29 00:00 UTC; no grace logins left"
while IFS='|' read -r user field posted status reason shown; do
    case "$user" in ''|'#'*) continue ;; esac
    check "$user: $field '$posted' is written" 0 "$(write "$user" "$(attribute "$field" "$posted")")"
    [ "$status" = - ] || check "$user: then the bind answers" "$status" "$(bind "$user")"
    check "$user: then the disabled reasons" "$reason" "$(disabled "$user")"
    check "$user: and $field reads" "$shown" "$(value "$user" "$field")"
done <<ROWS
victor|kvlxrExpirePasswordDays|0 never expires|0||0 never expires
victor|kvlxrExpirePasswordDays||49|$expired|
victor|kvlxrExpirePasswordDays|30|49|Password expired 2020-01-31 00:00 UTC; no grace logins left|30
victor|kvlxrExpirePasswordDays|3650 ten years|0||3650 ten years
victor|kvlxrExpirePasswordDays||49|$expired|
olivia|kvlxrExpirePasswordDays|0|-||0
olivia|kvlxrAccountInactivityDays|30 back in a month|49|Idle since 2020-01-01 00:00 UTC|30 back in a month
olivia|kvlxrAccountInactivityDays||0||
ROWS
check "removing the last override gives the default policy back" "" "$(root_value "uid=victor,$staff" pwdPolicySubentry)"
check "the lifetime override stays after the inactivity one goes" "0" "$(value olivia kvlxrExpirePasswordDays)"
write peggy "$(attribute kvlxrExpirePasswordDays '0 contractor')" >/dev/null
check "an equal override shares the per-user policy" \
    "$(root_value "uid=olivia,$staff" pwdPolicySubentry)" "$(root_value "uid=peggy,$staff" pwdPolicySubentry)"

# A user's own policy is what the override copies and what comes back.
root_add <<LDIF
dn: cn=strict,ou=policies,o=example
objectClass: namedPolicy
objectClass: pwdPolicy
cn: strict
pwdAttribute: userPassword
pwdMaxFailure: 3
pwdLockout: TRUE
pwdMaxAge: 15552000

dn: cn=slow,ou=policies,o=example
objectClass: namedPolicy
objectClass: pwdPolicy
cn: slow
pwdAttribute: userPassword
pwdMaxFailure: 5
pwdLockout: TRUE
pwdMinDelay: 10
LDIF
printf 'replace: pwdPolicySubentry\npwdPolicySubentry: cn=strict,ou=policies,o=example\n' | root_modify "uid=trent,$staff"
check "an override of a user with an own policy is written" 0 \
    "$(write trent "$(attribute kvlxrAccountInactivityDays '90')")"
copy=$(root_value "uid=trent,$staff" pwdPolicySubentry)
check "the copy keeps the own policy's failure limit" 3 "$(root_value "$copy" pwdMaxFailure)"
check "the own policy is remembered" "cn=strict,ou=policies,o=example" \
    "$(root_value "uid=trent,$staff" kvlxrPreviousPolicy)"
write trent "$(attribute kvlxrAccountInactivityDays '')" >/dev/null
check "removing the override gives the own policy back" "cn=strict,ou=policies,o=example" \
    "$(root_value "uid=trent,$staff" pwdPolicySubentry)"
check "and forgets it" "" "$(root_value "uid=trent,$staff" kvlxrPreviousPolicy)"

# A policy with pwdMinDelay stops this slapd at a failed bind: no copy of it.
# (uma must never fail a bind in this test.)
printf 'replace: pwdPolicySubentry\npwdPolicySubentry: cn=slow,ou=policies,o=example\n' | root_modify "uid=uma,$staff"
made=$(policy_count)
check "an override copied from a policy with pwdMinDelay is refused" 1 \
    "$(write uma "$(attribute kvlxrExpirePasswordDays '30')")"
check "saying why" 1 "$(grep -c 'cn=slow,ou=policies,o=example. sets pwdMinDelay' "$work/write.out")"
check "and the user keeps the policy" "cn=slow,ou=policies,o=example" "$(root_value "uid=uma,$staff" pwdPolicySubentry)"
check "no per-user policy was made" "$made" "$(policy_count)"
check "more days than the server's policy holds are refused" 1 \
    "$(write victor "$(attribute kvlxrExpirePasswordDays '24856')")"
check "and change nothing" "" "$(root_value "uid=victor,$staff" pwdPolicySubentry)"

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
made=$(policy_count)
check "a failed post is refused" 1 "$(write ivan "$(attribute userPassword Third-pass9)$(attribute kvlxrDisableUntil 'FOREVER x')$(attribute kvlxrExpirePasswordDays '45 new')<Group name=\"vpn-users\" member=\"0\"/>")"
grep -q 'refused the change of .cn=vpn-users' "$work/write.out" || cat "$work/write.out"
check "the old password still binds" 0 "$(bind ivan)"
check "the new one does not" 49 "$(bind ivan Third-pass9)"
check "no lock was left" "" "$(value ivan kvlxrDisableUntil)"
check "nor a policy" "" "$(root_value "uid=ivan,$staff" pwdPolicySubentry)"
check "and the per-user policy made for it is gone" "$made" "$(policy_count)"

exit $((failures > 0))
