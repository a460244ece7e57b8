#!/usr/bin/env python3
"""Runs the benchmarks and makes one table of them, in RESULTS.md beside this file and on standard output.

measure.py BUILD_FOLDER
"""

import datetime
import json
import pathlib
import platform
import re
import resource
import statistics
import subprocess
import sys
import tempfile

import host_scale

BIN = pathlib.Path(sys.argv[1]) / "bin"
RESULTS = pathlib.Path(__file__).with_name("RESULTS.md")
BEGIN, END = "<!-- table: written by measure.py -->\n", "<!-- end of the table -->\n"

# Client and controller share a core: over the loopback the change of threads between two cores, which depends on the
# machine and its load, would be most of what is measured.
PINNED = "EthernetPoll|Modbus"
QUICK = "Publishing|FrameLog|PollBuilding|Exchange"
QUICK_ROUNDS, SLOW_ROUNDS = 15, 5
REGISTERS = 127
ANSWER_BYTES = 519
STEPS = 200  # runs of each step whose instructions are counted


def medians(pattern, rounds, launcher=()):
    """The median of each benchmark's figures, over rounds that take turns in a random order."""
    with tempfile.NamedTemporaryFile(suffix=".json") as out:
        subprocess.run(
            [*launcher, BIN / "sbus-benchmarks", f"--benchmark_filter={pattern}", f"--benchmark_repetitions={rounds}",
             "--benchmark_enable_random_interleaving=true", "--benchmark_min_time=0.1",
             "--benchmark_out_format=json", f"--benchmark_out={out.name}"],
            check=True, stdout=subprocess.DEVNULL)
        runs = [run for run in json.load(open(out.name))["benchmarks"] if run["run_type"] == "iteration"]
    figures = {}
    for run in runs:
        if run.get("error_occurred"):
            sys.exit(f"{run['name']}: {run['error_message']}")
        if run.get("line_share") == 0:
            print(f"{run['name']}: a poll failed; the machine is too busy to pace the line", file=sys.stderr)
            continue
        name = re.sub(r"/(iterations:1|manual_time|real_time)", "", run["run_name"])
        for key, value in run.items():
            if isinstance(value, (int, float)):
                figures.setdefault(name, {}).setdefault(key, []).append(value)
    return {name: {key: statistics.median(values) for key, values in kept.items()}
            for name, kept in figures.items()}


def instructions(step):
    """Instructions of one run of a step, without the time stamps, of which there is one a millisecond."""
    with tempfile.NamedTemporaryFile(suffix=".callgrind") as out:
        subprocess.run(
            ["valgrind", "--tool=callgrind", f"--callgrind-out-file={out.name}",
             "--toggle-collect=measuredStep*", BIN / "sbus-instructions", step, str(STEPS)],
            check=True, stderr=subprocess.DEVNULL)
        listing = subprocess.run(["callgrind_annotate", "--inclusive=yes", "--threshold=100", out.name],
                                 check=True, capture_output=True, text=True).stdout
    count = lambda pattern: sum(int(n.replace(",", "")) for n in re.findall(pattern, listing)[:1])
    stamps = (r"QDateTime::fromMSecsSinceEpoch\(long long\) ", r"CMidTime::CMidTime\(QDateTime const&, int\) ")
    return (count(r"([\d,]+) \(.*PROGRAM TOTALS")
            - sum(count(rf"([\d,]+) \(.*\?:{function}") for function in stamps)) / STEPS


def machine():
    cpu = re.search(r"model name\s*: (.*)", pathlib.Path("/proc/cpuinfo").read_text())
    cores = len(re.findall(r"^processor", pathlib.Path("/proc/cpuinfo").read_text(), re.M))
    compiler = subprocess.run(["c++", "--version"], capture_output=True, text=True).stdout.splitlines()[0]
    load = pathlib.Path("/proc/loadavg").read_text().split()[0]
    return (f"{datetime.date.today()}; {cpu.group(1) if cpu else platform.machine()}, {cores} cores; {compiler}; "
            f"{platform.system()} {re.match('[0-9.]*[0-9]', platform.release()).group()}; load {load} before the run")


