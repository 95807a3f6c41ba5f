#!/usr/bin/env python3
"""Makes the manual out of the header and docs/manual.

  manual.py pages OUT       OUT/html and OUT/man: a page for each operation and each guide
  manual.py examples FILE   a C file with the operations' examples, for the test that runs them

lowdown turns Markdown into HTML and into manual pages.
"""

import re
import subprocess
import sys
from pathlib import Path

import header
from page import Page

ROOT = Path(__file__).resolve().parents[2]
MANUAL = ROOT / "docs/manual"
LINKS = ("serial", "parallel", "usb", "network")
COLUMNS = {"serial": "Serial", "parallel": "Parallel", "usb": "USB", "network": "Network"}


def guides():
    """Those in the order of the index, without it."""
    index = (MANUAL / "README.md").read_text()
    names = re.findall(r"\]\((\w[\w-]*)\.md\) \|", index)
    return [Page(MANUAL / f"{name}.md") for name in names]


def plain(text):
    """A text of the header as Markdown: what would be markup there is not meant so."""
    parts = re.split(r"(`[^`]*`)", text)
    return "".join(part if part.startswith("`") else re.sub(r"([*_<>\[\]])", r"\\\1", part)
                   for part in parts)


def paragraph(text):
    if text.startswith("  "):
        return "\n".join("    " + line for line in text.split("\n"))
    return plain(text)


def definition(term, meaning):
    lines = [paragraph(line) for line in meaning.split("\n")]
    return f"`{term}`\n: " + "\n  ".join(lines)


def durations():
    rows = {}
    for line in (MANUAL / "durations.md").read_text().split("\n"):
        cells = [cell.strip() for cell in line.strip("|").split("|")]
        if len(cells) == 6:
            rows[cells[0]] = dict(zip(("writes", *LINKS), cells[1:]))
    return rows


def duration(row):
    writes = row["writes"]
    silent = ", ".join(f"{COLUMNS[link]} {row[link]}" for link in LINKS if row[link] != "0")
    text = "What its bytes need on the line"
    if writes != "0":
        text += (f". Writes: {writes}, each of which a printer that takes nothing holds up for 5 s (serial "
                 "with flow control hdwr, parallel, USB) or until it reads again (network)")
    text += f". A silent printer is waited for: {silent}." if silent else ". No answer is waited for."
    return text + " See `tzvio-durations`(7)."


def operation_page(operation, page, row):
    parts = [f"# NAME\n\n{operation.name} - {plain(operation.summary)}",
             f"# SYNOPSIS\n\n```c\n#include <tzvio.h>\n\n{operation.declaration}\n```",
             "# DESCRIPTION\n\n" + "\n\n".join(map(paragraph, operation.description))]
    if page.has("Notes"):
        parts[-1] += "\n\n" + page.section("Notes")
    arguments = [("portName", "the port, see `tzvio-ports`(7)"), *operation.arguments]
    parts.append("# ARGUMENTS\n\n" + "\n\n".join(definition(*each) for each in arguments))
    parts.append("# RESULTS\n\n" + "\n\n".join(
        plain(each) if isinstance(each, str) else definition(*each) for each in operation.results))
    parts.append("# DURATION\n\n" + duration(row))
    parts.append("# NOT REPORTED\n\n" + page.section("Not reported"))
    parts.append("# EXAMPLE\n\n" + page.section("Example"))
    parts.append("# SEE ALSO\n\n" + (page.section("See also") + ", " if page.has("See also") else "") + "`tzvio`(7)")
    return "\n\n".join(parts) + "\n"


def overview(top, operations):
    """The header's own prose, with the list of all pages."""
    title, *rest = "\n".join(top).strip().split("\n")
    body = [""]
    for line in rest:
        if re.match(r"[A-Z]", line):
            body.append(f"\n# {line}\n" if line == line.upper() else plain(line))
        elif line.startswith("    "):  # a list in columns: as it stands
            body.append(("" if body[-1].lstrip("\n").startswith("    ") else "\n") + line)
        else:
            body.append(("\n" if body[-1].lstrip("\n").startswith("    ") else "") + plain(line.strip()))
    first_steps = Page(MANUAL / "first-steps.md").body
    names = "\n\n".join(f"`{each.name}`(3)\n: {plain(each.summary)}" for each in operations)
    others = "\n\n".join(f"`tzvio-{page.name}`(7)\n: {page.title}" for page in guides())
    return (f"# NAME\n\ntzvio - {plain(title.removeprefix('TZVIO: ').rstrip('.'))}\n\n# DESCRIPTION\n\n" + "\n".join(body) +
            f"\n\n# FIRST STEPS\n{first_steps}\n\n# OPERATIONS\n\n{names}\n\n# GUIDES\n\n{others}\n")


def guide_page(page):
    body = re.sub(r"^#(#+) ", lambda match: match.group(1) + " ", page.body, flags=re.M)
    return f"# NAME\n\ntzvio-{page.name} - {page.title}\n\n# DESCRIPTION\n\n{body}"


def tables_as_lists(text):
    """A manual page has 80 columns: each row becomes an entry."""
    def rows(match):
        lines = [[cell.strip().replace("\\|", "|") for cell in re.split(r"(?<!\\)\|", line.strip().strip("|"))]
                 for line in match.group().strip().split("\n")]
        head = lines[0]
        entries = []
        for cells in lines[2:]:
            rest = [f"{name}: {cell}" if len(head) > 2 and name else cell
                    for name, cell in zip(head[1:], cells[1:]) if cell]
            entries.append(f"{cells[0]}\n: " + "; ".join(rest))
        return "\n\n".join(entries) + "\n"
    return re.sub(r"(?:^\|.*\n)+", rows, text, flags=re.M)


