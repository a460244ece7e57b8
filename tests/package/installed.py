#!/usr/bin/env python3
"""installed.py PACKAGES HIGHER_PACKAGES FOLDER: installs the packages of one folder in a Debian that is made in FOLDER,
uses them, upgrades them to those of the other folder, purges them and looks at what is left. As root."""

import contextlib
import glob
import json
import os
import re
import shutil
import socket
import subprocess
import sys
import tempfile

sys.dont_write_bytecode = True
from supervisor import Service  # noqa: E402

HERE = os.path.dirname(os.path.abspath(__file__))
UNIT = "lib/systemd/system/sbus-host@.service"
SITE = "/etc/sbus/plant.toml"
# What dpkg, the loader and adduser write for themselves.
NOT_THE_PACKAGES = re.compile(
    r"/(proc|sys|dev|tmp)(/|$)|/var/lib/dpkg/|/var/cache/(ldconfig|debconf|man)(/|$)|/var/log/(dpkg|alternatives|faillog|lastlog)"
    r"|/etc/(passwd|group|shadow|gshadow|subuid|subgid)-$|/etc/\.pwd\.lock$|/etc/ld\.so\.cache$|/packages(/|$)|/run/(adduser|notify|errors)$")


def run(*command, **options):
    done = subprocess.run(command, stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False, **options)
    if done.returncode:
        raise RuntimeError("%s ends with %d:\n%s" % (" ".join(command), done.returncode, done.stdout))
    return done.stdout


def expect(condition, *what):
    if not condition:
        raise AssertionError(" ".join(str(one) for one in what))


def field(package, name):
    return run("dpkg-deb", "--field", package, name).strip()


def packages_in(folder):
    return sorted(path for path in glob.glob(os.path.join(folder, "*.deb")) if "-dbgsym_" not in path)


def needed(packages):
    """What they depend on, without each other: of alternatives the first."""
    own = {field(path, "Package") for path in packages}
    names = {one.split("|")[0].split()[0].split(":")[0] for path in packages
             for one in field(path, "Depends").split(",") if one.strip()}
    return sorted(names - own)


def machine_sources():
    """Where this machine has its packages from."""
    places = [*glob.glob("/etc/apt/sources.list.d/*.list"), *glob.glob("/etc/apt/sources.list.d/*.sources")]
    if os.path.exists("/etc/apt/sources.list"):
        places.append("/etc/apt/sources.list")
    return places


class Debian:
    """A small Debian in a folder, without network and without services."""

    def __init__(self, root, packages):
        self.root = root
        with open("/etc/os-release", encoding="utf-8") as file:
            codename = re.search("VERSION_CODENAME=(.*)", file.read())[1]
        run("mmdebstrap", "--mode=root", "--variant=minbase", "--quiet", "--include=" + ",".join(packages), codename,
            root, *machine_sources())
        run("mount", "-t", "proc", "proc", self.path("/proc"))

    def close(self):
        subprocess.run(["umount", self.path("/proc")], check=False)

    def path(self, inside):
        return os.path.join(self.root, inside.lstrip("/"))

    def run(self, *command, user=None, **options):
        become = ["chroot"] + (["--userspec=" + user] if user else []) + [self.root]
        return run(*become, *command, env={"PATH": "/usr/sbin:/usr/bin:/sbin:/bin", "LC_ALL": "C.UTF-8",
                                           "DEBIAN_FRONTEND": "noninteractive"}, **options)

    def dpkg(self, packages):
        with tempfile.TemporaryDirectory(dir=self.path("/"), prefix="packages") as folder:
            os.rename(folder, self.path("/packages"))
            for path in packages:
                shutil.copy(path, self.path("/packages"))
            names = sorted(os.path.join("/packages", os.path.basename(path)) for path in packages)
            print(self.run("dpkg", "--install", *names), end="")
            os.rename(self.path("/packages"), folder)

    def files(self):
        found = set()
        for folder, folders, names in os.walk(self.root):
            for name in folders + names:
                inside = "/" + os.path.relpath(os.path.join(folder, name), self.root)
                if not NOT_THE_PACKAGES.match(inside):
                    found.add(inside)
        return found

    def users(self):
        text = ""
        for name in ("passwd", "group", "shadow", "gshadow"):
            with open(self.path("/etc/" + name), encoding="utf-8") as file:
                text += "".join(sorted(file))
        return text


def free_port():
    with socket.socket(socket.AF_INET, socket.SOCK_DGRAM) as one:
        one.bind(("127.0.0.1", 0))
        return one.getsockname()[1]


def write_site(debian):
    """The example, edited as a person would: another port."""
    for name in ("plant.toml", "plant.csv"):
        shutil.copy(debian.path("/usr/share/doc/sbus-host/examples/" + name), debian.path("/etc/sbus"))
    with open(debian.path(SITE), encoding="utf-8") as file:
        text = file.read()
    expect("127.0.0.1:5050" in text, "the example has another address")
    with open(debian.path(SITE), "w", encoding="utf-8") as file:
        file.write(text.replace("127.0.0.1:5050", "127.0.0.1:%d" % free_port()))
    debian.run("sbus-host", "check", SITE)


