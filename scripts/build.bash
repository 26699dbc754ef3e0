# Building, for the scripts beside this one.  They source it in the project's directory.

# build PRESET [option of cmake --build...]
build() {
  local preset=$1
  shift
  cmake --preset "$preset" && cmake --build --preset "$preset" --parallel "$(nproc)" "$@"
}

# build_quietly LOG PRESET [option...]: what it prints goes to LOG, and is shown when it fails.
build_quietly() {
  local log=$1
  shift
  mkdir -p "$(dirname "$log")"
  if ! build "$@" >"$log" 2>&1; then
    tail -n 50 "$log"
    return 1
  fi
}
