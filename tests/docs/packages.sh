#!/usr/bin/env bash
# packages.sh DEV_SCRIPT: which packages ./dev installs for what, on a machine that has none of them. Nothing is
# installed or built: the programs that would do so are replaced.
set -euo pipefail
dev=$1
folder=$(mktemp -d)
trap 'rm -rf "$folder"' EXIT

cat >"$folder/apt-get" <<'TEXT'
#!/bin/sh
[ "$1" = install ] && printf '%s\n' "$@" >"$INSTALLED"
exit 0
TEXT
printf '#!/bin/sh\nexit 1\n' >"$folder/dpkg-query"
printf '#!/bin/sh\nexec "$@"\n' >"$folder/sudo"
printf '#!/bin/sh\nexit 0\n' >"$folder/cmake"
cp "$folder/cmake" "$folder/ctest"
cp "$folder/cmake" "$folder/systemctl"
chmod +x "$folder"/*
export INSTALLED=$folder/installed PATH=$folder:$PATH

status=0
# expect COMMAND... -- PACKAGE... : that it installs these; a leading "!" says that it does not.
expect() {
    local command=() package
    while [ "$1" != -- ]; do
        command+=("$1")
        shift
    done
    shift
    : >"$INSTALLED"
    "$dev" "${command[@]}" >/dev/null 2>&1
    for package in "$@"; do
        case "$package" in
        !*) ! grep -qx "${package#!}" "$INSTALLED" ;;
        *) grep -qx "$package" "$INSTALLED" ;;
        esac || {
            echo "./dev ${command[*]}: expected $package" >&2
            status=1
        }
    done
}

tools=(clang-14 tshark valgrind libgtest-dev libmodbus-dev libbenchmark-dev gcovr)
tools+=(prometheus)
services=(libboost1.81-dev libssl-dev)
services+=(libsqlite3-dev libsqlitecpp-dev libmosquitto-dev protobuf-compiler)
expect build -- g++ cmake qtbase5-dev libspdlog-dev "${services[@]}" "${tools[@]/#/!}"
expect build demo -- g++ cmake qtbase5-dev libspdlog-dev "${services[@]/#/!}" "${tools[@]/#/!}"
# For Windows with a Qt that was built before.
recipe=$(sha256sum "$(dirname "$dev")/cmake/windows/build-qt")
export XDG_CACHE_HOME=$folder/cache
mkdir -p "$XDG_CACHE_HOME/sbusdriver/qt5-windows-${recipe:0:12}"
expect build windows -- g++ cmake g++-mingw-w64-x86-64-posix nsis wine64 "${tools[@]/#/!}"
expect build dev -- g++ "${tools[@]}"
expect test -- g++ qtbase5-dev "${tools[@]}"
expect setup -- debhelper lintian
expect build dev -- '!debhelper' '!lintian'
exit "$status"
