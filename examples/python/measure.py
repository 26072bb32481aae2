#!/usr/bin/env python3
"""Measures a row of six patches and the spectrum of one more.

Use: measure.py MODULE, the path of the spectrophotometer module. Exit status 0 when all was measured.
"""

import ctypes
import os
import sys
import time

BEGIN, CONTINUE, DONE = 0, 1, 4
PATCHES = 6


class Calibration(ctypes.Structure):
    _fields_ = [(name, ctypes.c_uint32) for name in ("aperture", "illumination", "auxiliary", "reference", "step")]


class Lab(ctypes.Structure):
    _fields_ = [("L", ctypes.c_float), ("a", ctypes.c_float), ("b", ctypes.c_float)]


class Reflection(ctypes.Structure):
    _fields_ = [("wavelength", ctypes.c_int32), ("value", ctypes.c_float)]


class Spectrum(ctypes.Structure):
    _pack_ = 1
    _fields_ = [("number_of_reflections", ctypes.c_int32), ("reflections", ctypes.POINTER(Reflection))]


class Failure(Exception):
    pass


def load(path):
    """The module with the types of the functions used here. The SDK library must lie beside it."""
    module = ctypes.CDLL(os.path.abspath(path))
    handle, count = ctypes.c_void_p, ctypes.POINTER(ctypes.c_int32)
    for name, result, *arguments in [
            ("SPM_create", handle), ("SPM_destroy", None, handle),
            ("SPM_open", ctypes.c_bool, handle, ctypes.c_char_p), ("SPM_close", None, handle),
            ("SPM_isOpened", ctypes.c_bool, handle), ("SPM_getNumberOfReflections", ctypes.c_int32, handle),
            ("SPM_calibrate", None, handle, ctypes.POINTER(Calibration)),
            ("SPM_read", ctypes.c_bool, handle, ctypes.POINTER(Lab), count),
            ("SPM_readSpectrum", ctypes.c_bool, handle, ctypes.POINTER(Spectrum), count)]:
        function = getattr(module, name)
        function.restype, function.argtypes = result, arguments
    return module


def calibrate(module, handle):
    dialogue = Calibration(step=BEGIN)
    module.SPM_calibrate(handle, dialogue)
    print("Place the instrument on its white reference and press the button.")
    while dialogue.step == CONTINUE:
        time.sleep(0.05)
        module.SPM_calibrate(handle, dialogue)
    if dialogue.step != DONE:
        raise Failure("calibrating failed")


def measure(module, handle, read, records):
    """Calls SPM_read or SPM_readSpectrum until the button was pressed."""
    count = ctypes.c_int32(0)
    while count.value == 0:
        time.sleep(0.05)
        count.value = len(records)
        if not read(handle, records, count):
            raise Failure("measuring failed")
        if count.value == 0 and not module.SPM_isOpened(handle):
            raise Failure("the connection was lost")
    if count.value < len(records):
        raise Failure("not all patches of the row were found")


def measure_all(module, handle):
    if not module.SPM_open(handle, b"USB"):
        raise Failure("the instrument could not be opened; is it connected?")
    calibrate(module, handle)

    print("Press the button and slide the instrument along the row.")
    row = (Lab * PATCHES)()
    measure(module, handle, module.SPM_read, row)
    for value in row:
        print(f"L* {value.L:6.2f}  a* {value.a:6.2f}  b* {value.b:6.2f}")

    print("Place the instrument on a patch and press the button.")
    points = (Reflection * module.SPM_getNumberOfReflections(handle))()
    spectra = (Spectrum * 1)(Spectrum(len(points), points))
    measure(module, handle, module.SPM_readSpectrum, spectra)
    for point in points:
        print(f"{point.wavelength} nm {point.value:6.2f} %")


def main():
    if len(sys.argv) != 2:
        raise Failure("use: measure.py MODULE")
    module = load(sys.argv[1])
    handle = module.SPM_create()
    if not handle:
        raise Failure("out of memory")
    try:
        measure_all(module, handle)
    finally:
        module.SPM_close(handle)
        module.SPM_destroy(handle)


try:
    main()
except (Failure, OSError, AttributeError) as failure:
    sys.exit(f"measure.py: {failure}")
