#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""Opens pages of `pciinfo report` in Chromium.

    page_test.py PCIINFO BENCH_MACHINE SOURCES [SCREENSHOTS]

SCREENSHOTS is a directory for pictures of the pages; without it none are kept."""
import json
import pathlib
import subprocess
import sys
import tempfile
import unittest

from webdriver import Browser

PCIINFO, BENCH_MACHINE, SOURCES = map(pathlib.Path, sys.argv[1:4])
PICTURES = pathlib.Path(sys.argv[4]) if len(sys.argv) > 4 else None
SIZES = [(1280, 900), (400, 800)]

MARKUP = "</script><script>document.title='ran'</script>\"'><img src=x onerror=\"document.title='ran'\">"
HOSTILE_NAMES = [MARKUP, "\u202eedoc\u2066 \u200b", "W" * 10000, "javascript:alert(1)", "${1}</style><b>"]

# What is wrong with where texts of the drawing are, as they are in this browser: a text that is wider
# than its column, or that touches another one.
OVERLAPS = """
const wrong = [];
for (const panel of document.querySelectorAll('.drawing svg')) {
  const frame = panel.getBoundingClientRect();
  const texts = Array.from(panel.querySelectorAll('text'));
  const boxes = texts.map((text) => text.getBoundingClientRect());
  boxes.forEach((one, i) => {
    if (one.left < frame.left || one.right > frame.right) wrong.push('outside: ' + texts[i].textContent);
    for (let j = 0; j < i; ++j) {
      const other = boxes[j];
      const high = Math.min(one.bottom, other.bottom) - Math.max(one.top, other.top);
      const wide = Math.min(one.right, other.right) - Math.max(one.left, other.left);
      // Boxes of lines below each other may touch: they are as high as the font's highest character.
      if (wide > 0.5 && high > 4) wrong.push(texts[i].textContent + ' / ' + texts[j].textContent);
    }
  });
}
return wrong;"""

# The texts of which the contrast to what is behind them is less than WCAG 2 asks for (AA).
PALE = """
const parse = (colour) => colour.match(/[0-9.]+/g).map(Number);
const light = (colour) => {
  const [r, g, b] = parse(colour).map((c) => c / 255).map(
    (c) => c <= 0.04045 ? c / 12.92 : Math.pow((c + 0.055) / 1.055, 2.4));
  return 0.2126 * r + 0.7152 * g + 0.0722 * b;
};
const contrast = (one, other) => {
  const [a, b] = [light(one), light(other)].sort((x, y) => y - x);
  return (a + 0.05) / (b + 0.05);
};
const isSeen = (colour) => colour && colour !== 'none' && parse(colour)[3] !== 0;
// The colour of the last box before a text of the drawing that contains the text.
const behindText = (text) => {
  const box = text.getBoundingClientRect();
  let colour = getComputedStyle(document.body).backgroundColor;
  for (const rect of text.ownerSVGElement.querySelectorAll('rect')) {
    if (!(rect.compareDocumentPosition(text) & Node.DOCUMENT_POSITION_FOLLOWING)) continue;
    const around = rect.getBoundingClientRect();
    const fill = getComputedStyle(rect).fill;
    if (isSeen(fill) && around.left <= box.left && around.top <= box.top + box.height / 2 &&
        around.right >= box.right && around.bottom >= box.top + box.height / 2) colour = fill;
  }
  return colour;
};
const behind = (element) => {
  for (; element; element = element.parentElement) {
    const colour = getComputedStyle(element).backgroundColor;
    if (isSeen(colour)) return colour;
  }
};
const wrong = [];
for (const text of document.querySelectorAll('.drawing text')) {
  const value = contrast(getComputedStyle(text).fill, behindText(text));
  if (value < 4.5) wrong.push([text.textContent, value]);
}
for (const element of document.querySelectorAll('h1, h2, h3, dt, dd, li, th, td, p, footer, summary, label')) {
  const value = contrast(getComputedStyle(element).color, behind(element));
  if (element.textContent && value < 4.5) wrong.push([element.textContent, value]);
}
return wrong;"""


EXAMPLES = [SOURCES / f"examples/{name}.tar.gz" for name in ("server", "server-after-service")]


def write_page(directory, name, *arguments):
    page = directory / f"{name}.html"
    subprocess.run([PCIINFO, "report", page, *arguments], check=True)
    return page


def make_machine(directory, what):
    """Returns the capture of a generated machine: a number of functions, or a recipe."""
    subprocess.run([BENCH_MACHINE, str(what), directory], check=True, stdout=subprocess.DEVNULL)
    return directory


def hostile_recipe(directory):
    recipe = json.loads((SOURCES / "examples/machines/server.json").read_text())
    slots = [part["slot"] for part in recipe["smbios"]["structures"] if "slot" in part]
    for slot, name in zip(slots, HOSTILE_NAMES):
        slot["designation"] = name
    recipe["pci"][-1]["driver"] = "<img src=x onerror=alert(1)>"
    path = directory / "hostile.json"
    path.write_text(json.dumps(recipe))
    return path


class PageTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        temporary = tempfile.TemporaryDirectory()
        cls.addClassCleanup(temporary.cleanup)
        directory = pathlib.Path(temporary.name)
        cls.pages = {
            "server": write_page(directory, "server", EXAMPLES[0]),
            "two": write_page(directory, "two", *EXAMPLES),
            "three": write_page(directory, "three", *EXAMPLES, EXAMPLES[0]),
            "large": write_page(directory, "large", make_machine(directory / "large", 1024)),
            "hostile": write_page(directory, "hostile",
                                  make_machine(directory / "hostile", hostile_recipe(directory))),
        }
        cls.browser = cls.enterClassContext(Browser())

    def open(self, name, **window):
        self.browser.messages()
        self.browser.requests()
        self.browser.show(self.pages[name], **window)

    def text_of(self, selector):
        return self.browser.run("return document.querySelector(arguments[0]).innerText", selector)

    def focused(self):
        return self.browser.run("const title = document.activeElement.querySelector(':scope > title');"
                                "return title ? title.textContent : document.activeElement.id")

    def test_loads_without_messages_and_requests(self):
        for name, page in self.pages.items():
            with self.subTest(name):
                self.open(name)
                self.assertEqual(self.browser.messages(), [])
                self.assertEqual(self.browser.requests(), [page.resolve().as_uri()])

    def test_fits_into_windows(self):
        for name in self.pages:
            for width, height in SIZES:
                for scheme in ("light", "dark"):
                    with self.subTest(name, width=width, scheme=scheme):
                        self.open(name, width=width, height=height, scheme=scheme)
                        wide = self.browser.run("return document.documentElement.scrollWidth")
                        self.assertLessEqual(wide, width)
                        self.assertEqual(self.browser.run(OVERLAPS), [])
                        self.assertEqual(self.browser.run(PALE), [])
                        if PICTURES:
                            self.browser.screenshot(PICTURES / f"{name}-{width}-{scheme}.png")

    def test_selecting_a_card_shows_its_details(self):
        self.open("server")
        self.browser.click("a.item[data-slots='0']")
        details = self.text_of(".details")
        for text in ("PCIe Slot 1", "in use", "X710", "i40e", "SMBIOS record 0x"):
            self.assertIn(text, details)
        self.assertEqual(self.browser.run("return document.querySelectorAll('tr.selected').length"), 4)
        self.browser.press("Escape")
        self.assertNotIn("PCIe Slot 1", self.text_of(".details"))
        self.assertEqual(self.browser.messages(), [])

    def test_search_finds(self):
        self.open("server")
        self.browser.type("#search", "mellanox 05:00.1")
        shown = "return Array.from(document.querySelectorAll('tbody tr:not([hidden])')).map((row) => row.id)"
        self.assertEqual(len(self.browser.run(shown)), 1)
        self.assertEqual(self.text_of("#found"), "1 of 25 rows")
        bright = "return document.querySelectorAll('a.item:not(.dim)').length"
        self.assertEqual(self.browser.run(bright), 1)
        self.browser.type("#search", " nothing like it")
        self.assertEqual(self.browser.run(shown), [])
        self.assertEqual(self.text_of("#found"), "0 of 25 rows")

    def test_search_opens_a_long_table(self):
        self.open("large")
        self.assertFalse(self.browser.run("return document.querySelector('details').open"))
        self.browser.type("#search", "nvme")
        self.assertTrue(self.browser.run("return document.querySelector('details').open"))

    def test_keyboard_walks(self):
        self.open("server")
        self.browser.press("/")
        self.assertEqual(self.focused(), "search")
        self.browser.press("Tab")
        self.assertIn("PCIe Slot 1", self.focused())
        self.browser.press("Down")
        self.assertIn("PCIe Slot 2", self.focused())
        self.browser.press("Enter")
        self.assertIn("PCIe Slot 2", self.text_of(".details"))
        self.browser.press("End")
        self.assertIn("chipset functions", self.focused())
        self.browser.press(" ")
        self.assertIn("Sky Lake-E DMI3 Registers", self.text_of(".details"))
        self.browser.press("Home")
        self.assertIn("PCIe Slot 1", self.focused())
        self.assertEqual(self.browser.run("return document.querySelectorAll(\"a.item[tabindex='0']\").length"), 1)

    def test_tells_screen_readers_what_things_are(self):
        self.open("server")
        tree = self.browser.devtools("Accessibility.getFullAXTree")["nodes"]
        named = {(node.get("role", {}).get("value"), node.get("name", {}).get("value")) for node in tree}
        for wanted in (("heading", "server.example.org"), ("region", "Slots"), ("searchbox", "Find"),
                       ("group", "Bus 00"), ("complementary", "Details"), ("main", ""),
                       ("rowheader", "PCIe Slot 4"), ("columnheader", "Because"),
                       ("link", "PCIe Slot 4; empty, x8; link up to x8; port 00:03.1")):
            self.assertIn(wanted, named)
        self.assertIn("narrow link x8 of x16", " ".join(name or "" for _, name in named))

    def test_details_of_two_machines_are_apart(self):
        self.open("two")
        self.browser.click("a.item[href='#m1-s2']")
        texts = self.browser.run("return Array.from(document.querySelectorAll('.details')).map((e) => e.innerText)")
        self.assertNotIn("PCIe Slot 3", texts[0])
        self.assertIn("PCIe Slot 3", texts[1])
        self.assertIn("empty", texts[1])

    def test_search_opens_machines(self):
        self.open("three")
        opened = "return Array.from(document.querySelectorAll('details.machine')).map((e) => e.open)"
        self.assertEqual(self.browser.run(opened), [False, False, False])
        self.browser.type("#search", "05:00.0 mellanox connectx-4")
        self.assertEqual(self.browser.run(opened), [True, False, True])

    def test_hostile_names_do_no_harm(self):
        self.open("hostile")
        for selector in ("a.item[data-slots]", "a.item[data-functions]"):
            self.browser.run("for (const item of document.querySelectorAll(arguments[0])) "
                             "item.dispatchEvent(new MouseEvent('click', {bubbles: true, cancelable: true}))",
                             selector)
        self.browser.type("#search", "script")
        self.assertEqual(self.browser.messages(), [])
        self.assertNotEqual(self.browser.run("return document.title"), "ran")
        self.assertEqual(self.browser.run("return document.querySelectorAll('img, b, script').length"), 1)
        self.assertIn(MARKUP, self.browser.run("return document.querySelector('#s0 th').textContent"))

    def test_policy_refuses_other_scripts(self):
        self.open("server")
        self.browser.run("const script = document.createElement('script'); script.textContent = "
                         "\"document.title = 'ran'\"; document.body.append(script);"
                         "document.body.setAttribute('onclick', \"document.title = 'ran'\");"
                         "document.body.click(); new Image().src = 'https://pciinfo.invalid/x.png'")
        self.assertNotEqual(self.browser.run("return document.title"), "ran")
        self.assertEqual(len([text for text in self.browser.messages() if "Content Security Policy" in text]), 3)

    def test_large_machine_is_small_and_quick(self):
        self.assertLess(self.pages["large"].stat().st_size, 1000000)
        self.open("large")
        timing = self.browser.run("const entry = performance.getEntriesByType('navigation')[0];"
                                  "return entry.loadEventEnd - entry.startTime")
        # Half a second on an idle machine; tests run beside each other.
        self.assertLess(timing, 5000)


class PageWithoutScriptsTest(unittest.TestCase):
    def test_shows_drawing_and_tables(self):
        with tempfile.TemporaryDirectory() as name, Browser(hasScripts=False) as browser:
            browser.show(write_page(pathlib.Path(name), "server", EXAMPLES[0]))
            self.assertEqual(browser.run("return document.querySelectorAll('#slots tbody tr').length"), 5)
            self.assertEqual(browser.run("return document.querySelectorAll('#functions tbody tr').length"), 20)
            shown = browser.run("return document.body.innerText")
            self.assertIn("PCIe Slot 4", shown)
            self.assertNotIn("Find", shown.splitlines())  # it needs the script
            self.assertNotIn("Select a slot", shown)
            browser.click("a.item[data-slots='4']")
            self.assertTrue(browser.run("return location.hash === '#s4' && document.querySelector('#s4:target') !== null"))


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
