"""Holds the page of a map against the library, and uses it as people do, in a headless Chromium.

VOSTREL_SCREENSHOTS=FOLDER keeps the pictures, to be looked at.
"""

import json
import os
import pathlib
import subprocess
import tempfile
import unittest

from browser import CHROMIUM, Browser

SAMPLE_PAGES = os.environ["VOSTREL_SAMPLE_PAGES"]


@unittest.skipUnless(CHROMIUM, "Chromium is not installed: scripts/setup installs it")
class SpacePageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        folder = tempfile.TemporaryDirectory(prefix="vostrel-test-")
        cls.addClassCleanup(folder.cleanup)
        cls.folder = pathlib.Path(folder.name).resolve()
        subprocess.run([SAMPLE_PAGES, cls.folder], check=True)
        cls.browser = cls.enterClassContext(Browser())

    def open(self, name, window=(1280, 900)):
        self.browser.window(*window)
        self.browser.open(self.folder / f"{name}.html")

    def tearDown(self):
        self.assertEqual(self.browser.complaints(), [])

    def shown(self):
        return self.browser.value("byId('trail').textContent")

    def details(self):
        return self.browser.value("byId('details').innerText")

    def test_the_script_lays_out_and_writes_as_the_library_does(self):
        for name in ("home", "random1", "random2", "random3"):
            self.open(name)
            expected = json.loads((self.folder / f"{name}.json").read_text())
            focuses = [focus for focus, _ in expected["drawings"]]
            drawings = self.browser.value(
                f"{focuses}.map((focus) => layout(focus).map((arc) => [arc.nodes[0], arc.nodes.length, arc.bytes,"
                " arc.ring, arc.start, arc.end, arc.hue, arc.shade, arc.pattern]))")
            for (focus, arcs), drawn in zip(expected["drawings"], drawings, strict=True):
                self.assertEqual(len(arcs), len(drawn), (name, focus))
                for ours, theirs in zip(arcs, drawn):
                    for one, other in zip(ours, theirs, strict=True):
                        same = abs(one - other) < 1e-9 if isinstance(one, float) else one == other
                        self.assertTrue(same, (name, focus, ours, theirs))
            for function, pairs in (("sizeText", "sizes"), ("percentText", "shares"), ("pathOf", "paths")):
                answers = self.browser.value(f"{json.dumps([each for each, _ in expected[pairs]])}.map({function})")
                for (asked, text), answer in zip(expected[pairs], answers, strict=True):
                    self.assertEqual(answer, text, (function, asked))

    def test_click_goes_in_and_the_trail_goes_out(self):
        self.open("home")
        self.assertEqual(self.shown(), "/home/ada")
        self.browser.click("byId('rows').querySelector('button')")
        self.assertEqual(self.shown(), "/home/adaVideos")
        # "Iceland 2024" begins at the top and takes two thirds of the innermost ring.
        centre = self.browser.value("arcs[0].element.getBoundingClientRect().toJSON()")
        self.browser.click_at(centre["right"] + 15, (centre["top"] + centre["bottom"]) / 2)
        self.assertEqual(self.shown(), "/home/adaVideosIceland 2024")
        self.browser.click("byId('trail').querySelector('button')")
        self.assertEqual(self.shown(), "/home/ada")
        self.browser.value("go(1)")
        self.browser.settle()
        self.browser.click("arcs[0].element")
        self.assertEqual(self.shown(), "/home/ada")
        self.browser.value("history.back()")
        self.browser.settle()
        self.assertEqual(self.shown(), "/home/adaVideos")

    def test_keys_go_round_in_and_out(self):
        self.open("home")
        self.browser.value("document.querySelector('#arcs .centre').focus()")
        self.browser.press("ArrowUp")
        self.assertIn("/home/ada/Videos\n\n147 GB", self.details())
        self.browser.press("ArrowUp")
        self.assertIn("/home/ada/Videos/Iceland 2024\n\n102 GB", self.details())
        self.browser.press("Enter")
        self.assertEqual(self.shown(), "/home/adaVideosIceland 2024")
        self.assertIn("glacier.mov", self.details())
        self.browser.press("Escape")
        self.assertEqual(self.shown(), "/home/adaVideos")
        self.browser.press("Escape")
        self.browser.press("ArrowLeft")
        self.assertRegex(self.details(), "(?s)/home/ada/(lost.found\n+Not measured\n.*No permission to read it"
                                         "|backup disk\n+Not measured\n.*On another disk, not measured)")

    def test_names_are_shown_and_never_run(self):
        self.open("home")
        self.assertEqual(self.browser.value("document.title"), "Space map of /home/ada")
        self.assertIn("<script>document.title='bad'</script>", self.browser.value("byId('rows').innerText"))
        self.assertEqual(self.browser.value("document.querySelectorAll('img, #rows script').length"), 0)

    def test_it_fits_wide_and_narrow_windows_in_light_and_dark(self):
        folder = os.environ.get("VOSTREL_SCREENSHOTS")
        for width, height in ((1280, 900), (400, 860)):
            for dark in (False, True):
                self.open("home", (width, height, dark))
                self.assertLessEqual(self.browser.value("document.documentElement.scrollWidth"), width)
                if folder:
                    name = f"map-{width}-{'dark' if dark else 'light'}.png"
                    (pathlib.Path(folder) / name).write_bytes(self.browser.picture())


if __name__ == "__main__":
    unittest.main()
