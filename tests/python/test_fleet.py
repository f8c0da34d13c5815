"""Fleets without a cluster: paths, limits, bad snapshots, types, graphs, parts and their manifest, the report."""

import doctest
import gzip
import json
import os
import pickle
import subprocess
import sys
from datetime import datetime

import pandas
import pytest

import qrylib
from conftest import OFFICE
from qrylib import fleet
from qrylib.fleet import paths, reader, supervisor

EMPTY = b'{"format": 1, "settings": {}, "databases": {}}'


def departments(*pages):
    """A snapshot's text with departments of so many pages."""
    records = [{"ID": i, "NAME": f"D{i}", "TOTAL_M": number} for i, number in enumerate(pages, 1)]
    return json.dumps({"format": 1, "settings": {}, "databases": {"department_db": {"DEPT_TBL": {"records": records}}}}).encode()


@pytest.fixture
def folder(tmp_path):
    """Writes snapshots by their names."""

    def write(**texts):
        for name, text in texts.items():
            is_packed = name.endswith("_gz")
            path = tmp_path / "2026-11-21" / (name.removesuffix("_gz") + (".json.gz" if is_packed else ".json"))
            path.parent.mkdir(exist_ok=True)
            path.write_bytes(gzip.compress(text) if is_packed else text)
        return tmp_path

    return write


def read_here(files, *arguments, **options):
    return fleet.read(files, "department_db", "DEPT_TBL", *arguments, **options).compute(scheduler="synchronous")


def reasons(answer):
    return {os.path.basename(name).partition(".")[0]: why for name, why in zip(answer.bad["file"], answer.bad["reason"])}


@pytest.mark.parametrize(
    "path, device, time",
    [
        ("out/2026-11-21/device-1.json.gz", "device-1", datetime(2026, 11, 21)),
        ("2026-11-21T02:30:00/a.json", "a", datetime(2026, 11, 21, 2, 30)),
        ("2026-11-21T02:30:00+09:00/a.json", "a", datetime(2026, 11, 20, 17, 30)),
        ("plain.json", "plain", None),
        ("some/folder/b.c.json", "b.c", None),
    ],
)
def test_paths_tell_device_and_time(path, device, time):
    assert paths.origin_of(path, fleet.PATTERN) == paths.Origin(device, time)


@pytest.mark.parametrize("path", ["a.txt", "2026-13-45/a.json", ".json"])
def test_paths_that_tell_nothing(path):
    assert paths.origin_of(path, fleet.PATTERN) is None


def test_a_pattern_of_ones_own(folder):
    root = folder(x=departments(5))
    answer = read_here(root, columns=["ID"], pattern=r"(?P<time>\d{4}-\d\d)-(?P<device>\d\d)/")
    assert answer.files["reason"].tolist() == ["the path does not fit the pattern"]
    answer = read_here(root, columns=["ID"], pattern=r"-(?P<device>\d\d)-21/")
    assert answer.frame["device"].tolist() == ["11"] and answer.frame["time"].isna().all()
    with pytest.raises(qrylib.ProgrammingError, match="no group"):
        read_here(root, pattern="x")


def test_hundred_thousand_names_make_a_small_graph():
    names = [f"/srv/fleet/snapshots/2026-11-21/region-{i % 7}/device-{i:06}.json.gz" for i in range(100_000)]
    reading = fleet.read(names, "department_db", "DEPT_TBL", where="TOTAL_M > 9000")
    graphs = [dict(part.__dask_graph__()) for part in (reading.frame, reading.files, reading.bad)]
    together = {key: task for graph in graphs for key, task in graph.items()}
    assert len(together) <= 1000 and len(pickle.dumps(together)) < 10_000_000
    assert sum(len(batch.names()) for batch in reading.batches) == reading.given == 100_000
    again = fleet.read(reversed(names), "department_db", "DEPT_TBL", where="TOTAL_M > 9000")
    assert again.part_names() == reading.part_names() and len(set(again.part_names())) == len(again.batches)


def test_rows_have_the_types_of_the_schema(folder):
    root = folder(one_gz=departments(5, 4294967295), two=departments(), three=departments(7))
    answer = read_here(root, columns=["TOTAL_M", "ID", "TOTAL_L", "NAME"], batch=1)
    assert list(zip(answer.frame["device"], answer.frame["TOTAL_M"])) == [("one", 5), ("one", 4294967295), ("three", 7)]
    kinds = ["object", "datetime64[ns]", "uint32", "uint16", "uint8", "object"]
    assert [str(one) for one in answer.frame.dtypes] == kinds
    reading = fleet.read([], "department_db", "DEPT_TBL", columns=["TOTAL_M", "ID", "TOTAL_L", "NAME"])
    empty = reading.compute(scheduler="synchronous")
    assert [str(one) for one in empty.frame.dtypes] == kinds == [str(one) for one in reading.frame.dtypes]
    assert (empty.given, empty.read, len(empty.bad)) == (0, 0, 0)
    for i in range(3):
        part = fleet.read(root, "department_db", "DEPT_TBL", batch=1).frame.partitions[i].compute(scheduler="synchronous")
        assert part["TOTAL_M"].dtype == "uint32" and part["ID"].dtype == "uint16"


