"""Of the source files named on the standard input, print those that the compilation database knows.

The others are for another platform (SerialBreakWindows.cpp on Linux), and cannot be analysed here.
"""
import json
import os
import sys

with open(sys.argv[1], encoding="utf-8") as database:
    known = {os.path.realpath(os.path.join(entry["directory"], entry["file"])) for entry in json.load(database)}
for line in sys.stdin:
    path = line.strip()
    if os.path.realpath(path) in known:
        print(path)
