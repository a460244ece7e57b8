"""Builds mutants and runs a folder's own tests on them.

A mutant is one changed file. The compiler is told to read it in place of the one in the source tree (a file overlay),
so nothing in the source tree or the build tree changes. What includes it is compiled anew, and linked before the
libraries that hold the unchanged objects.
"""

import contextlib
import dataclasses
import filecmp
import json
import os
import pathlib
import shlex
import shutil
import signal
import subprocess
import tempfile
import threading
import time
import xml.etree.ElementTree

ROOT = pathlib.Path(__file__).resolve().parents[2]
TREE = ROOT / "build" / "mutate"

# The plug-in's folders, and the program that tests each.
TESTS = {
    "protocol/codec": "codec_test",
    "protocol": "protocol_test",
    "rtu/mapping": "mapping_test",
    "rtu": "rtu_test",
    "channel": "channel_test",
    "ui": "ui_test",
    "driver": "driver_test",
}
# Code that its test does not link but loads.
MODULES = {"driver": "SBusDriver"}

KILLED, SURVIVED, NOT_COMPILED, SAME_CODE = "killed", "survived", "did not compile", "same code"

COMPILE_SECONDS = 120
# Of the tests on a mutant: a multiple of what they take unchanged, and what a busy machine may add.
TIME_FACTOR, TIME_RESERVE = 5, 5.0
BASELINE_SECONDS = 600
# A test case that takes longer waits rather than works: it is run after the others, beside its like.
SLOW_SECONDS = 0.1
BESIDE = 8
# What a mutant gone wild may take of the machine.
LIMITS = ["prlimit", "--core=0", f"--as={4 << 30}", f"--fsize={64 << 20}"]


class BuildFailure(Exception):
    pass


def build(folders):
    targets = [name for folder in folders for name in (TESTS[folder], MODULES.get(folder)) if name]
    # A run that was cut off may have left its own there.
    for name in (MODULES[folder] for folder in folders if folder in MODULES):
        (TREE / "bin" / f"{name}.so").unlink(missing_ok=True)
    done = subprocess.run([ROOT / "dev", "build", "mutate", "--target", *targets], stdout=subprocess.PIPE, text=True)
    if done.returncode:
        raise BuildFailure(f"the tests do not build\n{done.stdout}")


def ninja(*arguments):
    return subprocess.run(["ninja", "-C", TREE, "-t", *arguments], check=True, capture_output=True,
                          text=True).stdout


@dataclasses.dataclass(eq=False)
class Object:
    path: str
    source: str
    command: list  # without its output and its dependency file

    def plain_command(self):
        """Without the precompiled header, which fits one level of optimisation only."""
        command, skip = [], False
        for word, next_word in zip(self.command, self.command[1:] + [""]):
            if skip:
                skip = False
            elif word == "-Xclang" and (next_word == "-include-pch" or next_word.endswith(".pch")):
                skip = True
            else:
                command.append(word)
        return command


def compile_object(line):
    words = shlex.split(line)
    while "clang" not in os.path.basename(words[0]):
        words.pop(0)  # a compiler cache, which knows nothing of overlays
    words.remove("-MD")
    for option in ("-MT", "-MF", "-o"):
        at = words.index(option)
        value = words[at + 1]
        del words[at:at + 2]
    return Object(value, words[-1], words)


def link_command(lines, output):
    for line in lines:
        for part in line.split(" && "):
            words = shlex.split(part) if f"-o {output} " in part else []
            if "-c" not in words and words:
                return words
    raise BuildFailure(f"no command links {output}")


class Program:
    """How a folder's test is built, and how long it takes."""

    def __init__(self, folder):
        self.folder, self.test, self.module = folder, TESTS[folder], MODULES.get(folder)
        lines = ninja("commands", *filter(None, [self.test, self.module])).splitlines()
        self.objects = [compile_object(line) for line in lines if " -c " in line and ".cpp.o -c " in line]
        self.output = f"bin/{self.module}.so" if self.module else f"bin/{self.test}"
        self.link = link_command(lines, self.output)
        self.dependents = {}
        known, includer = {item.path: item for item in self.objects}, None
        for line in ninja("deps").splitlines():
            if line.startswith(" ") and includer:
                self.dependents.setdefault(os.path.realpath(TREE / line.strip()), []).append(includer)
            elif not line.startswith(" "):
                includer = known.get(line.split(": #deps")[0])
        self.optimised = {}  # what an optimising compiler makes of the unchanged objects, once it was asked
        self.phases = []  # filter and time limit of each run of the test
        self.guard = threading.Lock() if self.module else contextlib.nullcontext()

    def includers(self, file):
        return self.dependents.get(os.path.realpath(ROOT / file), [])

    def measure(self):
        """Runs the unchanged test, which has to pass: at once, then in the order that mutants are tried in."""
        test = TREE / "bin" / self.test
        with tempfile.TemporaryDirectory() as folder:
            report = pathlib.Path(folder) / "report.xml"
            begin = time.monotonic()
            passed = run_beside(test, [("*", BASELINE_SECONDS)], folder, [f"--gtest_output=xml:{report}"])
            took = time.monotonic() - begin
            if passed:
                cases = {f"{case.get('classname')}.{case.get('name')}": float(case.get("time"))
                         for case in xml.etree.ElementTree.parse(report).iter("testcase")}
                self.phases = phases_of(cases, took)
            # A mutant's test stands in a folder of its own, and so does this copy.
            if not passed or not self.passes(shutil.copy(test, folder), folder):
                raise BuildFailure(f"{self.test} fails without any change, so it can tell nothing: run {test}")
        return took

    def passes(self, test, folder):
        return all(run_beside(test, runs, folder, ["--gtest_fail_fast"]) for runs in self.phases)


