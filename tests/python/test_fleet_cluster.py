"""Fleets on a real scheduler and real workers, over loopback: right answers, also when a worker is killed."""

import gzip
import json
import os
import pathlib
import signal
import sqlite3
import subprocess
import sys
import threading
import time

import pytest

distributed = pytest.importorskip("distributed")

import qrylib  # noqa: E402
from qrylib import fleet  # noqa: E402

DEVICES = 2000
COLUMNS = ["ID", "NAME", "TOTAL_M"]
MOST = "SELECT device, sum(TOTAL_M) FROM DEPT GROUP BY device ORDER BY sum(TOTAL_M) DESC, device LIMIT 20"


def two_workers():
    with distributed.LocalCluster(
        n_workers=2, threads_per_worker=1, processes=True, dashboard_address=None, host="127.0.0.1"
    ) as cluster, distributed.Client(cluster) as connected:
        yield connected


#: Two workers for all tests that kill none, and for a test that kills one of them.
client = pytest.fixture(scope="module", name="client")(two_workers)
mortal_client = pytest.fixture(name="mortal_client")(two_workers)


@pytest.fixture(scope="module")
def night(tmp_path_factory):
    """2,000 snapshots, and SQLite with their departments, filled from their JSON without the library."""
    root = tmp_path_factory.mktemp("fleet")
    names = fleet.simulate(DEVICES, root, seed=7, night="2026-11-21", bad=0.005)
    engine = sqlite3.connect(":memory:")
    engine.execute("CREATE TABLE DEPT (device TEXT, ID INTEGER, NAME TEXT, TOTAL_M INTEGER)")
    bad = 0
    for name in names:
        try:
            whole = json.loads(gzip.decompress(pathlib.Path(name).read_bytes()))
            records = whole["databases"]["department_db"]["DEPT_TBL"]["records"]
            rows = [(pathlib.Path(name).name[:13], r["ID"], r["NAME"], r["TOTAL_M"]) for r in records]
        except (ValueError, EOFError, OSError, KeyError, RecursionError, TypeError):
            bad += 1
            continue
        engine.executemany("INSERT INTO DEPT VALUES (?, ?, ?, ?)", rows)
    assert 0 < bad < 30
    return names, engine, bad


def sqlite_of(out):
    """SQLite with the rows of the parts that were written."""
    engine = sqlite3.connect(":memory:")
    engine.execute("CREATE TABLE DEPT (device TEXT, ID INTEGER, NAME TEXT, TOTAL_M INTEGER)")
    for part in out.glob("part-*.jsonl"):
        rows = [json.loads(line) for line in part.read_text().splitlines()]
        engine.executemany("INSERT INTO DEPT VALUES (:device, :ID, :NAME, :TOTAL_M)", rows)
    return engine


def everything(engine):
    return sorted(engine.execute("SELECT device, ID, NAME, TOTAL_M FROM DEPT"))


def most_pages(frame):
    summed = frame.groupby("device")["TOTAL_M"].sum().reset_index()
    first = summed.sort_values(["TOTAL_M", "device"], ascending=[False, True]).head(20)
    return [(device, int(pages)) for device, pages in first.itertuples(index=False)]


def test_answers_equal_sqlites(client, night):
    names, engine, bad = night
    answer = fleet.read(names, "department_db", "DEPT_TBL", columns=COLUMNS).compute()
    assert (answer.given, answer.read, len(answer.bad)) == (DEVICES, DEVICES - bad, bad)
    assert sorted(answer.frame[["device", *COLUMNS]].itertuples(index=False, name=None)) == everything(engine)
    assert most_pages(answer.frame) == engine.execute(MOST).fetchall()
    assert answer.frame["ID"].dtype == "uint16" and answer.frame["TOTAL_M"].dtype == "uint32"
    some = fleet.read(names, "department_db", "DEPT_TBL", columns=COLUMNS, where="TOTAL_M > 9000")
    assert len(some.frame) == engine.execute("SELECT count(*) FROM DEPT WHERE TOTAL_M > 9000").fetchone()[0] > 0


