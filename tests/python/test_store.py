"""One process, one store: who holds it, forks, threads, images, and what loads the libraries."""

import multiprocessing
import os
import signal
import subprocess
import sys
import threading
import time

import pytest

import qrylib
from conftest import OFFICE


def run_python(program, **environment):
    """What a fresh interpreter prints."""
    done = subprocess.run(
        [sys.executable, "-c", program], stdout=subprocess.PIPE, text=True, timeout=60, env={**os.environ, **environment}
    )
    assert done.returncode == 0
    return done.stdout.strip()


def test_a_second_device_is_refused_and_the_holder_named(office):
    with pytest.raises(qrylib.ProgrammingError) as caught:
        qrylib.device()
    assert "in use by device(), opened at " in str(caught.value) and "child=True" in caught.value.hint
    assert "conftest.py" in str(caught.value)


def test_connections_join_and_do_not_replace():
    with qrylib.connect("adbk_db") as first:
        first.execute("INSERT INTO PSN_TBL (PSN_ID) VALUES (1)")
        with qrylib.connect("adbk_db") as second:
            assert second.execute("SELECT COUNT(*) FROM PSN_TBL").fetchone() == (1,)
        for options in ({"fixture": OFFICE}, {"image": "other.image"}):
            with pytest.raises(qrylib.ProgrammingError, match=r"in use by connect\('adbk_db'\).*test_store.py:"):
                qrylib.connect("adbk_db", **options)
        with pytest.raises(qrylib.ProgrammingError, match="in use by"):
            qrylib.device()
    with qrylib.connect("adbk_db") as fresh:
        assert fresh.execute("SELECT COUNT(*) FROM PSN_TBL").fetchone() == (0,)


def test_a_connection_that_is_forgotten_holds_nothing():
    qrylib.connect("adbk_db").execute("INSERT INTO PSN_TBL (PSN_ID) VALUES (1)")
    with qrylib.device() as device:
        assert device.connect("adbk_db").execute("SELECT COUNT(*) FROM PSN_TBL").fetchone() == (0,)


def test_closing_a_device_closes_its_connections():
    device = qrylib.device()
    inside = device.connect("adbk_db")
    joined = qrylib.connect("department_db")
    device.close()
    device.close()
    assert inside.closed and joined.closed
    with pytest.raises(qrylib.InterfaceError):
        device.counts()


def test_a_fixture_that_is_refused_leaves_nothing_behind(tmp_path):
    wrong = tmp_path / "wrong.json"
    wrong.write_text('{"format": 1, "databases": {"adbk_db": {"NO_TBL": {}}}}')
    with pytest.raises(qrylib.OperationalError, match="the fixture is refused: .*NO_TBL"):
        qrylib.device(fixture=wrong)
    with pytest.raises(FileNotFoundError):
        qrylib.device(fixture=tmp_path / "none.json")
    qrylib.device().close()


def test_an_image_is_shared_and_stays(tmp_path):
    image = tmp_path / "device.image"
    program = (
        f"import qrylib; qrylib.connect('adbk_db', image={str(image)!r})"
        ".execute('INSERT INTO PSN_TBL (PSN_ID) VALUES (5)')"
    )
    run_python(program)
    with qrylib.connect("adbk_db", image=image) as db:
        assert db.execute("SELECT PSN_ID FROM PSN_TBL").fetchall() == [(5,)]
        with qrylib.connect("adbk_db", image=str(image)) as again:
            run_python(program.replace("(5)", "(6)"))
            assert again.execute("SELECT COUNT(*) FROM PSN_TBL").fetchone() == (2,)


def test_the_environments_image_counts_where_it_is_asked_for(tmp_path):
    image = tmp_path / "device.image"
    asked = "import qrylib; print(qrylib.connect('adbk_db', image=qrylib.QRYLIB_IMAGE).execute({!r}).rowcount)"
    insert = "INSERT INTO PSN_TBL (PSN_ID) VALUES (5)"
    assert run_python(asked.format(insert), QRYLIB_IMAGE=str(image)) == "1"
    unasked = "import qrylib; qrylib.schema(); print(qrylib.connect('adbk_db').execute('SELECT PSN_ID FROM PSN_TBL').rowcount)"
    assert run_python(unasked, QRYLIB_IMAGE=str(image)) == "0"
    assert run_python(asked.format("SELECT PSN_ID FROM PSN_TBL"), QRYLIB_IMAGE=str(image)) == "1"
    with pytest.raises(qrylib.ProgrammingError, match="QRYLIB_IMAGE"):
        qrylib.connect("adbk_db", image=qrylib.QRYLIB_IMAGE)


def test_a_child_of_fork_has_a_store_of_its_own(people):
    context = multiprocessing.get_context("fork")
    counted, ready = context.Queue(), context.Event()

    def child():
        people.execute("DELETE FROM PSN_TBL WHERE PSN_ID = 1")
        ready.set()
        counted.put(people.execute("SELECT COUNT(*) FROM PSN_TBL").fetchone()[0])

    process = context.Process(target=child)
    process.start()
    assert ready.wait(30)
    assert counted.get(timeout=30) == 9
    process.join(30)
    assert process.exitcode == 0
    assert people.execute("SELECT COUNT(*) FROM PSN_TBL").fetchone() == (10,)


def _wait_for(pid, seconds):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        done, status = os.waitpid(pid, os.WNOHANG)
        if done:
            return status
        time.sleep(0.005)
    os.kill(pid, signal.SIGKILL)
    os.waitpid(pid, 0)
    return None


def test_forks_beside_busy_threads_do_not_hang(people):
    is_over = threading.Event()

    def ask():
        while not is_over.is_set():
            people.execute("SELECT PSN_NAME FROM PSN_TBL WHERE PSN_ID > 3 ORDER BY PSN_NAME")

    threads = [threading.Thread(target=ask) for _ in range(3)]
    for thread in threads:
        thread.start()
    try:
        for _ in range(40):
            pid = os.fork()
            if pid == 0:
                rows = people.execute("SELECT COUNT(*) FROM PSN_TBL").fetchone()
                os._exit(0 if rows == (10,) else 1)
            assert _wait_for(pid, 20) == 0
    finally:
        is_over.set()
        for thread in threads:
            thread.join()


def test_a_device_in_a_child_process_refuses_a_forked_copy():
    with qrylib.device(child=True) as device:
        pid = os.fork()
        if pid == 0:
            try:
                device.counts()
            except qrylib.InterfaceError:
                os._exit(0)
            os._exit(1)
        assert _wait_for(pid, 20) == 0
        assert device.counts() == {}


LOADED = "import sys, {}; import qrylib._native as n; print(n.is_loaded(), 'pandas' in sys.modules, 'dask' in sys.modules)"


@pytest.mark.parametrize("module", ["qrylib", "qrylib.pytest_plugin", "qrylib.testing", "qrylib.child"])
def test_importing_loads_no_library(module):
    assert run_python(LOADED.format(module)) == "False False False"


def test_a_missing_library_is_named():
    program = "import qrylib\ntry:\n    qrylib.schema()\nexcept qrylib.InterfaceError as error:\n    print(error)"
    assert "libqryplatform.so.1 cannot be loaded" in run_python(program, LD_LIBRARY_PATH="/nonexistent")
