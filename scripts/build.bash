# Building, for the scripts beside this one.  They source it in the project's directory.

# build PRESET [option of cmake --build...]
build() {
  local preset=$1
  shift
  cmake --preset "$preset" && cmake --build --preset "$preset" --parallel "$(nproc)" "$@"
}

# show_progress TITLE LOG: on a terminal a running step shows how far it is, "n/m" as Ninja
# and CTest count.  An interrupt doesn't reach what runs in the background: it sees that
# the script has gone.
progress_pid=
show_progress() {
  if [[ -t 1 ]]; then
    while sleep 1 && kill -0 $$ 2>/dev/null; do
      printf '\r\e[K%-58s %s ' "$1" "$(tail -c 4000 "$2" | grep -oE '^\[[0-9]+/[0-9]+\]|^ *[0-9]+/[0-9]+ ' | tail -n 1 | tr -d '[] ')"
    done &
    progress_pid=$!
  fi
}

# hide_progress TITLE: the line is as it was before the step, with TITLE where there was one.
hide_progress() {
  if [[ -n $progress_pid ]]; then
    kill "$progress_pid" && wait "$progress_pid" 2>/dev/null || true
    progress_pid=
    printf '\r\e[K'
    [[ -z $1 ]] || printf '%-58s ' "$1"
  fi
}

# build_quietly LOG PRESET [option...]: what it prints goes to LOG, and is shown when it fails.
build_quietly() {
  local log=$1
  shift
  mkdir -p "$(dirname "$log")"
  : >"$log"
  show_progress "Building" "$log"
  if ! build "$@" >"$log" 2>&1; then
    hide_progress ""
    tail -n 50 "$log"
    return 1
  fi
  hide_progress ""
}
