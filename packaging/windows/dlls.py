#!/usr/bin/env python3
"""The libraries that Windows programs need beside them.

dlls.py gather BIN FOLDER...   copies from the folders what the files below BIN import, and what that imports in turn
dlls.py check FOLDER           looks whether each library that a file below FOLDER imports lies there or is Windows' own
"""
import re
import shutil
import subprocess
import sys
from pathlib import Path

OBJDUMP = "x86_64-w64-mingw32-objdump"

# What every Windows since 7 has.
OF_WINDOWS = {
    "advapi32.dll", "comdlg32.dll", "crypt32.dll", "d3d9.dll", "d3d11.dll", "dnsapi.dll", "dwmapi.dll", "dwrite.dll",
    "dxgi.dll", "gdi32.dll", "imm32.dll", "iphlpapi.dll", "kernel32.dll", "mpr.dll", "msvcrt.dll", "netapi32.dll",
    "ole32.dll", "oleaut32.dll", "secur32.dll", "shell32.dll", "shlwapi.dll", "user32.dll", "userenv.dll",
    "uxtheme.dll", "version.dll", "winmm.dll", "winspool.drv", "wtsapi32.dll", "ws2_32.dll",
}


def imports(file):
    text = subprocess.run([OBJDUMP, "-p", file], check=True, capture_output=True, text=True).stdout
    return re.findall(r"^\tDLL Name: (\S+)$", text, re.MULTILINE)


def programs(folder):
    return sorted(file for file in folder.rglob("*") if file.suffix.lower() in (".exe", ".dll"))


def missing(folder):
    """Pairs: a library that is neither there nor Windows' own, and a file that imports it."""
    files = programs(folder)
    present = {file.name.lower() for file in files}
    return [(name, file) for file in files for name in imports(file)
            if name.lower() not in present and name.lower() not in OF_WINDOWS]


def gather(folder, sources):
    while needs := missing(folder):
        for name in sorted({name for name, _ in needs}):
            found = [source / name for source in sources if (source / name).exists()]
            if not found:
                sys.exit(f"{name}: neither Windows' own nor in {', '.join(map(str, sources))}")
            shutil.copyfile(found[0], folder / name)


def check(folder):
    if not programs(folder):
        sys.exit(f"{folder}: no programs there")
    needs = missing(folder)
    for name, file in needs:
        print(f"{file.relative_to(folder)}: imports {name}, which is missing", file=sys.stderr)
    sys.exit(1 if needs else 0)


if __name__ == "__main__":
    if sys.argv[1] == "gather":
        gather(Path(sys.argv[2]), [Path(folder) for folder in sys.argv[3:]])
    else:
        check(Path(sys.argv[2]))
