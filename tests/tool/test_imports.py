"""Encryption key pairs brought to the token; it decrypts what OpenSSL encrypted to them."""
import unittest

from command_line import IS_WINDOWS, CommandTest, openssl, read, write

KINDS = {"sm2": ("-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:SM2"),
         "rsa1024": ("-algorithm", "RSA", "-pkeyopt", "rsa_keygen_bits:1024"),
         "rsa2048": ("-algorithm", "RSA", "-pkeyopt", "rsa_keygen_bits:2048")}
PEMS = {"PRIVATE KEY": ("pkey",), "SM2 PRIVATE KEY": ("ec",),  # what OpenSSL 3 makes of EC PRIVATE KEY
        "EC PRIVATE KEY": ("ec",), "RSA PRIVATE KEY": ("rsa", "-traditional")}


class Imports(CommandTest):
    def container(self, kind, label="alice"):
        return self.make_key(label, kind[:3], kind[3:] or 256)

    def make_given(self, form, container):
        """Puts key.pem, in a form that the tool imports, into the file `given`."""
        if form in PEMS:
            pem = openssl(*PEMS[form], "-in", "key.pem")
            pem = pem.replace(b"SM2 PRIVATE", form.split()[0].encode() + b" PRIVATE")
            self.assertIn(f"BEGIN {form}".encode(), pem)
            write("given", pem)
        else:
            _, *options = form.split()
            self.run_tool("key", "envelope", "key.pem", "--to", container, *options, "--out", "given")

    def expect_decryption(self):
        exported = self.run_tool("key", "export", "--label", "alice", "--type", "encrypt")
        public = openssl("pkey", "-in", "key.pem", "-pubout", "-outform", "DER")
        self.assertEqual(openssl("pkey", "-pubin", "-pubout", "-outform", "DER", stdin=exported), public)
        for secret in (b"s", b"a session key of 32 bytes, or so"):
            write("public", exported)
            cipher = openssl("pkeyutl", "-encrypt", "-pubin", "-inkey", "public", stdin=secret)
            clear = self.run_tool("decrypt", "-", "--label", "alice", "--pin-env", "PIN", stdin=cipher)
            self.assertEqual(clear, secret)

    def test_every_form_under_every_setting(self):
        rows = [(kind, form, setting) for setting in (0, 1)
                for kind in (("sm2", "rsa1024") if IS_WINDOWS else KINDS)
                for form in ("PRIVATE KEY", "enveloped", "enveloped --gdk")
                if "--gdk" not in form or kind == "sm2"]
        if not IS_WINDOWS:  # where files are the same
            rows += [("sm2", "SM2 PRIVATE KEY", 0), ("sm2", "EC PRIVATE KEY", 0),
                     ("rsa1024", "RSA PRIVATE KEY", 0)]
        for kind, form, setting in rows:
            with self.subTest(kind=kind, form=form, setting=setting):
                self.settings(HasSM4=1, SupportGDKMSM2Import=setting)
                openssl("genpkey", *KINDS[kind], "-out", "key.pem")
                self.make_given(form, self.container(kind))
                self.run_tool("key", "import", "given", "--label", "alice", "--pin-env", "PIN")
                self.expect_decryption()
                self.run_tool("key", "delete", "--label", "alice", "--yes", "--pin-env", "PIN")

    def test_what_does_not_belong_together_is_refused(self):
        mine, other = self.container("sm2"), self.container("sm2", "bob")
        openssl("genpkey", *KINDS["sm2"], "-out", "key.pem")
        openssl("genpkey", *KINDS["rsa1024"], "-out", "rsa.pem")
        openssl("genpkey", "-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:P-256", "-out", "p256.pem")
        openssl("pkey", "-in", "key.pem", "-aes128", "-passout", "pass:x", "-out", "locked.pem")
        self.make_given("enveloped", other)
        bring = ("key", "import", "--pin-env", "PIN", "--label")
        for code, file, label in ((1, "given", "alice"), (1, "rsa.pem", "alice"), (2, "locked.pem", "alice"),
                                  (2, "p256.pem", "alice"), (3, "key.pem", "carol")):
            self.run_tool(*bring, label, file, code=code)
        self.make_given("enveloped", mine)
        blob = read("given")
        for at in (0, 9, 20, len(blob) // 2, len(blob) - 1):
            for broken in (blob[:at], blob[:at] + bytes([blob[at] ^ 0x5A]) + blob[at + 1:]):
                self.run_tool(*bring, "alice", write("broken", broken), code=2 if at == 0 else 1)
        self.run_tool("key", "import", "--label", "alice", "given", code=4)
        self.run_tool(*bring, "alice", "given")
        self.expect_decryption()


if __name__ == "__main__":
    unittest.main()
