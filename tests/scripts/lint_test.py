#!/usr/bin/python3
"""The checks of the sources fail, and do not pass unseen, where there are no sources."""

import os
import shutil
import subprocess
import tempfile
import unittest

ROOT = os.path.dirname(os.path.dirname(os.path.dirname(os.path.abspath(__file__))))


class LintTest(unittest.TestCase):
    def setUp(self):
        self.folder = self.enterContext(tempfile.TemporaryDirectory())
        shutil.copytree(os.path.join(ROOT, "scripts"), os.path.join(self.folder, "scripts"))
        with open(os.path.join(self.folder, "scripts", "setup"), "w", encoding="utf-8") as file:
            file.write("#!/bin/sh\n")  # nothing is to be installed here

    def test_no_sources(self):
        for script, argument in (("format", "--check"), ("lint", "format"), ("lint", "python"), ("lint", "tidy")):
            with self.subTest(script=script, argument=argument):
                done = subprocess.run([os.path.join(self.folder, "scripts", script), argument], stdin=subprocess.DEVNULL,
                                      capture_output=True, text=True, check=False)
                self.assertNotEqual(done.returncode, 0)
                self.assertIn("no such files here", done.stderr)


if __name__ == "__main__":
    unittest.main()
