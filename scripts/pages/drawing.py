"""A small kit for pictures: boxes, labels and arrows in one look, readable on light and on dark pages. A label that does
not fit its box, or leaves the picture, is an error: widths are those of wide fonts, so other fonts have room to spare."""

from html import escape

SANS = "system-ui, 'DejaVu Sans', Verdana, sans-serif"
MONO = "ui-monospace, 'DejaVu Sans Mono', Menlo, Consolas, monospace"

# Name, light colour, dark colour. "a" to "d" mark what belongs together; each has a fill and a line.
COLOURS = [
    ("paper", "#ffffff", "#16191d"),
    ("frame", "#c9d1d9", "#3b434c"),
    ("ink", "#1b2229", "#e6eaee"),
    ("soft", "#57626d", "#a3adb8"),
    ("plain-fill", "#f3f5f7", "#22272e"),
    ("plain-line", "#8b96a1", "#68737e"),
    ("a-fill", "#dcebfb", "#13304d"),
    ("a-line", "#1f6db5", "#62aef0"),
    ("b-fill", "#fdebd2", "#47300c"),
    ("b-line", "#a85f00", "#eeb057"),
    ("c-fill", "#dcf3e2", "#123a22"),
    ("c-line", "#1d7a3e", "#5fcb87"),
    ("d-fill", "#f4e1f5", "#40203f"),
    ("d-line", "#8d3a92", "#dc94e0"),
]

# Advance of a character over the font's size, a little above DejaVu's.
MONO_ADVANCE = 0.61
SANS_ADVANCE = {"narrow": 0.36, "wide": 0.86, "capital": 0.72, "other": 0.61}


def width_of(text, size, mono=False, bold=False):
    """How wide a label is at most."""
    if mono:
        return len(text) * size * MONO_ADVANCE

    def kind(letter):
        if letter in "iljtfrI.,:;'|!()[] ":
            return "narrow"
        if letter in "mwMW%@—":
            return "wide"
        return "capital" if letter.isupper() else "other"

    return sum(SANS_ADVANCE[kind(letter)] for letter in text) * size * (1.08 if bold else 1)


def number(value):
    """A coordinate, without digits that say nothing."""
    return f"{value:.1f}".removesuffix(".0")


def style():
    """The colours as classes, once for each kind of page. A picture that says that it knows both kinds is given no paper of
    another colour to lie on."""

    def classes(column):
        rules = []
        for colour in COLOURS:
            name, value = colour[0], colour[column]
            kind, what = ("fill", f".{name}")
            if name.endswith("-line"):
                rules.append(f".{name}{{stroke:{value}}}.{name}-text{{fill:{value}}}")
                continue
            rules.append(f"{what}{{{kind}:{value}}}")
        return "".join(rules)

    frame = {column: dict((c[0], c[column]) for c in COLOURS)["frame"] for column in (1, 2)}
    soft = {column: dict((c[0], c[column]) for c in COLOURS)["soft"] for column in (1, 2)}
    extra = {c: f".rim{{stroke:{frame[c]}}}.wire{{stroke:{soft[c]}}}" for c in (1, 2)}
    return (f":root{{color-scheme:light dark}}text{{font-family:{SANS}}}.mono{{font-family:{MONO}}}.bold{{font-weight:600}}.none{{fill:none}}"
            f"{classes(1)}{extra[1]}"
            f"@media (prefers-color-scheme:dark){{{classes(2)}{extra[2]}}}")


class Picture:
    """One drawing. Coordinates are pixels; the height may be set at the end."""

    def __init__(self, title, description, width=560):
        self.title = title
        self.description = description
        self.width = width
        self.height = 0
        self.parts = []

    def reach(self, bottom):
        self.height = max(self.height, bottom)

    def text(self, x, y, words, size=13, colour="ink", mono=False, bold=False, anchor="start", room=None):
        """A label whose line of writing is y. `room`: how wide it may be."""
        width = width_of(words, size, mono, bold)
        left = {"start": x, "middle": x - width / 2, "end": x - width}[anchor]
        if room is not None and width > room:
            raise ValueError(f"{self.title}: {words!r} takes {width:.0f}, has {room:.0f}")
        if left < 4 or left + width > self.width - 4:
            raise ValueError(f"{self.title}: {words!r} leaves the picture: {left:.0f} to {left + width:.0f}")
        classes = " ".join([colour] + ["mono"] * mono + ["bold"] * bold)
        place = "" if anchor == "start" else f' text-anchor="{anchor}"'
        self.parts.append(f'<text x="{number(x)}" y="{number(y)}" font-size="{number(size)}" class="{classes}"{place}>'
                          f"{escape(words, quote=False)}</text>")
        self.reach(y + size * 0.5)

    def rect(self, x, y, width, height, colour="plain", radius=5, dashed=False, fill=True):
        dash = ' stroke-dasharray="4 3"' if dashed else ""
        self.parts.append(f'<rect x="{number(x)}" y="{number(y)}" width="{number(width)}" height="{number(height)}" '
                          f'rx="{radius}" class="{colour + "-fill" if fill else "none"} {colour}-line"{dash}/>')
        self.reach(y + height)

    def box(self, x, y, width, lines, colour="plain", pad=9, leading=17, height=None, dashed=False):
        """A box around lines of text, which may be (text, options); returns where it ends."""
        needed = pad * 2 + leading * len(lines) - 5
        height = needed if height is None else height
        self.rect(x, y, width, height, colour, dashed=dashed)
        top = y + (height - needed) / 2 + pad + 10
        for line in lines:
            words, options = line if isinstance(line, tuple) else (line, {})
            self.text(x + 10, top, words, room=width - 20, **options)
            top += leading
        return y + height

    def line(self, points, colour="wire", width=1.4, dashed=False, arrow=False):
        dash = ' stroke-dasharray="4 3"' if dashed else ""
        path = " ".join(f"{number(x)},{number(y)}" for x, y in points)
        self.parts.append(f'<polyline points="{path}" class="none {colour}" stroke-width="{number(width)}"{dash}/>')
        if arrow:
            self.head(points[-2], points[-1], colour)

    def head(self, before, end, colour):
        """The head of an arrow that ends at right angles."""
        x, y = end
        dx = (x > before[0]) - (x < before[0])
        dy = (y > before[1]) - (y < before[1])
        one = (x - dx * 7 - dy * 4, y - dy * 7 - dx * 4)
        two = (x - dx * 7 + dy * 4, y - dy * 7 + dx * 4)
        points = " ".join(f"{number(a)},{number(b)}" for a, b in (one, end, two))
        self.parts.append(f'<polyline points="{points}" class="none {colour}" stroke-width="1.4"/>')

    def circle(self, x, y, radius, colour, filled=True):
        fill = f"{colour}-line-text" if filled else "paper"
        self.parts.append(f'<circle cx="{number(x)}" cy="{number(y)}" r="{number(radius)}" '
                          f'class="{fill} {colour}-line" stroke-width="2"/>')

    def svg(self):
        width, height = number(self.width), number(self.height + 14)
        head = (f'<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 {width} {height}" width="{width}" '
                f'height="{height}" role="img" aria-labelledby="title description">')
        frame = (f'<rect x="0.5" y="0.5" width="{number(self.width - 1)}" height="{number(self.height + 13)}" rx="8" '
                 'class="paper rim"/>')
        return "\n".join([head, f'<title id="title">{escape(self.title)}</title>',
                          f'<desc id="description">{escape(self.description)}</desc>',
                          f"<style>{style()}</style>", frame, *self.parts, "</svg>", ""])
