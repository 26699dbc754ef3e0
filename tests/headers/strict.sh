#!/bin/sh
# strict.sh SOURCE BINARY COMPILER...: the umbrella header draws no warning from any of the
# compilers, in any standard from C11 and C++17 on, alone and between headers that define
# short names.  C compilers are called cc, gcc..., C++ compilers end in ++ or ++-VERSION.
set -eu

source=$1
binary=$2
shift 2
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
result=0

neighbours() {
  for header in X11/Xlib.h curses.h openssl/ssl.h bsd/string.h; do
    printf '#if __has_include(<%s>)\n#include <%s>\n#endif\n' "$header" "$header"
  done
}
{ echo '#include "zotmacguiutils.h"'; } >"$work/alone"
{ neighbours; cat "$work/alone"; } >"$work/last"
{ cat "$work/alone"; neighbours; } >"$work/first"

# check COMPILER STANDARD LANGUAGE WARNING...: alone, and in the newest standard in both orders.
check() {
  compiler=$1 standard=$2 language=$3
  shift 3
  orders=alone
  case $standard in c2x | c++2b | c++23) orders="alone first last" ;; esac
  for order in $orders; do
    cp "$work/$order" "$work/$order.$language"
    if ! "$compiler" -std="$standard" -x "$language" -fsyntax-only -O2 -Werror -Wall -Wextra -Wpedantic -Wconversion \
      -Wsign-conversion -Wshadow -Wundef -Wcast-qual -Wcast-align -Wredundant-decls "$@" \
      "-I$source" "-I$binary" "$work/$order.$language" >"$work/log" 2>&1; then
      echo "$compiler -std=$standard, $order:"
      head -n 20 "$work/log"
      result=1
    fi
  done
}

# -Weverything also says that records have padding and that this is not the first standard.
everything="-Weverything -Wno-padded -Wno-c++98-compat-pedantic -Wno-pre-c2x-compat"

for compiler in "$@"; do
  case $compiler in *clang*) kind=clang ;; *) kind=gcc ;; esac
  case $compiler-$kind in
    *++*-clang) for standard in c++17 c++20 c++2b; do check "$compiler" $standard c++ $everything; done ;;
    *++*) for standard in c++17 c++20 c++23; do
        check "$compiler" $standard c++ -Wold-style-cast -Wuseless-cast -Wzero-as-null-pointer-constant -Wextra-semi \
          -Wnon-virtual-dtor -Woverloaded-virtual -Wsuggest-override -Wctor-dtor-privacy -Weffc++
      done ;;
    *-clang) for standard in c11 c17 c2x; do check "$compiler" $standard c $everything; done ;;
    *) for standard in c11 c17 c2x; do check "$compiler" $standard c -Wstrict-prototypes -Wmissing-prototypes; done ;;
  esac
done
exit "$result"
