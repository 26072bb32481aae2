"""Tests the files of the Windows release: the libraries and the archive.

Usage: release_test.py BUILD_FOLDER CLASS: the build folder of the preset "windows", and one of the test classes below.
Needs pefile, cpack and Wine.
"""

import fnmatch
import re
import subprocess
import sys
import tempfile
import unittest
import zipfile
from pathlib import Path

import pefile

PROJECT = Path(__file__).parents[2]
BUILD = Path(sys.argv.pop(1))
WINE = PROJECT / "cmake/run-in-wine"
EXPORTS = (PROJECT / "module/exports.txt").read_text().split()
IMPORTS = {"ADVAPI32.dll", "KERNEL32.dll", "VERSION.dll", "i1Pro364.dll", "msvcrt.dll"}
MITIGATIONS = ["IMAGE_DLLCHARACTERISTICS_DYNAMIC_BASE", "IMAGE_DLLCHARACTERISTICS_HIGH_ENTROPY_VA",
               "IMAGE_DLLCHARACTERISTICS_NX_COMPAT"]
CONTENTS = re.findall(r"^\| (`.*?) \|", (PROJECT / "docs/windows.md").read_text().split("## Try it")[0], re.MULTILINE)
LOGGING = "REGEDIT4\r\n\r\n[HKEY_LOCAL_MACHINE\\SOFTWARE\\Kestrova\\SPM]\r\n\"Logging\"={}\r\n"


class Library(unittest.TestCase):
    library = pefile.PE(BUILD / "bin/spm_i1pro3.dll")
    listener = pefile.PE(BUILD / "bin/spm_i1pro3_listener.dll")

    def test_exports_and_imports(self):
        of_listener = (self.listener, ["SPM_subscribe", "SPM_unsubscribe"], {"KERNEL32.dll", "msvcrt.dll"})
        for library, exports, imports in ((self.library, EXPORTS, IMPORTS), of_listener):
            symbols = library.DIRECTORY_ENTRY_EXPORT.symbols
            self.assertEqual(sorted(str(symbol.name, "ascii") for symbol in symbols), sorted(exports))
            self.assertEqual([symbol.name for symbol in symbols if symbol.forwarder], [])
            self.assertEqual({entry.dll.decode() for entry in library.DIRECTORY_ENTRY_IMPORT}, imports)
            self.assertFalse(hasattr(library, "DIRECTORY_ENTRY_DELAY_IMPORT"))

    def test_is_hardened(self):
        for library in (self.library, self.listener):
            self.assertEqual([name for name in MITIGATIONS if not getattr(library.OPTIONAL_HEADER, name)], [])
            self.assertTrue(hasattr(library, "DIRECTORY_ENTRY_BASERELOC"))


class Versions(unittest.TestCase):
    def test_say_what_each_library_is(self):
        version = re.search(r"VERSION ([\d.]+) DESC", (PROJECT / "CMakeLists.txt").read_text())[1].encode()
        for file, description in [("spm_i1pro3.dll", b"Spectro"), ("spm_i1pro3_listener.dll", b"Listener"),
                                  ("i1Pro364.dll", b"Simulated"), ("recorder/i1Pro364.dll", b"Recorder")]:
            texts = pefile.PE(BUILD / "bin" / file).FileInfo[0][0].StringTable[0].entries
            self.assertTrue(texts[b"FileDescription"].startswith(description), file)
            self.assertEqual((texts[b"OriginalFilename"], texts[b"FileVersion"]), (Path(file).name.encode(), version))
            self.assertNotIn(b"Comments", texts)


class Archive(unittest.TestCase):
    """Unpacks the archive and uses it as a user does, with the settings of this Wine prefix."""

    @classmethod
    def setUpClass(cls):
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="spm test ")))
        subprocess.run(["cpack", "--config", BUILD / "CPackConfig.cmake", "-B", cls.folder], check=True,
                       stdout=subprocess.DEVNULL)
        [archive] = cls.folder.glob("*.zip")
        cls.release = cls.folder / archive.stem
        with zipfile.ZipFile(archive) as content:
            cls.files = [name for name in content.namelist() if not name.endswith("/")]
            content.extractall(cls.folder)

    def run_in_wine(self, *arguments):
        return subprocess.run([WINE, *arguments], cwd=self.release, capture_output=True, text=True, check=False)

    def set_logging(self, value):
        settings = self.folder / "settings.reg"
        settings.write_bytes(LOGGING.format(value).encode())
        self.assertEqual(self.run_in_wine("regedit", "/S", settings).returncode, 0)

    def test_contains_what_the_page_lists(self):
        listed = [pattern for line in CONTENTS for pattern in re.findall("`(.*?)`", line)]
        names = [name.removeprefix(f"{self.release.name}/") for name in self.files]
        found = {pattern: fnmatch.filter(names, f"{pattern}*" if pattern[-1] == "/" else pattern) for pattern in listed}
        self.assertEqual([pattern for pattern in listed if not found[pattern]], [])
        self.assertEqual(set(names) - set().union(*found.values()), set())

    def test_measures_and_logs_on_the_simulator(self):
        self.set_logging("dword:00000001")
        self.addCleanup(self.set_logging, "-")
        result = self.run_in_wine("bin/spm.exe", "measure", "--module", "simulator/spm_i1pro3.dll")
        self.assertEqual(result.returncode, 0)
        self.assertIn("SIMULATED", result.stderr)
        self.assertIn("simulated", result.stdout)
        lines = (self.release / "simulator/spm_i1pro3.log").read_bytes().split(b"\r\n")
        self.assertRegex(lines[0], rb"^\d{4}(-\d\d){2} \d\d(:\d\d){2} \(UTC[+-]\d\d:\d\d\) \[[0-9A-F]+:[0-9A-F]+\] "
                                   rb"M0 D: ----- Started Logging -----$")
        self.assertRegex(lines[-2], rb"M0 D: ----- Stopped Logging -----$")
        self.assertEqual(lines[-1], b"")


if __name__ == "__main__":
    unittest.main(verbosity=2)
