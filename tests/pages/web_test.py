"""The web pages: every link and anchor leads to something, code and tables are made, declarations are found."""
import pathlib
import re
import subprocess
import sys
import tempfile
import unittest
from html.parser import HTMLParser

ROOT = pathlib.Path(__file__).resolve().parents[2]


class Page(HTMLParser):
    def __init__(self, text):
        super().__init__()
        self.ids, self.links, self.tags = set(), [], []
        self.feed(text)

    def handle_starttag(self, tag, attributes):
        names = dict(attributes)
        self.tags.append(tag)
        self.ids.add(names.get("id"))
        self.links += [names[key] for key in ("href", "src") if key in names]


class Web(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        cls.folder = tempfile.TemporaryDirectory()
        cls.out = pathlib.Path(cls.folder.name).resolve()
        subprocess.run([sys.executable, "-B", ROOT / "tools/pages/web.py", cls.out], check=True, capture_output=True)
        cls.pages = {path: Page(path.read_text()) for path in cls.out.rglob("*.html")}

    @classmethod
    def tearDownClass(cls):
        cls.folder.cleanup()

    def test_links_lead_somewhere(self):
        links = [(page, link) for page, parsed in self.pages.items() for link in parsed.links]
        self.assertGreater(len(links), 500)
        for page, link in links:
            if re.match(r"\w+:", link):
                continue
            name, _, anchor = link.partition("#")
            target = (page.parent / name).resolve() if name else page
            where = f"{page.relative_to(self.out)}: {link}"
            self.assertTrue(target.exists(), where)
            self.assertNotEqual(target.suffix, ".md", where)
            if anchor:
                self.assertIn(anchor, self.pages[target].ids, where)

    def test_declarations(self):
        for folder in ("engines", "distributions"):
            for page in (self.out / "docs" / folder).glob("*.html"):
                if page.stem != "README":
                    text = page.read_text()
                    self.assertRegex(text, rf'id="declaration"(.|\n)*class .*{page.stem}\b', page.name)
                    self.assertIn("<table>", text)


if __name__ == "__main__":
    unittest.main()
