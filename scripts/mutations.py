"""The small faults that mutate.py makes: for a line of code, other lines that a slip could have written."""

import re

# What is no code: texts, characters (not the marks between digits), comments, lines of the preprocessor.
NO_CODE = re.compile(r'R"(\w*)\(.*?\)\1"|//[^\n]*|/\*.*?\*/|"(?:\\.|[^"\\\n])*"'
                     r"|(?<![0-9A-Fa-f])'(?:\\.|[^'\\\n])+'|^[ \t]*#(?:\\\n|[^\n])*", re.S | re.M)
SWAPS = {"<": "<=", "<=": "<", ">": ">=", ">=": ">", "==": "!=", "!=": "==", "+": "-", "-": "+", "*": "/",
         "+=": "-=", "-=": "+=", "&&": "||", "||": "&&"}
SWAP = re.compile("(?<= )(" + "|".join(re.escape(sign) for sign in sorted(SWAPS, key=len, reverse=True)) + ")(?= |$)")
NUMBER = re.compile(r"(?<![\w.'])\d+(?![\w.'])")
CONDITION = re.compile(r"^(\s*(?:\} else )?(?:if|while) \((?:.*; )?)([^;]+)(\)(?: \{)?)$")
DECLARES = re.compile(r"(?<![=!<>])=(?!=)")
RETURN = re.compile(r"\breturn ([^;]+);")
TRUTH = re.compile(r" (?:[<>!=]=|[<>]|&&|\|\|) |^!|^(?:true|false)$")
CALL = re.compile(r"^(\s+)[\w:.\->\[\]*]+\(.*\);$")
NO_STATEMENT = re.compile(r"^\s*(?:static_assert|using|friend|template|typedef|case|enum|struct|class|union)\b")
WORDS = {"break": "continue", "continue": "break"}


def code_of(text):
    """The text, with blanks in the place of all that is no code."""
    return NO_CODE.sub(lambda found: re.sub(r"[^\n]", " " if found[0].lstrip().startswith(("/", "#")) else "_",
                                            found[0]), text)


def is_balanced(code):
    depth = 0
    for sign in code:
        depth += (sign == "(") - (sign == ")")
        if depth < 0:
            return False
    return depth == 0


def replaced(line, found, by, group=0):
    return line[:found.start(group)] + by + line[found.end(group):]


def returns(line, code):
    for found in RETURN.finditer(code):
        value = found[1]
        if TRUTH.search(value):
            yield from (replaced(line, found, other, 1) for other in ("true", "false") if other != value)
        elif value not in ("{}", "std::nullopt", "*this", "nullptr"):
            yield replaced(line, found, "{}", 1)


def conditions(line, code):
    found = CONDITION.match(code)
    if found and is_balanced(found[2]) and not DECLARES.search(found[2]):
        yield replaced(line, found, f"!({line[found.start(2):found.end(2)]})", 2)


def mutants_of(line, code):
    """Other lines, for a line and what of it is code. None for what only declares."""
    if not code.startswith("    ") or NO_STATEMENT.match(code) or code.rstrip().endswith("\\"):
        return []
    found = [replaced(line, sign, SWAPS[sign[0]]) for sign in SWAP.finditer(code)]
    found += [replaced(line, digits, str(int(digits[0]) + step)) for digits in NUMBER.finditer(code)
              for step in (1, -1) if int(digits[0]) + step >= 0]
    found += [*conditions(line, code), *returns(line, code)]
    found += [replaced(line, word, WORDS[word[0]]) for word in re.finditer(r"\b(break|continue)(?=;)", code)]
    if (call := CALL.match(code)) and is_balanced(code):
        found.append(call[1] + ";")
    return found


def lines_of(text):
    """Number, line and mutants of each line that has some."""
    for number, (line, code) in enumerate(zip(text.split("\n"), code_of(text).split("\n")), 1):
        if found := mutants_of(line, code):
            yield number, line, found
