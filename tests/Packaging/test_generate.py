# SPDX-FileCopyrightText: 2026 The Tonvale Authors
#
# SPDX-License-Identifier: GPL-3.0-or-later

"""What packages tell of versions and licences, made of the changelog and the licence tags."""

import importlib.machinery
import importlib.util
import os
import pathlib
import sys
import tempfile
import unittest
import unittest.mock
import xml.etree.ElementTree as ElementTree

PROJECT = pathlib.Path(__file__).parents[2]


def load_generate():
    loader = importlib.machinery.SourceFileLoader("generate", str(PROJECT / "packaging/generate"))
    module = importlib.util.module_from_spec(importlib.util.spec_from_loader("generate", loader))
    sys.modules["generate"] = module  # dataclasses look their module up
    loader.exec_module(module)
    return module


generate = load_generate()

CHANGELOG = """# Changelog

What changed.

## Unreleased

### Added

- A `--new` option & more <than>
  one line.

### Fixed

- A bug.

## [1.0.0] - 2026-01-02

First of all.

### Added

- Everything.
"""


class WithFolder(unittest.TestCase):
    def setUp(self) -> None:
        folder = tempfile.TemporaryDirectory()
        self.addCleanup(folder.cleanup)
        self.folder = pathlib.Path(folder.name)
        environment = unittest.mock.patch.dict(os.environ, {"SOURCE_DATE_EPOCH": "1772668800"})
        environment.start()
        self.addCleanup(environment.stop)

    def write(self, name: str, text: str) -> str:
        path = self.folder / name
        path.parent.mkdir(parents=True, exist_ok=True)
        path.write_text(text, encoding="utf-8")
        return str(path)


class Metainfo(WithFolder):
    def releases(self, changelog: str, version: str) -> list[ElementTree.Element]:
        template = self.write("template.xml", "<component>\n@RELEASES@\n</component>\n")
        text = generate.metainfo(template, self.write("CHANGELOG.md", changelog), version)
        return ElementTree.fromstring(text).findall("releases/release")

    def test_lists_releases_newest_first_with_what_is_to_come(self) -> None:
        new, old = self.releases(CHANGELOG, "1.1.0")
        self.assertEqual(new.attrib, {"version": "1.1.0", "date": "2026-03-05",
                                      "type": "development"})
        self.assertEqual(old.attrib, {"version": "1.0.0", "date": "2026-01-02", "type": "stable"})

    def test_keeps_headings_lines_that_go_on_and_code(self) -> None:
        description = self.releases(CHANGELOG, "1.1.0")[0].find("description")
        texts = ["".join(element.itertext()).strip() for element in description]
        self.assertEqual(texts, ["Added", "A --new option & more <than> one line.", "Fixed",
                                 "A bug."])
        self.assertEqual([code.text for code in description.iter("code")], ["--new"])

    def test_leaves_out_what_is_to_come_after_the_version_itself(self) -> None:
        self.assertEqual([release.get("version") for release in self.releases(CHANGELOG, "1.0.0")],
                         ["1.0.0"])

    def test_leaves_out_an_empty_heading(self) -> None:
        empty = CHANGELOG.replace(CHANGELOG[CHANGELOG.index("### Added"):
                                            CHANGELOG.index("## [1.0.0]")], "")
        self.assertEqual(len(self.releases(empty, "1.1.0")), 1)

    def test_refuses_changes_without_a_heading(self) -> None:
        with self.assertRaises(SystemExit):
            self.releases(CHANGELOG.replace("First of all.\n\n### Added\n\n", ""), "1.1.0")

    def test_refuses_a_release_without_a_date(self) -> None:
        with self.assertRaises(SystemExit):
            self.releases("## 1.0.0\n\n### Added\n\n- All.\n", "1.0.0")


class DebianChangelog(WithFolder):
    def test_is_what_debian_reads(self) -> None:
        text = generate.debian_changelog("tonvale", "Name <name@host.example>",
                                         self.write("CHANGELOG.md", CHANGELOG), "1.1.0")
        self.assertEqual(text, """tonvale (1.1.0) unstable; urgency=medium

  * Added: A `--new` option & more <than> one line.
  * Fixed: A bug.

 -- Name <name@host.example>  Thu, 05 Mar 2026 00:00:00 +0000

tonvale (1.0.0) unstable; urgency=medium

  * Added: Everything.

 -- Name <name@host.example>  Fri, 02 Jan 2026 00:00:00 +0000
""")

    def test_wraps_long_lines(self) -> None:
        changelog = self.write("CHANGELOG.md", "## 1.0.0 - 2026-01-02\n### Added\n- "
                               + "word " * 40 + "\n")
        text = generate.debian_changelog("tonvale", "N <n@h>", changelog, "1.0.0")
        self.assertLessEqual(max(map(len, text.splitlines())), 80)
        self.assertEqual(text.count("word"), 40)


class DebianCopyright(WithFolder):
    def copyright(self) -> list[dict[str, str]]:
        return generate.stanzas(generate.debian_copyright(str(self.folder)))

    def setUp(self) -> None:
        super().setUp()
        self.write(".reuse/dep5", "Format: x\nSource: y\n\n"
                   "Files: native/*.png\n packaging/*.png\nCopyright: 2025 A Painter\n"
                   "License: CC-BY-SA-4.0\n")
        self.write("LICENSES/CC-BY-SA-4.0.txt", "Share alike.\n\nReally.\n")
        # The tags are put together here, so that nobody takes them for this file's own.
        self.tags = "# SPDX-" "FileCopyrightText: {}\n# SPDX-" "License-Identifier: {}\n"
        self.write("native/code.cpp", self.tags.format("2026 The Tonvale Authors",
                                                       "GPL-3.0-or-later"))

    def test_names_files_under_other_terms_than_the_whole(self) -> None:
        self.write("native/icon.png", "picture")
        self.write("packaging/build", self.tags.format("2026 The Tonvale Authors", "CC0-1.0"))
        whole, icon, build = [stanza for stanza in self.copyright() if "Files" in stanza]
        self.assertEqual(whole, {"Files": "*", "Copyright": "2026 The Tonvale Authors",
                                 "License": "GPL-3.0-or-later"})
        self.assertEqual(icon, {"Files": "native/icon.png", "Copyright": "2025 A Painter",
                                "License": "CC-BY-SA-4.0"})
        self.assertEqual((build["Files"], build["License"]), ("packaging/build", "CC0-1.0"))

    def test_tells_each_licence_once_in_full_where_debian_has_it_not(self) -> None:
        self.write("native/icon.png", "picture")
        licences = [stanza["License"] for stanza in self.copyright() if "Files" not in stanza
                    and "License" in stanza]
        self.assertEqual(len(licences), 2)
        self.assertIn("/usr/share/common-licenses/GPL-3", licences[0])
        self.assertEqual(licences[1], "CC-BY-SA-4.0 Share alike. . Really.")


if __name__ == "__main__":
    unittest.main()
