"""Encryption key pairs brought to the token; it decrypts what OpenSSL encrypted to them."""
import unittest

from command_line import IS_WINDOWS, CommandTest, openssl, read, write

KINDS = {"sm2": ("-algorithm", "EC", "-pkeyopt", "ec_paramgen_curve:SM2"),
         "rsa1024": ("-algorithm", "RSA", "-pkeyopt", "rsa_keygen_bits:1024"),
         "rsa2048": ("-algorithm", "RSA", "-pkeyopt", "rsa_keygen_bits:2048")}
FORMS = {"plain": (), "enveloped": (), "enveloped --gdk": ("--gdk",)}


class Imports(CommandTest):
    def container(self, kind, label="alice"):
        algorithm, bits = kind[:3], kind[3:] or "256"
        return self.make_key(label, algorithm, bits)

    def import_key(self, kind, form):
        """Makes a key pair and a container, and brings the one into the other."""
        container = self.container(kind)
        openssl("genpkey", *KINDS[kind], "-out", "key.pem")
        given = "key.pem"
        if form != "plain":
            given = "blob"
            self.run_tool("key", "envelope", "key.pem", "--to", container, *FORMS[form], "--out", given)
        self.run_tool("key", "import", given, "--label", "alice", "--pin-env", "PIN")

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
        kinds = ("sm2", "rsa1024") if IS_WINDOWS else KINDS
        for setting in (0, 1):
            self.settings(HasSM4=1, SupportGDKMSM2Import=setting)
            for kind in kinds:
                for form in FORMS:
                    if "--gdk" not in form or kind == "sm2":
                        with self.subTest(kind=kind, form=form, setting=setting):
                            self.import_key(kind, form)
                            self.expect_decryption()
                            self.run_tool("key", "delete", "--label", "alice", "--pin-env", "PIN")

    def test_every_pem_of_a_private_key(self):
        openssl("genpkey", *KINDS["sm2"], "-out", "sm2.pem")
        openssl("genpkey", *KINDS["rsa1024"], "-out", "rsa.pem")
        sec1 = openssl("ec", "-in", "sm2.pem")
        pkcs1 = openssl("rsa", "-in", "rsa.pem", "-traditional")
        self.assertIn(b"BEGIN SM2 PRIVATE KEY", sec1)  # what OpenSSL 3 makes of EC PRIVATE KEY
        self.assertIn(b"BEGIN RSA PRIVATE KEY", pkcs1)
        for kind, pem in (("sm2", sec1), ("sm2", sec1.replace(b"SM2 PRIVATE", b"EC PRIVATE")),
                          ("rsa1024", pkcs1)):
            with self.subTest(pem=pem[:30]):
                self.container(kind)
                write("key.pem", pem)
                self.run_tool("key", "import", "key.pem", "--label", "alice", "--pin-env", "PIN")
                self.expect_decryption()
                self.run_tool("key", "delete", "--label", "alice", "--pin-env", "PIN")

    def test_what_does_not_belong_together_is_refused(self):
        mine, other = self.container("sm2"), self.container("sm2", "bob")
        openssl("genpkey", *KINDS["sm2"], "-out", "key.pem")
        openssl("genpkey", *KINDS["rsa1024"], "-out", "rsa.pem")
        openssl("pkey", "-in", "key.pem", "-aes128", "-passout", "pass:x", "-out", "locked.pem")
        envelope = ("key", "envelope", "key.pem", "--out", "blob", "--to")
        bring = ("key", "import", "--label", "alice")
        self.run_tool(*envelope, other)
        self.run_tool(*bring, "blob", "--pin-env", "PIN", code=1)  # for another container
        self.run_tool(*bring, "rsa.pem", "--pin-env", "PIN", code=1)
        self.run_tool(*bring, "locked.pem", "--pin-env", "PIN", code=2)
        self.run_tool("key", "import", "key.pem", "--label", "carol", "--pin-env", "PIN", code=3)
        self.run_tool(*envelope, mine)
        blob = read("blob")
        for at in (0, 9, 20, len(blob) // 2, len(blob) - 1):
            for broken in (blob[:at], blob[:at] + bytes([blob[at] ^ 0x5A]) + blob[at + 1:]):
                write("broken", broken)
                self.run_tool(*bring, "broken", "--pin-env", "PIN", code=2 if at == 0 else 1)
        self.run_tool(*bring, "blob", code=4)
        self.run_tool(*bring, "blob", "--pin-env", "PIN")
        self.expect_decryption()


if __name__ == "__main__":
    unittest.main()
