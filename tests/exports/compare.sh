#!/bin/sh
# compare.sh LIBRARY LIST ON|OFF: the names that the shared library exports are
# those of the list, ON with and OFF without the object classes.  NM names the
# program that lists a library's symbols.
set -eu

library=$1
list=$2
objects=$3
LC_ALL=C
export LC_ALL

work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT

"${NM:-nm}" -D --defined-only -C "$library" | sed 's/^[0-9a-f]* *[A-Za-z] //' | sort -u >"$work/built"

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
if [ "$objects" = ON ]; then
  cp "$work/all" "$work/listed"
else
  grep -v '^__objc_class_name_' "$work/all" >"$work/listed"
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
report "$work/missing" "listed in $list, but not exported by $library:"
report "$work/extra" "exported by $library, but not listed in $list:"
exit "$result"
