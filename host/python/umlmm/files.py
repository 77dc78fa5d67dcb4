"""Model files: XMI as the tools of the field write it, UML 2.0 to 2.5.1.

    model = umlmm.load("shop.uml")
    print(model.report)
    model.by_id("_x1").name = "Order"
    model.save()

What is read is one new model, used as any other, whatever tool wrote the file. What the metamodel has no place for is
kept, can be looked at, and is written back as it stood; so is all that was not changed.
"""

from __future__ import annotations

import errno
import os
import sys

import umlmm
from umlmm import _host, errors  # type: ignore[attr-defined]
from umlmm._answers import DuplicateId, Finding, Report, ReportFile, Unknown, Unresolved, decoded
from umlmm._stereotypes import Stereotype, Stereotypes

TYPE_CHECKING = False  # but for checkers: the module typing takes longer to bring in than a file to read
if TYPE_CHECKING:
    from collections.abc import Callable, Iterable, Mapping
    from typing import BinaryIO, Union

    from umlmm import Kelm

    Path = Union[str, os.PathLike[str]]
    Source = Union[Path, bytes, bytearray, memoryview, BinaryIO]
    Target = Union[Path, BinaryIO]
    Progress = Union[None, bool, Callable[[float], object]]

__all__ = ["DuplicateId", "Error", "Finding", "MissingFile", "NotUml", "ReadError", "Report", "ReportFile", "Stereotype",
           "Stereotypes", "Unknown", "Unresolved", "by_id", "is_loaded", "load", "load_all", "report", "save", "stereotyped",
           "stereotypes", "text", "unknown", "unresolved"]

_host.load("uml_model_files_mi")
_native = umlmm._show("umlmm._files", "umlmm_files")  # type: ignore[attr-defined]

# Between two steps callbacks, Ctrl-C and, in the main thread, handlers of signals have their turn.
_STEP_MILLISECONDS = 50


class Error(errors.Error):
    """A file cannot be opened, read or written. `file`, `line`, `column` and `path`, the names of the elements from
    the root on, tell where, as far as it is known."""

    file: str | None = None
    line: int | None = None
    column: int | None = None
    path: str | None = None


class NotUml(Error, ValueError):
    """The file is something else than UML 2 in XMI; the message says what."""


class ReadError(Error):
    """The text is no XML, or, in a strict reading, something in it was not understood."""


class MissingFile(Error, FileNotFoundError):
    """There is no such file."""

    def __str__(self):
        return str(self.args[0])


# --- reading

def load(path: Source, *, strict: bool = False, progress: Progress = None,
         paths: Mapping[str, Path] = {}) -> Kelm.Model:
    """Reads a file into a new model.

    `path` is a path, bytes, or a file that is open for reading bytes. What is not understood is kept as written and
    listed in the report; with `strict`, the first such thing raises ReadError. `progress` is called with numbers from
    0 to 1, at most 20 times a second; True shows a bar on the error stream, None one on a terminal when it takes
    long, False none. Other files that hold parts of the model (`<packagedElement href=`) are read along; files that
    are merely referred to are not, and such references stay unresolved. `paths` tells where addresses lead, by what
    they start with, and what lies there is read as well: `{"pathmap://MY_PROFILES/": "/models/profiles"}`.

    Raises NotUml for a file that is something else, MissingFile, which is a FileNotFoundError, and Error. Ctrl-C, and
    what `progress` raises, end the reading and leave nothing behind. Other threads run meanwhile.
    """
    if isinstance(path, (list, tuple, set, frozenset)):
        raise TypeError("load reads one file; load_all reads several into one model")
    return _load([path], strict, progress, paths)


def load_all(files: Source | Iterable[Source], *, strict: bool = False, progress: Progress = None,
             paths: Mapping[str, Path] = {}) -> Kelm.Model:
    """Reads files that refer to each other into one new model, in whatever order; `load` tells of the rest."""
    one = isinstance(files, (str, os.PathLike, bytes, bytearray, memoryview)) or hasattr(files, "read")
    sources: list = [files] if one else list(files)  # type: ignore[arg-type]
    if not sources:
        raise ValueError("load_all needs at least one file")
    return _load(sources, strict, progress, paths)


def _load(sources, strict, progress, paths):
    number = _native.begin(bool(strict))
    try:
        named = [_add(number, source) for source in sources]
        for prefix, place in paths.items():
            _native.addPath(number, prefix, os.fspath(place))
        with _shown(progress, named) as tell:
            while not _call("step", number, _STEP_MILLISECONDS, files=named):
                tell(_native.progress(number) / 1000)
            tell(1.0)
        return _call("take", number)
    finally:
        _native.drop(number)


def _add(number, source):
    """Gives the reading a file; answers the name by which it goes."""
    if isinstance(source, (bytes, bytearray, memoryview)):
        return _add_bytes(number, "<bytes>", source)
    if hasattr(source, "read"):
        source = getattr(source, "buffer", source)  # of a file opened for text
        name = getattr(source, "name", None)
        return _add_bytes(number, name if isinstance(name, str) else "<file>", source.read())
    name = os.fsdecode(os.fspath(source))
    try:
        name.encode()
    except UnicodeEncodeError:  # the system's names are bytes, those of the library are texts
        with _opened(name) as file:
            return _add_bytes(number, name.encode(errors="replace").decode(), file.read())
    if "\0" in name:
        raise ValueError("A path has no zero characters")
    _call("addFile", number, name)
    return name


