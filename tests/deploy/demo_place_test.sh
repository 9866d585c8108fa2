#!/bin/sh
# `make demo` run as root from a checkout no other account may enter (a
# clone in /root): scripts/demo installs and deploy/serve prepares as they
# do for the demo, under a stand-in lighttpd that only notes its
# configuration and ends. Then, as the account the server drops to, each
# file the server needs is reached, the gateway answers with the simulated
# shelf and that shelf keeps its state, while the passwords file and the
# private key stay out of its reach.
#   demo_place_test.sh SOURCE_DIR BUILD_DIR
# Exits 77 (skipped) unless root with the account www-data.
set -eu
skip() { echo "skipped: $*"; exit 77; }
fail() { echo "FAIL: $*"; exit 1; }
[ "$(id -u)" = 0 ] || skip "not root"
id www-data >/dev/null 2>&1 || skip "no account www-data"
source_dir=$(cd "$1" && pwd) build=$(cd "$2" && pwd)

work=$(mktemp -d)  # root's, mode 0700: the parent of the checkout
place=""
trap 'rm -rf "$work" ${place:+"$place"}' EXIT
demo=$work/checkout/build/demo
# lighttpd as deploy/serve starts it: notes its configuration and ends.
mkdir "$work/bin"
cat > "$work/bin/lighttpd" <<EOF
#!/bin/sh
printf '%s\\n' "\$3" > '$work/conf'
EOF
chmod 755 "$work/bin/lighttpd"
DEMO=$demo PORT=18443 HTTP_PORT=18080 SERVER=lighttpd PATH="$work/bin:$PATH" \
    "$source_dir/scripts/demo" "$build" > "$work/demo.log" 2>&1 ||
    fail "the demo did not start: $(grep -v '^    ' "$work/demo.log")"
place=$(dirname "$(dirname "$(cat "$work/conf")")")
case $place in "$work"/*) fail "the server's files are in the checkout: $place" ;; esac
as_server() { su -s /bin/sh -c "cd / && $1" www-data; }

# yes or no: whether the server account passes `test FLAG PATH`
checked=0
while read -r expected flag path; do
    if as_server "test $flag '$path'"; then got=yes; else got=no; fi
    [ "$got" = "$expected" ] || fail "www-data: test $flag $path: $got, expected $expected"
    checked=$((checked + 1))
done <<EOF
yes -r $place/install/www/verbs/index.html
yes -x $place/install/www/cgi-bin/version
yes -x $place/install/shelfsim/shelfctl
yes -r $place/etc/htpasswd
yes -r $place/etc/roles
yes -r $place/etc/groups
yes -r $place/run/lighttpd-policy.lua
yes -x $place/run/guard/shelfctl
yes -w $place/run/spool/uploads
yes -w $place/shelf.state
no -w $place
no -w $place/install/www/verbs/index.html
no -w $place/etc/htpasswd
no -r $place/etc/key.pem
no -r $demo/passwords
EOF
mode=$(stat -c %a "$demo/passwords")
[ "$mode" = 600 ] || fail "$demo/passwords has mode $mode, not 600"

page=$(printf 'posted=1' | as_server "cd '$place/install/www/cgi-bin' && REQUEST_METHOD=POST CONTENT_LENGTH=8 \
    PATH='$place/install/shelfsim:/usr/bin:/bin' SHELFSIM_STATE='$place/shelf.state' ./version")
case $page in
    *"(simulated shelf)"*) ;;
    *) fail "the gateway as www-data did not answer with the simulated shelf: $page" ;;
esac
[ -s "$place/shelf.state" ] || fail "the simulated shelf wrote no state"
echo "ok: served from $place; $checked paths as www-data, the gateway and the shelf's state"
