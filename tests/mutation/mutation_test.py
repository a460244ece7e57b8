"""Which changes are made to which code, which mutants may survive, and what is written of them."""

import types
import unittest

import accepted
import results
import trial
from mutants import Mutant, mutants_of


def changes(text):
    return [f"{mutant.line}: {mutant.change}" for mutant in mutants_of("folder/File.cpp", text)]


def body(text):
    return changes("void f() {\n" + text + "\n}\n")


def changed(text, change):
    mutant = next(mutant for mutant in mutants_of("folder/File.cpp", text) if mutant.change == change)
    return mutant.applied_to(text)


class Tokens(unittest.TestCase):
    def test_AComparisonBecomesItsNeighbourAndItsOpposite(self):
        self.assertEqual(body("return a < b;"), ["2: `<` becomes `<=`", "2: `<` becomes `>=`"])

    def test_SignsOfDeclarationsAndTemplatesStay(self):
        self.assertEqual(changes("const Media& findMedia(std::array<int, 4>* list, Type&& other);\n"), [])

    def test_CommentsAndDirectivesStay(self):
        self.assertEqual(changes('#include "File1.h"\n#define SIZE \\\n    1 + 2\n// 1 + 2\n/* 3\n4 */\n'), [])

    def test_AssertionsForTheCompilerStay(self):
        self.assertEqual(changes("static_assert(sizeof a == 4);\n"), [])

    def test_APureVirtualFunctionStays(self):
        self.assertEqual(changes("class A {\n    virtual int f() const = 0;\n};\n"), [])

    def test_AnOperatorKeepsItsName(self):
        self.assertEqual(changes("bool operator<(const A& a, const A& b);\nbool operator!() const;\n"), [])

    def test_ADestructorStaysOne(self):
        self.assertEqual(changes("A::~A() = default;\nclass A {\n    ~A() override;\n};\n"), [])

    def test_NumbersBecomeOneMoreInTheirOwnNotation(self):
        self.assertEqual(changes("constexpr quint32 a = 31U;\nconstexpr quint32 b = 0x1021;\n"
                                 "constexpr double c = 0.5;\n"),
                         ["1: `31U` becomes `32U`", "2: `0x1021` becomes `0x1022`", "3: `0.5` becomes `1.5`"])

    def test_ANumberOfAllOnesBecomesOneLessAndStillFits(self):
        self.assertEqual(changes("constexpr quint8 a = 0xFF;\n"), ["1: `0xFF` becomes `0xFE`"])

    def test_DigitsMayBeParted(self):
        self.assertEqual(changes("constexpr quint32 a = 0x8000'0000;\n"),
                         ["1: `0x8000'0000` becomes `0x80000001`"])

    def test_ATextBecomesEmptyWhateverStandsInIt(self):
        self.assertEqual(body('f("a // \\" 1 + 2");'),
                         ["2: statement dropped", '2: `"a // \\" 1 + 2"` becomes `""`'])

    def test_ACharacterBecomesAnother(self):
        self.assertEqual(changes("constexpr char a = 'C';\nconstexpr char b = '\\0';\n"),
                         ["1: `'C'` becomes `'?'`", "2: `'\\0'` becomes `'?'`"])

    def test_NegativeNumbersAndNegationsLoseTheirSign(self):
        self.assertEqual(body("return !a && b == -c;"),
                         ["2: `!` dropped", "2: `&&` becomes `||`", "2: `==` becomes `!=`", "2: `-` dropped"])

    def test_ChangesThatReadTheSameAreNumbered(self):
        self.assertEqual(body("x = a + b + c;"),
                         ["2: statement dropped", "2: `+` becomes `-`", "2: `+` becomes `-` (2)"])


class Statements(unittest.TestCase):
    def test_CallsAreDroppedAndChangePlaces(self):
        text = "void f() {\n    a();\n    b(x);\n}\n"
        self.assertEqual(changes(text), ["2: statement dropped", "2: swapped with the next statement",
                                         "3: statement dropped"])
        self.assertEqual(changed(text, "swapped with the next statement"), "void f() {\n    b(x);\n    a();\n}\n")
        self.assertEqual(changed(text, "statement dropped"), "void f() {\n    ;\n    b(x);\n}\n")

    def test_DeclarationsStay(self):
        self.assertEqual(body("const auto x = f();\nns::Type<int> y(x);\nType* const z = nullptr;\nreturn z;"), [])

    def test_ReturnsWithAValueStayAndThoseWithoutAreDropped(self):
        self.assertEqual(body("if (a)\nreturn;\nreturn b;"), ["2: condition negated", "3: statement dropped"])

    def test_AssignmentsThatKnowNothingOfEachOtherKeepTheirPlaces(self):
        self.assertEqual(body("item.a = x;\nitem.b = y;"), ["2: statement dropped", "3: statement dropped"])

    def test_AssignmentsOfWhichOneReadsTheOtherChangePlaces(self):
        self.assertIn("2: swapped with the next statement", body("a = x;\nb = a;"))

    def test_StatementsOfALambdaAreDropped(self):
        self.assertEqual(body("run([&] {\nstep();\n});\nrun([this](int i) -> bool {\nstep(i);\nreturn i;\n});"),
                         ["2: statement dropped", "2: swapped with the next statement", "3: statement dropped",
                          "5: statement dropped", "6: statement dropped"])

    def test_MembersOfAConstructorAreNoStatements(self):
        self.assertEqual(changes("A::A(int x) : a{x}, b(x) {\n    start();\n}\n"), ["2: statement dropped"])

    def test_BodiesInAClassAreChanged(self):
        self.assertEqual(changes("class A {\npublic:\n    void f() { a.clear(); }\n    B b{c};\n};\n"),
                         ["3: statement dropped"])

    def test_AStatementBehindALabelIsDroppedWithoutIt(self):
        text = "void f() {\n    switch (a) {\n    case A:\n        g();\n    }\n}\n"
        self.assertEqual(changed(text, "statement dropped"), text.replace("g();", ";"))

    def test_ABreakIsDropped(self):
        self.assertEqual(body("while (a) {\nbreak;\n}"), ["2: condition negated", "3: statement dropped"])


