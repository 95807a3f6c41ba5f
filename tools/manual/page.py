"""One Markdown file of docs/manual."""

import re


class Page:
    def __init__(self, path):
        self.name = path.stem
        title, self.body = path.read_text(encoding="utf-8").split("\n", 1)
        self.title = title.removeprefix("# ")
        parts = re.split(r"^## (.*)$", self.body, flags=re.M)
        self.sections = {name: text.strip() for name, text in zip(parts[1::2], parts[2::2])}

    def has(self, name):
        return name in self.sections

    def section(self, name):
        return self.sections[name]

    def blocks(self, language):
        """The fenced blocks of that language, each with the words behind it."""
        found = re.findall(rf"^```{language}\b ?([^\n]*)\n(.*?)^```$", self.body, re.S | re.M)
        return [(words.split(), text.strip()) for words, text in found]
