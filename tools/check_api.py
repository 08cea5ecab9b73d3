#!/usr/bin/env python3
"""Checks that the interface stays in step with itself.

  check_api.py LIBRARY      header, exports of the built library, contracts and tests; prints every fault, exits 1 on any
  check_api.py --find NAME  prints the file that holds an operation, given either of its names
"""
import re
import subprocess
import sys
from pathlib import Path

ROOT = Path(__file__).resolve().parent.parent
HEADER = (ROOT / "include/sigvex.h").read_text()
DECLARATION = re.compile(r"DSP_API\s+([\w ]+?[\s*])\s*(\w+)\s*\(([^)]*)\);")


def declarations():
    """Name -> (text up to the name, parameters), in the header's order."""
    return {m[2]: (m[1].strip(), re.sub(r"\s+", " ", m[3])) for m in DECLARATION.finditer(HEADER)}


def twin_of(name):
    return "dspf" + name[3:]


def pairs(names):
    """The header declares an operation and, right after it, its twin."""
    listed = list(names)
    return list(zip(listed[::2], listed[1::2]))


def records_as_single(parameters):
    """What the twin's parameters are when only the record differs."""
    return re.sub(r"\bdsp_(vector|rsmp_coef|rsmp_state|\w+_hook)\b", r"dspf_\1", parameters)


def as_single(parameters):
    """What the twin's parameters are when only record and scalar type differ."""
    return re.sub(r"\bdouble\b", "float", records_as_single(parameters))


def spaced(parameters):
    return re.sub(r"\s*([*,])\s*", r"\1", parameters)


def twin_faults(declared):
    for name, twin in pairs(declared):
        if twin != twin_of(name):
            yield f"header: {name} is followed by {twin}, not by its twin {twin_of(name)}"
            continue
        (result, parameters), (twin_result, twin_parameters) = declared[name], declared[twin]
        same = spaced(records_as_single(parameters))  # parameters that stay double, as some do
        if result != twin_result or spaced(twin_parameters) not in (spaced(as_single(parameters)), same):
            yield f"header: {name} and {twin} differ in more than record and scalar type"


def contract_faults(declared):
    for name, _ in pairs(declared):
        before = HEADER[: re.search(rf"DSP_API[^;]*\b{name}\s*\(", HEADER).start()].rstrip()
        follows = before.endswith("*/") and not before.endswith("--- */")
        shared = before.endswith(";") and "\n\n" not in HEADER[len(before) : len(before) + 2]
        if not follows and not shared:
            yield f"header: {name} has no contract"


def exports(library):
    listing = subprocess.run(["nm", "-D", "--defined-only", library], capture_output=True, text=True, check=True).stdout
    return {line.split()[-1].split("@")[0] for line in listing.splitlines() if " T " in line}


def export_faults(declared, exported):
    for name in sorted(set(declared) - exported):
        yield f"library: {name} is declared but not exported"
    for name in sorted(exported - set(declared)):
        yield f"library: {name} is exported but not declared"


def test_faults(declared):
    tests = "\n".join(path.read_text() for path in sorted((ROOT / "tests").glob("*/*.[ch]*")))
    for name, _ in pairs(declared):
        family, operation = re.match(r"dsp(\w*?)_(\w+)", name).groups()
        rows = rf"\b{name}\b|\b(?:TWIN\w*|WITH|FOR_EACH)\(\s*(?:\w+, )?{family}\s*,[^)]*\b{operation}\b"
        if not re.search(rows, tests):
            yield f"tests: nothing tests {name}"


def find(name):
    family, operation = re.match(r"dspf?(\w*?)_(\w+)", name).groups()
    families = {family, "f" + family if name.startswith("dspf") else family}
    for path in sorted((ROOT / "src").rglob("*.cpp")):
        for number, line in enumerate(path.read_text().splitlines(), 1):
            match = re.match(r"SIGVEX_EXPORT\w*\((\w*), (\w+),", line)
            if match and match[1] in families and match[2] == operation:
                print(f"{path.relative_to(ROOT)}:{number}")


def main(arguments):
    if len(arguments) == 2 and arguments[0] == "--find":
        return find(arguments[1])
    if len(arguments) != 1:
        sys.exit(__doc__)
    declared = declarations()
    faults = [
        *twin_faults(declared),
        *contract_faults(declared),
        *export_faults(declared, exports(arguments[0])),
        *test_faults(declared),
    ]
    print("\n".join(faults) if faults else f"{len(declared)} functions: header, exports, contracts and tests in step")
    sys.exit(bool(faults))


main(sys.argv[1:])
