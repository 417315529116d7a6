#!/usr/bin/python3
"""page_browser_test.py FOLDER [--screenshots FOLDER]

Uses the manual's page in a browser without a screen, as wide as a phone and as a desk.
"""

import argparse
import json
import pathlib
import sys
import tempfile

from selenium import webdriver
from selenium.common.exceptions import JavascriptException, TimeoutException, WebDriverException
from selenium.webdriver.chrome.service import Service
from selenium.webdriver.common.action_chains import ActionChains
from selenium.webdriver.common.by import By
from selenium.webdriver.common.keys import Keys
from selenium.webdriver.support.wait import WebDriverWait

PHONE, DESK = (390, 844), (1280, 900)
SHOWN = "return [...document.querySelectorAll('article')].filter(a => a.checkVisibility()).length"


def expect(condition, message):
    if not condition:
        raise AssertionError(message)


class Page:
    """The page in a window of its own."""

    def __init__(self, folder, profile):
        options = webdriver.ChromeOptions()
        options.binary_location = "/usr/bin/chromium"
        for flag in ("headless=new", "no-sandbox", "disable-gpu", "disable-quic", "no-first-run",
                     "disable-background-networking", "disable-component-update", "disable-sync",
                     "disable-dev-shm-usage", f"user-data-dir={profile}"):
            options.add_argument("--" + flag)
        options.set_capability("goog:loggingPrefs", {"browser": "ALL", "performance": "ALL"})
        self.driver = webdriver.Chrome(service=Service("/usr/bin/chromedriver"), options=options)
        self.folder = folder
        self.scripts = []

    def resize(self, size):
        self.cdp("Emulation.setDeviceMetricsOverride", width=size[0], height=size[1],
                 deviceScaleFactor=1, mobile=size == PHONE)

    def cdp(self, command, **arguments):
        return self.driver.execute_cdp_cmd(command, arguments)

    def run(self, script, *arguments):
        return self.driver.execute_script(script, *arguments)

    def load(self, fragment="", before=None, theme="light"):
        """A new visit, with a script that runs before the page's own."""
        for script in self.scripts:
            self.cdp("Page.removeScriptToEvaluateOnNewDocument", identifier=script)
        self.scripts = []
        self.cdp("Emulation.setEmulatedMedia",
                 features=[{"name": "prefers-color-scheme", "value": theme},
                           {"name": "prefers-reduced-motion", "value": "reduce"}])
        self.driver.get("about:blank")
        if before:
            added = self.cdp("Page.addScriptToEvaluateOnNewDocument", source=before)
            self.scripts.append(added["identifier"])
        self.driver.get((self.folder / "index.html").as_uri() + fragment)

    def all(self, selector):
        return self.driver.find_elements(By.CSS_SELECTOR, selector)

    def one(self, selector):
        return self.driver.find_element(By.CSS_SELECTOR, selector)

    def press(self, *keys):
        ActionChains(self.driver).send_keys(*keys).perform()

    def until(self, condition, message):
        try:
            WebDriverWait(self.driver, 5, 0.05).until(lambda _: condition())
        except TimeoutException:
            raise AssertionError(message) from None

    def to_middle(self, element):
        self.run("arguments[0].scrollIntoView({block: 'center'})", element)

    def shown(self):
        return self.run(SHOWN)

    def active(self, attribute="id"):
        return self.run("return document.activeElement.getAttribute(arguments[0])", attribute)


def check_structure(page):
    page.load()
    members = len(page.all("article"))
    expect(members > 0 and page.shown() == members, "not every member is shown")
    expect(len(page.all("h1")) == 1, "not one h1")
    for selector in ("main section > h2", "nav li"):
        expect(len(page.all(selector)) == len(page.all("main section")), f"{selector} per group")
    for selector in ("article > h3", ".sheet li"):
        expect(len(page.all(selector)) == members, f"{selector} per member")
    for landmark in ("header", "nav", "main", "footer", "form[role=search]"):
        expect(len(page.all(landmark)) == 1, f"not one {landmark}")
    broken = page.run("""
        const ids = [...document.querySelectorAll('[id]')].map(e => e.id);
        const links = [...document.querySelectorAll('a[href^="#"]')].map(a => a.hash.slice(1));
        return [...ids.filter((id, i) => ids.indexOf(id) !== i),
                ...links.filter(link => !ids.includes(decodeURIComponent(link)))]""")
    expect(not broken, f"ids twice, or links to none: {broken}")


