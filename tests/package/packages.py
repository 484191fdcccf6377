"""What the tests of the packages share: where things are, and how to run what was installed."""

import hashlib
import os
import re
import shutil
import subprocess
import tempfile
import unittest
from pathlib import Path

ROOT = Path(__file__).resolve().parents[2]
PACKAGES = ROOT / "build/packages"
VERSION = re.search(r"project\(TembraKeyProv VERSION ([\d.]+)", (ROOT / "CMakeLists.txt").read_text()).group(1)
EXAMPLE = ROOT / "docs/example/sign_file_digest.c"
CONSUMER = ROOT / "tests/package/consumer"
DIGEST = bytes(range(32))
DEFAULTS = {"HasSM3": 0, "HasSM4": 0, "MaxOperationLen": 1024, "SupportGDKMSM2Import": 0}


def files(folder):
    """Paths of all the files below a folder, relative to it."""
    return {path.relative_to(folder).as_posix() for path in folder.rglob("*") if not path.is_dir()}


def digests(folder):
    """Of the files below a folder, by their paths relative to it."""
    return {path: hashlib.sha256((folder / path).read_bytes()).hexdigest() for path in files(folder)}


class PackageTest(unittest.TestCase):
    """Each test has a folder for itself, gone afterwards, where tokens and trace lie, too."""

    maxDiff = None

    def setUp(self):
        self.folder = Path(tempfile.mkdtemp(prefix="tembra-package-"))
        self.addCleanup(shutil.rmtree, self.folder)
        self.environment = {
            **{name: value for name, value in os.environ.items() if not name.startswith("TEMBRA_")},
            "TMPDIR": str(self.folder),
            "TEMBRA_SOFT_TOKEN_DIR": str(self.folder / "tokens"),
            "TEMBRA_KEY_PROV_LOG_PATH": str(self.folder / "trace.log"),
            "TEMBRA_KEY_PROV_LOG_LEVEL": "2",
            "TEMBRA_EXAMPLE_PIN": "87654321",
            "PIN": "87654321",
            "SO": "12345678",
            "LC_ALL": "C.UTF-8",
        }
        (self.folder / "tokens").mkdir()

    def run_command(self, *command, expect=0, **options):
        """Runs a command and returns what it printed."""
        done = subprocess.run(
            [str(word) for word in command], env=self.environment, cwd=self.folder, text=True,
            stdin=subprocess.DEVNULL, stdout=subprocess.PIPE, stderr=subprocess.STDOUT,
            timeout=120, check=False, **options)
        self.assertEqual(done.returncode == 0, expect == 0, f"{command}:\n{done.stdout}")
        return done.stdout

    def check_tool(self, tembrakey):
        """Makes a token and finds it."""
        self.run_command(*tembrakey, "token", "create", "--label", "Test", "--so-pin-env", "SO", "--pin-env", "PIN")
        self.assertIn("Test", self.run_command(*tembrakey, "list"))

    def check_host(self, tembrakey, host):
        """Has a host sign with a token, and OpenSSL judge the signature."""
        self.check_tool(tembrakey)
        signature = self.run_command(*host, "alice", DIGEST.hex())
        (self.folder / "signature").write_bytes(bytes.fromhex(signature.strip()))
        (self.folder / "digest").write_bytes(DIGEST)
        self.run_command(*tembrakey, "key", "export", "--label", "alice", "--out", "alice.pem")
        verdict = self.run_command("openssl", "pkeyutl", "-verify", "-pubin", "-inkey", "alice.pem",
                                   "-sigfile", "signature", "-in", "digest")
        self.assertIn("Verified Successfully", verdict)

    def build_host(self, *options):
        """Builds the example against what find_package finds."""
        self.run_command("cmake", "-S", CONSUMER, "-B", "build", f"-DSOURCE={EXAMPLE}", *options)
        self.run_command("cmake", "--build", "build")

    def check_settings_found(self):
        """The provider, which a command ran, reports every setting that it does not find."""
        trace = self.folder / "trace.log"
        self.assertNotIn("hasSM", trace.read_text() if trace.exists() else "")

    def check_links(self, folder):
        """Every link of an installed document leads to something that is installed."""
        for document in folder.rglob("*.md"):
            for target in re.findall(r"\]\(([^)#:]+)(?:#[^)]*)?\)", document.read_text("utf-8")):
                if not target.startswith("../devkit/"):  # comes with the kit
                    self.assertTrue((document.parent / target).exists(), f"{document.name}: {target}")