def man_text(text):
    text = re.sub(r"^```\w[\w ]*$", "```", tables_as_lists(text), flags=re.M)
    text = re.sub(r"!\[([^\]]*)\]\([^)]*\)", "", text)
    text = re.sub(r"\[([^\]]*)\]\((\w[\w-]*)\.md\)", r"`tzvio-\2`(7)", text)
    return re.sub(r"\[([^\]]*)\]\([^)]*\)", r"\1", text)


def html_text(text, names):
    """Names of pages become links."""
    def link(match):
        target = match.group(1)
        return f"[{match.group()}]({target}.html)" if target in names else match.group()
    text = re.sub(r"\]\((\w[\w-]*)\.md\)", r"](tzvio-\1.html)", text)
    return re.sub(r"`([\w-]+)`(?:\(\d\))?", link, text)


def lowdown(kind, text, *options):
    return subprocess.run(["lowdown", "-s", "--out-no-smarty", f"-T{kind}", *options], input=text, text=True, check=True,
                          capture_output=True).stdout


def man_page(name, section, text):
    """Code is bold, as in other manual pages: the constant-width font that lowdown names is for paper."""
    roff = lowdown("man", man_text(text), "-M", f"title={name}", "-M", f"section={section}tzvio",
                   "-M", "source=TZVIO")
    return re.sub(r"^(\.S[HS])\n(.*)\n(?:\.LP\n)?", r"\1 \2\n", roff.replace(r"\fC", r"\fB"), flags=re.M)


def write_pages(out):
    top, operations = header.read(ROOT / "include/tzvio.h")
    rows = durations()
    pages = {"tzvio": ("7", overview(top, operations))}
    for page in guides():
        pages[f"tzvio-{page.name}"] = ("7", guide_page(page))
    for operation in operations:
        page = Page(MANUAL / "operations" / f"{operation.name}.md")
        pages[operation.name] = ("3", operation_page(operation, page, rows[operation.name]))
    for name, (section, text) in pages.items():
        write(out / f"man/man{section}/{name}.{section}tzvio", man_page(name, section, text))
        write(out / f"html/{name}.html",
              lowdown("html", html_text(text, pages), "-M", f"title={name}", "-M", "css=manual.css"))
    write(out / "html/manual.css", (Path(__file__).parent / "manual.css").read_text())
    for picture in sorted((MANUAL / "pictures").glob("*.png")):
        target = out / "html/pictures" / picture.name
        target.parent.mkdir(exist_ok=True)
        target.write_bytes(picture.read_bytes())


def write(path, text):
    path.parent.mkdir(parents=True, exist_ok=True)
    path.write_text(text)


def c_string(text):
    lines = text.split("\n")
    return "\n    ".join('"' + line.replace("\\", "\\\\").replace('"', '\\"') + '\\n"' for line in lines)


def operation_examples():
    """name, code, its options, what it sends and prints by link"""
    for operation in header.read(ROOT / "include/tzvio.h")[1]:
        page = Page(MANUAL / "operations" / f"{operation.name}.md")
        (options, code), = page.blocks("c")
        yield (operation.name, code, options, *(by_link(page.blocks(kind)) for kind in ("hex", "text")))


def guide_examples():
    """Those of the escape sequences are named by their pictures; what each call sends first is said once."""
    page = Page(MANUAL / "escapes.md")
    start = re.search(r"^    ((?:[0-9A-F]{2} ?)+)$", page.body, re.M).group(1)
    pictures = re.findall(r"\]\(pictures/(.*)\.png\)", page.body)
    for (_, code), (_, sends), name in zip(page.blocks("c"), page.blocks("hex"), pictures, strict=True):
        yield name, code, [], [f"{start}\n{sends}"] * len(LINKS), [None] * len(LINKS)


def by_link(blocks):
    """The block of each link: its own, or that of all."""
    found = {" ".join(options): content for options, content in blocks}
    return [found.get(link, found.get("")) for link in LINKS]


def write_examples(path):
    functions, entries = [], []
    for name, code, options, sends, prints in (*operation_examples(), *guide_examples()):
        function = name.replace("-", "_") + "_example"
        body = "\n".join("  " + line if line else "" for line in code.split("\n"))
        functions.append(f"static void {function}(const char* port, const char* settings) {{\n"
                         f"  (void)settings;\n{body}\n}}\n")
        entries.append(f'  {{"{name}", {function}, {int("closed" in options)},\n'
                       f"   {c_strings(sends, '0')},\n   {c_strings(prints, c_string(''))}}},\n")
    path.write_text("#include <stdio.h>\n#include <tzvio.h>\n#include <unistd.h>\n\n"
                    '#include "manual_examples.h"\n\n' + "\n".join(functions) +
                    "\nconst struct ManualExample kManualExamples[] = {\n" + "".join(entries) + "};\n"
                    f"const int kManualExampleCount = {len(entries)};\n")


def c_strings(texts, missing):
    return "{" + ", ".join(missing if text is None else c_string(text) for text in texts) + "}"


def main():
    if len(sys.argv) == 3 and sys.argv[1] == "pages":
        write_pages(Path(sys.argv[2]))
    elif len(sys.argv) == 3 and sys.argv[1] == "examples":
        write_examples(Path(sys.argv[2]))
    else:
        sys.exit(__doc__)


if __name__ == "__main__":
    main()
