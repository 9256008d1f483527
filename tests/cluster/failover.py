#!/usr/bin/env python3
"""The primary dies in the middle of deployments, and its standby takes over: everything that was told
is there, nothing is half there, and the dictionary is sound.

  scripts/with-postgres --synchronous tests/cluster/failover.py BIN COUNT SEED     (COUNT 0: at every message)

With COUNT deaths: at the commits, and others drawn from the seed. Each is before or after a message of a deployment reaches the
server. The one that died then follows the other, which is the next to die.
"""
import os, random, subprocess, sys, tempfile, threading, time

from proxy import Cut, Proxy
from tools import TOLD_CLASSES, TOLD_FIELDS, definitions, make_place, run, start, versions, write

CONTROL = os.environ["TAV_POSTGRES_CONTROL"].split()


def control(*words):
    subprocess.run([*CONTROL, *words], check=True, stdout=subprocess.DEVNULL)


def ask(server, query):
    return subprocess.run(["psql", "-h", server, "-Atc", query], check=True, capture_output=True, text=True).stdout.strip()


def entry(*servers, role="read-write"):
    return f"host={','.join(servers)} dbname=postgres user=postgres target_session_attrs={role}"


def until(what, is_so, seconds=30):
    for _ in range(int(seconds / 0.05)):
        if is_so():
            return
        time.sleep(0.05)
    raise AssertionError(f"{what}: not after {seconds} s")


def until_it_follows(primary, standby):
    until("a standby follows", lambda: ask(primary, "SELECT sync_state FROM pg_stat_replication") == "sync")
    position = ask(primary, "SELECT pg_current_wal_lsn()")
    until("a standby has all", lambda: ask(standby, f"SELECT pg_last_wal_replay_lsn() >= '{position}'") == "t")


class Death:
    """Ends the primary before or after the message of that number that it acts on; 0: never."""

    def __init__(self):
        self.count, self.number, self.is_before, self.primary, self.commits = 0, 0, True, "", []
        self.lock = threading.Lock()

    def meddle(self, to_server, kind, data, send):
        if not to_server or kind not in (b"", b"Q", b"S"):  # others wait at the server for a S
            return send(data)
        with self.lock:
            self.count += 1
            if data[5:] == b"COMMIT\0":
                self.commits.append(self.count)
            if self.count != self.number:
                return send(data)
            if not self.is_before:
                send(data)
            control("die", self.primary)
        raise Cut


def read_all(place):
    """What a reader sees; a check that finds something fails."""
    run(place, "tav_dict", "check")
    return run(place, "tav_deploy", "field", "-c"), run(place, "tav_deploy", "class", "-nm")


def try_the_standby(top, primary, standby):
    here, there = (make_place(os.path.join(top, name), entry(server, role="any"))
                   for name, server in (("primary", primary), ("standby", standby)))
    if read_all(here) != read_all(there):
        raise AssertionError("the standby exports something else")
    for place in (here, there):
        write(place, "next.def", definitions(1000))
    for command in (["tav_deploy", "verify", "next.def"], ["tav_dict", "diff", "next.def"],
                    ["tav_dict", "lint", "--against", entry(primary, role="any"), "next.def"], ["tav_dict", "log"]):
        if command[1] == "lint":
            with_other = [word.replace(primary, standby) for word in command]
        else:
            with_other = command
        if run(here, *command, expect=None) != run(there, *with_other, expect=None):
            raise AssertionError(f"the standby answers otherwise: {' '.join(command)}")
    run(there, "tav_dict", "backup", "copy.db")
    copy = make_place(os.path.join(top, "copy"), f"sqlite:{there}/copy.db")
    if read_all(copy) != read_all(there):
        raise AssertionError("the standby's backup exports something else")
    refused = run(there, "tav_deploy", "replace", "next.def", expect=None)
    if TOLD_FIELDS in refused or versions(read_all(there)[0]) == [1000]:
        raise AssertionError(f"the standby took a deployment:\n{refused}")


def deploy(place, version):
    write(place, "next.def", definitions(version))
    return start(place, "tav_deploy", "replace", "next.def").communicate()[0]


def log_of(place):
    try:
        with open(os.path.join(place, "cm.tavlog")) as log:
            return log.read()
    except FileNotFoundError:
        return ""


def judge(direct, place, version, told, what):
    """The dictionary has each step of the deployment whole or not at all, and all that was told."""
    fields, classes = (versions(text) for text in read_all(direct))
    old, new = [version - 1], [version]
    is_unknown = "UNKNOWN" in log_of(place)
    good = fields in (old, new) and classes in (old, new) and (classes == old or fields == new)
    good = good and (TOLD_FIELDS not in told or fields == new) and (TOLD_CLASSES not in told or classes == new)
    good = good and (is_unknown or (TOLD_FIELDS in told or fields == old) and (TOLD_CLASSES in told or classes == old))
    if not good:
        raise AssertionError(f"{what}: fields {fields}, classes {classes} after version {version} and\n{told}{log_of(place)}")


def main(binaries, count, seed):
    os.environ["PATH"] = os.path.abspath(binaries) + ":" + os.environ["PATH"]
    primary, standby = os.environ["TAV_PRIMARY"], os.environ["TAV_STANDBY"]
    with tempfile.TemporaryDirectory(prefix="tav_failover.") as top:
        os.chmod(top, 0o755)
        direct = make_place(os.path.join(top, "direct"), entry(primary, standby))
        death = Death()
        proxy = Proxy(top, primary, death.meddle)
        run(direct, "tav_dict", "init")
        run(direct, "tav_deploy", "create", write(direct, "first.def", definitions(1)))
        until_it_follows(primary, standby)
        try_the_standby(top, primary, standby)

        place = make_place(os.path.join(top, "deployer"), entry(top, standby))
        deploy(place, 2)
        every = [(number, is_before) for number in range(1, death.count + 1) for is_before in (True, False)]
        commits = [death_at for death_at in every if death_at[0] in death.commits]
        chosen = every if count == 0 else commits + random.Random(seed).sample(every, max(count - len(commits), 0))
        print(f"{len(chosen)} deaths at {death.count} messages of a deployment, seed {seed}")
        for version, (number, is_before) in enumerate(chosen, 3):
            place = make_place(os.path.join(top, f"deployer{version}"), entry(top, standby))
            death.count, death.number, death.is_before, death.primary = 0, number, is_before, primary
            proxy.server = primary
            told = deploy(place, version)
            what = f"death {'before' if is_before else 'after'} message {number}"
            if death.count < number:
                control("die", primary)
            control("promote", standby)
            judge(direct, place, version, told, what)
            deploy(direct, version)
            judge(direct, place, version, TOLD_FIELDS + TOLD_CLASSES, f"the repetition after {what}")
            control("rejoin", primary, standby)
            primary, standby = standby, primary
            until_it_follows(primary, standby)
            print(what, "-", "all told" if TOLD_CLASSES in told else "fields told" if TOLD_FIELDS in told else "nothing told", flush=True)


if __name__ == "__main__":
    main(sys.argv[1], int(sys.argv[2]), int(sys.argv[3]) or int(time.time()))
