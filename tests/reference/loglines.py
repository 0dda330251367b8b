# SPDX-License-Identifier: GPL-3.0-or-later
"""The lines that the program can write at info level and above, as its sources have them."""

import re

LEVELS = {
    "qInfo": "INFO", "qWarning": "WARN", "qCritical": "ERROR", "qFatal": "FATAL",
    "info": "INFO", "warn": "WARN", "error": "ERROR",
}
STRING = r'"(?:[^"\\]|\\.)*"'
TOKEN = re.compile(rf"{STRING}|'(?:[^'\\]|\\.)*'|//[^\n]*|/\*.*?\*/|<<|.", re.DOTALL)


def tokens(code):
    """Strings, characters, operators and single letters, without comments."""
    return [token for token in TOKEN.findall(code) if not token.startswith(("//", "/*"))]


def template(operands, separator=""):
    """The text of a line; what is not fixed is "…"."""
    text = ""
    for operand in operands:
        operand = operand.strip()
        text += separator if text else ""
        # Strings one after the other are one string.
        if re.fullmatch(rf"(?:{STRING}\s*)+|'.'", operand):
            pieces = re.findall(STRING, operand) or [operand]
            text += "".join(re.sub(r"\\(.)", r"\1", piece[1:-1]) for piece in pieces)
        elif not text.endswith("…"):
            text += "…"
    return text.strip()


def split(found, separators, end):
    """The operands up to the end of the statement, at the outermost depth."""
    operands, depth = [""], 0
    for token in found:
        if depth == 0 and token == end:
            break
        depth += token in "([{" if len(token) == 1 else 0
        depth -= token in ")]}" if len(token) == 1 else 0
        if depth < 0:
            raise ValueError(f"not understood: {''.join(found)[:100]}")
        if depth == 0 and token in separators:
            operands.append("")
        else:
            operands[-1] += token
    return operands


def of_cpp(code):
    found = tokens(code)
    # A line that is at this level only sometimes counts as one of this level.
    text = re.sub(r"\([^()]*\?\s*(qInfo|qWarning|qCritical)\(\)\s*:\s*qDebug\(\)\)", r"\1()", "".join(found))
    for call in re.finditer(r"\b(?:(qInfo|qWarning|qCritical|qFatal)\(|q(?:C(Info|Warning|Critical))\(\w+)\)", text):
        operands = split(tokens(text[call.end():]), ["<<"], ";")
        # Only a stream that is told otherwise sets a blank between two operands.
        yield LEVELS[call[1] or f"q{call[2]}"], template(operands[1:], "" if "nospace()" in operands[0] else " ")
    # With a format a line would escape this.
    for call in re.finditer(r"\b(?:(?:qInfo|qWarning|qCritical|qFatal)\((?!\))|qC(?:Info|Warning|Critical)\((?!\w+\)))", text):
        raise ValueError(f"{call[0]}...: only the stream form is understood")


def of_qml(code):
    text = "".join(tokens(code))
    for call in re.finditer(r"\bconsole\.(info|warn|error)\(", text):
        operands = split(tokens(text[call.end():]), ["+", ","], ")")
        yield LEVELS[call[1]], template(operands)


def of_sources(checkout):
    lines = set()
    for path in (path for folder in ("src", "include", "qtmqtt") for path in sorted((checkout / folder).rglob("*"))
                 if path.suffix in (".cpp", ".h")):
        lines.update(of_cpp(path.read_text(encoding="utf-8")))
    for path in sorted((checkout / "qml").rglob("*.qml")) + sorted((checkout / "qml").rglob("*.js")):
        lines.update(of_qml(path.read_text(encoding="utf-8")))
    return lines
