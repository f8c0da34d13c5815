"""Finds the small changes ("mutations") that a test should notice in a C++ source text.

A mutation changes behaviour and nothing else: comments, #includes, texts between quotes, static_asserts and
declarations without a value are left alone.
"""
import hashlib
import re
from dataclasses import dataclass

TOKEN = re.compile(
    r'''(?P<skip>//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:[^\n\\]|\\.)*)
      | (?P<text>"(?:[^"\\\n]|\\.)*"|'(?:[^'\\\n]|\\.)*')
      | (?P<number>\d[\w']*)
      | (?P<word>[A-Za-z_]\w*)
      | (?P<sign><<=|>>=|\.\.\.|->|::|\+\+|--|<=|>=|==|!=|&&|\|\||<<|>>|[-+*/%&|^]=|[^\s\w])''',
    re.VERBOSE | re.MULTILINE | re.DOTALL)

COMPARISONS = {'<': '<=', '<=': '<', '>': '>=', '>=': '>', '==': '!=', '!=': '=='}
OPERATORS = {'+': '-', '-': '+', '*': '/', '/': '*', '%': '*', '&&': '||', '||': '&&', '&': '|', '|': '&',
             '<<': '>>', '>>': '<<', '+=': '-=', '-=': '+=', '|=': '&=', '&=': '|='}
STEPS = {'++': '--', '--': '++'}
TYPE_WORDS = {'struct', 'class', 'union', 'enum', 'namespace', 'extern'}
# A statement that begins so is left in place: what follows would not compile, or no behaviour goes with it.
KEPT_STATEMENTS = {'return', 'if', 'for', 'while', 'switch', 'case', 'default', 'do', 'else', 'using', 'typedef',
                   'static', 'const', 'constexpr', 'auto', 'struct', 'class', 'enum', 'try', 'catch', 'throw',
                   'template', 'char', 'int', 'short', 'unsigned', 'void', 'bool', 'public', 'private', 'protected'}


@dataclass(frozen=True)
class Token:
    kind: str
    text: str
    start: int
    end: int


@dataclass(frozen=True)
class Mutation:
    kind: str  # negate, compare, constant, operator, drop
    line: int
    start: int
    end: int
    replacement: str

    def apply(self, source):
        return source[:self.start] + self.replacement + source[self.end:]


def tokenize(source):
    tokens = []
    for match in TOKEN.finditer(source):
        kind = match.lastgroup
        if kind != 'skip':
            tokens.append(Token(kind, match.group(), match.start(), match.end()))
    return tokens


def closing(tokens, at):
    """The index of the bracket that closes the one at `at`."""
    depth = 0
    for i in range(at, len(tokens)):
        if tokens[i].text in ('(', '{', '['):
            depth += 1
        elif tokens[i].text in (')', '}', ']'):
            depth -= 1
            if depth == 0:
                return i
    return len(tokens) - 1


def opens(tokens, begin, at, outer):
    """What the brace at `at` opens: a type (or a namespace), a value or code. `begin` is where its statement begins."""
    head = [token.text for token in tokens[begin:at]]
    before = head[-1] if head else ''
    if before != ')' and TYPE_WORDS.intersection(head) and '=' not in head:
        return 'type'
    if before in ('=', ',', '(', 'return'):
        return 'value'
    if before in ('', ')', ':', 'else', 'do', 'try', 'const', 'noexcept', 'override'):
        return 'value' if outer == 'value' else 'code'
    last_call = len(head) - 1 - head[::-1].index(')') if ')' in head else len(head)
    return 'code' if '->' in head[last_call:] else 'value'


def is_without_effect(tokens, i):
    """A check that runs when compiling, or room taken beforehand, which saves time and decides nothing."""
    is_call = i + 1 < len(tokens) and tokens[i + 1].text == '('
    return is_call and (tokens[i].text == 'static_assert' or tokens[i].text.startswith('reserve'))


