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

    def test_what_cannot_be_enciphered_is_refused_and_leaves_no_file(self):
        write("file", content(17))
        write("torn", bytes(32))
        with_key, with_iv = ("--key-hex", KEY), ("--iv", IV)
        for code, *arguments in ((2, "encrypt", "file", *with_key, *with_iv),  # 17 bytes without --pad
                                 (2, "encrypt", "file", *with_key, "--pad"),
                                 (2, "encrypt", "file", *with_key, "--pad", "--iv", "00"),
                                 (1, "encrypt", "file", *with_key, "--pad", *with_iv, "--algo", "sm1-cbc"),
                                 (2, "encrypt", "file", "--key-hex", "0011", "--pad", *with_iv),
                                 (2, "decrypt", "torn", *with_key, "--pad", *with_iv)):
            with self.subTest(arguments=arguments):
                self.run_tool(*arguments, "--out", "out", code=code)
                self.assertRaises(FileNotFoundError, read, "out")

    def test_random_numbers_have_their_length_and_differ(self):
        drawn = {self.run_tool("random", "16").strip() for _ in range(3)}
        self.run_tool("random", "5000", "--out", "random")
        self.assertEqual((len(drawn), {len(one) for one in drawn}, len(read("random"))), (3, {32}, 5000))

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
