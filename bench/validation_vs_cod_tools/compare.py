# SPDX-License-Identifier: MIT
# Runs tessary-check and cod-tools' cif_validate on the same CIFs and compares their findings kind by kind.
"""Compare tessary-check with cod-tools' cif_validate (DDL1) or ddlm_validate (DDLm).

Both programs check every CIF found under the given files and directories
against the same dictionary; their findings are matched by file, kind and
data name (and, for key and parent values, by the values too), and a table
gives per kind the findings of both, of tessary-check only and of
cif_validate only.

    python3 bench/validation_vs_cod_tools/compare.py \\
        -d ../shared/dictionaries/cif_core.dic /usr/share/avogadro2/crystals

--ddlm compares with ddlm_validate against a DDLm dictionary instead:

    python3 bench/validation_vs_cod_tools/compare.py --ddlm \\
        -d ../shared/dictionaries/ddlm/cif_core.dic /usr/share/avogadro2/crystals

--details lists every finding one side has and the other lacks.
"""

import argparse
import collections
import html
import json
import os
import re
import subprocess
import sys
import time

# Kinds of finding: (name, codes of tessary-check). Findings of kinds that
# cif_validate does not have are listed apart.
KINDS = [
    ("data name not in the dictionary", [320]),
    ("replaced (obsolete) data name", [356]),
    ("replaced name beside its replacement", [367]),
    ("value not among the permitted values", [326]),
    ("value outside the range", [325]),
    ("value not of the item's type", [324, 354, 355]),
    ("standard uncertainty not allowed", [343]),
    ("item must be in a loop", [327]),
    ("item must not be in a loop", [328]),
    ("loop mixes categories (per loop)", [329]),
    ("loop lacks a referenced or mandatory item", [358]),
    ("loop lacks its category key (DDLm)", []),
    ("item lacks its parent item", [357]),
    ("value not among the parent's values", [360]),
    ("key value not unique", [359]),
    ("key values of several columns not unique", [369]),
    ("  the same, geometry loops (site symmetry)", []),
    ("duplicate data name", [312]),
    ("loop values not a multiple of its names", [307]),
    ("other syntax errors (by line)", [305, 306, 309, 310, 338]),
    ("reserved first character (by line)", [330]),
]
GEOMETRY_COMPOSITE = "  the same, geometry loops (site symmetry)"
# cif_validate writes two notes for an item a loop lacks that is both
# referenced and mandatory; each side counts a missing item once.
ONCE = {"loop lacks a referenced or mandatory item", "loop lacks its category key (DDLm)"}
KIND_OF_CODE = {code: kind for kind, codes in KINDS for code in codes}

COD_PATTERNS = [
    (r"data item '(?P<name>[^']+)' has been replaced by the \[.*\] data items", "replaced (obsolete) data name"),
    (r"data item '(?P<name>[^']+)' appears in the same data block as its replacement",
     "replaced name beside its replacement"),
    (r"definition of the '(?P<name>[^']+)' data item was not found", "data name not in the dictionary"),
    (r"the '(?P<name>[^']+)' data item has been deprecated and should not be used", "replaced (obsolete) data name"),
    (r"missing (parent|linked) data item -- the '[^']+' data item is required by the '(?P<name>[^']+)' data item",
     "item lacks its parent item"),
    (r"missing (mandatory looped list|looped list reference) data item -- the '(?P<name>[^']+)' data item must",
     "loop lacks a referenced or mandatory item"),
    (r"missing category key data item -- the '(?P<name>[^']+)' data item must be provided in the loop",
     "loop lacks its category key (DDLm)"),
    (r"data item '(?P<name>[^']+)' contains value '(?P<value>.*)' that was not found among the values of the "
     r"(parent|linked data item)",
     "value not among the parent's values"),
    (r"data item '(?P<name>[^']+)' acts as a loop key, but .* -- value '(?P<value>.*)' appears \d+ times",
     "key value not unique"),
    (r"data items \[(?P<names>[^\]]*)\] act as a composite loop key, but .* -- values \[(?P<values>[^\]]*)\] appear",
     "key values of several columns not unique"),
    (r"data item '(?P<name>[^']+)' value '.*' must be one of the enumeration values",
     "value not among the permitted values"),
    (r"data item '(?P<name>[^']+)' value '.*' should be in range", "value outside the range"),
    (r"data item '(?P<name>[^']+)' value '.*' violates (content )?type constraints", "value not of the item's type"),
    (r"data item '(?P<name>[^']+)' value '.*' is not permitted to contain the appended standard uncertainty",
     "standard uncertainty not allowed"),
    (r"data items in a looped list must all belong to the same category", "loop mixes categories (per loop)"),
    (r"data item '(?P<name>[^']+)' must appear in a loop", "item must be in a loop"),
    (r"data item '(?P<name>[^']+)' must not appear in a loop", "item must not be in a loop"),
    (r"tag (?P<name>\S+) appears more than once", "duplicate data name"),
    (r"wrong number of elements in the loop starting at line (?P<line>\d+)", "loop values not a multiple of its names"),
    (r"opening square brackets are reserved|closing square brackets are reserved|dollar symbol .* must not start",
     "reserved first character (by line)"),
    (r"incorrect CIF syntax", "other syntax errors (by line)"),
]
COD_LINE = re.compile(r"^(?P<prog>\S+): (?P<file>.+?)(\((?P<line>\d+)(,\d+)?\))?(?: (?P<block>data_\S*))?: "
                      r"(?P<level>ERROR|WARNING|NOTE), (?P<text>.*)$")
