#!/bin/sh
# compare.sh LIST CORE [OBJECTS]: the names that the shared libraries export are
# those of the list, each by one of them and under the version node: the classes' own
# by the library OBJECTS, all others by CORE.  NM names the program that lists a
# library's symbols.
set -eu

list=$1
core=$2
objects=${3:-}
node=ZOTMACGUIUTILS_1.0
LC_ALL=C
export LC_ALL

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

# Two constructors or destructors of a class may share their demangled name.  Not every
# program that lists symbols can demangle one with a version behind it.
exports_of() {
  "${NM:-nm}" -D --defined-only "$1" | sed "/ A $node/d; s/^[0-9a-f]* *[A-Za-z] //; s/@@$node\$//" | c++filt | sort -u
}
exports_of "$core" >"$work/core"
: >"$work/objects"
[ -z "$objects" ] || exports_of "$objects" >"$work/objects"
sort "$work/core" "$work/objects" >"$work/built"

# Sorted sections keep the list readable and its merges small.
awk '
  /^#/ { if ($0 !~ /^# (os|log|ipaddr|mif|mifobject|multilang)$/) { print "line " NR ": no such section: " $0 }
         section = 1; last = ""; next }
  $0 == "" { next }
  !section { print "line " NR ": stands in no section: " $0 }
  $0 <= last { print "line " NR ": out of order, or twice: " $0 }
  { last = $0 }
' "$list" >"$work/disorder"

grep -v -e '^#' -e '^$' "$list" | sort >"$work/all"
if [ -n "$objects" ]; then
  cp "$work/all" "$work/listed"
  grep -v '^__objc_class_name_' "$work/objects" >"$work/misplaced" || true
else
  grep -v '^__objc_class_name_' "$work/all" >"$work/listed"
  : >"$work/misplaced"
fi
uniq -d "$work/all" | sed 's/^/stands in two sections: /' >>"$work/disorder"
comm -23 "$work/listed" "$work/built" >"$work/missing"
comm -13 "$work/listed" "$work/built" >"$work/extra"

result=0
report() {
  if [ -s "$1" ]; then
    echo "$2"
    sed 's/^/  /' "$1"
    result=1
  fi
}
report "$work/disorder" "$list is not in order:"
report "$work/missing" "listed in $list, but not exported:"
report "$work/extra" "exported, but not listed in $list (or twice):"
report "$work/misplaced" "belongs to the plain rooms, but is exported by $objects:"
exit "$result"
