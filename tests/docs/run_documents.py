#!/usr/bin/env python3
"""Runs what documents tell their readers to type, and compares what they say it prints.

  run_documents.py PROGRAMS_FOLDER DOCUMENT...

In an indented block of a .md file, or a .Bd -literal block of a manual page, a line that begins
with "$ " is a command ("> " continues it); the lines after it are all that it prints, "..." stands
for any lines. All commands of a document run in one shell, in a folder that is empty at first;
/path/to/tav_deploy is this source, built. A block after a line <!-- not run: WHY -->, or in a page
.\\" not run: WHY, is passed over.
"""
import os
import re
import subprocess
import sys
import tempfile

SOURCE = os.path.realpath(os.path.join(os.path.dirname(__file__), "../.."))
MARK = "---- end of command ----"


def blocks(path):
    """The blocks of a document, each a list of lines; those that are not to be run left out."""
    text = open(path, encoding="utf-8").read()
    if path.endswith(".md"):
        block = r"(?m)^(?:(<!-- not run: .*-->)\n\n?)?((?:(?: {4}.*)?\n)* {4}.*\n)"
        found = re.finditer(block, text)
        return [re.sub(r"(?m)^ {4}", "", m[2]).strip("\n").split("\n") for m in found if not m[1]]
    found = re.finditer(r'(?m)^(\.\\" not run: .*\n)?\.Bd -literal.*\n((?s:.*?))^\.Ed$', text)
    return [re.sub(r"\\e", r"\\", m[2].replace(r"\&", "")).split("\n") for m in found if not m[1]]


def commands(path):
    """Pairs of a command and the lines that it prints."""
    for lines in blocks(path):
        found = []
        for line in lines:
            if line.startswith("$ "):
                found.append([line[2:], []])
            elif (line + " ").startswith("> ") and found and not found[-1][1]:
                found[-1][0] += "\n" + line[2:]
            elif found:
                found[-1][1].append(line)
        yield from found


def run(script, programs):
    env = {"LC_ALL": "C.UTF-8", "PATH": programs + ":" + os.environ["PATH"]}
    with tempfile.TemporaryDirectory() as folder:
        return subprocess.run(["bash"], input=script, cwd=folder, check=False, text=True, env=env,
                              stdout=subprocess.PIPE, stderr=subprocess.STDOUT).stdout


def check(path, programs):
    session = list(commands(path))
    script = f"mark() {{ local status=$?; echo '{MARK}'; return $status; }}\n"
    script += "".join(command + "\nmark\n" for command, _ in session)
    script = script.replace("/path/to/tav_deploy/build/release/bin", programs)
    printed = run(script.replace("/path/to/tav_deploy", SOURCE), programs).split(MARK + "\n")
    failed = 0
    for (command, expected), actual in zip(session, printed + ["(not run)"] * len(session)):
        plain, wanted = (re.sub(r"(?m)[ \t]+$", "", text).rstrip("\n")
                         for text in (actual, "\n".join(expected)))
        pattern = "(?s:.*)".join(re.escape(part) for part in re.split(r"(?m)^\.\.\.$", wanted))
        if not re.fullmatch(pattern, plain):
            failed += 1
            print(f"{path}: $ {command}\n--- the document:\n{wanted}\n--- printed:\n{plain}\n")
    print(f"{os.path.basename(path)}: {len(session)} commands, {failed} print something else")
    return len(session), failed


results = [check(path, sys.argv[1]) for path in sys.argv[2:]]
sys.exit(any(failed for _, failed in results) or not any(count for count, _ in results))