TIMES = re.compile(r" \((\d+) times\)\.?$")


def cif_files(paths):
    files = []
    for path in paths:
        if os.path.isdir(path):
            for root, _, names in os.walk(path):
                files += [os.path.join(root, name) for name in names if name.lower().endswith(".cif")]
        else:
            files.append(path)
    return sorted(files)


def quoted_list(text):
    return [part.strip().strip("'") for part in text.split(",")]


def ours(binary, dictionary, files):
    """(file, kind, name, value) -> count for tessary-check; codes without a counterpart apart."""
    result = subprocess.run([binary, "--json", "-d", dictionary] + files, capture_output=True, text=True)
    if result.returncode == 2:
        sys.exit("tessary-check failed: " + result.stderr)
    found = collections.Counter()
    apart = collections.Counter()
    for entry in json.loads(result.stdout)["files"]:
        for message in entry.get("messages", []):
            code, item, detail = message["code"], message["item"], message["detail"]
            kind = KIND_OF_CODE.get(code)
            if kind is None:
                apart[(entry["file"], "[%d] %s" % (code, message["message"]))] += 1
                continue
            if kind.endswith("(per loop)"):
                found[(entry["file"], kind, "", "")] += 1
            elif kind.endswith("(by line)") or code == 307:
                found[(entry["file"], kind, "line %d" % message["line"], "")] += 1
            elif code == 358:
                for name in detail.split(", "):  # a family of items is named item by item
                    found[(entry["file"], kind, name.lower(), "")] += 1
            elif code in (359, 360):
                found[(entry["file"], kind, item.lower(), detail)] += 1
            elif code == 369:
                names, values = item.split(", "), detail.split(", ")
                labels = [i for i, name in enumerate(names) if "_site_symmetry_" not in name]
                if names[0].lower().startswith("_geom_"):
                    kind = GEOMETRY_COMPOSITE
                found[(entry["file"], kind, names[0].lower(), ", ".join(values[i] for i in labels))] += 1
            else:
                found[(entry["file"], kind, item.lower(), "")] += 1
    return found, apart


def theirs(binary, dictionary, files, ddlm=False, saved=None):
    """(file, kind, name, value) -> count for cif_validate; messages it has no pattern for apart."""
    if ddlm:
        command = [binary, "--continue-on-errors", "--report-deprecated", "--report-local-tags",
                   "--max-message-count", "-1", "-d", dictionary] + files
    else:
        command = [binary, "-c", "--report-deprecated", "--report-local-tags", "--max-message-count", "-1",
                   "-d", dictionary] + files
    if saved and os.path.exists(saved):
        with open(saved, encoding="utf-8", errors="replace") as text:
            output = text.read()
    else:
        result = subprocess.run(command, capture_output=True, text=True, errors="replace")
        output = result.stdout + "\n" + result.stderr
        if saved:
            with open(saved, "w", encoding="utf-8") as text:
                text.write(output)
    found = collections.Counter()
    apart = collections.Counter()
    for line in output.splitlines():
        match = COD_LINE.match(line)
        if match is None:
            continue  # the lines that show where a syntax error lies
        text = match.group("text")
        if "ERROR(s) encountered while parsing" in text:
            continue
        path = html.unescape(match.group("file"))
        count = 1
        times = TIMES.search(text)
        if times:
            count = int(times.group(1))
        for pattern, kind in COD_PATTERNS:
            m = re.search(pattern, text)
            if m is None:
                continue
            groups = m.groupdict()
            if kind == "key values of several columns not unique":
                names = quoted_list(groups["names"])
                if names[0].lower().startswith("_geom_"):
                    kind = GEOMETRY_COMPOSITE
                found[(path, kind, names[0].lower(), ", ".join(quoted_list(groups["values"])))] += count
            elif kind.endswith("(by line)"):
                found[(path, kind, "line " + (match.group("line") or "?"), "")] += count
            elif "line" in groups:
                found[(path, kind, "line " + groups["line"], "")] += count
            elif kind.endswith("(per loop)"):
                found[(path, kind, "", "")] += count
            else:
                found[(path, kind, groups["name"].lower(), groups.get("value") or "")] += count
            break
        else:
            apart[(path, text)] += count
    return found, apart


