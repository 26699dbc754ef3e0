#!/bin/sh
# debian.sh SOURCE PACKAGES WORK: unpacks the Debian packages into an empty root below WORK
# and there builds and runs what a client builds: C and C++ by pkg-config, C, C++ and
# Objective-C by CMake with both compilers, every program, the demo's self-test.
set -eu

source=$1
packages=$2
work=$3
here=$source/tests/package
version=$(sed -n '1s/.*(\(.*\)).*/\1/p' "$source/debian/changelog")

# Everything that they depend on can be had here, but for each other.
apt-get install --simulate --no-install-recommends -qq "$packages"/*.deb >/dev/null

rm -rf "$work"
mkdir -p "$work/root"
for package in "$packages"/*.deb; do
  dpkg-deb --extract "$package" "$work/root"
done
stage=$work/root/usr
libraries=$(dirname "$(find "$stage/lib" -name 'libzotmacguiutils.so.1')")
LD_LIBRARY_PATH=$libraries
export LD_LIBRARY_PATH

CC=gcc CXX=g++ sh "$here/pkgconfig.sh" "$stage" "$here/consumer" "$work/pkg-config" "$version"
for compilers in gcc:g++ clang-14:clang++-14; do
  c=$(command -v "${compilers%:*}")
  cxx=$(command -v "${compilers#*:}")
  ctest --build-and-test "$here/consumer" "$work/${c##*/}" --build-generator Ninja --build-options \
    "-DCMAKE_PREFIX_PATH=$stage" -DOBJECTS=ON \
    "-DCMAKE_C_COMPILER=$c" "-DCMAKE_CXX_COMPILER=$cxx" "-DCMAKE_OBJC_COMPILER=$c" "-DCMAKE_OBJCXX_COMPILER=$cxx" \
    --test-command ctest --output-on-failure --no-tests=error
done

sh "$here/versions.sh" "$source" "$stage" "$version"
for program in mif lang ctl; do
  "$stage/bin/zot-$program" --help >/dev/null
done
"$source/tests/support/own-ipc" "$source/tests/support/with-display" "$libraries/zotmacguiutils/demo" \
  --directory "$work/demo" --selftest
