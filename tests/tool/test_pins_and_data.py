"""PINs, logins and data objects."""
import unittest

from command_line import PINS, CommandTest, read, write


class Pins(CommandTest):
    def test_logins(self):
        for code, *arguments in (
                (0, "login", "--pin-env", "PIN"), (5, "login", "--pin-env", "WRONG"),
                (0, "login", "--so", "--pin-env", "SO"), (5, "login", "--so", "--pin-env", "WRONG"),
                (0, "login", "--device-auth", "--pin-env", "DEVICE_KEY"),
                (5, "login", "--device-auth", "--pin-env", "WRONG_KEY"),
                (1, "login", "--device-auth", "--pin-env", "PIN"),
                (0, "pin", "verify", "--pin-env", "PIN"), (10, "pin", "verify", "--pin-env", "SHORT"),
                (2, "login"), (2, "login", "--pin-env", "UNSET"), (2, "login", "--pin", "x"),
                (2, "login", "--pin-env", "PIN", "--pin-fd", "0")):
            with self.subTest(arguments=arguments):
                self.run_tool(*arguments, code=code, SHORT="1")

    def test_wrong_pins_lock_and_the_administrator_unblocks(self):
        before = self.run_json("pin", "retries")
        for left in range(before["user"] - 1, -1, -1):
            failure = self.run_json("pin", "verify", "--pin-env", "WRONG", code=5)
            self.assertIn(f"tries left: {left}" if left else "locked", failure["error"])
            self.assertEqual(self.run_json("pin", "retries")["user"], left)
        self.run_tool("login", "--pin-env", "PIN", code=5)
        self.run_tool("pin", "unblock", "--so-pin-env", "SO", "--new-pin-env", "NEW")
        self.run_tool("login", "--pin-env", "NEW")
        self.assertEqual(self.run_json("pin", "retries"), before)

    def test_pins_change_by_variable_and_by_descriptor(self):
        self.run_tool("pin", "change", "--pin-env", "WRONG", "--new-pin-env", "NEW", code=5)
        self.run_tool("pin", "change", "--pin-env", "PIN", "--new-pin-env", "NEW")
        both = f"{PINS['NEW']}\n{PINS['PIN']}\n".encode()
        self.run_tool("pin", "change", "--pin-fd", "0", "--new-pin-fd", "0", stdin=both)
        self.run_tool("login", "--pin-fd", "0", stdin=PINS["PIN"].encode() + b"\r\n")
        self.run_tool("pin", "change", "--so", "--pin-env", "SO", "--new-pin-env", "NEW")
        self.run_tool("login", "--so", "--pin-env", "NEW")


class Data(CommandTest):
    def test_objects_hold_what_was_written(self):
        pin = ("--pin-env", "PIN")
        self.run_tool("data", "create", "7", "--size", "3000", *pin)
        self.run_tool("data", "create", "7", "--size", "3000", *pin, code=6)
        expected = bytearray(3000)
        for offset, size in ((0, 3000), (2999, 1), (1000, 1500)):
            stretch = bytes((offset + i) % 251 for i in range(size))
            expected[offset:offset + size] = stretch
            self.run_tool("data", "write", "7", write("stretch", stretch), "--offset", str(offset), *pin)
        self.run_tool("data", "read", "7", "--out", "whole", *pin)
        self.assertEqual(read("whole"), expected)
        part = self.run_tool("data", "read", "7", "--offset", "990", "--length", "20", *pin)
        self.assertEqual(part, expected[990:1010])
        for offset, beyond in ((2999, b"ab"), (0, b""), (3000, b"a"), (2147483647, b"a")):
            self.run_tool("data", "write", "7", write("beyond", beyond), "--offset", str(offset), *pin,
                          code=1)
        self.run_tool("data", "delete", "7", "--yes", *pin)
        self.run_tool("data", "read", "7", *pin, code=7)

    def test_rights_decide(self):
        for number, (anyone, user, reads, writes, reads_after_login) in enumerate((
                ("none", "rw", 4, 4, 0), ("r", "rw", 0, 4, 0), ("rw", "rw", 0, 0, 0),
                ("none", "w", 1, 4, 1))):
            with self.subTest(anyone=anyone, user=user):
                name = str(number)
                self.run_tool("data", "create", name, "--size", "4", "--anyone", anyone, "--user", user,
                              "--pin-env", "PIN")
                self.run_tool("data", "read", name, code=reads)
                self.run_tool("data", "write", name, "-", stdin=b"abcd", code=writes)
                self.run_tool("data", "read", name, "--pin-env", "PIN", code=reads_after_login)


if __name__ == "__main__":
    unittest.main()
