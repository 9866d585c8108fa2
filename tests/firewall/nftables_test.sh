#!/bin/bash
# The shipped firewall rules (deploy/nftables.conf) loaded in a private
# network namespace, then tried over loopback: one address holding more
# connections than the cap, another address beside it, a tight loop of new
# connections, and reloading the file. Nothing is loaded outside the
# namespace, which ends with this script.
#   nftables_test.sh RULES_FILE
# Exits 77 (skipped) unless root may make a network namespace and use nft.
set -euo pipefail
export PATH=$PATH:/usr/sbin:/sbin
skip() { echo "skipped: $*"; exit 77; }
fail() { echo "FAIL: $*"; exit 1; }

if [ "${1-}" != --inside ]; then
    [ $# = 1 ] && [ -r "$1" ] || { echo "usage: $0 RULES_FILE" >&2; exit 2; }
    [ "$(id -u)" = 0 ] || skip "not root"
    for tool in nft ip python3 unshare timeout; do
        command -v $tool >/dev/null || skip "no $tool"
    done
    unshare -n true 2>/dev/null || skip "unshare -n is not permitted"
    unshare -n nft add table inet probe 2>/dev/null || skip "this kernel has no nf_tables"
    rules=$(cd "$(dirname "$1")" && pwd)/$(basename "$1")
    exec timeout -k 5 60 unshare -n "$BASH" "$0" --inside "$rules"
fi
rules=$2

ip link set lo up
# 127.0.0.0/8 is all loopback; IPv6 has only ::1, so two more sources.
ip -6 addr add fd00::2/128 dev lo nodad
ip -6 addr add fd00::3/128 dev lo nodad

# Another owner's table, which loading must leave as it is.
nft add table inet other
nft add chain inet other keep
nft -f "$rules" || fail "the first load failed"
once=$(nft list table inet verbgw)
for load in second third; do
    nft -f "$rules" || fail "the $load load failed"
done
[ "$(nft list table inet verbgw)" = "$once" ] || fail "three loads differ from one: $(nft list table inet verbgw)"
tables=$(nft list tables | tr '\n' ' ')
[ "$tables" = "table inet other table inet verbgw " ] || fail "tables after three loads: $tables"
nft list chain inet other keep >/dev/null || fail "another table's chain went"
echo "loaded three times, the same as once; another table untouched"

# A listener on both web ports and on an unrelated one, in this process,
# then the clients. Each client socket resets on close, so a closed
# connection stops counting at once.
exec python3 - <<'PY'
import socket, struct, sys, threading, time

WEB, OTHER = (8443, 8080), 9000
for port in WEB + (OTHER,):
    ls = socket.socket(socket.AF_INET6)
    ls.setsockopt(socket.IPPROTO_IPV6, socket.IPV6_V6ONLY, 0)
    ls.setsockopt(socket.SOL_SOCKET, socket.SO_REUSEADDR, 1)
    ls.bind(("::", port))
    ls.listen(512)
    def serve(ls=ls, kept=[]):
        while True:
            conn, _ = ls.accept()
            conn.sendall(b"ok\n")
            kept.append(conn)  # held until the client goes
    threading.Thread(target=serve, daemon=True).start()

def attempt(src, dst, port, wait=2.0):
    """'served' with the open socket, or 'refused' (a reset) or 'dropped'
    (no answer within WAIT seconds) with None."""
    s = socket.socket(socket.AF_INET6 if ":" in dst else socket.AF_INET)
    s.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    s.bind((src, 0))
    s.settimeout(wait)
    try:
        s.connect((dst, port))
    except ConnectionRefusedError:
        s.close()
        return "refused", None
    except socket.timeout:
        s.close()
        return "dropped", None
    s.settimeout(10)
    if s.recv(3) != b"ok\n":
        sys.exit(f"FAIL: {src} -> {port}: connected but not served")
    return "served", s

failures = []
def expect(what, got, want):
    print(f"{'ok  ' if got == want else 'FAIL'} {what}: {got}" + ("" if got == want else f", not {want}"))
    if got != want:
        failures.append(what)

# The cap on connections held: (capped source, second source, destination).
for capped, other, dst in (("127.0.0.1", "127.0.0.2", "127.0.0.1"),
                           ("::1", "fd00::2", "::1")):
    held = [attempt(capped, dst, WEB[i % 2]) for i in range(16)]
    expect(f"{capped}: 16 held across both ports, served", sum(r == "served" for r, _ in held), 16)
    past = [attempt(capped, dst, port)[0] for port in (8443, 8080, 8443)]
    expect(f"{capped}: past 16, on either port", past, ["refused"] * 3)
    _, s = attempt(capped, dst, OTHER)
    expect(f"{capped}: another port meanwhile", _, "served")
    for port in WEB:
        r, s2 = attempt(other, dst, port)
        expect(f"{other} beside it on {port}", r, "served")
        s2 and s2.close()
    held.pop()[1].close()
    time.sleep(0.05)  # the kernel drops a closed one from the count on its next tick
    r, s = attempt(capped, dst, 8443)
    expect(f"{capped}: one closed, one more", r, "served")
    for _, s in held:
        s.close()

# The rate of new connections: one at a time, each closed at once, so only
# the rate applies. A dropped first packet is an unanswered connect; a
# reset means the rate let it through.
for src, dst in (("127.0.0.3", "127.0.0.1"), ("fd00::3", "::1")):
    outcomes = []
    while len(outcomes) < 100 and outcomes.count("dropped") < 5:
        r, s = attempt(src, dst, 8443, wait=0.5)
        s and s.close()
        outcomes.append(r)
    first_drop = outcomes.index("dropped") if "dropped" in outcomes else len(outcomes)
    expect(f"{src}: a tight loop, the first 40 let through", first_drop >= 40, True)
    expect(f"{src}: a tight loop, dropped ones after ({first_drop} first, {len(outcomes)} tried)",
           outcomes.count("dropped"), 5)

sys.exit(1 if failures else 0)
PY
