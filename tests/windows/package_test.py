#!/usr/bin/env python3
"""package_test.py BUILD: tries the zip and the installer of BUILD under Wine, as a person who has neither Qt nor a
compiler would use them."""
import json
import os
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest
import zipfile
from pathlib import Path

SOURCE = Path(__file__).resolve().parents[2]
DLLS = SOURCE / "packaging/windows/dlls.py"
OBJDUMP = "x86_64-w64-mingw32-objdump"
PATIENCE = 120  # seconds, which only a failure waits for
OWN = ["SBusDriver.dll", "HalvexAbstractDriver.dll", "HalvexDriverComponent.dll", "HalvexDriverLink.dll",
       "HVDBFunctions.dll", "sbus-host.exe", "sbus-sim.exe"]
UNINSTALL_KEY = r"HKLM\Software\Microsoft\Windows\CurrentVersion\Uninstall\SBusDriver"
SERVICE_KEY = r"HKLM\SYSTEM\CurrentControlSet\Services\waterworks"
ENVIRONMENT = r"HKLM\SYSTEM\CurrentControlSet\Control\Session Manager\Environment"


class Windows:
    """A Windows of its own under Wine, in a folder that is removed again."""

    def __init__(self, folder):
        self.drive = folder / "wine/drive_c"
        self.program = "/usr/lib/wine/wine64"
        # Without a desktop: nothing here may need one.
        self.environment = {key: value for key, value in os.environ.items() if key != "DISPLAY"}
        self.environment.update(WINEPREFIX=str(folder / "wine"), WINEDEBUG="-all", LC_ALL="C.UTF-8",
                                WINEDLLOVERRIDES="mscoree=;mshtml=")
        subprocess.run([self.program, "wineboot", "--init"], env=self.environment, check=True, timeout=600,
                       stderr=subprocess.DEVNULL)
        self.wait()

    def start(self, *command, **options):
        return subprocess.Popen([self.program, *map(str, command)], env=self.environment, **options)

    def run(self, *command, **options):
        # Into files: a service manager that Wine starts with a program holds its outputs longer than it lives.
        with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as errors:
            ended = subprocess.run([self.program, *map(str, command)], env=self.environment, timeout=300,
                                   stdin=subprocess.DEVNULL, stdout=output, stderr=errors, **options)
            return subprocess.CompletedProcess(command, ended.returncode, text_of(output), text_of(errors))

    def wait(self):
        """Until all of its programs have ended."""
        subprocess.run(["/usr/lib/wine/wineserver", "--wait"], env=self.environment, timeout=300, check=True)

    def registry(self, key, name):
        """What stands there, or None."""
        found = re.search(r"REG_\w+\s+(.*)", self.run("reg", "query", key, "/v", name).stdout)
        return found.group(1).strip() if found else None

    def end(self):
        self.run("wineboot", "--end-session", "--force")
        self.wait()


def text_of(file):
    file.seek(0)
    return file.read().decode("utf-8", "replace").replace("\r\n", "\n")


def seen_from_windows(path):
    return "Z:" + str(path).replace("/", "\\")


def files(folder):
    return sorted(str(file.relative_to(folder)) for file in folder.rglob("*") if file.is_file())


