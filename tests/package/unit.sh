#!/bin/sh
# unit.sh UNIT PROGRAM: systemd understands every line of the unit. What it starts is PROGRAM here, which is not installed.
set -eu
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT
sed "s|/usr/bin/sbus-host|$2|" "$1" >"$folder/sbus-host@plant.service"
told=$(systemd-analyze verify --man=no "$folder/sbus-host@plant.service" 2>&1) && [ -z "$told" ] || {
    echo "$told" >&2
    exit 1
}
