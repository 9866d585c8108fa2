#!/bin/sh
# The rooms under src/ include only their own files and the rooms below
# them: form, text, cli, page, verbs, main, from the bottom up.
#   layers.sh SRC_DIR
cd "$1"
rank() { case "$1" in form) echo 0 ;; text) echo 1 ;; cli) echo 2 ;; page) echo 3 ;; verbs) echo 4 ;; main) echo 5 ;; *) echo 9 ;; esac; }
status=0
for file in */*.cpp */*.hpp; do
    room=${file%%/*}
    [ "$(rank "$room")" != 9 ] || { echo "$file is in a room with no place in the order"; status=1; }
    for target in $(sed -n 's|^#include "\([a-z_]*\)/.*"|\1|p' "$file"); do
        if [ "$(rank "$target")" -gt "$(rank "$room")" ]; then
            echo "$file includes from $target, a room above $room"
            status=1
        fi
    done
done
exit $status
