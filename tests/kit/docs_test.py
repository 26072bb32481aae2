"""Runs the commands shown in the documentation and compares what spm prints with the output shown there.

Usage: docs_test.py FOLDER_OF_SPM; with SPM_WRITE_GOLDEN set, corrects the pages instead. An indented block that starts
with "$ command" is checked; a line "..." stands for any omitted lines. "$ cat FILE" creates the file for the commands
after it. Pages show the paths of an installation in place of those of this build.
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
BLOCK = re.compile(r"^    \$ .*\n(?:(?:    .*)?\n)*", re.MULTILINE)
VERSION = re.compile(r"\b\d+(\.\d+){3}\b")


def omit(lines, shown):
    """Shortens printed lines as they are shown. A part between two "..." begins where its first two words are."""
    parts = re.split(r"^\.\.\.\n", "".join(f"{line}\n" for line in shown), flags=re.MULTILINE)
    first, *others = (part.splitlines() for part in parts)
    if not others:
        return lines
    result = lines[:len(first)]
    for part in others[:-1]:
        start = next((i for i, line in enumerate(lines) if line.split()[:2] == part[0].split()[:2]), 0)
        result += ["...", *lines[start:start + len(part)]]
    return [*result, "...", *lines[len(lines) - len(others[-1]):]]


class Docs(unittest.TestCase):
    maxDiff = None

    def printed(self, command, folder):
        """What a command prints, as the pages show it."""
        environment = {"PATH": f"{BIN}:{os.environ['PATH']}", "SPM_REGISTRY": f"{folder}/registry.reg"}
        command = command.replace("build/native/bin/", "").replace("./demo", DEMO)
        result = subprocess.run(["sh", "-c", command + " 2>&1"], capture_output=True, text=True, cwd=folder,
                                env=environment, check=False).stdout
        for path, shown in ((BIN, "/opt/spm"), (f"{folder}/registry.reg", "/etc/kestrova/registry.reg")):
            result = result.replace(path, shown)
        return result.rstrip().split("\n")

    def corrected(self, block, folder):
        """A block of a page with what its commands print."""
        result = ""
        for part in re.split(r"^    \$ ", block.rstrip(), flags=re.MULTILINE)[1:]:
            command, *lines = part.rstrip().replace("\n    ", "\n").split("\n")
            if command.startswith("cat "):
                Path(folder, command[4:]).write_text("\n".join(lines) + "\n")
            elif re.search(r"\bspm\b|\./demo", command) and lines:
                lines = omit(self.printed(command, folder), lines)
                self.checked += 1
            result += "\n".join(f"    {line}".rstrip() for line in (f"$ {command}", *lines)) + "\n"
        return result + block[len(block.rstrip()) + 1:]

    def test_describe_every_option(self):
        page = (PROJECT / "docs/spm.md").read_text()
        for command in ([], ["measure"], ["doctor"]):
            help_text = subprocess.check_output([f"{BIN}/spm", *command, "--help"], text=True)
            for option in re.findall(r"^  (--[a-z-]+)", help_text, re.MULTILINE):
                self.assertRegex(page, rf"{option}\b")

    def test_show_what_spm_prints(self):
        self.checked = 0
        for page in ("README.md", "docs/spm.md", "docs/simulator.md"):
            folder = self.enterContext(tempfile.TemporaryDirectory())
            path = PROJECT / page
            text = BLOCK.sub(lambda match: self.corrected(match[0], folder), path.read_text())
            if "SPM_WRITE_GOLDEN" in os.environ:
                path.write_text(text)
            with self.subTest(page):
                self.assertEqual(VERSION.sub("", path.read_text()), VERSION.sub("", text))
        self.assertGreater(self.checked, 9)


if __name__ == "__main__":
    unittest.main(verbosity=2)
