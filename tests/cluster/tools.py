"""Definitions that tell their version, and the programs that deploy and read them."""
import os, re, subprocess

FIELDS, CLASSES = 12, 4
TOLD_FIELDS, TOLD_CLASSES = "Fields committed successfully!", "Classes committed successfully!"


def definitions(version, who="C", number=20000):
    """Every field and class of these files says the version."""
    text = "".join(
        f'STRING {who}_FLD_{i} {{ ID = {number + i}; DESCR = "version {version}"; }}\n' for i in range(FIELDS))
    for c in range(CLASSES):
        mine = range(c * FIELDS // CLASSES, (c + 1) * FIELDS // CLASSES)
        name = f"/{who.lower()}_{c}"
        entries = "".join(f"STRING {who}_FLD_{i} {{ ORDER = {i}; LENGTH = 20; }}\n" for i in mine)
        columns = "".join(f'STRING {who}_FLD_{i} {{ SQL_COLUMN = "f{i}"; }}\n' for i in mine)
        text += f'STORABLE CLASS {name} {{\nDESCR = "version {version}";\n{entries}}}\n'
        text += f'STORABLE CLASS {name} IMPLEMENTATION TESSEL7 {{\nSQL_TABLE = "{who}_{c}";\n{columns}}}\n'
    return text


def make_place(folder, dictionary):
    os.makedirs(folder, exist_ok=True)
    with open(os.path.join(folder, "tav.conf"), "w") as conf:
        conf.write(f"userid = 0.0.0.1 /admin 1\n[dm]\ndictionary = {dictionary}\n"
                   "fields_writeable = yes\nobjects_writeable = yes\n")
    return folder


def write(folder, name, text):
    with open(os.path.join(folder, name), "w") as out:
        out.write(text)
    return name


def start(folder, *command, **more):
    return subprocess.Popen(command, cwd=folder, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True,
                            start_new_session=True, **more)


def run(folder, *command, expect=0):
    """What the command printed; any other exit status is a failure of the test."""
    process = start(folder, *command)
    text = process.communicate()[0]
    if expect is not None and process.returncode != expect:
        raise AssertionError(f"{' '.join(command)} ended with {process.returncode}:\n{text}")
    return text


def versions(text, who="C"):
    """The versions that the definitions with that prefix say, each once."""
    found = re.findall(rf'^(?:STRING|STORABLE CLASS) /?{who}_[^{{]*{{[^}}]*?DESCR = "version (\d+)"', text,
                       re.MULTILINE | re.IGNORECASE)
    return sorted({int(version) for version in found})
