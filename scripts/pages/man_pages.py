#!/usr/bin/env python3
"""Writes a manual page of section 3 for each function of the libraries and of the workstation's controls, and one for each of
these three, from the XML that doxygen made.

usage: man_pages.py REFERENCE FOLDER (REFERENCE: where scripts/reference.sh works)
"""

import re
import sys
import xml.etree.ElementTree as ET
from datetime import datetime
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
EXAMPLES = "/usr/share/doc/libqrylib-doc/examples"
CALLERS = ["statements", "queries", "rowsets", "catalog", "versions", "element_tables", "device_data", "handles", "vectors"]

# The pages that stand for a whole, what each is included as and what it is about, and the topics of its functions.
WHOLES = {
    "qrylib": ("qrylib/qrylib.h", "SQL-like access to a device's record stores", "callers_c", CALLERS),
    "qrytext": ("qrytext/qrytext.h", "statements as people write them, understood and explained", "companion_functions",
                ["companion_functions"]),
    "qryhost": ("platform/host/qryhost.h", "controls of the simulated device", "workstation", ["workstation"]),
}


def date():
    """That of the newest release."""
    changelog = (ROOT / "cmake/debian/changelog").read_text(encoding="utf-8")
    released = re.search(r"^ -- .*>  \w+, (\d+ \w+ \d+)", changelog, re.M)[1]
    return datetime.strptime(released, "%d %b %Y").strftime("%B %-d, %Y")


def escape(text):
    """Text of a line: nothing in it is a request."""
    text = text.replace("\\", "\\e")
    return "\\&" + text if text[:1] in (".", "'") else text


def words_of(element):
    return re.sub(r"\s+", " ", "".join(element.itertext())).strip()


def sentences(text):
    """A line for each sentence."""
    return [escape(line) for line in re.split(r"(?<=[A-Za-z0-9)\"]\.) (?=[A-Z])", text) if line]


def lines_of(paragraph):
    """A paragraph with the lists in it; parameters and results have their own places."""
    lines = []
    text = [paragraph.text or ""]

    def flush():
        words = re.sub(r"\s+", " ", "".join(text)).strip()
        text.clear()
        if words:
            lines.extend(sentences(words))

    for child in paragraph:
        if child.tag in ("orderedlist", "itemizedlist"):
            flush()
            lines.append(".Bl -enum" if child.tag == "orderedlist" else ".Bl -bullet")
            for item in child.findall("listitem"):
                lines.append(".It")
                for part in item.findall("para"):
                    lines.extend(lines_of(part))
            lines.append(".El")
        elif child.tag == "verbatim" or child.tag == "programlisting":
            flush()
            code = "".join(child.itertext()) if child.tag == "verbatim" else "\n".join(
                "".join(" " if part.tag == "sp" else (part.text or "") for part in line.iter())
                for line in child.findall("codeline"))
            lines += [".Bd -literal -offset indent", *(escape(line) for line in code.strip("\n").split("\n")), ".Ed"]
        elif child.tag not in ("parameterlist", "simplesect", "image"):
            text.append("".join(child.itertext()))
        text.append(child.tail or "")
    flush()
    return lines


def description(element):
    """The paragraphs, with a request between two of them."""
    parts = [lines for paragraph in element.findall("para") if (lines := lines_of(paragraph))]
    lines = []
    for part in parts:
        lines += ([".Pp"] if lines and not part[0].startswith(".B") else []) + part
    return lines


def detail(element, kind):
    found = element.find(f".//simplesect[@kind='{kind}']")
    return words_of(found) if found is not None else ""


class Function:
    def __init__(self, member, topic, header):
        self.name = member.findtext("name")
        self.type = words_of(member.find("type"))
        self.arguments = [(words_of(p.find("type")), p.findtext("declname") or "") for p in member.findall("param")]
        self.brief = words_of(member.find("briefdescription"))
        self.detail = member.find("detaileddescription")
        self.topic = topic
        self.header = header

    def parameters(self):
        for item in self.detail.iter("parameteritem"):
            yield words_of(item.find("parameternamelist/parametername")), words_of(item.find("parameterdescription"))

    def synopsis(self):
        lines = [".In " + self.header, f'.Ft "{self.type}"', f".Fo {self.name}"]
        for kind, name in self.arguments or [("void", "")]:
            lines.append(f'.Fa "{kind if kind.endswith("*") or not name else kind + " "}{name}"'.replace("* ", "*"))
        return lines + [".Fc"]


