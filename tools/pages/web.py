#!/usr/bin/env python3
"""Makes web pages of all Markdown pages, in a folder tree like the repository's, with the files that they link to. A page of
an engine or a distribution ends with its declaration in the public headers. usage: web.py FOLDER"""
import html
import pathlib
import re
import shutil
import sys

import markdown

from check import is_outside, resolved
from sources import links_of, pages_of, slug

PAGE = """\
<!DOCTYPE html>
<html lang="en">
<head>
<meta charset="utf-8">
<meta name="viewport" content="width=device-width, initial-scale=1">
<title>{title}</title>
<link rel="stylesheet" href="{top}style.css">
</head>
<body>
<nav>{navigation}</nav>
<main>
{body}
</main>
</body>
</html>
"""
NAVIGATION = (("Kestro HVL RNG", "README"), ("Documentation", "docs/README"), ("Choosing", "docs/choosing"),
              ("Coming from", "docs/coming_from"), ("Engines", "docs/engines/README"),
              ("Distributions", "docs/distributions/README"), ("Gallery", "docs/gallery"), ("Changes", "CHANGELOG"))
HEADERS = {"docs/engines": ["engines.hpp"], "docs/distributions": ["distributions/*.hpp"]}


def declaration(root, page):
    """What the public headers say of the page's class, with the comment before it: source, or nothing."""
    patterns = HEADERS.get(page.parent.relative_to(root).as_posix(), [])
    shape = re.compile(rf"(?:^///[^\n]*\n)*(?:^template [^\n]*\n)?^class (?:KESTRO_HVL_API )?{page.stem}\b.*?^}};$",
                       re.MULTILINE | re.DOTALL)
    for pattern in patterns:
        for header in sorted((root / "include/kestro/hvl/rng").glob(pattern)):
            if found := shape.search(header.read_text()):
                public = re.sub(r"\n+ private:\n.*(?=\n};$)", "", found[0], flags=re.DOTALL)
                return f"#include <kestro/hvl/rng.hpp>\n\n{public}\n"
    return ""


def page_html(root, page, pages):
    text = page.read_text()
    if declared := declaration(root, page):
        text += f"\n## Declaration\n\n```cpp\n{declared}```\n"
    body = markdown.markdown(text, extensions=["tables", "fenced_code", "toc", "sane_lists"],
                             extension_configs={"toc": {"slugify": slug}})

    def led_on(link):
        """Links between pages lead to web pages."""
        target = html.unescape(link[1])
        if is_outside(target) or resolved(page, target)[0] not in pages:
            return link[0]
        return f'href="{re.sub(r"[.]md(?=#|$)", ".html", link[1])}"'

    body = re.sub(r'href="([^"]*)"', led_on, body)
    top = "../" * len(page.relative_to(root).parent.parts)
    title = re.search(r"^# (.+)$", text, re.MULTILINE)
    navigation = " ".join(f'<a href="{top}{name}.html">{label}</a>' for label, name in NAVIGATION)
    return PAGE.format(title=html.escape(title[1] if title else page.stem), top=top, navigation=navigation, body=body)


def main():
    root, out = pathlib.Path(__file__).resolve().parents[2], pathlib.Path(sys.argv[1]).resolve()
    pages = pages_of(root)
    for page in pages:
        to = out / page.relative_to(root).with_suffix(".html")
        to.parent.mkdir(parents=True, exist_ok=True)
        to.write_text(page_html(root, page, set(pages)))
        for _, _, target in links_of(page.read_text()):
            file = None if is_outside(target) else resolved(page, target)[0]
            if file and file.is_file() and file not in pages:
                copy = out / file.relative_to(root)
                copy.parent.mkdir(parents=True, exist_ok=True)
                shutil.copyfile(file, copy)
    shutil.copyfile(pathlib.Path(__file__).with_name("style.css"), out / "style.css")
    (out / "index.html").write_text('<!DOCTYPE html><meta http-equiv="refresh" content="0; url=README.html">\n')
    print(f"{len(pages)} pages in {out}")


if __name__ == "__main__":
    main()
