"""The spectrophotometer module for Python.

    with spm.Spectrophotometer("/path/of/the/module") as instrument:
        instrument.calibrate(lambda: print("White reference, then the button."))
        (L, a, b), = instrument.read(1)

The listener library and the SDK library must be in the module's folder. SPM.h documents the functions.
"""

import ctypes
import os
import time
from ctypes import POINTER, c_bool, c_char_p, c_float, c_int32, c_uint32, c_void_p

BEGIN, CONTINUE, DONE = 0, 1, 4
ENCODING = "mbcs" if os.name == "nt" else "utf-8"
OWN_FOLDER, SYSTEM_FOLDER = 0x100, 0x800  # LOAD_LIBRARY_SEARCH_...: for what a library needs

Callback = ctypes.CFUNCTYPE(None, c_void_p, c_int32, c_int32, c_int32, c_char_p, c_char_p)


class SpmError(Exception):
    """Says what failed and, if the module gave a reason, why."""


class NoInstrument(SpmError):
    """No instrument was found: ask the user to connect it, and open again."""


class Calibration(ctypes.Structure):
    _fields_ = [(name, c_uint32) for name in ("aperture", "illumination", "auxiliary", "reference", "step")]


class Lab(ctypes.Structure):
    _fields_ = [("L", c_float), ("a", c_float), ("b", c_float)]


class Reflection(ctypes.Structure):
    _fields_ = [("wavelength", c_int32), ("value", c_float)]


class Spectrum(ctypes.Structure):
    _pack_ = 1
    _fields_ = [("number_of_reflections", c_int32), ("reflections", POINTER(Reflection))]


def load(path, functions):
    """functions: a tuple for each with its name, the type of its result, and the types of its arguments"""
    try:
        library = ctypes.CDLL(path, winmode=OWN_FOLDER | SYSTEM_FOLDER)
        for name, result, *arguments in functions:
            function = getattr(library, name)
            function.restype, function.argtypes = result, arguments
        return library
    except (OSError, AttributeError) as error:
        raise SpmError(f"can't load {path}: {error}") from error


class Spectrophotometer:
    """An open instrument. Use it from one thread at a time.

    patience: how many seconds to wait until the user has pressed the button
    wait: called repeatedly during that time; can raise an exception to give up
    """

    wavelengths = list(range(380, 740, 10))  # in nm

    def __init__(self, path, patience=60, wait=lambda: time.sleep(0.05)):
        name, extension = os.path.splitext(os.path.abspath(path))
        self._module = load(name + extension, [
            ("SPM_create", c_void_p), ("SPM_destroy", None, c_void_p), ("SPM_open", c_bool, c_void_p, c_char_p),
            ("SPM_close", None, c_void_p), ("SPM_isOpened", c_bool, c_void_p),
            ("SPM_calibrate", None, c_void_p, POINTER(Calibration)),
            ("SPM_read", c_bool, c_void_p, POINTER(Lab), POINTER(c_int32)),
            ("SPM_readSpectrum", c_bool, c_void_p, POINTER(Spectrum), POINTER(c_int32))])
        self._listener = load(f"{name}_listener{extension}", [
            ("SPM_subscribe", c_void_p, c_void_p, Callback, c_void_p), ("SPM_unsubscribe", None, c_void_p)])
        self._patience, self._wait, self._errors = patience, wait, []
        self._callback = Callback(self._keep_error)  # lives as long as the subscription
        self._handle = self._subscription = None
        self.open()

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.close()

    def open(self):
        """Opens the instrument again, for instance after its cable was pulled; calibrate it afterwards.

        Uses a new module object each time: one that can't close its connection can't open another, and doesn't say why.
        """
        self.close()
        self._errors.clear()
        self._handle = self._module.SPM_create()
        self._subscription = self._listener.SPM_subscribe(self._handle, self._callback, None)
        try:
            if not self._subscription:
                raise MemoryError
            if not self._module.SPM_open(self._handle, b"USB"):
                raise self._failure("not opened") if self._errors else NoInstrument("not opened: no instrument was found")
        except BaseException:
            self.close()
            raise

    def close(self):
        handle, self._handle = self._handle, None
        subscription, self._subscription = self._subscription, None
        self._listener.SPM_unsubscribe(subscription)
        self._module.SPM_close(handle)
        self._module.SPM_destroy(handle)

    def calibrate(self, prompt):
        """prompt: asks the user to place the instrument on its white reference and press the button"""
        self._errors.clear()
        dialogue = Calibration(step=BEGIN)
        self._module.SPM_calibrate(self._handle, dialogue)
        if dialogue.step == CONTINUE:
            prompt()
        deadline = time.monotonic() + self._patience
        while dialogue.step == CONTINUE:
            self._wait_until(deadline, "not calibrated: the button was not pressed")
            self._module.SPM_calibrate(self._handle, dialogue)
        if dialogue.step != DONE:
            raise self._failure("not calibrated")

    def read(self, patches):
        """Measures a spot or a row. Returns a list of (L, a, b), shorter if fewer patches of a row were found."""
        values = (Lab * patches)()
        return [(value.L, value.a, value.b) for value in values[:self._poll(self._module.SPM_read, values)]]

    def read_spectra(self, patches):
        """Like read, but returns a list of 36 reflectances in percent for each patch, at `wavelengths`."""
        points = [(Reflection * len(self.wavelengths))() for _ in range(patches)]
        spectra = (Spectrum * patches)(*(Spectrum(len(spectrum), spectrum) for spectrum in points))
        measured = self._poll(self._module.SPM_readSpectrum, spectra)
        return [[point.value for point in spectrum] for spectrum in points[:measured]]

    def _poll(self, read, records):
        if not records:
            raise ValueError("the number of patches must be 1 or more")
        deadline = time.monotonic() + self._patience
        while True:
            self._errors.clear()
            count = c_int32(len(records))
            if not read(self._handle, records, count) or not (count.value or self._module.SPM_isOpened(self._handle)):
                raise self._failure("not measured")
            if count.value:
                return count.value
            self._wait_until(deadline, "not measured: the button was not pressed, or no patch found")

    def _wait_until(self, deadline, failure):
        if time.monotonic() > deadline:
            raise SpmError(failure)
        self._wait()

    def _failure(self, what):
        otherwise = "the connection was lost" if self._handle else "the instrument is closed"
        return SpmError(f"{what}: " + ("\n".join(self._errors) or otherwise))

    def _keep_error(self, _context, level, _module_number, _error_number, text, detail):
        if level == 0:  # 1 is a warning, 2 information
            self._errors.append(f"{text.decode(ENCODING, 'replace')} {detail.decode(ENCODING, 'replace')}".strip())