class Package(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = Path(tempfile.mkdtemp(prefix="sbus-windows."))
        cls.addClassCleanup(shutil.rmtree, cls.folder, ignore_errors=True)
        cls.windows = Windows(cls.folder)
        cls.addClassCleanup(cls.windows.end)
        unpacked = cls.folder / "Fördertechnik Süd, Pumpen"
        with zipfile.ZipFile(ZIP) as archive:
            archive.extractall(unpacked)
        (cls.root,) = unpacked.iterdir()
        cls.bin = cls.root / "bin"

    def closure(self, folder):
        return subprocess.run([DLLS, "check", folder], capture_output=True, text=True)

    def test_holds_each_library_that_its_programs_import(self):
        found = self.closure(self.root)
        self.assertEqual((found.returncode, found.stderr), (0, ""))

    def test_without_a_library_is_found_incomplete(self):
        for name in ("libwinpthread-1.dll", "Qt5Core.dll", "HalvexDriverLink.dll"):
            copy = self.folder / "incomplete"
            shutil.copytree(self.bin, copy)
            (copy / name).unlink()
            found = self.closure(copy)
            shutil.rmtree(copy)
            self.assertEqual(found.returncode, 1)
            self.assertIn(f"imports {name}, which is missing", found.stderr)

    def test_plug_in_exports_its_two_entries_alone(self):
        text = subprocess.run([OBJDUMP, "-p", self.bin / "SBusDriver.dll"], check=True, capture_output=True,
                              text=True).stdout
        table = text[text.index("[Ordinal/Name Pointer] Table"):]
        exports = re.findall(r"^\s*\[\s*\d+\]\s+(?:\+base\[\s*\d+\]\s+\w+\s+)?(\S+)$", table, re.MULTILINE)
        self.assertEqual(exports, ["qt_plugin_instance", "qt_plugin_query_metadata"])

    def test_files_tell_name_and_version(self):
        for name in OWN:
            data = (self.bin / name).read_bytes()
            for key, value in (("ProductName", "SBusDriver"), ("ProductVersion", VERSION), ("OriginalFilename", name)):
                entry = re.escape(f"{key}\0".encode("utf-16-le")) + b"(?:\0\0)*" + \
                    re.escape(f"{value}\0".encode("utf-16-le"))
                self.assertRegex(data, entry, f"{name}: {key}")

    def test_has_no_library_with_a_prefix_of_its_own(self):
        ours = [name for name in files(self.bin) if re.match("lib(SBus|Halvex|HVDB)", name)]
        self.assertEqual(ours, [])

    def test_has_no_two_files_that_are_one_to_windows(self):
        names = [name.lower() for name in files(self.root)]
        self.assertEqual(sorted(set(names)), sorted(names))

    def test_has_pages_whose_links_lead_somewhere(self):
        for page in self.root.rglob("*.html"):
            for link in re.findall(r'(?:href|src)="([^":#]+\.(?:html|png))', page.read_text()):
                self.assertTrue((page.parent / link).exists(), f"{page.relative_to(self.root)}: {link}")

    def test_polls_from_another_folder(self):
        elsewhere = self.folder / "Größe & Füllstand"
        shutil.copytree(self.root / "demo", elsewhere)
        self.assert_polls(self.bin, elsewhere / "site.toml", self.folder)

    def assert_polls(self, programs, site, folder):
        site = seen_from_windows(site)
        checked = self.windows.run(programs / "sbus-host.exe", "check", site, cwd=folder)
        self.assertEqual(checked.returncode, 0, checked.stdout + checked.stderr)
        simulator = self.windows.start(programs / "sbus-sim.exe", site, cwd=folder, stdout=subprocess.PIPE, text=True)
        try:
            self.assertTrue(any(line.startswith("ready") for line in simulator.stdout), "the simulator did not start")
            host = self.windows.run(programs / "sbus-host.exe", "run", site, "--for", "8s", "--format", "json",
                                    cwd=folder)
        finally:
            simulator.kill()
            simulator.communicate()
        self.assertEqual(host.returncode, 0, host.stderr)
        changes = [json.loads(line) for line in host.stdout.splitlines()]
        good = {(change["rtu"], change["id"]) for change in changes if change["quality"] == "good"}
        self.assertEqual({rtu for rtu, _ in good}, {"pump-house", "hill-reservoir", "chlorine-station"})
        self.assertEqual([change for change in changes if (change["rtu"], change["id"]) not in good], [])

    def test_installer_leaves_only_what_a_person_put_there(self):
        target = self.windows.drive / "Program Files/SBusDriver"
        start_menu = self.windows.drive / "ProgramData/Microsoft/Windows/Start Menu/Programs/SBusDriver"
        path_before = self.windows.registry(ENVIRONMENT, "PATH")
        installed = self.windows.run(SETUP, "/S", "/PATH")
        self.assertEqual(installed.returncode, 0, installed.stderr)
        expected = [name for name in files(self.root) if not name.startswith(("include/", "lib/"))]
        self.assertEqual(files(target), sorted([*expected, "uninstall.exe"]))
        self.assertEqual(files(start_menu), ["Demo.lnk", "Documents.lnk", "Uninstall.lnk"])
        self.assertEqual(self.windows.registry(UNINSTALL_KEY, "DisplayVersion"), VERSION)
        self.assertEqual(self.windows.registry(ENVIRONMENT, "PATH"),
                         path_before + r";C:\Program Files\SBusDriver\bin")

        own = target / "demo/my site.toml"
        shutil.copyfile(self.root / "demo/site.toml", own)
        self.assert_polls(target / "bin", own, self.folder)
        service = self.windows.run(target / "bin/sbus-host.exe", "service", "install", "waterworks",
                                   seen_from_windows(own))
        self.assertEqual(service.returncode, 0, service.stderr)
        self.assertIsNotNone(self.windows.registry(SERVICE_KEY, "ImagePath"))

        # The uninstaller goes on as a copy of itself elsewhere, which removes what it was started from, too.
        removed = self.windows.run(target / "uninstall.exe", "/S")
        self.assertEqual(removed.returncode, 0, removed.stderr)
        deadline = time.monotonic() + PATIENCE
        while time.monotonic() < deadline and self.windows.registry(UNINSTALL_KEY, "DisplayVersion"):
            time.sleep(0.5)
        self.assertEqual(files(target), ["demo/my site.toml"])
        self.assertTrue(own.exists())
        self.assertEqual([folder.name for folder in target.iterdir() if folder.is_dir()], ["demo"])
        self.assertFalse(start_menu.exists())
        self.assertIsNone(self.windows.registry(UNINSTALL_KEY, "DisplayVersion"))
        self.assertIsNone(self.windows.registry(SERVICE_KEY, "ImagePath"))
        self.assertIsNotNone(self.windows.registry(SERVICE_KEY.replace("waterworks", "EventLog"), "ImagePath"))
        self.assertEqual(self.windows.registry(ENVIRONMENT, "PATH"), path_before)


if __name__ == "__main__":
    (ZIP,) = Path(sys.argv.pop(1)).resolve().glob("sbusdriver-*-windows-x64.zip")
    SETUP = ZIP.with_name(ZIP.stem + "-setup.exe")
    VERSION = ZIP.name.split("-")[1]
    unittest.main(verbosity=2)
