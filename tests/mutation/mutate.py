"""Changes one place of src/ at a time and sees whether the quick tests notice: mutate.py [--count N] [--seed S].

Two workers, each with a copy of the tree and a build of its own under build/mutation; the checkout is only read.
"""
import argparse
import os
import queue
import resource
import shutil
import signal
import subprocess
import sys
import threading
import time
from dataclasses import dataclass
from pathlib import Path

from mutations import draw

ROOT = Path(__file__).resolve().parents[2]
WORK = ROOT / 'build' / 'mutation'
COPIED = ('CMakeLists.txt', 'cmake', 'docs', 'examples', 'include', 'platform', 'src', 'tests', 'tools')
MEMORY_LIMIT = 4 << 30
FILE_LIMIT = 4 << 30  # a test writes far behind the start of a file with little in it
BUILD_SECONDS = 1200
# Half of the unit tests' time goes to the workstation's files, which notice little of src/: they run late.
PLATFORM_SUITES = 'fixture.*:image.*'


@dataclass
class Result:
    path: str
    mutation: object
    verdict: str  # noticed, survived, refused
    by: str = ''  # what noticed it


def read_sources():
    return {str(file.relative_to(ROOT)): file.read_text()
            for file in sorted((ROOT / 'src').rglob('*')) if file.suffix in ('.cpp', '.h')}


def set_limits():
    resource.setrlimit(resource.RLIMIT_AS, (MEMORY_LIMIT, MEMORY_LIMIT))
    resource.setrlimit(resource.RLIMIT_FSIZE, (FILE_LIMIT, FILE_LIMIT))
    resource.setrlimit(resource.RLIMIT_CORE, (0, 0))


def run(command, folder, seconds, environment=None, limits=None):
    """The exit status of a command, or None when its time is over. Ends what the command has started."""
    process = subprocess.Popen(command, cwd=folder, env=environment, stdin=subprocess.DEVNULL,
                               stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL, start_new_session=True,
                               preexec_fn=limits)
    try:
        return process.wait(seconds)
    except subprocess.TimeoutExpired:
        return None
    finally:
        try:
            os.killpg(process.pid, signal.SIGKILL)
        except ProcessLookupError:
            pass
        process.wait()


def copy_tree(target):
    """Brings `target` to the state of the checkout; what is the same stays untouched, so that little is rebuilt."""
    wanted = set()
    for name in COPIED:
        source = ROOT / name
        for file in [source] if source.is_file() else [f for f in source.rglob('*') if f.is_file()]:
            relative = file.relative_to(ROOT)
            if '__pycache__' in relative.parts:
                continue
            wanted.add(relative)
            copy = target / relative
            if not copy.exists() or copy.read_bytes() != file.read_bytes():
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copy(file, copy)
    for copy in [f for f in target.rglob('*') if f.is_file()]:
        if copy.relative_to(target) not in wanted:
            copy.unlink()


class Worker:
    """A copy of the tree, its build, and the tests over it from the quickest on."""

    def __init__(self, number):
        self.tree = WORK / str(number) / 'tree'
        self.build = WORK / str(number) / 'build'
        self.scratch = WORK / str(number) / 'scratch'
        self.tree.mkdir(parents=True, exist_ok=True)
        self.environment = dict(os.environ, TMPDIR=str(self.scratch), MALLOC_PERTURB_='165',
                                QRYLIB_TEST_SEED='1')
        self.seconds = {}  # what each step takes when nothing is wrong
        copy_tree(self.tree)

    def configure(self):
        linker = '-fuse-ld=gold' if shutil.which('ld.gold') else ''
        command = ['cmake', '-S', self.tree, '-B', self.build, '-G', 'Ninja', '-DCMAKE_BUILD_TYPE=None',
                   '-DCMAKE_CXX_FLAGS=-O0 -w -D_GLIBCXX_ASSERTIONS', '-DCMAKE_C_FLAGS=-O0 -w',
                   f'-DCMAKE_EXE_LINKER_FLAGS={linker}', f'-DCMAKE_SHARED_LINKER_FLAGS={linker}',
                   '-DCMAKE_LINK_DEPENDS_NO_SHARED=ON', '-DCMAKE_GTEST_DISCOVER_TESTS_DISCOVERY_MODE=PRE_TEST']
        return run(command, self.tree, BUILD_SECONDS) == 0

    def make(self, target):
        return run(['cmake', '--build', self.build, '--parallel', '1', '--target', target], self.build,
                   BUILD_SECONDS) == 0

    def test(self, name, command):
        """True when the test fails: it gets five times what it takes on the unchanged tree, and some."""
        if self.scratch.exists():
            shutil.rmtree(self.scratch)
        self.scratch.mkdir()
        seconds = 5 * self.seconds[name] + 10 if name in self.seconds else BUILD_SECONDS
        start = time.monotonic()
        failed = run(command, self.scratch, seconds, self.environment, set_limits) != 0
        self.seconds.setdefault(name, time.monotonic() - start)
        return failed

    def steps(self):
        """(target to build, name, command) of each test."""
        for name, target, suites in (('unit_tests', 'unit_tests', '-' + PLATFORM_SUITES),
                                     ('other_schema_tests', 'other_schema_tests', '*'),
                                     ('unit_tests of the platform', 'unit_tests', PLATFORM_SUITES)):
            yield target, name, [self.build / 'tests' / target, '--gtest_fail_fast', '--gtest_brief=1',
                                 f'--gtest_filter={suites}']
        shell = self.build / 'tools' / 'qrysh' / 'qrysh'
        for text in sorted((self.tree / 'tests' / 'query').glob('*.sql')):
            yield 'qrysh', f'query.{text.stem}', [self.tree / 'tests' / 'query' / 'run.sh', text.stem, shell]
        yield 'fault_tests', 'fault_tests', [self.build / 'tests' / 'fault_tests',
                                             self.tree / 'docs' / 'trace-points.tsv', self.tree / 'src',
                                             self.tree / 'examples' / 'office.json', '--gtest_fail_fast',
                                             '--gtest_brief=1']

    def first_failure(self):
        """The name of the first test that fails, '' for none, None when the library does not compile."""
        built = set()
        for target, name, command in self.steps():
            if target not in built and not self.make(target):
                return None
            built.add(target)
            if self.test(name, command):
                return name
        return ''

    def judge(self, path, mutation):
        file = self.tree / path
        source = file.read_text()
        file.write_text(mutation.apply(source))
        try:
            failed = self.first_failure()
        finally:
            file.write_text(source)
        if failed is None:
            return Result(path, mutation, 'refused')
        return Result(path, mutation, 'noticed' if failed else 'survived', failed)