def main():
    parser = argparse.ArgumentParser(description=__doc__, formatter_class=argparse.RawDescriptionHelpFormatter)
    parser.add_argument("paths", nargs="+", help="CIF files or directories searched for *.cif")
    parser.add_argument("-d", "--dictionary", required=True, help="the dictionary both check against")
    parser.add_argument("--tessary-check", default=os.path.join("build", "bin", "tessary-check"))
    parser.add_argument("--ddlm", action="store_true", help="compare with ddlm_validate (a DDLm dictionary)")
    parser.add_argument("--cif-validate", default=None, help="the peer program (cif_validate or ddlm_validate)")
    parser.add_argument("--details", action="store_true", help="list every finding only one side has")
    parser.add_argument("--peer-output", help="keep the peer's messages in this file, or read them from it when"
                        " it exists (the peer takes minutes)")
    args = parser.parse_args()

    files = cif_files(args.paths)
    peer = args.cif_validate or ("ddlm_validate" if args.ddlm else "cif_validate")
    start = time.monotonic()
    if args.ddlm:
        KIND_OF_CODE[358] = "loop lacks its category key (DDLm)"  # DDL1 lists and references do not apply
    mine, mine_apart = ours(args.tessary_check, args.dictionary, files)
    middle = time.monotonic()
    cod, cod_apart = theirs(peer, args.dictionary, files, args.ddlm, args.peer_output)
    end = time.monotonic()
    for found in (mine, cod):
        for key in found:
            if key[1] in ONCE:
                found[key] = 1

    print("%d files, dictionary %s; tessary-check %.2f s, %s %.1f s (wall, one run each)\n"
          % (len(files), args.dictionary, middle - start, os.path.basename(peer), end - middle))
    print("| Kind of finding | our codes | ours | cod-tools | both | only ours | only cod-tools | found of cod-tools' |")
    print("|---|---|---|---|---|---|---|---|")
    totals = [0, 0, 0, 0, 0]
    for kind, codes in KINDS:
        keys = {key for key in list(mine) + list(cod) if key[1] == kind}
        a = sum(mine[key] for key in keys)
        b = sum(cod[key] for key in keys)
        both = sum(min(mine[key], cod[key]) for key in keys)
        share = "%.1f %%" % (100.0 * both / b) if b else "-"
        row = [a, b, both, a - both, b - both]
        totals = [t + r for t, r in zip(totals, row)]
        print("| %s | %s | %d | %d | %d | %d | %d | %s |"
              % (kind.strip(), ", ".join(map(str, codes)) or ("369" if kind == GEOMETRY_COMPOSITE else "-"), *row, share))
    print("| all of these | | %d | %d | %d | %d | %d | %.1f %% |"
          % (*totals, 100.0 * totals[2] / totals[1] if totals[1] else 100.0))

    codes = collections.Counter()
    for (_, text), count in mine_apart.items():
        codes[text[:5]] += count
    print("\nFindings of ours without a counterpart in cif_validate: "
          + (", ".join("%s %d" % (code, count) for code, count in sorted(codes.items())) or "none"))
    print("Messages of cif_validate the script does not sort into a kind: %d" % sum(cod_apart.values()))

    if args.details:
        root = os.path.commonpath(files) if files else ""
        short = lambda path: os.path.relpath(path, root) if root else path
        print("\nDifferences:")
        for key in sorted(set(mine) | set(cod), key=lambda k: (k[1], k[0], k[2], k[3])):
            if mine[key] != cod[key]:
                side = "only ours" if mine[key] > cod[key] else "only cod-tools"
                print("  %s | %s | %s %s | %s x%d" % (key[1].strip(), short(key[0]), key[2], key[3], side,
                                                      abs(mine[key] - cod[key])))
        for (path, text), count in sorted(mine_apart.items()):
            print("  ours, no counterpart | %s | %s x%d" % (short(path), text, count))
        for (path, text), count in sorted(cod_apart.items()):
            print("  cod-tools, unsorted | %s | %s x%d" % (short(path), text, count))


if __name__ == "__main__":
    main()
