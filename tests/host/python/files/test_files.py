"""Model files as scripts open and save them. What each dialect means is tested below, in C++."""

import gc
import io
import os
import signal
import subprocess
import sys
import threading
import time

import pytest

import umlmm
from sample_models import DIALECTS, ECLIPSE, STRANGE, large
from umlmm import Kelm, _host, files


def tree(model):
    return [(element.MetaClass().name, element.qualifiedName) for element in model.allElements()
            if element.MetaClass().name != "Comment"]


@pytest.mark.parametrize("name", DIALECTS)
def test_the_same_model_from_every_dialect(name):
    model = umlmm.load(DIALECTS[name])
    assert tree(model) == [("Model", "shop"), ("Class", "shop::Order"), ("Property", "shop::Order::item"),
                           ("Class", "shop::Item")]
    item = model.by_id("_i")
    assert item.isAbstract and item.externalId == "_i" and model.by_id("_t").type is item
    assert model.by_id("_none") is None
    assert files.text(model) == DIALECTS[name]
    assert model.report.elements["Class"] == 2 and model.report.files[0].bytes == len(DIALECTS[name])


def test_what_can_be_opened(tmp_path):
    path = tmp_path / "shop \u20ac.uml"
    path.write_bytes(ECLIPSE)
    undecodable = bytes(tmp_path) + b"/\xff.uml"
    with open(undecodable, "wb") as file:
        file.write(ECLIPSE)
    sources = [str(path), path, ECLIPSE, bytearray(ECLIPSE), memoryview(ECLIPSE), io.BytesIO(ECLIPSE),
               open(path, "rb"), open(path), undecodable.decode("utf-8", "surrogateescape")]
    for source in sources:
        assert len(umlmm.load(source).allElements()) == 4, source
    first, second = umlmm.load(path), umlmm.load(path)
    assert first != second and first.uri != second.uri
    first.close()
    assert not first.isvalid() and second.rootElements()[0].name == "shop"


def test_files_that_refer_to_each_other(tmp_path):
    shop, parts = tmp_path / "shop.uml", tmp_path / "parts.uml"
    shop.write_bytes(ECLIPSE.replace(b'type="_i"/>', b'><type xmi:type="uml:Class" href="parts.uml#_i"/></ownedAttribute>'))
    parts.write_bytes(ECLIPSE.replace(b"Item", b"Part"))
    for given in ([shop, parts], [str(parts), str(shop)]):
        model = umlmm.load_all(given)
        assert model.by_id("_t", shop).type is model.by_id("_i", str(parts)) and model.unresolved == []
        assert sorted(file.path for file in model.files) == [str(parts), str(shop)]
        model.by_id("_i", parts).name = "Piece"
        before = os.stat(shop)
        model.save()
        assert parts.read_bytes() == ECLIPSE.replace(b"Item", b"Piece") and os.stat(shop) == before
        assert files.text(model, shop) == shop.read_bytes()
        model.close()
    with pytest.raises(files.MissingFile, match="none.uml"):
        umlmm.load_all([shop, tmp_path / "none.uml"])
    (tmp_path / "round.uml").symlink_to("round.uml")
    with pytest.raises(files.Error, match="links") as raised:
        umlmm.load(tmp_path / "round.uml")
    assert not isinstance(raised.value, files.MissingFile)
    with pytest.raises(ValueError, match="at least one"):
        umlmm.load_all([])


@pytest.mark.parametrize("source, error, words", [
    (b"", files.NotUml, "empty"),
    (b'{"_type": "Project"}', files.NotUml, "JSON"),
    (b"PK\3\4\0\0", files.NotUml, "zip"),
    (b'<XMI xmi.version="1.2"/>', files.NotUml, "UML 1 "),
    (ECLIPSE[:300], files.ReadError, ""),
    ("", files.Error, ""),
    (io.StringIO("<a/>"), TypeError, "opened with mode 'rb'"),
    (["a.uml"], TypeError, "load_all"),
    (3, TypeError, "int"),
])
def test_what_is_refused_and_how(settled, source, error, words):
    before = _host.live_counts()
    with pytest.raises(error, match=words):
        umlmm.load(source)
    assert _host.live_counts() == before


def test_failures_tell_where(tmp_path):
    with pytest.raises(FileNotFoundError, match="none.uml") as caught:
        umlmm.load(tmp_path / "none.uml")
    assert isinstance(caught.value, files.Error) and caught.value.filename == str(tmp_path / "none.uml")
    path = tmp_path / "strange.uml"
    path.write_bytes(STRANGE)
    with pytest.raises(files.ReadError) as caught:
        umlmm.load(path, strict=True)
    error = caught.value
    assert error.file == str(path) and 4 < error.line < 17 and error.column > 0 and "shop" in error.path
    assert isinstance(files.NotUml(), ValueError)