def _add_bytes(number, name, data):
    if isinstance(data, str):
        raise TypeError("The file gives text; a model file is read as bytes, opened with mode 'rb'")
    with _passage() as file:
        file.write(data)
        file.flush()
        _call("addBytes", number, name, file.fileno())
    return name


def _opened(name):
    try:
        return open(name, "rb")
    except FileNotFoundError as error:
        raise _missing(f"There is no file {name!r}.", name) from error
    except OSError as error:
        raise Error(f"File {name!r} cannot be read: {error.strerror}.") from error


def _passage():
    """A file in memory, through which bytes go to and from the library."""
    if hasattr(os, "memfd_create"):
        return open(os.memfd_create("umlmm"), "w+b")
    import tempfile
    return tempfile.TemporaryFile()


def _shown(progress, names):
    from umlmm import _progress
    if callable(progress):
        return _progress.Callback(progress)
    if progress is False or (progress is None and not _progress.is_terminal(sys.stderr)):
        return _progress.Callback(lambda share: None)
    title = os.path.basename(names[0]) if len(names) == 1 else f"{len(names)} files"
    return _progress.Bar(sys.stderr, f"reading {title}", after=0 if progress else 1)


# --- writing

def save(model: Kelm.Model, path: Target | None = None, *, dialect: str | None = None,
         force: bool = False) -> None:
    """Writes every changed file of a model, or all of the model to a path or a file that is open for writing bytes.

    What has not changed keeps its bytes. `dialect` is "omg-2.5.1" or "eclipse"; without one a file stays in its own,
    and a model that came from no file is written in the standard's form. A file that has changed on disk since it was
    read raises Error unless `force` is given. The old file stays whole when writing fails.
    """
    if path is None:
        _call("save", model, dialect or "", bool(force))
    elif hasattr(path, "write"):
        path.write(text(model, dialect=dialect))
    else:
        _call("saveTo", model, os.fsdecode(os.fspath(path)), dialect or "", bool(force))


def _copy_files(model: Kelm.ImmutableModel, copy: Kelm.Model) -> None:
    """Gives a copy of a model, which `copy.deepcopy` has made, what belongs to the model's files."""
    if is_loaded(model):
        _call("copyFiles", model, copy)


def text(model: Kelm.Model, file: Path | None = None, *, dialect: str | None = None) -> bytes:
    """What `save` would write: the bytes of a model's file, of the first one if none is named."""
    with _passage() as passage:
        _call("text", model, "" if file is None else os.fspath(file), dialect or "", passage.fileno())
        passage.seek(0)
        return passage.read()


# --- what is known of a model that was read

def is_loaded(model: Kelm.ImmutableModel) -> bool:
    """Whether the model came from files."""
    return _native.isLoaded(model)


def report(model: Kelm.ImmutableModel) -> Report:
    """What reading has met: files with tool and dialect, elements by metaclass, what was not understood."""
    return Report(_call("report", model), _call("reportPage", model))


def by_id(model: Kelm.Model, id: str, file: Path | None = None) -> Kelm.ClassObject | None:
    """The element with an id of the files, or of one of them; None if there is none. An element keeps its id in
    `externalId`."""
    if not is_loaded(model):
        return None
    return _call("byId", model, id, "" if file is None else os.fspath(file))


def unresolved(model: Kelm.Model) -> list[Unresolved]:
    """References that lead nowhere, of the elements that are still there. They are written back as they stand."""
    if not is_loaded(model):
        return []
    answers = decoded(_call("unresolved", model))
    return [Unresolved(element, *answer)
            for element, answer in zip(_call("unresolvedElements", model), answers, strict=True)]


def unknown(element: Kelm.ImmutableClassObject) -> list[Unknown]:
    """What stood with the element in its file beside what the metamodel has a place for."""
    return [Unknown(*answer) for answer in decoded(_call("unknown", element))]


def stereotypes(element: Kelm.ImmutableClassObject) -> Stereotypes:
    """The stereotypes that are applied to the element, with their tagged values. They can be changed: what is changed
    is seen at once, and comes into the file when it is saved."""
    return Stereotypes(element, _call, decoded(_call("stereotypes", element)))


def stereotyped(model: Kelm.Model, name: str) -> list[Kelm.ClassObject]:
    """The elements to which a stereotype of this name is applied, each once, in the order of the applications."""
    return list(_call("stereotyped", model, name)) if is_loaded(model) else []


# --- failures

def _call(name, *arguments, files=()):
    """Calls a function of the library, and raises its failures as exceptions of this module."""
    try:
        return getattr(_native, name)(*arguments)
    except _native.Failure as failure:
        told = decoded(str(failure))
    missing = [file for file in files if not file.startswith("<") and _is_missing(file)]
    if told["kind"] == "Error" and missing:
        raise _missing(told["message"], missing[0])
    error = {"NotUml": NotUml, "ReadError": ReadError}.get(told["kind"], Error)(told["message"])
    for key in ("file", "line", "column", "path"):
        if told.get(key):
            setattr(error, key, told[key])
    raise error


def _is_missing(file):
    try:
        os.stat(file)
    except (FileNotFoundError, NotADirectoryError):
        return True
    except OSError:  # it is there, in a circle of links or where nobody may look
        pass
    return False


def _missing(message, file):
    error = MissingFile(message)
    error.errno, error.filename, error.file = errno.ENOENT, file, file
    return error
