"""How long the pages of a dictionary take in a browser, in milliseconds."""
import os
import statistics
import sys

ROOT = os.path.dirname(os.path.dirname(os.path.abspath(__file__)))
sys.path.insert(0, os.path.join(ROOT, "tests", "site"))
import browser as web  # noqa: E402

SEARCH = """const begin = performance.now();
search(current, arguments[0]);
return performance.now() - begin;"""
SHOW = """const [name, done] = arguments;
const begin = performance.now();
const look = () => document.title.startsWith(name + " ")
  ? requestAnimationFrame(() => done(performance.now() - begin)) : setTimeout(look, 1);
location.hash = "#/class" + name;
look();"""
# When the tree of classes stands in the page that was opened.
OPEN = """const done = arguments[0];
const look = () => document.querySelector(".tree li") ? done(performance.now()) : setTimeout(look, 1);
look();"""
WORDS = ("amount", "b_", "20073", "bench_777", "status service", "none like this")
# what, the most that it may take at L
GOALS = {"opens": 1000, "search answers": 30, "class shows": 100}


def measure(folder, runs):
    """The medians of what GOALS names, of the pages in the folder."""
    found = {name: [] for name in GOALS}
    with web.started() as browser:
        def wait_for(script, *arguments):
            return browser.call("POST", "/execute/async",
                                {"script": script, "args": list(arguments)})
        for turn in range(runs):
            browser.call("POST", "/url", {"url": "about:blank"})
            browser.call("POST", "/url", {"url": f"file://{folder}/index.html#/"})
            found["opens"].append(wait_for(OPEN))
            browser.run("searchedOf(current)")
            found["search answers"] += [browser.run(SEARCH, word) for word in WORDS]
            for number in range(turn * 10, turn * 10 + 5):
                found["class shows"].append(wait_for(SHOW, f"/bench_{number}"))
    return {name: statistics.median(times) for name, times in found.items()}
