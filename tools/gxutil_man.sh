#!/bin/sh
# Writes the manual page of gxutil, compressed: the part written by hand, with the commands from the
# help texts that the program prints.
# usage: gxutil_man.sh TEMPLATE OUTPUT DATE GXUTIL...   (GXUTIL may have an emulator before it)
set -eu
template=$1
output=$2
date=$3
shift 3

# Text as roff has it. The awk programs differ in what a backslash is to gsub(), sed does not.
escaped() {
  sed -e 's/\\/\\e/g' -e 's/-/\\-/g' -e "s/'/\\\\(aq/g" -e 's/^\( *\)\./\1\\\&./'
}

# Turns the help text of a command into roff: a heading with the usage, the summary, the operands and
# options with a paragraph each, and what stands below them. All commands have --help.
command_as_roff() {
  help=$(sed -e '/^ *-h, *--help/d' -e 's/, *--/, --/')
  options=$(printf '%s\n' "$help" | grep -c '^  -' || true)
  printf '%s\n' "$help" | escaped | awk -v options="$options" '
    /^Usage: gxutil / {
      sub(/^Usage: gxutil /, "")
      sub(/ \[OPTIONS\]/, options > 0 ? " [OPTION]..." : "")
      print ".SS " $0 "\n" summary
      next
    }
    summary == "" { summary = $0; next }
    /^(Operands|Options|OPTIONS|POSITIONALS):$/ || /^$/ { next }
    /^  [^ ]/ {
      end = match($0, /[^ ]  +[^ ]/)
      tag = end ? substr($0, 3, end - 2) : substr($0, 3)
      sub(/ *$/, "", tag)
      print ".TP\n.B " tag
      if (end) print substr($0, end + RLENGTH - 1)
      next
    }
    !/^ / && !text { print ".PP"; text = 1 }
    { sub(/^ +/, ""); print }'
}

names=$("$@" --help | sed -n '/^Commands:$/,/^$/s/^  \([a-z][^ ]*\).*/\1/p')
[ -n "$names" ] || { echo "gxutil_man.sh: the help names no command" >&2; exit 1; }
version=$("$@" --version | escaped)
commands=$(
  for name in $names; do
    help=$("$@" "$name" --help) || exit 1
    printf '%s\n' "$help" | command_as_roff
  done
)

while IFS= read -r line; do
  case $line in
    *@COMMANDS@*) printf '%s\n' "$commands" ;;
    *) printf '%s\n' "$line" | sed -e "s|@DATE@|$date|" -e "s|@VERSION@|$version|" ;;
  esac
done <"$template" | gzip -9n >"$output"
