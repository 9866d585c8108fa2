#!/usr/bin/env python3
"""make mutation: how many one-change faults in src/ the gateway's unit and
end-to-end tests catch.

Generates seeded one-change mutants of src/ (negated conditions, swapped
comparisons, constants +-1, deleted statements, one character changed in a
string literal, swapped template places), rebuilds each incrementally in its
own build directory, runs the unit tests and then the end-to-end tests
(stopping at the first failure), and reports the score per file and overall
with every survivor as a diff. A mutant whose built gateway is
byte-identical to the original's is reported as equivalent and left out of
the score; one that does not compile is left out too.

    tools/mutation/mutate.py [--sample N] [--seed S] [--build DIR]
"""
import argparse
import difflib
import hashlib
import os
import random
import re
import subprocess
import sys
import time

REPO = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
SWAPS = [('==', '!='), ('!=', '=='), ('<=', '>'), ('>=', '<'), (' < ', ' >= '), (' > ', ' <= '),
         ('&&', '||'), ('||', '&&'), ('true', 'false'), ('false', 'true')]
NUMBER = re.compile(r'(?<![\w.])(\d+)(?![\w.])')
STRING = re.compile(r'"((?:[^"\\]|\\.)+)"')
PLACES = re.compile(r'take\((\w+)\)(.*?)take\((\w+)\)')
STATEMENT = re.compile(r'^\s+(?!return\b|case\b|default\b|break\b|else\b|if\b|for\b|while\b)[\w:.\->()\[\]*&, ]+\(.*\);\s*$')


def candidates(path):
    """Every one-change mutant of the file, as (line number, new line, operator)."""
    found = []
    lines = open(path).read().split('\n')
    for number, line in enumerate(lines):
        code = line.split('//')[0]
        if not code.strip() or code.lstrip().startswith(('#', '*', '/*')):
            continue
        for old, new in SWAPS:
            start = code.find(old)
            while start >= 0:
                found.append((number, line[:start] + new + line[start + len(old):], 'swap ' + old.strip()))
                start = code.find(old, start + 1)
        for m in NUMBER.finditer(code):
            value = int(m.group(1))
            for changed in (value + 1, value - 1):
                if changed >= 0:
                    found.append((number, line[:m.start()] + str(changed) + line[m.end():], 'constant'))
        for m in STRING.finditer(code):
            text = m.group(1)
            i = len(text) // 2
            if text[i] != '\\' and (i == 0 or text[i - 1] != '\\'):
                mutated = text[:i] + ('X' if text[i] != 'X' else 'Y') + text[i + 1:]
                found.append((number, line[:m.start(1)] + mutated + line[m.end(1):], 'literal'))
        m = PLACES.search(code)
        if m:
            swapped = f'take({m.group(3)}){m.group(2)}take({m.group(1)})'
            found.append((number, line[:m.start()] + swapped + line[m.end():], 'places'))
        if STATEMENT.match(code) and '=' not in code.split('(')[0]:
            found.append((number, '', 'delete'))
    return found


def run(command, cwd, timeout=600):
    try:
        return subprocess.run(command, cwd=cwd, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                              timeout=timeout).returncode
    except subprocess.TimeoutExpired:
        return 124


def digest(path):
    with open(path, 'rb') as f:
        return hashlib.sha256(f.read()).hexdigest()


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--sample', type=int, default=300)
    parser.add_argument('--seed', type=int, default=1)
    parser.add_argument('--build', default=os.path.join(REPO, 'build-mutation'))
    args = parser.parse_args()

    sources = sorted(os.path.join(d, f) for d, _, fs in os.walk(os.path.join(REPO, 'src'))
                     for f in fs if f.endswith(('.cpp', '.hpp')))
    pool = [(path, *c) for path in sources for c in candidates(path)]
    random.Random(args.seed).shuffle(pool)
    sample = pool[:args.sample]
    print(f'mutation: {len(sample)} of {len(pool)} mutants, seed {args.seed}', flush=True)

    build = args.build
    targets = ['verbgw', 'unit_tests', 'e2e_tests', 'stub_shelfctl', 'verbgw_short_limits']
    subprocess.run(['cmake', '-S', REPO, '-B', build, '-DCMAKE_BUILD_TYPE=Release'], check=True,
                   stdout=subprocess.DEVNULL)
    if run(['cmake', '--build', build, '-j', '2', '--target', *targets], REPO) != 0:
        sys.exit('mutation: the unmutated tree does not build')
    original = digest(os.path.join(build, 'verbgw'))
    unit = [os.path.join(build, 'tests', 'unit_tests'), '--gtest_brief=1', '--gtest_fail_fast']
    e2e = [os.path.join(build, 'tests', 'e2e_tests'), '--gtest_brief=1', '--gtest_fail_fast']
    if run(unit, build) != 0 or run(e2e, build) != 0:
        sys.exit('mutation: the tests fail on the unmutated tree')

    per_file, survivors, equivalent, broken = {}, [], 0, 0
    started = time.time()
    try:
        for n, mutant in enumerate(sample, 1):
            equivalent, broken = try_mutant(n, mutant, len(sample), build, targets, original, unit, e2e,
                                            per_file, survivors, equivalent, broken)
    except KeyboardInterrupt:  # the file being mutated is already restored
        print('mutation: interrupted; the figures cover the mutants run so far')
    # Leave the build as the unmutated tree.
    run(['cmake', '--build', build, '-j', '2', '--target', *targets], REPO)
    report(per_file, survivors, equivalent, broken, time.time() - started)


def try_mutant(n, mutant, count, build, targets, original, unit, e2e, per_file, survivors, equivalent, broken):
    """Builds and tests one mutant, always restoring its file; returns the
    new counts of equivalent and broken mutants."""
    path, number, new_line, operator = mutant
    text = open(path).read()
    lines = text.split('\n')
    old_line = lines[number]
    lines[number] = new_line
    try:
        with open(path, 'w') as f:
            f.write('\n'.join(lines))
        if run(['cmake', '--build', build, '-j', '2', '--target', *targets], REPO) != 0:
            return equivalent, broken + 1
        if digest(os.path.join(build, 'verbgw')) == original:
            return equivalent + 1, broken
        # A mutant that loops for ever is killed by the time limit.
        killed = run(unit, build, timeout=60) != 0 or run(e2e, build, timeout=300) != 0
    finally:
        with open(path, 'w') as f:
            f.write(text)
    name = os.path.relpath(path, REPO)
    kills, total = per_file.get(name, (0, 0))
    per_file[name] = (kills + killed, total + 1)
    if not killed:
        diff = difflib.unified_diff([old_line + '\n'], [new_line + '\n'], f'a/{name}', f'b/{name}',
                                    lineterm='\n', n=0)
        survivors.append(f'{operator}, line {number + 1}\n' + ''.join(diff))
    print(f'  {n}/{count} {name}:{number + 1} {operator}: {"killed" if killed else "SURVIVED"}', flush=True)
    return equivalent, broken


def report(per_file, survivors, equivalent, broken, seconds):
    print(f'\nmutation: {seconds:.0f} s; {equivalent} equivalent (identical gateway), {broken} did not compile')
    for name, (kills, total) in sorted(per_file.items()):
        print(f'  {name:40} {kills:4}/{total:<4} {100 * kills / total:5.1f}%')
    kills = sum(k for k, _ in per_file.values())
    total = sum(t for _, t in per_file.values())
    print(f'score: {kills}/{total} killed ({100 * kills / max(total, 1):.1f}%)')
    print(f'\nsurvivors ({len(survivors)}):')
    for s in survivors:
        print(s)


if __name__ == '__main__':
    main()
