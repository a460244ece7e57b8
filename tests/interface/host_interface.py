"""Compares the host symbols that the plug-in imports with the list of them in a document, or renews the list.

    host_interface.py (unlisted | unused | update) [--sanitized] DOCUMENT PLUGIN LIBRARY...

A host symbol is one that the plug-in leaves undefined and one of the libraries defines. "unlisted" fails for
imports that the document does not list, "unused" for listed symbols that are not imported. "update" writes the
lists anew, keeps all other text and puts in headings for new libraries and classes.

--sanitized: the undefined-behaviour sanitizer asks for the type of every object that is used; such types beyond the
listed ones are not the plug-in's.
"""
import argparse
import pathlib
import re
import subprocess
import sys

TYPE = "typeinfo for "


def output_of(*command, text=None):
    return subprocess.run(command, input=text, check=True, capture_output=True, encoding="utf-8").stdout


def dynamic_symbols(file, kind):
    """The mangled names, without versions, of `kind` "defined" or "undefined"."""
    lines = output_of("nm", "--dynamic", f"--{kind}-only", "--format=posix", file).splitlines()
    return {line.split()[0].split("@")[0] for line in lines}


def demangled(names):
    """A set: the variants of one constructor or destructor become one."""
    return set(output_of("c++filt", text="\n".join(sorted(names))).splitlines()) if names else set()


def library_name(file):
    """libCharlie.so.1 -> Charlie"""
    return re.sub(r"^lib|\.so.*$|\.dll$", "", pathlib.Path(file).name)


def class_of(symbol):
    """CRtu::SetConnect(bool, bool) -> CRtu, typeinfo for CRtu -> CRtu"""
    if symbol.startswith(TYPE):
        return symbol[len(TYPE):]
    return symbol.split("(")[0].rpartition("::")[0] or "functions"


def imports_of(plugin, libraries):
    """(library, class, symbol) of every host symbol."""
    wanted = dynamic_symbols(plugin, "undefined")
    result = set()
    for library in libraries:
        for symbol in demangled(wanted & dynamic_symbols(library, "defined")):
            result.add((library_name(library), class_of(symbol), symbol))
    return result


def sections_of(document):
    """The document as [heading line or None, [text lines], {symbols} or None]; a list is a fenced block."""
    sections = [[None, [], None]]
    fenced = False
    for line in document.splitlines():
        if line.startswith("```"):
            fenced = not fenced
            if fenced:
                sections[-1][2] = set()
        elif fenced:
            sections[-1][2].add(line)
        elif line.startswith("##"):
            sections.append([line, [], None])
        else:
            sections[-1][1].append(line)
    return sections


def placed(sections):
    """Each section with its library and class; None where it has none."""
    library = None
    for heading, text, symbols in sections:
        name = heading.strip("#` ") if heading else None
        if heading and not heading.startswith("###"):
            library, name = name, None
        yield library, name, heading, text, symbols


def listed_in(document):
    return {(library, name, symbol)
            for library, name, _, _, symbols in placed(sections_of(document))
            for symbol in symbols or ()}


def renewed(document, imports):
    texts = {(library, name): (heading, text) for library, name, heading, text, _ in placed(sections_of(document))}
    keys = {(library, name) for library, name, _ in imports}
    keys |= {(library, None) for library, _ in keys}
    blocks = ["\n".join(texts[(None, None)][1]).strip()]
    for library, name in sorted(keys, key=lambda key: (key[0], key[1] or "")):
        heading = f"### `{name}`" if name else f"## `{library}`"
        text = "\n".join(texts.get((library, name), (None, []))[1]).strip()
        symbols = sorted(symbol for one, other, symbol in imports if (one, other) == (library, name))
        block = "\n".join(["```", *symbols, "```"]) if symbols else ""
        blocks.append("\n\n".join(part for part in (heading, text, block) if part))
    return "\n\n".join(blocks) + "\n"


def complain(symbols, what, document):
    for library, _, symbol in sorted(symbols):
        print(f"{library}: {symbol}")
    if symbols:
        print(f"{len(symbols)} host symbols {what} {document}; "
              "\"cmake --build build/dev --target update_host_interface\" renews its lists")
    return 1 if symbols else 0


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("action", choices=["unlisted", "unused", "update"])
    parser.add_argument("--sanitized", action="store_true")
    parser.add_argument("document", type=pathlib.Path)
    parser.add_argument("plugin")
    parser.add_argument("libraries", nargs="+")
    options = parser.parse_args()
    imports = imports_of(options.plugin, options.libraries)
    if not imports:
        print(f"{options.plugin} imports nothing from the libraries")
        return 1
    document = options.document.read_text(encoding="utf-8")
    listed = listed_in(document)
    if options.action == "update":
        options.document.write_text(renewed(document, imports), encoding="utf-8")
        return 0
    if options.action == "unused":
        return complain(listed - imports, "are not imported but stand in", options.document)
    unlisted = imports - listed
    if options.sanitized:
        unlisted = {entry for entry in unlisted if not entry[2].startswith(TYPE)}
    return complain(unlisted, "are imported but do not stand in", options.document)


sys.exit(main())