class Conditions(unittest.TestCase):
    def test_APlainConditionIsNegated(self):
        self.assertEqual(changed("void f() {\n    while (a || b)\n        ++c;\n}\n", "condition negated"),
                         "void f() {\n    while (!(a || b))\n        ++c;\n}\n")

    def test_AConditionWithADeclarationIsNegatedBehindIt(self):
        self.assertEqual(changed("void f() {\n    if (const int code = g())\n        h();\n}\n", "condition negated"),
                         "void f() {\n    if (const int code = g(); !(code))\n        h();\n}\n")

    def test_ASingleComparisonIsNotNegatedBesides(self):
        self.assertEqual(body("if (a == b)\nreturn;"), ["2: `==` becomes `!=`", "3: statement dropped"])

    def test_ANegatedConditionOnlyLosesItsSign(self):
        self.assertEqual(body("if (!f(a, b))\nreturn;"), ["2: `!` dropped", "3: statement dropped"])

    def test_AChoiceIsNegated(self):
        self.assertEqual(changed("int f() {\n    return g(x) && y ? a : b;\n}\n", "condition negated"),
                         "int f() {\n    return !(g(x) && y) ? a : b;\n}\n")


MUTANT = Mutant("folder/File.cpp", 7, "return a < b;", "`<` becomes `<=`", 0, 0, "")
ENTRY = accepted.entry_text(MUTANT) + "Equivalent: a and b\nare never equal.\n"


class AcceptedMutants(unittest.TestCase):
    def test_WhatIsPrintedOfASurvivorListsItWhereverItsLineStands(self):
        entry = accepted.parse(ENTRY)[MUTANT.key]
        self.assertEqual((entry.reason, entry.is_equivalent), ("a and b are never equal.", True))
        self.assertEqual(accepted.without_mutant({entry.key: entry}, [MUTANT]), [])

    def test_AnEntryWithoutItsMutantIsFound(self):
        entries = accepted.parse(ENTRY)
        self.assertEqual(accepted.without_mutant(entries, []), list(entries.values()))

    def test_AnEntryNeedsAReason(self):
        for reason in ("", "Because.\n", "Accepted: \n"):
            with self.assertRaises(accepted.Malformed):
                accepted.parse(accepted.entry_text(MUTANT) + reason)

    def test_TheListHoldsNoEntryTwice(self):
        with self.assertRaises(accepted.Malformed):
            accepted.parse(ENTRY + "\n" + ENTRY)


def verdict(outcome, entry=None, folder="rtu"):
    mutant = types.SimpleNamespace(file=f"{folder}/File.cpp", text="a();", change="statement dropped")
    return results.Verdict(folder, mutant, outcome, 1.0, entry)


class Results(unittest.TestCase):
    def test_TheShareLeavesOutOnlyWhatNoTestCanFind(self):
        equivalent = accepted.Accepted("", "", "", "why", True)
        tolerated = accepted.Accepted("", "", "", "why", False)
        folder = results.Folder("rtu", [verdict(trial.KILLED), verdict(trial.KILLED), verdict(trial.KILLED),
                                        verdict(trial.SURVIVED), verdict(trial.SURVIVED, tolerated),
                                        verdict(trial.SURVIVED, equivalent), verdict(trial.NOT_COMPILED),
                                        verdict(trial.SAME_CODE)])
        self.assertEqual(folder.share, 0.6)
        self.assertEqual(folder.row(), "| `rtu` | 6 | 3 | 60.0% | 1 | 1 | 1 | 1 | 1 |\n")

    def test_ARunOfOneFolderLeavesTheOthersInTheTable(self):
        block = results.merged("", [results.Folder("channel", [verdict(trial.SURVIVED, None, "channel")])])
        both = results.merged(block, [results.Folder("rtu", [verdict(trial.KILLED)])])
        self.assertIn("| `rtu` | 1 | 1 | 100.0% |", both)
        self.assertIn("| `channel` | 1 | 0 | 0.0% |", both)
        self.assertIn("- `channel/File.cpp`, ``a();``: statement dropped. Not listed.\n", both)

    def test_OnlySurvivorsThatAreNotListedCountInASample(self):
        listed = accepted.Accepted("", "", "", "why", False)
        unlisted = verdict(trial.SURVIVED)
        self.assertEqual(results.unlisted_survivors([verdict(trial.KILLED), unlisted, verdict(trial.SURVIVED, listed),
                                                     verdict(trial.NOT_COMPILED), verdict(trial.SAME_CODE)]),
                         [unlisted])

    def test_AShareIsNeverRoundedUp(self):
        self.assertEqual(results.shown_share(0.9499), "94.9%")


if __name__ == "__main__":
    unittest.main()
