# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: CC0-1.0

"""Finds the places of a C++ source at which scripts/seed-faults can put a fault, one line each.

The layout of clang-format is relied on: operators stand between blanks, brackets of templates do
not; a statement that fits stands on one line. What is found is text, so some faults do not compile.

Left out, because by their form they cannot change what a right program does:
- comments, the text of literals, preprocessor lines, static_assert and the constants of attributes;
- preconditions: they say what callers of ours never do;
- hints of performance (reserve, shrink_to_fit, thread names and priorities) and log levels;
- exchanged arguments of functions that do not care (min, max, hypot, gcd, lcm);
- exchanged statements that have no name in common, settings of one object, calls of one function,
  and assignments and calls to objects of which neither mentions the other's: most of these are no
  faults;
- numbers of 1000 and more off by one: these are measures, and nobody can tell;
- dropped lines that only give memory back, which the sanitizers' build watches;
- `(void)` casts and declarations, whose absence does not compile or does nothing.
"""

import re
from dataclasses import dataclass

FLIPPED = {"<": ">=", ">": "<=", "<=": ">", ">=": "<", "==": "!=", "!=": "=="}
OFF_BY_ONE = {"<": "<=", "<=": "<", ">": ">=", ">=": ">"}

COMPARISON = re.compile(r"(?<= )(<=|>=|==|!=|<|>)(?= )")
BOUND = re.compile(r"\b(?:for|while) \(.*? (<=|>=|<|>) ")
INTEGER = re.compile(r"(?<![\w.'])(?<!e-)(\d+)(?=U?[^\w.'])")
PLUS_ONE = re.compile(r"( [+-] 1)(?![\w.'])")
CALL = re.compile(r"([\w:]+)\((\w+), (\w+)\)")
WRITING = re.compile(
    r"\s+(?:(?:\+\+|--)(\S+)|([^\s=(]+)(?:\+\+|--)|([^\s=(]+) [-+*/|&]?= .*|([^\s=(]+?)(?:\.|->)\w+\(.*);$")
STATEMENT = re.compile(
    r"\s+(?:return\b.*|throw .*|break|continue|(?:\+\+|--)\S+|\S+(?:\+\+|--)"
    r"|[^\s(]+\(.*|[^\s=(]+ [-+*/|&]?= .*);$")
WITHOUT_EFFECT = re.compile(
    r"precondition\(|static_assert|\[\[|reserve\(|shrink_to_fit|pthread_set|av_log_set_level|free\(")
INDIFFERENT = ("min", "max", "hypot", "gcd", "lcm")


@dataclass(frozen=True)
class Fault:
    path: str  # of the source, from the project's root
    line: int  # the first one concerned, counted from 0
    kind: str
    lines: tuple[str, ...]  # what stands from there on, in as many lines


def masked(line: str) -> str:
    """The line with blanks for its comment and for the text of its literals: columns stay."""
    line = re.sub(r'"(?:[^"\\]|\\.)*"|\'(?:[^\'\\]|\\.)\'', lambda text: '"' * len(text[0]), line)
    return re.sub(r"//.*", lambda text: " " * len(text[0]), line)


def exchange(line: str, match: re.Match, group: int, text: str) -> tuple[str]:
    return (line[:match.start(group)] + text + line[match.end(group):],)


def is_statement(lines: list[str], number: int) -> bool:
    """Whether a statement stands on this line, and nothing else."""
    before = next((line.rstrip() for line in reversed(lines[:number]) if line.strip()), "")
    return bool(STATEMENT.fullmatch(lines[number].rstrip())) and before[-1:] in ("{", "}", ";", ":")


def names(line: str) -> set[str]:
    """The names in a line but for those of functions and types."""
    return set(re.findall(r"(?<![\w:])[A-Za-z_]\w*\b(?!\(|::|<)", line)) - {"this", "const", "true", "false", "nullptr"}


def exchange_is_seen(first: str, second: str) -> bool:
    """Whether the order of two statements is likely to matter; both stand side by side in one block."""
    if any(re.match(r"\s+(return|throw|break|continue)\b", each) for each in (first, second)):
        return False
    callees = [re.match(r"\s+(\S*?)(?:(?:\.|->|_)set\w*)?\(", each) for each in (first, second)]
    if None not in callees and callees[0][1] == callees[1][1]:
        return False
    writings = [WRITING.fullmatch(each.rstrip()) for each in (first, second)]
    if None in writings:
        return bool(names(first) & names(second))
    written = [next(filter(None, writing.groups())) for writing in writings]
    return written[0] in second or written[1] in first


def faults_of_line(path: str, text: list[str], code: list[str], number: int) -> list[Fault]:
    found = []

    def add(kind: str, lines: tuple[str, ...]) -> None:
        found.append(Fault(path, number, kind, lines))

    line, bare = text[number], code[number]
    for match in COMPARISON.finditer(bare):
        add("flipped comparison", exchange(line, match, 1, FLIPPED[match[1]]))
    for match in BOUND.finditer(bare):
        add("off by one", exchange(line, match, 1, OFF_BY_ONE[match[1]]))
    for match in PLUS_ONE.finditer(bare):
        add("off by one", exchange(line, match, 1, ""))
    for match in INTEGER.finditer(bare):
        if PLUS_ONE.search(bare) is None and int(match[1]) < 1000:
            add("off by one", exchange(line, match, 1, str(int(match[1]) + 1)))
    for match in CALL.finditer(bare):
        if match[1].split("::")[-1] not in INDIFFERENT and match[2] != match[3]:
            add("swapped order", (f"{line[:match.start(2)]}{match[3]}, {match[2]}{line[match.end(3):]}",))
    if is_statement(code, number):
        indentation = line[:len(line) - len(line.lstrip())]
        add("dropped line", (indentation + "{}",))
        if (number + 1 < len(text) and is_statement(code, number + 1)
                and WITHOUT_EFFECT.search(code[number + 1]) is None
                and exchange_is_seen(code[number], code[number + 1])):
            add("swapped order", (text[number + 1], line))
    return found


def faults_of(path: str, source: str) -> list[Fault]:
    text = source.splitlines()
    code = [masked(line) for line in text]
    return [fault for number in range(len(text))
            if not code[number].startswith("#") and WITHOUT_EFFECT.search(code[number]) is None
            for fault in faults_of_line(path, text, code, number)]
