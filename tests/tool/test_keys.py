"""Key pairs, signatures and certificates."""
import unittest

from command_line import CommandTest, openssl, read, write

ALGORITHMS = (("sm2", 256), ("rsa", 1024), ("rsa", 2048))
DIGESTS = {"sm2": ("-sm3", "-sigopt", "distid:1234567812345678"), "rsa": ("-sha256",)}


class Keys(CommandTest):
    def verify(self, public, algorithm, signature, content, options=None):
        write("signature", signature)
        write("content", content)
        openssl("dgst", *(options or DIGESTS[algorithm]), "-verify", public, "-signature",
                "signature", "content")

    def test_signatures_hold_in_openssl(self):
        for number, (algorithm, bits) in enumerate(ALGORITHMS):
            label = f"key {number}"
            public = self.make_key(label, algorithm, bits)
            for content in (b"", b"a letter\n", bytes(range(256)) * 5000):
                with self.subTest(algorithm=algorithm, bits=bits, size=len(content)):
                    sign = ("sign", "-", "--label", label, "--pin-env", "PIN")
                    self.run_tool(*sign, "--out", "out.sig", stdin=content)
                    self.verify(public, algorithm, read("out.sig"), content)
                    printed = self.run_tool(*sign, stdin=content)
                    self.verify(public, algorithm, bytes.fromhex(printed.decode()), content)
                    self.run_tool("verify", "content", "--signature", write("printed", printed),
                                  "--label", label)
        listed = self.run_json("list")["devices"][0]
        self.assertEqual([(pair["label"], pair["type"], pair["algorithm"], pair["bits"])
                          for pair in listed["keyPairs"]],
                         [(f"key {i}", "sign", *ALGORITHMS[i]) for i in range(3)])
        self.assertEqual((listed["serial"], listed["label"]), ("AAAA0001", "Test"))

    def test_the_signer_has_an_identity(self):
        public = self.make_key("alice")
        write("letter", b"text")
        self.run_tool("sign", "letter", "--label", "alice", "--signer-id", "alice@example.com",
                      "--pin-env", "PIN", "--out", "sig")
        self.verify(public, "sm2", read("sig"), b"text",
                    ("-sm3", "-sigopt", "distid:alice@example.com"))
        for code, signer in ((0, "alice@example.com"), (11, "alice@example.org")):
            self.run_tool("verify", "letter", "--signature", "sig", "--key", public, "--signer-id", signer, code=code)

    def test_what_openssl_signed_is_told_from_what_it_did_not(self):
        for algorithm, new in (("sm2", ("ec", "-pkeyopt", "ec_paramgen_curve:SM2")), ("rsa", ("rsa:2048",))):
            openssl("req", "-x509", "-newkey", *new, "-nodes", "-keyout", "own.key", "-out", "own.crt",
                    "-subj", "/CN=Own")
            signature = openssl("dgst", *DIGESTS[algorithm], "-sign", "own.key", stdin=b"text")
            changed = signature[:-1] + bytes([signature[-1] ^ 1])
            for code, given, text in ((0, signature, b"text"), (11, changed, b"text"), (11, signature, b"test")):
                self.run_tool("verify", "-", "--signature", write("given", given), "--cert", "own.crt",
                              code=code, stdin=text)

    def test_labels_may_be_chinese_and_are_unique_until_deleted(self):
        label = "\u5f20\u4e09 \u7684\u5bc6\u94a5"
        self.make_key(label)
        generate = ("key", "generate", "--label", label, "--pin-env", "PIN")
        self.run_tool(*generate, code=6)
        self.run_tool("key", "delete", "--label", label, "--yes", "--pin-env", "PIN")
        self.run_tool("key", "export", "--label", label, code=3)
        self.run_tool(*generate)

    def test_certificates_come_back_as_they_went(self):
        openssl("req", "-x509", "-newkey", "rsa:2048", "-nodes", "-keyout", "ca.key", "-out",
                "ca.crt", "-subj", "/CN=Example CA")
        public = self.make_key("alice")
        for number, subject in enumerate(("/CN=Alice/O=Example", "/CN=\u674e\u56db")):
            with self.subTest(subject=subject):
                openssl("req", "-new", "-utf8", "-key", "ca.key", "-subj", subject, "-out", "csr")
                openssl("x509", "-req", "-in", "csr", "-CA", "ca.crt", "-CAkey", "ca.key",
                        "-force_pubkey", public, "-set_serial", "7", "-out", "alice.crt")
                der = openssl("x509", "-in", "alice.crt", "-outform", "DER")
                given = "alice.crt" if number == 0 else write("alice.der", der)
                self.run_tool("cert", "import", given, "--label", "alice", "--pin-env", "PIN")
                self.run_tool("cert", "export", "--label", "alice", "--der", "--out", "out.der")
                self.assertEqual(read("out.der"), der)
                pem = self.run_tool("cert", "export", "--label", "alice")
                self.assertEqual(openssl("x509", "-outform", "DER", stdin=pem), der)
                name = subject.split("=")[1].split("/")[0]
                self.assertIn(name, self.run_tool("list").decode())
                shown = self.run_json("cert", "show", "--label", "alice")
                self.assertEqual((shown["issuer"], shown["serial"], shown["matchesKey"]), ("CN=Example CA", "07", True))
                dates = openssl("x509", "-in", "alice.crt", "-noout", "-enddate", "-dateopt", "iso_8601").decode()
                self.assertIn(shown["notAfter"], dates)
                self.assertIn(shown["notAfter"], self.run_tool("list", "--long").decode())
        self.run_tool("cert", "import", "ca.crt", "--label", "alice", "--pin-env", "PIN", code=2)
        write("noise", b"\x30\x82\x01\x00 no certificate")
        self.run_tool("cert", "import", "noise", "--label", "alice", "--pin-env", "PIN", code=2)


if __name__ == "__main__":
    unittest.main()
