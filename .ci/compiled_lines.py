"""How many lines the compiler reads for a build, headers and all: what a build costs, whatever else the machine does.

compiled_lines.py COMPILE_COMMANDS MOST: fails when there are more than MOST.
"""

import json
import re
import shlex
import subprocess
import sys


def lines_of(entry):
    command = [word for word in shlex.split(entry["command"]) if not word.endswith("ccache")]
    output = command.index("-o")
    command[output:output + 2] = ["-E", "-P"]
    text = subprocess.run(command, cwd=entry["directory"], check=True, capture_output=True).stdout
    return len(re.findall(rb"[^\s]\n", text))


def main():
    commands, most = sys.argv[1], int(sys.argv[2])
    with open(commands, encoding="utf-8") as file:
        entries = json.load(file)
    total = sum(lines_of(entry) for entry in entries)
    print(f"{len(entries)} files are compiled, {total} lines with their headers; {most} are allowed")
    if total > most:
        sys.exit("More has to be compiled than is allowed: which sources stand alone, and which headers have come?")


main()