def test_a_condition_is_the_librarys(folder):
    root = folder(a=departments(10, 20, 30))
    assert read_here(root, where="TOTAL_M > 15 AND TOTAL_M < 25").frame["ID"].tolist() == [2]
    with pytest.raises(qrylib.ProgrammingError, match="keywords are upper case"):
        read_here(root, where="TOTAL_M > 15 and ID = 1")
    with pytest.raises(qrylib.ProgrammingError, match="no column NOPE"):
        read_here(root, columns=["NOPE"])
    with pytest.raises(qrylib.ProgrammingError, match="no table"):
        fleet.read(root, "department_db", "PSN_TBL")


def test_bad_snapshots_are_told_and_harm_no_other(folder):
    whole = gzip.compress(departments(3))
    root = folder(
        a_good=departments(1),
        bomb_gz=b" " * 50_000_000,
        deep=b"[" * 100_000,
        deep_object=b'{"a":' * 40 + b"1" + b"}" * 40,
        empty=b"",
        no_json=b"{]",
        other_column=departments(1).replace(b"NAME", b"NMAE"),
        quotes=b'"' * 100_001,
        zero=b'{"format": 1\0}',
        z_good_gz=departments(2),
    )
    night = root / "2026-11-21"
    (night / "broken.json.gz").write_bytes(whole[:-12])
    (night / "noise.json.gz").write_bytes(b"no gzip at all")
    os.mkfifo(night / "pipe.json")
    names = [str(one) for one in night.iterdir()] + [str(night / "gone.json"), str(night / "nothing.txt")]
    answer = read_here(names, limits=fleet.Limits(bytes=20_000_000))
    assert sorted(answer.frame["device"]) == ["a_good", "z_good"] and answer.read == 2
    assert answer.given == len(names) == answer.read + len(answer.bad)
    told = reasons(answer)
    assert told["bomb"] == "has more than 20000000 bytes unpacked"
    assert told["deep"] == told["deep_object"] == "nests deeper than 32"
    assert told["broken"].startswith("is no whole gzip file") and told["noise"].startswith("is no whole gzip file")
    assert told["pipe"] == "is no regular file" and told["gone"] == "cannot be read: No such file or directory"
    assert told["nothing"] == "the path does not fit the pattern"
    assert "no column NMAE" in told["other_column"]
    for name in ("empty", "no_json", "zero", "quotes"):
        assert told[name].startswith(("is refused", "the fixture holds", "holds a zero byte")), told[name]


@pytest.mark.parametrize(
    "text, depth",
    [(b"", 0), (b'{"a": [1, {"b": "]]]{{{"}]}', 3), (b'["\\"["]', 1), (b"]]][", 0), (b"[[]][[[]]]", 3)],
)
def test_depth(text, depth):
    assert reader.depth_of(text) == depth


SITE = """
import os, signal, sys, time
if "qrylib.fleet.reader" in " ".join(sys.orig_argv):
    _open = os.open
    def open_with_accidents(path, *rest, **named):
        if "killer" in str(path):
            os.kill(os.getpid(), signal.SIGKILL)
        if "slow" in str(path):
            time.sleep(60)
        return _open(path, *rest, **named)
    os.open = open_with_accidents
"""


@pytest.fixture
def accidents(tmp_path, monkeypatch):
    """Readers die of files whose names say so, and take long for others."""
    site = tmp_path / "site"
    site.mkdir()
    (site / "sitecustomize.py").write_text(SITE)
    monkeypatch.setenv("PYTHONPATH", os.pathsep.join([str(site), os.environ.get("PYTHONPATH", "")]))
    monkeypatch.setattr(supervisor, "_kept", None)
    yield
    supervisor._kept.close()


def test_what_kills_or_stops_its_reader_is_given_up(folder, accidents):
    names = {f"d{i}": departments(i) for i in range(1, 6)}
    root = folder(**names, d3_killer=departments(1), d4_slow=departments(1))
    files = [name for name in paths.names_of(root)]
    answer = read_here(files, limits=fleet.Limits(seconds=2.0, tries=3))
    assert sorted(answer.frame["device"]) == sorted(names)
    assert reasons(answer) == {
        "d3_killer": "ended its reader with status -9 in 3 tries",
        "d4_slow": "took longer than 2 seconds",
    }
    assert answer.given == 7 == answer.read + len(answer.bad)


