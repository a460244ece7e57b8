#!/usr/bin/env python3
"""What sbus-host needs for large sites, host and driver together, with the simulator beside it on the same machine.

host_scale.py BUILD_FOLDER [POINTS]

Prints the rows of a table; measure.py puts them into RESULTS.md.
"""

import fcntl
import os
import pathlib
import re
import subprocess
import sys
import tempfile
import time

LINES = 16
STATIONS = 4  # on each line, for the many points
REGISTERS = 16_384  # that a controller has at the most
PIPE_BYTES = 1 << 20  # what an ordinary user may have; a reader in Python comes late now and then


class Simulator:
    """The controllers of a site, on ports of the loopback."""

    def __init__(self, bin_folder, site, *options):
        self.process = subprocess.Popen([bin_folder / "sbus-sim", site, *options], stdout=subprocess.PIPE, text=True)
        for line in self.process.stdout:
            if line.startswith("ready"):
                return
        sys.exit("the simulator did not start")

    def __enter__(self):
        return self

    def __exit__(self, *_):
        self.process.terminate()
        self.process.stdout.read()
        self.process.wait()


def write_site(folder, stations, registers_of_station, scan, first_port):
    """16 Ethernet lines; the points of each RTU in a table of its own."""
    site = []
    for line in range(1, LINES + 1):
        site.append(f'[[channel]]\nid = {line}\nname = "line{line}"\ntype = "SBus-Ethernet"\n'
                    f'primary = "udp://127.0.0.1:{first_port + line}"\n')
        for station in range(1, stations + 1):
            table = folder / f"{line}-{station}.csv"
            with table.open("w") as out:
                out.write("id,name,kind,address\n")
                for number, address in enumerate(registers_of_station(line, station), 1):
                    out.write(f"{number},P{number},analog,{address}\n")
            site.append(f'[[channel.rtu]]\nid = {station}\nname = "rtu{station}"\nstation = {station}\n'
                        f'scan = {scan}\npoints = "{table.name}"\n')
    path = folder / "site.toml"
    path.write_text("\n".join(site))
    return path


def memory_of(pid):
    """Resident bytes."""
    status = pathlib.Path(f"/proc/{pid}/status").read_text()
    return int(re.search(r"VmRSS:\s*(\d+)", status).group(1)) * 1024


def processor_seconds(pid):
    """User and system time so far."""
    fields = pathlib.Path(f"/proc/{pid}/stat").read_text().rpartition(")")[2].split()
    ticks = os.sysconf("SC_CLK_TCK")
    return int(fields[11]) / ticks, int(fields[12]) / ticks


def good_points(bin_folder, site):
    """How many points of the running host are good; 0 while it cannot be asked."""
    reply = subprocess.run([bin_folder / "sbus-host", "ctl", site, "--format", "json", "status"], capture_output=True,
                           text=True).stdout
    return sum(int(count) for count in re.findall(r'"good_points":(\d+)', reply))


def many_points(bin_folder, points):
    """Loading, checking and the first values of a site with so many points."""
    each = points // (LINES * STATIONS)
    if each > REGISTERS:
        sys.exit(f"at most {LINES * STATIONS * REGISTERS} points")
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        registers = lambda line, station: (f"R{number}" for number in range(each))
        scan = '{ analog = "10s", status = "1h", integrity = "1h" }'
        site = write_site(folder, STATIONS, registers, scan, 21_000)
        begin = time.monotonic()
        subprocess.run([bin_folder / "sbus-host", "check", site], check=True, stdout=subprocess.DEVNULL)
        checked = time.monotonic() - begin
        with Simulator(bin_folder, site):
            begin = time.monotonic()
            host = subprocess.Popen([bin_folder / "sbus-host", "run", site, "--format", "json"],
                                    stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL)
            good = 0
            while good < points and time.monotonic() - begin < 120:
                time.sleep(0.1)
                good = good_points(bin_folder, site)
            passed = time.monotonic() - begin
            memory = memory_of(host.pid)
            host.terminate()
            host.wait()
        if good < points:
            sys.exit(f"only {good} of {points} points were good after {passed:.0f} s")
    yield f"{points:,} points on {LINES} lines: `check`", f"{checked:.1f} s"
    yield f"{points:,} points: from `run` to the last value good", f"{passed:.1f} s"
    yield f"{points:,} points: resident memory of `sbus-host`", f"{memory / points:.0f} bytes a point"


def moving_registers(_line, _station):
    """What the simulator moves every 100 ms."""
    for first in (0, 100, 300, 400):
        yield from (f"R{number}" for number in range(first, first + 100))
    yield from (f"T{number}" for number in range(64))


def many_changes(bin_folder, output_format, seconds=10):
    """Changes a second through to standard output, and what one of them costs."""
    with tempfile.TemporaryDirectory() as name:
        folder = pathlib.Path(name)
        scan = '{ analog = "130ms", status = "1h", integrity = "1h" }'
        site = write_site(folder, 10, moving_registers, scan, 22_000)
        with Simulator(bin_folder, site, "--move"), (folder / "errors").open("w+") as errors:
            host = subprocess.Popen([bin_folder / "sbus-host", "run", site, "--format", output_format],
                                    stdout=subprocess.PIPE, stderr=errors)
            out = host.stdout.fileno()
            fcntl.fcntl(out, fcntl.F_SETPIPE_SZ, PIPE_BYTES)
            changes = 0

            def read(until):
                nonlocal changes
                while time.monotonic() < until:
                    changes += os.read(out, PIPE_BYTES).count(b"\n")

            read(time.monotonic() + 3)  # the first values
            changes, before, begin = 0, processor_seconds(host.pid), time.monotonic()
            read(begin + seconds)
            after, passed, counted = processor_seconds(host.pid), time.monotonic() - begin, changes
            host.terminate()
            while os.read(out, PIPE_BYTES):
                pass
            host.wait()
            errors.seek(0)
            lost = re.search(r"(\d+) changes were lost", errors.read())
    user, system = (b - a for a, b in zip(before, after))
    yield (f"changes through to `--format {output_format}`",
           f"{counted / passed / 1000:.0f} thousand a second, {int(lost.group(1)) if lost else 0} lost, "
           f"{(user + system) / counted * 1e6:.2f} µs of processor time each, {system / counted * 1e6:.2f} of it in "
           "the system")


def rows(build_folder, points=1_000_000):
    bin_folder = pathlib.Path(build_folder).resolve() / "bin"
    yield from many_points(bin_folder, points)
    for output_format in ("json", "lines"):
        yield from many_changes(bin_folder, output_format)


if __name__ == "__main__":
    for what, figure in rows(sys.argv[1], *map(int, sys.argv[2:3])):
        print(f"| {what} | {figure} |", flush=True)
