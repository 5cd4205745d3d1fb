"""Uses ./dev try as a user does: with the mouse on its screen, and in a web browser."""

import os
import re
import shutil
import signal
import subprocess
import time
from pathlib import Path

import pytest

ROOT = Path(__file__).resolve().parents[2]
# Positions on the screen while the adapter's command bar is visible.
SECOND_MAIL = 300, 158
SEARCH_IN_CONTEXT = 395, 104
SECOND_TITLE = "What to plant in March"


def wait_until(condition, timeout, what):
    deadline = time.monotonic() + timeout
    while not (value := condition()):
        assert time.monotonic() < deadline, f"{what} did not happen within {timeout} s"
        time.sleep(0.1)
    return value


def output_of(*command, check=True, **options):
    words = [str(word) for word in command]
    return subprocess.run(words, stdout=subprocess.PIPE, text=True, check=check, **options).stdout


class Try:
    """A running ./dev try without a display, thus for a browser."""

    def __init__(self, started):
        environment = {name: value for name, value in os.environ.items() if name not in ("DISPLAY", "XAUTHORITY")}
        self.process = subprocess.Popen(
            [ROOT / "scripts/try"],
            env=environment, stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, text=True, start_new_session=True,
        )  # fmt: skip
        started.append(self.process)
        output = ""
        while "one-time password" not in output:
            assert (line := self.process.stdout.readline()), f"it ended: {output}"
            output += line
        self.url = re.search(r"http://127\.0\.0\.1:(\d+)/\S+", output)[0]
        self.port = int(re.search(r":(\d+)/", self.url)[1])
        self.folder = ROOT / Path(re.search(r"also in (\S+)/password", output)[1])
        self.password = (self.folder / "password").read_text().strip()
        assert self.password in output
        number = (self.folder / "display").read_text().strip()
        self.environment = {**environment, "DISPLAY": number, "XAUTHORITY": str(self.folder / "xauthority")}
        self.said("outlook", "^event Activate explorer", 240)

    def said(self, program, pattern, timeout=60):
        log = self.folder / f"{program}.log"
        return wait_until(
            lambda: log.exists() and re.search(pattern, log.read_text("utf-8", "replace"), re.M), timeout, pattern
        )

    def mouse(self, x, y, *clicks):
        self.xdotool("mousemove", x, y, *(clicks or ("click", 1)))

    def xdotool(self, *arguments):
        return output_of("xdotool", *arguments, env=self.environment, check=False)

    def panel_shows(self, title):
        return self.xdotool("search", "--name", f"^Related: {title}")

    def click_until(self, click, place, condition):
        """Clicks again until it has an effect: controls move when the command bar appears."""

        def effect():
            click(*place)
            time.sleep(3)
            return condition()

        wait_until(effect, 120, "the effect of a click")

    def select_second_mail(self, click):
        self.click_until(click, SECOND_MAIL, lambda: self.panel_shows(SECOND_TITLE))

    def check_gone(self, status):
        assert self.process.wait(60) == status
        assert not self.folder.exists()
        assert output_of("pgrep", "-f", self.folder, check=False) == "", "processes that still run"
        assert f":{self.port} " not in output_of("ss", "-Hltn")


@pytest.fixture
def start():
    started = []
    yield lambda: Try(started)
    for process in started:
        process.terminate()
        process.wait(60)


def test_follows_the_mouse_and_ends_with_outlooks_window(start):
    run = start()
    other = start()  # a second run beside the first
    assert (other.port, other.folder, other.password) != (run.port, run.folder, run.password)
    run.select_second_mail(run.mouse)
    run.mouse(*SECOND_MAIL, "click", "--repeat", 2, "--delay", 50, 1)
    run.said("outlook", "^event Activate inspector")
    commands = run.folder / "engine.log"
    run.click_until(run.mouse, SEARCH_IN_CONTEXT, lambda: "\n# BeginCommand" in commands.read_text("utf-8"))
    run.xdotool("key", "alt+F4")
    run.said("outlook", "^closed inspector")
    listening = output_of("ss", "-Hltnp")
    assert re.findall(rf"\S+:{run.port}(?= )", listening) == [f"127.0.0.1:{run.port}"]
    assert "vnc" not in listening.lower(), "only the web server listens"
    assert other.panel_shows("Select a mail"), "the other run must not follow"
    run.xdotool("key", "alt+F4")
    run.check_gone(0)
    os.killpg(other.process.pid, signal.SIGHUP)  # its terminal goes away
    other.check_gone(129)


def test_says_what_is_wrong_with_a_mailbox(tmp_path):
    for folder, text in (tmp_path, "contains no mail and no contact"), (tmp_path / "no", "there is no folder"):
        done = subprocess.run([ROOT / "scripts/try", folder], stderr=subprocess.PIPE, text=True, check=False)
        assert done.returncode == 2 and text in done.stderr
    assert not list((ROOT / "build/try").iterdir()), "files that are left behind"


@pytest.fixture
def browser():
    webdriver = pytest.importorskip("selenium.webdriver", reason="Debian's python3-selenium is not installed")
    if not shutil.which("chromedriver"):
        pytest.skip("Debian's chromium-driver is not installed")
    options = webdriver.ChromeOptions()
    for option in "headless", "no-sandbox", "window-size=1300,760":  # root has no sandbox
        options.add_argument(option)
    driver = webdriver.Chrome(options=options)
    yield driver
    driver.quit()


def test_works_in_a_browser_with_the_password(start, browser):
    from selenium.webdriver.common.action_chains import ActionChains

    run = start()
    browser.get(run.url)

    def of_canvas(expression):
        return browser.execute_script(f"const c = document.querySelector('canvas'); return c && {expression}")

    def click(x, y):
        """At these coordinates of the remote screen."""
        left, top, scale = of_canvas("(r => [r.left, r.top, r.width / c.width])(c.getBoundingClientRect())")
        action = ActionChains(browser)
        action.w3c_actions.pointer_action.move_to_location(int(left + x * scale), int(top + y * scale)).click()
        action.perform()

    def picture_of_the_panel():
        return of_canvas("c.getContext('2d').getImageData(860, 30, 400, 580).data.join()")

    wait_until(lambda: browser.find_elements("css selector", "#noVNC_credentials_dlg.noVNC_open"), 30, "the question")
    assert not of_canvas("c.width > 300")
    browser.find_element("id", "noVNC_password_input").send_keys(run.password)
    browser.find_element("id", "noVNC_credentials_button").click()
    wait_until(lambda: of_canvas("c.width") == 1280, 60, "the screen")
    wait_until(lambda: run.panel_shows("Select a mail"), 60, "the panel")
    time.sleep(1)  # for the picture to be complete
    before = picture_of_the_panel()
    run.select_second_mail(click)
    wait_until(lambda: picture_of_the_panel() != before, 10, "the change of the panel")