class Places:
    """For each token: whether it is `code`, part of a `value` outside code, or a `type`'s declaration; and whether a
    statement begins there."""

    def __init__(self, tokens):
        self.place = []
        self.begins = []
        stack = ['type']
        begin = 0
        in_value = False
        fresh = True  # the next token begins a statement
        headers = []  # where the brackets of if, for, while and switch close
        skipped_to = -1
        depth = 0
        for i, token in enumerate(tokens):
            if is_without_effect(tokens, i) and i > skipped_to:
                skipped_to = closing(tokens, i + 1)
            if i <= skipped_to:
                self.place.append('skip')
            elif 'code' in stack:
                self.place.append('code')
            else:
                self.place.append('value' if stack[-1] == 'value' or in_value else 'type')
            self.begins.append(fresh and self.place[-1] == 'code')
            fresh = False
            if token.text in ('if', 'for', 'while', 'switch') and i + 1 < len(tokens):
                headers.append(closing(tokens, i + 1 if tokens[i + 1].text == '(' else i + 2))
            depth += {'(': 1, '[': 1, ')': -1, ']': -1}.get(token.text, 0)
            if token.text == '=':
                in_value = True
            elif token.text == '{':
                stack.append(opens(tokens, begin, i, stack[-1]))
                fresh = stack[-1] != 'value'
            elif token.text == '}' and len(stack) > 1:
                fresh = stack.pop() != 'value'
            elif token.text == ';' and depth == 0:
                fresh = True
            elif token.text == ':' and depth == 0 and tokens[begin].text in ('case', 'default'):
                fresh = True
            elif token.text in ('else', 'do') or i in headers:
                fresh = True
            if fresh:
                begin = i + 1
                in_value = False


def number_changes(text):
    match = re.fullmatch(r"(0[xX][0-9a-fA-F]+|\d+)([uUlL]*)", text)
    if match is None:
        return []
    digits, suffix = match.groups()
    value = int(digits, 0) if digits.lower().startswith('0x') else int(digits)
    form = '0x{:X}' if digits.lower().startswith('0x') else '{}'
    changed = [value + 1] if value == 0 else [value - 1, value + 1]
    return [form.format(number) + suffix for number in changed]


def is_binary(source, token):
    return source[token.start - 1:token.start].isspace() and source[token.end:token.end + 1].isspace()


def is_array_size(tokens, i):
    """A part of the size of the array that is being declared."""
    while i >= 0 and tokens[i].text not in ('[', ']', ';', '{', '}', ','):
        i -= 1
    if i < 2 or tokens[i].text != '[' or tokens[i - 1].kind != 'word':
        return False
    before = tokens[i - 2]
    return before.text in ('*', '>') or (before.kind == 'word' and before.text not in ('return', 'case', 'else'))


def condition_span(tokens, at):
    """The tokens of the condition of the `if`, `while` or `for` at `at`, or None."""
    opening = at + 1 if at + 1 < len(tokens) and tokens[at + 1].text == '(' else at + 2
    if opening >= len(tokens) or tokens[opening].text != '(':
        return None
    end = closing(tokens, opening)
    cuts = [opening]
    depth = 0
    for i in range(opening + 1, end):
        depth += {'(': 1, '{': 1, '[': 1, ')': -1, '}': -1, ']': -1}.get(tokens[i].text, 0)
        if depth == 0 and tokens[i].text == ';':
            cuts.append(i)
    if tokens[at].text == 'for':
        if len(cuts) != 3:
            return None  # a loop over a range
        begin, end = cuts[1], cuts[2]
    else:
        begin = cuts[-1]
    return (begin + 1, end - 1) if end - begin > 1 else None


