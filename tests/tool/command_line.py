"""What the tests of tembrakey share: the tool as users run it, on software tokens, judged by OpenSSL.

TEMBRA_TOOL names the tool; its words are separated by line feeds, so that it can be run through Wine.
"""
import json
import os
import shutil
import subprocess
import tempfile
import unittest

TOOL = os.environ["TEMBRA_TOOL"].split("\n")
IS_WINDOWS = TOOL[-1].endswith(".exe")
PINS = {"PIN": "86420864", "SO": "13571357", "WRONG": "86420863", "NEW": "24682468",
        "DEVICE_KEY": "31415926535897932384626433832795",
        "WRONG_KEY": "31415926535897932384626433832790"}
REGISTRY_KEY = r"HKEY_LOCAL_MACHINE\Software\ORVEL\PKI\Devices\TembraKey"


def openssl(*arguments, stdin=None):
    done = subprocess.run(["openssl", *arguments], input=stdin, capture_output=True, check=False)
    assert done.returncode == 0, f"openssl {arguments}: {done.stderr.decode()}"
    return done.stdout


def read(path):
    with open(path, "rb") as file:
        return file.read()


def write(path, content):
    with open(path, "wb") as file:
        file.write(content)
    return path


class CommandTest(unittest.TestCase):
    """Works in its own directory, with its own tokens, in English."""

    token = True  # make one before each test

    def setUp(self):
        self.folder = tempfile.mkdtemp()
        self.addCleanup(shutil.rmtree, self.folder)
        self.addCleanup(os.chdir, os.getcwd())
        os.chdir(self.folder)
        os.mkdir("tokens")
        self.environment = {**os.environ, **PINS, "LC_ALL": "C.UTF-8",
                            "TEMBRA_SOFT_TOKEN_DIR": f"{self.folder}/tokens",
                            "TEMBRA_KEY_PROV_LOG_LEVEL": "0"}
        self.settings(HasSM3=1, HasSM4=1)
        if self.token:
            self.run_tool("token", "create", "--label", "Test", "--serial", "AAAA0001",
                          "--so-pin-env", "SO", "--pin-env", "PIN", "--device-key-env", "DEVICE_KEY")

    def settings(self, **values):
        rows = "".join(f'"{name}"=dword:{value:08x}\n' for name, value in values.items())
        text = f"Windows Registry Editor Version 5.00\n\n[-{REGISTRY_KEY}]\n\n[{REGISTRY_KEY}]\n{rows}"
        if not IS_WINDOWS:
            text = text.replace(f"[-{REGISTRY_KEY}]\n\n", "")
        write("settings.reg", text.encode())
        self.environment["TEMBRA_KEY_PROV_REGISTRY"] = f"{self.folder}/settings.reg"
        if IS_WINDOWS:
            subprocess.run([*TOOL[:-1], "regedit", "/S", "settings.reg"], check=True, timeout=120)

    def run_tool(self, *arguments, code=0, stdin=b"", **variables):
        """Runs the tool and returns what it printed; its exit code must be `code`."""
        if arguments[:2] == ("key", "delete"):  # the provider keeps a device that lost a key pair
            variables["ASAN_OPTIONS"] = os.environ.get("ASAN_OPTIONS", "") + ":detect_leaks=0"
        # A session of its own has no terminal that the tool could ask at.
        done = subprocess.run([*TOOL, *arguments], input=stdin, capture_output=True, check=False,
                              timeout=300, env={**self.environment, **variables}, start_new_session=True)
        self.stderr = done.stderr.decode(errors="replace").replace("\r\n", "\n")
        self.assertEqual(done.returncode, code, f"{arguments}: {self.stderr}")
        for name, pin in PINS.items():
            self.assertNotIn(pin.encode(), done.stdout + done.stderr, f"{name} shown: {arguments}")
        return done.stdout

    def run_json(self, *arguments, code=0, **more):
        """The same with --json: the object it printed."""
        printed = self.run_tool(*arguments, "--json", code=code, **more)
        return json.loads(printed if code == 0 else self.stderr)

    def make_key(self, label, algorithm="sm2", bits=256):
        """Generates a signature key pair; returns the file of its public key."""
        self.run_tool("key", "generate", "--algo", algorithm, "--bits", str(bits), "--label", label,
                      "--pin-env", "PIN")
        self.run_tool("key", "export", "--label", label, "--out", f"{label}.pem")
        return f"{label}.pem"
