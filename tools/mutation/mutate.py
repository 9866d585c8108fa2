#!/usr/bin/env python3
"""make mutation: how many one-change faults in src/ the gateway's unit and
end-to-end tests catch.

Generates seeded one-change mutants of src/ (negated conditions, swapped
comparisons, constants +-1, deleted statements, one character changed in a
string literal, swapped template places), rebuilds each incrementally, runs
the unit tests and then the end-to-end tests (stopping at the first
failure), and reports the score per file and overall with every survivor as
a diff. A mutant whose built gateway is byte-identical to the original's is
reported as equivalent and left out of the score; one that does not compile
is left out too.

Each worker mutates and builds its own copy of the checkout, so the
checkout itself is never touched and may be edited during a run.

With --matrix FILE every killed mutant runs the whole suites instead, and
FILE receives, one JSON line a mutant, the test cases that failed (a table row is named
by its trace): what shows which cases earn their place.

    tools/mutation/mutate.py [--sample N] [--seed S] [--workers W] [--matrix FILE] [--resume N]
"""
import argparse
import difflib
import hashlib
import json
import os
import queue
import random
import re
import resource
import signal
import shutil
import subprocess
import sys
import threading
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


def bounded():
    """A mutant that no longer bounds the tool's answer writes pages without
    end: a file size limit ends it (SIGXFSZ) before it fills the disk."""
    resource.setrlimit(resource.RLIMIT_FSIZE, (64 << 20, 64 << 20))


def run(command, cwd, timeout=600, limit=None):
    return suite(command, cwd, timeout, limit)[0]


def suite(command, cwd, timeout, limit=None):
    """Runs a command in a session of its own; returns its exit status
    (124 past the time limit) and output. Whatever it leaves running (a
    mutant's stand-in tool that never ends, say) goes with the session.
    As root it runs in a process namespace of its own besides: a mutant
    that signals the group -1 (a reset pid) ends every process there, not
    this run and everything else on the machine."""
    if os.geteuid() == 0 and shutil.which('unshare'):
        command = ['unshare', '--pid', '--fork', '--mount-proc', '--kill-child', *command]
    process = subprocess.Popen(command, cwd=cwd, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
                               preexec_fn=limit, start_new_session=True)
    try:
        out, _ = process.communicate(timeout=timeout)
        status = process.returncode
    except subprocess.TimeoutExpired:
        out, status = b'', 124
    try:
        os.killpg(process.pid, signal.SIGKILL)
    except ProcessLookupError:
        pass
    process.wait()
    return status, out.decode('utf-8', 'replace')


def failed_cases(command, cwd, timeout):
    """Runs a whole suite; returns the names of what failed: the test, and
    the trace of a table row when it has one."""
    status, out = suite(command, cwd, timeout, bounded)
    if status == 124:
        return {'(time limit)'}
    failed, test, lines = set(), '', out.split('\n')
    for i, line in enumerate(lines):
        if line.startswith('[ RUN      ] '):
            test = line[13:].strip()
        elif line == 'Google Test trace:' and i + 1 < len(lines):
            failed.add(test + ' | ' + lines[i + 1].split(': ', 1)[-1])
        elif line.startswith('[  FAILED  ] ' + test) and test:
            failed.add(test)
    if not failed and status != 0:
        failed.add('(crash)')
    return failed


def digest(path):
    with open(path, 'rb') as f:
        return hashlib.sha256(f.read()).hexdigest()


class LogLock:
    """Every gateway writes the one log file, which a single end-to-end test
    reads back: that test runs alone, the rest of the suites side by side."""

    def __init__(self):
        self.cond, self.readers, self.writing = threading.Condition(), 0, False

    def shared(self, call):
        with self.cond:
            self.cond.wait_for(lambda: not self.writing)
            self.readers += 1
        try:
            return call()
        finally:
            with self.cond:
                self.readers -= 1
                self.cond.notify_all()

    def alone(self, call):
        with self.cond:
            self.cond.wait_for(lambda: not self.writing and self.readers == 0)
            self.writing = True
        try:
            return call()
        finally:
            with self.cond:
                self.writing = False
                self.cond.notify_all()


