#!/usr/bin/env python3
"""sbus-host as a service of Windows: installed, started, asked, stopped and removed as a person does it.

service_test.py WORK QT BUILD [TEST...]: with the programs that BUILD has built, in a Windows of their own in the folder
WORK: the service manager there starts a program with what lies beside it and nothing else. What Wine does not do is not
tested here: it keeps no event log, lets every account do everything, and starts no service again that has failed.
"""
import os
import pathlib
import re
import shutil
import subprocess
import sys
import tempfile
import time
import unittest

import outcomes
from udp_port import free_port

PATIENCE = 180  # seconds, which only a failure waits for
SOURCE = pathlib.Path(__file__).resolve().parents[2]
PROGRAMS = ("sbus-host.exe", "sbus-sim.exe", "SBusDriver.dll")
EMULATOR, BIN = [], pathlib.Path()
SERVICES = r"HKLM\SYSTEM\CurrentControlSet\Services"


def site_text(port):
    return f"""[[channel]]
id = 1
name = "works"
type = "SBus-Ethernet"
primary = "udp://127.0.0.1:{port}"
[[channel.rtu]]
id = 1
name = "pump-house"
station = 5
timeout = "500ms"
scan = {{ integrity = "1s", status = "1s", analog = "1s" }}
[[channel.rtu.point]]
id = 1
name = "LEVEL"
kind = "analog"
address = "R10"
[[channel.rtu.point]]
id = 2
name = "START"
kind = "status"
address = "O32"
pulse_ms = 600000
"""


def word(argument):
    """As the programs know it: their drive Z is this system's root."""
    return "Z:" + str(argument).replace("/", "\\") if isinstance(argument, pathlib.Path) else argument


def start(program, *arguments, **outputs):
    return subprocess.Popen([*EMULATOR, program, *map(word, arguments)], stdin=subprocess.DEVNULL, **outputs)


def run(program, *arguments):
    """Status, output and errors. Files take them: what the program starts may hold its outputs longer than it lives."""
    with tempfile.TemporaryFile() as output, tempfile.TemporaryFile() as errors:
        process = start(program, *arguments, stdout=output, stderr=errors)
        try:
            process.wait(timeout=PATIENCE)
        finally:
            process.kill()
        return process.returncode, text_of(output), text_of(errors)


def text_of(file):
    file.seek(0)
    return file.read().decode("utf-8", "replace").replace("\r\n", "\n")


def host(*arguments):
    return run(BIN / "sbus-host.exe", *arguments)


def registry(*key):
    """What the registry says of a key, as text; empty when there is none."""
    status, output, _ = run("reg", "query", "\\".join([SERVICES, *key]))
    return output if status == 0 else ""