def check_pictures(page):
    page.load()
    broken = page.driver.execute_async_script("""
        const done = arguments[0];
        const pictures = [...document.images];
        const fits = p => p.complete && p.naturalWidth === Number(p.getAttribute('width')) &&
            p.naturalHeight === Number(p.getAttribute('height')) && p.naturalWidth > 0 &&
            p.hasAttribute('alt');
        for (const picture of pictures) picture.loading = 'eager';
        Promise.allSettled(pictures.map(p => p.decode())).then(() =>
            done(pictures.length === 0 ? ['none'] : pictures.filter(p => !fits(p)).map(p => p.src)))""")
    expect(not broken, f"pictures missing, or of another size: {broken}")


def check_requests(page):
    page.driver.get_log("performance")
    page.load()
    page.run("for (const p of document.images) p.loading = 'eager'")
    page.until(lambda: page.run("return [...document.images].every(p => p.complete)"), "slow pictures")
    events = [json.loads(entry["message"])["message"] for entry in page.driver.get_log("performance")]
    addresses = [event["params"]["request"]["url"] for event in events
                 if event["method"] == "Network.requestWillBeSent"]
    expect(len(addresses) > 1, "no requests seen")
    outside = [a for a in addresses if not a.startswith(("file:", "data:", "about:"))]
    expect(not outside, f"fetched from elsewhere: {outside}")


def check_console(page):
    """Of a visit that touches everything."""
    page.driver.get_log("browser")
    page.load()
    for element in page.all("details, .copy, .compare input")[:8] + page.all("#page_theme"):
        page.to_middle(element)
        element.click()
    page.one("#page_search").send_keys("zz", Keys.ESCAPE)
    messages = [entry["message"] for entry in page.driver.get_log("browser")]
    expect(not messages, f"messages on the console: {messages}")


def plain(text):
    text = text.lower().replace("qrz", "")
    return text.replace("colour", "color").replace("grey", "gray")


def check_search(page):
    page.load()
    members = page.shown()
    page.press("/")
    expect(page.active() == "page_search", "/ does not focus the search")
    texts = page.run("""return [...document.querySelectorAll('article')].map(a => [a.closest('section')
        .querySelector('h2'), ...a.querySelectorAll('h3, .summary, .note, dt, dd')].map(e =>
            e.textContent).join('\\n'))""")
    last = page.all("article h3")[-1].text
    # Words in any order and case, parts of words, names with and without their ending.
    for query in ("invert", "GRAY invert", "InvertGrayQRZ", "invertgray", "sepia.run", "qrz", last):
        page.press(Keys.ESCAPE, query)
        words = plain(query).split()
        wanted = [all(word in plain(text) for word in words) for text in texts]
        found = page.run("return [...document.querySelectorAll('article')].map(a => a.checkVisibility())")
        expect(found == wanted and any(wanted), f"{query} shows {sum(found)}, not {sum(wanted)}")
        expect(all(wanted) == (not words), f"{query} shows all")
        expect(page.one("#page_count").text.startswith(f"{sum(wanted)} "), f"{query}: wrong count")
        empty = page.run("""
            const shown = (e, s) => [...e.querySelectorAll(s)].filter(x => x.checkVisibility()).length;
            return [...document.querySelectorAll('section')].filter(s => {
              const link = document.querySelector(`nav a[href="#${s.id}"]`);
              const members = shown(s, 'article');
              return s.checkVisibility() !== members > 0 || link.checkVisibility() !== members > 0 ||
                  shown(s, '.sheet li') !== members ||
                  (members > 0 && Number(link.querySelector('span').textContent) !== members);
            }).map(s => s.id)""")
        expect(not empty, f"{query}: {empty} shown though empty, or counted wrongly")
    page.press(Keys.ESCAPE, "zzz invert")
    expect(page.shown() == 0, "every word has to match")
    expect("zzz invert" in page.one("#page_nothing").text, "does not say that nothing matches")
    page.press(Keys.ESCAPE)
    expect(page.shown() == members, "Escape does not clear the search")
    expect(not page.one("#page_nothing").is_displayed(), "says that nothing matches")
    page.run("scrollTo(0, document.body.scrollHeight)")
    page.press("invert")
    top = page.run("return document.querySelector('main').getBoundingClientRect().top")
    expect(0 < top < 300, f"the results stay out of sight, at {top}")
    page.press(Keys.ESCAPE, "zzz")
    page.one("#page_clear").click()
    expect(page.shown() == members and page.active() == "page_search", "cannot show all again")


