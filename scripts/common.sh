# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: CC0-1.0

# Shared by the scripts beside it: packages and builds. Source it; it sets `project`.
# shellcheck shell=bash

set -euo pipefail
project=$(cd "$(dirname "${BASH_SOURCE[0]}")/.." && pwd)

fail() {
    printf '%s\n' "$*" >&2
    exit 1
}

may_be_root() {
    [ "$(id -u)" -eq 0 ] || command -v sudo >/dev/null
}

as_root() {
    if [ "$(id -u)" -eq 0 ]; then
        "$@"
    else
        sudo "$@"
    fi
}

# packages_of GROUP...: the packages of these groups in packages.txt
packages_of() {
    local group
    for group in "$@"; do
        awk -v group="$group" '$1 == group { print $2 }' "$project/scripts/packages.txt"
    done
}

is_installed() {
    dpkg-query --show --showformat='${Status}' "$1" 2>/dev/null | grep -q 'ok installed'
}

# install_missing GROUP...: silent when nothing is missing
install_missing() {
    command -v dpkg-query >/dev/null || return 0 # another distribution: its user knows better
    local package missing=()
    for package in $(packages_of "$@"); do
        is_installed "$package" || missing+=("$package")
    done
    [ "${#missing[@]}" -gt 0 ] || return 0
    may_be_root || fail "Please run as root: apt-get install ${missing[*]}"
    echo "Installing ${missing[*]} ..."
    local log
    log=$(mktemp)
    if ! { as_root apt-get update &&
        as_root env DEBIAN_FRONTEND=noninteractive \
            apt-get install --yes --no-install-recommends "${missing[@]}"; } >"$log" 2>&1; then
        cat "$log" >&2
        fail "The packages could not be installed."
    fi
    rm -f "$log"
}

# build PRESET [TARGET...]: all of it without targets; silent when nothing is to be done
build() {
    local preset=$1 folder="$project/build/$1" log
    shift
    mkdir -p "$folder"
    log="$folder/build.log"
    if [ ! -f "$folder/build.ninja" ]; then
        (cd "$project" && cmake --preset "$preset") >"$log" 2>&1 || {
            cat "$log" >&2
            fail "The build could not be configured."
        }
    fi
    if ninja -C "$folder" -n "$@" 2>/dev/null | grep -q 'no work to do'; then
        return 0
    fi
    echo "Building ($preset) ..."
    ninja -C "$folder" "$@" >"$log" 2>&1 || {
        cat "$log" >&2
        fail "The build failed."
    }
}
