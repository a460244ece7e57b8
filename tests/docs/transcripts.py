#!/usr/bin/env python3
"""transcripts.py REPOSITORY PROGRAM_FOLDER [FILE...]: runs what the documents show.

Every block of README.md and docs/*.md that is fenced as ```console is a transcript: lines that begin with "$ " are
commands (a "\\" at their end goes on in the next line), what follows is what they show, errors included. The blocks of
a page are one session of a shell, in a folder that has a copy of examples/. A command of sbus-sim that ends in "&" is
waited for until it says "ready"; it is ended with its page. A block whose fence names a file, as in ```toml site.toml, is
that file.

"..." stands for whatever there is: alone in a line for any lines, else for anything in its line. Times and
milliseconds may differ, and so may the number and checksum of an Ethernet telegram and how many blanks there are. 127.0.0.1 and /tmp are the test's own, so that it meets
nobody.
"""

import glob
import os
import re
import select
import shutil
import signal
import subprocess
import sys
import tempfile
import time

PATIENCE = 60  # seconds for a command; only a failure takes them
MARK = "--transcript-%d--"
FILE_MARK = "file "  # before the name, in place of a command
MASKS = (
    (re.compile(r"\d{4}-\d\d-\d\d[ T]\d\d:\d\d:\d\d(\.\d+)?(Z|[+-]\d\d:\d\d)?"), "TIME"),
    (re.compile(r"\d+\.\d\d ms"), "MS"),
    (re.compile(r"\b(Mon|Tues|Wednes|Thurs|Fri|Satur|Sun)day, week \d+"), "DAY"),
    # Telegrams over Ethernet are numbered, polls among them.
    (re.compile(r"^( *00 00 00 .. 01 00) .. ..( .*) .. ..$"), r"\1 NN NN\2 CC CC"),
    (re.compile(r" +"), " "),
)


def masked(line):
    for pattern, mask in MASKS:
        line = pattern.sub(mask, line)
    return line.strip()


def matches(expected, shown):
    """Whether the lines shown are those expected."""
    if not expected:
        return not shown
    if expected[0].strip() == "...":
        return any(matches(expected[1:], shown[count:]) for count in range(len(shown) + 1))
    pattern = re.escape(masked(expected[0])).replace(re.escape("..."), ".*")
    return bool(shown) and re.fullmatch(pattern, masked(shown[0])) is not None and matches(expected[1:], shown[1:])


def steps_of(text):
    """What the file says in its order: line number, command and expected lines, or the name of a file in place of the
    command and its lines."""
    commands, inside, is_file = [], False, False
    for number, line in enumerate(text.splitlines(), 1):
        if line.startswith("```"):
            named = re.fullmatch(r"```\w+ (\S+)", line)
            is_file = named is not None
            inside = line == "```console"
            if is_file:
                commands.append([number, FILE_MARK + named[1], []])
        elif is_file:
            commands[-1][2].append(line)
        elif inside and commands and commands[-1][1].endswith("\\") and not commands[-1][2]:
            commands[-1][1] = commands[-1][1][:-1] + line.lstrip("> ")
        elif inside and line.startswith("$ "):
            commands.append([number, line[2:], []])
        elif inside and commands:
            commands[-1][2].append(line)
    return commands


class Session:
    """A shell in a folder of its own."""

    def __init__(self, repository, programs):
        self.folder = tempfile.mkdtemp(prefix="transcript-")
        # Addresses of the loopback that no other test has.
        address = "127.%d.%d.1" % (64 + os.getpid() // 250 % 150, 1 + os.getpid() % 250)
        self.places = (("127.0.0.1", address), ("/tmp/", self.folder + "/"))
        shutil.copytree(os.path.join(repository, "examples"), os.path.join(self.folder, "examples"))
        for path in glob.glob(os.path.join(self.folder, "examples", "**", "*.toml"), recursive=True):
            with open(path, encoding="utf-8") as file:
                text = file.read()
            with open(path, "w", encoding="utf-8") as file:
                file.write(self.own(text))
        environment = dict(os.environ, PATH=programs + os.pathsep + os.environ["PATH"], LC_ALL="C.UTF-8",
                           XDG_RUNTIME_DIR=self.folder, QT_QPA_PLATFORM="offscreen")
        self.shell = subprocess.Popen(["bash", "--norc"], cwd=self.folder, env=environment, stdin=subprocess.PIPE,
                                      stdout=subprocess.PIPE, stderr=subprocess.STDOUT, start_new_session=True)
        self.count = 0

    def own(self, text):
        for shown, used in self.places:
            text = text.replace(shown, used)
        return text

    def as_shown(self, text):
        for shown, used in reversed(self.places):
            text = text.replace(used, shown)
        return text

    def write(self, name, lines):
        with open(os.path.join(self.folder, name), "w", encoding="utf-8") as file:
            file.write(self.own("\n".join(lines) + "\n"))

    def run(self, command):
        self.count += 1
        mark = MARK % self.count
        self.shell.stdin.write((self.own(command) + "\n").encode())
        output = b""
        if command.startswith("sbus-sim") and command.endswith("&"):
            self.shell.stdin.flush()
            output = self._read_to(b"ready\n", b"")
        self.shell.stdin.write(("printf '%%s\\n' '%s'\n" % mark).encode())
        self.shell.stdin.flush()
        output = self._read_to((mark + "\n").encode(), output)
        return self.as_shown(output.decode())[: -len(mark) - 1].splitlines()

    def _read_to(self, end, output):
        deadline = time.monotonic() + PATIENCE
        while not output.endswith(end):
            if not select.select([self.shell.stdout], [], [], max(0, deadline - time.monotonic()))[0]:
                raise TimeoutError(output.decode())
            piece = os.read(self.shell.stdout.fileno(), 65536)
            if not piece:
                raise EOFError(output.decode())
            output += piece
        return output

    def close(self):
        os.killpg(self.shell.pid, signal.SIGTERM)
        self.shell.stdin.close()
        self.shell.stdout.read()  # to the end of all that the shell has started
        self.shell.wait()
        shutil.rmtree(self.folder)


def check(path, repository, programs):
    """The number of commands, and what differs."""
    with open(path, encoding="utf-8") as file:
        steps = steps_of(file.read())
    count = sum(not command.startswith(FILE_MARK) for _, command, _ in steps)
    if count == 0:
        return 0, []
    faults = []
    session = Session(repository, programs)
    try:
        for line, command, expected in steps:
            if command.startswith(FILE_MARK):
                session.write(command[len(FILE_MARK):], expected)
                continue
            shown = session.run(command)
            if not matches(expected, shown):
                faults.append("%s:%d: $ %s\nexpected:\n%s\nshown:\n%s\n"
                              % (os.path.relpath(path, repository), line, command, "\n".join(expected), "\n".join(shown)))
    except (TimeoutError, EOFError) as fault:
        faults.append("%s: a command does not end: %s" % (path, fault))
    finally:
        session.close()
    return count, faults


def main(repository, programs, *files):
    files = files or [os.path.join(repository, "README.md"), *sorted(glob.glob(os.path.join(repository, "docs", "*.md")))]
    total, faults = 0, []
    for path in files:
        count, found = check(os.path.abspath(path), repository, programs)
        total += count
        faults += found
    print("\n".join(faults))
    print("%d commands, %d faults" % (total, len(faults)))
    return 1 if faults or total == 0 else 0


if __name__ == "__main__":
    sys.exit(main(os.path.abspath(sys.argv[1]), os.path.abspath(sys.argv[2]), *sys.argv[3:]))
