"""What the source checks in this folder share: finding C++ files and blanking out comments."""

import pathlib
import re

ROOT = pathlib.Path(__file__).resolve().parent.parent
SUFFIXES = (".h", ".cpp")

_TOKEN = re.compile(
    r"""//[^\n]*|/\*.*?\*/|R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|"(?:\\.|[^"\\\n])*"|"""
    r"""'(?:\\.|[^'\\\n])*'""", re.DOTALL)


def files(*folders):
    """The C++ files of these folders of the project, sorted, as paths relative to its root."""
    found = (path for folder in folders for path in (ROOT / folder).rglob("*")
             if path.suffix in SUFFIXES)
    return sorted(path.relative_to(ROOT) for path in found)


def read(path):
    """The text of a file named relative to the project's root."""
    return (ROOT / path).read_text(encoding="utf-8")


def _blank(text):
    return re.sub(r"[^\n]", " ", text)


def without_comments(text):
    """The text with its comments as blanks; every other character keeps its place."""
    return _TOKEN.sub(lambda m: _blank(m[0]) if m[0].startswith("/") else m[0], text)


def without_literals(text):
    """The text, free of comments, with what stands inside quotes as blanks as well."""
    return _TOKEN.sub(lambda m: m[0][0] + _blank(m[0][1:-1]) + m[0][-1], text)


def line_of(text, at):
    """The line number, from 1, of a position in the text."""
    return text.count("\n", 0, at) + 1