def check_address(page):
    page.load("#search=gray%20invert")
    found = page.shown()
    expect(page.one("#page_search").get_attribute("value") == "gray invert", "search not taken")
    expect(0 < found < len(page.all("article")), "address does not search")
    page.one("#page_search").send_keys(Keys.ESCAPE, "a b")
    expect(page.run("return location.hash") == "#search=a%20b", "search not in the address")
    hidden = page.run("""const input = document.getElementById('page_search');
        input.value = 'zzz'; input.dispatchEvent(new Event('input'));
        const last = [...document.querySelectorAll('article')].at(-1);
        location.hash = last.id; return last""")
    page.until(hidden.is_displayed, "a link to a hidden member does not show it")


def clip(frame, side):
    return frame.find_element(By.CSS_SELECTOR, side).value_of_css_property("clip-path")


def check_divider(page):
    page.load()
    frame = page.one(".compare")
    slider = frame.find_element(By.TAG_NAME, "input")
    page.to_middle(frame)
    width = frame.size["width"]

    def left():
        return page.run("return arguments[0].querySelector('.divider').offsetLeft", frame)

    expect(abs(left() - width / 2) < 3, "does not stand in the middle")
    start = [clip(frame, ".before"), clip(frame, ".after")]
    ActionChains(page.driver).move_to_element(frame).click_and_hold().move_by_offset(
        width // 4, 0).release().perform()
    expect(abs(left() - width * 3 / 4) < 6, f"dragged to {left()} of {width}")
    dragged = [clip(frame, ".before"), clip(frame, ".after")]
    expect(all(a != b for a, b in zip(start, dragged)), "the pictures are not clipped anew")
    slider.send_keys(Keys.ARROW_LEFT, Keys.ARROW_LEFT)
    expect(left() < width * 3 / 4 - 2, "arrow keys do not move it")
    for key, place in ((Keys.HOME, 0), (Keys.END, width)):
        slider.send_keys(key)
        expect(abs(left() - place) <= 1, "does not reach the edge")
    expect(slider.get_attribute("aria-valuetext") == "100 % before", "does not say where it is")
    expect(slider.get_attribute("aria-label"), "has no name")


def touch(page, start, end):
    page.cdp("Input.dispatchTouchEvent", type="touchStart", touchPoints=[start])
    for step in range(1, 11):
        point = {key: start[key] + (end[key] - start[key]) * step / 10 for key in start}
        page.cdp("Input.dispatchTouchEvent", type="touchMove", touchPoints=[point])
    page.cdp("Input.dispatchTouchEvent", type="touchEnd", touchPoints=[])


def check_touch(page):
    page.cdp("Emulation.setTouchEmulationEnabled", enabled=True)
    page.load()
    frame = page.one(".compare")
    page.to_middle(frame)
    box = page.run("return arguments[0].getBoundingClientRect().toJSON()", frame)
    middle = {"x": box["x"] + box["width"] / 2, "y": box["y"] + box["height"] / 2}
    touch(page, middle, {**middle, "x": box["x"] + box["width"] * 0.9})
    moved = float(page.run("return arguments[0].querySelector('input').value", frame))
    expect(abs(moved - 90) < 4, f"a finger moves the divider to {moved}")
    before = page.run("return scrollY")
    touch(page, middle, {**middle, "y": middle["y"] - 200})
    page.until(lambda: page.run("return scrollY") > before + 100, "a finger cannot scroll over it")
    page.cdp("Emulation.setTouchEmulationEnabled", enabled=False)


def pasted(page):
    page.run("""const area = document.createElement('textarea');
        area.id = 'pasted'; document.body.append(area); area.focus()""")
    ActionChains(page.driver).key_down(Keys.CONTROL).send_keys("v").key_up(Keys.CONTROL).perform()
    return page.run("const a = document.getElementById('pasted'); a.remove(); return a.value")


def check_copy(page):
    """By the clipboard's interface and without it, by mouse and by keyboard."""
    without = "Object.defineProperty(Navigator.prototype, 'clipboard', {get() { return undefined }})"
    for script in (None, without):
        page.load(before=script)
        lines = page.run("""const all = [...document.querySelectorAll('.line')];
            return [all[0], all[1], all.find(l => l.querySelector('code').textContent.includes('\\n'))
                ].filter(Boolean).map(l => [l.querySelector('button'),
                                            l.querySelector('code').textContent])""")
        for index, (button, text) in enumerate(lines):
            page.to_middle(button)
            if index == 0:
                button.click()
            else:
                page.run("arguments[0].focus()", button)
                page.press(Keys.ENTER)
            page.until(lambda b=button: b.text == "Copied", "the button does not say that it copied")
            expect(page.one("#page_said").get_attribute("textContent") == "Copied", "says nothing")
            expect(page.run("return document.activeElement === arguments[0]", button), "focus lost")
            found = pasted(page)
            expect(found == text, f"copied {found!r} instead of {text!r}")
        page.until(lambda: button.text == "Copy", "the button does not come back")


def brightness(page):
    color = page.one("body").value_of_css_property("background-color")
    return sum(float(part) for part in color.strip("rgba()").split(",")[:3]) / 3


def check_theme(page):
    page.load(theme="dark")
    page.run("localStorage.clear()")
    page.load(theme="dark")
    expect(brightness(page) < 60, "does not follow a dark system")
    page.load(theme="light")
    expect(brightness(page) > 190, "does not follow a light system")
    page.one("#page_theme").click()
    expect(brightness(page) < 60 and "Light" in page.one("#page_theme").text, "does not switch")
    page.load(theme="light")
    expect(brightness(page) < 60, "does not remember")
    page.one("#page_theme").click()
    expect(brightness(page) > 190, "does not switch back")
    page.run("localStorage.clear()")
    page.load(before="""Object.defineProperty(window, 'localStorage',
        {get() { throw new Error('refused') }})""")
    page.one("#page_theme").click()
    expect(brightness(page) < 60, "does not switch without storage")


def check_contrast(page):
    for theme in ("light", "dark"):
        page.load(theme=theme)
        page.run("for (const details of document.querySelectorAll('details')) details.open = true")
        poor = page.run("""
            const rgb = color => color.match(/[\\d.]+/g).map(Number);
            const light = color => rgb(color).slice(0, 3).map(c => c / 255)
                .map(c => c <= 0.04045 ? c / 12.92 : ((c + 0.055) / 1.055) ** 2.4)
                .reduce((sum, c, i) => sum + c * [0.2126, 0.7152, 0.0722][i], 0);
            const ground = e => {
              const color = getComputedStyle(e).backgroundColor;
              return (rgb(color)[3] ?? 1) > 0.5 ? color : ground(e.parentElement);
            };
            const ratio = e => {
              const [a, b] = [light(getComputedStyle(e).color), light(ground(e))];
              return (Math.max(a, b) + 0.05) / (Math.min(a, b) + 0.05);
            };
            return [...document.body.querySelectorAll('*')].filter(e => [...e.childNodes].some(n =>
                n.nodeType === 3 && n.data.trim() !== '') && ratio(e) < 4.5)
              .map(e => `${e.tagName}.${e.className} ${ratio(e).toFixed(2)}`)""")
        expect(not poor, f"poor contrast, {theme}: {sorted(set(poor))}")


def check_layout(page):
    page.load()
    page.run("for (const details of document.querySelectorAll('details')) details.open = true")
    room, needed = page.run("const r = document.documentElement; return [r.clientWidth, r.scrollWidth]")
    wide = page.run("""const room = document.documentElement.clientWidth;
        return [...document.querySelectorAll('body *:not(.compare *)')].filter(e =>
            e.checkVisibility() && e.getBoundingClientRect().right > room + 0.5).map(e => e.outerHTML
                .slice(0, 60))""")
    expect(needed <= room and not wide, f"wider than the window: {needed} > {room}: {wide[:5]}")
    small = page.run("""return [...document.querySelectorAll('button, summary, nav a, input')].filter(
        e => e.checkVisibility() && Math.min(e.offsetHeight, e.offsetWidth) < 44).map(e =>
            e.outerHTML.slice(0, 60))""")
    expect(not small, f"too small to touch: {small[:5]}")


def check_keyboard(page):
    page.load()
    page.press(Keys.TAB)
    expect(page.active("class") == "skip", "the first stop is not the link to the members")
    page.press(Keys.TAB)
    expect(page.active() == "page_search", "the second stop is not the search")
    places = []
    for _ in range(40):
        page.press(Keys.TAB)
        places.append(page.run("""const e = document.activeElement;
            const ring = getComputedStyle(e).outlineStyle !== 'none';
            return [[...document.querySelectorAll('*')].indexOf(e), ring]"""))
    expect(all(a[0] < b[0] for a, b in zip(places, places[1:])), "the order of the stops, or a trap")
    expect(all(ring for _, ring in places), "the focus is not visible")
    page.load()
    page.press(Keys.TAB, Keys.ENTER)
    expect(page.active() == "page_members", "the link to the members leads nowhere")


def check_print(page):
    page.load(theme="dark")
    page.cdp("Emulation.setEmulatedMedia", media="print")
    frame = page.one(".compare")
    expect([clip(frame, ".before"), clip(frame, ".after")] == ["none", "none"], "pictures are cut")
    expect(not page.one(".bar").is_displayed(), "prints the search")
    expect(brightness(page) > 250, "prints a dark ground")
    page.run("dispatchEvent(new Event('beforeprint'))")
    expect(not page.all("details:not([open])"), "prints closed parts")
    page.run("dispatchEvent(new Event('afterprint'))")
    expect(not page.all("details[open]"), "parts stay open")
    page.cdp("Emulation.setEmulatedMedia", media="")


def check_without_script(page):
    page.cdp("Emulation.setScriptExecutionDisabled", value=True)
    try:
        page.load()
        members = page.all("article")
        expect(members and all(member.is_displayed() for member in members), "members are hidden")
        for selector in ("#page_search", "#page_theme", ".copy", ".compare input"):
            expect(not page.one(selector).is_displayed(), f"{selector} is shown but does nothing")
        frame = page.one(".compare")
        expect(clip(frame, ".after") == "inset(0px 0px 0px 50%)", "no divider in the middle")
    finally:
        page.cdp("Emulation.setScriptExecutionDisabled", value=False)


CHECKS = {name.removeprefix("check_"): check for name, check in list(globals().items())
          if name.startswith("check_")}

def fault_of(check, page):
    try:
        check(page)
    except (AssertionError, JavascriptException, WebDriverException) as fault:
        return str(fault).splitlines()[0] or type(fault).__name__
    return None


def take_screenshots(page, target):
    target.mkdir(parents=True, exist_ok=True)
    for size in (PHONE, DESK):
        page.resize(size)
        for theme in ("light", "dark"):
            def shoot(name):
                page.driver.execute_async_script("""const done = arguments[0];
                    for (const picture of document.images) picture.loading = 'eager';
                    Promise.allSettled([...document.images].map(p => p.decode())).then(() =>
                        requestAnimationFrame(() => requestAnimationFrame(done)))""")
                page.driver.save_screenshot(str(target / f"{size[0]}-{theme}-{name}.png"))
            page.load(theme=theme)
            shoot("top")
            for index in (0, 2, len(page.all("article")) // 2, -3):
                page.run("""const a = [...document.querySelectorAll('article')].at(arguments[0]);
                    a.querySelector('details')?.setAttribute('open', ''); a.scrollIntoView()""", index)
                shoot(f"member{index}")
            page.run("""const b = document.querySelector('.compare input');
                b.scrollIntoView({block: 'center'}); b.focus()""")
            page.press(Keys.ARROW_LEFT)
            shoot("focus")
            page.load("#search=gray", theme=theme)
            shoot("search")
            page.load("#search=no%20such%20member", theme=theme)
            shoot("nothing")


def main():
    parser = argparse.ArgumentParser(description=__doc__.splitlines()[2])
    parser.add_argument("folder", type=pathlib.Path)
    parser.add_argument("--screenshots", type=pathlib.Path, metavar="FOLDER")
    parser.add_argument("--only", metavar="CHECK", choices=CHECKS)
    options = parser.parse_args()
    folder = options.folder.resolve()
    if not (folder / "index.html").is_file():
        parser.error(f"{folder} has no index.html; make the page first")

    checks = {name: check for name, check in CHECKS.items() if options.only in (None, name)}
    faults = []
    with tempfile.TemporaryDirectory(ignore_cleanup_errors=True) as profile:
        page = Page(folder, profile)
        try:
            for size in (PHONE, DESK):
                page.resize(size)
                for name, check in checks.items():
                    fault = fault_of(check, page)
                    if fault:
                        faults.append(f"{name}, {size[0]} pixels: {fault}")
            if options.screenshots:
                take_screenshots(page, options.screenshots)
        finally:
            page.driver.quit()
    for fault in faults:
        print(fault, file=sys.stderr)
    print(f"{len(checks)} checks at 2 widths: {len(faults)} faults")
    return 1 if faults else 0


if __name__ == "__main__":
    sys.exit(main())
