"""Installs and uses the kit for host developers; checks the reference and the libraries.

Usage: kit_test.py BUILD_FOLDER CLASS, one of the test classes below. Needs the packages that ./check installs.
"""

import os
import re
import subprocess
import sys
import tempfile
import unittest
from pathlib import Path

PROJECT = Path(__file__).parents[2]
BUILD = Path(sys.argv.pop(1))
IS_WINDOWS = (BUILD / "bin/spm.exe").exists()
WINE = [PROJECT / "cmake/run-in-wine"] if IS_WINDOWS else []
PROGRAM, LIBRARY, SDK, MODULES, SIMULATOR, README = (
    (".exe", "spm_i1pro3.dll", "i1Pro364.dll", "bin", "simulator", ".") if IS_WINDOWS else
    ("", "spm_i1pro3.so", "libi1Pro364.so", "lib/spm_i1pro3", "lib/spm_i1pro3/simulator", "share/doc/spm_i1pro3"))
LISTENER = LIBRARY.replace(".", "_listener.")
EXAMPLES = f"{README}/examples"
STRICT = "-Wall -Wextra -Wpedantic -Wconversion -Wshadow -Werror"
COMPILER = [f"-DCMAKE_C_FLAGS={STRICT}", f"-DCMAKE_CXX_FLAGS={STRICT}",
            *([f"-DCMAKE_TOOLCHAIN_FILE={PROJECT}/cmake/mingw-w64.cmake"] if IS_WINDOWS else [])]
VISUAL_CPP = PROJECT / "tests/windows/visual_cpp"

NO_INSTRUMENT = '{"instruments": []}'
LAMP = '{"faults": [{"function": "I1PRO3_TriggerMeasurement", "result": 7, "text": "lamp"}]}'
FIRST_AND_LAST_OF_SIX = ["L*  36.81  a*  13.89  b*  14.69", "L*  71.70  a* -30.21  b*   3.69"]

GUIDE_PROJECT = f"""
cmake_minimum_required(VERSION 3.25)
project(guide LANGUAGES C CXX)
find_package(spm_i1pro3 REQUIRED COMPONENTS simulator)
set(CMAKE_RUNTIME_OUTPUT_DIRECTORY $<TARGET_FILE_DIR:spm_i1pro3::simulated>)
foreach(program guide recovery readme)
    add_executable(${{program}} ${{program}}.c)
    target_link_libraries(${{program}} PRIVATE spm_i1pro3::simulated spm_i1pro3::simulated_listener)
endforeach()
target_link_libraries(recovery PRIVATE $<TARGET_FILE_DIR:spm_i1pro3::simulated>/{SDK})
add_library(pieces OBJECT pieces.cpp)
target_link_libraries(pieces PRIVATE spm_i1pro3::headers)
"""
# The guide's host with a user who plugs the instrument in, once, when asked to check it, and has a second, not a minute.
PLUG_IN = """
#include <I1PRO3_Simulator.h>
static int plug_in(void) {
    static int calls = 0;
    I1PRO3_SimulatorUse("{\\"instruments\\": [\\"SIM2\\"]}");
    return calls++ == 0 ? '\\n' : 'q';
}
"""
UNPLUG = """{"faults": [{"function": "I1PRO3_TriggerMeasurement", "unplug": true},
                        {"function": "I1PRO3_CloseDevice", "result": 5, "times": "always"}]}"""


def run(*command, **options):
    return subprocess.run([str(part) for part in command], capture_output=True, text=True, check=False,
                          errors="surrogateescape", **options)


