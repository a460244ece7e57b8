"""What a run found, counted and put into docs/testing.md."""

import collections
import dataclasses

from trial import KILLED, NOT_COMPILED, ROOT, SAME_CODE, SURVIVED, TESTS

DOCUMENT = ROOT / "docs" / "testing.md"
BEGIN, END = "<!-- table: written by ./dev mutate -->\n", "<!-- end of the table -->\n"
GOAL = 0.95
# What a sample may show of survivors that are not listed: one may be due to chance, such as a busy machine, or to code
# that is new. Three of 15 are more than a folder that reaches its goal lets expect.
SAMPLE_ALLOWANCE = 2


@dataclasses.dataclass
class Verdict:
    folder: str
    mutant: object
    outcome: str
    seconds: float
    accepted: object  # its entry in the list, if it has one


class Folder:
    """The counts of one folder. Those that did not compile and those that make the same code are no mutants."""

    def __init__(self, name, verdicts):
        self.name, self.verdicts = name, verdicts
        count = collections.Counter(verdict.outcome for verdict in verdicts)
        self.not_compiled, self.same_code, self.killed = count[NOT_COMPILED], count[SAME_CODE], count[KILLED]
        survivors = [verdict for verdict in verdicts if verdict.outcome == SURVIVED]
        self.equivalent = sum(1 for verdict in survivors if verdict.accepted and verdict.accepted.is_equivalent)
        self.accepted = sum(1 for verdict in survivors if verdict.accepted) - self.equivalent
        self.unlisted = len(survivors) - self.equivalent - self.accepted
        self.survivors = survivors
        self.seconds = sum(verdict.seconds for verdict in verdicts)

    @property
    def mutants(self):
        return self.killed + len(self.survivors)

    @property
    def share(self):
        """Of those that a test could tell from the original, how many one does."""
        distinguishable = self.mutants - self.equivalent
        return self.killed / distinguishable if distinguishable else 1.0

    def row(self):
        cells = (f"`{self.name}`", self.mutants, self.killed, f"{shown_share(self.share)}", self.equivalent,
                 self.accepted, self.unlisted, self.same_code, self.not_compiled)
        return f"| {' | '.join(map(str, cells))} |\n"

    def survivor_lines(self):
        for verdict in self.survivors:
            yield survivor_line(verdict.mutant, verdict.accepted)


def unlisted_survivors(verdicts):
    return [verdict for verdict in verdicts if verdict.outcome == SURVIVED and not verdict.accepted]


def shown_share(share):
    return f"{int(share * 1000) / 10}%"  # cut, so that 100% is all of them


def survivor_line(mutant, accepted):
    reason = "Not listed." if not accepted else \
        f"{'Equivalent' if accepted.is_equivalent else 'Accepted'}: {accepted.reason}"
    return f"- `{mutant.file}`, ``{mutant.text}``: {mutant.change}. {reason}\n"


HEAD = ("| folder | mutants | killed | share of those not equivalent | survived: equivalent | accepted | not listed "
        "| same code | did not compile |\n|---|---|---|---|---|---|---|---|---|\n")


def folder_of(file):
    return file.rpartition("/")[0]


def merged(block, folders):
    """The written part of the document with these folders' results; those of the others stay."""
    rows, survivors = {}, collections.defaultdict(list)
    for line in block.splitlines(keepends=True):
        if line.startswith("| `"):
            rows[line.split("`")[1]] = line
        elif line.startswith("- `"):
            survivors[folder_of(line.split("`")[1])].append(line)
    for folder in folders:
        rows[folder.name], survivors[folder.name] = folder.row(), list(folder.survivor_lines())
    text = HEAD + "".join(rows[name] for name in TESTS if name in rows)
    lines = [line for name in TESTS for line in survivors[name]]
    return text + ("\nThe survivors:\n\n" + "".join(lines) if lines else "")


def write_document(folders):
    before, rest = DOCUMENT.read_text(encoding="utf-8").split(BEGIN)
    block, after = rest.split(END)
    DOCUMENT.write_text(before + BEGIN + merged(block, folders) + END + after, encoding="utf-8")


def print_summary(folders):
    print(f"{'folder':16}{'mutants':>8}{'killed':>8}{'share':>8}{'equivalent':>12}{'accepted':>10}{'not listed':>12}"
          f"{'same code':>11}{'not compiled':>14}{'s each':>8}")
    for folder in folders:
        print(f"{folder.name:16}{folder.mutants:8}{folder.killed:8}{shown_share(folder.share):>8}"
              f"{folder.equivalent:12}{folder.accepted:10}{folder.unlisted:12}{folder.same_code:11}"
              f"{folder.not_compiled:14}{folder.seconds / max(1, len(folder.verdicts)):8.1f}")
