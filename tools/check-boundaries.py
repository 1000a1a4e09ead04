#!/usr/bin/env python3
"""Checks that every error boundary names its own procedure.

A boundary reports through ShowErrorMessage(L"module.procedure (Function)"): the text must repeat the
class or module and the procedure it stands in, with Function where a value is returned and Sub where
none is. Boundaries are written by copying, which is how a wrong name gets in. What follows the name
on further lines of the text is free. Prints one line a problem; exits with 1 if any.
"""

import re
import sys

import cpp_source

FOLDERS = ("app", "wizard", "updates", "engine", "store")
CALL = re.compile(r"(?<!void )\bShowErrorMessage\s*\(")
TEXT = re.compile(r'\s*L"((?:\\.|[^"\\\n])*)"')
NAMED = re.compile(r"^(?:(?P<module>\w+)\.)?(?P<procedure>\w+) \((?P<kind>Sub|Function)\)(?:$|\\r)")

# A function's head: what it returns, then its name, qualified or not, then its parameters.
HEAD = re.compile(r"^(?P<returns>.*?)(?P<name>~?\w+(?:\s*::\s*~?\w+)*)\s*$", re.DOTALL)
SPECIFIERS = re.compile(r"\[\[.*?\]\]|\b(?:static|inline|virtual|explicit|constexpr|friend)\b", re.S)
TYPE_HEAD = re.compile(r"\b(?:class|struct|union|enum)\s+(?:\[\[.*?\]\]\s*)?(\w+)")
MEMBER_VALUE = re.compile(r"\)[^()]*[^:]:(?!:)[^;]*[\w>]\s*$")
NOT_FUNCTIONS = {"if", "for", "while", "switch", "catch", "return", "else", "do", "try"}

# The one report without a module and a kind.
BARE_NAMES = {"StartLog"}

# Handlers of an object's events are reported without a module, as "object_event".
EVENT_HANDLER = re.compile(r"tmp\w+_\w+$")
CONSTRUCTION = {False: "Class_Initialize", True: "Class_Terminate"}


class Procedure:
    """A function definition: the class it belongs to if any, its name, and if it returns a value."""

    def __init__(self, owner, name, returns):
        self.owner, self.returns_value = owner, returns not in ("", "void")
        self.names = {name}
        if owner and name.lstrip("~") == owner:
            self.names.add(CONSTRUCTION[name.startswith("~")])


def function_of(head, owner):
    """The function that this text before a brace defines, or None."""
    start = head.find("(")
    named = HEAD.match(head[:start].strip()) if start > 0 else None
    if not named:
        return None
    *qualifiers, name = re.split(r"\s*::\s*", named["name"])
    returns = SPECIFIERS.sub("", named["returns"]).strip()
    if name in NOT_FUNCTIONS or returns.endswith(("=", "return", "new", ",")):
        return None
    trailing = re.search(r"\)[^(){}]*->\s*([\w:<>&* ]+?)\s*$", head)
    if re.search(r"\bauto$", returns) and trailing:
        returns = trailing[1]
    return Procedure(qualifiers[-1] if qualifiers else owner, name, returns)


def opens_initialiser(head):
    """Whether the brace after this text opens a value: of a default argument or of a member."""
    in_parameters = head.count("(") > head.count(")")
    in_members = MEMBER_VALUE.search(head) is not None
    return in_parameters or in_members


def enclosing_procedures(code):
    """For each call of ShowErrorMessage: where it is, where its arguments are, the procedure or None."""
    calls = {match.start(): match.end() for match in CALL.finditer(code)}
    frames, head_start = [], 0  # a frame: the type's name, the procedure, is it a mere value
    last = None
    for at, char in enumerate(code):
        if at in calls:
            yield at, calls[at], frames[-1][1] if frames else None
        if char == "{":
            owner, procedure, _ = frames[-1] if frames else (None, None, False)
            head = code[head_start:at]
            value = not procedure and opens_initialiser(head)
            if not procedure and not value:
                type_head = TYPE_HEAD.search(head)
                if type_head and "(" not in head:
                    owner = type_head[1]
                elif head.lstrip().startswith("catch"):
                    procedure = last
                else:
                    procedure = last = function_of(head, owner)
            frames.append((owner, procedure, value))
            head_start = head_start if value else at + 1
        elif char == "}" and frames:
            head_start = head_start if frames.pop()[2] else at + 1
        elif char == ";" and not (frames and frames[-1][2]):
            head_start = at + 1
        elif char == "\n" and code[head_start:at].lstrip().startswith("#"):
            head_start = at + 1


def problem_of(text, procedure, modules):
    """What is wrong with a boundary's text, or None."""
    if not procedure:
        return f'"{text}" stands in no procedure that this check can find'
    named = NAMED.match(text)
    if text in BARE_NAMES & procedure.names:
        return None
    if not named:
        return f'"{text}" is not of the form "module.procedure (Sub|Function)"'
    wanted = {procedure.owner} if procedure.owner else modules
    said = named["module"]
    if said not in wanted and (said or not EVENT_HANDLER.match(named["procedure"])):
        return f'"{text}" stands in {" or ".join(sorted(wanted))}'
    if named["procedure"] not in procedure.names:
        return f'"{text}" stands in {" or ".join(sorted(procedure.names))}'
    kind = "Function" if procedure.returns_value else "Sub"
    if named["kind"] != kind:
        return f'"{text}" stands in a {kind}'
    return None


def modules_of(path):
    """The modules that a file may be of: that of its own name, and those of the headers beside it whose
    names begin it (modSharedPapFolder.cpp is a part of modSharedPap)."""
    headers = (cpp_source.ROOT / path).parent.glob("mod*.h")
    return {path.stem} | {header.stem for header in headers if path.stem.startswith(header.stem)}


def check(path):
    """The number of boundaries in a file, and a list of its problems."""
    source = cpp_source.without_comments(cpp_source.read(path))
    code = cpp_source.without_literals(source)
    count, problems = 0, []
    for at, arguments_at, procedure in enclosing_procedures(code):
        text = TEXT.match(source, arguments_at)
        count += 1
        problem = (problem_of(text[1], procedure, modules_of(path)) if text
                   else "a boundary names its procedure in a literal")
        if problem:
            problems.append(f"{path}:{cpp_source.line_of(source, at)}: {problem}")
    return count, problems


def main():
    results = [check(path) for path in cpp_source.files(*FOLDERS)]
    problems = [problem for _, found in results for problem in found]
    print("\n".join(problems) if problems
          else f"ok: {sum(count for count, _ in results)} boundaries name their procedures")
    return 1 if problems else 0


if __name__ == "__main__":
    sys.exit(main())
