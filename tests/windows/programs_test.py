#!/usr/bin/env python3
"""The programs as they are used on Windows: on consoles, with COM ports, with paths and files as they are there.

programs_test.py EMULATOR... -- BIN SIMULATOR RESULTS TEST: runs the test TEST of those below with the Windows programs
in BIN by EMULATOR. SIMULATOR is a sbus-sim of this system, which plays serial lines on pseudo-terminals. The outcome
is written into RESULTS as GoogleTest does.
"""
import json
import os
import pathlib
import pty
import re
import select
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

import outcomes
from udp_port import free_port

PATIENCE = 120  # seconds, which only a failure waits for
REST = 10  # seconds in which the rest of what an ended program has written comes through Wine's console


def udp_site(port, more=""):
    return f"""[[channel]]
id = 1
type = "SBus-Ethernet"
primary = "udp://127.0.0.1:{port}"
[[channel.rtu]]
id = 1
name = "pump-house"
station = 5
timeout = "500ms"
scan = {{ integrity = "1s", status = "1s", analog = "1s" }}
{more}"""


def serial_site(device, mode):
    return f"""[[channel]]
id = 1
type = "SBus-Serial"
primary = "serial:{device}?baud=19200"
[[channel.rtu]]
id = 1
name = "pump-house"
station = 5
timeout = "1s"
transmit_type = "{mode}"
break_delay = 10
scan = {{ integrity = "1s", status = "1s", analog = "1s" }}
"""


POINT = '[[channel.rtu.point]]\nid = 1\nname = "LEVEL"\nkind = "analog"\naddress = "R10"\n'


# Keeps the terminal open until all of the program's output has come through Wine's console, and a key was pressed.
KEEPER = 'trap : INT; "$@"; echo "ended with $? ."; read key'
ENDED = re.compile(r"ended with (\d+) \.")


class Console:
    """A program on a terminal of its own. Its output is collected while it is waited for."""

    def __init__(self, command):
        self.shown = ""
        self.process, self.terminal = pty.fork()
        if self.process == 0:
            os.environ["TERM"] = "xterm"
            os.execvp("sh", ["sh", "-c", KEEPER, "sh", *command])

    def wait_for(self, text):
        end = time.monotonic() + PATIENCE
        has_ended = False
        while text not in self.plain() and time.monotonic() < end:
            if not self.read():
                break
            if not has_ended and ENDED.search(self.plain()):
                has_ended = True
                end = time.monotonic() + REST
        return text in self.plain()

    def plain(self):
        """What a person has seen: each letter may come with movements of the cursor around it, also for blanks."""
        blanks = re.sub(r"\x1b\[(\d*)C", lambda moves: " " * int(moves[1] or 1), self.shown)
        return re.sub(r"\x1b\[[0-9;?]*[a-zA-Z]", "", blanks)

    def read(self):
        if not select.select([self.terminal], [], [], 0.1)[0]:
            return True
        try:
            data = os.read(self.terminal, 65536)
        except OSError:
            return False  # the program has ended
        self.shown += data.decode(errors="replace")
        return bool(data)

    def type(self, keys):
        os.write(self.terminal, keys)

    def exit_status(self):
        self.wait_for("ended with ")
        self.wait_for(" .")
        ending = ENDED.search(self.plain())
        return int(ending[1]) if ending else None

    def close(self):
        os.close(self.terminal)
        os.waitpid(self.process, 0)


