#!/bin/bash
# The account files as deploy/passwd keeps them and as the guard of the
# event log and the alarms reads them: names are text, never numbers ("7"
# is not "07", "1000" not "1e3"), never two that differ only in case, and
# a viewer's command reaches the tool only when it reads.
#   accounts_test.sh DEPLOY_DIR
set -euo pipefail
deploy=$1
work=$(mktemp -d)
trap 'rm -rf "$work"' EXIT
fail() { echo "FAIL: $*"; exit 1; }

export VERBGW_ETC=$work/etc
add() { printf '%s\n' "pw-$1" | "$deploy/passwd" "$1" "$2" >/dev/null; }
add 1000 operator
add 1e3 viewer
add 7 viewer
add 07 operator
add ab viewer
add ab operator  # a new role for the same name
if add aB viewer 2>/dev/null; then fail "passwd took aB beside ab"; fi
for name in 1000 1e3 7 07 ab; do
    grep -q "^$name " "$VERBGW_ETC/roles" || fail "passwd lost account $name: $(tr '\n' ' ' < "$VERBGW_ETC/roles")"
    grep -q "^$name:" "$VERBGW_ETC/htpasswd" || fail "passwd lost the password of $name"
done
[ "$(grep -ci '^ab[ :]' "$VERBGW_ETC/roles" "$VERBGW_ETC/htpasswd" | cut -d: -f2 | paste -sd+)" = "1+1" ] ||
    fail "ab is not one account with one role: $(cat "$VERBGW_ETC/roles")"
grep -q '^ab operator$' "$VERBGW_ETC/roles" || fail "ab did not become an operator"

# The guard as deploy/serve fills it in, before a stand-in tool that
# prints what it received.
mkdir "$work/tool"
printf '#!/bin/sh\nprintf "CLI> %%s\\n" "$(head -n 1)"\n' > "$work/tool/shelfctl"
chmod +x "$work/tool/shelfctl"
sed -e "s|@ROLES@|$VERBGW_ETC/roles|g" -e "s|@TOOL_PATH@|$work/tool:/usr/bin:/bin|g" -e "s|@GUARDED_VERBS@|sel, alarm|g" \
    "$deploy/guard.in" > "$work/guard"
chmod +x "$work/guard"

# user, command, what reaches the tool ("" when refused)
cases=(
    "7|alarm critical|"
    "07|alarm critical|alarm critical"
    "1e3|sel clear 0x20 |"
    "1000|sel clear 0x20 |sel clear 0x20 "
    "7|sel -v 0x20 |sel -v 0x20 "
    "7|sel info  |sel info  "
    "7|alarm|alarm"
    "7|sel -v CLEAR 1|"
    "7|sel	clear	0x20|"
    "7|sel * clear|"
    "nobody|alarm minor|"
    "|sel clear|"
    "7|setfanlevel all 15|"
)
for c in "${cases[@]}"; do
    IFS='|' read -r user command expected <<< "$c"
    got=$(printf '%s\nquit\n\n' "$command" | REMOTE_USER=$user "$work/guard")
    if [ -n "$expected" ]; then
        [ "$got" = "CLI> $expected" ] || fail "$user: '$command' should reach the tool as sent, got '$got'"
    else
        case "$got" in *"Not allowed: this account may only read."*) ;; *) fail "$user: '$command' was not refused: '$got'" ;; esac
    fi
done
echo "ok: ${#cases[@]} commands judged; names are text"
