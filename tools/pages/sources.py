"""The Markdown pages of the repository: which there are, their headings, links and pieces of code."""
import pathlib
import re
import sys

sys.dont_write_bytecode = True
sys.path.insert(0, str(pathlib.Path(__file__).resolve().parent.parent))
from check_text import files_of  # noqa: E402

FENCE = re.compile(r"^```([\w+-]*)\n(.*?)^```$", re.MULTILINE | re.DOTALL)
CODE = re.compile(FENCE.pattern + r"|^    [^\n]*$|`[^`\n]+`", FENCE.flags)
LINK = re.compile(r"(!?)\[([^\]]*)\]\(([^)\s]+)\)")
HEADING = re.compile(r"^#{1,6} (.+?) *$", re.MULTILINE)


def pages_of(root):
    """All Markdown files below the folder, in order."""
    return sorted(path for path in files_of(root) if path.suffix == ".md" and path.is_file())


def slug(text, separator="-"):
    """A heading's anchor, as hosts of repositories form it."""
    return re.sub(r"[^\w\- ]", "", text.lower()).replace(" ", separator)


def without_code(text):
    """The same number of characters and lines, with code made blank."""
    return CODE.sub(lambda found: re.sub(r"[^\n]", " ", found.group()), text)


def anchors_of(text):
    seen, anchors = {}, set()
    fenceless = FENCE.sub("", text)
    for heading in HEADING.findall(fenceless):
        name = slug(heading)
        anchors.add(name if name not in seen else f"{name}-{seen[name]}")
        seen[name] = seen.get(name, 0) + 1
    return anchors


def links_of(text):
    """Line, whether it is a picture, target of every link."""
    prose = without_code(text)
    return [(prose.count("\n", 0, link.start()) + 1, bool(link[1]), link[3]) for link in LINK.finditer(prose)]


def fences_of(text):
    """Line of the first line, language, text of every fenced piece of code."""
    return [(text.count("\n", 0, fence.start(2)) + 1, fence[1], fence[2]) for fence in FENCE.finditer(text)]