@contextlib.contextmanager
def simulator(debian):
    process = subprocess.Popen(["chroot", "--userspec=nobody:nogroup", debian.root, "sbus-sim", SITE],
                               stdout=subprocess.PIPE, text=True)
    try:
        for line in process.stdout:
            if line.startswith("ready"):
                break
        else:
            raise RuntimeError("sbus-sim does not start")
        yield
    finally:
        process.terminate()
        process.communicate()


def ask(debian, *action):
    return debian.run("sbus-host", "ctl", SITE, *action)


def expect_good_values(debian):
    status = json.loads(ask(debian, "status", "--format", "json"))
    rtu = status["channels"][0]["rtus"][0]
    expect(rtu["good_points"] == 5 and rtu["connected"], "values are not good:", status)
    # A value goes to the controller and comes back.
    ask(debian, "write", "pump-house/WELL_LEVEL_CM=321")
    ask(debian, "poll")


def expect_installed_files(debian, version):
    for program in ("sbus-host", "sbus-sim"):
        told = debian.run(program, "--version")
        expect(version in told, program, "tells another version:", told)
    beside = os.path.dirname(os.path.realpath(debian.path("/usr/bin/sbus-host")).replace(
        os.path.realpath(debian.root), ""))
    for name in ("usr/share/man/man1/sbus-host.1.gz", "usr/share/man/man1/sbus-sim.1.gz",
                 "usr/share/man/man5/sbus-site.5.gz", "usr/share/bash-completion/completions/sbus-host", UNIT,
                 "usr/share/doc/sbus-host/examples/60-sbus-serial.rules"):
        # A minimal Debian leaves documents out; what dpkg lists is what the package holds.
        listed = debian.run("dpkg", "--search", "/" + name)
        expect("/" + name in listed, name, "is missing")
    for language in ("de", "fr", "it"):
        path = debian.path(os.path.join(beside, "translation", "sbusdriver_%s.qm" % language))
        expect(os.path.exists(path), path, "is missing")
    debian.run("bash", "-c", "source /usr/share/bash-completion/completions/sbus-host && complete -p sbus-host")


def expect_others_kept_out(debian):
    try:
        debian.run("sbus-host", "ctl", SITE, "status", user="nobody:nogroup")
    except RuntimeError as refused:
        expect("permission denied" in str(refused), refused)
    else:
        raise AssertionError("anybody can ask the service's host")


def expect_own_plugin_runs(debian, packages):
    """A plug-in that was built with nothing but the development package is loaded by the installed host."""
    with tempfile.TemporaryDirectory() as folder:
        prefix = os.path.join(folder, "prefix")
        for path in packages:
            if "libhalvex" in path:
                run("dpkg-deb", "--extract", path, prefix)
        run("cmake", "-S", os.path.join(HERE, "plugin"), "-B", folder + "/build", "-G", "Ninja",
            "-DCMAKE_PREFIX_PATH=" + prefix + "/usr")
        run("cmake", "--build", folder + "/build")
        shutil.copy(folder + "/build/OwnDriver.so", debian.path("/tmp"))
    done = subprocess.run(["chroot", debian.root, "sbus-host", "run", SITE, "--plugin", "/tmp/OwnDriver.so", "--for",
                           "1s"], stdout=subprocess.PIPE, stderr=subprocess.STDOUT, text=True, check=False)
    expect("the plug-in made no channel" in done.stdout, "the own plug-in does not run:", done.stdout)


def use(debian):
    service = Service(debian.root, UNIT, "plant")
    service.start()
    expect_good_values(debian)
    expect_others_kept_out(debian)
    return service


def end(service):
    status = service.stop()
    expect(status == 0, "the service's host ends with", status, service.errors())


def main(first, higher, folder):
    packages, higher_packages = packages_in(first), packages_in(higher)
    expect(len(packages) == len(higher_packages) == 4, packages, higher_packages)
    print("a Debian with what they depend on ...", flush=True)
    debian = Debian(folder, needed(packages))
    try:
        files, users = debian.files(), debian.users()
        debian.dpkg(packages)
        expect_installed_files(debian, field(packages[0], "Version"))
        write_site(debian)
        with simulator(debian):
            service = use(debian)
            start_with_machine = debian.path("/etc/systemd/system/multi-user.target.wants/sbus-host@plant.service")
            os.makedirs(os.path.dirname(start_with_machine), exist_ok=True)
            os.symlink("/" + UNIT, start_with_machine)
            print("installed and used", flush=True)

            debian.dpkg(higher_packages) # while it runs
            expect_good_values(debian)
            end(service)
            expect_installed_files(debian, field(higher_packages[0], "Version"))
            end(use(debian))
            expect_own_plugin_runs(debian, higher_packages)
            print("upgraded", flush=True)

        debian.run("dpkg", "--purge", *[field(path, "Package") for path in packages])
        left = debian.files() - files
        expect(left == {"/etc/sbus", SITE, "/etc/sbus/plant.csv"}, "left behind:", sorted(left))
        expect(not files - debian.files(), "gone:", sorted(files - debian.files()))
        expect(debian.users() == users, "users and groups are not as before:", debian.users())
        print("purged; what is left is the site that was edited", flush=True)
    finally:
        debian.close()


if __name__ == "__main__":
    main(*sys.argv[1:])
