"""The mutants of a file: one small change each, such as a programmer makes by mistake."""

import collections
import dataclasses
import re

from cxx import BRACKETS, Source

OPERATORS = {
    "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "%": ["*"],
    "<<": [">>"], ">>": ["<<"], "&": ["|"], "|": ["&"], "^": ["|"],
    "+=": ["-="], "-=": ["+="], "*=": ["/="], "/=": ["*="], "%=": ["*="],
    "<<=": [">>="], ">>=": ["<<="], "&=": ["|="], "|=": ["&="], "^=": ["|="],
    "<": ["<=", ">="], "<=": ["<", ">"], ">": [">=", "<="], ">=": [">", "<"],
    "==": ["!="], "!=": ["=="], "&&": ["||"], "||": ["&&"],
}
COMPARISONS = {"<", "<=", ">", ">=", "==", "!="}
BINARY = set(OPERATORS) | {"=", "?", ":"}
STEPS = {"++": "--", "--": "++"}
TRUTH = {"true": "false", "false": "true"}
# What stands in their brackets is no code that runs.
NO_CODE = {"static_assert", "Q_PLUGIN_METADATA", "Q_INTERFACES", "Q_DECLARE_INTERFACE", "Q_DECLARE_METATYPE",
           "SIGNAL", "SLOT", "alignas", "decltype", "noexcept"}


@dataclasses.dataclass(frozen=True)
class Mutant:
    file: str
    line: int    # for people; what an accepted one is known by is file, text and change
    text: str    # the line as it stands, without indentation
    change: str
    start: int   # what is replaced of the file, and by what
    end: int
    replacement: str

    @property
    def key(self):
        return self.file, self.text, self.change

    def applied_to(self, source):
        return source[:self.start] + self.replacement + source[self.end:]


def mutants_of(file, text):
    """In the order of the file. Changes that read the same are told apart by a number."""
    source = Source(text)
    lines = text.split("\n")
    seen, found = collections.Counter(), []
    for start, end, replacement, change in sorted(set(changes(source))):
        number = text.count("\n", 0, start) + 1
        line = lines[number - 1].strip()
        seen[line, change] += 1
        count = seen[line, change]
        found.append(Mutant(file, number, line, change if count == 1 else f"{change} ({count})", start, end,
                            replacement))
    return found


def changes(source):
    yield from token_changes(source)
    for first, last in source.conditions + choices(source):
        yield from negations(source, first, last)
    for block in source.blocks:
        yield from statement_changes(source, block)


def token_changes(source):
    left_out = no_code(source)
    for i, token in enumerate(source.tokens):
        if i in left_out:
            continue
        for text in replacements(source, i, token):
            change = f"`{token.text}` becomes `{text}`" if text else f"`{token.text}` dropped"
            yield token.start, token.end, text, change


def replacements(source, i, token):
    if token.kind == "number":
        # A pure virtual function is made by no value.
        is_pure = source.reads(i - 1, "=") and source.reads(i - 2, ")", "const", "override", "noexcept")
        return [] if is_pure else other_number(token.text)
    if token.kind == "string":
        return [re.sub(r'".*"', '""', token.text, flags=re.DOTALL)] if not token.text.endswith('""') else []
    if token.kind == "character":
        return [other_character(token.text)]
    if token.kind == "word":
        return [TRUTH[token.text]] if token.text in TRUTH else []
    if token.text in STEPS:
        return [STEPS[token.text]]
    if source.blank_before(i) and source.blank_after(i):
        return OPERATORS.get(token.text, [])
    is_sign = token.text in ("!", "-") or (token.text == "~" and source.reads(i - 1, "(", "=", "&", "return"))
    return [""] if is_sign and not source.blank_after(i) and not source.reads(i - 1, "operator") else []


def other_number(text):
    """One more; of a number whose bits are all ones one less, so that it still fits its type."""
    digits, suffix = re.fullmatch(r"(0[xX][\da-fA-F']+|0[bB][01']+|[\d']+(?:\.[\d']*)?|\.[\d']+)(.*)", text).groups()
    digits = digits.replace("'", "")
    if "." in digits or re.match(r"[eE]", suffix):
        return [str(float(digits) + 1) + suffix]
    number = int(digits, 16 if digits[:2] in ("0x", "0X") else 2 if digits[:2] in ("0b", "0B") else 10)
    if digits[:2] in ("0x", "0X"):
        is_ones = number & (number + 1) == 0 and number > 1
        return [f"0x{number - 1 if is_ones else number + 1:X}{suffix}"]
    return [str(number + 1) + suffix]


def other_character(text):
    if "\\" in text:
        return re.sub(r"'.*'", "'?'", text)
    return re.sub(r"'.*'", "'?'" if "'?'" not in text else "'!'", text)


def no_code(source):
    """The tokens that are no code which runs: brackets of templates, of assertions for the compiler and such."""
    left_out = set()
    for i, token in enumerate(source.tokens):
        if token.text in NO_CODE and source.reads(i + 1, "("):
            left_out.update(range(i, source.partner[i + 1] + 1))
        elif token.text == "<" and not source.blank_after(i) and not source.reads(i - 1, "operator"):
            left_out.update(range(i, source.behind_template(i)))
        elif token.text == "[" and source.reads(i + 1, "["):
            left_out.update(range(i, source.partner[i] + 1))
    return left_out


def choices(source):
    """The conditions before each `?`."""
    found = []
    for i in range(len(source.tokens)):
        if not source.reads(i, "?"):
            continue
        first = i
        while first > 0 and not source.reads(first - 1, "return", "=", ",", ";", "?", ":", "+=", "-=", *BRACKETS):
            first = source.partner[first - 1] if first - 1 in source.partner else first - 1
        found.append((first, i - 1))
    return found


def negations(source, first, last):
    start, end = source.tokens[first].start, source.tokens[last].end
    outermost = list(source.outermost(first, last + 1))
    signs = [source.tokens[i].text for i in outermost
             if source.tokens[i].text in BINARY and source.blank_before(i) and source.blank_after(i)]
    if "=" in signs:
        equals = next(i for i in outermost if source.reads(i, "="))
        name = source.tokens[equals - 1].text
        yield start, end, f"{source.between(first, last)}; !({name})", "condition negated"
    # Of a single comparison, or of what is negated, the change of the sign does the same.
    elif not (len(signs) == 1 and signs[0] in COMPARISONS) and not (source.reads(first, "!") and not signs):
        yield start, end, f"!({source.between(first, last)})", "condition negated"


def statement_changes(source, block):
    for statement in block:
        if statement.kind != "other":
            yield (source.tokens[statement.first].start, source.tokens[statement.last].end, ";",
                   "statement dropped")
    for one, next_one in zip(block, block[1:]):
        if one.kind == next_one.kind == "expression" and order_matters(source, one, next_one):
            start, middle = source.tokens[one.first].start, source.tokens[one.last].end
            again, end = source.tokens[next_one.first].start, source.tokens[next_one.last].end
            yield (start, end, source.text[again:end] + source.text[middle:again] + source.text[start:middle],
                   "swapped with the next statement")


def order_matters(source, one, other):
    """Not for equal statements, nor for two assignments without a call of which neither names what the other sets."""
    texts = [source.between(s.first, s.last) for s in (one, other)]
    if texts[0] == texts[1]:
        return False
    targets = []
    for text in texts:
        match = re.fullmatch(r"([\w.]+|\w+(?:->\w+)+) = [^()]*;", text)
        if not match:
            return True
        targets.append(match.group(1))
    return any(re.search(rf"\b{re.escape(target)}\b", text) for target, text in zip(targets, reversed(texts)))
