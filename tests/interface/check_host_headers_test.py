"""cmake/check-host-headers.py, tried with the open framework's headers as another host's could be: other file names in
another folder, other names of classes, functions and libraries.

check_host_headers_test.py ROOT BUILD WORK COMPILER QT_INCLUDE_FOLDER
"""

import re
import shutil
import subprocess
import sys
import unittest
from pathlib import Path

ROOT, BUILD, WORK = (Path(argument) for argument in sys.argv[1:4])
COMPILER, QT = sys.argv[4:6]
LIBRARIES = {"HVDBFunctions": "accounts", "HalvexAbstractDriver": "plugins", "HalvexDriverComponent": "devices",
             "HalvexDriverLink": "lines"}
NAMES = {"CRtu": "DeviceUnit", "CChannel": "DeviceLine", "CReply": "CommandTicket", "CLink": "OpenLine",
         "AnalogPoint": "Measurement", "GetPointList": "allPoints", "rxMessage": "collect",
         "PutDatapoints": "publishStaged", "IsShutdown": "endsSoon", "GetRtuMap": "unitsByNumber",
         "HALVEX_DRIVER_PLUGIN_IID": "DEVICE_PLUGIN_ID"}


def their_header(ours):
    folder, file = ours.split("/")
    return f"{LIBRARIES[folder]}/{re.sub(r'(?<=[a-z])(?=[A-Z])', '_', file[:-2]).lower()}.hpp"


class Host:
    """The framework's headers, renamed."""

    def __init__(self, name):
        self.folder = WORK / name
        shutil.rmtree(self.folder, ignore_errors=True)
        self.include = self.folder / "sdk" / "headers"
        self.headers = {}
        for library in LIBRARIES:
            for base in (ROOT / "framework" / library / "include", BUILD / "framework" / library / "generated"):
                for file in sorted(base.glob(f"{library}/*.h")):
                    self.take(f"{library}/{file.name}", file.read_text(encoding="utf-8"))
        lines = ["folder sdk/headers  # all of them"]
        lines += [f"header {ours} {theirs}" for ours, theirs in self.headers.items()]
        lines += [f"name {ours} {theirs}" for ours, theirs in NAMES.items()]
        lines += [f"library Halvex::{ours} {theirs}.lib" for ours, theirs in LIBRARIES.items()]
        self.mapping = self.folder / "mapping.txt"
        self.mapping.write_text("\n".join(lines) + "\n", encoding="utf-8")

    def take(self, ours, text):
        text = re.sub(r"<((?:%s)/\w+\.h)>" % "|".join(LIBRARIES), lambda match: f"<{their_header(match[1])}>", text)
        for name, theirs in NAMES.items():
            text = re.sub(rf"\b{name}\b", theirs, text)
        self.headers[ours] = their_header(ours)
        file = self.include / self.headers[ours]
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(text, encoding="utf-8")

    def change(self, ours, before, after):
        file = self.include / self.headers[ours]
        text = file.read_text(encoding="utf-8")
        assert before in text, f"{before} does not stand in {ours}"
        file.write_text(text.replace(before, after), encoding="utf-8")

    def check(self, *arguments):
        return subprocess.run([sys.executable, "-B", ROOT / "cmake/check-host-headers.py", self.mapping, "--compiler",
                               COMPILER, "--qt", QT, *arguments], capture_output=True, text=True)


class CheckHostHeaders(unittest.TestCase):
    def test_takes_renamed_headers_and_makes_a_package_of_them(self):
        host = Host("complete")
        ended = host.check("--output", host.folder / "package")
        self.assertEqual(ended.returncode, 0, ended.stdout + ended.stderr)
        self.assertRegex(ended.stdout, r"^All \d\d sources of the plug-in can be compiled")
        # The build of the option page takes headers, names and Qt's meta-object compiler with it.
        configured = subprocess.run(
            ["cmake", "-S", ROOT, "-B", host.folder / "build", "-G", "Ninja", "-DSBUS_BUILD_FRAMEWORK=OFF",
             "-DBUILD_TESTING=OFF", f"-DCMAKE_CXX_COMPILER={COMPILER}", f"-DHalvex_DIR={host.folder / 'package'}"],
            capture_output=True, text=True)
        self.assertEqual(configured.returncode, 0, configured.stderr)
        built = subprocess.run(["cmake", "--build", host.folder / "build", "--target", "sbus_ui"], capture_output=True,
                               text=True)
        self.assertEqual(built.returncode, 0, built.stdout)
        links = subprocess.run(["ninja", "-C", host.folder / "build", "-t", "commands", "SBusDriver"],
                               capture_output=True, text=True).stdout
        for library in LIBRARIES.values():
            self.assertIn(f"{library}.lib", links)

    def test_names_a_header_that_is_missing(self):
        host = Host("header")
        (host.include / host.headers["HalvexDriverLink/CLinkSerial.h"]).unlink()
        ended = host.check()
        self.assertEqual(ended.returncode, 1)
        self.assertRegex(ended.stdout, r"^missing: header HalvexDriverLink/CLinkSerial.h \(here lines/clink_serial.hpp\) "
                                       r"is in none of the folders; wanted by \w+/\w+\.cpp\n$")

    def test_names_a_class_that_is_missing_and_nothing_that_follows_from_it(self):
        host = Host("class")
        host.change("HalvexDriverComponent/CRtu.h", "DeviceUnit", "ControlUnit")
        ended = host.check("--only", "channel/SBusChennel.cpp")
        self.assertEqual(ended.returncode, 1)
        self.assertRegex(ended.stdout, r"^missing: CRtu \(here DeviceUnit\) is not declared; wanted at \w+/.*\n"
                                       r"More may show when these are there: .*\n$")

    def test_names_functions_that_are_missing_or_differ(self):
        host = Host("functions")
        host.change("HalvexDriverLink/CLink.h", "int collect(", "int gather(")
        host.change("HalvexDriverComponent/CRtu.h", "virtual int RequestPoll(int kind,", "virtual int RequestPoll(long kind,")
        ended = host.check("--only", "protocol/SBusSerialDriver.cpp", "--only", "rtu/SBusRtu.cpp")
        self.assertEqual(ended.returncode, 1)
        self.assertIn("CLink::rxMessage is missing; wanted at protocol/", ended.stdout)
        self.assertRegex(ended.stdout, r"differs: .*RequestPoll")
        self.assertEqual(ended.stdout.count("RequestPoll"), 1, ended.stdout)

    def test_names_the_interface_identifier_when_it_is_missing(self):
        host = Host("identifier")
        host.change("HalvexAbstractDriver/DriverPluginInterface.h", "DEVICE_PLUGIN_ID", "DEVICE_PLUGIN_NAME")
        self.assertIn("HALVEX_DRIVER_PLUGIN_IID (here DEVICE_PLUGIN_ID) is not declared", host.check("--only", "ui/SaiaSerialDeviceOption.cpp").stdout)

    def test_refuses_to_rename_words_of_the_systems_headers(self):
        host = Host("words")
        with host.mapping.open("a", encoding="utf-8") as mapping:
            mapping.write("name open openLine\n")
        ended = host.check()
        self.assertEqual(ended.returncode, 2)
        self.assertIn('"open" is a word of the system\'s headers too', ended.stderr)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1] + sys.argv[6:])
