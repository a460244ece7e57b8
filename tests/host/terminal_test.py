#!/usr/bin/env python3
"""terminal_test.py SBUS_HOST: the host's table on a real terminal, started by a shell's job control: that the terminal
is as it was after a rest with Ctrl-Z and after the end, and what the environment says is obeyed."""

import os
import pty
import re
import select
import signal
import sys
import tempfile
import termios
import time
import unittest

HOST = None
PATIENCE = 60  # seconds; only a failing test waits for them
ENTER, LEAVE = b"\x1b[?1049h", b"\x1b[?1049l"
SITE = """[[channel]]
id = 1
name = "works"
type = "SBus-Ethernet"
primary = "udp://127.0.0.1:9"
[[channel.rtu]]
id = 1
name = "tank"
station = 1
timeout = "100ms"
[[channel.rtu.point]]
id = 1
name = "LEVEL"
kind = "analog"
address = "R1"
"""


class Terminal:
    """A terminal with a job in its foreground, which can be stopped and continued as a shell does it."""

    def __init__(self, arguments, **environment):
        self.shown = b""
        state, told = os.pipe()
        self.shell, self.screen = pty.fork()
        if self.shell == 0:
            self._be_shell(arguments, environment, told)
        os.close(told)
        self.state = state
        self.job = int(self._line())
        self.before = termios.tcgetattr(self.screen)

    @staticmethod
    def _be_shell(arguments, environment, told):
        signal.signal(signal.SIGTTOU, signal.SIG_IGN)
        # Blocked, so that one which comes before it is waited for is not missed.
        signal.pthread_sigmask(signal.SIG_BLOCK, {signal.SIGUSR1})
        job = os.fork()
        if job == 0:
            os.setpgid(0, 0)
            os.tcsetpgrp(0, os.getpid())
            signal.signal(signal.SIGTTOU, signal.SIG_DFL)
            signal.pthread_sigmask(signal.SIG_UNBLOCK, {signal.SIGUSR1})
            kept = {name: value for name, value in os.environ.items() if name not in ("TERM", "NO_COLOR")}
            os.execve(arguments[0], arguments, {**kept, **environment})
        os.write(told, b"%d\n" % job)
        while True:
            _, status = os.waitpid(job, os.WUNTRACED)
            if os.WIFSTOPPED(status):
                os.tcsetpgrp(0, os.getpid())
                os.write(told, b"stopped\n")
                signal.sigwait({signal.SIGUSR1})  # fg
                os.tcsetpgrp(0, job)
                os.killpg(job, signal.SIGCONT)
                continue
            os.write(told, b"ended %d\n" % (os.WEXITSTATUS(status) if os.WIFEXITED(status) else -1))
            signal.pause()

    def _line(self):
        """What the shell tells next of its job; what the job shows meanwhile is read."""
        line, end = b"", time.monotonic() + PATIENCE
        while not line.endswith(b"\n"):
            ready, _, _ = select.select([self.state, self.screen], [], [], max(0, end - time.monotonic()))
            if not ready:
                raise AssertionError("nothing came; shown: %r" % self.shown)
            if self.screen in ready:
                self.shown += os.read(self.screen, 65536)
            if self.state in ready:
                line += os.read(self.state, 1)
        while select.select([self.screen], [], [], 0)[0]:
            self.shown += os.read(self.screen, 65536)
        return line.decode().strip()

    def awaits(self, text):
        end = time.monotonic() + PATIENCE
        while text not in self.shown:
            if not select.select([self.screen], [], [], max(0, end - time.monotonic()))[0]:
                raise AssertionError("%r did not come; shown: %r" % (text, self.shown))
            self.shown += os.read(self.screen, 65536)

    def type(self, keys):
        os.write(self.screen, keys)

    def stopped_or_ended(self):
        return self._line()

    def foreground(self):
        os.kill(self.shell, signal.SIGUSR1)

    def echoes_lines(self):
        flags = termios.tcgetattr(self.screen)[3]
        return bool(flags & termios.ECHO and flags & termios.ICANON)

    def close(self):
        for process in (self.job, self.shell):
            try:
                os.kill(process, signal.SIGKILL)
            except ProcessLookupError:
                pass
        os.waitpid(self.shell, 0)
        os.close(self.screen)
        os.close(self.state)


