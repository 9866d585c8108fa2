"""Guest instructions executed, from a qemu -d in_asm,exec,nochain log.

Each translated block is logged once (IN: and its instructions) before it
first runs; with chaining off, every execution of a block is logged as a
Trace line naming its guest address. The count of a block's latest
translation is added at each of its executions."""
import re
import sys

INSN = re.compile(r'^0x([0-9a-f]+):\s')
TRACE = re.compile(r'^Trace \d+: 0x[0-9a-f]+ \[[0-9a-f]+/([0-9a-f]+)/')


def count(lines):
    size, total, block, n = {}, 0, None, 0
    for line in lines:
        if line.startswith('IN:'):
            block, n = None, 0
            continue
        m = INSN.match(line)
        if m:
            block = int(m.group(1), 16) if block is None else block
            n += 1
            continue
        if block is not None:  # a block's listing ends at the first other line
            size[block], block = n, None
        m = TRACE.match(line)
        if m:
            total += size.get(int(m.group(1), 16), 0)
    return total


if __name__ == '__main__':
    with open(sys.argv[1], errors='replace') as log:
        print(count(log))
