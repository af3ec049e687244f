#!/usr/bin/env python3
"""The tool's pages in a browser: what users see, at the widths of a screen and of a phone, in light and dark, on paper,
and where a browser has no scripts or draws no 3-D. Leaves screenshots to be looked at.

  pagesTest.py --zelm PROGRAM --out FOLDER
"""
import argparse
import collections
import json
import os
import subprocess
import sys
import unittest

sys.path.insert(0, os.path.dirname(os.path.abspath(__file__)))
from browser import Browser, png_pixels  # noqa: E402

OPTIONS = None
RIG = {
    "plate": {"columns": [-6, 6], "rows": [-5, 5], "markerColumn": 3, "markerRow": 3},
    "left": {"width": 640, "height": 480, "fx": 844, "fy": 843.3, "cx": 321, "cy": 238.5, "k1": -0.1},
    "right": {"width": 640, "height": 480, "fx": 847, "fy": 846.2, "cx": 318.5, "cy": 241, "k1": -0.09},
    "rightFromLeft": {"rotation": [0.4, 10, -0.7], "translation": [-60, 1.2, 6]},
    "optics": {"noiseSigma": 1.5},
    "views": {"count": 6, "seed": 5, "maxTilt": 25},
}
MODES = [(1200, "light"), (1200, "dark"), (400, "light"), (400, "dark")]

# Text that is harder to read than WCAG AA allows: its contrast with the ground that it stands on.
FAINT_TEXT = """(() => {
  const light = colour => colour.slice(0, 3).map(v => v / 255).map(v => v <= 0.03928 ? v / 12.92
    : Math.pow((v + 0.055) / 1.055, 2.4)).reduce((sum, v, i) => sum + v * [0.2126, 0.7152, 0.0722][i], 0);
  const parse = text => (text.match(/[\\d.]+/g) || []).map(Number);
  const ground = element => {
    for (let e = element; e; e = e.parentElement) {
      const colour = parse(getComputedStyle(e).backgroundColor);
      if (colour.length === 3 || colour[3] === 1) { return colour; }
    }
    return [255, 255, 255];
  };
  const faint = [];
  const walker = document.createTreeWalker(document.body, NodeFilter.SHOW_TEXT);
  while (walker.nextNode()) {
    const element = walker.currentNode.parentElement;
    if (!walker.currentNode.data.trim() || element.closest("script, .shot, select") ||
        !element.getClientRects().length) {
      continue;
    }
    const style = getComputedStyle(element);
    const ink = parse(element.closest("svg") ? style.fill : style.color);
    const [a, b] = [light(ink), light(ground(element))].sort((x, y) => y - x);
    const size = parseFloat(style.fontSize);
    const isLarge = size >= 24 || (size >= 18.66 && Number(style.fontWeight) >= 700);
    if ((a + 0.05) / (b + 0.05) < (isLarge ? 3 : 4.5)) {
      faint.push(walker.currentNode.data.trim().slice(0, 40) + " " + ((a + 0.05) / (b + 0.05)).toFixed(2));
    }
  }
  return faint;
})()"""


def zelm(*words):
    done = subprocess.run([OPTIONS.zelm, *map(str, words)], capture_output=True, text=True, check=False)
    if done.returncode:
        raise RuntimeError(" ".join(map(str, words)) + "\n" + done.stderr)
    return done.stdout


def at(name):
    return os.path.join(OPTIONS.out, name)


def setUpModule():
    os.makedirs(OPTIONS.out, exist_ok=True)
    with open(at("rig.json"), "w", encoding="utf-8") as file:
        json.dump(RIG, file)
    views = at("views")
    zelm("simulate", at("rig.json"), "-o", views, "-q")
    zelm("calibrate", "--plate", views + "/plate.json", "--left", views + "/left_*.png", "--right",
         views + "/right_*.png", "-o", at("out"), "-q")
    zelm("match", at("out/rig.zcal"), views + "/left_00.png", views + "/right_00.png", "--grid", 3, "--unit", "mm",
         "-o", at("out/scene.csv"), "--page", at("out/scene.html"), "-q")