def kill_a_worker_when(client, count, least):
    """Kills one of the workers when at least so much is done; answers the thread that does, and how much was done then."""
    pids = list(client.run(os.getpid).values())
    killed = []

    def wait_and_kill():
        end = time.monotonic() + 60
        while time.monotonic() < end and count() < least:
            time.sleep(0.002)
        killed.append(count())
        os.kill(pids[0], signal.SIGKILL)

    thread = threading.Thread(target=wait_and_kill)
    thread.start()
    return thread, killed


def test_a_worker_killed_while_writing_leaves_neither_doubles_nor_gaps(mortal_client, night, tmp_path):
    names, engine, bad = night
    out = tmp_path / "out"
    reading = fleet.read(names, "department_db", "DEPT_TBL", columns=COLUMNS, batch=25)
    thread, killed = kill_a_worker_when(mortal_client, lambda: len(list(out.glob("part-*"))), 10)
    known = fleet.write(reading, out)
    thread.join()
    assert 10 <= killed[0] < len(reading.batches)
    assert (known.given, known.read, len(known.bad)) == (DEVICES, DEVICES - bad, bad)
    assert len(list(out.glob("part-*"))) == len(known.parts) == len(reading.batches)
    assert not list(out.glob(".part-*")) and (out / "_manifest.json").exists()
    exported = sqlite_of(out)
    assert everything(exported) == everything(engine) and known.rows == len(everything(engine))
    assert exported.execute(MOST).fetchall() == engine.execute(MOST).fetchall()
    assert fleet.missing(names, out) == []


def test_a_worker_killed_while_reading_changes_no_answer(mortal_client, night):
    names, engine, bad = night
    reading = fleet.read(names, "department_db", "DEPT_TBL", columns=COLUMNS, batch=25)
    scheduler = mortal_client.cluster.scheduler

    def done():
        return sum(state.state == "memory" for state in list(scheduler.tasks.values()))

    thread, killed = kill_a_worker_when(mortal_client, done, 10)
    futures = mortal_client.compute([reading.frame, reading.files])
    frame, files = mortal_client.gather(futures)
    thread.join()
    assert 10 <= killed[0] < 2 * len(reading.batches)
    answer = fleet.Answer(frame, files, reading.given)
    assert (len(files), answer.read, len(answer.bad)) == (DEVICES, DEVICES - bad, bad)
    assert sorted(frame[["device", *COLUMNS]].itertuples(index=False, name=None)) == everything(engine)


def test_a_scheduler_is_known_by_its_address(client, night, tmp_path):
    _, engine, _ = night
    page = tmp_path / "fleet.html"
    folder = str(tmp_path / "few")
    fleet.simulate(100, folder, seed=7)
    command = [sys.executable, "-m", "qrylib.fleet", "report", folder, "--scheduler", client.scheduler.address]
    done = subprocess.run([*command, "--html", str(page)], stdout=subprocess.PIPE, text=True, timeout=120)
    assert done.returncode == 0
    assert done.stdout.startswith("100 files given = 100 read + 0 bad\n")
    device, pages = engine.execute(MOST.replace("GROUP", "WHERE device <= 'device-000100' GROUP")).fetchone()
    assert f"  {device}  {pages}\n" in done.stdout
    assert "<svg" in page.read_text()


def test_a_cluster_of_threads_is_refused(night):
    with distributed.Client(
        processes=False, n_workers=1, threads_per_worker=1, dashboard_address=None, set_as_default=False
    ) as inside:
        reading = fleet.read(night[0][:3], "department_db", "DEPT_TBL")
        with pytest.raises(qrylib.ProgrammingError, match="a store belongs to a process"):
            inside.compute(reading.frame).result()