def is_declaration(tokens, at, end):
    """`type name`, as in `std::vector<int> *found`."""
    i = at
    while i < end and (tokens[i].kind == 'word' and tokens[i + 1].text == '::'):
        i += 2
    if tokens[i].kind != 'word':
        return False
    i += 1
    if tokens[i].text == '<':
        depth = 0
        while i < end:
            depth += {'<': 1, '>': -1, '>>': -2}.get(tokens[i].text, 0)
            i += 1
            if depth <= 0:
                break
    while i < end and tokens[i].text in ('*', '&', '::'):
        i += 1
    return tokens[i].kind == 'word'


def droppable(tokens, at):
    """The index of the `;` that ends the statement at `at`, or None when it is not to be dropped."""
    first = tokens[at]
    if first.text == 'break' and tokens[at - 2].text == 'default':
        return None  # at the end of a switch, which ends without it too
    if first.text in KEPT_STATEMENTS and not (first.text == 'return' and tokens[at + 1].text == ';'):
        return None
    if first.kind != 'word' and first.text not in ('*', '++', '--', '('):
        return None
    end = at
    while end < len(tokens) and tokens[end].text != ';':
        if is_without_effect(tokens, end):
            return None
        if tokens[end].text in ('(', '{', '['):
            end = closing(tokens, end)
        elif tokens[end].text in (')', '}', ']'):
            return None
        end += 1
    if end >= len(tokens) or (first.kind == 'word' and end - at > 1 and is_declaration(tokens, at, end)):
        return None
    return end


def token_changes(source, tokens, i, place):
    """(kind, replacement) for each change of one token."""
    token = tokens[i]
    if is_array_size(tokens, i):
        return []
    if token.kind == 'number':
        return [('constant', text) for text in number_changes(token.text)]
    if i > 0 and tokens[i - 1].text == 'operator':
        return []
    if token.text in ('true', 'false'):
        return [('negate', 'false' if token.text == 'true' else 'true')]
    if place == 'code' and token.text in STEPS:
        return [('operator', STEPS[token.text])]
    if token.text == '!':
        return [('negate', '')]
    if token.kind == 'sign' and is_binary(source, token):
        for kind, table in (('compare', COMPARISONS), ('operator', OPERATORS)):
            if token.text in table:
                return [(kind, table[token.text])]
    return []


def find_mutations(source):
    tokens = tokenize(source)
    places = Places(tokens)
    found = []

    def add(kind, start, end, replacement):
        found.append(Mutation(kind, source.count('\n', 0, start) + 1, start, end, replacement))

    for i, token in enumerate(tokens):
        if places.place[i] in ('type', 'skip'):
            continue
        for kind, replacement in token_changes(source, tokens, i, places.place[i]):
            add(kind, token.start, token.end, replacement)
        if places.place[i] == 'code' and token.text in ('if', 'while', 'for'):
            span = condition_span(tokens, i)
            if span is not None:
                start, end = tokens[span[0]].start, tokens[span[1]].end
                add('negate', start, end, '!(' + source[start:end] + ')')
        if places.begins[i]:
            last = droppable(tokens, i)
            if last is not None:
                # The lines stay: a later line's number may show in a trace.
                lines = source.count('\n', token.start, tokens[last].end)
                add('drop', token.start, tokens[last].end, '\n' * lines + ';')
    return found


def rank(*parts):
    return hashlib.sha256(':'.join(str(part) for part in parts).encode()).hexdigest()


def draw(sources, seed):
    """All mutations that a seed draws from `sources`, a dictionary of texts by path, in the order of the draw: (path,
    mutation) pairs, one for each line. First comes the line, so that a line with many numbers weighs no more."""
    by_line = {}
    for path in sorted(sources):
        for mutation in find_mutations(sources[path]):
            by_line.setdefault((path, mutation.line), []).append(mutation)
    drawn = []
    for path, line in sorted(by_line, key=lambda key: rank(seed, *key)):
        drawn.append((path, min(by_line[path, line],
                                key=lambda m: rank(seed, path, m.start, m.end, m.kind, m.replacement))))
    return drawn
