"""Sequences: pictures and texts against the interaction."""

import pytest

import umlmm
from pictures import SVG, Picture
from random_models import shop, talk


@pytest.fixture
def interaction():
    interaction = talk()
    yield interaction
    interaction.modelKelm.close()


def test_each_message_goes_where_the_model_says_in_its_order(interaction):
    picture = Picture(umlmm.draw(interaction))
    lifelines = {group.get("id"): group.get("data-name") for group in picture.root.iter(SVG + "g")
                 if group.get("data-box") == "lifeline"}
    told = [(group.get("data-path").rpartition("::")[2], lifelines.get(group.get("data-source")),
             lifelines.get(group.get("data-target")), group.get("data-message"))
            for group in picture.root.iter(SVG + "g") if group.get("data-message")]

    def name(end):
        return end.covered[0].name if end is not None else None

    order = ["order", "take in stock", "count in stock", "take otherwise", "count otherwise", "again", "make", "lost",
             "found", "done", "stop"]
    messages = {message.name: message for message in interaction.message}
    assert told == [(each, name(messages[each].sendEvent), name(messages[each].receiveEvent),
                     messages[each].messageSort.value) for each in order]
    heights = [float(next(group.iter(SVG + "path")).get("d").split()[1].split("L")[0].split("H")[0])
               for group in picture.root.iter(SVG + "g") if group.get("data-message")]
    assert heights == sorted(heights) and len(set(heights)) == len(heights)


def test_what_is_drawn_of_fragments_executions_and_states(interaction):
    picture = Picture(umlmm.draw(interaction, "sequence"))
    facts = [(name, group.get(name)) for group in picture.root.iter(SVG + "g")
             for name in ("data-fragment", "data-execution", "data-use", "data-state") if group.get(name)]
    assert sorted(facts) == [("data-execution", "b2"), ("data-fragment", "alt"), ("data-fragment", "loop"),
                             ("data-state", "ready"), ("data-use", "pay")]
    texts = dict(picture.texts())
    assert {"[in stock]", "[otherwise]", "alt", "loop", "ref", "sd Talk"} <= set(texts)
    wide, high = (float(picture.root.get(name)) for name in ("width", "height"))
    for text, frame in texts.items():
        assert frame[0] >= 0 and frame[2] <= wide and frame[3] <= high
        for other, at in texts.items():
            assert text == other or frame[2] <= at[0] or at[2] <= frame[0] or frame[3] <= at[1] or at[3] <= frame[1]


@pytest.mark.parametrize("form, lines", [
    ("plantuml", ["b1 -> b2 : order", "activate b2", "alt [in stock]", "else [otherwise]", "loop",
                  "ref over b1, b2 : pay", "create b4", "b2 -->> b4 : make", "b1 ->] : lost", "[-> b2 : found",
                  "hnote over b2 : ready", "b2 -->> b1 : done", "deactivate b2", "destroy b4"]),
    ("mermaid", ["b1->>b2: order", "activate b2", "alt [in stock]", "else [otherwise]", "loop",
                 "Note over b1,b2: ref pay",
                 "b2--)b4: make", "b1->>away: lost", "away->>b2: found", "Note over b2: ready", "b2--)b1: done",
                 "deactivate b2", "b2-xb4: stop"]),
])
def test_texts(interaction, form, lines):
    text = [line.strip() for line in getattr(umlmm.draw(interaction), form)().split("\n")]
    assert [line for line in text if line in lines] == lines and text.count("end") == 2


def test_what_has_no_sequence(interaction):
    with pytest.raises(ValueError, match="Graphviz has no sequences"):
        umlmm.draw(interaction).dot()
    with pytest.raises(ValueError, match="of one interaction"):
        umlmm.draw(shop(), "sequence")
