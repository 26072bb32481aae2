"""Checks which folder includes which headers against the table in CONTRIBUTING.md."""

import re
import unittest
from pathlib import Path

PROJECT = Path(__file__).parents[2]
ONLY_STANDARD = ("platform/", "cap/", "module/", "i1pro3/", "listener/")


def rules():
    """The folders of the table, each with the prefixes that its includes may have."""
    section = (PROJECT / "CONTRIBUTING.md").read_text().split("\n## Layers\n")[1].split("\n## ")[0]
    for folders, allowed in re.findall(r"^\| (`.*/`) \| (.*) \|$", section, re.MULTILINE):
        for folder in re.findall("`(.*?)`", folders):
            yield folder, ("",) if allowed == "anything" else tuple(re.findall("`(.*?)`", allowed))


class Layers(unittest.TestCase):
    def test_includes_run_one_way(self):
        allowed = dict(rules())
        folders = [path for path in PROJECT.iterdir() if path.name[0] != "." and path.name not in ("build", "cmake")]
        sources = [path for folder in folders for path in folder.rglob("*")
                   if re.search(r"\.(h|c|cpp)(\.in)?$", path.name)]
        self.assertGreater(len(sources), 100)
        for path in sources:
            name = path.relative_to(PROJECT).as_posix()
            folder = max((row for row in allowed if name.startswith(row)), key=len, default=None)
            self.assertIsNotNone(folder, f"CONTRIBUTING.md has no row for the folder of {name}")
            for mark, include in re.findall(r'^\s*#\s*include\s*([<"])([^>"]+)', path.read_text(), re.MULTILINE):
                with self.subTest(file=name, include=include):
                    if mark == '"' and "/" in include and not (path.parent / include).exists():
                        self.assertTrue(include.startswith((folder, *allowed[folder])))
                    if mark == "<" and folder in ONLY_STANDARD:
                        self.assertRegex(include, r"^(sys/)?[^/]+$")


if __name__ == "__main__":
    unittest.main(verbosity=2)