def prepare(worker):
    """The unchanged tree must build and pass, or nothing that follows means anything."""
    if not worker.configure():
        return 'the build cannot be configured'
    for target in dict.fromkeys(step[0] for step in worker.steps()):
        if not worker.make(target):
            return f'{target} does not build'
    failed = worker.first_failure()
    return f'{failed} fails on the unchanged tree' if failed else ''


def shown(source, result):
    """A mutation as the line before and after."""
    line = result.mutation.line - 1
    before = source.split('\n')[line].strip()
    after = result.mutation.apply(source).split('\n')[line].strip()
    return f'{result.path}:{line + 1} [{result.mutation.kind}]\n  - {before}\n  + {after}'


def judge_all(workers, sources, chosen):
    """Judges the chosen mutations, file by file: a file's object is rebuilt once for each and once at its end."""
    waiting = queue.Queue()
    for pair in sorted(chosen, key=lambda pair: (pair[0], pair[1].start)):
        waiting.put(pair)
    results = []

    def work(worker):
        while True:
            try:
                path, mutation = waiting.get_nowait()
            except queue.Empty:
                return
            result = worker.judge(path, mutation)
            results.append(result)
            note = f' by {result.by}' if result.by else ''
            print(f'{result.verdict}{note}: {shown(sources[path], result)}', flush=True)

    threads = [threading.Thread(target=work, args=(worker,)) for worker in workers]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return results


def in_parallel(workers, action):
    answers = {}
    threads = [threading.Thread(target=lambda w=worker, i=i: answers.update({i: action(w)}))
               for i, worker in enumerate(workers)]
    for thread in threads:
        thread.start()
    for thread in threads:
        thread.join()
    return [answers.get(i, 'the worker broke off') for i in range(len(workers))]


def summary(seed, results, sources):
    noticed = [r for r in results if r.verdict == 'noticed']
    survived = sorted((r for r in results if r.verdict == 'survived'), key=lambda r: (r.path, r.mutation.line))
    refused = sum(r.verdict == 'refused' for r in results)
    lines = ['', f'seed {seed}: {len(noticed)} of {len(noticed) + len(survived)} mutations noticed, '
                 f'{refused} more did not compile']
    for tester in ('unit_tests', 'other_schema_tests', 'query', 'fault_tests'):
        lines.append(f'  by {tester}: {sum(r.by.startswith(tester) for r in noticed)}')
    for kind in ('negate', 'compare', 'constant', 'operator', 'drop'):
        of_kind = [r for r in noticed + survived if r.mutation.kind == kind]
        lines.append(f'  {kind}: {sum(r.verdict == "noticed" for r in of_kind)} of {len(of_kind)}')
    lines += [f'survived: {shown(sources[r.path], r)}' for r in survived]
    return '\n'.join(lines)


def main():
    parser = argparse.ArgumentParser(description=__doc__.split('\n', maxsplit=1)[0])
    parser.add_argument('--count', type=int, default=100, help='mutations that compile (100)')
    parser.add_argument('--seed', type=int, default=1, help='which ones (1)')
    parser.add_argument('--list', action='store_true', help='show what the seed draws; change and build nothing')
    options = parser.parse_args()

    sources = read_sources()
    drawn = draw(sources, options.seed)
    if options.list:
        for path, mutation in drawn[:options.count]:
            print(shown(sources[path], Result(path, mutation, '')))
        return 0

    workers = [Worker(number) for number in (1, 2)]
    for trouble in in_parallel(workers, prepare):
        if trouble:
            sys.exit(f'mutation check: {trouble}')
    results = []
    missing = options.count
    while missing > 0 and drawn:
        chosen, drawn = drawn[:missing], drawn[missing:]
        results += judge_all(workers, sources, chosen)
        missing = options.count - sum(r.verdict != 'refused' for r in results)
    print(summary(options.seed, results, sources))
    return 0


if __name__ == '__main__':
    sys.exit(main())
