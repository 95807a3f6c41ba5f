"""Reads the operations and the prose out of tzvio.h, which is the first half of the manual."""

import re
from dataclasses import dataclass, field


@dataclass
class Operation:
    name: str
    declaration: str
    description: list = field(default_factory=list)  # paragraphs
    arguments: list = field(default_factory=list)  # (names, meaning)
    results: list = field(default_factory=list)  # (value, meaning), or a paragraph

    @property
    def summary(self):
        """The first sentence, without its bytes: a parenthesis may hold full stops."""
        text = re.sub(r" \(.*?\)(?=[ .,])", "", " ".join(self.description[0].split()))
        sentence = re.split(r"[.;:](?: |$)", text)[0]
        first_word = sentence.split()[0]
        return sentence if first_word[1:] != first_word[1:].lower() else sentence[0].lower() + sentence[1:]


RESULT = re.compile(r"^ {0,3}(>=?0|-?\d+(?:, -?\d+)*) {2,}(\S.*)$")
ARGUMENT = re.compile(r"^(\w+(?:, \w+)*) {2,}(\S.*)$")


def read(path):
    """The prose at the top, and the operations in their order."""
    text = path.read_text(encoding="utf-8")
    top = comment_lines(re.match(r"/\*.*?\*/", text, re.S).group())
    found = re.finditer(r"(/\*(?:(?!\*/).)*\*/)\nTZV_API ([^;]*;)", text, re.S)
    operations = [operation(comment_lines(comment), declaration) for comment, declaration in
                  (match.groups() for match in found)]
    by_name = {each.name: each for each in operations}
    for each in operations:
        inherit(each, by_name)
        check_arguments(each)
    return top, operations


def comment_lines(comment):
    lines = comment.removeprefix("/*").removesuffix("*/").rstrip().split("\n")
    return [re.sub(r"^ ?\*? ?", "", line, count=1).rstrip() for line in lines]


def operation(lines, declaration):
    declaration = re.sub(r"\n +", "\n     ", declaration)
    result = Operation(re.search(r"(\w+)\(", declaration).group(1), declaration)
    in_results = False
    for paragraph in paragraphs(lines):
        if RESULT.match(paragraph[0]) or any(RESULT.match(line) for line in paragraph):
            read_results(result, paragraph)
            in_results = True
        elif ARGUMENT.match(paragraph[0]) and not in_results:
            result.arguments += entries(paragraph, ARGUMENT)
        else:
            result.description.append("\n".join(paragraph))
    return result


def read_results(operation, paragraph):
    """A list of results; a line that is neither a result nor the rest of one stands by itself."""
    for line in paragraph:
        match = RESULT.match(line)
        if match:
            operation.results.append(match.groups())
        elif line.startswith("    ") and operation.results:
            value, meaning = operation.results[-1]
            operation.results[-1] = (value, f"{meaning} {line.strip()}")
        elif operation.results and isinstance(operation.results[-1], str):
            operation.results[-1] += " " + line.strip()
        else:
            operation.results.append(line.strip())


def inherit(operation, by_name):
    """"Results as X" stands for the results of X, and "Other arguments as X" for its arguments."""
    for index, paragraph in enumerate(operation.description):
        match = re.search(r"Results as (\w+)(?:; ([^.]*))?\.", paragraph)
        if match:
            operation.results = list(by_name[match.group(1)].results)
            operation.results += [match.group(2) + "."] if match.group(2) else []
            paragraph = paragraph.replace(match.group(), "")
        match = re.search(r"Other arguments as (\w+)\.", paragraph)
        if match:
            own = {name for names, _ in operation.arguments for name in names.split(", ")}
            others = by_name[match.group(1)].arguments
            operation.arguments = [each for each in others if each[0] in operation.declaration
                                   and each[0] not in own] + operation.arguments
            paragraph = paragraph.replace(match.group(), "")
        operation.description[index] = paragraph
    operation.description = [text.rstrip() for text in operation.description if text.strip()]


def check_arguments(operation):
    """Every argument is described, or the header is at fault."""
    declared = re.findall(r"(\w+)[,)]", operation.declaration)
    described = {name for names, _ in operation.arguments for name in names.split(", ")}
    missing = set(declared) - described - {"portName"}
    if missing:
        raise SystemExit(f"tzvio.h: {operation.name} does not describe {', '.join(sorted(missing))}")
    if not operation.results:
        raise SystemExit(f"tzvio.h: {operation.name} does not give its results")


def paragraphs(lines):
    paragraph = []
    for line in lines + [""]:
        if line:
            paragraph.append(line)
        elif paragraph:
            yield paragraph
            paragraph = []


def entries(lines, pattern):
    found = []
    for line in lines:
        match = pattern.match(line)
        if match:
            found.append(match.groups())
        else:
            name, meaning = found[-1]
            # Lists within an argument keep their lines.
            found[-1] = (name, f"{meaning}\n{line.strip()}")
    return found
