"""What could harm a user: overwritten files, lost questions, PINs in traces, text that steers a terminal."""
import os
import pty
import stat
import subprocess
import unittest

from command_line import IS_WINDOWS, PINS, TOOL, CommandTest, read, write

CIPHER = ("--algo", "sm4-ecb", "--key-hex", "00112233445566778899aabbccddeeff")


class Safety(CommandTest):
    def mode(self, path):
        return stat.S_IMODE(os.stat(path).st_mode)

    def at_terminal(self, *arguments, answers=(), **options):
        """Runs the tool with a controlling terminal; returns its exit code and what appeared there."""
        def give_terminal():
            os.setsid()
            os.close(os.open(os.ttyname(terminal), os.O_RDWR))

        user, terminal = pty.openpty()
        process = subprocess.Popen([*TOOL, *arguments], preexec_fn=give_terminal, env=self.environment,
                                   stderr=terminal, **{"stdin": terminal, "stdout": terminal, **options})
        os.close(terminal)
        shown = b""
        for prompt, answer in answers:
            while prompt not in shown:
                shown += os.read(user, 1024)
            os.write(user, answer + b"\n")
        try:
            while more := os.read(user, 1024):
                shown += more
        except OSError:  # the end of a terminal
            pass
        os.close(user)
        return process.wait(timeout=60), shown

    def test_destroying_needs_consent(self):
        self.make_key("alice")
        self.run_tool("data", "create", "7", "--size", "4", "--pin-env", "PIN")
        for command in (("key", "delete", "--label", "alice", "--pin-env", "PIN"),
                        ("data", "delete", "7", "--pin-env", "PIN"), ("token", "remove", "AAAA0001")):
            with self.subTest(command=command):
                self.run_tool(*command, code=2)
                self.assertIn("--yes", self.stderr)
                if not IS_WINDOWS:
                    self.assertEqual(self.at_terminal(*command, answers=[(b"[y/N]", b"n")])[0], 1)
                    self.assertEqual(self.at_terminal(*command, stdin=subprocess.DEVNULL)[0], 2)
        self.run_tool("key", "export", "--label", "alice")
        self.run_tool("data", "delete", "7", "--yes", "--pin-env", "PIN")

    @unittest.skipIf(IS_WINDOWS, "needs a pseudo-terminal")
    def test_the_prompt_names_pin_and_token_and_does_not_need_standard_input(self):
        question = b"User PIN of Test (AAAA0001): "
        for options in ({}, {"stdin": subprocess.DEVNULL}):
            code, shown = self.at_terminal("key", "generate", "--label", f"k{len(options)}",
                                           answers=[(question, PINS["PIN"].encode())], **options)
            self.assertEqual(code, 0, shown)
            self.assertNotIn(PINS["PIN"].encode(), shown)

    @unittest.skipIf(IS_WINDOWS, "needs a pseudo-terminal")
    def test_binary_output_stays_off_terminals(self):
        write("plain", bytes(16))
        self.assertEqual(self.at_terminal("encrypt", "plain", *CIPHER)[0], 2)
        self.assertEqual(self.at_terminal("encrypt", "plain", *CIPHER, "--out", "-")[0], 0)

    def test_inputs_are_not_overwritten(self):
        write("plain", bytes(16))
        for output in ("plain", "./plain"):
            self.run_tool("encrypt", "plain", *CIPHER, "--out", output, code=2)
        self.assertEqual(read("plain"), bytes(16))

    @unittest.skipIf(IS_WINDOWS, "modes and links are those of Linux")
    def test_files_have_the_mode_that_fits(self):
        os.umask(0o022)
        self.make_key("alice")
        self.assertEqual(self.mode("alice.pem"), 0o644)
        self.run_tool("random", "8", "--out", "secret")
        self.assertEqual(self.mode("secret"), 0o600)
        os.chmod("secret", 0o640)
        os.symlink("secret", "link")
        self.run_tool("random", "9", "--out", "link")
        self.assertEqual((self.mode("secret"), len(read("secret")), os.path.islink("link")), (0o640, 9, True))

    @unittest.skipIf(IS_WINDOWS, "descriptors are those of Linux")
    def test_closed_streams_do_not_become_files(self):
        write("file", b"text")
        for stream, command in ((1, ("random", "4")), (0, ("hash", "-")), (2, ("hash", "missing"))):
            done = subprocess.run(["sh", "-c", f'"$@" {stream}>&-', "sh", *TOOL, *command], env=self.environment,
                                  capture_output=True, check=False)
            self.assertEqual(done.returncode, 9)

    def test_control_characters_are_shown_as_such(self):
        self.run_tool("key", "generate", "--label", "a\x1b[31mb\u0085c", "--pin-env", "PIN")
        for language in ("C.UTF-8", "zh_CN.UTF-8"):
            self.assertIn(r"a\x1B[31mb\x85c", self.run_tool("list", LC_ALL=language).decode())
        self.run_tool("sign", "--label", "\x1b[31m", "alice.pem", code=3)
        self.assertNotIn("\x1b", self.stderr)

    @unittest.skipIf(IS_WINDOWS, "Wine chooses the temporary folder itself")
    def test_a_failure_leaves_a_private_trace_without_pins(self):
        os.mkdir("tmp")
        del self.environment["TEMBRA_KEY_PROV_LOG_LEVEL"]
        self.environment.pop("TEMBRA_KEY_PROV_LOG_PATH", None)
        folder = {name: f"{self.folder}/tmp" for name in ("TMPDIR", "TMP", "TEMP")}
        generate = ("key", "generate", "--label", "alice", "--pin-env")
        self.run_tool(*generate, "PIN", **folder)
        self.assertEqual(os.listdir("tmp"), [])
        self.run_tool(*generate, "WRONG", code=5, **folder)
        self.run_tool("random", "4", code=1, TEMBRA_SOFT_TOKEN_FAULTS="SKF_GenRandom:*=0x0A000030", **folder)
        self.assertIn("SKF_GenRandom returned 0x0A000030 (SAR_NO_ROOM", self.stderr)
        self.assertEqual(len(os.listdir("tmp")), 2)
        for name in os.listdir("tmp"):
            self.assertFalse([pin for pin in PINS.values() if pin.encode() in read(f"tmp/{name}")])
            self.assertEqual(self.mode(f"tmp/{name}"), 0o600)


if __name__ == "__main__":
    unittest.main()
