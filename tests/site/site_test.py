#!/usr/bin/env python3
"""Looks at the pages of `tav_dict site` with a real browser, from a folder and from a web server.

    site_test.py FOLDER-OF-PROGRAMS
"""
import functools
import http.server
import json
import os
import shutil
import subprocess
import sys
import tempfile
import threading
import unittest
from urllib.parse import quote

import browser as web

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))
AXE = os.path.join(ROOT, "site", "node_modules", "axe-core", "axe.min.js")
EXAMPLES = os.path.join(ROOT, "examples")
DEFINITIONS = ["fields.def", "subscribers.def", "devices.def", "orders.def"]
TITLE = "Data dictionary"

# What would run, close a text, or turn the order of what follows, in descriptions and in names,
# which take no white space and none of = ; { }.
EVIL = ("<img src=x onerror=window.hit=1></script><script>window.hit=1</script>'`${window.hit=1}"
        "javascript:window.hit=1 \u2028\u202eesrever\u0007")
NAMES = ["B_<script>window.hit(1)</script>", "B_'`javascript:alert(1)", "B_\u202eesrever",
         "__proto__", "constructor", "B_%2F..%00&amp", "B_" + "W" * 240]
HOSTILE = """STRING %s { ID = %d; DESCR = "%s"; }
STORABLE CLASS /%s { SEQ_START = "1"; DESCR = "%s"; LABEL = "%s";
  STRING %s { DESCR = "%s"; ORDER = 0; LENGTH = 9; CREATE = OPTIONAL; MODIFY = WRITEABLE; }
}
STORABLE CLASS /%s IMPLEMENTATION TESSEL7 { SQL_TABLE = "t%d<b>";
  STRING %s { SQL_COLUMN = "c<i>'"; }
}
"""


def class_of(name):
    return name.replace("/", "|")


def hostile_definitions():
    text = ""
    for i, name in enumerate(NAMES):
        descr = "W" * 2047 if i == 0 else EVIL
        one = class_of(name)
        values = (name, 50000 + i, descr, one, descr, EVIL, name, descr, one, i, name)
        text += HOSTILE % values
    return text


# Neither the page nor a list in it is wider than there is room.
FITS = """[document.documentElement, ...document.querySelectorAll('.wide:has(table)')].every(
    (each) => each.scrollWidth <= each.clientWidth)"""


class Quiet(http.server.SimpleHTTPRequestHandler):
    def log_message(self, *_):
        pass


