#!/bin/sh
# pkgconfig.sh STAGE SOURCES WORK VERSION: builds and runs the consumer's programs, in
# WORK, with what pkg-config says about the library installed in STAGE.  CC and CXX
# name the compilers.
set -eu

stage=$1
sources=$2
work=$3
version=$4

PKG_CONFIG_PATH=$(dirname "$(find "$stage" -name zotmacguiutils.pc)")
export PKG_CONFIG_PATH
pkg-config --exact-version="$version" zotmacguiutils
LD_LIBRARY_PATH=$PKG_CONFIG_PATH/$(pkg-config --variable=libdir zotmacguiutils | sed 's|.*/pkgconfig/||')
export LD_LIBRARY_PATH

mkdir -p "$work"
eval "set -- $(pkg-config --cflags --libs zotmacguiutils)"  # a blank in a path comes escaped
"$CC" -std=c11 "$sources/consumer.c" -o "$work/consumer_c" "$@"
"$CXX" -std=c++17 -fno-exceptions -fno-rtti "$sources/consumer.cpp" -o "$work/consumer_cpp" "$@"
"$work/consumer_c"
"$work/consumer_cpp"

# The plain rooms alone: everything but the object classes, and no Foundation.
eval "set -- $(pkg-config --cflags --libs zotmacguiutils-core)"
"$CC" -std=c11 "$sources/consumer.c" -o "$work/consumer_core" "$@"
"$work/consumer_core"
if ldd "$work/consumer_core" | grep -e gnustep -e objc; then
  echo "a plain program loads Foundation"
  exit 1
fi

# The one name that stands for every documented one.
"$CXX" -std=c++17 -I"$(pkg-config --variable=includedir zotmacguiutils)" "$sources/consumer.cpp" \
  -o "$work/consumer_alone" -L"$(pkg-config --variable=libdir zotmacguiutils)" -lzotmacguiutils
"$work/consumer_alone"

# Linked in whole; the C library says that dlopen() still wants its shared self.
eval "set -- $(pkg-config --static --cflags --libs zotmacguiutils-core)"
"$CC" -std=c11 -static "$sources/consumer.c" -o "$work/consumer_static" "$@" 2>/dev/null
"$work/consumer_static"
