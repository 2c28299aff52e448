#!/bin/sh
# Writes the manual page of gxutil, compressed, from the help texts that the program prints.
# usage: gxutil_man.sh OUTPUT DATE GXUTIL...   (GXUTIL may have an emulator before it)
set -eu
output=$1
date=$2
shift 2

# Turns one help text into roff: that of a command, or of the whole program with `whole` set.
roff() {
  awk -v whole="$1" '
    function escaped(text) {
      gsub(/\\/, "\\e", text); gsub(/-/, "\\-", text); gsub(/\047/, "\\(aq", text)
      return text
    }
    function tag(text) {
      sub(/ REQUIRED$/, "", text); sub(/,--/, ", --", text)
      print ".TP"
      print "\\fB" escaped(text) "\\fR"
    }
    /^Usage: gxutil / {
      sub(/^Usage: gxutil /, "")
      print whole ? ".SH SYNOPSIS\n.B gxutil" : ".SS " escaped($0)
      print escaped(whole ? $0 : summary)
      next
    }
    summary == "" { summary = $0; next }
    /^[A-Z][A-Za-z ]*:$/ {
      listed = toupper($0) != "COMMANDS:"  # each of them has a text of its own
      if (whole && listed) print ".SH " toupper(substr($0, 1, length($0) - 1))
      next
    }
    /^ +-h,--help/ && !whole { next }
    /^$/ { next }
    /^  / && !listed { next }
    /^  [^ ]/ {
      end = match($0, /[^ ]  +[^ ]/)
      tag(end ? substr($0, 3, end - 2) : substr($0, 3))
      if (end) print escaped(substr($0, end + RLENGTH - 1))
      next
    }
    !/^ / && !text { print ".PP"; text = 1 }
    { sub(/^ +/, ""); print escaped($0) }'
}

help=$("$@" --help)
commands=$(printf '%s\n' "$help" |
  awk '/^[A-Z].*:$/ { on = toupper($0) == "COMMANDS:" } on && /^  [a-z]/ { print $1 }')
[ -n "$commands" ] || { echo "gxutil_man.sh: the help names no command" >&2; exit 1; }
summary=$(printf '%s\n' "$help" | sed -n '1s/^C/c/; 1s/\.$//p')
version=$("$@" --version)

page=$(
  printf '.TH GXUTIL 1 %s "%s" "User Commands"\n' "$date" "$version"
  printf '.SH NAME\ngxutil \\- %s\n' "$summary"
  printf '%s\n' "$help" | roff 1
  printf '.SH COMMANDS\n'
  for command in $commands; do
    help=$("$@" "$command" --help)
    printf '%s\n' "$help" | roff ''
  done
)
printf '%s\n' "$page" | gzip -9n >"$output"