class Service(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        # Wine begins its service manager with the first program and ends it with the last one: this one stays.
        cls.prompt = tempfile.TemporaryFile()
        cls.resident = subprocess.Popen([*EMULATOR, "cmd"], stdin=subprocess.PIPE, stdout=cls.prompt,
                                        stderr=subprocess.DEVNULL)
        deadline = time.monotonic() + PATIENCE
        while os.fstat(cls.prompt.fileno()).st_size == 0 and time.monotonic() < deadline:
            time.sleep(0.1)

    @classmethod
    def tearDownClass(cls):
        cls.resident.communicate(timeout=PATIENCE)
        cls.prompt.close()

    def setUp(self):
        self.name = f"sbus-test-{self.id().rsplit('.', 1)[-1][:40]}-{free_port()}"
        folder = tempfile.TemporaryDirectory(prefix="sbus service ")  # a blank, as in "Program Files"
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        self.port = free_port()
        self.site = self.folder / "site.toml"
        self.site.write_text(site_text(self.port), encoding="utf-8")
        self.addCleanup(host, "service", "remove", self.name)

    def play(self, *arguments):
        simulator = start(BIN / "sbus-sim.exe", self.site, *arguments, stdout=subprocess.DEVNULL,
                          stderr=subprocess.DEVNULL)
        self.addCleanup(simulator.wait)
        self.addCleanup(simulator.kill)

    def install(self, *options):
        status, output, errors = host("service", "install", self.name, self.site, *options)
        self.assertEqual((status, errors), (0, ""), output)
        self.assertIn(f"service {self.name} is installed, and runs as NT SERVICE\\{self.name}", output)

    def start_service(self):
        self.assertEqual(host("service", "start", self.name), (0, f"service {self.name} runs\n", ""))

    def stop_service(self):
        self.assertEqual(host("service", "stop", self.name), (0, f"service {self.name} has stopped\n", ""))

    def await_text(self, wanted, *arguments):
        """Asks until the answer has the text, and returns it."""
        deadline = time.monotonic() + PATIENCE
        while True:
            answer = host(*arguments)
            if re.search(wanted, answer[1]):
                return answer[1]
            self.assertLess(time.monotonic(), deadline, f"no {wanted} in {answer}")
            time.sleep(0.2)

    def test_PollsAndTakesCommandsUntilItIsStopped(self):
        self.play("--set", "5/R10=1234")
        self.install("--log-dir", self.folder / "logs")
        self.start_service()
        self.await_text(r"pump-house +5 +connected .* 2 +0 +0 +0\n", "ctl", self.site, "status")
        status, output, errors = host("ctl", self.site, "write", "pump-house/LEVEL=77")
        self.assertEqual(status, 0, errors + output)
        self.stop_service()
        status, output, errors = host("read", f"udp://127.0.0.1:{self.port}", "R10", "--station", "5")
        self.assertEqual((status, output), (0, "R10 = 77\n"), errors)
        status, _, errors = host("ctl", self.site, "status")
        self.assertEqual(status, 1)
        self.assertIn("no sbus-host", errors)
        self.assertTrue(list((self.folder / "logs").glob("channel-1*")), "the log directory lacks the line's file")

    def test_EndsARunningPulseBeforeItStops(self):
        self.play()
        self.install()
        self.start_service()
        status, output, errors = host("ctl", self.site, "write", "pump-house/START=1")
        self.assertEqual(status, 0, errors + output)
        read = ("read", f"udp://127.0.0.1:{self.port}", "O32", "--station", "5")
        self.await_text(r"O32 = (1|on)\b", *read)
        self.stop_service()
        self.await_text(r"O32 = (0|off)\b", *read)

    def test_StartsWithTheSystemAndQuotesEveryPath(self):
        self.install("--log-dir", self.folder / "my logs")
        told = registry(self.name)
        self.assertRegex(told, r"Start\s+REG_DWORD\s+0x2\b")
        self.assertRegex(told, r"ObjectName\s+REG_SZ\s+NT SERVICE\\" + re.escape(self.name))
        line = re.search(r"ImagePath\s+REG_(?:EXPAND_)?SZ\s+(.*)", told).group(1).strip()
        self.assertRegex(line, r'^"[A-Z]:\\[^"]*\\sbus-host\.exe" "service" "run" "' + re.escape(self.name) +
                         r'" "[A-Z]:\\[^"]*\\site\.toml" ')
        self.assertRegex(line, r'"--log-dir" "[A-Z]:\\[^"]*my logs"')
        self.assertRegex(line, r'"--state-dir" "[A-Z]:\\[^"]*\\sbus-host\\' + re.escape(self.name) + '"')
        self.assertEqual(line.replace('" "', "").count('"'), 2, "a word without quotes: " + line)

    def test_LeavesNothingBehindWhenItIsRemoved(self):
        source = ("EventLog", "Application", f"sbus-host-{self.name}")
        self.install()
        self.assertRegex(registry(*source), r"EventMessageFile\s+REG_SZ\s+.*sbus-host\.exe")
        self.start_service()
        self.assertEqual(host("service", "remove", self.name), (0, f"service {self.name} is removed\n", ""))
        self.assertEqual(registry(*source), "")
        status, _, errors = host("service", "start", self.name)
        self.assertEqual(status, 2)
        self.assertIn(f"there is no service {self.name}", errors)

    def test_IsNotInstalledForAFaultySite(self):
        self.site.write_text("[[channel]]\nid = 0\n", encoding="utf-8")
        status, _, errors = host("service", "install", self.name, self.site)
        self.assertEqual(status, 2)
        self.assertIn("error:", errors)
        self.assertEqual(registry(self.name), "")

    def test_IsNotInstalledTwice(self):
        self.install()
        status, _, errors = host("service", "install", self.name, self.site)
        self.assertEqual(status, 2)
        self.assertIn(f"there is a service {self.name} already", errors)
        self.assertNotEqual(registry(self.name), "", "the first one stays")

    def test_TellsTheStatusOfAStartThatFails(self):
        self.install()
        self.site.write_text("[[channel]]\nid = 0\n", encoding="utf-8")
        status, _, errors = host("service", "start", self.name)
        self.assertEqual(status, 2)
        self.assertIn(f"service {self.name} has ended with status 2", errors)

    def test_IsRunByTheServiceManagerAlone(self):
        status, _, errors = host("service", "run", self.name, self.site)
        self.assertEqual(status, 2)
        self.assertIn("the service manager alone runs services", errors)

    def test_LeavesOtherServicesAlone(self):
        for action in ("start", "stop", "remove"):
            status, _, errors = host("service", action, "EventLog")
            self.assertEqual(status, 2)
            self.assertIn("service EventLog is none of sbus-host", errors)


def gather(build, qt):
    """The programs, and beside them all that they import, as they are installed."""
    if BIN.exists():
        shutil.rmtree(BIN)
    BIN.mkdir(parents=True)
    for name in PROGRAMS:
        shutil.copy(build / "bin" / name, BIN)
    libraries = ("libstdc++-6.dll", "libgcc_s_seh-1.dll", "libwinpthread-1.dll")
    compiler = {os.path.dirname(subprocess.run(["x86_64-w64-mingw32-g++-posix", f"-print-file-name={name}"], check=True,
                                               capture_output=True, text=True).stdout) for name in libraries}
    subprocess.run([SOURCE / "packaging/windows/dlls.py", "gather", BIN, build / "bin", qt / "bin", *compiler], check=True)


class Outcomes(unittest.TextTestResult):
    good = {}

    def addSuccess(self, test):
        super().addSuccess(test)
        self.good[test.id().rsplit("test_", 1)[1]] = True

    def addFailure(self, test, err):
        super().addFailure(test, err)
        self.good[test.id().rsplit("test_", 1)[1]] = False

    def addError(self, test, err):
        super().addError(test, err)
        self.good[test.id().rsplit("test_", 1)[-1]] = False


def main():
    global EMULATOR, BIN
    work, qt, build = map(pathlib.Path, map(os.path.abspath, sys.argv[1:4]))
    BIN = work / "bin"
    EMULATOR = [SOURCE / "cmake/windows/under-wine", work, qt]
    gather(build, qt)
    runner = unittest.TextTestRunner(verbosity=2, resultclass=Outcomes)
    ended = unittest.main(argv=[sys.argv[0], *(f"Service.test_{name}" for name in sys.argv[4:])], testRunner=runner,
                          exit=False).result
    outcomes.write(build / "results", "Service", Outcomes.good)
    sys.exit(not ended.wasSuccessful())


if __name__ == "__main__":
    main()
