"""A supervisor of services for one service: starts what a unit file of systemd says, as systemd would as far as user,
groups, folders, environment and the protocol of $NOTIFY_SOCKET go. Confinement is not tried."""

import os
import re
import select
import shutil
import socket
import subprocess
import time

PATIENCE = 60  # seconds; only a failure takes them
FOLDERS = {"Runtime": "run", "State": "var/lib", "Logs": "var/log"}


def settings_of(unit_file, instance):
    """The last value of each key of a unit, with the specifiers of an instance filled in."""
    specifiers = {"%i": instance, "%t": "/run", "%S": "/var/lib", "%L": "/var/log"}
    settings = {}
    with open(unit_file, encoding="utf-8") as file:
        for line in file:
            key, sign, value = line.strip().partition("=")
            if sign and not key.startswith("#"):
                settings[key] = re.sub("%[itSL]", lambda match: specifiers[match[0]], value)
    return settings


class Service:
    """One run of a service below `root`, which has users and groups of its own."""

    def __init__(self, root, unit_file, instance):
        self.root, self.settings = root, settings_of(os.path.join(root, unit_file), instance)
        self.user = self._number("passwd", self.settings["User"])
        self.group = self._number("group", self.settings["Group"])
        self.groups = [self._number("group", name) for name in self.settings["SupplementaryGroups"].split()]
        self.environment = {"PATH": "/usr/bin:/bin", "LANG": "C.UTF-8", "NOTIFY_SOCKET": "/run/notify",
                            "WATCHDOG_USEC": str(int(self.settings["WatchdogSec"]) * 1000000)}
        for kind, place in FOLDERS.items():
            self._make_folder(kind, place)
        self.heard, self.process = [], None
        self.socket = socket.socket(socket.AF_UNIX, socket.SOCK_DGRAM)
        path = os.path.join(root, "run/notify")
        if os.path.exists(path):
            os.unlink(path)
        self.socket.bind(path)
        os.chmod(path, 0o666)

    def _number(self, table, name):
        with open(os.path.join(self.root, "etc", table), encoding="utf-8") as file:
            return next(int(line.split(":")[2]) for line in file if line.startswith(name + ":"))

    def _make_folder(self, kind, place):
        name = self.settings[kind + "Directory"]
        path = os.path.join(self.root, place, name)
        os.makedirs(path, mode=0o755, exist_ok=True)
        os.chown(path, self.user, self.group)
        os.chmod(path, int(self.settings[kind + "DirectoryMode"], 8))
        self.environment[kind.upper() + "_DIRECTORY"] = "/" + os.path.join(place, name)

    def start(self):
        def become():
            os.chroot(self.root)
            os.chdir("/")
            os.umask(int(self.settings["UMask"], 8))
            os.setgroups(self.groups)
            os.setgid(self.group)
            os.setuid(self.user)

        # What the journal reads: a file here.
        self.errors_path = os.path.join(self.root, "run/errors")
        with open(self.errors_path, "wb") as errors:
            found = os.fstat(errors.fileno())
            environment = dict(self.environment, JOURNAL_STREAM="%d:%d" % (found.st_dev, found.st_ino))
            self.process = subprocess.Popen(self.settings["ExecStart"].split(), env=environment, preexec_fn=become,
                                            stdin=subprocess.DEVNULL, stdout=subprocess.DEVNULL, stderr=errors)
        self.wait_for("READY=1")

    def wait_for(self, line):
        deadline = time.monotonic() + PATIENCE
        while line not in self.heard:
            if not select.select([self.socket], [], [], max(0, deadline - time.monotonic()))[0]:
                raise TimeoutError("%s does not come; heard: %s; errors: %s" % (line, self.heard, self.errors()))
            self.heard += self.socket.recv(4096).decode().splitlines()

    def errors(self):
        with open(self.errors_path, encoding="utf-8") as file:
            return file.read()

    def stop(self):
        self.process.terminate()
        self.wait_for("STOPPING=1")
        status = self.process.wait(PATIENCE)
        self.socket.close()
        # As with RuntimeDirectoryPreserve=no.
        shutil.rmtree(os.path.join(self.root, "run", self.settings["RuntimeDirectory"]))
        return status
