#!/usr/bin/python3
"""What lies where after an installation. The first argument is the build folder, the second says whether it has windows."""

import os
import pathlib
import shutil
import subprocess
import sys
import tempfile
import unittest

BUILD = pathlib.Path(sys.argv.pop(1)).resolve()
HAS_WINDOWS = sys.argv.pop(1).upper() in ("ON", "TRUE", "1", "YES")

PROGRAMS = {"kestrio", "kestrioctl", "kestrio-rescue", "kestrio-tabs"} | ({"kestrio-window"} if HAS_WINDOWS else set())
DATA = {
    "share/applications/kestrio.desktop",
    "share/icons/hicolor/scalable/apps/dev.haldorvinter.Kestrio.svg",
    "lib/systemd/user/kestrio.service",
}


def entry(text):
    """The keys of a desktop entry or a unit, whatever their groups."""
    return dict(line.split("=", 1) for line in text.splitlines() if "=" in line and not line.startswith("#"))


class Installation(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.top = pathlib.Path(tempfile.mkdtemp(prefix="kestrio-install."))
        cls.prefix = cls.top / "usr"
        subprocess.run(
            ["cmake", "--install", BUILD, "--prefix", cls.prefix], check=True, capture_output=True, text=True
        )

    @classmethod
    def tearDownClass(cls):
        shutil.rmtree(cls.top)

    def text(self, path):
        return (self.prefix / path).read_text()

    def test_everything_is_there_and_nothing_else(self):
        found = {str(path.relative_to(self.prefix)) for path in self.prefix.rglob("*") if not path.is_dir()}
        extension = {path for path in found if path.startswith("share/kestrio/extension/")}
        self.assertEqual(found - extension, DATA | {f"bin/{name}" for name in PROGRAMS})
        for family in ("chromium/manifest.json", "firefox/manifest.json", "firefox.xpi"):
            self.assertIn(f"share/kestrio/extension/{family}", extension)

    def test_programs_run_and_data_does_not(self):
        for path in self.prefix.rglob("*"):
            if path.is_file():
                self.assertEqual(os.access(path, os.X_OK), path.parent.name == "bin", path)
        for name in ("kestrio", "kestrioctl"):
            said = subprocess.run([self.prefix / "bin" / name, "--version"], capture_output=True, text=True, check=True)
            self.assertRegex(said.stdout, r"\AKestrio \d+\.\d+\.\d+\n\Z")

    def test_the_entry_names_a_program_and_an_icon_that_are_there(self):
        keys = entry(self.text("share/applications/kestrio.desktop"))
        self.assertIn(keys["Exec"], PROGRAMS)
        self.assertIn(f"share/icons/hicolor/scalable/apps/{keys['Icon']}.svg", DATA)
        self.assertEqual(keys["Type"], "Application")

    def test_the_unit_starts_the_program_as_the_login_does(self):
        keys = entry(self.text("lib/systemd/user/kestrio.service"))
        program, flag = keys["ExecStart"].split()
        self.assertTrue(program.endswith("/bin/kestrio"), program)
        self.assertTrue(program.startswith("/"), program)
        self.assertEqual(flag, "--login")

    @unittest.skipUnless(shutil.which("desktop-file-validate"), "desktop-file-utils is not here")
    def test_the_entry_is_valid(self):
        checked = subprocess.run(
            ["desktop-file-validate", self.prefix / "share/applications/kestrio.desktop"], capture_output=True, text=True
        )
        self.assertEqual((checked.returncode, checked.stdout), (0, ""))


if __name__ == "__main__":
    unittest.main(verbosity=1)
