"""What ELF files tell the loader: where it searches for libraries, and what it closes before the program runs.

    search-paths FOLDER...                      every entry of every file below begins with $ORIGIN or is absolute
    installed-search-paths CMAKE BUILD_FOLDER   the same of an installation that is made for it
    hardening [--optimised] FILE...             relocations are read-only, code loads anywhere, stacks hold no code;
                                                --optimised: the compiler's own checks are in
    self-test COMPILER                          files that are wrong on purpose are found
"""
import os
import re
import subprocess
import sys
import tempfile


def is_elf(path):
    if os.path.islink(path) or not os.path.isfile(path):
        return False
    with open(path, "rb") as file:
        head = file.read(18)
    # Programs and libraries; object files (type 1) are not loaded.
    return head[:4] == b"\x7fELF" and head[16] in (2, 3)


def elf_files(folders):
    found = []
    for folder in folders:
        for parent, _, names in os.walk(folder):
            found += [path for path in (os.path.join(parent, name) for name in names) if is_elf(path)]
    return found


def readelf(option, path):
    return subprocess.run(["readelf", "-W", option, path], check=True, capture_output=True, text=True,
                          env=dict(os.environ, LC_ALL="C")).stdout


def search_path_faults(path):
    faults = []
    for entries in re.findall(r"Library r(?:un)?path: \[(.*)\]", readelf("-d", path)):
        for entry in entries.split(":"):
            if entry != "$ORIGIN" and not entry.startswith(("$ORIGIN/", "/")):
                faults.append(f"{path}: searches \"{entry}\", seen from the current folder, in [{entries}]")
    return faults


def loading_faults(path):
    faults = []
    segments = readelf("-l", path)
    if "GNU_RELRO" not in segments:
        faults.append("its relocations stay writable")
    if not re.search(r"GNU_STACK .* RW ", segments):
        faults.append("its stack may hold code")
    if "Elf file type is DYN" not in segments:
        faults.append("its code loads at a fixed address")
    if not re.search(r"BIND_NOW|FLAGS_1.*\bNOW\b", readelf("-d", path)):
        faults.append("its functions are bound when they are first called")
    return faults


def code_size(path):
    section = re.search(r" \.text +PROGBITS +[0-9a-f]+ [0-9a-f]+ ([0-9a-f]+)", readelf("-SW", path))
    return int(section[1], 16)


def compiler_faults(path):
    faults = []
    symbols = readelf("--dyn-syms", path)
    large = code_size(path) > 20_000  # bytes; a small library may have nothing to check
    if large and "__stack_chk_fail" not in symbols:
        faults.append("its stack is not protected")
    with open(path, "rb") as file:
        code = file.read()
    if large and "X86-64" in readelf("-h", path) and code.count(b"\xf3\x0f\x1e\xfa") < 10:  # endbr64
        faults.append("its indirect calls may lead anywhere")
    return faults


def tell(faults, checked):
    if checked == 0:
        faults = ["no ELF file was found"]
    print("\n".join(faults) if faults else f"{checked} files are as they have to be")
    return 1 if faults else 0


def check_search_paths(folders):
    files = elf_files(folders)
    for folder in folders:
        if not elf_files([folder]):
            return tell([f"{folder}: no ELF file was found"], 1)
    return tell([fault for path in files for fault in search_path_faults(path)], len(files))


def check_installation(cmake, build):
    with tempfile.TemporaryDirectory() as prefix:
        subprocess.run([cmake, "--install", build, "--prefix", prefix], check=True, stdout=subprocess.DEVNULL)
        program = os.path.join(prefix, "bin", "sbus-host")
        # It finds its libraries there, too.
        subprocess.run([program, "--help"], check=True, stdout=subprocess.DEVNULL, cwd="/")
        return check_search_paths([prefix])


def check_hardening(arguments):
    files = [name for name in arguments if name and name != "--optimised"]
    faults = []
    for path in files:
        found = loading_faults(path)
        if "--optimised" in arguments:
            found += compiler_faults(path)
        faults += [f"{path}: {fault}" for fault in found]
    if "--optimised" in arguments:
        fortified = [path for path in files if re.search(r"__\w+_chk\b", readelf("--dyn-syms", path)
                                                         .replace("__stack_chk_fail", ""))]
        if not fortified:
            faults.append("no file has checked string and memory functions")
    return tell(faults, len(files))


def self_test(compiler):
    wrong_paths = {"empty at the end": "$ORIGIN:", "empty": ":::", "relative": "lib", "with a relative one": "/lib:../lib"}
    failed = []
    with tempfile.TemporaryDirectory() as folder:
        source = os.path.join(folder, "source.cpp")
        with open(source, "w", encoding="utf-8") as file:
            file.write("int main() { return 0; }\n")

        def build(*options):
            target = os.path.join(folder, "program")
            subprocess.run([compiler, source, "-o", target, *options], check=True)
            return target

        for name, path in wrong_paths.items():
            if not search_path_faults(build(f"-Wl,-rpath,{path}")):
                failed.append(f"a search path that is {name} was not found")
        if search_path_faults(build("-Wl,-rpath,$ORIGIN:$ORIGIN/../lib:/opt/lib")):
            failed.append("a good search path was refused")
        open_program = build("-no-pie", "-Wl,-z,norelro,-z,lazy,-z,execstack")
        if len(loading_faults(open_program)) != 4:
            failed.append(f"of 4 open doors were found: {loading_faults(open_program)}")
    return tell(failed, len(wrong_paths) + 2)


def main():
    command, arguments = sys.argv[1], sys.argv[2:]
    if command == "search-paths":
        return check_search_paths(arguments)
    if command == "installed-search-paths":
        return check_installation(*arguments)
    if command == "hardening":
        return check_hardening(arguments)
    if command == "self-test":
        return self_test(*arguments)
    print(__doc__, file=sys.stderr)
    return 2


sys.exit(main())
