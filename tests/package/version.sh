#!/bin/sh
# version.sh REPOSITORY VERSION: the packages have the version of the programs, and the package of the libraries has the
# part of it in its name that the libraries have in theirs.
set -eu
packaged=$(sed -n '1s/.*(\(.*\)).*/\1/p' "$1/debian/changelog")
[ "$packaged" = "$2" ] || { echo "debian/changelog has $packaged, the programs are $2" >&2; exit 1; }
library=libhalvex-framework${2%.*}
grep -qx "Package: $library" "$1/debian/control" || { echo "debian/control has no package $library" >&2; exit 1; }
