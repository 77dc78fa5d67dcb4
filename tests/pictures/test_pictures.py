"""Pictures as a browser shows them: by its own geometry no text stands on another or leaves its box."""

import random

import pytest

import random_models
from conftest import gallery

# What is wrong with each picture of a page. Boxes are found by their titles.
WRONG = r"""
  const apart = (one, other, by = 1.5) => one.right - by <= other.left || other.right - by <= one.left
                                          || one.bottom - by <= other.top || other.bottom - by <= one.top;
  const within = (inner, outer) => inner.left >= outer.left - 1 && inner.right <= outer.right + 1
                                   && inner.top >= outer.top - 2 && inner.bottom <= outer.bottom + 2;
  const title = group => group.querySelector(":scope > title")?.textContent ?? "?";
  const isBesidePort = (text, place) => {  // whose name may stand in what the port is on the border of
    const port = text.closest("g[data-box=port]");
    return port && !apart(port.querySelector("rect").getBoundingClientRect(), place);
  };
  const found = [];
  let boxes = 0, texts = 0;
  for (const svg of document.querySelectorAll("svg")) {
    const wrong = text => found.push(svg.parentNode.id + ": " + text);
    const page = svg.getBoundingClientRect();
    const written = [...svg.querySelectorAll("text")].map(text => [text.textContent, text.getBoundingClientRect(), text]);
    texts += written.length;
    written.forEach(([one, frame], at) => {
      if (!within(frame, page)) wrong(`"${one}" leaves the picture`);
      for (const [other, beside] of written.slice(0, at))
        if (!apart(frame, beside)) wrong(`"${one}" stands on "${other}"`);
    });
    const places = [...svg.querySelectorAll("g[data-box]")].map(group => [group, group.getBoundingClientRect()]);
    for (const [group, place] of places) {
      const shapes = [...group.querySelectorAll(":scope > rect, :scope > ellipse, :scope > path, :scope > circle"),
                      ...svg.querySelectorAll(`g[data-head="${group.id}"] > rect`)];
      const frames = shapes.map(shape => shape.getBoundingClientRect());
      if (!title(group).includes(" ") && group.dataset.box !== "note") wrong("a box has no title");
      boxes++;
      if (["port", "ball", "actor"].includes(group.dataset.box)) continue;
      const isOwn = text => group.contains(text) || text.closest("g[data-head]")?.dataset.head === group.id;
      for (const text of written.map(each => each[2]).filter(isOwn))
        if (!frames.some(frame => within(text.getBoundingClientRect(), frame)))
          wrong(`"${text.textContent}" leaves ${title(group)}`);
      if (svg.dataset.view === "sequence" || places.some(([other, inner]) => other !== group && within(inner, place)))
        continue;
      for (const [text, frame, element] of written)
        if (!isOwn(element) && !isBesidePort(element, place) && frames.some(own => !apart(frame, own)))
          wrong(`"${text}" stands on ${title(group)}`);
    }
  }
  return [found, boxes, texts];"""


def shown():
    yield from ((picture.name, picture.view) for picture in gallery.pictures())
    for seed in range(100):
        yield f"random {seed}", random_models.random_view(random.Random(seed))


@pytest.fixture(scope="module")
def page(tmp_path_factory):
    path = tmp_path_factory.mktemp("pictures") / "index.html"
    drawn = [f'<div id="{name}" title="{view.kind}">{view.svg()}</div>' for name, view in shown()]
    path.write_text('<meta charset="utf-8">' + "\n".join(drawn), "utf-8")
    return path


def test_texts_can_be_read(browser, page):
    browser.show(page)
    wrong, boxes, texts = browser.run(WRONG)
    assert "\n".join(wrong) == "" and boxes > 500 and texts > 2_000
    assert browser.complaints() == []
