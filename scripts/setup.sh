#!/usr/bin/env bash
# Installs the Debian 12 packages the project builds and tests with.
# Safe to run any number of times: apt-get skips what is already there.
set -euo pipefail
packages=(
  g++ cmake ninja-build pkg-config git
  libboost-dev librapidxml-dev libace-dev libssl-dev zlib1g-dev
  libgtest-dev libgmock-dev libbenchmark-dev
)
missing=()
for p in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$p" 2>/dev/null | grep -q 'install ok installed' || missing+=("$p")
done
if [ "${#missing[@]}" -eq 0 ]; then
  exit 0
fi
SUDO=""
[ "$(id -u)" -eq 0 ] || SUDO="sudo"
export DEBIAN_FRONTEND=noninteractive
$SUDO apt-get update -qq
$SUDO apt-get install -y -qq --no-install-recommends "${missing[@]}"
