#!/usr/bin/env bash
# install_packages.sh [list]: installs the Debian packages of the list (packages.txt) that are missing; does nothing and
# is silent if all are there.
set -euo pipefail
cd "$(dirname "$0")"

command -v dpkg-query >/dev/null || exit 0 # not Debian: the configure step names what it cannot find
wanted=$(sed 's/#.*//' "${1:-packages.txt}" | xargs)
# shellcheck disable=SC2086  # the names are words
installed=$(dpkg-query -W -f '${db:Status-Status} ${Package}\n' $wanted 2>/dev/null | sed -n 's/^installed //p' || true)
missing=$(comm -23 <(tr ' ' '\n' <<<"$wanted" | sort -u) <(sort -u <<<"$installed") | xargs)
[ -n "$missing" ] || exit 0

if [ "$(id -u)" = 0 ]; then
  as_root=""
elif command -v sudo >/dev/null; then
  as_root=sudo
else
  echo "Missing packages, and neither root nor sudo to install them: apt-get install $missing" >&2
  exit 1
fi
export DEBIAN_FRONTEND=noninteractive
echo "Updating the package lists"
$as_root apt-get update -qq
echo "Installing $missing"
# shellcheck disable=SC2086
$as_root apt-get install -y -qq --no-install-recommends $missing >/dev/null
