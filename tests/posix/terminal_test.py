"""Tests spm on a terminal: what it shows, and how it reacts to the user.

Usage: terminal_test.py SPM, the program. Needs pexpect.
"""

import csv
import json
import os
import signal
import sys
import tempfile
import unittest
from pathlib import Path

import pexpect

SPM = sys.argv.pop(1)
QUESTION = "Measure it again (r), skip it (s) or end the run (e)? "
KEEP = "keep them as they are (k), skip it (s) or end the run (e)? "
TAKE = f"take these values as Row 2 of 2 in reverse (t), {KEEP}"
SWAPPED = ("name,L*,a*,b*\npatch 1,42.1,-12.3,21.8\npatch 2,51.6,-3.8,-20.2\n"
           "patch 3,65.8,13.4,17.7\npatch 4,36.8,13.9,14.7\n")
CTRL_C = "\x03"


def hang_up(spm):
    spm.ptyproc.fileobj.close()  # pexpect's own way would kill spm if it doesn't end at once


def reset_signals():
    for each in (signal.SIGINT, signal.SIGHUP):  # ignored in a shell's background job, or by nohup
        signal.signal(each, signal.SIG_DFL)


def kill(spm):
    spm.kill(signal.SIGKILL)


def fails(function="TriggerMeasurement", **how):
    return {"faults": [{"function": f"I1PRO3_{function}", "result": 7, "text": "lamp", **how}]}


SLOW = {"button": {"once per measurement": True, "milliseconds": 500}}
AT_ONCE = {"button": {"polls": 0}, "latency": {"I1PRO3_TriggerMeasurement": 500, "I1PRO3_Calibrate": 500}}
LOST = {"faults": [{"function": "I1PRO3_GetConnectionStatus", "call": 15, "exception": "x"}]}

# The script, the texts to wait for with the reaction to each, the exit status, and the numbers of the measured patches.
CASES = [
    # The trial measurement between the two attempts fails, too.
    (fails(times=3), [("lamp\r\nErrorNumber: 7\r\n" + QUESTION, "x\n"), (QUESTION, "r\n"), (QUESTION, "s\n")], 3, "34"),
    (fails(), [(QUESTION, "r\n")], 0, "1234"),
    (fails(), [(QUESTION, "e\n")], 1, ""),
    (fails(call=2), [(QUESTION, "\x04")], 1, "12"),
    (fails(call=2), [(QUESTION, CTRL_C)], 3, "12"),
    (SLOW, [("\r\x1b[K0 of 4 patches; waiting for the button, 0 of 300 s", ""),
            ("\r\x1b[K2 of 4 patches; waiting for the button, 0 of 300 s", CTRL_C)], 3, "12"),
    (SLOW, [("2 of 4 patches; waiting ", hang_up)], 3, "12"),
    (SLOW, [("Row 2 of 2: ", kill)], None, "12"),
    ({"samples": {"more": -1}}, [("1 of 2 patches", ""), (QUESTION, "k\n"), (QUESTION, "s\n"), (QUESTION, "s\n")], 3, ""),
    (fails(result=13, times=2), [(QUESTION, "r\n"), ("Calibrated.", ""), ("Row 1 of 2", "")], 0, "1234"),
    (LOST, [(QUESTION, "r\n"), ("Calibrated.", ""), ("Row 1 of 2", "")], 0, "1234"),
    (fails("Calibrate"), [("Calibrate again (r) or end the run (e)? ", "r\n")], 0, "1234"),
    ("swapped", [(TAKE, "k\n"), (KEEP, "s\n")], 3, "12"),
    ("swapped", [(TAKE, "t\n"), (" as Row 1 of 2 in reverse (t), ", "t\n"), ("maximum      ", "")], 0, "1234"),
    (AT_ONCE, [("Calibration: ", CTRL_C)], 3, ""),
    (AT_ONCE, [("Row 1 of 2: ", CTRL_C)], 3, "12"),
]


class Terminal(unittest.TestCase):
    def measure(self, folder, script, steps):
        """Runs "spm measure" with two rows of two patches, and returns its exit status; None if it was killed."""
        options = ["--output", "values.csv"]
        if script == "swapped":
            script = {}
            options += ["--reference", "reference.csv"]
            Path(folder, "reference.csv").write_text(SWAPPED)
        Path(folder, "script.json").write_text(json.dumps({"trace": "trace.jsonl", **script}))
        settings = {"I1PRO3_SIMULATOR": f"{folder}/script.json", "SPM_REGISTRY": f"{folder}/settings.reg"}
        spm = pexpect.spawn(SPM, ["measure", "--rows", "2", "--patches", "2", *options], cwd=folder, timeout=10,
                            env=os.environ | settings, encoding="utf-8",
                            preexec_fn=reset_signals)
        for text, action in steps:
            spm.expect_exact(text)
            if callable(action):
                action(spm)
            else:
                spm.send(action)
        if action is not hang_up:
            spm.expect(pexpect.EOF)
        spm.wait()
        return spm.exitstatus

    def test_follows_the_users_answers(self):
        for script, steps, status, patches in CASES:
            with self.subTest(script=script, steps=steps), tempfile.TemporaryDirectory() as folder:
                self.assertEqual(self.measure(folder, script, steps), status)
                values = Path(folder, "values.csv")
                rows = csv.DictReader(values.read_text().splitlines() if values.exists() else [])
                self.assertEqual("".join(row["name"][-1] for row in rows if row["L*"]), patches)
                is_closed = "I1PRO3_CloseDevice" in Path(folder, "trace.jsonl").read_text()
                self.assertEqual(is_closed, status is not None)


if __name__ == "__main__":
    unittest.main(verbosity=2)
