"""Makes the pictures in docs/images from what tembrakey really prints, in a browser without a window.

pictures.py BUILD, which is a directory with the built tool and libraries.
"""
import html
import os
import pathlib
import shutil
import subprocess
import sys
import tempfile

ROOT = pathlib.Path(__file__).resolve().parent.parent
BUILD = pathlib.Path(sys.argv[1])
STAGE = pathlib.Path("/tmp/tembra")  # what the pictures show as the installation
LIBRARIES = ("libTembraKeyProv.so", "libQXSKFAPI.so", "libORVEL_CRYPTO.so", "tembrakey")
LINE, COLUMN, MARGIN = 19, 7.83, 18  # of the terminal's font, in pixels

TERMINAL = """<!DOCTYPE html><meta charset="utf-8"><style>
body {{ margin: 0; background: #16181d; color: #d7dae0; }}
pre {{ margin: {margin}px; font: 13px/{line}px "DejaVu Sans Mono", monospace; }}
b {{ color: #8ab4f8; font-weight: 400; }} .ok {{ color: #7dc487; }} .warning {{ color: #e5b64a; }}
.failure {{ color: #ff7f77; }} i {{ color: #9aa0ab; font-style: normal; }}
</style><pre>{text}</pre>"""


def tool(*arguments):
    environment = {"PATH": os.environ["PATH"], "HOME": str(STAGE), "LC_ALL": "C.UTF-8",
                   "TEMBRA_SOFT_TOKEN_DIR": f"{STAGE}/tokens",
                   "TEMBRA_KEY_PROV_REGISTRY": f"{STAGE}/tembra_key_prov.reg",
                   "TEMBRA_KEY_PROV_LOG_PATH": f"{STAGE}/trace.log",
                   "SO": "12345678", "PIN": "87654321", "NEW_SO": "13571357", "NEW": "24682468"}
    done = subprocess.run([STAGE / "tembrakey", *arguments], env=environment, capture_output=True,
                          text=True, check=True)
    return done.stdout


def prepare():
    """An installation with a token that has two key pairs and a certificate."""
    shutil.rmtree(STAGE, ignore_errors=True)
    (STAGE / "tokens").mkdir(parents=True)
    for name in LIBRARIES:
        shutil.copy2(BUILD / "bin" / name, STAGE)
    settings = (ROOT / "packaging/tembra_key_prov.reg").read_text("utf-8")
    (STAGE / "tembra_key_prov.reg").write_text(settings.replace("HasSM3\"=dword:00000000",
                                                                "HasSM3\"=dword:00000001"), "utf-8")
    tool("token", "create", "--label", "Demo", "--serial", "7A01C2D3E4F50617", "--so-pin-env", "SO",
         "--pin-env", "PIN")
    tool("pin", "change", "--pin-env", "PIN", "--new-pin-env", "NEW")
    tool("pin", "change", "--so", "--pin-env", "SO", "--new-pin-env", "NEW_SO")
    tool("key", "generate", "--label", "alice", "--pin-env", "NEW")
    tool("key", "generate", "--algo", "rsa", "--label", "bob", "--pin-env", "NEW")
    public, key, crt = (str(STAGE / name) for name in ("alice.pem", "ca.key", "alice.crt"))
    tool("key", "export", "--label", "alice", "--out", public)
    openssl = ["openssl", "req", "-new", "-x509", "-newkey", "rsa:2048", "-nodes", "-subj",
               "/C=CN/O=Example/CN=Alice", "-keyout", key, "-out", crt]
    subprocess.run(openssl, check=True, capture_output=True)
    tool("cert", "import", crt, "--label", "alice", "--pin-env", "NEW")


def picture(browser, page, name, width, height):
    with tempfile.TemporaryDirectory() as profile:
        subprocess.run([browser, "--headless", "--no-sandbox", "--disable-gpu", "--hide-scrollbars",
                        "--no-first-run", f"--user-data-dir={profile}", "--virtual-time-budget=3000",
                        f"--window-size={width},{height}",
                        f"--screenshot={ROOT / 'docs/images' / name}", page.as_uri()],
                       check=True, capture_output=True)
    print(f"docs/images/{name}")


def terminal(browser, name, *commands):
    """A picture of commands and what they print, with statuses in colour."""
    lines = []
    for command in commands:
        lines += [f"$ tembrakey {command}", *tool(*command.split()).rstrip("\n").split("\n"), ""]
    lines.pop()
    shown = []
    for line in lines:
        text = html.escape(line)
        for status in ("ok", "warning", "failure"):
            if text.startswith(f"  {status} "):
                text = f'  <span class="{status}">{status}</span>' + text[2 + len(status):]
        if line.startswith("$") or (line and line[0].isalpha() and len(line.split()) <= 3):
            text = f"<b>{text}</b>"
        shown.append(f"<i>{text}</i>" if line.strip().startswith("-&gt;") else text)
    page = STAGE / "terminal.html"
    page.write_text(TERMINAL.format(margin=MARGIN, line=LINE, text="\n".join(shown)), "utf-8")
    width = int(max(70, *map(len, lines)) * COLUMN) + 2 * MARGIN + 4
    picture(browser, page, name, width, len(lines) * LINE + 2 * MARGIN)


def main():
    browser = shutil.which("chromium") or shutil.which("google-chrome")
    if not browser:
        sys.exit("pictures: there is no Chromium here (scripts/install-deps test brings it)")
    (ROOT / "docs/images").mkdir(exist_ok=True)
    prepare()
    terminal(browser, "list.png", "list", "caps")
    terminal(browser, "doctor.png", "doctor")
    log, page = STAGE / "app.log", STAGE / "trace.html"
    shutil.copy(ROOT / "tests/tool/data/trace_sample.log", log)
    tool("trace", str(log), "--html", str(page))
    picture(browser, page, "trace.png", 1280, 860)
    shutil.rmtree(STAGE)


if __name__ == "__main__":
    main()