def ethernet_rows(quick):
    bare = quick["EthernetPoll/bare_socket"]["real_time"]
    for name, text in (
            ("EthernetPoll/bare_socket", "the same bytes over a bare connected UDP socket: the limit"),
            ("EthernetPoll/driver", "driver, 127 registers, frame trace off"),
            ("EthernetPoll/driver_with_frame_trace", "driver, 127 registers, frame trace on"),
            ("Modbus/libmodbus", "libmodbus, 125 registers of 16 bits"),
            ("Modbus/QModbusTcpClient", "QModbusTcpClient, 125 registers of 16 bits")):
        run = quick[name]
        yield text, (f"{run['real_time']:.1f} µs, {run['real_time'] / bare:.2f} x the limit, "
                     f"{run['items_per_second'] / 1e6:.2f} million values/s")


def serial_rows(slow):
    for mode, bits in (("data", 10), ("break", 11)):
        for baud, telegrams in ((19200, 5), (115200, 20)):
            run = slow.get(f"SerialLine/{mode}/{baud}")
            share = f"{run['line_share']:.1%} of the line's time" if run else "the machine was too busy"
            yield (f"{baud} baud, {mode.capitalize()} Mode, {bits} bits a byte, polls of {telegrams} telegrams",
                   share)


def cost_rows(quick):
    for name, step, text, count, unit in (
            ("Publishing/register", "register", "a register published", REGISTERS, "value"),
            ("Publishing/flag", "flag", "a flag published", REGISTERS, "value"),
            ("FrameLog/trace_off", "trace_off", "a byte logged while nobody looks", ANSWER_BYTES, "byte"),
            ("FrameLog/trace_on", "trace_on", "a byte logged with a watcher", ANSWER_BYTES, "byte")):
        yield text, f"{quick[name]['cpu_time'] / count:.1f} ns, {instructions(step) / count:.0f} instructions"
    exchange = quick["Exchange/unwatched"]["cpu_time"]
    yield "the host's look at an exchange that nobody watches, 127 registers", f"{exchange:.0f} ns"
    yield "a whole poll of 127 registers", f"{instructions('poll'):.0f} instructions outside of the system"


def building_rows(quick):
    for points in (10000, 100000):
        run = quick[f"PollBuilding/points/{points}"]
        yield (f"the polls of {points:,} points",
               f"{run['cpu_time']:.0f} ms; {run['bytes_per_listed_point']:.0f} bytes a point in the list, "
               f"{run['bytes_per_polled_point']:.0f} with its polls")


def channel_rows(slow):
    for count in (1, 100, 1000):
        share = slow[f"IdleChannels/{count}"]["core_share_each"]
        bare = slow[f"SleepingThreads/{count}"]["core_share_each"]
        yield (f"connected and idle: {count:,}",
               f"{share / bare:.2f} x as many bare threads that sleep 10 ms; {share:.3%} of a core each, "
               f"{share * count:.1%} together")
    for count in (1, 8, 64):
        run = slow[f"PollingChannels/{count}"]
        yield (f"Ethernet, polled at every turn: {count}",
               f"{run['polls_per_second_each']:.1f} polls/s each, "
               f"{run['values_per_second'] / 1e3:.0f} thousand values/s together")


def main():
    first_line = machine()
    _, most = resource.getrlimit(resource.RLIMIT_NOFILE)
    resource.setrlimit(resource.RLIMIT_NOFILE, (most, most))  # 1,000 channels need 4,000 descriptors
    quick = {**medians(PINNED, QUICK_ROUNDS, ("taskset", "--cpu-list", "0")), **medians(QUICK, QUICK_ROUNDS)}
    slow = medians("SerialLine|Channels|SleepingThreads", SLOW_ROUNDS)
    sections = (("**Ethernet, over the loopback: one poll telegram, client and controller on one core**", ethernet_rows(quick)),
                ("**Serial, bytes paced by the simulator**", serial_rows(slow)),
                ("**Processor time**", cost_rows(quick)),
                ("**Building polls**", building_rows(quick)),
                ("**Channels at once**", channel_rows(slow)),
                ("**Large sites, the simulator beside the host**", host_scale.rows(BIN.parent)))
    lines = [first_line, "", "| what | median |", "|---|---|"]
    for title, rows in sections:
        lines.append(f"| {title} | |")
        lines += [f"| {what} | {figure} |" for what, figure in rows]
    table = "\n".join(lines) + "\n"
    before, rest = RESULTS.read_text().split(BEGIN)
    RESULTS.write_text(before + BEGIN + table + END + rest.split(END)[1])
    print(table, end="")


main()
