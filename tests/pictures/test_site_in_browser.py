"""The pages of a model in a browser: links, search, keys, widths of a desk and of a phone, with and without scripts."""

import pytest

import umlmm
from random_models import shop
from test_pictures import WRONG
from umlmm.drawing import site

HOSTILE = ["</title></script><script>alert(1)</script>", "<img src=x onerror=alert(1)>", "javascript:alert(1)",
           "]]>\"'><svg onload=alert(1)>", "\u202eexe.gnp\u202c\u200f", "x" * 10_000, "&lt;b&gt; \\u003cscript>"]


@pytest.fixture(scope="module")
def pages(tmp_path_factory):
    """Of a shop, to which classes with names come that try to be more than names."""
    top = shop()
    order = top["Order"]
    order.ownedComment.create(body="What a customer wants\n" + HOSTILE[0])
    for at, text in enumerate(HOSTILE):
        other = umlmm.Class(owner=top, name=text)
        other.ownedComment.create(body=text)
        other.ownedAttribute.create(name=text, type=order, default=text)
        umlmm.associate(order, other, name=text, ends=(f"order{at}", text))
    folder = tmp_path_factory.mktemp("site")
    site.write(top.modelKelm, folder)
    top.modelKelm.close()
    return folder


def page_of(pages, title):
    [found] = [page for page in pages.glob("*.html") if f"<title>{title}</title>" in page.read_text("utf-8")]
    return found


@pytest.mark.parametrize("width", [400, 1400])
def test_every_page(browser, pages, width):
    found = sorted(pages.glob("*.html"))
    assert len(found) > 20
    for page in found:
        browser.show(page, width)
        assert not browser.has_dialog() and browser.complaints() == [], page
        assert browser.run("return document.documentElement.scrollWidth") <= width, page
        assert browser.run(WRONG)[0] == [], page
        assert browser.run("return document.querySelectorAll('script, style, iframe, img, form').length") == 1
        targets = browser.run("return [...document.querySelectorAll('a')].map(a => a.href.animVal ?? a.href)")
        assert targets and {target.rpartition("/")[2] for target in targets} <= {page.name for page in found}


def test_a_box_in_a_picture_is_a_link(browser, pages):
    browser.show(page_of(pages, "Class Item"))
    browser.run("""[...document.querySelectorAll("figure g[data-box] > title")]
      .find(title => title.textContent === "Class shop::Order").closest("a").dispatchEvent(
        new MouseEvent("click", {bubbles: true, cancelable: true, view: window}))""")
    assert browser.soon("return document.title", until="Class Order".__eq__) == "Class Order"


@pytest.mark.parametrize("words, first", [
    ("sellable", "Interface shop::Sellable"), ("class users pers", "Class shop::users::Person"),
    ("<img", "Class shop::<img src=x onerror=alert(1)>"), ("nothing like it", None)])
def test_search_by_keys(browser, pages, words, first):
    browser.show(page_of(pages, "Class Order"), 400)
    browser.press("/")
    browser.press(words)
    found = browser.run("return [...document.querySelectorAll('#found a')].map(a => a.textContent)")
    assert found[:1] == ([first] if first else [])
    if first:
        browser.press("\ue004")  # the key Tab goes to the first link, Enter follows it
        assert browser.run("return document.activeElement.textContent") == first
        assert browser.run("return getComputedStyle(document.activeElement).outlineStyle") == "solid"
        browser.press("\ue007")
        name = first.rpartition("::")[2]
        assert browser.soon("return document.querySelector('h1').textContent", until=lambda text: name in text)
    assert browser.complaints() == [] and not browser.has_dialog()


def test_without_scripts(browser, pages):
    browser.command("Emulation.setScriptExecutionDisabled", value=True)
    try:
        browser.show(pages / "index.html", 400)
        seen = browser.command("Runtime.evaluate", returnByValue=True, expression="""[
            document.querySelectorAll("main a").length, document.querySelector("label").checkVisibility()]""")["result"]["value"]
    finally:
        browser.command("Emulation.setScriptExecutionDisabled", value=False)
    assert seen == [6, False]


def test_dark_pages_are_dark(browser, pages):
    def brightness(scheme):
        browser.command("Emulation.setEmulatedMedia", features=[{"name": "prefers-color-scheme", "value": scheme}])
        browser.show(page_of(pages, "Class Order"))
        return browser.run("""return ["backgroundColor", "color"].map(of => getComputedStyle(document.body)[of]
          .match(/\\d+/g).slice(0, 3).reduce((sum, each) => sum + Number(each), 0))""")

    light, dark = brightness("light"), brightness("dark")
    browser.command("Emulation.setEmulatedMedia", features=[])
    assert light[0] > 700 > 100 > light[1] and dark[0] < 150 < 600 < dark[1]
