#!/bin/sh
# On the 32-bit target: a 512 MiB body of "&" (2^29 + 1 segments, whose
# pair list would need more than 4 GiB) ends with status 1 and no output,
# like any memory failure, instead of wrapping the list's size.
#   huge_body.sh EMULATOR... GATEWAY   (streamed from a generator, no file)
out=$(mktemp)
head -c 536870912 /dev/zero | tr '\0' '&' |
    env REQUEST_METHOD=POST CONTENT_LENGTH=536870912 "$@" > "$out" 2>&1
status=$?
bytes=$(wc -c < "$out")
rm -f "$out"
echo "status $status, $bytes bytes of output"
[ "$status" = 1 ] && [ "$bytes" = 0 ]
