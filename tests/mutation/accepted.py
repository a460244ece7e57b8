"""The mutants that may survive: accepted.txt beside this file."""

import dataclasses
import pathlib

FILE = pathlib.Path(__file__).with_name("accepted.txt")


class Malformed(Exception):
    pass


@dataclasses.dataclass(frozen=True)
class Accepted:
    file: str
    text: str
    change: str
    reason: str
    is_equivalent: bool

    @property
    def key(self):
        return self.file, self.text, self.change


def parse(text):
    entries = {}
    for paragraph in text.split("\n\n"):
        lines = [line.strip() for line in paragraph.split("\n")]
        lines = [line for line in lines if line and not line.startswith("#")]
        if not lines:
            continue
        if len(lines) < 4:
            raise Malformed(f"file, line, change and reason are wanted: {' / '.join(lines)}")
        kind, _, reason = " ".join(lines[3:]).partition(": ")
        if kind not in ("Equivalent", "Accepted") or not reason.strip():
            raise Malformed(f"no reason that begins with 'Equivalent: ' or 'Accepted: ': {' / '.join(lines[:3])}")
        entry = Accepted(*lines[:3], reason, kind == "Equivalent")
        if entry.key in entries:
            raise Malformed(f"listed twice: {' / '.join(lines[:3])}")
        entries[entry.key] = entry
    return entries


def entry_text(mutant):
    """What a mutant needs to be listed, but for the reason."""
    return f"{mutant.file}\n    {mutant.text}\n    {mutant.change}\n"


def without_mutant(entries, mutants):
    keys = {mutant.key for mutant in mutants}
    return [entry for key, entry in entries.items() if key not in keys]
