#!/usr/bin/env bash
# Installs what building, running and testing LXRAdmin needs on Debian 12.
# Idempotent: packages already present are not fetched again.
set -euo pipefail

PACKAGES=(
  build-essential cmake ninja-build pkg-config clang libclang-rt-14-dev
  libicu-dev icu-devtools libsqlite3-dev sqlite3 libldap-dev ldap-utils slapd
  libtomlplusplus-dev libargon2-dev libcrypt-dev nettle-dev
  libgtest-dev libbenchmark-dev
  lighttpd wrk hyperfine time
)
if [ "${LXR_WITH_BROWSER:-0}" = 1 ]; then
  PACKAGES+=(chromium nodejs apache2)
  # The package test: building the Debian packages, lintian, and serving the
  # installed program through Apache.
  PACKAGES+=(debhelper dpkg-dev lintian apache2-utils curl man-db)
  # CI's check of the C++ sources against the committed .clang-format.
  PACKAGES+=(clang-format)
  # Japanese and Chinese glyphs for the pages' screenshots (small fonts, not
  # the whole CJK family).
  PACKAGES+=(fonts-ipafont-gothic fonts-wqy-microhei)
  # NodeSource's nodejs carries its own npm and conflicts with Debian's npm package.
  command -v npm >/dev/null 2>&1 || PACKAGES+=(npm)
fi

missing=()
for p in "${PACKAGES[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ "${#missing[@]}" -gt 0 ]; then
  if [ "$(id -u)" != 0 ]; then
    echo "deps: missing packages: ${missing[*]} (run as root to install them)" >&2
    exit 1
  fi
  export DEBIAN_FRONTEND=noninteractive
  apt-get update -qq
  apt-get install -y -qq --no-install-recommends "${missing[@]}"
  # The slapd package starts a system server; our tests run their own.
  systemctl disable --now slapd >/dev/null 2>&1 || service slapd stop >/dev/null 2>&1 || true
  # Likewise apache2: the tests start private instances on loopback ports.
  systemctl disable --now apache2 >/dev/null 2>&1 || service apache2 stop >/dev/null 2>&1 || true
fi
