#!/usr/bin/env python3
"""Checks that every text number the code uses is in every language file.

A number reaches the code as a constant in a namespace whose name ends in "Texts", as a constant of the
file that asks for it, or as a literal. Where a call shows which of its kinds is asked for (text, tooltip,
message), that one must be there; otherwise any. Prints one line a problem; exits with 1 if any.
"""

import re
import sys

import cpp_source

FOLDERS = ("app", "engine", "platform/wx", "store", "tools", "updates", "wizard")
KIND_OF_CALL = {"LanguageText": "text", "GetText": "text", "GetToolTipText": "tooltip",
                "ToolTipText": "tooltip", "GetMessageText": "message"}

CALL = re.compile(r"\b(" + "|".join(KIND_OF_CALL) + r")\s*\(\s*([\w:]+)\s*\)")
NAMESPACE = re.compile(r"\bnamespace\s+(\w*Texts)\s*\{(.*?)\}", re.DOTALL)
CONSTANT = re.compile(r"\b(k\w+)\s*=\s*(\d+)\s*[;,}]")
ENTRY = re.compile(r"^\s*(\d+)\s+(text|tooltip|message):\s*\S", re.MULTILINE)


def named_texts(sources):
    """The constants in all namespaces of texts, by "Namespace::kName"."""
    return {f"{namespace[1]}::{constant[1]}": int(constant[2])
            for code in sources.values() for namespace in NAMESPACE.finditer(code)
            for constant in CONSTANT.finditer(namespace[2])}


def number_of(argument, code, named):
    """The number that an argument of a call stands for, or None."""
    if argument.isdigit():
        return int(argument)
    if "::" in argument:
        return named.get("::".join(argument.split("::")[-2:]))
    local = {constant[1]: int(constant[2]) for constant in CONSTANT.finditer(code)}
    return local.get(argument)


def used_texts(sources):
    """What the code asks for: (number, kind or None) -> where; and the calls nobody understands."""
    named = named_texts(sources)
    used, problems = {}, []
    for path, code in sources.items():
        for call in CALL.finditer(code):
            argument, where = call[2], f"{path}:{cpp_source.line_of(code, call.start())}"
            number = number_of(argument, code, named)
            if number is not None:
                used.setdefault((number, KIND_OF_CALL[call[1]]), where)
            elif argument.split("::")[-1].startswith("k"):
                problems.append(f"{where}: {argument} is in no namespace of texts")
    asked = {number for number, _ in used}
    for name, number in named.items():
        if number not in asked:
            used[(number, None)] = name
    return used, problems


def main():
    sources = {path: cpp_source.without_comments(cpp_source.read(path))
               for path in cpp_source.files(*FOLDERS)}
    used, problems = used_texts(sources)
    languages = sorted((cpp_source.ROOT / "lang").glob("*.lng"))
    for language in languages:
        entries = {(int(number), kind)
                   for number, kind in ENTRY.findall(language.read_text(encoding="utf-8"))}
        entries |= {(number, None) for number, _ in entries}
        problems += [f"{language.name}: {kind or 'text'} {number} is missing; asked for by {where}"
                     for (number, kind), where in sorted(used.items(), key=str)
                     if (number, kind) not in entries]
    print("\n".join(problems) if problems
          else f"ok: {len(used)} texts of the code are in {len(languages)} language files")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
