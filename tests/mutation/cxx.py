"""As much of C++ as is needed to change it: tokens, and the statements of function bodies.

It relies on the format of the sources (.clang-format): a binary operator stands between blanks, the brackets of a
template and the signs of a reference or a pointer do not.
"""

import dataclasses
import re

TOKEN = re.compile(r"""
    (?P<blank>\s+|//[^\n]*|/\*.*?\*/)
  | (?P<directive>(?<![^\n])[ \t]*\#(?:\\\n|[^\n])*)
  | (?P<string>(?:u8|[uUL])?R"(?P<fence>[^(]*)\(.*?\)(?P=fence)"|(?:u8|[uUL])?"(?:\\.|[^"\\])*")
  | (?P<character>(?:u8|[uUL])?'(?:\\.|[^'\\])+')
  | (?P<number>\.?\d(?:'?[\w.]|(?<=[eEpP])[+-])*)
  | (?P<word>[A-Za-z_]\w*)
  | (?P<sign><<=|>>=|->\*|\.\.\.|::|->|\+\+|--|<<|>>|<=|>=|==|!=|&&|\|\||[-+*/%&|^]=|.)
""", re.VERBOSE | re.DOTALL)

BRACKETS = {"(": ")", "[": "]", "{": "}"}
DECLARING = set("""alignas auto bool char class const constexpr double enum explicit extern float friend inline int long
    namespace public private protected short signed static static_assert struct template thread_local typedef typename
    union unsigned using virtual void volatile""".split())
CONTROLLING = {"if", "for", "while", "switch"}


@dataclasses.dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    end: int


@dataclasses.dataclass(frozen=True)
class Statement:
    """The tokens from first up to and with last; `kind` is expression, jump or other."""
    kind: str
    first: int
    last: int