class Kit(unittest.TestCase):
    """Both components, installed once for all tests into an empty folder."""

    @classmethod
    def setUpClass(cls):
        cls.folder = Path(cls.enterClassContext(tempfile.TemporaryDirectory(prefix="spm tést ")))
        cls.prefix = cls.folder / "prefix"
        for component in ("kit", "simulator"):
            cls.succeed("cmake", "--install", BUILD, "--prefix", cls.prefix, "--component", component)
        cls.simulated = cls.prefix / SIMULATOR / LIBRARY

    @classmethod
    def succeed(cls, *command, **options):
        result = run(*command, **options)
        if result.returncode != 0:
            raise AssertionError(f"{command}: {result.stdout}{result.stderr}")
        return result.stdout

    def build(self, source, prefix=None, compiler=COMPILER):
        """Configures and builds a project that uses the kit, and returns its build folder."""
        build = Path(tempfile.mkdtemp(dir=self.folder))
        package = (prefix or self.prefix) / "lib/cmake/spm_i1pro3"
        self.succeed("cmake", "-G", "Ninja", "-S", source, "-B", build, f"-Dspm_i1pro3_DIR={package}",
                     *compiler)
        self.succeed("cmake", "--build", build)
        return build

    def run_with(self, script, *command):
        path = self.folder / "script.json"
        path.write_text(script)
        return run(*command, env=os.environ | {"I1PRO3_SIMULATOR": str(path)}, stdin=subprocess.DEVNULL)

    def expect_example(self, *program):
        """Expects an example to measure on the simulated instrument, and to report the reason if it can't."""
        result = run(*program, self.simulated)
        self.assertEqual((result.returncode, result.stderr), (0, ""))
        lines = result.stdout.splitlines()
        self.assertEqual([line for line in lines if line.startswith("L*")][::5], FIRST_AND_LAST_OF_SIX)
        self.assertEqual(len([line for line in lines if " nm " in line]), 36)
        for script, failure in ((NO_INSTRUMENT, "not opened: no instrument was found"),
                                (LAMP.replace("TriggerMeasurement", "Calibrate"), "not calibrated: lamp\nErrorNumber: 7"),
                                (LAMP, "not measured: lamp\nErrorNumber: 7")):
            failed = self.run_with(script, *program, self.simulated)
            self.assertEqual(failed.returncode, 1)
            self.assertRegex(failed.stderr, f"^[A-Za-z.]+: {failure}\n$")
        without_sdk = run(*program, self.prefix / MODULES / LIBRARY)
        self.assertEqual(without_sdk.returncode, 1)
        self.assertRegex(without_sdk.stderr, "can't load .*: Module not found" if IS_WINDOWS else re.escape(SDK))

    def test_c(self):
        self.expect_example(*WINE, self.build(self.prefix / EXAMPLES / "c") / f"measure{PROGRAM}")

    def test_cpp(self):
        self.expect_example(*WINE, self.build(self.prefix / EXAMPLES / "cpp") / f"measure{PROGRAM}")

    @unittest.skipIf(IS_WINDOWS, "Python for Windows is not installed")
    def test_python(self):
        self.expect_example("python3", "-B", self.prefix / EXAMPLES / "python/measure.py")

    @unittest.skipIf(IS_WINDOWS, ".NET for Windows is not installed")
    def test_csharp(self):
        folder = self.prefix / EXAMPLES / "csharp"
        self.succeed("mcs", "-langversion:6", "-warnaserror", *folder.glob("*.cs"), f"-out:{folder / 'Measure.exe'}")
        self.expect_example("mono", folder / "Measure.exe")

    def test_guide(self):
        """The C code of the guide is a working host, which recovers when the cable was pulled; so is that of the README."""
        source = self.folder / "guide"
        source.mkdir()
        for page, language, file in ((self.prefix / README / "docs/host-guide.md", "c", "guide.c"),
                                     (self.prefix / README / "docs/host-guide.md", "cpp", "pieces.cpp"),
                                     (PROJECT / "README.md", "c", "readme.c")):
            blocks = re.findall(f"^```{language}\n(.*?)^```$", page.read_text(), re.DOTALL | re.MULTILINE)
            (source / file).write_text("".join(blocks))
        recovery = (source / "guide.c").read_text().replace("getchar()", "plug_in()").replace("= 1200", "= 20")
        (source / "recovery.c").write_text(PLUG_IN + recovery)
        (source / "CMakeLists.txt").write_text(GUIDE_PROJECT)
        self.build(source)
        for name, script, status, pattern in (
                ("guide", "{}", 0, r"Place.*\nPress.*\nPlace.*\nL\* 36.8.*\n380 nm"),
                ("guide", NO_INSTRUMENT, 1, "no instrument"),
                ("guide", LAMP, 1, "not measured: lamp\nErrorNumber: 7"),
                ("recovery", UNPLUG, 0, r"unplugged(.|\n)*Place.*\nPress.*\nPlace.*\nL\* 36.8"),
                ("recovery", '{"samples": {"more": 1}}', 1, "invalid number of samples"),
                ("recovery", '{"button": {"never": true}}', 1, "not calibrated: the button was not pressed"),
                ("readme", "{}", 0, r"\nL\* 36.8(.*\n){6}$"),
                ("readme", LAMP, 1, "lamp\nErrorNumber: 7")):
            with self.subTest(name, script=script):
                result = self.run_with(script, *WINE, self.simulated.parent / f"{name}{PROGRAM}")
                self.assertRegex(result.stdout, pattern)
                self.assertEqual(result.returncode, status)

    @unittest.skipUnless(IS_WINDOWS, "for hosts on Windows")
    def test_visual_cpp(self):
        self.build(VISUAL_CPP, compiler=[f"-DCMAKE_TOOLCHAIN_FILE={PROJECT}/cmake/visual-cpp.cmake"])
        for name in ("host_c.exe", "host_cpp.exe"):
            result = self.run_with('{"button": {"polls": 0}}', *WINE, self.simulated.parent / name)
            self.assertEqual(result.returncode, 0, f"{name}: line that failed")

    @unittest.skipIf(IS_WINDOWS, "pkg-config for Windows is not installed")
    def test_pkg_config(self):
        environment = os.environ | {"PKG_CONFIG_PATH": str(self.prefix / "lib/pkgconfig")}
        for variable, library in (("module", MODULES), ("listener", MODULES), ("simulated_module", SIMULATOR),
                                  ("simulated_listener", SIMULATOR)):
            path = self.succeed("pkg-config", f"--variable={variable}", "spm_i1pro3", env=environment).strip()
            expected = self.prefix / library / (LISTENER if "listener" in variable else LIBRARY)
            self.assertTrue(Path(path.replace("\\", "")).samefile(expected), variable)
        flags = self.succeed("pkg-config", "--cflags", "spm_i1pro3", env=environment).strip()
        for include, standard in (("<IScmSPM.h>", "c++17"), ("<SPM_listener.h>", "c++11"), ("<SPM_listener.h>", "c11")):
            compiler = f"c++ -std={standard} {STRICT} {flags} -fsyntax-only -x {standard[:-2]} -"
            self.succeed("sh", "-c", f"echo '#include {include}' | {compiler}")

    def test_links_lead_to_files(self):
        for page in self.prefix.rglob("*.md"):
            for target in re.findall(r"\]\((?!https?:)([^)#]+)", page.read_text()):
                self.assertTrue((page.parent / target).exists(), f"{page.name} links to {target}")

    def test_spm_finds_the_installed_module(self):
        result = run(*WINE, self.prefix / f"bin/spm{PROGRAM}", "doctor")
        self.assertEqual(result.returncode, 1)
        self.assertRegex(result.stdout, f"\nWRONG  SDK library  .*{re.escape(SDK)} is missing\n")

    @unittest.skipIf(IS_WINDOWS, "the linker strips Windows files")
    def test_debug_information_is_separate(self):
        def sections(file):
            return re.findall(r"\.(debug_info|gnu_debuglink)\b", self.succeed("readelf", "-SW", file))
        self.assertEqual(sections(self.simulated), [])
        for _ in range(2):
            self.succeed("cmake", "--install", BUILD, "--prefix", self.prefix, "--component", "debug")
        self.assertEqual(sections(self.simulated), ["gnu_debuglink"])
        self.assertIn("debug_info", sections(self.simulated.parent / f".debug/{LIBRARY}.debug"))

    def test_without_the_simulator(self):
        prefix = self.folder / "kit alone"
        self.succeed("cmake", "--install", BUILD, "--prefix", prefix, "--component", "kit")
        self.assertEqual(list(prefix.rglob(SDK)), [])
        self.build(prefix / EXAMPLES / "c", prefix)
        with self.assertRaisesRegex(AssertionError, "--component simulator"):
            self.build(VISUAL_CPP, prefix)


class Reference(unittest.TestCase):
    def test_is_built_without_a_warning(self):
        result = run("doxygen", BUILD / "Doxyfile")
        self.assertEqual((result.returncode, result.stdout + result.stderr), (0, ""))
        self.assertTrue((BUILD / "reference/html/index.html").exists())


class Binary(unittest.TestCase):
    def test_is_hardened(self):
        for library in (LIBRARY, LISTENER):
            headers = run("readelf", "--wide", "--program-headers", "--dynamic", BUILD / "bin" / library).stdout
            self.assertRegex(headers, r"\n  GNU_RELRO ")
            self.assertRegex(headers, r"\(FLAGS\) +BIND_NOW\n")
            self.assertRegex(headers, r"\n  GNU_STACK .* RW +0x")


if __name__ == "__main__":
    unittest.main(verbosity=2)
