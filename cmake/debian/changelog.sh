#!/bin/sh
# Writes CHANGELOG.md as a Debian changelog on the standard output. What stands under "Unreleased"
# becomes the version that is being built; where that one is released already, what follows it.
# usage: changelog.sh CHANGELOG SOURCE VERSION MAINTAINER TODAY   (YYYY-MM-DD)
set -eu
changelog=$1 source=$2 version=$3 maintainer=$4 today=$5

# Read twice, for the versions first. A heading has a version and its date in any form.
awk -v source="$source" -v unreleased="$version" -v maintainer="$maintainer" -v today="$today" '
  function found(pattern, otherwise) {
    return match($0, pattern) ? substr($0, RSTART, RLENGTH) : otherwise
  }
  function heading_version(otherwise) { return found("[0-9]+[.][0-9]+[.0-9]*", otherwise) }
  function write(text, bullet,    count, words, line, i) {
    if (!written++) print (sections++ ? "\n" : "") source " (" version ") unstable; urgency=medium\n"
    count = split(text, words, " ")
    line = bullet words[1]
    gsub(/./, " ", bullet)
    for (i = 2; i <= count; i++) {
      if (length(line " " words[i]) < 80) { line = line " " words[i]; continue }
      print line
      line = bullet words[i]
    }
    print line
  }
  function end_item() {
    if (item != "") write(item, "    - ")
    item = ""
  }
  function end_section(    command, stamp) {
    end_item()
    if (!written) return
    command = "LC_ALL=C date -u -R -d " date
    command | getline stamp
    close(command)
    print "\n -- " maintainer "  " stamp
    written = 0
  }
  NR == FNR {
    if (/^## / && heading_version("") == unreleased) after = "+unreleased"
    next
  }
  /^## / {
    end_section()
    date = found("[0-9][0-9][0-9][0-9]-[0-9][0-9]-[0-9][0-9]", today)
    sub(date, "")
    version = heading_version(unreleased after)
    next
  }
  !version { next }
  /^### / { end_item(); write(substr($0, 5) ":", "  * "); next }
  /^- / { end_item(); item = substr($0, 3); next }
  /./ { item = item " " $0 }
  END { end_section() }' "$changelog" "$changelog"
