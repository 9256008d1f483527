#!/usr/bin/env python3
"""Processes deploy, export, back up and check one dictionary at once, while they are killed, stopped and
cut off; a model of what each told outcome promises judges all that anybody sees.

  tests/cluster/stress.py BIN SECONDS SEED                                  on a file
  scripts/with-postgres tests/cluster/stress.py BIN SECONDS SEED            on a server

Each worker draws what it does from the seed; how they meet is up to the machine.
"""
import json, os, random, signal, subprocess, sys, tempfile, threading, time

from proxy import Cut, Proxy
from tools import TOLD_CLASSES, TOLD_FIELDS, definitions, make_place, run, start, versions, write

DEPLOYERS = ["A", "B", "C"]
SIGNALS = [signal.SIGKILL, signal.SIGTERM, signal.SIGINT, signal.SIGSTOP]
SERVER = os.environ.get("PGHOST")


class Fault(Exception):
    pass


class Promise:
    """The versions that one deployer's fields, or classes, may have now, and the newest that was begun."""

    def __init__(self):
        self.possible, self.begun = {0}, 0


class Bench:
    def __init__(self, top, seed):
        self.top, self.seed, self.end = top, seed, 0.0
        self.fields = {who: Promise() for who in DEPLOYERS}
        self.classes = {who: Promise() for who in DEPLOYERS}
        self.lock, self.counts, self.faults = threading.Lock(), {}, []

    def count(self, what):
        with self.lock:
            self.counts[what] = self.counts.get(what, 0) + 1

    # What may be seen by a reader that begins now, and then, when it has ended: (lowest, highest).
    def lowest(self):
        with self.lock:
            return {who: (min(self.fields[who].possible), min(self.classes[who].possible)) for who in DEPLOYERS}

    def highest(self):
        with self.lock:
            return {who: (self.fields[who].begun, self.classes[who].begun) for who in DEPLOYERS}


def one_version(text, who):
    seen = versions(text, who) or [0]
    if len(seen) != 1:
        raise Fault(f"half a deployment of {who} is there: versions {seen}")
    return seen[0]


def judge(bench, lowest, fields, classes, what):
    """Fields were read before classes, so that these may be newer."""
    highest = bench.highest()
    for who in DEPLOYERS:
        for kind, text in enumerate((fields, classes)):
            seen = one_version(text, who)
            if not lowest[who][kind] <= seen <= highest[who][kind]:
                raise Fault(f"{what}: {'classes' if kind else 'fields'} of {who} have version {seen}, "
                            f"not {lowest[who][kind]} to {highest[who][kind]}")


def meet_a_signal(process, rng):
    """Perhaps sends one. Gives whether the process may have ended by it."""
    if rng.random() > 0.4:
        return False
    time.sleep(rng.random() * 0.15)
    which = rng.choice(SIGNALS)
    process.send_signal(which)
    if which == signal.SIGSTOP:
        time.sleep(rng.random() * 0.3)
        process.send_signal(signal.SIGCONT)
    return which != signal.SIGSTOP


def deploy(bench, place, who, version, rng):
    log = os.path.join(place, "cm.tavlog")
    if os.path.exists(log):
        os.remove(log)
    write(place, "next.def", definitions(version, who, 20000 + 1000 * DEPLOYERS.index(who)))
    promises = (bench.fields[who], bench.classes[who])
    with bench.lock:
        for promise in promises:
            promise.begun = version
            promise.possible |= {version}  # until it has ended, either may be seen
    process = start(place, "tav_deploy", "replace", "next.def")
    is_signalled = rng is not None and meet_a_signal(process, rng)
    told = process.communicate()[0]
    logged = open(log).read() if os.path.exists(log) else ""
    is_open = is_signalled or "UNKNOWN" in logged
    with bench.lock:
        for promise, sentence in zip(promises, (TOLD_FIELDS, TOLD_CLASSES)):
            if sentence in told:
                promise.possible = {version}
            elif not is_open:
                promise.possible -= {version}
    is_done = TOLD_CLASSES in told
    bench.count("deployed" if is_done else "left open" if is_open else "refused")
    if not is_done and not is_open and SERVER is None and "another process is writing" not in logged:
        raise Fault(f"a deployment of {who} failed:\n{told}{logged}")
    return is_done


def deployer(bench, place, who, rng):
    version = 0
    while time.time() < bench.end:
        version += 1
        deploy(bench, place, who, version, rng)


def read(bench, place, rng, command):
    """What the command printed; None where a signal or the line ended it."""
    process = start(place, *command)
    is_signalled = meet_a_signal(process, rng)
    text = process.communicate()[0]
    if process.returncode == 0:
        bench.count(command[1])
        return text
    if not is_signalled and (SERVER is None or process.returncode == 1 and command[0] == "tav_dict"):
        raise Fault(f"{' '.join(command)} ended with {process.returncode}:\n{text}")
    return None


