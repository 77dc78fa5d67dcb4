"""How Sphinx makes a site of these pages; `tools/make-docs` brings in what is generated and calls it."""

project = "umlmm"
extensions = ["myst_parser"]
html_theme = "furo"
html_title = "umlmm"
html_static_path = ["_static"]
html_css_files = ["site.css"]
html_show_sphinx = False
html_copy_source = False
html_show_copyright = False
# What is for those who change umlmm is read in the source.
exclude_patterns = ["design.md", "glossary.md", "decisions", "html"]
myst_heading_anchors = 3
