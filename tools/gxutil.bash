# Completion of gxutil in bash: a command, its long options after a dash, and otherwise file names.
# Versions of CLI11 differ in how they write the heading of the list of commands.
_gxutil() {
  local words=
  if [ "$COMP_CWORD" = 1 ]; then
    words=$("$1" --help 2>/dev/null | sed -n '/^S[Uu][Bb][Cc][A-Za-z]*:$/,$s/^  \([a-z][^ ]*\).*/\1/p')
  elif [[ $2 == -* ]]; then
    words=$("$1" "${COMP_WORDS[1]}" --help 2>/dev/null | grep -o -e '--[a-z][a-z-]*')
  fi
  # shellcheck disable=SC2207  # words without blanks; bash of macOS has no mapfile
  COMPREPLY=($(compgen -W "$words" -- "$2"))
}
complete -o default -F _gxutil gxutil
