"""tembrakey doctor: it names what is wrong, says what to do, and its exit code tells scripts."""
import json
import os
import shutil
import unittest

from command_line import IS_WINDOWS, TOOL, CommandTest, openssl, read, write

BIN = os.path.dirname(TOOL[-1])
FAULTY = os.environ.get("TEMBRA_FAULTY_LIBRARIES")  # none in the build for Windows


def library(name):
    return f"{name}.dll" if IS_WINDOWS else f"lib{name}.so"


class Doctor(CommandTest):
    def examine(self, *arguments, code=0, **variables):
        """The report, which stands on standard output whatever the exit code."""
        return json.loads(self.run_tool("doctor", *arguments, "--json", code=code, **variables))

    def findings(self, report, section=None, status=None):
        return [one for one in report["findings"]
                if section in (None, one["section"]) and status in (None, one["status"])]

    def expect(self, report, status, text, section=None):
        found = [one for one in self.findings(report, section, status) if text in one["text"]]
        self.assertTrue(found, f"no {status} with '{text}' in {report['findings']}")
        self.assertTrue(status == "ok" or found[0]["advice"])
        return found[0]

    def install(self, *names, **faulty):
        """A folder with the provider, the named libraries of the kit, and others from elsewhere."""
        os.makedirs("install", exist_ok=True)
        for name in ("TembraKeyProv", *names):
            shutil.copy(f"{BIN}/{library(name)}", "install")
        for name, folder in faulty.items():
            shutil.copy(f"{FAULTY}/{folder}/{library(name)}", "install")
        return f"install/{library('TembraKeyProv')}"

    def test_what_is_sound_is_called_so(self):
        self.make_key("alice")
        self.make_key("bob", "rsa", 2048)
        report = self.examine(TEMBRA_KEY_PROV_LOG_LEVEL="2")
        self.assertEqual(report["failures"], 0)
        libraries = self.findings(report, "libraries", "ok")
        self.assertEqual([os.path.basename(one["path"].replace("\\", "/")).lower() for one in libraries],
                         [library(name).lower() for name in ("TembraKeyProv", "QXSKFAPI", "ORVEL_CRYPTO")])
        self.assertEqual({one["version"] for one in libraries}, {self.run_tool("--version").decode().split()[1]})
        for text in ("serial AAAA0001", "starts and lists 1 tokens"):
            self.expect(report, "ok", text)
        self.expect(report, "warning", "user PIN: 10 of 10 tries left")
        self.assertIn("Libraries\n  ok", self.run_tool("doctor").decode())

    def test_settings_and_their_origin(self):
        self.settings(HasSM4=0, MaxOperationLen=0)
        report = self.examine()
        self.expect(report, "ok", "not set, so 0", "settings")
        self.expect(report, "warning", "0 is out of range", "settings")
        if IS_WINDOWS:
            return
        text = read("settings.reg")
        write("settings.reg", text.replace(b'"HasSM4"=dword:00000000', b'"HasSM4"="1"'))
        self.expect(self.examine(), "warning", "is not a REG_DWORD", "settings")
        missing = self.examine(TEMBRA_KEY_PROV_REGISTRY=f"{self.folder}/none.reg")
        self.expect(missing, "warning", "none.reg does not exist", "settings")

    def test_the_trace_log(self):
        log = write("a.log", b"text\n")
        os.chmod(log, 0o600)
        write("open.log", b"text\n")
        os.chmod("open.log", 0o644)
        rows = [("ok", "nothing", "0", log), ("ok", "errors and warnings", "2", log), ("ok", "a.log", "1", log),
                ("warning", "PINs are written in clear", "3", log), ("warning", "PINs and plaintext", "5", log),
                ("warning", "not a number", "abc", log), ("warning", "set but empty", "1", ""),
                ("warning", "cannot be written", "1", "none/x.log")]
        rows += [] if IS_WINDOWS else [("warning", "by other users", "1", "open.log")]
        for status, text, level, path in rows:
            with self.subTest(text=text):
                report = self.examine(TEMBRA_KEY_PROV_LOG_LEVEL=level, TEMBRA_KEY_PROV_LOG_PATH=path)
                found = self.expect(report, status, text, "trace")
                if path == "open.log":
                    self.assertIn("chmod 600", found["advice"])

    @unittest.skipIf(IS_WINDOWS, "each user has a temporary directory there")
    def test_a_default_log_that_another_user_may_have_made(self):
        log = f"{self.folder}/tembra_key_prov.log"
        other = write("other.log", b"text\n")
        self.environment.pop("TEMBRA_KEY_PROV_LOG_PATH", None)
        for prepare, text in ((lambda: os.symlink(other, log), "is a symbolic link"),
                              (lambda: os.link(other, log), "has several hard links"),
                              (lambda: os.mkfifo(log), "is not a regular file"),
                              (lambda: None, "does not exist yet")):
            with self.subTest(text=text):
                prepare()
                report = self.examine(TEMBRA_KEY_PROV_LOG_LEVEL="1",
                                      TMPDIR=self.folder)
                status = "ok" if text == "does not exist yet" else "warning"
                self.assertIn(log, self.expect(report, status, text, "trace")["text"])
                if os.path.lexists(log):
                    os.remove(log)

    def test_libraries_that_are_missing_or_lack_functions(self):
        self.expect(self.examine("--provider", "nowhere.dll", code=8), "failure", "nowhere.dll")
        alone = self.examine("--provider", self.install("QXSKFAPI"), code=8)
        self.expect(alone, "failure", "cannot be loaded")
        self.expect(alone, "failure", library("ORVEL_CRYPTO"))
        if FAULTY:
            provider = self.install("QXSKFAPI", ORVEL_CRYPTO="lacking-host")
            lacking = self.examine("--provider", provider, code=8)
            found = self.expect(lacking, "failure", "1 of 14 functions: OrvelPKICryptoGenerateRandom")
            self.assertEqual(found["missing"], ["OrvelPKICryptoGenerateRandom"])

    def test_tokens_that_refuse(self):
        for plan, text in (("SKF_ConnectDev:*=0x0A000023", "SKF_ConnectDev returned 0x0A000023"),
                           ("SKF_GetDevInfo:*=0x0A000001", "SKF_GetDevInfo returned 0x0A000001"),
                           ("OrvelPKICryptoGetPseudoDevice:*=0", "pseudo device")):
            with self.subTest(plan=plan):
                report = self.examine(code=1, TEMBRA_SOFT_TOKEN_FAULTS=plan)
                self.expect(report, "failure", text)
        self.run_tool("token", "remove", "AAAA0001", "--yes")
        self.expect(self.examine(), "warning", "no token is connected")
        self.run_tool("token", "create", "--unformatted")
        self.expect(self.examine(), "warning", "it has no application")

    def test_files_that_can_never_be_loaded_are_named(self):
        for content, text in ((b"", "the file is empty"), (b"text", "the file is not a library"),
                              (read(f"{BIN}/{library('TembraKeyProv')}")[:4096].replace(b"\x3e\0", b"\xb7\0", 1),
                               "another processor")):
            if text != "another processor" or not IS_WINDOWS:
                with self.subTest(text=text):
                    report = self.examine("--provider", write("library", content), code=8)
                    self.expect(report, "failure", text, "libraries")

    def test_certificates_that_are_expired_or_for_another_key(self):
        public = self.make_key("alice")
        openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", "ca.key", "-out", "ca.crt", "-subj",
                "/CN=CA")
        openssl("req", "-new", "-key", "ca.key", "-subj", "/CN=Alice", "-out", "csr")
        openssl("x509", "-req", "-in", "csr", "-CA", "ca.crt", "-CAkey", "ca.key", "-force_pubkey", public,
                "-days", "-1", "-out", "old.crt")
        self.run_tool("cert", "import", "old.crt", "--label", "alice", "--pin-env", "PIN")
        self.expect(self.examine(), "warning", "is expired")

    @unittest.skipUnless(FAULTY, "needs the libraries with faults")
    def test_libraries_that_crash_hang_or_print(self):
        provider = self.install("ORVEL_CRYPTO", QXSKFAPI="faulty-token")
        for code, fault, section, text in (
                (8, "abort when loaded", "libraries", "libQXSKFAPI.so ends the process in its initialisation"),
                (1, "abort in SKF_EnumDev", "tokens", "ends the process in SKF_EnumDev"),
                (1, "hang in SKF_EnumDev", "tokens", "does not return from SKF_EnumDev"),
                (0, "locked PIN", "tokens", "it is locked"),
                (0, "output", "tokens", "it has no application")):
            with self.subTest(fault=fault):
                report = self.examine("--provider", provider, code=code, TEMBRA_TEST_FAULT=fault)
                self.expect(report, "failure" if code else "warning", text, section)
                self.assertTrue(self.findings(report, "settings"))


if __name__ == "__main__":
    unittest.main()
