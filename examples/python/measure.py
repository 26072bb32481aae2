#!/usr/bin/env python3
"""Measures a row of six patches and the spectrum of one more.

Usage: measure.py MODULE, the path of the spectrophotometer module. Exit status: 0 if everything was measured.
"""

import sys

import spm

WHITE_REFERENCE = "Place the instrument on its white reference and press the button within a minute."

if len(sys.argv) != 2:
    sys.exit("usage: measure.py MODULE")
try:
    with spm.Spectrophotometer(sys.argv[1]) as instrument:
        instrument.calibrate(lambda: print(WHITE_REFERENCE))
        print("Press the button and slide the instrument along the row, within a minute.")
        row = instrument.read(6)
        for lab in row:
            print("L* %6.2f  a* %6.2f  b* %6.2f" % lab)
        if len(row) < 6:
            raise spm.SpmError("not all patches of the row were found")
        print("Place the instrument on a patch and press the button within a minute.")
        for wavelength, value in zip(instrument.wavelengths, instrument.read_spectra(1)[0]):
            print(f"{wavelength} nm {value:6.2f} %")
except spm.SpmError as error:
    sys.exit(f"measure.py: {error}")