class Page(unittest.TestCase):
    """What holds for every page; a page is a class below."""
    page = None

    @classmethod
    def setUpClass(cls):
        cls.browser = Browser()

    @classmethod
    def tearDownClass(cls):
        cls.browser.__exit__()

    def load(self, width=1200, scheme="light"):
        self.browser.open(at(self.page), width, 900, scheme, mobile=width < 800)
        self.assertTrue(self.browser.wait_for("document.querySelector('canvas[data-drawn]') !== null"),
                        self.browser.complaints())

    def save(self, name, png):
        stem = os.path.splitext(os.path.basename(self.page))[0]
        with open(at(stem + "_" + name + ".png"), "wb") as file:
            file.write(png)

    def canvas(self):
        """Rows of the pixels of the 3-D view."""
        self.browser.evaluate("document.querySelector('canvas').scrollIntoView({block: 'center', behavior: 'instant'})")
        self.browser.evaluate("new Promise(done => requestAnimationFrame(() => requestAnimationFrame(done)))")
        box = self.browser.evaluate("(() => { const r = document.querySelector('canvas').getBoundingClientRect();"
                                    "return {x: r.x + scrollX, y: r.y + scrollY, width: r.width, height: r.height};"
                                    "})()")
        return png_pixels(self.browser.screenshot(clip=box))[2]

    def drawn_share(self):
        pixels = collections.Counter(pixel for row in self.canvas() for pixel in row)
        return 1.0 - pixels.most_common(1)[0][1] / sum(pixels.values())

    def key(self, key):
        for kind in ("keyDown", "keyUp"):
            self.browser.call("Input.dispatchKeyEvent", type=kind, key=key, code=key)

    def test_every_width_and_scheme(self):
        for width, scheme in MODES:
            with self.subTest(width=width, scheme=scheme):
                self.load(width, scheme)
                self.assertEqual(self.browser.complaints(), [])
                self.assertEqual(self.browser.requests(), [])
                self.assertLessEqual(self.browser.evaluate("document.documentElement.scrollWidth"), width)
                self.assertEqual(self.browser.evaluate(FAINT_TEXT), [])
                self.save("%d_%s" % (width, scheme), self.browser.screenshot(whole=True))

    def test_scene_is_drawn_and_turns(self):
        self.load()
        # Lines and dots cover some hundredths of the view; an empty one is of one colour.
        self.assertGreater(self.drawn_share(), 0.02)
        before = self.canvas()
        self.browser.evaluate("document.querySelector('canvas').focus()")
        for _ in range(3):
            self.key("ArrowLeft")
        self.assertNotEqual(self.canvas(), before)

    def test_paper(self):
        self.load()
        pdf = self.browser.pdf()
        self.assertTrue(pdf.startswith(b"%PDF-"))
        with open(at(os.path.splitext(os.path.basename(self.page))[0] + ".pdf"), "wb") as file:
            file.write(pdf)
        self.browser.call("Emulation.setEmulatedMedia", media="print")
        self.assertFalse(self.browser.evaluate("document.querySelector('canvas').checkVisibility()"))
        self.assertTrue(self.browser.evaluate("document.querySelector('.scene > svg').checkVisibility()"))

    def test_without_scripts_the_still_picture_stays(self):
        self.browser.open(at(self.page), script=False)
        self.assertTrue(self.browser.evaluate("document.querySelector('.scene > svg').checkVisibility()"))
        self.assertEqual(self.browser.complaints(), [])

    def test_without_3d_the_still_picture_stays(self):
        with Browser(webgl=False) as browser:
            browser.open(at(self.page))
            self.assertTrue(browser.evaluate("document.querySelector('.scene > svg').checkVisibility()"))
            self.assertIsNone(browser.evaluate("document.querySelector('canvas')"))
            self.assertEqual(browser.complaints(), [])

    def test_controls_have_names(self):
        self.load()
        nameless = self.browser.evaluate("""
            [...document.querySelectorAll("button, select, input, canvas, svg[role=img]")]
            .filter(e => !(e.getAttribute("aria-label") || e.textContent.trim() || e.closest("label")))
            .map(e => e.outerHTML.slice(0, 80))""")
        self.assertEqual(nameless, [])
        self.assertEqual(self.browser.evaluate("document.querySelectorAll('h1').length"), 1)