LOG_LOCK = LogLock()
LOG_TEST = '*TheLog*'
TARGETS = ['verbgw', 'unit_tests', 'e2e_tests', 'stub_shelfctl', 'verbgw_short_limits']


class Worker:
    """A private copy of the checkout and its build directory."""

    def __init__(self, root, n):
        self.tree = os.path.join(root, f'tree{n}')
        self.build = os.path.join(root, f'build{n}')
        files = subprocess.run(['git', 'ls-files', '-z', '--cached', '--others', '--exclude-standard'], cwd=REPO,
                               stdout=subprocess.PIPE, check=True).stdout.decode().split('\0')
        for name in filter(None, files):
            source = os.path.join(REPO, name)
            if os.path.isfile(source):
                target = os.path.join(self.tree, name)
                os.makedirs(os.path.dirname(target), exist_ok=True)
                if not os.path.exists(target) or digest(target) != digest(source):
                    # A fresh time stamp, so that make rebuilds what a
                    # mutant left behind in this copy.
                    shutil.copyfile(source, target)
                    shutil.copymode(source, target)
        subprocess.run(['cmake', '-S', self.tree, '-B', self.build, '-DCMAKE_BUILD_TYPE=Release'], check=True,
                       stdout=subprocess.DEVNULL)
        self.unit = [os.path.join(self.build, 'tests', 'unit_tests')]
        self.e2e = [os.path.join(self.build, 'tests', 'e2e_tests')]

    def make(self, jobs):
        return run(['cmake', '--build', self.build, '-j', str(jobs), '--target', *TARGETS], self.tree) == 0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument('--sample', type=int, default=300)
    parser.add_argument('--seed', type=int, default=1)
    parser.add_argument('--workers', type=int, default=2)
    parser.add_argument('--root', default=os.path.join(REPO, 'build-mutation'))
    parser.add_argument('--matrix')
    parser.add_argument('--resume', type=int, default=1, help='the first mutant of the sample to run')
    args = parser.parse_args()

    sources = sorted(os.path.join(d, f) for d, _, fs in os.walk(os.path.join(REPO, 'src'))
                     for f in fs if f.endswith(('.cpp', '.hpp')))
    pool = [(os.path.relpath(path, REPO), *c) for path in sources for c in candidates(path)]
    originals = {os.path.relpath(path, REPO): open(path).read().split('\n') for path in sources}
    random.Random(args.seed).shuffle(pool)
    sample = pool[:args.sample]
    print(f'mutation: {len(sample)} of {len(pool)} mutants, seed {args.seed}, {args.workers} workers', flush=True)

    if args.matrix:
        open(args.matrix, 'w').close()
    workers = [Worker(args.root, n) for n in range(args.workers)]
    for w in workers:
        if not w.make(2):
            sys.exit('mutation: the unmutated tree does not build')
        for suite in (w.unit, w.e2e):  # one at a time here
            failed = failed_cases(suite, w.build, 300)
            if failed:
                sys.exit('mutation: the tests fail on the unmutated tree: ' + ', '.join(sorted(failed)))
    original = digest(os.path.join(workers[0].build, 'verbgw'))

    todo = queue.Queue()
    for n, mutant in enumerate(sample, 1):
        if n >= args.resume:  # a stopped run goes on where it stopped
            todo.put((n, mutant))
    results, lock, stop = [], threading.Lock(), threading.Event()

    def work(w):
        while not stop.is_set():
            try:
                n, mutant = todo.get_nowait()
            except queue.Empty:
                return
            outcome = try_mutant(w, mutant, original, args.matrix is not None)
            with lock:
                results.append((mutant, outcome))
                if args.matrix and outcome[0] in ('killed', 'survived'):
                    # One line a mutant as it ends, so that a stopped run keeps what it found.
                    with open(args.matrix, 'a') as f:
                        f.write(json.dumps({'mutant': f'{mutant[0]}:{mutant[1] + 1} {mutant[3]}', 'line': mutant[2],
                                            'failed': sorted(outcome[1])}) + '\n')
                if outcome[0] in ('killed', 'survived'):
                    print(f'  {n}/{len(sample)} {mutant[0]}:{mutant[1] + 1} {mutant[3]}: '
                          f'{"killed" if outcome[0] == "killed" else "SURVIVED"}', flush=True)

    # Stopped from a script (SIGTERM) or at the terminal (Ctrl-C) alike.
    signal.signal(signal.SIGTERM, signal.default_int_handler)
    signal.signal(signal.SIGINT, signal.default_int_handler)
    started = time.time()
    threads = [threading.Thread(target=work, args=(w,)) for w in workers]
    for t in threads:
        t.start()
    try:
        while any(t.is_alive() for t in threads):
            time.sleep(0.5)
    except KeyboardInterrupt:  # each worker restores its file before it stops
        stop.set()
        print('mutation: interrupted; the figures cover the mutants run so far', flush=True)
        for t in threads:
            t.join()
    report(results, originals, time.time() - started)


