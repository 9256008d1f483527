"""The tests of a build one by one, and how to run some of them on several processors at once."""
import concurrent.futures
import contextlib
import json
import os
import re
import resource
import signal
import subprocess
import tempfile
import threading
import time
from pathlib import Path
from typing import NamedTuple

ROOT = Path(__file__).resolve().parent.parent.parent
GIGABYTE = 1 << 30
PROCESSORS = len(os.sched_getaffinity(0))
# Many processes at once, for half a minute each; what they run is run by others.
LEFT_OUT = ("stress_", "failover", "history_on_a_server")


class Test(NamedTuple):
    command: tuple    # without the filter
    name: str         # among those of a program of many tests; otherwise empty
    is_on_server: bool

    def told(self):
        return self.name or " ".join(Path(word).name for word in self.command)


def moved(test, build, other):
    """The same of another build."""
    return test._replace(command=tuple(word.replace(str(build), str(other)) for word in test.command))


def listed(command):
    """The names of a test program's tests."""
    said = subprocess.run([*command, "--gtest_list_tests"], stdout=subprocess.PIPE, text=True, check=True).stdout
    suite, names = "", []
    for line in said.splitlines():
        word = line.split("  #")[0].rstrip()
        if not word.startswith(" "):
            suite = word
        elif suite:
            names.append(suite + word.strip())
    return names


def all_tests(build):
    """In no order that means anything."""
    said = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], stdout=subprocess.PIPE, check=True).stdout
    found = {}
    for entry in json.loads(said)["tests"]:
        words = list(entry["command"])
        if entry["name"].startswith(LEFT_OUT):
            continue
        is_on_server = words[0].endswith("/with-postgres")
        words = words[1:] if is_on_server else words
        has_names = any(w.startswith("--gtest_filter") for w in words) or words[0].endswith("/test_tool")
        command = tuple(w for w in words if not w.startswith("--gtest_"))
        for name in listed(words) if has_names else [""]:
            found[Test(command, name, is_on_server)] = None
    return list(found)


def prepare_process(is_sanitized):
    """A fault may turn a loop into one that takes all memory, or fills the disk. Browsers and sanitizers reserve far more than
    they take, the latter more than can be had."""
    if not is_sanitized:
        resource.setrlimit(resource.RLIMIT_DATA, (6 * GIGABYTE, 6 * GIGABYTE))
    resource.setrlimit(resource.RLIMIT_FSIZE, (GIGABYTE, GIGABYTE))
    for number in (signal.SIGHUP, signal.SIGINT, signal.SIGQUIT):  # which are ignored in the background
        signal.signal(number, signal.SIG_DFL)


def end_group(process):
    """First so that what it started ends, too."""
    for number, seconds in ((signal.SIGTERM, 5), (signal.SIGKILL, None)):
        with contextlib.suppress(ProcessLookupError, subprocess.TimeoutExpired):
            os.killpg(process.pid, number)
            process.wait(seconds)


class Worker:
    """Where one test after another runs: a temporary folder, and a server for those that need one."""

    def __init__(self, folder):
        self.folder = Path(folder)
        shared = {k: v for k, v in os.environ.items() if not k.startswith(("PG", "TAV_"))}
        shared |= {"GTEST_FAIL_FAST": "1", "TAV_LOST_STEP": "1", "TMPDIR": str(self.folder / "tmp")}
        self.folder.chmod(0o755)  # no log is written where others may write
        (self.folder / "run").mkdir(mode=0o755)
        (self.folder / "tmp").mkdir()
        (self.folder / "tmp").chmod(0o1777)  # for tests of other users
        said = self.folder / "environment"
        self.server = subprocess.Popen([ROOT / "scripts/with-postgres", "sh", "-c", f"env -0 >{said}.new; mv {said}.new {said}; sleep infinity"],
                                       env={**shared, "TMPDIR": "/tmp"}, start_new_session=True)
        while not said.exists() and self.server.poll() is None:
            time.sleep(0.1)
        pairs = (entry.split("=", 1) for entry in said.read_text().split("\0") if "=" in entry)
        self.environments = {False: shared, True: {**dict(pairs), "TMPDIR": shared["TMPDIR"]}}
        self.running = None

    def passes(self, tests, seconds, is_sanitized=False, **variables):
        """Whether tests of one program pass in that time."""
        command = list(tests[0].command)
        if tests[0].name:
            command += ["--gtest_filter=" + ":".join(re.sub("[-:]", "?", t.name) for t in tests), "--gtest_also_run_disabled_tests"]
        with open(self.folder / "said", "w") as said:
            self.running = subprocess.Popen(
                command, stdin=subprocess.DEVNULL, stdout=said, stderr=subprocess.STDOUT, start_new_session=True, preexec_fn=lambda: prepare_process(is_sanitized),
                cwd=self.folder / "run", env={**self.environments[tests[0].is_on_server], **variables})
            try:
                return self.running.wait(seconds) == 0
            except subprocess.TimeoutExpired:
                return False
            finally:
                end_group(self.running)
                subprocess.run(["find", self.folder / "tmp", self.folder / "run", "-mindepth", "1", "-delete"], check=False, stderr=subprocess.DEVNULL)

    def stop(self):
        if self.running:
            with contextlib.suppress(ProcessLookupError):
                os.killpg(self.running.pid, signal.SIGKILL)


@contextlib.contextmanager
def workers():
    """One for each processor."""
    above = "/dev/shm" if Path("/dev/shm").is_dir() else None  # thousands of small dictionaries are synchronised
    with contextlib.ExitStack() as stack:
        made = []
        for _ in range(PROCESSORS):
            made.append(Worker(stack.enter_context(tempfile.TemporaryDirectory(prefix="tav_", dir=above, ignore_cleanup_errors=True))))
            stack.callback(end_group, made[-1].server)
        yield made


def batches(tests, seconds):
    """The quickest first, those of a program together for some two seconds: most of a short test is its program's start."""
    found, open_ones = [], {}
    for test in sorted(tests, key=lambda t: seconds[t]):
        key = (test.command, test.is_on_server)
        batch = open_ones.get(key) if test.name else None
        if batch is None or sum(seconds[t] for t in batch) > 2 or len(batch) >= 100:
            batch = open_ones[key] = []
            found.append(batch)
        batch.append(test)
    return found


def first_to_fail(workers, tests, seconds, is_sanitized=False):
    """A batch that fails twice, or none."""
    waiting = batches(tests, seconds)
    lock, failed = threading.Lock(), []

    def work(worker):
        while True:
            with lock:
                if failed or not waiting:
                    return
                batch = waiting.pop(0)
            allowed = 10 + 5 * sum(seconds[t] for t in batch)
            if worker.passes(batch, allowed, is_sanitized) or failed or worker.passes(batch, allowed, is_sanitized):
                continue
            if not failed:
                failed.append(batch)
                for other in workers:
                    if other is not worker:
                        other.stop()

    with concurrent.futures.ThreadPoolExecutor(len(workers)) as pool:
        list(pool.map(work, workers))
    return failed[0] if failed else None
