#!/bin/sh
# damage.sh EXCHANGE...: every inverted byte and every cut of a message ends in a line
# on standard error and status 1.  The message is short: each case is a run of its own.
set -eu

errors=$(mktemp)
trap 'rm -f "$errors"' EXIT
length=$("$@" interval=90 token=x | sed -n 's/^front end: the settings (\([0-9]*\) bytes)$/\1/p')
[ "$length" -eq 23 ]

damage=$((-length))
while [ "$damage" -lt "$length" ]; do
  status=0
  "$@" --damage "$damage" interval=90 token=x >/dev/null 2>"$errors" || status=$?
  if [ "$status" -ne 1 ] || ! grep -q '^service: the message is damaged: ' "$errors"; then
    echo "--damage $damage: status $status"
    cat "$errors"
    exit 1
  fi
  damage=$((damage + 1))
done