def test_a_reader_that_does_not_start_is_nobodys_fault(folder):
    job = fleet.read(folder(a=departments(1)), "department_db", "DEPT_TBL").task.job
    with pytest.raises(qrylib.InterfaceError, match="does not start: status 3"):
        supervisor.ReaderProcess("raise SystemExit(3)").read("a.json", job)


def test_threads_are_refused(folder):
    reading = fleet.read(folder(a=departments(1)), "department_db", "DEPT_TBL")
    for options in ({"scheduler": "threads"}, {}):
        with pytest.raises(qrylib.ProgrammingError, match="a store belongs to a process") as caught:
            reading.frame.compute(**options)
        assert 'scheduler="processes"' in caught.value.hint


def test_local_processes_answer_too(folder):
    reading = fleet.read(folder(a=departments(1), b=departments(2)), "department_db", "DEPT_TBL", batch=1)
    answer = reading.compute(num_workers=2)
    assert answer.frame["TOTAL_M"].tolist() == [1, 2] and answer.read == 2
    assert str(answer) == "2 files given = 2 read + 0 bad; 2 rows"


def written(out, form):
    """The rows of all parts, in order."""
    parts = sorted(out.glob(f"part-*.{form}"))
    read = pandas.read_csv if form == "csv" else lambda path: pandas.read_json(path, lines=True)
    return pandas.concat([read(part) for part in parts if part.stat().st_size]).sort_values(["device", "ID"])


@pytest.mark.parametrize("form", ["csv", "jsonl"])
def test_parts_and_their_manifest(folder, tmp_path, form):
    out = tmp_path / "out"
    root = folder(a=departments(1, 2), b=departments(), c=departments(3), d=b"")
    options = {"columns": ["ID", "TOTAL_M"], "batch": 1}
    reading = fleet.read(root, "department_db", "DEPT_TBL", **options)
    known = fleet.write(reading, out, form, scheduler="synchronous")
    assert (known.given, known.read, len(known.bad), known.rows) == (4, 3, 1, 3)
    assert list(written(out, form)["TOTAL_M"]) == [1, 2, 3]
    before = {path.name: path.read_bytes() for path in out.iterdir()}
    assert json.loads(before["_manifest.json"])["given"] == 4

    # Written again it is the same; what an interrupted run left is gone.
    (out / f"part-0123456789abcdef.{form}").write_text("left behind")
    (out / ".part-left").write_text("left behind")
    fleet.write(reading, out, form, scheduler="synchronous")
    assert {path.name: path.read_bytes() for path in out.iterdir()} == before

    # The next night reads what is new.
    assert fleet.missing(root, out) == []
    assert [os.path.basename(name) for name in fleet.missing(root, out, retry_bad=True)] == ["d.json"]
    folder(e=departments(9))
    new = fleet.missing(root, out)
    assert [os.path.basename(name) for name in new] == ["e.json"]
    known = fleet.write(fleet.read(new, "department_db", "DEPT_TBL", **options), out, form, scheduler="synchronous")
    assert (known.given, known.rows) == (5, 4) and list(written(out, form)["TOTAL_M"]) == [1, 2, 3, 9]

    # A snapshot that was bad may be sent again.
    folder(d=departments(8))
    again = fleet.read(fleet.missing(root, out, retry_bad=True), "department_db", "DEPT_TBL", **options)
    known = fleet.write(again, out, form, scheduler="synchronous")
    assert (known.given, known.read, known.rows, known.bad) == (5, 5, 5, {})

    with pytest.raises(qrylib.ProgrammingError, match="4 of the snapshots are in the folder already"):
        fleet.write(fleet.read(paths.names_of(root)[:4], "department_db", "DEPT_TBL", columns=["ID", "TOTAL_M"]), out, form)
    with pytest.raises(qrylib.ProgrammingError, match="holds something else"):
        fleet.write(fleet.read(root, "department_db", "DEPT_TBL"), out, form)


def test_texts_that_are_not_utf8_are_counted_in_the_manifest(folder, tmp_path):
    text = departments(1).replace(b'"D1"', b'{"hex": "8341"}')
    reading = fleet.read(folder(a=text), "department_db", "DEPT_TBL", columns=["NAME"])
    assert reading.compute(scheduler="synchronous").frame["NAME"].tolist() == ["\udc83A"]
    known = fleet.write(reading, tmp_path / "out", scheduler="synchronous")
    [part] = known.parts.values()
    assert part["replaced_texts"] == 1
    [path] = (tmp_path / "out").glob("part-*")
    assert json.loads(path.read_text())["NAME"] == "\ufffdA"