class Programs(unittest.TestCase):
    def setUp(self):
        self.folder = pathlib.Path(tempfile.mkdtemp(prefix="sbus windows ä "))
        self.addCleanup(shutil.rmtree, self.folder)

    # The programs.

    @staticmethod
    def windows(program, *arguments):
        return [*EMULATOR, f"{BIN}/{program}.exe", *arguments]

    def run_windows(self, program, *arguments):
        return subprocess.run(self.windows(program, *arguments), capture_output=True, timeout=PATIENCE)

    def start(self, command):
        """A simulator that is ready."""
        process = subprocess.Popen(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT)
        self.addCleanup(process.wait)
        self.addCleanup(process.kill)
        shown = b""
        for line in process.stdout:
            shown += line
            if line.startswith(b"ready"):
                return process
        self.fail(shown.decode())

    def open_console(self, command):
        console = Console(command)
        self.addCleanup(console.close)
        return console

    def write(self, name, text, encoding="utf-8"):
        path = self.folder / name
        path.write_bytes(text.encode(encoding))
        return path

    def values(self, output):
        """What was shown last of each point, of the lines of --format json."""
        return {line["name"]: line for line in map(json.loads, output.decode().splitlines())}

    # Serial lines: Wine leads a COM port to the simulator's pseudo-terminal.

    def poll_com_port(self, number, mode):
        line = self.folder / "line"
        played = self.write("played.toml", serial_site(line, mode) + POINT)
        self.start([SIMULATOR, str(played), "--set", "5/R10=4711"])
        port = pathlib.Path(os.environ["WINEPREFIX"]) / "dosdevices" / f"com{number}"
        port.unlink(missing_ok=True)
        port.symlink_to(os.path.realpath(line))
        self.addCleanup(port.unlink)
        site = self.write("site.toml", serial_site(f"COM{number}", mode) + POINT)
        return self.run_windows("sbus-host", "run", str(site), "--for", "3s", "--format", "json", "--no-control")

    def test_PollAComPortInDataMode(self):
        ending = self.poll_com_port(5, "data")
        self.assertEqual(ending.returncode, 0, ending.stderr)
        self.assertEqual(self.values(ending.stdout)["LEVEL"]["value"], 4711)

    # Above 9 the system knows ports by a longer name alone.
    def test_PollAComPortAboveNine(self):
        ending = self.poll_com_port(15, "data")
        self.assertEqual(ending.returncode, 0, ending.stderr)
        self.assertEqual(self.values(ending.stdout)["LEVEL"]["value"], 4711)

    def test_PollAComPortInBreakMode(self):
        ending = self.poll_com_port(6, "break")
        self.assertEqual(ending.returncode, 0, ending.stderr)
        self.assertEqual(self.values(ending.stdout)["LEVEL"]["value"], 4711)

    def test_SayWhichComPortIsNotThere(self):
        site = self.write("site.toml", serial_site("COM77", "data") + POINT)
        ending = self.run_windows("sbus-host", "run", str(site), "--for", "1s", "--no-control")
        self.assertEqual(ending.returncode, 1)
        self.assertIn(b"COM77", ending.stderr)

    # The terminal.

    def play_udp(self):
        port = free_port()
        site = self.write("site.toml", udp_site(port, POINT))
        self.start(self.windows("sbus-sim", str(site), "--set", "5/R10=4711"))
        return site

    def test_EndInOrderAtCtrlC(self):
        site = self.play_udp()
        console = self.open_console(self.windows("sbus-host", "run", str(site), "--format", "lines"))
        self.assertTrue(console.wait_for("4711"), console.shown)
        console.type(b"\x03")
        self.assertEqual(console.exit_status(), 0, console.shown)
        self.assertTrue(console.wait_for("requests"), console.shown)

    def test_ShowATableAndLeaveItAtCtrlC(self):
        site = self.play_udp()
        console = self.open_console(self.windows("sbus-host", "run", str(site)))
        self.assertTrue(console.wait_for("4711"), console.shown)
        console.type(b"\x03")
        self.assertEqual(console.exit_status(), 0, console.shown)

    def test_EndTheSimulatorAtCtrlC(self):
        site = self.write("site.toml", udp_site(free_port(), POINT))
        console = self.open_console(self.windows("sbus-sim", str(site)))
        self.assertTrue(console.wait_for("ready"), console.shown)
        console.type(b"\x03")
        self.assertEqual(console.exit_status(), 0, console.shown)
        self.assertTrue(console.wait_for("station 5: answers 0"), console.shown)

    def test_TakeCommandsFromASecondConsole(self):
        site = self.play_udp()
        console = self.open_console(self.windows("sbus-host", "run", str(site), "--format", "lines"))
        self.assertTrue(console.wait_for("4711"), console.shown)
        written = self.run_windows("sbus-host", "ctl", str(site), "write", "pump-house/LEVEL=12")
        self.assertEqual(written.stdout, b"pump-house/LEVEL = 12  success\n", written.stderr)
        self.assertTrue(console.wait_for("= 12"), console.shown)
        status = self.run_windows("sbus-host", "ctl", str(site), "status")
        self.assertIn(b"pump-house", status.stdout)
        console.type(b"\x03")
        self.assertEqual(console.exit_status(), 0, console.shown)
        gone = self.run_windows("sbus-host", "ctl", str(site), "status")
        self.assertEqual(gone.returncode, 1)
        self.assertIn("start one with: sbus-host run", gone.stderr.decode())

    # Files as they come from Windows.

    def test_ReadFilesOfWindowsEditorsInAFolderWithUmlautsAndBlanks(self):
        port = free_port()
        folder = self.folder / "Größe & Füllstand"
        folder.mkdir()
        site = folder / "Wasserwerk süd.toml"
        text = udp_site(port, 'points = "Füllstände.csv"\n').replace("\n", "\r\n")
        site.write_bytes(b"\xef\xbb\xbf" + text.encode())
        (folder / "Füllstände.csv").write_bytes(
            b"\xef\xbb\xbf" + "id,name,kind,address\r\n1,Füllstand,analog,R10\r\n".encode())
        checked = self.run_windows("sbus-host", "check", str(site))
        self.assertEqual(checked.returncode, 0, checked.stderr.decode() + checked.stdout.decode())
        self.start(self.windows("sbus-sim", str(site), "--set", "5/R10=4711"))
        logs, states = folder / "Protokolle für heute", folder / "Zustände"
        capture = folder / "Mitschnitt größer.pcap"
        ending = self.run_windows("sbus-host", "run", str(site), "--for", "3s", "--format", "json", "--frames",
                                  "--log-dir", str(logs), "--state-dir", str(states), "--capture", str(capture))
        self.assertEqual(ending.returncode, 0, ending.stderr.decode())
        self.assertEqual(self.values(ending.stdout)["Füllstand"]["value"], 4711)
        self.assertEqual([file.name for file in logs.iterdir()], ["channel-1.log"])
        self.assertNotIn(b"\r", (logs / "channel-1.log").read_bytes())
        self.assertIn(b"<< read R10", (logs / "channel-1.log").read_bytes())
        self.assertGreater(capture.stat().st_size, 100)

    def test_NameAFileThatIsNotThereAsItWasWritten(self):
        ending = self.run_windows("sbus-host", "check", "Größe nicht da.toml")
        self.assertEqual(ending.returncode, 2)
        self.assertIn("Größe nicht da.toml", ending.stderr.decode())

    # The plug-in's option page, painted as Windows paints it.

    def test_PaintTheOptionPageInFourLanguages(self):
        titles = {"en_GB": "Protocol", "de_DE": "Protokoll", "fr_CH": "Protocole", "it_CH": "Protocollo"}
        pictures = {}
        for language, title in titles.items():
            picture = PICTURES / f"option-page-{language[:2]}.png"
            picture.parent.mkdir(parents=True, exist_ok=True)
            picture.unlink(missing_ok=True)
            environment = dict(os.environ, LANG=f"{language}.UTF-8", QT_QPA_PLATFORM="windows")
            command = ["sh", "-c", 'SBUS_WINE_DISPLAY=$DISPLAY exec "$@"', "sh",
                       *self.windows("plugin_text_printer", f"{BIN}/SBusDriver.dll", f"{picture}")]
            ending = subprocess.run(["xvfb-run", "-a", *command], env=environment, capture_output=True,
                                    timeout=PATIENCE)
            self.assertEqual(ending.returncode, 0, ending.stderr)
            page = json.loads(ending.stdout)["page"]
            self.assertEqual(page["title"], title)
            self.assertEqual(page["cut off"], [], language)
            pictures[language] = picture.read_bytes()
            self.assertEqual(pictures[language][:4], b"\x89PNG")
            self.assertGreater(len(pictures[language]), 1500, "a page without texts")
        self.assertEqual(len(set(pictures.values())), len(titles))


if __name__ == "__main__":
    split = sys.argv.index("--")
    EMULATOR = sys.argv[1:split]
    BIN, SIMULATOR, results, test = sys.argv[split + 1:]
    PICTURES = pathlib.Path(results).parent / "pictures"
    os.environ["WINEPREFIX"] = os.path.join(os.path.dirname(results), "wine")
    outcome = unittest.TextTestRunner().run(unittest.defaultTestLoader.loadTestsFromName(f"test_{test}", Programs))
    outcomes.write(pathlib.Path(results), "Programs", {test: outcome.wasSuccessful() and outcome.testsRun == 1})
    sys.exit(not outcome.wasSuccessful())
