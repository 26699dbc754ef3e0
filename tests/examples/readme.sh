#!/bin/sh
# readme.sh README FILE...: the README shows each of these files, whole and as it is.
set -eu

readme=$1
shift
for file in "$@"; do
  perl -0777 -e '
    my ($readme, $file) = map { open(my $handle, "<", $_) or die "$_: $!\n"; <$handle> } @ARGV;
    exit(index($readme, "```cpp\n$file```\n") < 0 && index($readme, "```objc\n$file```\n") < 0);
  ' "$readme" "$file" || { echo "$readme does not show $file"; exit 1; }
done
