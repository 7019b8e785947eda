#!/usr/bin/env python3
"""Puts what the program page_facts prints into the pages, between the lines <!-- facts: NAME --> and <!-- /facts -->.

facts.py PROGRAM [--costs]     writes the facts, or the measured times
facts.py --check PROGRAM       tells which pages are not up to date
"""
import pathlib
import re
import subprocess
import sys

from sources import pages_of

BLOCK = re.compile(r"^<!-- facts: ([\w ]+) -->\n(.*?)^<!-- /facts -->$", re.MULTILINE | re.DOTALL)


def facts_in(text):
    """What belongs between the marks of each name."""
    parts = re.split(r"^@(.+)\n", text, flags=re.MULTILINE)
    return dict(zip(parts[1::2], parts[2::2]))


def filled(text, facts):
    def fill(block):
        return f"<!-- facts: {block[1]} -->\n{facts.get(block[1], block[2])}<!-- /facts -->"
    return BLOCK.sub(fill, text)


def main():
    arguments = sys.argv[1:]
    check = arguments[:1] == ["--check"]
    if len(arguments) != 1 + check and arguments[1:] != ["--costs"]:
        sys.exit(__doc__)
    root = pathlib.Path(__file__).resolve().parents[2]
    program = arguments[check:]
    facts = facts_in(subprocess.run(program, check=True, capture_output=True, text=True).stdout)
    texts = {page: page.read_text() for page in pages_of(root)}
    held = {name for text in texts.values() for name, _ in BLOCK.findall(text)}
    faults = [f"no page has the facts: {name}" for name in sorted(facts.keys() - held)]
    for page, text in texts.items():
        new = filled(text, facts)
        if new != text and check:
            faults.append(f"{page.relative_to(root)}: not up to date; ./dev pages writes its facts anew")
        elif new != text:
            page.write_text(new)
    if faults or not facts:
        sys.exit("\n".join(faults) or "no facts")
    print(f"{len(facts)} tables in {len(texts)} pages")


if __name__ == "__main__":
    main()