class Source:
    """A file: its tokens without directives and comments. A statement or a condition is told by its tokens' numbers."""

    def __init__(self, text):
        self.text = text
        self.tokens = [Token(match.lastgroup if match.lastgroup != "fence" else "string", match.group(),
                             match.start(), match.end())
                       for match in TOKEN.finditer(text) if match.lastgroup not in ("blank", "directive")]
        self.partner = self._partners()
        self.blocks = []  # lists of statements that stand one behind the other
        self.conditions = []  # first and last token of what an if or a loop decides by
        self._scope(0, len(self.tokens))

    def line_of(self, token):
        return self.text.count("\n", 0, self.tokens[token].start) + 1

    def reads(self, token, *texts):
        return 0 <= token < len(self.tokens) and self.tokens[token].text in texts

    def blank_before(self, token):
        return token > 0 and self.tokens[token - 1].end < self.tokens[token].start

    def blank_after(self, token):
        return token + 1 < len(self.tokens) and self.tokens[token].end < self.tokens[token + 1].start

    def between(self, first, last):
        return self.text[self.tokens[first].start:self.tokens[last].end]

    def _partners(self):
        partner, open_brackets = {}, []
        for i, token in enumerate(self.tokens):
            if token.kind != "sign":
                continue
            if token.text in BRACKETS:
                open_brackets.append(i)
            elif token.text in BRACKETS.values():
                opening = open_brackets.pop()
                if BRACKETS[self.tokens[opening].text] != token.text:
                    raise ValueError(f"line {self.line_of(i)}: '{token.text}' closes no bracket")
                partner[opening], partner[i] = i, opening
        if open_brackets:
            raise ValueError(f"line {self.line_of(open_brackets[-1])}: a bracket stays open")
        return partner

    def outermost(self, first, end):
        """The tokens from first to end that stand in no bracket opened among them."""
        i = first
        while i < end:
            yield i
            i = self.partner[i] if self.reads(i, *BRACKETS) else i + 1

    # Namespaces and classes: what stands in them is declarations, up to the bodies of functions.
    def _scope(self, first, end):
        head = i = first
        while i < end:
            if self.reads(i, ";", "}"):
                head = i + 1
            elif self.reads(i, "{"):
                self._brace(head, i)
                i = self.partner[i]
                continue
            elif self.reads(i, "(", "["):
                i = self.partner[i]
            i += 1

    def _brace(self, head, brace):
        names = [self.tokens[i].text for i in self.outermost(head, brace)]
        if "enum" in names or self._is_initialiser(names, head, brace):
            return
        if "(" in names:
            self._block(brace + 1, self.partner[brace])
        elif {"namespace", "class", "struct", "union", "extern"} & set(names):
            self._scope(brace + 1, self.partner[brace])

    def _is_initialiser(self, names, head, brace):
        if "=" in names and "operator" not in names:
            return True
        # Of a member, in the list of a constructor: the body's brace stands behind a bracket or a word like const.
        is_constructor = any(self.reads(i, ":") and self.reads(i - 1, ")") for i in self.outermost(head, brace))
        return is_constructor and self.tokens[brace - 1].kind == "word"

    def _block(self, i, end):
        statements = []
        while i < end:
            statement = self._statement(i)
            statements.append(statement)
            i = statement.last + 1
        self.blocks.append(statements)

    def _statement(self, i):
        first = i
        if self.reads(i, "case") or (self.reads(i, "default") and self.reads(i + 1, ":")):
            colon = next(j for j in self.outermost(i, len(self.tokens)) if self.reads(j, ":"))
            return Statement("other", first, colon)
        if self.reads(i, "{"):
            self._block(i + 1, self.partner[i])
            return Statement("other", first, self.partner[i])
        if self.reads(i, *CONTROLLING):
            return self._controlled(first)
        if self.reads(i, "do"):
            inner = self._alone(i + 1)
            paren = inner.last + 2
            self.conditions.append((paren + 1, self.partner[paren] - 1))
            return Statement("other", first, self.partner[paren] + 1)
        last = next((j for j in self.outermost(i, len(self.tokens)) if self.reads(j, ";")))
        self._lambdas(i, last)
        return Statement(self._kind(i, last), first, last)

    def _controlled(self, first):
        paren = first + 2 if self.reads(first + 1, "constexpr") else first + 1
        inside, end = paren + 1, self.partner[paren]
        self._lambdas(inside, end)
        parts = [j for j in self.outermost(inside, end) if self.reads(j, ";")]
        if self.reads(first, "for"):
            if len(parts) == 2 and parts[0] + 1 < parts[1]:
                self.conditions.append((parts[0] + 1, parts[1] - 1))
        elif not self.reads(first, "switch"):
            self.conditions.append((parts[-1] + 1 if parts else inside, end - 1))
        inner = self._alone(end + 1)
        if self.reads(first, "if") and self.reads(inner.last + 1, "else"):
            inner = self._alone(inner.last + 2)
        return Statement("other", first, inner.last)

    def _alone(self, i):
        """A statement that has no neighbours, such as the one of an if without braces."""
        statement = self._statement(i)
        if not self.reads(i, "{"):
            self.blocks.append([statement])
        return statement

    def _lambdas(self, first, end):
        i = first
        while i < end:
            if self.reads(i, "{") and self._begins_lambda(i):
                self._block(i + 1, self.partner[i])
                i = self.partner[i]
            i += 1

    def _begins_lambda(self, brace):
        i = brace - 1
        while not self.reads(i, ")", "]", ";", "{", "}") and brace - i < 8:
            i -= 1  # mutable, or the type of what it gives
        if i != brace - 1 and not self.reads(i + 1, "mutable", "noexcept", "->"):
            return False
        return self.reads(i, "]") or (self.reads(i, ")") and self.reads(self.partner[i] - 1, "]"))

    def _kind(self, i, last):
        if self.reads(i, "break", "continue") or (self.reads(i, "return") and i + 1 == last):
            return "jump"
        if self.tokens[i].text in DECLARING | {"return", "throw", "goto", ";", "Q_UNUSED", "co_return"}:
            return "other"
        return "other" if self._declares(i, last) else "expression"

    def _declares(self, i, last):
        """Whether a type with a name behind it begins here: words, then another word."""
        if self.reads(i, "delete", "Q_EMIT", "emit", "new"):
            return False
        while i < last:
            if self.tokens[i].kind != "word":
                return False
            i += 1
            if self.reads(i, "<") and not self.blank_before(i):
                i = self.behind_template(i)
            if self.reads(i, "::"):
                i += 1
                continue
            while self.reads(i, "*", "&", "&&", "const"):
                i += 1
            return i < last and self.tokens[i].kind == "word"
        return False

    def behind_template(self, i):
        """The token behind the bracket that closes the one at i."""
        depth = 0
        while i < len(self.tokens):
            text = self.tokens[i].text
            if text in BRACKETS:
                i = self.partner[i]
            elif not (self.blank_before(i) and self.blank_after(i)):
                depth += {"<": 1, ">": -1, ">>": -2}.get(text, 0)
            elif text in (">", ">>") and not self.blank_before(i):
                depth -= len(text)
            i += 1
            if depth <= 0:
                return i
        return i
