"""Where faults can be planted in C++ and GLSL, and sources that hold both forms of a place: for tools/plant-many.

A source is read as tokens, with just enough of the grammar to know functions, statements, and how far an expression
reaches. What is wrong in a rare place does not compile, and is left out.
"""
import bisect
import collections
import re

TOKEN = re.compile(r"""(?P<none>\s+|//[^\n]*|/\*.*?\*/|^[ \t]*\#(?:\\\n|[^\n])*)
    |(?P<text>R"(?P<mark>[^(\s]*)\(.*?\)(?P=mark)"|(?:u8|[uUL])?"(?:\\.|[^"\\\n])*"|'(?:\\.|[^'\\\n])+')
    |(?P<number>(?:0[xXbB][0-9a-fA-F']+|(?:\d[\d']*\.?\d*|\.\d+)(?:[eE][-+]?\d+)?)[uUlLfFzZ]*)
    |(?P<name>[A-Za-z_]\w*)
    |(?P<sign><<=|>>=|<=>|<<|>>|<=|>=|==|!=|&&|\|\||\+\+|--|[-+*/%&|^]=|->|::|.)""", re.S | re.M | re.X)
ASSIGNMENTS = {"=", "+=", "-=", "*=", "/=", "%=", "&=", "|=", "^=", "<<=", ">>="}
OTHER_SIGNS = {"<": ["<=", ">"], "<=": ["<", ">"], ">": [">=", "<"], ">=": [">", "<"], "==": ["!="], "!=": ["=="],
               "+": ["-"], "-": ["+"], "*": ["/"], "/": ["*"], "&&": ["||"], "||": ["&&"], "+=": ["-="],
               "-=": ["+="], "*=": ["/="], "/=": ["*="], "++": ["--"], "--": ["++"]}
OTHER_MEMBERS = {}
for _pair in ("x y", "width height", "left right", "top bottom", "first second", "begin end", "front back",
              "cx cy", "min max", "near far", "start end", "from to", "r g", "g b", "previous next"):
    _a, _b = _pair.split()
    OTHER_MEMBERS.setdefault(_a, _b)
    OTHER_MEMBERS.setdefault(_b, _a)
NEVER = {"constexpr", "consteval", "static_assert", "template", "using", "typedef", "friend", "case", "goto"}

class Token:
    def __init__(self, kind, text, begin, end):
        self.kind, self.text, self.begin, self.end = kind, text, begin, end
        self.match = None      # of a bracket: the index of its partner
        self.inside = False    # of a function
        self.constant = False  # in a constexpr function
        self.statement = 0     # the index of the first token of its statement
        self.block = False     # of a brace: statements are in it


