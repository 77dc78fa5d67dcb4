"""Runs the tables of the folders below: models in a few lines of text, expressions and the answers they must have.

A table is a text file; blank lines part its blocks. A block that starts with `# title` is a case and runs on a fresh
model. A block that starts with the line `given` is what the cases behind it begin with. In a block:

    Class A, B                    makes elements with these names; `_` makes one without
    Class b named "A"             called b in the table alone
    p.packagedElement += Class A  appends; elements are made and named wherever a value may stand
    Generalization(A, B)          makes one from the arguments of its constructor
    g = A.generalization[0]       gives an element that the model has made a name
    expression -> expression      both must give the same; an element shows as its name, a destroyed one as gone
    statement !! words            must fail, with these words in the failure

`; ` parts statements that share a line, two blanks and # begin a remark. `kind(x)` names the metaclass of x. All else
is Python on the published classes, with true, false and null; `Class(elsewhere)` is in another model.
"""

import pathlib
import re

import pytest

import umlmm
from umlmm import Kelm

FOLDER = pathlib.Path(__file__).parent
CLASSES = {name: getattr(umlmm, name) for name in dir(umlmm)
           if name[0].isupper() and "Sequence" not in name and not name.startswith("Immutable")}
LITERAL = re.compile(r'"(?:[^"\\]|\\.)*"|\'(?:[^\'\\]|\\.)*\'')
MADE = re.compile(r"\b([A-Z]\w+) ([A-Za-z_]\w*)(?: named (@\d+@))?")
MADE_FROM = re.compile(r"(?<!\.)\b([A-Z]\w+)\((?!(elsewhere|null)\))")
GONE = object()
FAILURES = Kelm.Error, RuntimeError, TypeError, ValueError, AttributeError, LookupError


class Case:
    def __init__(self):
        self.literals = []
        self.models = model, elsewhere = [umlmm.Factory.createNewModel() for _ in range(2)]
        self.scope = dict(CLASSES, umlmm=umlmm, Kelm=Kelm, model=model, elsewhere=elsewhere, true=True, false=False,
                          null=None, gone=GONE, make=self.make, kind=lambda element: type(element).__name__)

    def make(self, metaclass, key, name=None):
        element = CLASSES[metaclass](self.models[0])
        if key != "_":
            assert key not in self.scope, f"{key} is there already"
            self.scope[key] = element
            if hasattr(element, "name"):
                element.name = key if name is None else name
        return element

    def texts(self, row):
        """What stands between `; `, with numbers for literals, in which nothing counts."""
        def number(literal):
            self.literals.append(literal[0])
            return f"@{len(self.literals) - 1}@"
        return re.sub(r"(^|  )#.*", "", LITERAL.sub(number, row)).split("; ")

    def written(self, text):
        return re.sub(r"@(\d+)@", lambda m: self.literals[int(m[1])], text)

    def python(self, text):
        text = MADE.sub(lambda m: f"make('{m[1]}', '{m[2]}', {m[3]})" if m[1] in CLASSES else m[0], text)
        return self.written(MADE_FROM.sub(lambda m: f"{m[0]}model, " if m[1] in CLASSES else m[0], text))

    def execute(self, text):
        several = re.fullmatch(r"([A-Z]\w+) (\w+(?:, \w+)+)", text)
        if several:
            for key in several[2].split(", "):
                self.make(several[1], key)
        elif " += " in text:
            target, values = text.split(" += ")
            exec(self.python(f"{target}.extend([{values}])"), self.scope)
        else:
            exec(self.python(text), self.scope)

    def shown(self, value):
        if value is GONE:
            return "gone"
        if isinstance(value, Kelm.ImmutableClassObject):
            if not value.isvalid():
                return "null" if self.is_null(value) else "gone"
            return next((key for key, known in self.scope.items() if not isinstance(known, type) and known == value),
                        f"a {type(value).__name__}")
        if value is None or isinstance(value, bool):
            return {None: "null", True: "true", False: "false"}[value]
        if hasattr(value, "__iter__") and not isinstance(value, str):
            return f"[{', '.join(map(self.shown, value))}]"
        return repr(value)

    @staticmethod
    def is_null(element):
        """Queries answer with a reference to nothing, which has no metaclass; a destroyed element keeps its own."""
        try:
            element.getMetaType()
        except Kelm.Error:
            return True
        return False

    def check(self, text):
        if " !! " in text:
            statement, words = text.split(" !! ")
            with pytest.raises(FAILURES, match=re.escape(self.written(words))):
                self.execute(statement)
        elif " -> " in text:
            got, expected = (self.shown(eval(self.python(side), self.scope)) for side in text.split(" -> "))
            assert got == expected, f"expected {expected}, got {got}"
        else:
            self.execute(text)


def blocks(path):
    """The blocks of a table, each a list of numbered lines."""
    block = []
    for number, line in enumerate([*path.read_text().splitlines(), ""], 1):
        if line:
            block.append((number, line))
        elif block:
            yield block
            block = []


def cases():
    for path in sorted(FOLDER.rglob("*.txt")):
        given = []
        for (number, head), *rows in blocks(path) if path.name != "CMakeLists.txt" else ():
            place = f"{path.relative_to(FOLDER)}:{number}"
            if head == "given":
                given = rows
                continue
            assert head.startswith("# ") and any(" -> " in row or " !! " in row for _, row in rows), \
                f"{place}: a case has a title and a row that can fail"
            yield pytest.param(path, given + rows, id=f"{place} {head[2:]}")


@pytest.mark.parametrize("path, rows", cases())
def test_table(path, rows):
    case, failure = Case(), None
    for number, row in rows:
        try:
            for text in case.texts(row):
                case.check(text)
        except (Exception, pytest.fail.Exception) as error:
            failure = f"{path}:{number}: {row}\n{type(error).__name__}: {str(error).partition(chr(10))[0]}"
            break
    for model in filter(Kelm.Model.isvalid, case.models):
        model.close()
    if failure:
        pytest.fail(failure, pytrace=False)
