# Completion of gxutil in bash: a command, its long options after a dash, and otherwise file names.
_gxutil() {
  local words=
  if [ "$COMP_CWORD" = 1 ] || [ "$COMP_CWORD ${COMP_WORDS[1]}" = '2 help' ]; then
    words="$("$1" help 2>/dev/null | sed -n 's/^  \([a-z][a-z0-9-]*\)  .*/\1/p') help version"
  elif [[ $2 == -* ]]; then
    words=$("$1" help "${COMP_WORDS[1]}" 2>/dev/null | grep -o -e '--[a-z][a-z-]*')
  fi
  # shellcheck disable=SC2207  # words without blanks; bash of macOS has no mapfile
  COMPREPLY=($(compgen -W "$words" -- "$2"))
}
complete -o default -F _gxutil gxutil
