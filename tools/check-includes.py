#!/usr/bin/env python3
"""Checks the includes: from the project's root, downwards only, system headers in their own folders.

Nor may library functions be called outside folders posix/ that do not know every path of Windows.

The order of the layers is that of the add_subdirectory lines in the root CMakeLists.txt: a file may
include its own folder and those listed before it. Prints one line a problem; exits with 1 if any.
"""

import re
import sys

import cpp_source

INCLUDE = re.compile(r'^[ \t]*#[ \t]*include[ \t]*(?:"([^"\n]*)"|<([^>\n]*)>)', re.MULTILINE)
LAYER = re.compile(r"^ *add_subdirectory\(([\w/]+)\)", re.MULTILINE)

MADE_BY_THE_BUILD = "embedded/"  # cmake/embed_file.cmake

# The start of the program, which stands above everything.
TOP = "app/modMain.cpp"

# Headers that only one kind of folder may include: folder name, then the headers.
POSIX = re.compile(r"(unistd|fcntl|dirent|pwd|dlfcn|poll|termios|sys/\w+)\.h$")
WINDOWS = re.compile(r"(windows|winbase|winnls|winreg|winhttp|shl\w+|shellapi|io|fcntl|direct|fileapi)\.h$",
                     re.I)
TOOLKIT = re.compile(r"wx/")

# Some compilers' libraries take \\server\share for a path from the current folder.
SERVERLESS = re.compile(r"\b(?:filesystem|fs)\s*::\s*((?:weakly_)?canonical|absolute|relative|proximate)\b"
                        r"|(?:\.|->)\s*(is_absolute|is_relative)\s*\(")


def layers():
    """The library folders, lowest first."""
    return LAYER.findall(cpp_source.read("CMakeLists.txt"))


def layer_of(path, order):
    """The place of a file's folder in that order; what is in none may use every layer."""
    if path == TOP:
        return len(order)
    for place, folder in enumerate(order):
        if path.startswith(folder + "/"):
            return place
    return len(order)


def forbidden_system_header(path, header):
    """A folder that may include this header (some headers belong to several), if the file is in none."""
    allowed = [folder for folder, pattern in (("posix", POSIX), ("windows", WINDOWS), ("wx", TOOLKIT))
               if pattern.match(header)]
    inside = any(f"/{folder}/" in path for folder in allowed)
    return allowed[0] if allowed and not inside else None


def problems_of(path, order):
    """What is wrong with one file: pairs of line number and text."""
    name = path.as_posix()
    text = cpp_source.read(path)
    if not text.startswith("// "):
        yield 1, "the first line must be a comment that says what the file is for"
    code = cpp_source.without_comments(text)
    if path.suffix == ".h" and "#pragma once" not in code:
        yield 1, "a header needs #pragma once"
    for match in INCLUDE.finditer(code):
        line, own, system = cpp_source.line_of(code, match.start()), match[1], match[2]
        if system:
            folder = forbidden_system_header(name, system)
            if folder:
                yield line, f"<{system}> belongs into a folder {folder}/ only"
        elif own.startswith(MADE_BY_THE_BUILD):
            continue
        elif not (cpp_source.ROOT / own).is_file():
            yield line, f'"{own}" is not a file, seen from the project\'s root'
        elif layer_of(own, order) > layer_of(name, order):
            yield line, f'"{own}" is in a layer above this file'
    if "/posix/" not in name:
        for match in SERVERLESS.finditer(cpp_source.without_literals(code)):
            yield (cpp_source.line_of(code, match.start()),
                   f"{match[1] or match[2]} fails for paths on servers: see platform/files/paths.h")


def main():
    order = layers()
    top_folders = sorted({folder.split("/")[0] for folder in order} | {"bench", "tests", "wizard"})
    files = cpp_source.files(*top_folders)
    problems = [f"{path}:{line}: {text}"
                for path in files for line, text in problems_of(path, order)]
    print("\n".join(problems) if problems else f"ok: the includes of {len(files)} files")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
