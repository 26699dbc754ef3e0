# bash completion for zot-mif, zot-lang and zot-ctl.  The words come from the
# program's own --help, so they are always those of the program that is installed.

_zot_tool() {
  local program=${COMP_WORDS[0]} current=${COMP_WORDS[COMP_CWORD]} previous=${COMP_WORDS[COMP_CWORD - 1]}
  local -a command=()
  local word help words
  # The subcommands typed so far; the first word that is none ends them.
  for word in "${COMP_WORDS[@]:1:COMP_CWORD-1}"; do
    if [[ $word == -* ]]; then
      break
    fi
    help=$("$program" "${command[@]}" --help 2>/dev/null)
    if ! grep -q "^  $word " <(sed -n '/^Subcommands:/,/^$/p' <<<"$help"); then
      break
    fi
    command+=("$word")
  done
  help=$("$program" "${command[@]}" --help 2>/dev/null)

  if [[ $previous == -* ]]; then
    # The values of an option that lists them as {one,two}.
    words=$(sed -nE "s/^ +(-.,)?$previous .*\{([^}]*)\}.*/\2/p" <<<"$help")
  elif [[ $current == -* ]]; then
    words=$(sed -nE 's/^ +(-.,)?(--[a-z-]+).*/\2/p' <<<"$help")
  else
    # Subcommands, or the words that an argument lists as {one,two}.
    words=$(sed -nE '/^Subcommands:/,/^$/s/^  ([a-z-]+) .*/\1/p; /^Positionals:/,/^$/s/.*\{([^}]*)\}.*/\1/p' <<<"$help")
  fi
  mapfile -t COMPREPLY < <(compgen -W "${words//,/ }" -- "$current")
}

complete -o default -F _zot_tool zot-mif zot-lang zot-ctl
