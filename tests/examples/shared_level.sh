#!/bin/sh
# shared_level.sh PROGRAM...: the lines of both workers come and go with the level,
# and no segment stays.  The program runs in an IPC namespace of its own.
set -eu
own="unshare --ipc"
$own true 2>/dev/null || own="unshare --map-root-user --ipc"
output=$($own sh -c '"$@" && [ "$(wc -l </proc/sysvipc/shm)" = 1 ]' sh "$@")
printf '%s\n' "$output"

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
