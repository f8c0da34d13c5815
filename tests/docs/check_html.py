"""The reference as it is built: every link leads to a file of it and to a place there, the menu's and the search's too; every
function of the libraries and every class has an example; the manual pages name pages that are there.

usage: check_html.py REFERENCE (the folder that scripts/reference.sh wrote)
       check_html.py --links HTML (its pages alone, wherever they lie)
"""

import re
import sys
import xml.etree.ElementTree as ET
from html.parser import HTMLParser
from pathlib import Path
from urllib.parse import unquote, urlsplit

# The platform calls it, callers never do; and types of functions.
WITHOUT_EXAMPLE = re.compile(r"dsql_db_handle_callback|\w+_sink")
CLASSES = {"database", "statement", "value", "rowset", "row", "error"}


class Words(HTMLParser):
    """What a page says, and what of it in code."""

    def __init__(self, path):
        super().__init__()
        self.codes = []
        self.inside = []
        self.plain = []
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attributes):
        kind = dict(attributes).get("class") or ""
        if tag == "code":
            self.codes.append("")
        if tag in ("code", "script", "style") or (tag == "div" and (self.inside or "fragment" in kind)):
            self.inside.append(tag)

    def handle_endtag(self, tag):
        if self.inside and self.inside[-1] == tag:
            self.inside.pop()

    def handle_data(self, text):
        if self.inside and self.inside[-1] == "code":
            self.codes[-1] += text
        elif not self.inside:
            self.plain.append(text)


class Page(HTMLParser):
    def __init__(self, path):
        super().__init__()
        self.links = []
        self.places = set()
        self.feed(path.read_text(encoding="utf-8"))

    def handle_starttag(self, tag, attributes):
        for name, value in attributes:
            if name in ("href", "src", "data") and value:
                self.links.append(value)
            elif name in ("id", "name") and value:
                self.places.add(value)


def script_links(path):
    """The addresses in the lists of the menu and of the search."""
    text = path.read_text(encoding="utf-8")
    if path.name == "menudata.js":
        return re.findall(r'url:"([^"]+)"', text)
    if path.parent.name == "search" and re.fullmatch(r"\w+_[0-9a-f]+\.js", path.name):
        return [link for link in re.findall(r"\['((?:\.\./)[^']+)'", text)]
    return []


def check_link(link, page, html, pages):
    """What is wrong with a link; nothing where it leads somewhere, or out of the reference altogether."""
    parts = urlsplit(link)
    if parts.scheme in ("http", "https", "mailto", "javascript", "data"):
        return None
    target = (page.parent / unquote(parts.path)).resolve() if parts.path else page
    if html not in target.parents:
        return "leads out of the reference"
    if not target.is_file():
        return "leads nowhere"
    if parts.fragment and target in pages and unquote(parts.fragment) not in pages[target].places:
        return "leads to no place there"
    return None


def check_links(html):
    pages = {path: Page(path) for path in html.rglob("*.html")}
    links = [(path, link) for path, page in pages.items() for link in page.links]
    links += [(path, link) for path in html.rglob("*.js") for link in script_links(path)]
    wrong = []
    for path, link in links:
        fault = check_link(link, path, html, pages)
        if fault:
            wrong.append(f"{path.relative_to(html)}: {link} {fault}")
    print(f"{len(links)} links on {len(pages)} pages")
    return wrong + ([] if len(links) > 2000 else ["so few links: what was read is not the reference"])


def plain_code(text):
    return re.sub(r"\s+", " ", text.replace("\\|", "|").replace("\xa0", " ")).strip()


def check_pages(html, root):
    """The code that a Markdown page names is the same in HTML, and no mark of Markdown is left over."""
    wrong = []
    count = 0
    for path in [*root.glob("docs/*.md"), *root.glob("*.md")]:
        name = {"README": "readme"}.get(path.stem, path.stem.lower())
        source = re.sub(r"^ *```.*?^ *```|^#+ .*?$", "", path.read_text(encoding="utf-8"), flags=re.S | re.M)
        spans = {plain_code(span) for span in re.findall(r"`([^`]+)`", source)}
        words = Words(html / f"{name}.html")
        count += len(spans)
        wrong += [f"{name}.html: `{span}` is not code there" for span in sorted(spans - set(map(plain_code, words.codes)))]
        left = re.search(r".{0,30}(\*\*|`|</?tt>).{0,30}", "".join(words.plain))
        wrong += [f"{name}.html: a mark is left over: {left[0]}"] if left else []
    print(f"{count} pieces of code")
    return wrong + ([] if count > 500 else ["so little code: what was read is not the pages"])


def functions(xml):
    for path in xml.glob("*.xml"):
        for member in ET.parse(path).getroot().iter("memberdef"):
            if member.get("kind") == "function" and member.get("prot") == "public" and path.name.startswith("group__"):
                yield member.findtext("name")


def check_examples(html, xml, examples):
    used = "".join(path.read_text(encoding="utf-8") for path in examples.glob("*.c*"))
    known = set(functions(xml))
    wrong = [f"no example uses {name}()" for name in sorted(known)
             if not WITHOUT_EXAMPLE.fullmatch(name) and not re.search(rf"\b{re.escape(name)}\b", used)]
    for name in sorted(CLASSES):
        page = (html / f"classqrylib_1_1{name}.html").read_text(encoding="utf-8")
        if "-example.html" not in page:
            wrong.append(f"the page of {name} leads to no example")
    print(f"{len(known)} functions")
    return wrong + ([] if len(known) > 100 else ["so few functions: what was read is not the reference"])


def check_start(html, version):
    start = (html / "index.html").read_text(encoding="utf-8")
    needed = [version, "dialect.html", "dictionary.html", "caveats.html", "trace_points.html", "group__callers__c.html",
              "group__callers__cpp.html", "group__companion__functions.html", "group__porters.html",
              "group__workstation.html", "people_8c-example.html", "&lt;qrylib/qrylib.hpp&gt;"]
    plain = re.sub(r"<[^>]*>", "", start)
    return [f"the start page does not show {what}" for what in needed if what not in start and what not in plain]


def check_manuals(man, xml):
    """A manual page for each function that callers call; what pages name of section 3 is there."""
    pages = {path.stem: path.read_text(encoding="utf-8") for path in man.glob("*.3")}
    own = re.compile(r"(qry_lib|qrytext|qryhost|dsql)_\w+")
    wrong = [f"no manual page of {name}()" for name in sorted(set(functions(xml)))
             if own.fullmatch(name) and not name.endswith("_sink") and name not in pages]
    wrong += [f"{page}.3 names {other}(3), which is not there" for page, text in pages.items()
              for other in re.findall(r"^\.Xr (\S+) 3", text, re.M) if other not in pages]
    print(f"{len(pages)} manual pages")
    return wrong + ([] if len(pages) > 100 else ["so few manual pages"])


def check_reference(folder):
    html = folder / "html"
    wrong = check_links(html)
    wrong += check_pages(html, Path(__file__).resolve().parents[2])
    wrong += check_examples(html, folder / "xml", folder / "input/examples")
    wrong += check_start(html, (folder / "input/version").read_text(encoding="utf-8"))
    return wrong + check_manuals(folder / "man", folder / "xml")


def main(arguments):
    folder = Path(arguments[-1]).resolve()
    wrong = check_links(folder) if arguments[0] == "--links" else check_reference(folder)
    print("\n".join(wrong), file=sys.stderr)
    return 1 if wrong else 0


if __name__ == "__main__":
    sys.exit(main(sys.argv[1:]))
