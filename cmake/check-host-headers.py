#!/usr/bin/env python3
"""Checks whether the plug-in can be built against a host's own headers, by compiling its sources against them.

check-host-headers.py MAPPING [--compiler COMMAND] [--qt FOLDER] [--only FOLDER/FILE]... [--output FOLDER]

MAPPING tells where the host has what the plug-in asks for, one line each; what is not named has the plug-in's own name:

    folder   include                                            searched for headers, seen from the mapping file
    header   HalvexDriverComponent/CRtu.h    devices/Unit.hpp   the plug-in's name of a header, and the host's
    name     CRtu                            DeviceUnit         of a class, function, field or enumerator
    library  Halvex::HalvexDriverComponent   lib/devices.lib    what the plug-in links
    define   HOST_API                                           for every source, as in "define HOST_API=2"

With --output the same is written as a CMake package: forwarding headers and HalvexConfig.cmake, for a build with
-DSBUS_BUILD_FRAMEWORK=OFF -DHalvex_DIR=FOLDER. The compiler is GCC or Clang, of Linux or of MinGW.
Ends with 0 when all sources compile, with 1 when something is missing or differs, with 2 for wrong usage.
"""

import argparse
import os
import re
import shlex
import subprocess
import sys
import tempfile
from concurrent.futures import ThreadPoolExecutor
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
FOLDERS = ["protocol/codec", "protocol", "rtu/mapping", "rtu", "channel", "ui", "driver"]
HOST_HEADER = re.compile(r"#include <((?:Halvex\w+|HVDBFunctions)/\w+\.h)>")
# Words that the system's headers use as well. A name is replaced in everything that a source includes.
COMMON_WORDS = {"reset", "open", "close", "send", "receive", "kind"}
LIBRARIES = ["HVDBFunctions", "HalvexAbstractDriver", "HalvexDriverComponent", "HalvexDriverLink"]


class UsageError(Exception):
    pass


class Mapping:
    def __init__(self, path):
        self.folders, self.headers, self.names, self.libraries, self.defines = [], {}, {}, {}, []
        base = path.resolve().parent
        for number, line in enumerate(path.read_text(encoding="utf-8-sig").splitlines(), 1):
            words = shlex.split(line, comments=True)
            if not words:
                continue
            what, values = words[0], words[1:]
            if len(values) != (1 if what in ("folder", "define") else 2):
                raise UsageError(f"{path}:{number}: wrong count of words behind \"{what}\"")
            if what == "folder":
                self.folders.append(base / values[0])
                if not self.folders[-1].is_dir():
                    raise UsageError(f"{path}:{number}: there is no folder {self.folders[-1]}")
            elif what == "define":
                self.defines.append(values[0])
            elif what == "header":
                self.headers[values[0]] = values[1]
            elif what == "library":
                file = base / values[1]
                self.libraries[values[0]] = file.as_posix() if file.exists() else values[1]
            elif what == "name":
                if values[0] in COMMON_WORDS:
                    raise UsageError(f"{path}:{number}: \"{values[0]}\" is a word of the system's headers too; wrap the "
                                     "host's class in a header of your own, which has it")
                self.names[values[0]] = values[1]
            else:
                raise UsageError(f"{path}:{number}: \"{what}\" is none of folder, header, name, library, define")

    # What each compilation is given besides the folders. A name stands for the host's before any header is read, since
    # the plug-in declares classes of the host that it only passes on.
    def definitions(self):
        return self.defines + [f"{ours}={theirs}" for ours, theirs in self.names.items()]

    # Where the host has what the plug-in calls by this name; None when it has not.
    def find(self, header):
        name = self.headers.get(header, header)
        return next((folder / name for folder in self.folders if (folder / name).is_file()), None)

    # As a person is to be told of it, by both names.
    def told(self, name):
        theirs = self.names.get(name)
        return f"{name} (here {theirs})" if theirs else name

    # The plug-in's name of what a compiler calls by the host's.
    def ours(self, name):
        return next((ours for ours, theirs in self.names.items() if theirs == name), name)


def plugin_sources(only=None):
    if only:
        return [ROOT / name for name in only]
    return sorted(source for folder in FOLDERS for source in (ROOT / folder).glob("*.cpp"))


# Each header of the host with the first source that wants it.
def wanted_headers():
    wanted = {}
    for folder in FOLDERS:
        for file in sorted((ROOT / folder).glob("*.[ch]*")):
            for header in HOST_HEADER.findall(file.read_text(encoding="utf-8")):
                wanted.setdefault(header, file.relative_to(ROOT))
    return wanted


def write_forwarding_headers(mapping, folder):
    for header in wanted_headers():
        found = mapping.find(header)
        if found is None or header == mapping.headers.get(header, header):
            continue
        file = folder / header
        file.parent.mkdir(parents=True, exist_ok=True)
        file.write_text(f"#pragma once\n#include <{mapping.headers[header]}>\n", encoding="utf-8")