def test_what_the_metamodel_has_no_place_for():
    model = umlmm.load(STRANGE)
    order = model.by_id("_o")
    assert order.name == "Order"
    [application] = order.stereotypes
    assert (application.name, application.profile, application.uri) == ("Table", "Data", "http://example.org/schemas/Data/1")
    assert application.values == {"name": "orders", "key": ["a", "b"]}
    assert model.stereotyped("Table") == [order] and model.stereotyped("Other") == []
    annotation = next(unknown for unknown in order.unknown if unknown.tag == "eAnnotations")
    assert annotation.attributes["source"] == "note" and annotation.children[0].attributes["key"] == "colour"
    assert {(reference.element.externalId, reference.feature.rpartition(".")[2], reference.address)
            for reference in model.unresolved} == {
        ("_t", "type", "_gone"),
        ("_p", "importedPackage", "pathmap://UML_LIBRARIES/UMLPrimitiveTypes.library.uml#_0")}
    report = model.report
    assert [duplicate.id for duplicate in report.duplicate_ids] == ["_o"]
    assert report.unresolved_count == 2 and report.stereotype_count == 1
    assert any(finding.what == "eAnnotations" and finding.count == 1 for finding in report.findings)
    assert "shop" not in report.elements and '"' in report.json() and "Class" in str(report)


def test_a_model_from_no_file():
    model = umlmm.Factory.createNewModel()
    package = umlmm.Package(model)
    assert model.report is None and model.files == [] and model.unresolved == [] and model.by_id("x") is None
    assert package.unknown == [] and package.stereotypes == [] and model.stereotyped("X") == []
    with pytest.raises(files.Error):
        model.save()
    model.close()
    with pytest.raises((files.Error, Kelm.Error)):
        files.report(model)


# --- progress, Ctrl-C, threads

def test_progress_is_told_now_and_then(large_file):
    told = []
    start = time.monotonic()
    umlmm.load(large_file, progress=lambda share: told.append((share, time.monotonic())))
    shares = [share for share, _ in told]
    assert shares == sorted(shares) and shares[-1] == 1 and shares[0] >= 0
    assert len(told) <= 20 * (time.monotonic() - start) + 2


def test_the_bar_is_gone_in_the_end(large_file, capsys):
    umlmm.load(large_file, progress=True)
    shown = capsys.readouterr().err
    assert "reading large.uml [" in shown and shown.endswith(" \r")
    umlmm.load(large_file)
    assert capsys.readouterr().err == ""


class Stop(Exception):
    pass


def test_a_reading_that_ends_early_leaves_nothing(large_file, monkeypatch):
    monkeypatch.setattr(files, "_STEP_MILLISECONDS", 5)
    gc.collect()
    before = _host.live_counts()

    def interrupt(*ignored):
        raise KeyboardInterrupt

    def stop(share):
        raise Stop

    old = signal.signal(signal.SIGALRM, interrupt)
    try:
        signal.setitimer(signal.ITIMER_REAL, 0.02)
        with pytest.raises(KeyboardInterrupt):
            while True:
                umlmm.load(large_file).close()
    finally:
        signal.setitimer(signal.ITIMER_REAL, 0)
        signal.signal(signal.SIGALRM, old)
    with pytest.raises(Stop):
        umlmm.load(large_file, progress=stop)
    gc.collect()
    assert _host.live_counts() == before


def test_other_threads_run_inside_a_step(large_file, monkeypatch):
    monkeypatch.setattr(files, "_STEP_MILLISECONDS", 60_000)
    interval = sys.getswitchinterval()
    reading = threading.Thread(target=lambda: umlmm.load(large_file).close())
    sys.setswitchinterval(60)  # nobody gets the lock but who is given it
    try:
        reading.start()
        ran = 0
        while reading.is_alive():
            time.sleep(0.001)
            ran += 1
    finally:
        sys.setswitchinterval(interval)
        reading.join()
    assert ran > 5


def test_two_threads_read_while_a_third_works():
    text = large(3_000)
    sizes = []

    def read():
        for _ in range(3):
            model = umlmm.load(text)
            sizes.append((len(model.allElements()), len({element.name for element in model.allElements()})))
            model.close()

    readers = [threading.Thread(target=read) for _ in range(2)]
    for reader in readers:
        reader.start()
    while any(reader.is_alive() for reader in readers):
        model = umlmm.Factory.createNewModel()
        package = umlmm.Package(model)
        for i in range(100):
            package.packagedElement.append(umlmm.Class(model))
            package.packagedElement[i].name = f"Class{i}"
        model.close()
    assert sizes == [(6_001, 3_002)] * 6


def test_the_process_ends_while_a_thread_reads():
    script = """
import sys, threading, time, umlmm
from umlmm import files
files._STEP_MILLISECONDS = 1
text = sys.stdin.buffer.read()
def read():
    while True:
        files.load(text).close()
for _ in range(3):
    threading.Thread(target=read, daemon=True).start()
time.sleep(0.2)
keep = [{} for _ in range(500_000)]  # takes a while to end
"""
    done = subprocess.run([sys.executable, "-c", script], input=large(3_000), capture_output=True, timeout=60)
    assert (done.returncode, done.stderr) == (0, b"")