class Site(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.work = tempfile.mkdtemp()
        cls.programs = os.path.abspath(PROGRAMS)
        for file in DEFINITIONS + ["tav.conf"]:
            shutil.copy(os.path.join(EXAMPLES, file), cls.work)
        cls.tool("tav_dict", "init")
        cls.tool("tav_deploy", "create", *DEFINITIONS)
        cls.tool("tav_dict", "site", "pages")
        handler = functools.partial(Quiet, directory=cls.work)
        cls.server = http.server.ThreadingHTTPServer(("127.0.0.1", 0), handler)
        threading.Thread(target=cls.server.serve_forever, daemon=True).start()
        cls.entered = web.started()
        cls.browser = cls.entered.__enter__()
        cls.folder = "file://" + cls.work
        cls.address = f"http://127.0.0.1:{cls.server.server_port}"

    @classmethod
    def tearDownClass(cls):
        cls.entered.__exit__(None, None, None)
        cls.server.shutdown()
        cls.server.server_close()
        shutil.rmtree(cls.work)

    @classmethod
    def tool(cls, program, *arguments):
        command = [os.path.join(cls.programs, program), *arguments]
        ran = subprocess.run(command, cwd=cls.work, capture_output=True, text=True, check=False)
        assert ran.returncode == 0, ran.stdout + ran.stderr
        return ran.stdout

    def setUp(self):
        self.browser.complaints(), self.browser.requests()

    def assert_quiet(self, base):
        """Nothing was complained about, and nothing was asked of anybody else."""
        self.assertEqual(self.browser.complaints(), [])
        own = (base, "data:", "blob:", "about:")
        self.assertEqual([url for url in self.browser.requests() if not url.startswith(own)], [])

    def open(self, base, place, title, pages="pages"):
        whole = f"{title} \u00b7 {TITLE}" if title else TITLE
        self.browser.open(f"{base}/{pages}/index.html#/{place}", whole)

    # --- Looking around -------------------------------------------------------------------------

    def look_around(self, base):
        b = self.browser
        self.open(base, "", "")
        self.assertIn("4 classes", b.text())
        self.assertEqual(b.run("return document.activeElement.id"), "query")
        b.type("fld_msis")
        b.wait("document.querySelector('#found a')?.innerText === 'SHOP_FLD_MSISDN'")
        b.type(web.DOWN)
        b.type(web.ENTER)
        b.shows(f"SHOP_FLD_MSISDN \u00b7 {TITLE}")
        self.assertIn("/subscriber", b.text())
        b.type("/")
        self.assertEqual(b.run("return document.activeElement.id"), "query")
        b.type(web.ESCAPE)
        b.run("history.back()")
        b.shows(f"Search: fld_msis \u00b7 {TITLE}")
        b.type("/")
        b.type(web.ESCAPE)
        b.shows(TITLE)
        b.click(".fold")
        b.wait("document.querySelector('.tree .tree a')?.innerText === '/invoiced'")
        self.open(base, "", "")
        b.click(".tree .tree a")  # it is open still
        b.shows(f"/subscriber/invoiced \u00b7 {TITLE}")
        self.look_at_class()
        self.open(base, "table/subscriber_addresses_t", "subscriber_addresses_t")
        self.assertEqual(b.run("return [...document.querySelectorAll('td:first-child')].map("
                               "(cell) => cell.innerText)"), ["street", "postcode", "city"])
        self.open(base, "changes", "Changes")
        b.click("td a")
        b.shows(f"Deployment 3 \u00b7 {TITLE}")
        self.assertIn("+ field SHOP_FLD_ADDRESSES (ARRAY)", b.text())
        self.open(base, "class/nothing", "/nothing")
        self.assert_quiet(base)

    def look_at_class(self):
        b = self.browser
        b.click("nav.row a")
        b.shows(f"/subscriber \u00b7 {TITLE}")
        shown = "[...document.querySelectorAll('section tbody tr:not([hidden]) td:first-child a')]" \
                ".some((cell) => cell.innerText === 'SHOP_FLD_STREET')"
        self.assertTrue(b.run(f"return {shown}"))
        b.click("td .fold")
        self.assertFalse(b.run(f"return {shown}"))
        b.click("#definition button")
        b.wait("document.querySelector('#definition button').innerText === 'Copied'")
        text = b.run("return document.querySelector('#definition pre').textContent")
        b.type("/")
        b.type(web.CONTROL + "v")  # into one line
        b.wait("document.getElementById('query').value.startsWith('STORABLE')")
        pasted = b.run("return document.getElementById('query').value")
        self.assertEqual(pasted.split(), text.split())

    def test_from_a_folder(self):
        self.look_around(self.folder)

    def test_from_a_web_server(self):
        self.look_around(self.address)

    def test_definitions_deploy_the_same(self):
        text = ""
        for name in ("subscriber", "subscriber/invoiced", "device", "order"):
            self.open(self.folder, "class/" + name, "/" + name)
            self.browser.run("dispatchEvent(new Event('beforeprint'))")
            text += self.browser.run("return document.querySelector('#definition pre').textContent")
        with open(os.path.join(self.work, "shown.def"), "w", encoding="utf-8") as out:
            out.write(text)
        self.assertIn("No differences", self.tool("tav_dict", "diff", "shown.def"))

    def test_history_as_the_commands_tell(self):
        with open(os.path.join(EXAMPLES, "devices.def"), encoding="utf-8") as source:
            text = source.read().replace("A phone or tablet.", "A phone.")
        with open(os.path.join(self.work, "devices.def"), "w", encoding="utf-8") as out:
            out.write(text)
        self.tool("tav_deploy", "replace", "devices.def")
        self.tool("tav_dict", "site", "changed")
        self.addCleanup(self.tool, "tav_deploy", "replace", os.path.join(EXAMPLES, "devices.def"))
        self.open(self.folder, "class/device", "/device", "changed")
        shown = self.browser.call("POST", "/execute/async", {"args": [], "script":
                                  "detailsOf('classes', '/device').then("
                                  "(d) => arguments[0](blameOf(d).flat()))"})
        told = json.loads(self.tool("tav_dict", "blame", "--json", "/device"))["parts"]
        self.assertEqual(shown, [part["deployment"] for part in told])
        self.assertEqual(set(shown), {3, 5})
        self.open(self.folder, "changes/5", "Deployment 5", "changed")
        lines = [line.strip() for line in self.tool("tav_dict", "show", "5").splitlines()]
        rows = self.browser.run("return [...document.querySelectorAll('tbody td')].map("
                                "(cell) => cell.innerText.replace('→', '->'))")
        self.assertEqual(rows, [line for line in lines if line.startswith("~")])
        self.assertEqual(len(rows), 2)
        taken = self.browser.run("return csvRows(takenColumns, changeRows([[2, 'class', '/a', '', "
                                 "[['DESCR', 'x', '']], [[0, 'entry', 'F', 'INT', [], []]]]]))")
        self.assertEqual([row[:3] for row in taken[1:]], [
            ["removed", "class", "/a"], ["changed", "attribute", "/a"],
            ["added", "entry", "/a > F"]])

    def test_what_is_not_there_or_of_another_time(self):
        self.tool("tav_dict", "add-database", "0.0.0.2")
        self.tool("tav_dict", "site", "all", "--all")
        self.tool("tav_dict", "site", "past", "--at", "3")
        which = "return document.getElementById('which').innerText"
        at = "As it was after deployment 3"
        for pages, place, title, told in (
                ("all", "@0.0.0.9/class/order", "Not here", "no database 0.0.0.9"),
                ("pages", "nonsense", "Not here", 'no page "nonsense"'),
                ("past", "changes/999", "Deployment 999", "no deployment of this number"),
                ("pages", "changes/1", "Deployment 1", "It deployed no definitions."),
                ("all", "@0.0.0.2/fields", "Fields", "Hide 47 predefined fields")):
            more = {"all": " \u00b7 Database 0.0.0." + ("2" if ".2" in place else "1"),
                    "past": " \u00b7 " + at}.get(pages, "")
            self.browser.open(f"{self.folder}/{pages}/index.html#/{place}",
                              f"{title} \u00b7 {TITLE}{more}")
            self.assertIn(told, self.browser.text())
            if pages == "past":
                self.assertEqual(self.browser.run(which), at)
        self.assertIn("Database 0.0.0.2", self.browser.run(which))
        self.browser.click("#which a")
        self.browser.shows(f"Fields \u00b7 {TITLE} \u00b7 Database 0.0.0.1")

    def test_what_was_renamed(self):
        self.tool("tav_dict", "rename", "class", "/order", "/purchase", "--yes")
        self.addCleanup(self.tool, "tav_dict", "rename", "class", "/purchase", "/order", "--yes")
        self.tool("tav_dict", "site", "renamed")
        self.open(self.folder, "class/purchase", "/purchase", "renamed")
        past = self.browser.call("POST", "/execute/async", {"args": [], "script":
                                 "detailsOf('classes', '/purchase').then((d) => "
                                 "arguments[0]([d.history.length, blameOf(d).flat()]))"})
        told = json.loads(self.tool("tav_dict", "blame", "--json", "/purchase"))["parts"]
        self.assertEqual(past, [2, [part["deployment"] for part in told]])
        self.assertEqual(set(past[1]), {3})
        self.open(self.folder, "class/order", "/order", "renamed")
        self.assertIn("It is called /purchase since deployment", self.browser.text())
        self.assertEqual(self.browser.run("return search(current, '/order').hits.map(hitOf)"
                                          ".map((hit) => hit.name)")[0], "/purchase")

    def test_ranks(self):
        self.open(self.folder, "", "")
        found = "return search(current, arguments[0]).hits.map(hitOf).map((hit) => hit.name)"
        for wanted, first in (("order", ["/order"]), ("20001", ["SHOP_FLD_MSISDN"]),
                              ("SERIAL", ["serial", "TAV_FLD_SERIALIZABLE", "SHOP_FLD_SERIAL"]),
                              ("plus sign", ["SHOP_FLD_MSISDN"]),
                              ("sign phone", ["SHOP_FLD_MSISDN"]),
                              ("2000", ["SHOP_FLD_MSISDN", "SHOP_FLD_FULL_NAME"])):
            self.assertEqual(self.browser.run(found, wanted)[:len(first)], first)

    def test_csv_holds_no_formula(self):
        self.open(self.folder, "", "")
        rows = [["=1+1", "a,\"b\"", "-5", "@x", "two\nlines"]]
        self.assertEqual(self.browser.run("return csvOf(arguments[0])", rows),
                         "'=1+1,\"a,\"\"b\"\"\",-5,'@x,\"two\nlines\"\r\n")

    # --- Others ---------------------------------------------------------------------------------

    def judge(self, what):
        """Nobody is shut out."""
        b = self.browser
        b.run(self.axe)
        found = b.call("POST", "/execute/async", {"args": [], "script":
                       "axe.run({preload: false}).then((r) => arguments[0](r.violations.filter((v) => "
                       "['serious', 'critical'].includes(v.impact)).map((v) => v.id + ' ' + "
                       "v.nodes[0].html)))"})
        self.assertEqual(found, [], what)

    def test_everybody_can_read_every_kind_of_page(self):
        with open(AXE, encoding="utf-8") as source:
            type(self).axe = source.read()
        with open(os.path.join(self.work, "hostile.def"), "w", encoding="utf-8") as out:
            out.write(hostile_definitions())
        self.tool("tav_dict", "site", "hostile", "hostile.def")
        size = {"width": 360, "height": 700, "deviceScaleFactor": 1, "mobile": False}
        self.browser.tell("Emulation.setDeviceMetricsOverride", **size)
        places = [("pages", place) for place in
                  ("", "class/order", "field/SHOP_FLD_PRICE", "table/order_t", "changes",
                   "changes/3", "search/shop", "fields", "classes", "tables")]
        places += [("hostile", place) for place in ("", "fields", "classes", "tables", "search/hit")]
        for i, name in enumerate(NAMES):
            places.append(("hostile", "class/" + quote(class_of(name), "")))
            places.append(("hostile", "field/" + quote(name, "")))
            places.append(("hostile", f"table/t{i}%3Cb%3E"))
        for i, (pages, place) in enumerate(places):
            scheme = {"name": "prefers-color-scheme", "value": ("light", "dark")[i % 2]}
            self.browser.tell("Emulation.setEmulatedMedia", features=[scheme])
            self.browser.call("POST", "/url", {"url": "about:blank"})
            self.browser.call("POST", "/url", {"url": f"{self.folder}/{pages}/index.html#/{place}"})
            self.browser.wait("document.querySelector('h1')")
            self.assertNotIn("There is none of this name", self.browser.text(), place)
            self.assertTrue(self.browser.run(f"return {FITS}"), place)
            if i < 20:
                self.judge(place)
            self.assertEqual(self.browser.run(
                "return [typeof window.hit, document.querySelectorAll('main :is(img, script, b, i)')"
                ".length, [...document.querySelectorAll('a')].every((a) => "
                "a.getAttribute('href').startsWith('#'))]"), ["undefined", 0, True], place)
        self.browser.tell("Emulation.clearDeviceMetricsOverride")
        self.browser.tell("Emulation.setEmulatedMedia", media="print", features=[])
        self.open(self.folder, "class/order", "/order")
        self.assertTrue(self.browser.run(f"return {FITS}"))
        self.browser.tell("Emulation.setEmulatedMedia", media="", features=[])
        self.assert_quiet(self.folder)

    def test_asks_to_be_loaded_again(self):
        self.tool("tav_dict", "site", "again")
        self.open(self.folder, "", "", "again")
        self.tool("tav_dict", "site", "again", "fields.def", "subscribers.def")
        self.browser.run("location.hash = '#/class/order'")
        self.browser.wait("document.querySelector('#notice button')")
        self.assertIn("anew", self.browser.run("return document.getElementById('notice').innerText"))

    def test_long_lists_come_in_pieces(self):
        fields = "".join(f'STRING B_{i} {{ ID = {i + 1}; DESCR = "d"; }}\n' for i in range(5000))
        classes = "".join(f'STORABLE CLASS /c{i} {{ SEQ_START = "1"; }}\n' for i in range(1000))
        entry = "STRING B_%d { ORDER = %d; LENGTH = 9; CREATE = OPTIONAL; MODIFY = WRITEABLE; }\n"
        entries = "".join(entry % (i, i) for i in range(5000))
        with open(os.path.join(self.work, "many.def"), "w", encoding="utf-8") as out:
            out.write(fields + classes + 'STORABLE CLASS /b { SEQ_START = "1";\n' + entries + "}\n")
        self.tool("tav_dict", "site", "many", "many.def")
        for place, title, item in (("", "", ".tree li"), ("class/b", "/b", "tbody tr")):
            self.open(self.folder, place, title, "many")
            count = f"document.querySelectorAll('{item}').length"
            self.assertLess(self.browser.run(f"return {count}"), 1500)
            self.browser.run("dispatchEvent(new Event('beforeprint'))")
            self.assertGreaterEqual(self.browser.run(f"return {count}"), 1000)
        self.assert_quiet(self.folder)


if __name__ == "__main__":
    PROGRAMS = sys.argv.pop(1)
    unittest.main(verbosity=2)
