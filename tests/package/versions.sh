#!/bin/sh
# versions.sh SOURCE STAGE VERSION: what is installed in STAGE, the changelogs in SOURCE
# and every program's --version say the same.
set -eu

source=$1
stage=$2
version=$3
result=0

# same WHAT SAYS EXPECTED
same() {
  if [ "$2" != "$3" ]; then
    echo "$1 says \"$2\", not \"$3\""
    result=1
  fi
}

pkgconfig=$(dirname "$(find "$stage" -name zotmacguiutils.pc)")
library=$pkgconfig/..
PKG_CONFIG_PATH=$pkgconfig
LD_LIBRARY_PATH=$library
export PKG_CONFIG_PATH LD_LIBRARY_PATH

for name in zotmacguiutils zotmacguiutils-core; do
  same "$name.pc" "$(pkg-config --modversion "$name")" "$version"
  if [ -e "$library/lib$name.so.$version" ]; then
    same "lib$name.so.$version" "$(readelf -dW "$library/lib$name.so.$version" | sed -n 's/.*SONAME.*\[\(.*\)\]/\1/p')" \
      "lib$name.so.${version%%.*}"
  fi
done
same "the CMake package" "$(sed -n 's/^set(PACKAGE_VERSION "\(.*\)")/\1/p' \
  "$library/cmake/zotmacguiutils/zotmacguiutilsConfigVersion.cmake")" "$version"
same "the version header" "$(sed -n 's/^#define ZOTMACGUIUTILS_VERSION "\(.*\)"/\1/p' \
  "$stage/include/zotmacguiutils/zotmacguiutils_version.h")" "$version"
same CHANGELOG.md "$(sed -n 's/^## \([0-9.]*\).*/\1/p' "$source/CHANGELOG.md" | head -n 1)" "$version"
if [ -e "$source/debian/changelog" ]; then
  same debian/changelog "$(sed -n '1s/.*(\([0-9.]*\).*/\1/p' "$source/debian/changelog")" "$version"
fi
for program in "$stage"/bin/zot-*; do
  if [ -x "$program" ]; then
    same "${program##*/} --version" "$("$program" --version | grep -o '[0-9][0-9.]*' | head -n 1)" "$version"
  fi
done
exit "$result"
