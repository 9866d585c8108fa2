#!/bin/sh
# A shell-script CGI, as many embedded web interfaces have: decode the body,
# build the command, run the tool, write the page.
body=$(head -c "$CONTENT_LENGTH")
field() {
    printf '%s' "$body" | tr '&' '\n' | sed -n "s/^$1=//p" | tail -n 1 | sed 's/+/ /g; s/%\([0-9A-Fa-f][0-9A-Fa-f]\)/\\x\1/g' | xargs -0 printf '%b'
}
req_type=$(field req_type)
addr=$(field addr1_0)
id=$(field id3_0)
verbose=$(field verbose)
if [ "$req_type" = 1 ]; then cmd="sensor $verbose $(field pti_sym1_1) $(field id2_1) $id"; else cmd="sensor $verbose $addr $id"; fi
printf 'Content-type: text/html\n\n<HTML><BODY><PRE>'
printf '%s\nquit\n\n' "$cmd" | shelfctl | sed -n '/^CLI>/,$p' | sed '1d;/^CLI>/,$d'
printf '</PRE></BODY></HTML>'
