#!/bin/sh
# The install with hard links: the gateway and every verb the build listed
# are one file, and the gateway run through a link named after a verb
# serves that verb.
#   hard_links.sh BUILD_DIR STUB_DIR
set -e
dir=$(mktemp -d)
trap 'rm -rf "$dir"' EXIT
VERBGW_LINKS=hard cmake --install "$1" --prefix "$dir" >/dev/null
names=$(($(wc -l < "$1/lists/verbs.txt") + 1))
links=$(stat -c %h "$dir/www/cgi-bin/verbgw")
[ "$links" = "$names" ] || { echo "verbgw has $links names, not $names"; exit 1; }
[ ! -L "$dir/www/cgi-bin/session" ] || { echo "session is a symbolic link"; exit 1; }
page=$(cd "$dir" && REQUEST_METHOD=GET PATH="$2:/usr/bin:/bin" STUB_RECORD="$dir/record" www/cgi-bin/session)
expected='Content-type: text/html

<HTML><HEAD>  <TITLE> Corvane&#8482; Shelf Manager, Session Information </TITLE></HEAD><BODY><HR><P><H2> Session Information </H2></P><HR><PRE>ran session
</PRE><HR><A HREF="/verbs/session.html"> Back to the previous page </A></BODY></HTML>'
[ "$page" = "$expected" ] || { echo "unexpected page: $page"; exit 1; }
echo "$names hard links; the session page through one of them"
