#!/usr/bin/env python3
"""Holds pages, completions and editors' files against the source's tables and the programs' help.

  check_tables.py PROGRAMS_FOLDER EDITORS_FOLDER
"""
import glob
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
from pathlib import Path

os.environ["PATH"] = os.path.realpath(sys.argv[1]) + ":" + os.environ["PATH"]
os.environ.pop("TAV_CONF", None)
EDITORS = os.path.realpath(sys.argv[2])
os.chdir(os.path.join(os.path.dirname(os.path.realpath(__file__)), "../.."))
FAILURES = []


def same(what, actual, expected):
    if actual != expected:
        FAILURES.append(f"{what}:\n  is        {actual}\n  should be {expected}")


def lacks(what, found, wanted):
    same(what + " lacks", set(wanted) - set(found), set())


def said(*words, folder="."):
    return subprocess.run(words, cwd=folder, check=False, text=True, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT).stdout


KEYWORDS = set(re.findall(r'X\(\w+, "(\w+)", \d+\)', Path("dparse/dparse_tokens.h").read_text()))
ROWS = re.findall(r"\{DPARSE_KEY_(\w+), TAV_FLD_\w+, &\w+, ([A-Z_ |]+),\s+([A-Z_ |]+)",
                  Path("dparse/dparse_attributes.cpp").read_text())
PARTS = {"Attribute": {row[0] for row in ROWS},
         "Value": set(re.findall(r"\{DPARSE_KEY_(\w+)", Path("dparse/dparse_words.h").read_text())),
         "Structure": {"STORABLE", "CLASS", "IMPLEMENTATION"}}
PARTS["Type"] = KEYWORDS.difference(*PARTS.values())
SCOPES = {"support.type.property-name": "Attribute", "constant.language": "Value",
          "keyword.other.structure": "Structure", "storage.type": "Type"}


def check_language_page():
    """Every keyword, and of every attribute where it is read and where it is written."""
    page = Path("docs/man/tav_definitions.5").read_text()
    lacks("tav_definitions.5", re.findall(r"\w+", page), KEYWORDS)
    found = re.findall(r"^\.It Sy (\w+) Ta ([a-z -]+) Ta ([a-z -]+) Ta ", page, re.M)
    same("rows of attributes in tav_definitions.5", len(found), len(ROWS))
    for described, (name, *cells) in zip(found, ROWS):
        places, written = (" ".join(re.findall(r"[a-z-]+", cell.lower().replace("_", "-")))
                           for cell in cells)
        written = {"never": "none", places: "all"}.get(written, written)
        if name.startswith("SQL_"):  # how these are written depends on the entry's type
            written = described[2]
        same("tav_definitions.5", described, (name, places, written))


def vim_groups(path, tokens):
    echo = "".join(f"echo '|' . synIDattr(synID({number}, {at + 1}, 1), 'name')\n"
                   for number, at, _, _ in tokens)
    with tempfile.NamedTemporaryFile("w", suffix=".vim") as script:
        script.write(echo + "qa!\n")
        script.flush()
        shown = said("vim", "-esN", "-u", "NONE", "-i", "NONE",
                     "--cmd", f"set rtp^={EDITORS}/vim", "-c",
                     f"syntax on | edit {path} | verbose source {script.name}")
    return re.findall(r"^\|(?:tav)?(\w*)", shown, re.M)


def check_editors():
    """The examples, and a file of all keywords, coloured."""
    grammar = json.loads(Path(EDITORS + "/tav_definitions.tmLanguage.json").read_text())
    patterns = [(p["name"].rsplit(".", 1)[0], re.compile(p["match"])) for p in grammar["patterns"]]
    with tempfile.NamedTemporaryFile("w", suffix=".def") as everything:
        everything.write("STORABLE " + " ".join(KEYWORDS) + " " + " ".join(KEYWORDS).lower())
        everything.flush()
        for path in [everything.name, *glob.glob("examples/*.def")]:
            tokens = [(number, m.start(), m[0].upper(), line)
                      for number, line in enumerate(Path(path).read_text().split("\n"), 1)
                      for m in re.finditer(r'#.*|"[^"]*"|[{}=;]|[^\s;={}"#]+', line)]
            wanted = [next((p for p in PARTS if token[2] in PARTS[p]), None) for token in tokens]
            scopes = [next(name for name, pattern in patterns if pattern.match(line, at))
                      for _, at, _, line in tokens]
            same("TextMate, " + path, [SCOPES.get(scope) for scope in scopes], wanted)
            if shutil.which("vim"):
                groups = [g if g in PARTS else None for g in vim_groups(path, tokens)]
                same("Vim, " + path, groups, wanted)


def completed(line, folder="."):
    script = ('. "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); '
              '_$1 2>/dev/null; printf "%s\\n" "${COMPREPLY[@]}"')
    words = line.split(" ")
    source = os.path.realpath("completions/" + words[0])
    return said("bash", "-c", script, "-", source, *words, folder=folder).split()


def check_help():
    """What the programs say of themselves is in their pages and is completed."""
    page = Path("docs/man/tav_deploy.1").read_text()
    for mode, letters in re.findall(r"tav_deploy (\w+) \[-(\w+)", said("tav_deploy")):
        lacks("tav_deploy.1", re.findall(r"^\.It Fl (\w)", page, re.M), letters)
        offered = completed(f"tav_deploy {mode} -")
        lacks(f"completion of {mode}", offered, ["-" + letter for letter in letters])
    page = Path("docs/man/tav_dict.1").read_text()
    flags = ["-" + flag for flag in " ".join(re.findall(r"^\.It Fl (.*)", page, re.M)).split()]
    commands = re.findall(r"^  ([a-z][a-z-]*)  ", said("tav_dict", "--help"), re.M)
    lacks("tav_dict.1", re.findall(r"^\.It Cm ([a-z-]+)", page, re.M), commands)
    lacks("completion of tav_dict", completed("tav_dict "), commands)
    for words in [["tav_dict"], *(["tav_dict", command] for command in commands)]:
        options = re.findall(r"(?:^  |,)(--?[a-z-]+)", said(*words, "--help"), re.M)
        lacks(f"tav_dict.1, of {words},", flags, options)
        lacks(f"completion of {words}", completed(" ".join(words) + " -"), options)


def check_completion():
    with tempfile.TemporaryDirectory() as folder:
        same("without tav.conf", completed("tav_deploy class /", folder) + os.listdir(folder), [])
        said("bash", "-c", f"cp {os.getcwd()}/examples/* . && tav_dict init && "
             "tav_deploy create *.def && tav_dict add-database 0.0.0.2", folder=folder)
        for line, *expected in (
                ("tav_deploy VER", "verify"), ("tav_deploy verify -d 0.0.0.1 f", "fields.def"),
                ("tav_deploy class /SUB", "/subscriber", "/subscriber/invoiced"),
                ("tav_deploy field -c shop_fld_ci", "SHOP_FLD_CITY"),
                ("tav_deploy field -d 0.0.0.2 shop_fld_ci",),
                ("tav_deploy field -ed 0.0.", "0.0.0.1", "0.0.0.2"),
                ("tav_dict diff or", "orders.def"), ("tav_dict diff --color = n", "never")):
            same("completion of " + line, completed(line, folder), expected)


for check in (check_language_page, check_editors, check_help, check_completion):
    check()
print("\n".join(FAILURES) or "Everything agrees.")
sys.exit(bool(FAILURES))
