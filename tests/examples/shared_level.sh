#!/bin/sh
# shared_level.sh PROGRAM...: the lines of both workers come and go with the level,
# and no segment stays.
set -eu
output=$("$@")
printf '%s\n' "$output"
if grep -q ' 32777 ' /proc/sysvipc/shm; then
  exit 1
fi

# A line that was on its way when the level fell may stand behind the notice.
printf '%s\n' "$output" | awk '
  /^-- /           { ++phase }
  / TRACE first\(/ { ++first[phase] }
  / TRACE second\(/ { ++second[phase] }
  END {
    ok = phase == 5 && !(1 in first) && !(1 in second)
    ok = ok && first[2] > 2 && second[2] > 2 && first[4] > 2 && second[4] > 2
    exit !(ok && first[3] <= 1 && second[3] <= 1)
  }'