def try_mutant(w, mutant, original, matrix):
    """Builds and tests one mutant in the worker's copy, always restoring
    the file; returns (outcome, what failed)."""
    name, number, new_line, _ = mutant
    path = os.path.join(w.tree, name)
    text = open(path).read()
    lines = text.split('\n')
    lines[number] = new_line
    try:
        with open(path, 'w') as f:
            f.write('\n'.join(lines))
        if not w.make(1):
            return 'broken', set()
        if digest(os.path.join(w.build, 'verbgw')) == original:
            return 'equivalent', set()
        rest, log = [f'--gtest_filter=-{LOG_TEST}'], [f'--gtest_filter={LOG_TEST}']
        if matrix:
            failed = (failed_cases(w.unit, w.build, 60) |
                      LOG_LOCK.shared(lambda: failed_cases(w.e2e + rest, w.build, 60)) |
                      LOG_LOCK.alone(lambda: failed_cases(w.e2e + log, w.build, 60)))
            return ('killed' if failed else 'survived'), failed
        # A mutant that loops for ever is killed by the time limit.
        brief = ['--gtest_brief=1', '--gtest_fail_fast']
        killed = (run(w.unit + brief, w.build, 60, bounded) != 0 or
                  LOG_LOCK.shared(lambda: run(w.e2e + brief + rest, w.build, 60, bounded)) != 0 or
                  LOG_LOCK.alone(lambda: run(w.e2e + brief + log, w.build, 60, bounded)) != 0)
        return ('killed' if killed else 'survived'), set()
    finally:
        with open(path, 'w') as f:
            f.write(text)


def report(results, originals, seconds):
    per_file, survivors = {}, []
    for (name, number, new_line, operator), (outcome, _) in results:
        if outcome not in ('killed', 'survived'):
            continue
        kills, total = per_file.get(name, (0, 0))
        per_file[name] = (kills + (outcome == 'killed'), total + 1)
        if outcome == 'survived':
            old_line = originals[name][number]
            diff = difflib.unified_diff([old_line + '\n'], [new_line + '\n'], f'a/{name}', f'b/{name}',
                                        lineterm='\n', n=0)
            survivors.append(f'{operator}, line {number + 1}\n' + ''.join(diff))
    equivalent = sum(o == 'equivalent' for _, (o, _) in results)
    broken = sum(o == 'broken' for _, (o, _) in results)
    print(f'\nmutation: {seconds:.0f} s; {equivalent} equivalent (identical gateway), {broken} did not compile')
    for name, (kills, total) in sorted(per_file.items()):
        print(f'  {name:40} {kills:4}/{total:<4} {100 * kills / total:5.1f}%')
    kills = sum(k for k, _ in per_file.values())
    total = sum(t for _, t in per_file.values())
    print(f'score: {kills}/{total} killed ({100 * kills / max(total, 1):.1f}%)')
    print(f'\nsurvivors ({len(survivors)}):')
    for s in sorted(survivors):
        print(s)


if __name__ == '__main__':
    main()
