"""What all pages of a site share."""

from html import escape


def page(title, body):
    return f"""<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{escape(title)}</title>
<link rel="stylesheet" href="style.css">
</head>
<body>
<header><a href="index.html">Model</a>
<label hidden>Search <input id="query" type="search" autocomplete="off"></label>
<ol id="found" aria-live="polite"></ol></header>
<main>
{body}
</main>
<script src="search.js"></script>
</body>
</html>
"""


STYLE = """:root { color-scheme: light dark; --page: #fff; --text: #151515; --line: #d0d0d0; --link: #0b57a4; }
@media (prefers-color-scheme: dark) {
  :root { --page: #1b1d21; --text: #eceef0; --line: #44484e; --link: #8cc0ff; }
  figure { filter: invert(.9) hue-rotate(180deg); }
}
body { margin: 0 auto; max-width: 70rem; padding: 0 1rem 3rem; background: var(--page); color: var(--text);
  font: 1rem/1.5 system-ui, sans-serif; overflow-wrap: anywhere; }
header { position: sticky; top: 0; padding: .6rem 0; background: var(--page); border-bottom: 1px solid var(--line); }
header > a { margin-right: 1.5rem; }
input { font: inherit; max-width: 60vw; }
#found { margin: 0; padding-left: 1.5rem; max-height: 60vh; overflow-y: auto; }
a { color: var(--link); }
a:focus-visible, input:focus-visible, figure:focus-visible { outline: 3px solid var(--link); }
h1 { font-size: 1.5rem; } h1 small { font-weight: normal; opacity: .7; }
h2 { font-size: 1.15rem; margin-top: 2rem; }
table { border-collapse: collapse; width: 100%; }
th, td { text-align: left; vertical-align: top; padding: .2rem .6rem .2rem 0; border-bottom: 1px solid var(--line); }
pre, figure { overflow-x: auto; } .text { white-space: pre-line; }
figure { margin: 1rem 0; background: #fff; } figure svg { display: block; }
@media (max-width: 40rem) {
  thead { display: none; } td { display: block; border: 0; } tr { border-bottom: 1px solid var(--line); }
}
"""

# The rows are name, class, path and page.
SEARCH = """// What is searched, and the search. Texts of the model are only ever shown as texts.
const rows = %s;
const query = document.getElementById("query");
const found = document.getElementById("found");
query.parentElement.hidden = false;
query.addEventListener("input", () => {
  const words = query.value.toLowerCase().split(/\\s+/).filter(Boolean);
  const hits = words.length === 0 ? [] : rows.filter(
    row => words.every(word => (row[0] + " " + row[1] + " " + row[2]).toLowerCase().includes(word)));
  hits.sort((one, other) => one[0].length - other[0].length);
  found.replaceChildren(...hits.slice(0, 30).map(row => {
    const item = document.createElement("li");
    const link = document.createElement("a");
    link.href = row[3];
    link.textContent = row[1] + " " + row[2];
    item.append(link);
    return item;
  }));
});
document.addEventListener("keydown", event => {
  if (event.key === "/" && document.activeElement !== query) {
    event.preventDefault();
    query.focus();
  }
});
"""
