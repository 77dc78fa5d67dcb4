"""Models of every dialect, changed at random from fixed seeds: what is saved is what is in the model. Saving itself
reads what it is about to write and holds it against the model, so an edit that it can't write raises."""

import random

import pytest

import umlmm
from sample_models import DIALECTS

KINDS = (umlmm.Class, umlmm.Package, umlmm.Interface, umlmm.Enumeration, umlmm.Activity)


def rename(random, model, element, others):
    element.name = random.choice(["", "a<b&\"c'", "ü", "two\nlines", "x y"]) + str(random.randrange(99))


def make(random, model, element, others):
    made = random.choice(KINDS)(model)
    made.name = "made"
    element.packagedElement.insert(random.randrange(len(element.packagedElement) + 1) + 1, made)


def give_attribute(random, model, element, others):
    made = umlmm.Property(model)
    element.ownedAttribute.append(made)
    made.name, made.type, made.lower, made.upper = "p", random.choice(others), 0, "*"


def move(random, model, element, others):
    random.choice([other for other in others if isinstance(other, umlmm.Package)]).packagedElement.append(element)


def reorder(random, model, element, others):
    order = list(element.ownedAttribute)
    random.shuffle(order)
    element.ownedAttribute = order


def remark(random, model, element, others):
    comment = umlmm.Comment(model)
    element.ownedComment.append(comment)
    comment.body, comment.annotatedElement = "<b> & \"c\"\n", random.sample(others, 2)


def constrain(random, model, element, others):
    constraint, text = umlmm.Constraint(model), umlmm.OpaqueExpression(model)
    random.choice([element.ownedRule, element.precondition]).append(constraint)
    constraint.specification, text.body, text.language = text, ["a", "b\n<"], ["x", "y"]


def generalize(random, model, element, others):
    made = umlmm.Generalization(model)
    element.generalization.append(made)
    made.general = random.choice(others)


def destroy(random, model, element, others):
    if element.owner is not None:
        element.destroy()


EDITS = (rename, make, give_attribute, move, reorder, remark, constrain, generalize, destroy)


def edit(random, model):
    elements = [element.asMutable() for element in model.allElements() if element.externalId or element.owner]
    try:
        random.choice(EDITS)(random, model, random.choice(elements), elements)
    except (umlmm.Kelm.Error, AttributeError, TypeError, IndexError, ValueError):
        pass  # an edit that this element has no place for


def shown(model):
    """Names, kinds and places of all elements that files hold."""
    return sorted((type(e).__name__, str(getattr(e, "qualifiedName", "")), len(e.ownedElement))
                  for e in model.allElements() if e.owner or e.externalId)


@pytest.mark.parametrize("name", DIALECTS)
@pytest.mark.parametrize("seed", range(6))
def test_what_is_saved_is_what_is_in_the_model(tmp_path, name, seed):
    path = tmp_path / "model.xmi"
    path.write_bytes(DIALECTS[name])
    model, chance = umlmm.load(path), random.Random(seed)
    for _ in range(3):
        for _ in range(12):
            edit(chance, model)
        model.save()
        again = umlmm.load(path)
        assert shown(again) == shown(model)
        for dialect in ("omg-2.5.1", "eclipse"):
            again.save(tmp_path / "other.xmi", dialect=dialect)
            assert shown(umlmm.load(tmp_path / "other.xmi")) == shown(model)
        written = path.read_bytes()
        model.save()
        assert path.read_bytes() == written