def reader(bench, place, _who, rng):
    while time.time() < bench.end:
        lowest = bench.lowest()
        fields = read(bench, place, rng, ["tav_deploy", "field", "-c"])
        classes = read(bench, place, rng, ["tav_deploy", "class", "-nm"])
        if fields is not None and classes is not None:
            judge(bench, lowest, fields, classes, "an export")


def keeper(bench, place, _who, rng):
    """Backs up, and looks at the copy; checks the dictionary."""
    for number in range(1_000_000):
        if time.time() > bench.end:
            return
        read(bench, place, rng, ["tav_dict", "check"])
        lowest = bench.lowest()
        if read(bench, place, rng, ["tav_dict", "backup", f"copy{number}.db"]) is None:
            continue
        copy = make_place(os.path.join(place, f"copy{number}"), f"sqlite:../copy{number}.db")
        run(copy, "tav_dict", "check")
        judge(bench, lowest, run(copy, "tav_deploy", "field", "-c"), run(copy, "tav_deploy", "class", "-nm"), "a backup")


def terminator(bench, _place, _who, rng):
    while time.time() < bench.end:
        time.sleep(rng.random())
        subprocess.run(["psql", "-qAtc", "SELECT pg_terminate_backend(pid) FROM pg_stat_activity WHERE "
                        "application_name LIKE 'tav%' ORDER BY random() LIMIT 1"], stdout=subprocess.DEVNULL, check=True)
        bench.count("terminated")


def bad_line(bench, rng):
    """A line that delays, stalls for longer than a program waits, and is cut at any byte."""

    def meddle(_to_server, _kind, data, send):
        chance = rng.random()
        if chance < 0.0003:
            send(data[: rng.randrange(len(data))])
            bench.count("cut")
            raise Cut
        if chance < 0.02:
            time.sleep(3 if chance < 0.0004 else rng.random() * 0.05)
        send(data)

    return meddle


def worker(bench, work, name, who, dictionary):
    rng = random.Random(f"{bench.seed} {name}")
    try:
        work(bench, make_place(os.path.join(bench.top, name), dictionary), who, rng)
    except (Fault, AssertionError) as fault:
        bench.faults.append(f"{name}: {fault}")
        bench.end = 0.0


def main(binaries, seconds, seed):
    os.environ["PATH"] = os.path.abspath(binaries) + ":" + os.environ["PATH"]
    print(f"stress: {'a server' if SERVER else 'a file'}, {seconds} s, seed {seed}", flush=True)
    with tempfile.TemporaryDirectory(prefix="tav_stress.") as top:
        bench = Bench(top, seed)
        direct = f"sqlite:{top}/dictionary.db" if not SERVER else f"host={SERVER} dbname=postgres user=postgres"
        line = direct if not SERVER else f"host={top} dbname=postgres user=postgres\nanswer_seconds = 2"
        if SERVER:
            os.chmod(top, 0o755)
            Proxy(top, SERVER, bad_line(bench, random.Random(f"{seed} line")))
        main_place = make_place(os.path.join(top, "main"), direct)
        run(main_place, "tav_dict", "init")
        bench.end = time.time() + seconds
        work = [(deployer, who, who) for who in DEPLOYERS] + [(reader, "reader1", ""), (reader, "reader2", ""), (keeper, "keeper", "")]
        work += [(terminator, "terminator", "")] if SERVER else []
        threads = [threading.Thread(target=worker, args=(bench, what, name, who, line)) for what, name, who in work]
        for thread in threads:
            thread.start()
        for thread in threads:
            thread.join()
        if not bench.faults:
            finish(bench, main_place)
        print(", ".join(f"{count} {what}" for what, count in sorted(bench.counts.items())))
        for fault in bench.faults:
            print(f"FAULT {fault}")
        return 1 if bench.faults or bench.counts.get("deployed", 0) < len(DEPLOYERS) else 0


def finish(bench, place):
    """Nobody meddles any more: the next deployment of each succeeds, and all is as it says."""
    for who in DEPLOYERS:
        if not deploy(bench, place, who, bench.fields[who].begun + 1, None):
            bench.faults.append(f"{who} cannot deploy in peace")
    try:
        judge(bench, bench.lowest(), run(place, "tav_deploy", "field", "-c"), run(place, "tav_deploy", "class", "-nm"), "at the end")
        run(place, "tav_dict", "check")
        recorded = len(json.loads(run(place, "tav_dict", "log", "--json"))["deployments"])
        if recorded < bench.counts["deployed"]:
            raise Fault(f"the journal has {recorded} deployments, and {bench.counts['deployed']} were told")
    except (Fault, AssertionError) as fault:
        bench.faults.append(f"at the end: {fault}")


if __name__ == "__main__":
    sys.exit(main(sys.argv[1], float(sys.argv[2]), int(sys.argv[3]) or int(time.time())))