def write_package(mapping, folder):
    write_forwarding_headers(mapping, folder / "include")
    (folder / "include").mkdir(parents=True, exist_ok=True)
    folders = ";".join(["${CMAKE_CURRENT_LIST_DIR}/include"] + [path.as_posix() for path in mapping.folders])
    lines = ["# The host's libraries under the plug-in's names. Written by check-host-headers.py.",
             "include(CMakeFindDependencyMacro)", "find_dependency(Qt5 COMPONENTS Core Widgets)"]
    for library in LIBRARIES:
        target = f"Halvex::{library}"
        links = ";".join(["Qt5::Core", "Qt5::Widgets"] + [mapping.libraries.get(target, library)])
        lines += [f"add_library({target} INTERFACE IMPORTED)",
                  f"set_target_properties({target} PROPERTIES",
                  f"    INTERFACE_INCLUDE_DIRECTORIES \"{folders}\"",
                  f"    INTERFACE_COMPILE_DEFINITIONS \"{';'.join(mapping.definitions())}\"",
                  f"    INTERFACE_LINK_LIBRARIES \"{links}\")"]
    (folder / "HalvexConfig.cmake").write_text("\n".join(lines) + "\n", encoding="utf-8")


def qt_headers(given):
    if given:
        return Path(given)
    for command in (["qmake", "-query", "QT_INSTALL_HEADERS"], ["/usr/lib/qt5/bin/qmake", "-query", "QT_INSTALL_HEADERS"]):
        try:
            found = subprocess.run(command, capture_output=True, text=True)
        except FileNotFoundError:
            continue
        if found.returncode == 0 and found.stdout.strip():
            return Path(found.stdout.strip())
    raise UsageError("Qt's headers were not found; name their folder with --qt")


# The compiler's complaints as (file, line, text, the line's source).
def complaints(output):
    found = []
    lines = output.splitlines()
    for index, line in enumerate(lines):
        match = re.match(r"(.+?):(?:(\d+):)?(?:\d+:)? (?:fatal )?error: (.*)", line)
        if not match:
            continue
        file, number, text = match.groups()
        if number is None:
            # Of a name that stands for the host's GCC tells first where the host's was given, then where it is used.
            use = next((re.match(r"(.+?):(\d+):\d+: note: in expansion of macro", later)
                        for later in lines[index:] if "note: in expansion of macro" in later), None)
            file, number = use.groups() if use else (file, 0)
        quoted = lines[index + 1] if index + 1 < len(lines) else ""
        found.append((file, int(number), text, re.sub(r"^ *\d* \|", "", quoted)))
    return found


CLASS, NAME, MEMBER, OTHER = range(4)

# What compilers write when a class or another name of the host is not there.
CLASS_PATTERNS = [
    r"'(\w+)' (?:does not name a type|has not been declared)",
    r"invalid use of incomplete type '(?:class|struct) (\w+)'",
    r"(?:aggregate|variable) '(?:const )?(?:class |struct )?(\w+)[^']*' has incomplete type",
    r"(?:unknown type name|no type named) '(\w+)'",
    r"(?:member access into|incomplete|base class has|initialization of) (?:definition of )?incomplete type '(?:const )?(?:class )?(\w+)'",
    r"unknown class name '(\w+)'",
    r"incomplete type '(?:class |struct )?(\w+)' (?:named|used) in nested name specifier",
]
NAME_PATTERN = r"'(\w+)' was not declared in this scope|use of undeclared identifier '(\w+)'"
MEMBER_PATTERNS = [
    (r"'(?:const )?(?:class |struct |union )?([\w:]+)(?: ?\*)?' has no member named '(\w+)'", "{0}::{1} is missing"),
    (r"no member named '(\w+)' in (?:namespace )?'(?:const )?([\w:]+)'", "{1}::{0} is missing"),
    (r"'(\w+)' is not a member of '([\w:]+)'", "{1}::{0} is missing"),
    (r"'([^']*?)([\w:]+::\w+)\(.*' marked 'override', but does not override",
     "the base of {1} has no virtual function of this name with these parameters"),
    (r"'(\w+)' marked 'override' but does not override any member functions",
     "{0}: the base has no virtual function of this name with these parameters"),
    (r"no matching (?:member )?function for call to '([^']+)'", "{0} takes other parameters"),
    (r"(?:conflicting|invalid covariant) return type (?:specified )?for '([^']+)'", "{0} returns another type"),
    (r"invalid (?:new-expression of|cast to) abstract class type '(\w+)'",
     "{0} would be abstract: a base has a pure virtual function that the plug-in does not know"),
    (r"allocating an object of abstract class type '(\w+)'",
     "{0} would be abstract: a base has a pure virtual function that the plug-in does not know"),
]


def own_types():
    text = "".join(file.read_text(encoding="utf-8") for folder in FOLDERS for file in (ROOT / folder).glob("*.h"))
    return set(kind or alias for kind, alias in re.findall(r"^ *(?:(?:class|struct|enum class) (\w+)\b(?! *;)|using (\w+) *=)", text, re.M))


