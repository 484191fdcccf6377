"""tembrakey trace as users run it: JSON, the page in a real browser, and its memory on a large log."""
import json
import os
import pathlib
import re
import shutil
import subprocess
import unittest

from command_line import IS_WINDOWS, TOOL, CommandTest, read, write

SAMPLE = read(pathlib.Path(__file__).parent / "data/trace_sample.log")
SAMPLE_PIN = b"314159"
HOSTILE = b"host says </script><img src=x onerror=document.body.dataset.pwned=1>\n"
BROWSER = next(filter(None, map(shutil.which, ("chromium", "chromium-browser", "google-chrome"))), None)


def line(thread, level, function, message, second=1):
    message = message if isinstance(message, bytes) else message.encode()
    return f"{thread} 2026-11-21 12:30:{second:02} [{level}] [{function}] ".encode() + message + b" \n"


def call(thread, name, *lines, seconds=0):
    tracer = "call_stack_tracer::{}call_stack_tracer"
    inside = b"".join(line(thread, level, name, message) for level, message in lines)
    return line(thread, "DEBUG", tracer.format(""), f">>>>> {name}") + inside + \
        line(thread, "DEBUG", tracer.format("~"), f"<<<<< {name}", 1 + seconds)


class Trace(CommandTest):
    token = False

    def page(self, log, *options, **variables):
        """The page of a log; it refers to nothing outside."""
        self.run_tool("trace", write("a.log", log), "--html", "page.html", *options, **variables)
        page = read("page.html").decode()
        self.assertNotRegex(page, r'(?:src|href)="(?!data:)')
        return page

    def test_json_holds_a_call_whatever_its_texts(self):
        label = b'a"b\\, int type = 9\x01\xff</script>\xe4\xb8\xad'
        write("a.log", call(7, "DeviceFindKeypair",
                            ("INFO", b"hDevice = 0x1, int type = 2, const char *label = " + label
                             + b", SPI_KEYPAIR_HANDLE *phKeypair = 0x2"),
                            ("ERROR", "DeviceFindKeypair fail "), seconds=2)
              # Older logs have a full-width comma.
              + call(7, "DeviceGetPwdRetryNum", ("INFO", "hDevice = 0x1, int type = 1\uff0c int *pretrynum = 5")))
        printed = self.run_tool("trace", "a.log", "--json").decode()
        self.assertNotIn("<", printed)  # so that a page can embed it
        find, retries, _ = map(json.loads, printed.splitlines())
        self.assertEqual((find["entryPoint"], find["begin"], find["durationSeconds"], find["failed"]),
                         ("DeviceFindKeypair", "2026-11-21 12:30:01", 2, True))
        self.assertEqual(find["arguments"], {"hDevice": "0x1", "type": "2", "phKeypair": "0x2",
                                             "label": label.decode(errors="replace")})
        self.assertEqual(find["lines"][1]["message"], "DeviceFindKeypair fail ")
        self.assertEqual(retries["arguments"], {"hDevice": "0x1", "type": "1", "pretrynum": "5"})

    def test_json_ends_with_the_failures(self):
        verify = [call(1, "DeviceVerifyPwd", ("INFO", f"hDevice = 0x1, type = 1, pwd = 1, *pretrynum = {tries}"))
                  for tries in (5, 4, 4)]
        removed = call(2, "DeviceSign", ("ERROR", "SKF_ECCSignData fail, error = 0x0A000023"))
        printed = self.run_tool("trace", "-", "--json", stdin=b"".join(verify) + removed + removed)
        summary = json.loads(printed.splitlines()[-1])
        self.assertEqual([(one["kind"], one["count"], one["firstLine"], one["lastLine"]) for one in summary["failures"]],
                         [("refusedPin", 1, 2, 2), ("failure", 2, 11, 14)])
        self.assertIn("(SAR_DEVICE_REMOVED: token removed)", summary["failures"][1]["text"])
        self.assertEqual(summary["refusedPins"], [2])

    def test_redact_refuses_what_it_cannot_mask(self):
        for foreign in (b"", b"PIN 1234\n" * 100_000, b"\0" * 100):
            self.run_tool("trace", write("a.log", foreign), "--redact", "copy.log", code=2)
            self.assertFalse(os.path.exists("copy.log"))
            self.assertEqual(self.run_tool("trace", "-", "--redact", "-", stdin=foreign, code=2), b"")
        utf16 = SAMPLE.decode().encode("utf-16")
        counts = [self.run_json("trace", write("a.log", log), "--redact", "copy.log")["maskedLines"] for log in (SAMPLE, utf16)]
        self.assertEqual(counts[0], counts[1])
        self.assertEqual(counts[0], sum(old != new for old, new in zip(SAMPLE.splitlines(), read("copy.log").splitlines())))
        self.assertNotIn(SAMPLE_PIN, read("copy.log"))

    def test_a_page_keeps_rare_failures(self):
        calls = {400: [("ERROR", "rare")], 2: [("ERROR", "bad")], 5: [("ERROR", "bad")]}
        page = self.page(b"".join(call(i, "DeviceSign", *calls.get(i, ())) for i in range(900)), "--limit", "5")
        data = json.loads(re.search(r'id="data">(.*?)</script>', page, re.S)[1])
        threads = [one["thread"] for one in data["calls"]]
        self.assertEqual((threads[:2], threads[-1], 400 in threads), ([0, 2], 899, True))
        self.assertEqual((data["callsSeen"], data["callsShown"]), (900, len(threads)))
        self.assertLessEqual(len(threads), 5)

    @unittest.skipUnless(BROWSER and not IS_WINDOWS, "needs Chromium (scripts/install-deps test brings it)")
    def test_a_page_searches_folds_jumps_and_runs_nothing_foreign(self):
        self.assertNotIn(SAMPLE_PIN.decode(), self.page(SAMPLE + HOSTILE))
        plain = self.browse()
        self.assertGreater(len(self.names(plain)), 20)
        self.assertEqual((self.opened(plain), plain.count('class="lane"')), (0, 2))  # a thread each
        for text in ("pwd", "&lt;/script&gt;&lt;img", 'class="tick"', 'class="bar fail"', 'aria-label="Search"',
                     "SKF_ECCSignData fail, error = 0x0A000023 (SAR_DEVICE_REMOVED: token removed)"):
            self.assertIn(text, plain)
        self.assertNotIn("data-pwned", plain)

        for words in ("q=SKF_eccsigndata", "q=removed+eccsign"):
            searched = self.browse(words)
            self.assertEqual(self.names(searched), ["DeviceSign"])
        self.assertRegex(self.browse("q=SKF_eccsigndata"), "<mark[^>]*>SKF_ECCSignData</mark>")
        hidden = self.browse("q=creatively-named")  # a line, which the search unfolds
        self.assertGreaterEqual(self.opened(hidden), 1)
        self.assertRegex(hidden, "<mark[^>]*>creatively-named</mark>")
        self.assertEqual(self.opened(self.browse("q=creatively-named&fold=closed")), 0)
        self.assertEqual(self.names(self.browse("thread=4712&failed=1")), ["DeviceVerifyPwd"])

        unfolded = self.browse("fold=open")
        self.assertGreater(self.opened(unfolded), 50)  # inner calls too
        listed = unfolded[unfolded.index('id="list"'):]
        inner = re.search(r'<details class="call[^"]*" id="line-(\d+)"(?:(?!<details).)*>DeviceFreeDevice<',
                          listed[listed.index(">DeviceFreeKeypair<"):], re.S)[1]
        jumped = self.browse(f"line={inner}")
        self.assertEqual(self.opened(jumped), 2)  # it and the call around it
        self.assertRegex(jumped, rf'<details class="call[^"]*current[^"]*" id="line-{inner}"')
        self.assertEqual(jumped.count(" current"), 2)  # in the list and on the timeline

        self.page(SAMPLE, LC_ALL="zh_CN.UTF-8")
        chinese = self.browse()
        self.assertIn('lang="zh-CN"', chinese)
        self.assertIn("\u7ebf\u7a0b", chinese)
        shown = re.sub(r"<(script|style).*?</\1>|<[^>]*>|Device\w+|SKF_\w+|SAR_\w+", " ", chinese, flags=re.S)
        self.assertNotRegex(shown, "Threads|errors|failed|Search|removed")

    def browse(self, fragment=""):
        """What the page has become once its code has run."""
        done = subprocess.run(
            [BROWSER, "--headless", "--no-sandbox", "--disable-gpu", "--disable-quic", "--no-first-run",
             "--disable-background-networking", "--disable-component-update", "--disable-sync",
             f"--user-data-dir={self.folder}/profile", "--virtual-time-budget=4000",
             "--enable-logging=stderr", "--dump-dom", f"file://{self.folder}/page.html#{fragment}"],
            capture_output=True, timeout=120, check=True)
        self.assertNotRegex(done.stderr.decode(errors="replace"), "Uncaught|Refused to")
        return done.stdout.decode()

    def names(self, dom):
        """The entry points of the calls in the list, in order."""
        shown = dom[dom.index('id="list"'):dom.index('id="more"')]
        return re.findall(r'</span><b>([^<]*)', re.sub("</?mark[^>]*>", "", shown))

    def opened(self, dom):
        return len(re.findall(r'<details class="call[^>]* open=', dom))

    @unittest.skipIf(IS_WINDOWS, "Wine does not tell")
    def test_memory_does_not_grow_with_the_log(self):
        short, long = (call(4700, "DeviceCipherUpdate",
                            ("VERBOSE", f"in[length:{size}]: " + "5A" * size)) for size in (5000, 500_000))
        verify = call(4701, "DeviceVerifyPwd",
                      ("INFO", b"hDevice = 0x55, type = 1, pwd = %s, *pretrynum = 0" % SAMPLE_PIN),
                      ("ERROR", "SKF_VerifyPIN fail, error = 0x0A000006"))
        block = verify + short * 90 + long  # longer than the reader's piece; 2 MB
        for blocks in (2, 20):
            write(f"{blocks}.log", block * blocks)
        for expected, *options in ((f"{20 * 92:,} calls on 2 threads", "--level", "error"),
                                   (f"masked in {20 * 92:,} lines", "--redact", os.devnull),
                                   ("written", "--html", "page.html")):
            with self.subTest(options=options):
                less, more = (self.peak_memory(f"{blocks}.log", *options) for blocks in (2, 20))
                self.assertLess(more - less, 12 << 20)  # what a page holds is bounded, but not the same
                self.assertIn(expected.replace(",", " "), self.printed)

    def peak_memory(self, *arguments):
        """In bytes; at least this script's own, which the system counts from before the tool took its place."""
        # AddressSanitizer keeps freed memory back, which is not the tool's.
        sanitizer = os.environ.get("ASAN_OPTIONS", "") + ":quarantine_size_mb=1"
        child = subprocess.Popen([*TOOL, "trace", *arguments], stdout=subprocess.PIPE,
                                 env={**self.environment, "ASAN_OPTIONS": sanitizer})
        with child.stdout as output:
            self.printed = output.read().decode()
        _, child.returncode, usage = os.wait4(child.pid, 0)
        self.assertEqual(child.returncode, 0)
        return usage.ru_maxrss << 10


if __name__ == "__main__":
    unittest.main()
