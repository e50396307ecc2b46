#!/usr/bin/python3
"""The checks of the sources fail, and do not pass unseen, where git does not list the sources."""

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
        # The folder may lie inside another repository.
        self.environment = dict(os.environ, GIT_CEILING_DIRECTORIES=os.path.dirname(self.folder))

    def check_fails(self, message):
        for script, argument in (("format", "--check"), ("lint", "format"), ("lint", "shell"), ("lint", "python"), ("lint", "tidy")):
            with self.subTest(script=script, argument=argument):
                done = subprocess.run([os.path.join(self.folder, "scripts", script), argument], env=self.environment,
                                      stdin=subprocess.DEVNULL, capture_output=True, text=True, check=False)
                self.assertNotEqual(done.returncode, 0)
                self.assertIn(message, done.stderr)

    def test_no_repository(self):
        self.check_fails("git cannot list this repository's files")

    def test_repository_without_files(self):
        subprocess.run(["git", "init", "-q", self.folder], check=True)
        self.check_fails("git lists no files")


if __name__ == "__main__":
    unittest.main()
