"""Hashing, enciphering and random numbers, against OpenSSL."""
import random
import unittest

from command_line import IS_WINDOWS, CommandTest, openssl, read, write

KEY = "00112233445566778899aabbccddeeff"
IV = "0f1e2d3c4b5a69788796a5b4c3d2e1f0"
MODES = {"sm4-ecb": (), "sm4-cbc": ("--iv", IV)}
LARGE = (1 if IS_WINDOWS else 64) << 20
SIZES = (0, 1, 15, 16, 17, 1008, 1024, 1040, 4096, 65552, 1_000_000)


def content(size):
    return random.Random(size).randbytes(size)


class Ciphers(CommandTest):
    def expect_cipher(self, mode, pad, size):
        write("plain", content(size))
        reference = ["enc", f"-{mode}", "-K", KEY, "-in", "plain", "-out", "reference"]
        reference += ["-iv", IV] if MODES[mode] else []
        openssl(*reference, *([] if pad else ["-nopad"]))
        options = ("--algo", mode, "--key-file", "key", *MODES[mode], *(["--pad"] if pad else []))
        self.run_tool("encrypt", "plain", *options, "--out", "cipher")
        self.assertEqual(read("cipher"), read("reference"))
        self.run_tool("decrypt", "cipher", *options, "--out", "again")
        self.assertEqual(read("again"), read("plain"))

    def test_sm4_agrees_with_openssl(self):
        write("key", bytes.fromhex(KEY))
        sizes = SIZES[::3] if IS_WINDOWS else SIZES
        for mode in MODES:
            for pad in (False, True):
                for size in sizes:
                    if pad or size % 16 == 0:
                        with self.subTest(mode=mode, pad=pad, size=size):
                            self.expect_cipher(mode, pad, size)
        self.expect_cipher("sm4-cbc", False, LARGE)

    def test_sm3_agrees_with_openssl(self):
        for size in (*(SIZES[::3] if IS_WINDOWS else SIZES), LARGE):
            with self.subTest(size=size):
                write("file", content(size))
                reference = openssl("dgst", "-sm3", "-r", "file").split()[0].decode()
                self.assertIn(reference, self.run_tool("hash", "file").decode().lower())

    def test_the_length_of_a_token_call_changes_nothing(self):
        write("file", content(100_000))
        write("key", KEY.encode() + b"\n")
        encrypt = ("encrypt", "file", "--key-file", "key", "--iv", IV, "--pad", "--out", "cipher")
        results = set()
        for most in (1, 16, 1000, 0x7fffffff, 0x80000000):
            self.settings(HasSM3=1, HasSM4=1, MaxOperationLen=most)
            self.run_tool(*encrypt)
            results.add((self.run_tool("hash", "file"), read("cipher")))
        self.assertEqual(len(results), 1)

    def test_what_cannot_be_enciphered_is_refused_and_leaves_no_file(self):
        write("file", content(17))
        for code, *options in ((2, "--iv", IV),  # 17 bytes without --pad
                               (2, "--pad"), (2, "--pad", "--iv", "00"),
                               (1, "--pad", "--iv", IV, "--algo", "sm1-cbc"),
                               (2, "--pad", "--iv", IV, "--key-hex", "0011")):
            key = [] if "--key-hex" in options else ["--key-hex", KEY]
            with self.subTest(options=options):
                self.run_tool("encrypt", "file", *key, *options, "--out", "out", code=code)
                self.assertRaises(FileNotFoundError, read, "out")
        write("torn", b"\0" * 32)
        self.run_tool("decrypt", "torn", "--key-hex", KEY, "--iv", IV, "--pad", "--out", "out", code=2)
        self.assertRaises(FileNotFoundError, read, "out")

    def test_random_numbers_have_their_length_and_differ(self):
        for length in (1, 16, 5000):
            self.run_tool("random", str(length), "--out", "random")
            self.assertEqual(len(read("random")), length)
        drawn = {self.run_tool("random", "16") for _ in range(3)}
        self.assertEqual(len(drawn), 3)

    def test_capabilities_follow_the_settings(self):
        for have in (0, 1):
            self.settings(HasSM3=have, HasSM4=have)
            rows = {(row["algorithm"], row["usage"]): row["supported"]
                    for row in self.run_json("caps")["capabilities"]}
            self.assertEqual(rows["SM3", "hash"], bool(have))
            self.assertEqual(rows["SM4-CBC", "encrypt"], bool(have))
            self.assertTrue(rows["SM2", "sign"])
            self.assertFalse(rows["SM1-ECB", "encrypt"])


if __name__ == "__main__":
    unittest.main()