def judge(mapping, own, complaint):
    file, number, text, quoted = complaint
    text = text.replace("‘", "'").replace("’", "'")
    try:
        place = f"{Path(file).resolve().relative_to(ROOT)}:{number}"
    except ValueError:
        place = f"{file}:{number}"
    base = re.search(r"expected class(?:-| )name", text) and re.search(r"public (\w+)", quoted)
    for match in [base] + [re.search(pattern, text) for pattern in CLASS_PATTERNS]:
        if match and mapping.ours(match[1]) not in own:
            return CLASS, f"{mapping.told(mapping.ours(match[1]))} is not declared", place
    match = re.search(NAME_PATTERN, text)
    if match:
        return NAME, f"{mapping.told(mapping.ours(match[1] or match[2]))} is not declared", place
    if "marked 'override' hides virtual member function" in text: # which one stands in the source
        function = re.search(r"(\w+)\(", quoted)
        return MEMBER, f"{function[1]}: the base has other parameters or results", place
    for pattern, sentence in MEMBER_PATTERNS:
        match = re.search(pattern, text)
        if match:
            words = [re.sub(r"\w+", lambda word: mapping.ours(word[0]), group) for group in match.groups()]
            return MEMBER, sentence.format(*words), place
    return OTHER, text, place


# In plain words. What follows from a missing class is not told beside it: a compiler tells much of that.
def tell(found):
    kinds = {kind for kind, _, _ in found}
    shown = {CLASS} if CLASS in kinds else kinds - {OTHER} if kinds - {OTHER} else kinds
    heading = {CLASS: "missing", NAME: "missing", MEMBER: "differs", OTHER: "does not compile"}
    for kind in sorted(shown):
        told = {}
        for place, sentence in sorted((place, sentence) for one, sentence, place in found if one == kind):
            told.setdefault(sentence, place)
        for sentence, place in told.items():
            print(f"{heading[kind]}: {sentence}; wanted at {place}")
    if CLASS in kinds and len(kinds) > 1:
        print("More may show when these are there: what follows from them is not told.")


def compile_sources(mapping, sources, command, qt, folder):
    write_forwarding_headers(mapping, folder)
    # Its interface identifier is a macro that the compiler does not look at, but moc does.
    probe = folder / "identifier.cpp"
    probe.write_text("#include <HalvexAbstractDriver/DriverPluginInterface.h>\n"
                     "const char* const identifier = HALVEX_DRIVER_PLUGIN_IID;\n", encoding="utf-8")
    includes = [folder] + [ROOT / name for name in FOLDERS] + mapping.folders
    includes += [qt] + [qt / module for module in ("QtCore", "QtGui", "QtWidgets")]
    arguments = shlex.split(command) + ["-std=c++17", "-fPIC", "-fsyntax-only", "-w", "-DQT_NO_CAST_TO_ASCII",
                                        "-DQT_NO_KEYWORDS", "-fmax-errors=0" if "clang" not in command
                                        else "-ferror-limit=0"]
    arguments += [f"-D{definition}" for definition in mapping.definitions()] + [f"-I{path}" for path in includes]

    def run(source):
        ended = subprocess.run(arguments + [str(source)], capture_output=True, text=True,
                               env={**os.environ, "LC_ALL": "C"})
        if ended.returncode != 0 and not complaints(ended.stderr):
            raise UsageError(f"{command} failed:\n{ended.stderr}")
        return complaints(ended.stderr)

    with ThreadPoolExecutor(os.cpu_count()) as pool:
        return [complaint for found in pool.map(run, sources + [probe]) for complaint in found]


def check(arguments):
    mapping = Mapping(Path(arguments.mapping))
    missing = [(header, source) for header, source in wanted_headers().items() if mapping.find(header) is None]
    for header, source in missing:
        theirs = mapping.headers.get(header)
        named = f"{header} (here {theirs})" if theirs else header
        print(f"missing: header {named} is in none of the folders; wanted by {source}")
    if missing:
        return 1
    sources = plugin_sources(arguments.only)
    with tempfile.TemporaryDirectory() as folder:
        found = compile_sources(mapping, sources, arguments.compiler, qt_headers(arguments.qt), Path(folder))
    if found:
        own = own_types()
        tell([judge(mapping, own, complaint) for complaint in found])
        return 1
    print(f"{', '.join(arguments.only) if arguments.only else f'All {len(sources)} sources of the plug-in'} "
          "can be compiled with these headers.")
    if arguments.output:
        write_package(mapping, Path(arguments.output).resolve())
        print(f"{arguments.output} holds the package; build with -DSBUS_BUILD_FRAMEWORK=OFF "
              f"-DHalvex_DIR={Path(arguments.output).resolve()}")
    return 0


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("mapping")
    parser.add_argument("--compiler", default="c++", help="GCC or Clang, with options if need be (c++)")
    parser.add_argument("--qt", help="Qt's include folder; without it qmake is asked")
    parser.add_argument("--only", action="append", metavar="FOLDER/FILE",
                        help="compile this source of the plug-in in place of all; may be repeated")
    parser.add_argument("--output", help="write a CMake package there")
    try:
        return check(parser.parse_args())
    except (UsageError, OSError) as failure:
        print(f"check-host-headers: {failure}", file=sys.stderr)
        return 2


if __name__ == "__main__":
    sys.exit(main())