class Topic:
    def __init__(self, xml, name):
        compound = ET.parse(xml / f"group__{name.replace('_', '__')}.xml").getroot().find("compounddef")
        self.title = compound.findtext("title")
        self.detail = compound.find("detaileddescription")
        self.members = [m for m in compound.iter("memberdef") if m.get("kind") == "function" and "std::" not in words_of(m)]


class Manual:
    def __init__(self, reference, folder):
        self.folder = folder
        self.version = (reference / "input/version").read_text(encoding="utf-8")
        self.date = date()
        self.examples = {path.name: path.read_text(encoding="utf-8")
                         for path in sorted(ROOT.glob("examples/*.c*"))}

    def write(self, name, lines):
        head = [f".Dd {self.date}", f".Dt {name.upper()} 3", f".Os qrylib {self.version}", ".Sh NAME"]
        (self.folder / f"{name}.3").write_text("\n".join(head + lines) + "\n", encoding="utf-8")

    def function(self, function, whole, topic):
        lines = [f".Nm {function.name}", ".Nd " + escape(function.brief.split(". ")[0].split(";")[0].rstrip(". ")),
                 ".Sh SYNOPSIS", *function.synopsis(), ".Sh DESCRIPTION", *sentences(function.brief)]
        details = description(function.detail)
        lines += ([".Pp"] if details and not details[0].startswith(".B") else []) + details
        lines += [".Bl -tag -width Ds"] if any(function.parameters()) else []
        for name, words in function.parameters():
            lines += [f".It Fa {name}", *sentences(words)]
        lines += [".El"] if any(function.parameters()) else []
        about = description(topic.detail)
        lines += ([".Ss " + topic.title, *about] if about and whole == "qrylib" else [])
        answers = detail(function.detail, "return")
        lines += ([".Sh RETURN VALUES", *sentences(answers)] if answers else [])
        lines += self.example(function.name) + [".Sh SEE ALSO", f".Xr {whole} 3"]
        since = detail(function.detail, "since")
        self.write(function.name, lines + ([".Sh HISTORY", f"Since version {since}."] if since else []))

    def example(self, name):
        using = [file for file, text in self.examples.items() if re.search(rf"\b{name}\b", text)]
        lines = [f".Pa {EXAMPLES}/{file}" for file in using[:3]]
        return [".Sh EXAMPLES", *(line for i, one in enumerate(lines) for line in ([".Pp"] if i else []) + [one])] if lines else []

    def whole(self, name, header, about, detail, topics):
        lines = [f".Nm {name}", f".Nd {about}", ".Sh SYNOPSIS", f".In {header}", ".Sh DESCRIPTION", *description(detail)]
        for topic in topics:
            names = [member.findtext("name") for member in topic.members]
            lines += [".Ss " + topic.title]
            lines += [f".Xr {function} 3" + (" ," if function != names[-1] else "") for function in names]
        if name == "qrylib":
            lines += [".Sh RETURN VALUES", "The codes that functions answer:", ".Bl -tag -width Ds"]
            text = (ROOT / "include/qrylib/types.h").read_text(encoding="utf-8")
            for code, value, meaning in re.findall(r"#define (QRY_LIB_\w+) (0x[0-9A-F]{4})u +/\*\*< (.*?) \*/", text):
                lines += [f".It Dv {code} Pq {value}", escape(meaning)]
            lines += [".El"]
        others = sorted(other for other in WHOLES if other != name)
        lines += [".Sh SEE ALSO", ".Xr qrysh 1 ,", *(f".Xr {other} 3" + (" ," if other != others[-1] else "") for other in others)]
        lines += [".Pp", "The whole reference:", ".Pa /usr/share/doc/libqrylib-doc/html/index.html"]
        self.write(name, lines)


def main(reference, folder):
    reference, folder = Path(reference), Path(folder)
    folder.mkdir(parents=True, exist_ok=True)
    manual = Manual(reference, folder)
    for name, (header, about, first, topics) in WHOLES.items():
        found = [Topic(reference / "xml", topic) for topic in topics]
        manual.whole(name, header, about, Topic(reference / "xml", first).detail, found)
        for topic in found:
            for member in topic.members:
                manual.function(Function(member, topic.title, header), name, topic)


if __name__ == "__main__":
    main(sys.argv[1], sys.argv[2])
