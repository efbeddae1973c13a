#!/usr/bin/env bash
# A list longer than the server sends in one result, run by run.sh --ppolicy
# with LXR_LDAP_SIZE_LIMIT=3: the search for every staff member must list all
# of them (the root's count, which no limit cuts), not the first three.
#
#   paged.sh --lxrdir lxrdir
set -u
[ "${1:-}" = --lxrdir ] && [ -x "${2:-}" ] || { echo "paged.sh: bad options" >&2; exit 2; }
lxrdir=$2
: "${LXR_LDAP_API_CONFIG:?run through run.sh --ppolicy}" "${LXR_LDAP_WORK:?}"
"$lxrdir" create "$LXR_LDAP_WORK/audit.db" >/dev/null || exit 2
export LXRAPI_CONFIG=$LXR_LDAP_API_CONFIG

staff=$(ldapsearch -x -LLL -H "$LXR_LDAP_URL" -D "$LXR_LDAP_ROOT_DN" -y "$LXR_LDAP_ROOT_PASSWORD_FILE" \
    -b ou=staff,o=example "(uid=*)" 1.1 | grep -c '^dn:')
listed=$("$lxrdir" list helpdesk "LDAP://demo/uid=hd.lead,ou=admins,o=example" \
    '<ListRequest directory="staff" list="search" start="" size="1000"/>' | grep -c '<User ')
echo "paged.sh: $staff staff entries, $listed listed under a size limit of ${LXR_LDAP_SIZE_LIMIT:-?}"
[ "$staff" -gt 3 ] && [ "$listed" = "$staff" ]
