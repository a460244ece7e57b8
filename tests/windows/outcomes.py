"""Outcomes of tests, written as GoogleTest does: summary.py counts both alike."""


def write(folder, suite, outcomes):
    """The outcomes are truth by name."""
    cases = "".join(
        f'<testcase name="{name}" status="run">{"" if good else failure}</testcase>' for name, good in outcomes.items())
    name = suite if len(outcomes) > 1 else f"{suite}.{next(iter(outcomes))}"
    (folder / f"{name}.xml").write_text(f'<testsuites><testsuite name="{suite}">{cases}</testsuite></testsuites>\n')


failure = '<failure message="see above"/>'
