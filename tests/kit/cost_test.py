"""How many instructions a row of 24 patches and a log line take. Unlike a time, the count doesn't depend on the load.

Usage: cost_test.py PROGRAM, the program built from bench/instructions.cpp. Needs valgrind. The reference is for the
compiler and the libraries of Debian 12.
"""

import re
import subprocess
import sys
import tempfile
import unittest

PROGRAM = sys.argv.pop(1)
REFERENCE = {"read": 811, "readSpectrum": 8310, "log": 5417}
TOLERANCE = 0.05


def instructions(what, times):
    with tempfile.TemporaryDirectory() as folder:
        result = subprocess.run(
            ["valgrind", "--tool=callgrind", f"--callgrind-out-file={folder}/out", PROGRAM, what, str(times)],
            capture_output=True, text=True, check=True, cwd=folder,
            env={"SPM_REGISTRY": f"{folder}/settings.reg", "TZ": "UTC"})
    return int(re.search(r"Collected : (\d+)", result.stderr).group(1))


class Cost(unittest.TestCase):
    def test_matches_the_reference(self):
        for what, expected in REFERENCE.items():
            with self.subTest(what):
                count = (instructions(what, 300) - instructions(what, 100)) / 200
                self.assertLess(abs(count - expected), TOLERANCE * expected, f"{what} takes {count} instructions")


if __name__ == "__main__":
    unittest.main(verbosity=2)