class Source:
    """A file's tokens, with what is a function and where statements begin."""

    def __init__(self, path, text):
        self.path, self.text = path, text
        self.is_shader = not path.endswith((".cpp", ".h"))
        self.lines = [i for i, c in enumerate(text) if c == "\n"]
        self.tokens = [Token(m.lastgroup if m.lastgroup != "mark" else "text", m.group(), m.start(), m.end())
                       for m in TOKEN.finditer(text) if m.lastgroup != "none"]
        self.mark()

    def line(self, position):
        return bisect.bisect_left(self.lines, position) + 1

    def mark(self):
        tokens = self.tokens
        stack = []  # of open brackets
        kinds, constants = ["space"], [False]
        head, ended = 0, False
        for i, token in enumerate(tokens):
            token.inside = kinds[-1] == "function"
            token.constant = constants[-1]
            token.statement = head
            outer = tokens[stack[-1]] if stack else None
            if token.text in ("(", "[", "{"):
                kind, constant = kinds[-1], constants[-1]
                if token.text == "{" and kind == "function":
                    token.block = self.begins_block(i, outer)
                    if token.block:
                        head = i + 1
                elif token.text == "{" and (not outer or outer.text == "{"):
                    words = {t.text for t in tokens[head:i]}
                    if words & {"namespace", "extern"}:
                        kind = "space"
                    elif ("(" in words and "enum" not in words) or (ended and (head == i or tokens[head].text == ",")):
                        kind = "function"
                    else:
                        kind = "class" if words & {"class", "struct", "union"} else "other"
                    constant = constant or bool(words & {"constexpr", "consteval"})
                    token.block = True
                    head = i + 1
                kinds.append(kind)
                constants.append(constant)
                stack.append(i)
            elif token.text in (")", "]", "}") and stack:
                begin = stack.pop()
                token.match, tokens[begin].match = begin, i
                token.block = tokens[begin].block
                ended = kinds.pop() == "function" and kinds[-1] != "function" and token.text == "}"
                constants.pop()
                token.inside = kinds[-1] == "function"
                is_lambda = token.block and token.inside and self.is_lambda(begin)
                head = i + 1 if token.block and not is_lambda else tokens[begin].statement
            elif token.text == ";":
                if not outer or outer.text == "{":
                    head, ended = i + 1, False
            elif token.text == ":" and tokens[head].text in ("case", "default"):
                head = i + 1

    def is_lambda(self, i):
        """Whether the brace begins a lambda's body."""
        before = self.tokens[i - 1]
        if before.text == ")" and before.match:
            before = self.tokens[before.match - 1]
        return before.text in ("]", "mutable")

    def begins_block(self, i, outer):
        """Whether the brace, in a function, begins statements and no values."""
        before = self.tokens[i - 1]
        if before.text in (")", "else", "do", "try") or self.is_lambda(i):
            return True
        return before.text in (";", "{", "}", ":") and (not outer or outer.block)

    def is_head(self, i):
        """Whether the bracket that closes here is that of an if or a loop."""
        opening = self.tokens[i].match
        return opening and self.tokens[opening - 1].text in ("if", "for", "while", "switch", "constexpr", "catch")

    def region(self, i):
        """The tokens from and to which an expression reaches that has the token, an assignment's sides apart."""
        tokens = self.tokens
        begin = i
        while begin > 0:
            t = tokens[begin - 1]
            if t.text in ("(", "[", "{", ",", ";", "?", ":", "return", "else", "do") or t.text in ASSIGNMENTS:
                break
            if t.text in (")", "]", "}") and t.kind == "sign":
                if t.match is None or (t.block and not self.is_lambda(t.match)) or self.is_head(begin - 1):
                    break
                begin = t.match
            else:
                begin -= 1
        end = i
        own = tokens[i].text in ASSIGNMENTS
        while end + 1 < len(tokens):
            t = tokens[end + 1]
            # What is assigned may be a choice.
            if t.text in (")", "]", "}", ",", ";") or (not own and (t.text in ("?", ":") or t.text in ASSIGNMENTS)):
                break
            if t.text in ("(", "[", "{") and t.kind == "sign":
                if t.match is None:
                    break
                end = t.match
            else:
                end += 1
        return begin, end

    def slice(self, begin, end, changed=None, replacement=""):
        """The text of the tokens without comments and in one line, one of them changed."""
        parts = []
        for i in range(begin, end + 1):
            parts.append(replacement if i == changed else self.tokens[i].text)
        return " ".join(parts)


Place = collections.namedtuple("Place", "path line kind begin end changed old new how")


def places_of(source):
    """All that can be changed in a file."""
    tokens = source.tokens
    found = []

    def add(kind, i, new, how="expression", begin=None, end=None):
        if how == "expression":
            begin, end = source.region(i)
            if source.is_shader and tokens[min(end + 1, len(tokens) - 1)].text in ASSIGNMENTS:
                return
        elif begin is None:
            begin = end = i
        # The text of an assertion's condition is part of what it says: it changes as a whole.
        assertion = next((j for j in range(tokens[i].statement, i)
                          if tokens[j].text == "TD_ASSERT" and (tokens[j + 1].match or 0) > i), None)
        if assertion is not None:
            begin, end, how = assertion, tokens[assertion + 1].match + 1, "assertion"
        if "#" in re.sub(r'"[^"]*"', "", source.text[tokens[begin].begin:tokens[end].end]):
            return
        found.append(Place(source.path, source.line(tokens[i].begin), kind, begin, end, i, tokens[i].text, new, how))

    for i in range(1, len(tokens) - 1):
        t, before, after = tokens[i], tokens[i - 1], tokens[i + 1]
        if not t.inside:
            continue
        statement = tokens[t.statement:i + 1]
        if any(s.text in NEVER for s in statement[:6]):
            continue
        spaced = source.text[t.begin - 1].isspace() and source.text[t.end].isspace()
        if t.kind == "sign" and t.text in OTHER_SIGNS and (spaced or t.text in ("++", "--")):
            if t.text in ("*", "&&") and after.text in (",", ")", "=", "const"):
                continue
            kind = {"<": "compare", "=": "compare", "!": "compare", ">": "compare", "&": "and/or", "|": "and/or"}
            for new in OTHER_SIGNS[t.text]:
                add(kind.get(t.text[0], "arithmetic"), i, new)
        elif t.kind == "number":
            if before.text == "[" and after.text == "]" and source.is_shader:
                continue
            # GLSL converts no numbers by itself.
            mark = ".0" if "." in t.text else "u" if t.text.endswith("u") else ""
            for new in ("+ 1", "- 1", "* 0") if not re.fullmatch(r"0[0.]*[uUlLfFzZ]*", t.text) else ("+ 1",):
                add("constant", i, f"({t.text} {new}{mark if source.is_shader else ''})", "token")
        elif t.text in ("true", "false"):
            add("return" if before.text == "return" else "truth", i, "false" if t.text == "true" else "true", "token")
        elif t.text in ("if", "while") and after.text == "(" and after.match:
            # Behind what is declared for the condition.
            begin = k = i + 2
            while k < after.match:
                k = tokens[k].match or k
                if tokens[k].text == ";":
                    begin = k + 1
                k += 1
            add("negation", i, "not " + source.slice(begin, after.match - 1), "negation", begin, after.match - 1)
        elif t.kind == "name" and t.text in ("min", "max") and after.text in ("(", "<"):
            add("min/max", i, "max" if t.text == "min" else "min")
        elif (t.kind == "name" and t.text in OTHER_MEMBERS and before.text in (".", "->") and
              tokens[i - 2].text not in ("{", ",", "(")):
            add("member", i, OTHER_MEMBERS[t.text])
        elif t.text == ";" and t.statement < i and tokens[t.statement].kind == "name":
            leave_out(source, t.statement, i, add)
    return found


