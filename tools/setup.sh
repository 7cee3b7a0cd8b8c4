#!/bin/bash
# SPDX-License-Identifier: Apache-2.0
# Installs what building, running and testing need on Debian 12. Quick when everything is there: then nothing is fetched.
set -euo pipefail

packages=(
    build-essential cmake ninja-build pkg-config git ccache python3
    qt6-base-dev qt6-base-dev-tools libqt6sql6-sqlite libqt6sql6-odbc libqt6svg6
    libsqlite3-dev sqlite3 unixodbc unixodbc-dev tdsodbc libsqliteodbc
    libbenchmark-dev fonts-dejavu-core clang-format
)

missing=()
for package in "${packages[@]}"; do
    if ! dpkg -s "$package" 2>/dev/null | grep -q '^Status: install ok installed'; then
        missing+=("$package")
    fi
done
if [ ${#missing[@]} -eq 0 ]; then
    exit 0
fi

become=()
if [ "$(id -u)" -ne 0 ]; then
    if ! command -v sudo >/dev/null; then
        echo "Missing packages; install them as root: apt-get install ${missing[*]}" >&2
        exit 1
    fi
    become=(sudo)
fi
echo "Installing: ${missing[*]}"
"${become[@]}" apt-get update -qq
"${become[@]}" env DEBIAN_FRONTEND=noninteractive apt-get install -y -qq --no-install-recommends "${missing[@]}"
