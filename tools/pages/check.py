#!/usr/bin/env python3
"""Checks the pages: every link leads to a file and a heading that are there; every page below docs/ is reached from
docs/README.md; every engine and every distribution has a page, every page of a distribution a picture; no picture is left
over. Usage: check.py [ROOT]"""
import pathlib
import re
import sys

from sources import anchors_of, links_of, pages_of

LISTS = (("engines", re.compile(r"^KESTRO_HVL_ENGINE\((\w+)\)", re.MULTILINE)),
         ("distributions", re.compile(r"^KESTRO_HVL_DISTRIBUTION\(\w+, (\w+)", re.MULTILINE)))


def resolved(page, target):
    """The file that a link on a page leads to, and the heading."""
    name, _, anchor = target.partition("#")
    return ((page.parent / name).resolve() if name else page), anchor


def is_outside(target):
    return re.match(r"\w+:", target) is not None


def link_faults(root, texts):
    for page, text in texts.items():
        for line, _, target in links_of(text):
            if is_outside(target):
                continue
            file, anchor = resolved(page, target)
            where = f"{page.relative_to(root)}:{line}"
            if not file.exists():
                yield f"{where}: no file {target}"
            elif anchor and (file not in texts or anchor not in anchors_of(texts[file])):
                yield f"{where}: no heading {target}"


def reached_from(start, texts):
    reached, waiting = set(), [start]
    while waiting:
        page = waiting.pop()
        if page in reached:
            continue
        reached.add(page)
        for _, _, target in links_of(texts.get(page, "")):
            if not is_outside(target):
                waiting.append(resolved(page, target)[0])
    return reached


def coverage_faults(root, texts):
    docs = root / "docs"
    reached = reached_from(docs / "README.md", texts)
    for page in texts:
        if docs in page.parents and page not in reached:
            yield f"{page.relative_to(root)}: not reached from docs/README.md"
    for picture in sorted((docs / "gallery").glob("*")):
        if picture not in reached:
            yield f"{picture.relative_to(root)}: on no page"
    for folder, entry in LISTS:
        listed = (root / f"include/kestro/hvl/rng/detail/{folder}.def").read_text()
        for name in dict.fromkeys(entry.findall(listed)):
            page = docs / folder / f"{name}.md"
            if page not in texts:
                yield f"docs/{folder}: no page of {name}"
            elif folder == "distributions" and not any(is_picture for _, is_picture, _ in links_of(texts[page])):
                yield f"{page.relative_to(root)}: no picture"


def main():
    root = pathlib.Path(sys.argv[1] if len(sys.argv) > 1 else pathlib.Path(__file__).parents[2]).resolve()
    texts = {page: page.read_text() for page in pages_of(root)}
    faults = [*link_faults(root, texts), *coverage_faults(root, texts)]
    links = sum(len(links_of(text)) for text in texts.values())
    print("\n".join(faults) or f"{len(texts)} pages, {links} links")
    sys.exit(bool(faults) or not texts)


if __name__ == "__main__":
    main()
