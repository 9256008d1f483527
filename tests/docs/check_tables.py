#!/usr/bin/env python3
"""Holds manual pages, completions and the editors' syntax files against the tables of the source and
against what the programs say.   check_tables.py PROGRAMS_FOLDER EDITORS_FOLDER"""
import glob
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile

os.environ["PATH"] = os.path.realpath(sys.argv[1]) + ":" + os.environ["PATH"]
os.environ.pop("TAV_CONF", None)
editors = os.path.realpath(sys.argv[2])
os.chdir(os.path.join(os.path.dirname(os.path.realpath(__file__)), "../.."))
failures = []


def same(what, actual, expected):
    if actual != expected:
        failures.append(f"{what}:\n  is        {actual}\n  should be {expected}")


def read(path):
    with open(path, encoding="utf-8") as file:
        return file.read()


def said(*words, folder="."):
    return subprocess.run(words, cwd=folder, check=False, text=True, stdin=subprocess.DEVNULL,
                          stdout=subprocess.PIPE, stderr=subprocess.STDOUT).stdout


# The keywords by the part that each plays, and the rows of the attributes.
keywords = set(re.findall(r'X\(\w+, "(\w+)", \d+\)', read("dparse/dparse_tokens.h")))
rows = re.findall(r"\{DPARSE_KEY_(\w+), TAV_FLD_\w+, &\w+, ([A-Z_ |]+),\s+([A-Z_ |]+)",
                  read("dparse/dparse_attributes.cpp"))
parts = {"Attribute": {row[0] for row in rows}, "Structure": {"STORABLE", "CLASS", "IMPLEMENTATION"},
         "Value": set(re.findall(r"\{DPARSE_KEY_(\w+)", read("dparse/dparse_words.h")))}
parts["Type"] = keywords.difference(*parts.values())

# tav_definitions(5): every keyword, and of every attribute where it is read and written.
page = read("docs/man/tav_definitions.5")
same("tav_definitions.5 lacks", keywords - set(re.findall(r"\w+", page)), set())
described = re.findall(r"^\.It Sy (\w+) Ta ([a-z -]+) Ta ([a-z -]+) Ta ", page, re.M)
same("tav_definitions.5, attributes", len(described), len(rows))
for found, row in zip(described, rows):
    places = [" ".join(re.split(r"[ |]+", cell.lower().replace("_", "-").strip())) for cell in row[1:]]
    places[1] = {"never": "none", places[0]: "all"}.get(places[1], places[1])
    if row[0].startswith("SQL_"):  # how these are written depends on the entry's type
        places[1] = found[2]
    same("tav_definitions.5", found, (row[0], *places))

# Editors: the keywords in their groups, and the examples coloured by them.
vim = read(editors + "/vim/syntax/tav_definitions.vim")
patterns = [(p["name"], re.compile(p["match"]))
            for p in json.loads(read(editors + "/tav_definitions.tmLanguage.json"))["patterns"]]
scopes = {"Attribute": "support.type.property-name.tav_definitions", "Value": "constant.language.tav_definitions",
          "Structure": "keyword.other.structure.tav_definitions", "Type": "storage.type.tav_definitions"}
for part, words in parts.items():
    groups = re.findall(rf"^syntax keyword tav{part} (.*)$", vim, re.M)
    same(f"Vim, {part}", set(" ".join(groups).split()), words)
    alternatives = re.search(r"\(\?:([A-Z0-9_|]+)\)", dict(patterns)[scopes[part]].pattern)
    same(f"TextMate, {part}", set(alternatives[1].split("|")), words)
