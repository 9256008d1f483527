"""Which tests come to a line: programs that note the blocks they run (reach.c) tell it test by test."""
import array
import bisect
import collections
import concurrent.futures
import queue
import re
import subprocess
import threading
import time
from pathlib import Path

OBJECT = "reach.o"
KINDS = ("EXE", "SHARED", "MODULE")
LINKING = [f"-DCMAKE_{kind}_LINKER_FLAGS=-fuse-ld=lld" for kind in KINDS]  # a tenth of the time


def compile_noting(folder):
    """What a build takes so that its programs note where they come."""
    made = folder / OBJECT
    subprocess.run(["cc", "-O2", "-fPIC", "-c", "-o", made, Path(__file__).with_name("reach.c")], check=True)
    link = f"{made} -fuse-ld=lld"
    return ["-DCMAKE_CXX_FLAGS_DEBUG=-g1 -fsanitize-coverage=trace-pc", *(f"-DCMAKE_{kind}_LINKER_FLAGS={link}" for kind in KINDS)]


def blocks_of(program, source):
    """Where the blocks of a program begin: address -> (file, line)."""
    code = subprocess.run(["objdump", "-d", "--no-show-raw-insn", "-j", ".text", program], stdout=subprocess.PIPE, text=True, check=True)
    behind = re.findall(r"call +[0-9a-f]+ <__sanitizer_cov_trace_pc>\n +([0-9a-f]+):", code.stdout)
    asked = "".join(f"{int(address, 16) - 1:x}\n" for address in behind)
    told = subprocess.run(["addr2line", "-e", program], input=asked, stdout=subprocess.PIPE, text=True, check=True)
    found = {}
    for address, line in zip(behind, told.stdout.splitlines()):
        name, _, number = line.split(" ")[0].rpartition(":")
        path = Path(name).resolve()
        if number.isdigit() and path.is_relative_to(source):
            found[int(address, 16)] = (str(path.relative_to(source)), int(number))
    return found


class Reach:
    """What is known of a build: the blocks of its programs, and which of them each test comes to."""

    def __init__(self, build, source):
        self.build, self.source = build, source
        self.tests = {}    # test -> {program: its addresses in order}
        self.seconds = {}  # of each test
        self.lines = collections.defaultdict(dict)  # file -> line -> [(program, address)]

    def note(self, test, folder):
        found = {}
        for path in folder.iterdir():
            found[path.name] = array.array("I", (m.start() for m in re.finditer(b"\x01", path.read_bytes())))
            path.unlink()
        self.tests[test] = found

    def trace(self, workers, tests):
        """Runs every test. Gives those that fail."""
        waiting, failed, lock = queue.SimpleQueue(), [], threading.Lock()
        for test in tests:
            waiting.put(test)

        def work(worker):
            folder = worker.folder / "reach"
            folder.mkdir(exist_ok=True)
            folder.chmod(0o1777)
            while not waiting.empty():
                try:
                    test = waiting.get_nowait()
                except queue.Empty:
                    return
                start = time.monotonic()
                is_good = worker.passes([test], 900, TAV_REACH=str(folder))
                with lock:
                    self.seconds[test] = time.monotonic() - start
                    self.note(test, folder)
                    if not is_good:
                        failed.append(test)

        with concurrent.futures.ThreadPoolExecutor(len(workers)) as pool:
            list(pool.map(work, workers))
        return failed

    def read_programs(self):
        programs = [p for p in self.build.rglob("*") if p.is_file() and p.name in {n for found in self.tests.values() for n in found}]
        with concurrent.futures.ThreadPoolExecutor(len(programs)) as pool:
            for program, blocks in zip(programs, pool.map(lambda p: blocks_of(p, self.source), programs)):
                for address, (name, line) in blocks.items():
                    self.lines[name].setdefault(line, []).append((program.name, address))

    def tests_of(self, blocks):
        def comes(addresses, address):
            at = bisect.bisect_left(addresses, address)
            return at < len(addresses) and addresses[at] == address
        return [test for test, found in self.tests.items()
                if any(program in found and comes(found[program], address) for program, address in blocks)]

    def tests_at(self, name, line, is_table):
        """Of a line, those that come to a block that it stands in: those that begin there, and the one before, which may end there.
        Of a table's row, those that come to the file."""
        lines = self.lines.get(name)
        if not lines:
            return list(self.tests)
        if is_table:
            return self.tests_of([block for blocks in lines.values() for block in blocks])
        before = sorted(number for number in lines if number <= line)
        nearest = before[-2:] if before[-1:] == [line] else before[-1:]
        return self.tests_of([block for number in nearest for block in lines[number]]) if before else list(self.tests)
