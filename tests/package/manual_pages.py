#!/usr/bin/env python3
"""manual_pages.py PROGRAM_FOLDER REPOSITORY: the manual pages name the sub-commands and options that the programs' --help
names, and no others; and the page of the site file names the keys that docs/site-file.md names."""

import os
import re
import subprocess
import sys

OPTION = re.compile(r"(?<![\w-])--[a-z][a-z-]*")


def help_of(program, *command):
    done = subprocess.run([program, *command, "--help"], capture_output=True, text=True, check=True)
    return done.stdout


def commands_in(text):
    """The names below "Subcommands:"."""
    block = re.search(r"(?im)^subcommands:\n((?:  .*\n|\n(?=  ))*)", text)
    return set(re.findall(r"(?m)^  ([a-z][a-z-]*)", block[1])) if block else set()


def options_in(text):
    """Of the lines that describe one, whose short form may stand in front."""
    return {match[1] for match in re.finditer(r"(?m)^ +(?:-\w, ?)?(--[a-z][a-z-]*)", text)}


def sections_of(path):
    """Heading and lines of each .SH and .SS of a page, without its escapes."""
    sections, heading = {}, ""
    with open(path, encoding="utf-8") as file:
        for line in file:
            line = re.sub(r"\\f[A-Z]|\\&", "", line.rstrip("\n")).replace("\\-", "-").replace("\\(dq", '"')
            match = re.match(r"\.S[HS] (.*)", line)
            if match:
                heading = match[1].strip('"')
                sections[heading] = []
            elif heading:
                sections[heading].append(line)
    return sections


def tags_in(lines):
    """The lines behind .TP, which say what is described."""
    return [tag for mark, tag in zip(lines, lines[1:]) if mark in (".TP", ".TQ")]


def names_of(heading):
    """The sub-commands that a section is about."""
    return set(re.findall(r"[a-z][a-z-]+", re.sub("^Options of", "", heading).replace(" and ", " ")))


def different(what, told, described):
    faults = ["%s: --help names %s, the manual page does not" % (what, one) for one in sorted(told - described)]
    return faults + ["%s: the manual page describes %s, --help does not" % (what, one)
                     for one in sorted(described - told)]


def check_host(program, page):
    sections = sections_of(page)
    commands = commands_in(help_of(program))
    titles = {name for heading in sections for name in names_of(heading) if name in commands}
    faults = different("sbus-host", commands, titles)
    everywhere = set(OPTION.findall(" ".join(sections["DESCRIPTION"])))
    faults += different("sbus-host", options_in(help_of(program)), everywhere)
    for command in sorted(commands):
        own = [lines for heading, lines in sections.items() if heading == command or
               (heading.startswith("Options of") and command in names_of(heading))]
        described = {option for lines in own for tag in tags_in(lines) for option in OPTION.findall(tag)}
        # "... are those of read."
        described |= {option for lines in own for option in OPTION.findall(" ".join(lines).partition(".PP")[2])
                      if "are those of" in " ".join(lines)}
        faults += different("sbus-host " + command, options_in(help_of(program, command)) - {"--help"}, described)
    text = help_of(program, "ctl")
    described = {match[1] for tag in tags_in(sections["ctl"])
                 for match in [re.match(r'\.BI "ctl " SITE " ([a-z-]+)', tag)] if match}
    return faults + different("sbus-host ctl", commands_in(text), described)


def check_simulator(program, page):
    described = {option for tag in tags_in(sections_of(page)["OPTIONS"]) for option in OPTION.findall(tag)}
    return different("sbus-sim", options_in(help_of(program)), described)


def check_site(page, document):
    described = {tag[3:] for heading, lines in sections_of(page).items() if heading.startswith(("[", "The site"))
                 for tag in tags_in(lines)}
    with open(document, encoding="utf-8") as file:
        text = file.read()
    tables = re.findall(r"\| (?:Key|Column) \| \| Meaning \|\n\|---\|---\|---\|\n((?:\|.*\n)+)", text)
    keys = set(re.findall(r"(?m)^\| `([a-z_]+)`", "".join(tables)))
    return ["docs/site-file.md names %s, sbus-site(5) does not" % one for one in sorted(keys - described)] + \
        ["sbus-site(5) names %s, docs/site-file.md does not" % one for one in sorted(described - keys)]


def check_forms(pages):
    """Nothing that man warns of."""
    faults = []
    for page in pages:
        done = subprocess.run(["man", "--warnings", "-E", "UTF-8", "-l", "-Tutf8", "-Z", page], capture_output=True,
                              text=True, check=False, env=dict(os.environ, LC_ALL="C.UTF-8", MANROFFSEQ=""))
        if done.returncode or done.stderr:
            faults.append("%s: %s" % (page, done.stderr))
    return faults


def main(programs, repository):
    host, simulator = (os.path.join(programs, name) for name in ("sbus-host", "sbus-sim"))
    pages = [os.path.join(repository, *path) for path in (("host", "install", "sbus-host.1"),
                                                          ("simulator", "install", "sbus-sim.1"),
                                                          ("host", "install", "sbus-site.5"))]
    faults = check_host(host, pages[0]) + check_simulator(simulator, pages[1])
    faults += check_site(pages[2], os.path.join(repository, "docs", "site-file.md")) + check_forms(pages)
    print("\n".join(faults) or "the manual pages name what the programs do")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main(*sys.argv[1:]))