class Report(Page):
    page = "out/report.html"

    def test_the_verdict_comes_first(self):
        self.load()
        self.assertIn(self.browser.evaluate("document.querySelector('.verdict .word').textContent"),
                      ("Good", "Doubtful", "Uncertainty unknown"))
        sentence = self.browser.evaluate("document.querySelector('main').firstElementChild"
                                         ".querySelector('.sentence').textContent")
        self.assertIn(" mm", sentence)
        self.assertIn("±", sentence)

    def test_views_are_shown_one_by_one(self):
        self.load()
        shown = "[...document.querySelectorAll('.view')].filter(v => v.checkVisibility()).map(v => v.dataset.view)"
        self.assertEqual(self.browser.evaluate(shown), ["0"])
        self.browser.evaluate("document.querySelector('.next').click()")
        self.assertEqual(self.browser.evaluate(shown), ["1"])
        self.browser.evaluate("document.querySelector('.next').focus()")
        self.key("ArrowLeft")
        self.key("ArrowLeft")
        self.assertEqual(self.browser.evaluate(shown), ["5"])
        # The images are there: both of the view, of a size of their own.
        self.assertEqual(self.browser.evaluate("document.querySelectorAll('.view.current image').length"), 2)
        self.browser.call("Emulation.setEmulatedMedia", media="print")
        self.assertEqual(len(self.browser.evaluate(shown)), 6)

    def test_a_click_on_a_plate_shows_its_view(self):
        self.load()
        self.browser.evaluate("document.querySelector('canvas').scrollIntoView({block: 'center', behavior: 'instant'})")
        box = self.browser.evaluate("document.querySelector('canvas').getBoundingClientRect().toJSON()")
        shown = set()
        for right in (0.3, 0.4, 0.5, 0.6, 0.7):
            for down in (0.35, 0.45, 0.55, 0.65):
                place = {"x": box["x"] + right * box["width"], "y": box["y"] + down * box["height"]}
                for kind in ("mousePressed", "mouseReleased"):
                    self.browser.call("Input.dispatchMouseEvent", type=kind, button="left", clickCount=1, **place)
                words = self.browser.evaluate("document.querySelector('.viewer-bar output').textContent")
                if words:
                    view = self.browser.evaluate("document.querySelector('.view.current').dataset.view")
                    self.assertTrue(words.startswith("View " + view + ":"), words)
                    shown.add(view)
        self.assertGreater(len(shown), 1)


class Scene(Page):
    page = "out/scene.html"

    def pick(self, right, down):
        box = self.browser.evaluate("document.querySelector('canvas').getBoundingClientRect().toJSON()")
        place = {"x": box["x"] + right * box["width"], "y": box["y"] + down * box["height"]}
        for kind in ("mousePressed", "mouseReleased"):
            self.browser.call("Input.dispatchMouseEvent", type=kind, button="left", clickCount=1, **place)

    def points(self):
        with open(at("out/scene.csv"), encoding="utf-8") as file:
            names = file.readline().strip().split(",")
            rows = [dict(zip(names, line.strip().split(","))) for line in file]
        return [tuple(float(row[axis]) for axis in "XYZ") for row in rows if row["status"] == "ok"]

    def test_two_clicks_measure_a_distance(self):
        self.load()
        words = "document.querySelector('.viewer-bar output').textContent"
        self.browser.evaluate("document.querySelector('canvas').scrollIntoView({block: 'center', behavior: 'instant'})")
        picked = []
        for right in (0.35, 0.4, 0.45, 0.55, 0.6, 0.65):
            self.pick(right, 0.5)
            text = self.browser.evaluate(words)
            if "A to B" in text:
                picked.append(text)
        self.assertTrue(picked, self.browser.evaluate(words))
        for text in picked:
            length = float(text.split("A to B: ")[1].split(" mm")[0])
            ends = [tuple(float(v) for v in part.split("(")[1].split(")")[0].split(", "))
                    for part in (text.split("A: ")[1], text.split("B: ")[-1])]
            # Both ends are points of the CSV, to the six digits that are shown, and their distance is the one told.
            for end in ends:
                nearest = min(max(abs(a - b) for a, b in zip(end, point)) for point in self.points())
                self.assertLess(nearest, 1e-3)
            true = sum((a - b) ** 2 for a, b in zip(*ends)) ** 0.5
            self.assertAlmostEqual(length, true, delta=1e-3 * max(1.0, true))

    def test_colours_follow_the_choice(self):
        self.load()
        before = self.canvas()
        self.browser.evaluate("""(() => { const list = document.querySelector(".colour-by"); list.selectedIndex = 1;
            list.dispatchEvent(new Event("change")); })()""")
        after = self.canvas()
        self.assertNotEqual(after, before)
        coloured = sum(max(p) - min(p) > 40 for row in before for p in row)
        gray = sum(max(p) - min(p) > 40 for row in after for p in row)
        self.assertGreater(coloured, 100)
        self.assertLess(gray, coloured / 10)


if __name__ == "__main__":
    parser = argparse.ArgumentParser()
    parser.add_argument("--zelm", required=True)
    parser.add_argument("--out", required=True)
    OPTIONS, rest = parser.parse_known_args()
    suite = unittest.defaultTestLoader
    names = [name for name in rest if not name.startswith("-")]
    cases = (suite.loadTestsFromNames(names, sys.modules[__name__]) if names else
             unittest.TestSuite(suite.loadTestsFromTestCase(case) for case in (Report, Scene)))
    result = unittest.TextTestRunner(verbosity=2).run(cases)
    sys.exit(0 if result.wasSuccessful() and result.testsRun > 0 and not result.skipped else 1)