for path in glob.glob("examples/*.def"):
    tokens = [(number, m.start(), m[0], line) for number, line in enumerate(read(path).split("\n"), 1)
              for m in re.finditer(r'#.*|"[^"]*"|[{}=;]|[^\s;={}"#]+', line)]
    echo = "".join(f"echo '|' . synIDattr(synID({number}, {at + 1}, 1), 'name')\n" for number, at, *_ in tokens)
    with tempfile.NamedTemporaryFile("w", suffix=".vim") as script:
        script.write(echo + "qa!\n")
        script.flush()
        coloured = said("vim", "-es", "-u", "NONE", "-i", "NONE", "-N", "--cmd", f"set rtp^={editors}/vim", "-c", "syntax on",
                        "-c", f"edit {path}", "-c", f"verbose source {script.name}") if shutil.which("vim") else ""
    groups = re.findall(r"^\|(?:tav)?(\w*)", coloured, re.M)
    for index, (number, at, word, line) in enumerate(tokens):
        wanted = next((part for part, words in parts.items() if word in words), None)
        scope = next(name for name, pattern in patterns if pattern.match(line, at))
        same(f"TextMate, {path}:{number} {word}", scope if scope in scopes.values() else None, scopes.get(wanted))
        if coloured:
            same(f"Vim, {path}:{number} {word}", groups[index] if groups[index] in parts else None, wanted)


def completed(line, folder="."):
    script = '. "$1"; shift; COMP_WORDS=("$@"); COMP_CWORD=$(($# - 1)); _$1 2>/dev/null; printf "%s\\n" "${COMPREPLY[@]}"'
    words = line.split(" ")
    return said("bash", "-c", script, "-", os.path.realpath("completions/" + words[0]), *words, folder=folder).split()


# What the programs say of themselves is in their pages and is completed.
usage, page = said("tav_deploy"), read("docs/man/tav_deploy.1")
for mode, letters in re.findall(r"tav_deploy (\w+) \[-(\w+)", usage):
    options = {"-" + letter for letter in letters}
    same(f"completion of tav_deploy {mode} lacks", options - set(completed(f"tav_deploy {mode} -")), set())
    same("tav_deploy.1 lacks", options - {"-" + name for name in re.findall(r"^\.It Fl (\w)", page, re.M)}, set())
page, commands = read("docs/man/tav_dict.1"), re.findall(r"^  ([a-z-]+)  ", said("tav_dict", "--help").split("Subcommands:")[1], re.M)
same("tav_dict.1 lacks", set(commands) - set(re.findall(r"^\.It Cm ([a-z-]+)", page, re.M)), set())
same("completion of tav_dict lacks", set(commands) - set(completed("tav_dict ")), set())
for command in ["", *commands]:
    options = set(re.findall(r"(?:^  |,)(--?[a-z][a-z-]*)", said("tav_dict", *command.split(), "--help"), re.M))
    flags = {"-" + name for line in re.findall(r"^\.It Fl (.*)$", page, re.M) for name in re.findall(r"-?[a-z-]{1,}(?= |$)", line)}
    same(f"completion of tav_dict {command} lacks", options - set(completed(f"tav_dict {command} -".replace("  ", " "))), set())
    same(f"tav_dict.1 lacks of {command}", options - flags, set())

with tempfile.TemporaryDirectory() as folder:
    same("completion without a dictionary", [completed("tav_deploy class /", folder), os.listdir(folder)], [[], []])
    said("bash", "-c", f"cp {os.getcwd()}/examples/* . && tav_dict init && tav_deploy create *.def && tav_dict add-database 0.0.0.2", folder=folder)
    for line, expected in {
            "tav_deploy VER": "verify", "tav_deploy class /SUB": "/subscriber /subscriber/invoiced",
            "tav_deploy field -c shop_fld_ci": "SHOP_FLD_CITY", "tav_deploy field -d 0.0.0.2 shop_fld_ci": "",
            "tav_deploy field -ed 0.0.": "0.0.0.1 0.0.0.2", "tav_deploy verify -d 0.0.0.1 f": "fields.def",
            "tav_dict diff -d 0.0.0.1 or": "orders.def", "tav_dict diff --color = n": "never"}.items():
        same("completion of " + line, completed(line, folder), expected.split())

print("\n".join(failures) or "Everything agrees.")
sys.exit(bool(failures))
