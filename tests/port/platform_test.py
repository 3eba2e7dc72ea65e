#!/usr/bin/env python3
"""A port from outside the tree: builds the conformance program on a folder and on a library that
-DQUIVORD_PLATFORM names, and sees their own answers in it. CMake's settings are the arguments:

  platform_test.py SOURCE [-D...]"""

import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

SOURCE = pathlib.Path(sys.argv[1])
SETTINGS = sys.argv[2:]


class Port(unittest.TestCase):
    def setUp(self):
        scratch = tempfile.TemporaryDirectory()
        self.addCleanup(scratch.cleanup)
        self.build = pathlib.Path(scratch.name) / "build"
        self.port = pathlib.Path(scratch.name) / "port"
        shutil.copytree(SOURCE / "platform" / "template", self.port)

    def run_(self, *command):
        return subprocess.run([str(word) for word in command], capture_output=True, text=True, check=False)

    def configure(self, platform):
        return self.run_("cmake", "-S", SOURCE, "-B", self.build, "-G", "Ninja", "-DQUIVORD_TOOLS=OFF",
                         "-DCMAKE_BUILD_TYPE=Debug", "-DCMAKE_CXX_FLAGS_DEBUG=-O0",
                         f"-DQUIVORD_PLATFORM={platform}", *SETTINGS)

    def check_on(self, platform, missing):
        """Whether the program has the port's answer to the bus, and calculations of the tree."""
        made = self.configure(platform)
        self.assertEqual(made.returncode, 0, made.stderr)
        built = self.run_("cmake", "--build", self.build, "--target", "quivord-platform-check")
        self.assertEqual(built.returncode, 0, built.stdout)
        program = self.build / "quivord-platform-check"
        self.assertIn(f"platform: not here: {missing}", self.run_(program, "inputsource").stderr)
        self.assertEqual(self.run_(program, "edid", "gamma").returncode, 0)

    def closed_library(self):
        """Compiles the input boards apart, as a vendor does, and names the result in platform.cmake."""
        inputs = self.port / "inputs.cpp"
        inputs.write_text(inputs.read_text().replace("the input boards", "the closed input boards"))
        compiler = next(word.split("=", 1)[1] for word in SETTINGS if "CXX_COMPILER" in word)
        made = self.run_(compiler, "-std=c++20", "-I", SOURCE / "platform/include", "-c", inputs,
                         "-o", self.port / "inputs.o")
        self.assertEqual(made.returncode, 0, made.stderr)
        inputs.unlink()
        (self.port / "platform.cmake").write_text(
            "target_link_libraries(quivord_platform PUBLIC ${CMAKE_CURRENT_LIST_DIR}/inputs.o)\n")

    def test_a_folder_then_a_library(self):
        self.closed_library()
        self.check_on(self.port, "the closed input boards")
        library = self.port / "libport.a"
        self.run_("ar", "rcs", library, self.port / "inputs.o",
                  *self.build.glob("platform/CMakeFiles/quivord_platform.dir/**/*.o"))
        self.check_on(library, "the closed input boards")

    def test_what_is_no_platform_is_refused(self):
        (self.port / "empty").mkdir()
        for platform, words in [("empty", "it has no *.cpp"), ("absent", "neither a folder nor a library")]:
            made = self.configure(self.port / platform)
            self.assertNotEqual(made.returncode, 0)
            self.assertIn(words, " ".join(made.stderr.split()))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1])