def phases_of(cases, took):
    """Which cases are run one after the other, and then which at the same time, each with its time limit."""
    slow = sorted((name for name, seconds in cases.items() if seconds > SLOW_SECONDS), key=cases.get, reverse=True)
    shares = [slow[i::BESIDE] for i in range(BESIDE) if slow[i::BESIDE]]
    limit = lambda seconds: TIME_FACTOR * seconds + TIME_RESERVE
    quick_took = took - sum(map(cases.get, slow))
    quick = [[("-" + ":".join(slow), limit(quick_took))]] if len(slow) < len(cases) else []
    return quick + ([[(":".join(share), limit(sum(map(cases.get, share)))) for share in shares]] if slow else [])


def run_beside(test, runs, folder, arguments):
    """Whether the test passes with each of the filters, all within their time limits."""
    # Built programs search for libraries in their own folder, where those of a mutant's test are not.
    environment = {**os.environ, "QT_QPA_PLATFORM": "offscreen", "LD_LIBRARY_PATH": str(TREE / "bin")}
    with open(os.path.join(folder, "output"), "wb") as output:
        begin = time.monotonic()
        running = {subprocess.Popen([*LIMITS, test, "--gtest_brief=1", f"--gtest_filter={names}", *arguments],
                                    cwd=folder, env=environment, stdin=subprocess.DEVNULL, stdout=output,
                                    stderr=output, start_new_session=True): limit for names, limit in runs}
        started = list(running)
        try:
            while running:
                time.sleep(0.01)
                for process, limit in list(running.items()):
                    status = process.poll()
                    if status is None and time.monotonic() - begin < limit:
                        continue
                    if status != 0:
                        return False
                    del running[process]
            return True
        finally:
            for process in started:
                # With the programs that it has started.
                with contextlib.suppress(ProcessLookupError):
                    os.killpg(process.pid, signal.SIGKILL)
                process.wait()


class Trial:
    """One mutant in a folder of its own."""

    def __init__(self, program, mutant, folder):
        self.program, self.mutant, self.folder = program, mutant, folder
        self.is_header = mutant.file.endswith(".h")
        changed = os.path.join(folder, os.path.basename(mutant.file))
        text = (ROOT / mutant.file).read_text(encoding="utf-8")
        pathlib.Path(changed).write_text(mutant.applied_to(text), encoding="utf-8")
        self.overlay = os.path.join(folder, "overlay.yaml")
        pathlib.Path(self.overlay).write_text(json.dumps({
            "version": 0, "use-external-names": False,
            "roots": [{"name": str(ROOT / mutant.file), "type": "file", "external-contents": changed}]}))

    def verdict(self):
        changed = {}
        for item in self.program.includers(self.mutant.file):
            output = os.path.join(self.folder, item.path.replace("/", "_"))
            if not compiles(item.command, output, self.overlay):
                return NOT_COMPILED
            if not filecmp.cmp(output, TREE / item.path, shallow=False):
                changed[item] = output
        if not changed:
            # Of a header that says no more than that nothing in the test calls it.
            return SURVIVED if self.is_header else SAME_CODE
        built = self.link(changed)
        if built is None:
            return NOT_COMPILED
        if not self.passes(built):
            return KILLED
        is_same = not self.is_header and all(self.is_same_optimised(item) for item in changed)
        return SAME_CODE if is_same else SURVIVED

    def link(self, changed):
        replaced = {item.path: output for item, output in changed.items()}
        words = [replaced.pop(word, word) for word in self.program.link]
        # The others stand in libraries, of which the linker takes what is missing.
        first = next(i for i, word in enumerate(words) if word.endswith((".a", ".so")) and words[i - 1] != "-o")
        words[first:first] = replaced.values()
        built = os.path.join(self.folder, os.path.basename(self.program.output))
        words[words.index("-o") + 1] = built
        return built if subprocess.run(words, cwd=TREE, capture_output=True).returncode == 0 else None

    def passes(self, built):
        if not self.program.module:
            return self.program.passes(built, self.folder)
        with self.program.guard, exchanged(TREE / self.program.output, built):
            return self.program.passes(TREE / "bin" / self.program.test, self.folder)

    def is_same_optimised(self, item):
        """Whether an optimising compiler makes the same of both: then no test can tell them apart."""
        before = self.program.optimised.get(item) or self.optimised(item, None)
        self.program.optimised[item] = before
        return before is not None and before == self.optimised(item, self.overlay)

    def optimised(self, item, overlay):
        output = os.path.join(self.folder, "optimised.o")
        is_compiled = compiles(item.plain_command() + ["-O2"], output, overlay)
        return pathlib.Path(output).read_bytes() if is_compiled else None


def compiles(command, output, overlay):
    words = command[:1] + ["-w", "-o", output] + (["-ivfsoverlay", overlay] if overlay else []) + command[1:]
    try:
        return subprocess.run(words, cwd=TREE, capture_output=True, timeout=COMPILE_SECONDS).returncode == 0
    except subprocess.TimeoutExpired:
        return False


@contextlib.contextmanager
def exchanged(path, other):
    kept = path.with_suffix(".unchanged")
    os.replace(path, kept)
    try:
        subprocess.run(["cp", other, path], check=True)
        yield
    finally:
        os.replace(kept, path)


def try_mutant(program, mutant):
    """What became of it, and the seconds that took."""
    begin = time.monotonic()
    with tempfile.TemporaryDirectory(prefix="mutant-") as folder:
        verdict = Trial(program, mutant, folder).verdict()
    return verdict, time.monotonic() - begin