class TableOnATerminal(unittest.TestCase):
    def setUp(self):
        self.folder = tempfile.TemporaryDirectory()
        self.addCleanup(self.folder.cleanup)
        self.site = os.path.join(self.folder.name, "site.toml")
        with open(self.site, "w", encoding="utf-8") as file:
            file.write(SITE)

    def start(self, *options, **environment):
        terminal = Terminal([HOST, "run", self.site, "--no-control", *options], **environment)
        self.addCleanup(terminal.close)
        return terminal

    def test_is_left_right_at_the_end_with_the_summary_and_the_messages_behind_it(self):
        terminal = self.start(TERM="xterm")
        terminal.awaits(b"no answer within 100 ms")
        self.assertFalse(terminal.echoes_lines())
        terminal.type(b"\x03")
        self.assertEqual(terminal.stopped_or_ended(), "ended 1")
        self.assertTrue(terminal.echoes_lines())
        behind = terminal.shown.split(LEAVE)[-1].decode()
        self.assertRegex(behind, r"(?s)RTU +requests.*tank.*\n\d{4}-\d\d-\d\d [0-9:.]+[+-]\d\d:\d\d  channel 1 .*no answer")

    def test_rests_and_goes_on(self):
        terminal = self.start(TERM="xterm")
        terminal.awaits(b"LEVEL")
        terminal.type(b"\x1a")
        self.assertEqual(terminal.stopped_or_ended(), "stopped")
        self.assertTrue(terminal.shown.endswith(LEAVE), terminal.shown[-80:])
        self.assertTrue(terminal.echoes_lines())
        terminal.shown = b""
        terminal.foreground()
        terminal.awaits(ENTER)
        terminal.awaits(b"LEVEL")
        self.assertFalse(terminal.echoes_lines())
        terminal.type(b"?")
        terminal.awaits(b"Ctrl-Z lets it rest")
        terminal.type(b"\x03")
        self.assertEqual(terminal.stopped_or_ended(), "ended 1")
        self.assertTrue(terminal.echoes_lines())

    def test_obeys_keys(self):
        terminal = self.start(TERM="xterm")
        terminal.awaits(b"LEVEL")
        terminal.type(b"/LEV")
        terminal.awaits(b"search: LEV_")
        terminal.type(b"\rl")
        terminal.awaits(b"changes of ends")
        terminal.type(b"\x03")
        self.assertEqual(terminal.stopped_or_ended(), "ended 1")

    def test_has_no_colours_where_they_are_not_wanted(self):
        terminal = self.start("--for", "1s", TERM="xterm", NO_COLOR="1")
        self.assertEqual(terminal.stopped_or_ended(), "ended 1")
        self.assertIn(ENTER, terminal.shown)
        self.assertIsNone(re.search(rb"\x1b\[[0-9;]*3[0-7]m", terminal.shown))

    def test_gives_way_to_lines_where_the_cursor_cannot_be_moved(self):
        for environment in ({"TERM": "dumb"}, {"TERM": ""}, {}):
            terminal = self.start("--for", "1s", **environment)
            self.assertEqual(terminal.stopped_or_ended(), "ended 1")
            self.assertNotIn(b"\x1b", terminal.shown)
            self.assertIn(b"tank/LEVEL (R1)  never read", terminal.shown)

    def test_is_refused_where_the_cursor_cannot_be_moved(self):
        terminal = self.start("--format", "table", TERM="dumb")
        self.assertEqual(terminal.stopped_or_ended(), "ended 2")
        self.assertIn(b"choose --format lines", terminal.shown)


if __name__ == "__main__":
    HOST = sys.argv.pop(1)
    unittest.main()
