#!/usr/bin/env python3
"""The page of tembrakey trace in a real browser: it searches, folds, jumps, and runs nothing foreign.

trace_page.py TOOL [--screenshot FILE]
"""
import os
import re
import shutil
import subprocess
import sys
import tempfile

HERE = os.path.dirname(os.path.abspath(__file__))
LOG = f"{HERE}/data/trace_sample.log"
PIN = "314159"
HOSTILE = "</script><img src=x onerror=document.body.dataset.pwned=1>"


def find_browser():
    for name in ("chromium", "chromium-browser", "google-chrome"):
        if shutil.which(name):
            return shutil.which(name)
    print("SKIPPED: there is no Chromium here (scripts/install-deps test brings it)")
    sys.exit(77)


class Browser:
    """Opens the page anew for each question."""

    def __init__(self, program, page, profile):
        self.command = [program, "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic",
                        "--no-first-run", "--disable-background-networking",
                        "--disable-component-update", "--disable-sync", "--hide-scrollbars",
                        f"--user-data-dir={profile}", "--virtual-time-budget=4000",
                        "--enable-logging=stderr"]
        self.page = page

    def ask(self, fragment, *options):
        done = subprocess.run([*self.command, *options, f"file://{self.page}#{fragment}"],
                              capture_output=True, timeout=120, check=True)
        log = done.stderr.decode(errors="replace")
        assert "Uncaught" not in log and "Refused to" not in log, log
        return done.stdout.decode()

    def dom(self, fragment=""):
        return self.ask(fragment, "--dump-dom")


def figure(dom, name):
    return int(re.search(rf'<body[^>]* data-{name}="(\d+)"', dom).group(1))


def names(dom):
    """The entry points of the calls that the list shows, in order."""
    shown = dom[dom.index('id="list"'):dom.index('id="more"')]
    return re.findall(r'<span class="name">([^<]*)', re.sub("</?mark[^>]*>", "", shown))


def check_page(browser):
    plain = browser.dom()
    assert figure(plain, "open") == 0 and figure(plain, "shown") > 20, plain[:500]
    assert len(re.findall(r'class="lane"', plain)) == 2  # one a thread
    assert PIN not in plain and "pwd" in plain
    assert "data-pwned" not in plain and "&lt;/script&gt;&lt;img" in plain
    assert 'class="tick"' in plain and 'class="bar fail"' in plain

    searched = browser.dom("q=SKF_eccsigndata")
    assert figure(searched, "hits") == 1 and names(searched) == ["DeviceSign"], names(searched)
    assert "<mark>SKF_ECCSignData</mark>" in searched and "dim" in searched

    hidden = browser.dom("q=creatively-named")  # stands in a line, which the search unfolds
    assert figure(hidden, "open") >= 1 and "<mark>creatively-named</mark>" in hidden

    unfolded = browser.dom("fold=open")
    assert figure(unfolded, "open") > figure(unfolded, "shown")  # inner calls too
    assert figure(browser.dom("q=creatively-named&fold=closed"), "open") == 0

    thread = browser.dom("thread=4712&failed=1")
    assert figure(thread, "shown") == 1 and names(thread) == ["DeviceVerifyPwd"], names(thread)

    listed = unfolded[unfolded.index('id="list"'):]
    inner = re.search(r'<details class="call[^"]*" id="line-(\d+)"(?:(?!<details).)*>DeviceFreeDevice<',
                      listed[listed.index(">DeviceFreeKeypair<"):], re.S).group(1)
    jumped = browser.dom(f"line={inner}")
    assert figure(jumped, "open") == 2  # it and the call around it
    assert re.search(rf'<details class="call[^"]*current[^"]*" id="line-{inner}"', jumped)


def main():
    tool = sys.argv[1]
    program = find_browser()
    with tempfile.TemporaryDirectory() as folder:
        page, log = f"{folder}/page.html", f"{folder}/sample.log"
        with open(LOG, encoding="utf-8") as sample, open(log, "w", encoding="utf-8") as copy:
            copy.write(sample.read() + f"host says {HOSTILE}\n")
        make = [tool, "trace", log, "--html", page]
        subprocess.run(make, check=True, stdout=subprocess.DEVNULL,
                       env=dict(os.environ, LC_ALL="C.UTF-8"))
        with open(page, encoding="utf-8") as made:
            text = made.read()
        assert not re.search(r'(?:src|href)="(?!data:)', text), "the page refers to something outside"
        assert PIN not in text
        browser = Browser(program, page, f"{folder}/profile")
        if "--screenshot" in sys.argv:
            target = os.path.abspath(sys.argv[sys.argv.index("--screenshot") + 1])
            browser.ask(sys.argv[-1] if sys.argv[-2] == "--fragment" else "",
                        f"--screenshot={target}", "--window-size=1360,1000")
            return
        check_page(browser)
        subprocess.run(make, check=True, stdout=subprocess.DEVNULL,
                       env=dict(os.environ, LC_ALL="zh_CN.UTF-8"))
        chinese = browser.dom()
        assert 'lang="zh-CN"' in chinese and "线程" in chinese and ">Threads<" not in chinese


if __name__ == "__main__":
    main()
