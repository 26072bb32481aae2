"""Runs the commands shown in the documentation and compares what spm prints with the output shown there.

Usage: docs_test.py FOLDER_OF_SPM. An indented block that starts with "$ command" is checked; a line "..." stands for
any omitted lines. "$ cat FILE" creates the file for the commands after it. Pages show the paths of an installation in
place of those of this build.
"""

import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).parents[2]
BIN = sys.argv.pop(1)
DEMO = f"spm measure --chart '{PROJECT}/simulator/data/colorchecker24.csv'"


def commands(page):
    """The commands on a page, each with the lines shown below it."""
    for block in re.findall(r"^    \$ .*\n(?:(?:    .*)?\n)*", (PROJECT / page).read_text(), re.MULTILINE):
        for part in re.split(r"^    \$ ", block, flags=re.MULTILINE)[1:]:
            command, *lines = part.rstrip().replace("\n    ", "\n").split("\n")
            yield command.replace("build/native/bin/", "").replace("./demo", DEMO), lines


class Docs(unittest.TestCase):
    def test_describe_every_option(self):
        pages = [(PROJECT / page).read_text().replace("Fl -", "--") for page in ("docs/spm.1", "docs/spm.md")]
        for command in ([], ["measure"], ["doctor"]):
            help_text = subprocess.check_output([f"{BIN}/spm", *command, "--help"], text=True)
            for option in re.findall(r"^  (--[a-z-]+)", help_text, re.MULTILINE):
                for page in pages:
                    self.assertTrue(re.search(rf"{option}\b", page), option)
        subprocess.check_call(["mandoc", "-T", "lint", PROJECT / "docs/spm.1"])

    def test_show_what_spm_prints(self):
        checked = 0
        for page in ("README.md", "docs/spm.md", "docs/simulator.md"):
            folder = self.enterContext(tempfile.TemporaryDirectory())
            paths = {BIN: "/opt/spm", f"{folder}/registry.reg": "/etc/kestrova/registry.reg"}
            environment = {"PATH": f"{BIN}:{os.environ['PATH']}", "SPM_REGISTRY": f"{folder}/registry.reg"}
            for command, lines in commands(page):
                if command.startswith("cat "):
                    Path(folder, command[4:]).write_text("\n".join(lines) + "\n")
                elif re.search(r"\bspm\b", command) and lines:
                    printed = subprocess.run(["sh", "-c", command + " 2>&1"], capture_output=True, text=True,
                                             cwd=folder, env=environment, check=False).stdout
                    for path, shown in paths.items():
                        printed = printed.replace(path, shown)
                    pattern = "".join("(.*\n)*" if line == "..." else re.escape(line) + "\n" for line in lines)
                    with self.subTest(page=page, command=command):
                        self.assertRegex(printed, f"^{pattern}$")
                    checked += 1
        self.assertGreater(checked, 9)


if __name__ == "__main__":
    unittest.main(verbosity=2)
