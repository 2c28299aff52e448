#!/bin/sh
# Whether gxutil shows a translated message. gettext looks at LANGUAGE in a real locale only. Older
# versions also take C.UTF-8, which is used if the character maps are not installed.
# usage: shown.sh GXUTIL   (exit status 77: skipped)
directory=$(mktemp -d)
trap 'rm -rf "$directory"' EXIT
locale=C.UTF-8
localedef -f UTF-8 -i de_DE "$directory/de_DE.UTF-8" >/dev/null 2>&1 && locale=de_DE.UTF-8
message=$(LOCPATH=$directory LC_ALL=$locale LANGUAGE=de "$1" system '' 2>&1)
echo "$locale: $message"
[ "$message" != 'gxutil: system: Leerer Befehl' ] || exit 0
[ "$locale" = C.UTF-8 ] || exit 1
echo 'skipped: a locale needs the character maps of the package locales'
exit 77
