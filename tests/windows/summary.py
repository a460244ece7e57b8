#!/usr/bin/env python3
"""What ran on Windows, beside what runs on Linux.

summary.py RESULTS [LINUX-BUILD...]: RESULTS holds what GoogleTest has written of each program; the first of the
builds that is there tells the tests of Linux. Fails when a test failed, when a program left no results, and when a
test of Linux did not run and no reason in left_out.txt holds for it.
"""
import collections
import fnmatch
import json
import pathlib
import re
import subprocess
import sys
import xml.etree.ElementTree as xml

HERE = pathlib.Path(__file__).resolve().parent


def left_out():
    """Reason by pattern, in the order of the file."""
    reasons, reason = {}, None
    for line in (HERE / "left_out.txt").read_text(encoding="utf-8").splitlines():
        if line.startswith("["):
            reason = line.strip("[]")
        elif line and not line.startswith("#"):
            reasons[line] = reason
    return reasons


def results(folder):
    """Whether a case passed, by its name, of all that were run."""
    passed = {}
    for file in sorted(folder.glob("*.xml")):
        for suite in xml.parse(file).getroot().iter("testsuite"):
            for case in suite.iter("testcase"):
                if case.get("status") == "run":
                    name = f"{suite.get('name')}.{case.get('name')}"
                    passed[name] = case.find("failure") is None
    return passed


def tests_of(build):
    """The entries of a build's ctest."""
    listed = subprocess.run(["ctest", "--test-dir", build, "--show-only=json-v1"], check=True,
                            capture_output=True, text=True)
    return [test["name"] for test in json.loads(listed.stdout)["tests"]]


def is_sanitized(build):
    """Sanitizers leave some tests out, so that not every name needs to be one of theirs."""
    cache = (pathlib.Path(build) / "CMakeCache.txt").read_text(encoding="utf-8")
    return re.search("^SBUS_SANITIZE:STRING=.", cache, re.MULTILINE) is not None


def compare(passed, linux, reasons, has_all):
    """Texts of what is wrong, and how many tests each reason holds for."""
    faults, counts, used = [], collections.Counter(), set()
    for name in linux:
        matching = [pattern for pattern in reasons if fnmatch.fnmatchcase(name, pattern)]
        used.update(matching)
        if name in passed:
            continue
        if matching:
            counts[reasons[matching[0]]] += 1
        else:
            faults.append(f"{name} runs on Linux, did not run here, and no reason is given")
    unused = [pattern for pattern in reasons if pattern not in used and has_all]
    faults += [f"{pattern} in left_out.txt is the name of no test" for pattern in unused]
    return faults, counts


def main(folder, *builds):
    passed = results(pathlib.Path(folder))
    faults = [f"{name} failed" for name, good in passed.items() if not good]
    build = next((build for build in builds if (pathlib.Path(build) / "CTestTestfile.cmake").exists()), None)
    if build is None:
        print(f"{len(passed)} tests run on Windows; how many run on Linux is told once ./dev test has built them")
    else:
        linux = tests_of(build)
        more, counts = compare(passed, linux, left_out(), not is_sanitized(build))
        faults += more
        own = len(set(passed) - set(linux))
        print(f"{len(passed)} tests run on Windows, {own} of them on Windows alone; {len(linux)} run on Linux")
        print(f"Left out on Windows: {sum(counts.values())}")
        for reason, count in counts.items():
            print(f"{count:6}  {reason}")
    for fault in faults:
        print(fault, file=sys.stderr)
    return 1 if faults or not passed else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
