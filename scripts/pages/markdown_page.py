"""A Markdown page of the project as doxygen reads it: headings with the anchors that links name, links that lead where they
lead in HTML, codes as links, and nothing that doxygen takes for a command."""

import re
from pathlib import Path

FENCE = re.compile(r"^\s*```")
LINK = re.compile(r"(!?)\[((?:[^\]\[]|`[^`]*`)*)\]\(([^)\s]+)\)")
CODE_SPAN = re.compile(r"(`[^`]+`)")


def anchor_of(heading):
    """The anchor of a heading, as the pages' links write it."""
    return re.sub(r"[^a-z0-9 _-]", "", heading.lower()).replace(" ", "-")


def code_links(text, known, form):
    """Codes in a text as links to what the header says of them; a number with more digits is another."""
    def link(found):
        code = found[0]
        return form.format(code=code, name=known[code][0]) if code in known else code
    return re.sub(r"(?<![\w\"\[])0x[0-9A-F]{4}(?![0-9A-F\w])", link, text)


class MarkdownPage:
    def __init__(self, root, path, name, pages, headers, copied, known):
        self.root = root
        self.path = path
        self.name = name
        self.pages = pages
        self.headers = headers
        self.copied = {file.resolve(): file.name for file in copied}
        self.known = known
        self.anchors = {}
        self.title = "The project" if name == "readme" else ""

    def text(self):
        done = []
        prose = []
        fenced = False
        titled = False

        def flush():
            done.append(self.prose("\n".join(prose)))
            prose.clear()

        for line in self.path.read_text(encoding="utf-8").split("\n"):
            if FENCE.match(line):
                flush()
                fenced = not fenced
                done.append(re.sub(r"```(sh|console|sql|ebnf|text|python|c|cpp)$", self.language, line))
            elif fenced:
                done.append(line)
            elif re.match("#+ ", line):
                flush()
                done.append(self.heading(line, titled))
                titled = True
            else:
                prose.append(line)
                if not line.strip():
                    flush()
        flush()
        return "\n".join(done)

    @staticmethod
    def language(found):
        """The languages that doxygen colours; it warns of no other, but shows it."""
        return "```{." + found[1] + "}" if found[1] in ("c", "cpp") else "```{.unparsed}"

    def heading(self, line, titled):
        """Headings are shown without marks."""
        words = line.lstrip("# ")
        anchor = f"{self.name}-{anchor_of(words)}"
        repeated = self.anchors.setdefault(anchor, 0)
        self.anchors[anchor] += 1
        if repeated:
            anchor += f"-{repeated}"
        if self.title and not titled:
            return f"# {self.title} {{#{self.name}}}"
        return f"{self.escape(line.replace('`', ''))} {{#{anchor if titled else self.name}}}"

    def prose(self, text):
        """Links first, since their words may hold code; the rest between code spans, which may go over a line's end."""
        pieces = []
        end = 0
        for found in LINK.finditer(text):
            pieces += [self.plain(text[end:found.start()]), self.link(found)]
            end = found.end()
        text = "".join([*pieces, self.plain(text[end:])])
        return re.sub(r"\*\*(.+?)\*\*", r"<b>\1</b>", text, flags=re.S)

    def plain(self, text):
        parts = CODE_SPAN.split(text)
        return "".join(self.span(part) if i % 2 else self.escape(code_links(part, self.known, "[{code}](@ref {name})"))
                       for i, part in enumerate(parts))

    @classmethod
    def span(cls, code):
        """Between two marks at least, since doxygen takes an apostrophe for the end of what begins with one; between three
        where it would do so with two. It drops a "%" there, and stumbles over the braces of names that nobody has."""
        inside = code.strip("`")
        if "%" in inside or "}::" in inside:
            entities = {"&": "&amp;", "<": "&lt;", ">": "&gt;", '"': "&quot;"}
            text = "".join(entities.get(letter, "\\" + letter if letter in "\\@#%*_" else letter) for letter in inside)
            return f"<code>{text.replace('::', chr(92) + '::')}</code>"
        mark = "```" if "''" in inside else "``"
        return f"{mark}{inside}{mark}"

    @staticmethod
    def escape(text):
        """What doxygen would take for a command, a tag or an automatic link."""
        return re.sub(r"([\\@](?!ref )|#(?=\w)|%(?=\w)|::)", r"\\\1", text)

    def link(self, found):
        picture, words, target = found.groups()
        if re.match(r"(https?|mailto):", target):
            return found[0]
        name, _, fragment = target.partition("#")
        place = (self.path.parent / name).resolve() if name else self.path
        if picture:
            return f"![{words}]({place.name})"
        address = self.address(place, fragment)
        return f"[{words}]({address})" if address else words

    def address(self, place, fragment):
        """Where a file of the project is found in HTML; nothing where it is not there."""
        if place in self.pages:
            name = self.pages[place]
            return f"@ref {name}-{fragment}" if fragment else f"@ref {name}"
        if place in self.copied:
            return self.copied[place]
        relative = str(place.relative_to(self.root))
        if relative in self.headers:
            folder = self.headers[relative][0].removeprefix("include/")
            return f"@ref {folder}/{place.name}"
        if relative == "docs/trace-points.tsv":
            return "@ref trace_points"
        if place.parent == self.root / "examples" and place.suffix in (".c", ".cpp"):
            return f"@ref {place.name}"
        if relative == "platform":
            return "@ref porters"
        if relative == "docs/schemas":
            return "@ref companion"
        return ""
