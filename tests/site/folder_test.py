#!/usr/bin/env python3
"""What `tav_dict site` leaves beside its folder when it is interrupted or killed, and where it refuses.

    folder_test.py FOLDER-OF-PROGRAMS
"""
import os
import shutil
import signal
import subprocess
import sys
import tempfile
import time
import unittest


class Folder(unittest.TestCase):
    def setUp(self):
        self.work = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.work)
        with open(os.path.join(self.work, "many.def"), "w", encoding="utf-8") as out:
            out.writelines(f'STRING B_{i} {{ ID = {i + 1}; DESCR = "d"; }}\n' for i in range(20000))
        with open(os.path.join(self.work, "one.def"), "w", encoding="utf-8") as out:
            out.write('STRING B { ID = 1; DESCR = "d"; }\n')

    def command(self, *arguments):
        return [os.path.join(PROGRAMS, "tav_dict"), "site", *arguments]

    def site(self, *arguments, before=()):
        return subprocess.run([*before, *self.command(*arguments)], cwd=self.work, check=False,
                              capture_output=True, text=True)

    def left(self):
        return [name for name in os.listdir(self.work) if name.startswith(".tav_dict_site.")]

    def stopped_while_writing(self, *before):
        """A run that stands still, and its new folder."""
        known = self.left()
        begun = lambda: [name for name in self.left() if name not in known
                         and os.path.exists(os.path.join(self.work, name, "data"))]
        for _ in range(100):
            run = subprocess.Popen([*before, *self.command("pages", "many.def")], cwd=self.work,
                                   stdout=subprocess.DEVNULL)
            self.addCleanup(lambda run=run: run.poll() is not None or (run.kill(), run.wait()))
            while run.poll() is None and not begun():
                time.sleep(0.0005)
            if run.poll() is None:
                run.send_signal(signal.SIGSTOP)
                os.waitpid(run.pid, os.WUNTRACED)
            if made := begun():
                return run, made[0]
            run.send_signal(signal.SIGCONT)
            run.wait()
            shutil.rmtree(os.path.join(self.work, "pages"))
        return self.fail("every run was done before it could be stopped")

    def end(self, run, number):
        run.send_signal(number)
        run.send_signal(signal.SIGCONT)
        return run.wait()

    def test_nothing_is_left_by_who_is_asked_to_end(self):
        for number in (signal.SIGINT, signal.SIGTERM):
            run, _ = self.stopped_while_writing()
            self.assertEqual(self.end(run, number), -number)
            self.assertEqual(self.left(), [])
            self.assertFalse(os.path.exists(os.path.join(self.work, "pages")))

    def test_a_signal_that_is_ignored_ends_nothing(self):
        run, _ = self.stopped_while_writing("nohup")
        self.assertEqual(self.end(run, signal.SIGHUP), 0)
        self.assertEqual(self.left(), [])

    def test_what_a_killed_run_left_goes_with_the_next_and_nothing_else(self):
        run, living = self.stopped_while_writing()
        killed, name = self.stopped_while_writing()
        self.end(killed, signal.SIGKILL)
        self.assertIn(name, self.left())
        others = [".tav_dict_site.theirs", ".tav_dict_site.of_somebody"]
        for other in others:
            shutil.copytree(os.path.join(self.work, name), os.path.join(self.work, other))
        with open(os.path.join(self.work, others[0], "mine"), "w", encoding="utf-8"):
            pass
        self.assertEqual(self.site("others", "one.def").returncode, 0)
        self.assertEqual(set(self.left()), {living, *others})
        self.assertEqual(self.end(run, signal.SIGCONT), 0)
        self.assertTrue(os.path.exists(os.path.join(self.work, "pages", "index.html")))

    def test_earlier_pages_that_nobody_may_write_are_deleted_too(self):
        self.site("pages", "one.def")
        for name in ("pages/data", "pages"):
            os.chmod(os.path.join(self.work, name), 0o555)
        before = [] if os.getuid() else ["setpriv", "--bounding-set=-all", "--inh-caps=-all"]
        self.assertEqual(self.site("pages", "many.def", before=before).returncode, 0)
        self.assertEqual(self.left(), [])
        for name in ("pages", "pages/data"):
            self.assertEqual(os.stat(os.path.join(self.work, name)).st_mode & 0o777, 0o555)
            os.chmod(os.path.join(self.work, name), 0o755)

    def test_a_mount_point_is_refused(self):
        self.assertEqual(self.site("pages", "one.def").returncode, 0)
        mounts = ["unshare", "-rm", "sh", "-c", 'mount --bind pages pages && exec "$@"', "sh"]
        if subprocess.run([*mounts, "true"], cwd=self.work, capture_output=True).returncode != 0:
            self.skipTest("here nobody may mount anything in a namespace of his own")
        refused = self.site("pages", "many.def", before=mounts)
        self.assertEqual(refused.returncode, 2)
        self.assertEqual(refused.stderr, "tav_dict: Folder 'pages' is where a file system is mounted, "
                         "and so cannot be replaced in one step; choose a folder below it.\n")
        self.assertEqual(self.left(), [])


if __name__ == "__main__":
    PROGRAMS = os.path.abspath(sys.argv.pop(1))
    unittest.main(verbosity=2)
