#!/bin/sh
# Whether gxutil shows a translated message. gettext looks at LANGUAGE in a real locale only, so one
# is made; older versions take C.UTF-8 as well, where the character maps are not installed.
# usage: shown.sh GXUTIL   (exit status 77: it cannot be seen here)
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
if localedef -f UTF-8 -i de_DE "$directory/de_DE.UTF-8" >/dev/null 2>&1; then
  export LOCPATH="$directory" LC_ALL=de_DE.UTF-8
else
  export LC_ALL=C.UTF-8
fi
said=$(LANGUAGE=de "$1" system '' 2>&1)
echo "$LC_ALL: $said"
[ "$said" != 'gxutil: system: Leerer Befehl' ] || exit 0
[ "$LC_ALL" = C.UTF-8 ] && echo 'skipped: a locale needs the character maps of the package locales' && exit 77
exit 1