def leave_out(source, begin, end, add):
    """The statement, when it is a call or an assignment; behind heads of conditions and loops without braces."""
    tokens = source.tokens
    while tokens[begin].text in ("if", "for", "while", "else", "do"):
        begin += 1
        if tokens[begin].text == "constexpr":
            begin += 1
        if tokens[begin].text == "(" and tokens[begin].match:
            begin = tokens[begin].match + 1
    if begin >= end or tokens[begin].kind != "name" or tokens[begin].text in ("return", "break", "continue", "throw"):
        return
    i = begin
    assigned = False
    while i < end:
        t = tokens[i]
        if t.text in ASSIGNMENTS:
            assigned = True
            break
        if t.text in ("(", "[") and t.match:
            i = t.match
        elif t.kind == "name" and i > begin and tokens[i - 1].text not in (".", "->", "::"):
            return
        elif t.text not in (".", "->", "::") and t.kind != "name":
            return
        i += 1
    if assigned or (tokens[end - 1].text == ")" and tokens[end - 1].match > begin):
        add("left out", end, "", "statement", begin, end)


def with_faults(name, text, faults):
    """A file's text with both forms of each of its faults, which are given as number and place."""
    source = Source(name, text)
    tokens = source.tokens
    # Inner ones first, so that outer ones hold them.
    faults = sorted(faults, key=lambda f: (f[1].end - f[1].begin, f[0]))
    before, after = collections.defaultdict(str), collections.defaultdict(str)
    for number, p in faults:
        is_so = (f"GUIGL_FAULT == {number}" if source.is_shader else
                 f"guiConstFault({number})" if tokens[p.changed].constant else f"guiFault({number})")
        if p.how == "statement":
            prefix, suffix = f"{{ if (!({is_so})) ", " }"
        elif p.how == "negation":
            prefix, suffix = f"({is_so}) != bool(", ")"
        elif p.how == "assertion":
            prefix = f"{{ if ({is_so}) {{ {source.slice(p.begin, p.end, p.changed, p.new)} }} else {{ "
            suffix = " } }"
        else:
            prefix, suffix = f"(({is_so}) ? ({source.slice(p.begin, p.end, p.changed, p.new)}) : (", "))"
        before[p.begin] = prefix + before[p.begin]
        after[p.end] += suffix
    parts, at = [], 0
    for i, token in enumerate(tokens):
        parts += [text[at:token.begin], before.get(i, ""), token.text, after.get(i, "")]
        at = token.end
    parts.append(text[at:])
    result = "".join(parts)
    if name == "src/gpu/Program.cpp":
        result = re.sub(r"glShaderSource\(shader, 1, &(\w+), nullptr\);",
                        r"{ const std::string t = guiFaultText(\1); const char* c = t.c_str(); "
                        r"glShaderSource(shader, 1, &c, nullptr); }", result)
    return result
