#!/usr/bin/env bash
# Installs the Debian packages that a build, the command and the tests need, those that are missing only. Sourced by the
# other scripts; needs root or sudo when something is missing.
set -euo pipefail

packages=(g++ cmake ninja-build pkg-config python3 libhwy-dev libcli11-dev libsndfile1-dev nlohmann-json3-dev libgtest-dev
  libomp-dev gnuplot-nox)
missing=()
for package in "${packages[@]}"; do
  dpkg-query -W -f='${Status}' "$package" 2>/dev/null | grep -q 'install ok installed' || missing+=("$package")
done
if [ ${#missing[@]} -gt 0 ]; then
  as_root=()
  if [ "$(id -u)" -ne 0 ]; then
    command -v sudo >/dev/null || { echo "these packages are missing; install them as root: ${missing[*]}" >&2; exit 1; }
    as_root=(sudo)
  fi
  echo "installing: ${missing[*]}"
  "${as_root[@]}" apt-get update -qq
  "${as_root[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}" >/dev/null
fi