def test_frames_of_dask_are_written_too(folder, tmp_path):
    reading = fleet.read(folder(a=departments(1, 2), b=departments(4)), "department_db", "DEPT_TBL", batch=1)
    known = fleet.write(reading.frame, tmp_path / "rows", scheduler="synchronous")
    assert (known.given, known.read, known.rows) == (2, 2, 3)
    assert fleet.missing(reading.batches[0].names(), tmp_path / "rows") == []
    more = reading.frame[reading.frame["TOTAL_M"] > 1][["device", "ID", "TOTAL_M"]]
    for _ in range(2):
        known = fleet.write(more, tmp_path / "more", "csv", scheduler="synchronous")
    assert (known.given, known.rows, len(known.parts)) == (0, 2, 2)
    assert list(written(tmp_path / "more", "csv")["TOTAL_M"]) == [2, 4]
    with pytest.raises(qrylib.ProgrammingError, match="or a Dask dataframe"):
        fleet.write([1], tmp_path / "other")


def test_a_name_that_is_no_folder_is_a_snapshot(folder, tmp_path):
    root = folder(a=departments(1))
    assert read_here(str(root / "2026-11-21" / "a.json")).read == 1
    answer = read_here(str(tmp_path / "nothing.json"))
    assert answer.given == 1 and answer.bad["reason"].tolist() == ["cannot be read: No such file or directory"]


def test_one_writes_at_a_time(folder, tmp_path):
    from qrylib.fleet.writing import _alone

    reading = fleet.read(folder(a=departments(1)), "department_db", "DEPT_TBL")
    out = tmp_path / "out"
    out.mkdir()
    with _alone(out), pytest.raises(qrylib.OperationalError, match="another process is writing"):
        fleet.write(reading, out, scheduler="synchronous")


def test_a_simulated_fleet_is_the_same_for_the_same_seed(tmp_path):
    one, same, other = (tmp_path / name for name in ("one", "same", "other"))
    for out, seed in ((one, 3), (same, 3), (other, 4)):
        assert len(fleet.simulate(20, out, seed=seed, night="2026-11-21", bad=0.2)) == 20
    content = [[path.read_bytes() for path in sorted(out.rglob("*.gz"))] for out in (one, same, other)]
    assert content[0] == content[1] != content[2] and len(content[0]) == 20


def test_a_report_answers_the_standing_questions(folder):
    capacity = qrylib.schema()["department_db"]["DEPT_TBL"].capacity
    double = json.loads(departments(5, 6, 7))
    double["databases"]["department_db"]["DEPT_TBL"]["records"][2]["ID"] = 1
    root = folder(
        small=departments(1, 2),
        full=departments(*[10] * capacity),
        over=departments(20_000, 3),
        bad=b"<script>",
        double=json.dumps(double).encode(),
    )
    told = fleet.survey(root, limit=15_000).compute(scheduler="synchronous")
    report = fleet.Report(told, 15_000, 3)
    pages = dict(zip(report.pages["device"], report.pages["value"]))
    assert list(pages.items()) == [("over", 20003), ("full", 1010), ("double", 18), ("small", 3)]
    assert report.of("full")[["device", "place"]].values.tolist() == [["full", "DEPT_TBL"]]
    assert report.of("double")[["device", "place", "value"]].values.tolist() == [["double", "DEPT_TBL 1", 2]]
    assert report.of("over")[["device", "place", "value"]].values.tolist() == [["over", "1 D1", 20000]]
    text = report.text()
    assert text.startswith("5 files given = 4 read + 1 bad\n") and "Most pages (4 devices)\n  over    20003\n" in text
    page = report.html()
    assert page.count("<svg") == 1 and "<script>" not in page and "Departments over 15000 pages (1)" in page


def test_the_commands_say_what_is_wrong(tmp_path):
    def run(*arguments):
        return subprocess.run(
            [sys.executable, "-m", "qrylib.fleet", *arguments], stdout=subprocess.PIPE, stderr=subprocess.PIPE, text=True
        )

    assert run("simulate", "3", str(tmp_path), "--night", "2026-11-21").stdout.startswith("3 snapshots in ")
    wrong = run("write", str(tmp_path), "department_db", "NO_TBL", str(tmp_path / "out"))
    assert wrong.returncode == 1 and wrong.stderr.startswith("error: department_db has no table 'NO_TBL'; it has DEPT_TBL")
    assert run("report").returncode == 2


def test_the_example_of_the_package():
    result = doctest.testmod(fleet)
    assert result.attempted > 0 and result.failed == 0


def test_the_sample_device_is_a_snapshot():
    answer = read_here([OFFICE], columns=["ID"], where="TOTAL_M > 14000")
    assert answer.frame["device"].unique().tolist() == ["office"] and answer.read == 1
