"""Every text that the tool looks up has its Chinese, with the same values in it."""
import pathlib
import re
import sys
import unittest

SOURCES = pathlib.Path(sys.argv.pop() if len(sys.argv) > 1 else "tools/tembrakey")
LITERALS = r'((?:"(?:[^"\\]|\\.)*"\s*)+)'
# Where an English text stands that is translated when it is shown.
CALLS = re.compile(r"\b(?:tr|translate_?|say)\(\s*(?:\w+ \? )?" + LITERALS + r"(?::\s*" + LITERALS + ")?")
ENTRIES = re.compile(r"CommandEntry \w+ = \{\s*" + LITERALS + r",\s*" + LITERALS + r",\s*" + LITERALS + ",")
ARGUMENTS = re.compile(r"\.(?:text|number|flag|choice)\(\s*" + LITERALS
                       + r",\s*\w+,\s*(?:\{[^}]*\},\s*)?" + LITERALS)


def joined(literals):
    return "".join(re.findall(r'"((?:[^"\\]|\\.)*)"', literals))


class Texts(unittest.TestCase):
    def test_every_text_has_its_chinese(self):
        chinese = {}
        for file in SOURCES.glob("text/chinese_*.cpp"):
            for english, translated in re.findall(r"\{\s*" + LITERALS + r",\s*" + LITERALS + r"\}",
                                                  file.read_text("utf-8")):
                chinese[joined(english)] = joined(translated)
        self.assertGreater(len(chinese), 400)
        wanted = set()
        for file in SOURCES.rglob("*.cpp"):
            if file.parent.name == "text":
                continue
            source = file.read_text("utf-8")
            wanted |= {joined(text) for call in CALLS.findall(source) for text in call if text}
            wanted |= {joined(text) for entry in ENTRIES.findall(source) for text in entry[1:]}
            wanted |= {joined(help_text) for _, help_text in ARGUMENTS.findall(source)}
        self.assertGreater(len(wanted), 300)
        missing = sorted(text for text in wanted if text.strip() and text not in chinese)
        self.assertEqual(missing, [])
        for english, translated in chinese.items():
            self.assertEqual(sorted(re.findall(r"\{\d\}", english)),
                             sorted(re.findall(r"\{\d\}", translated)), english)


if __name__ == "__main__":
    unittest.main()
