"""The Debian packages and the archives for Linux; and that the same sources give the same packages."""

import os
import re
import subprocess
import tarfile

from packages import DEFAULTS, EXAMPLE, PACKAGES, ROOT, VERSION, PackageTest, digests, files

ARCHIVE = PACKAGES / f"tembra-key-prov-{VERSION}-linux-x86_64.tar.gz"
KIT_ARCHIVE = PACKAGES / f"tembra-devkit-{VERSION}-linux-x86_64.tar.gz"
PROVIDER_FILES = {
    "bin/tembrakey", "lib/libTembraKeyProv.so", "include/tembra_key_prov.h",
    "include/tembra_key_prov_entry_points.h", "lib/pkgconfig/tembra-key-prov.pc",
    "lib/cmake/TembraKeyProv/TembraKeyProvConfig.cmake",
    "lib/cmake/TembraKeyProv/TembraKeyProvConfigVersion.cmake",
    "share/man/man1/tembrakey.1", "share/man/zh_CN/man1/tembrakey.1",
    "share/bash-completion/completions/tembrakey", "share/zsh/site-functions/_tembrakey",
    "share/fish/vendor_completions.d/tembrakey.fish", "share/tembra-key-prov/tembra_key_prov.reg",
    "share/doc/tembra-key-prov/README.md", "share/doc/tembra-key-prov/docs/host-guide.md",
}
KIT_FILES = {
    "bin/tembra-devkit", "lib/tembra-devkit/libQXSKFAPI.so", "lib/tembra-devkit/libORVEL_CRYPTO.so",
    "include/tembra_soft_token.h", "include/tembra_devkit_faults.h",
    "share/doc/tembra-devkit/development-kit.md",
}


def in_debian(path):
    """Where the Debian package has, below /usr, what the archive has here."""
    return path.replace("zsh/site-functions", "zsh/vendor-completions")


def deb(name):
    return next(PACKAGES.glob(f"{name}_{VERSION}_*.deb"))


class Debian(PackageTest):
    def setUp(self):
        super().setUp()
        self.system = self.folder / "system"
        (self.system / "var/lib/dpkg/updates").mkdir(parents=True)
        (self.system / "var/lib/dpkg/info").mkdir()
        (self.system / "var/lib/dpkg/status").touch()
        self.environment["PATH"] = f"{self.system}/usr/bin:{self.environment['PATH']}:/usr/sbin:/sbin"

    def dpkg(self, *arguments):
        """dpkg on a system of its own, where nothing else is installed."""
        as_root = [] if os.geteuid() == 0 else ["fakeroot"]
        return self.run_command(*as_root, "dpkg", f"--root={self.system}", "--force-depends",
                                "--force-script-chrootless", "--log=/dev/null", *arguments)

    def install(self, *names):
        self.dpkg("--install", *map(deb, names))

    def installed(self):
        return {path for path in files(self.system) if not path.startswith("var/")}

    def test_installs_and_removes(self):
        self.install("tembra-key-prov", "tembra-devkit")
        expected = {f"usr/{in_debian(path)}" for path in PROVIDER_FILES | KIT_FILES} | {"etc/tembra_key_prov.reg"}
        self.assertLessEqual(expected, self.installed())
        self.assertEqual(self.dpkg("--verify"), "")

        settings = self.system / "etc/tembra_key_prov.reg"
        settings.write_text(settings.read_text() + "; changed\n")
        self.dpkg("--remove", "tembra-key-prov", "tembra-devkit")
        self.assertEqual(self.installed(), {"etc/tembra_key_prov.reg"})
        self.dpkg("--purge", "tembra-key-prov")
        self.assertEqual(self.installed(), set())

    def test_first_signature(self):
        self.install("tembra-key-prov", "tembra-devkit")
        # The README's commands for a newcomer, word for word.
        readme = (ROOT / "README.md").read_text("utf-8")
        block = re.search(r"The first signature:\n\n```\n(.*?)```", readme, re.DOTALL)
        self.assertIn("Verified OK", self.run_command("bash", "-euc", block[1]))

    def test_names_what_it_needs(self):
        for name in ("tembra-key-prov", "tembra-devkit"):
            needed = self.run_command("dpkg-deb", "--field", deb(name), "Depends")
            for library in ("libc6", "libgcrypt20", "libstdc++6"):
                self.assertIn(library, needed)

    def test_keeps_the_kit_apart(self):
        for name in ("tembra-key-prov", "tembra-devkit"):
            self.install(name)
            self.assertIn("libQXSKFAPI.so", self.run_command("tembrakey", "list", expect=1))
        advice = self.run_command("tembrakey", "doctor", expect=1)
        for library in ("libQXSKFAPI.so", "libORVEL_CRYPTO.so"):
            self.assertIn(f"copy {library}, with everything that it needs itself, to ", advice)
        self.assertIn("failures: 0", self.run_command("tembra-devkit", "tembrakey", "doctor"))

    def test_host_by_pkg_config(self):
        self.install("tembra-key-prov", "tembra-devkit")
        self.environment["PKG_CONFIG_PATH"] = str(self.system / "usr/lib/pkgconfig")
        self.assertEqual(self.run_command("pkg-config", "--modversion", "tembra-key-prov").strip(), VERSION)
        flags = self.run_command("pkg-config", "--cflags", "--libs", "tembra-key-prov").split()
        self.run_command("cc", "-std=c11", "-Wall", "-Werror", EXAMPLE, "-o", "host", *flags)
        self.environment["LD_LIBRARY_PATH"] = str(self.system / "usr/lib")
        self.check_host(["tembra-devkit", "tembrakey"], ["tembra-devkit", self.folder / "host"])


class Archive(PackageTest):
    def setUp(self):
        super().setUp()
        for archive in (ARCHIVE, KIT_ARCHIVE):
            self.run_command("tar", "-xzf", archive)
        self.provider = self.folder / ARCHIVE.name.removesuffix(".tar.gz")
        self.kit = self.folder / KIT_ARCHIVE.name.removesuffix(".tar.gz")

    def test_holds_what_the_debian_package_holds(self):
        for name, folder, expected in (("tembra-key-prov", self.provider, PROVIDER_FILES),
                                       ("tembra-devkit", self.kit, KIT_FILES)):
            self.assertLessEqual(expected, files(folder))
            self.run_command("dpkg-deb", "-x", deb(name), name)
            unpacked = digests(self.folder / name / "usr")
            for path, digest in digests(folder).items():
                self.assertEqual(unpacked.get(in_debian(path)), digest, path)

    def test_tells_nothing_of_the_machine(self):
        for archive in (ARCHIVE, KIT_ARCHIVE):
            with tarfile.open(archive) as opened:
                members = opened.getmembers()
            self.assertEqual({(one.uid, one.gid, one.uname, one.gname) for one in members}, {(0, 0, "root", "root")})
            self.assertEqual(len({one.mtime for one in members}), 1)
        home = str(PACKAGES.parents[1]).encode()
        for folder in (self.provider, self.kit):
            for path in files(folder):
                self.assertNotIn(home, (folder / path).read_bytes(), path)

    def test_describes_itself(self):
        for folder, text in (("man", "SYNOPSIS"), ("man/zh_CN", "证书")):
            self.assertIn(text, (self.provider / "share" / folder / "man1/tembrakey.1").read_text("utf-8"))
        self.environment["PATH"] = f"{self.provider}/bin:{self.environment['PATH']}"
        for shell, path in (("bash", "bash-completion/completions/tembrakey"), ("zsh", "zsh/site-functions/_tembrakey"),
                            ("fish", "fish/vendor_completions.d/tembrakey.fish")):
            self.assertEqual((self.provider / "share" / path).read_text(), self.run_command("tembrakey", "completion", shell))

    def test_documents_lead_to_each_other(self):
        self.check_links(self.provider / "share/doc")

    def test_settings_are_the_defaults(self):
        text = (self.provider / "share/tembra-key-prov/tembra_key_prov.reg").read_text()
        for name, value in DEFAULTS.items():
            self.assertIn(f'"{name}"=dword:{value:08x}\n', text)
        self.environment["TEMBRA_KEY_PROV_REGISTRY"] = str(
            self.provider / "share/tembra-key-prov/tembra_key_prov.reg")
        self.run_command(self.kit / "bin/tembra-devkit", self.provider / "bin/tembrakey", "list")
        self.check_settings_found()

    def test_host_by_find_package(self):
        self.build_host(f"-DCMAKE_PREFIX_PATH={self.provider}")
        kit = self.kit / "bin/tembra-devkit"
        self.check_host([kit, self.provider / "bin/tembrakey"], [kit, self.folder / "build/host"])


class Repeated(PackageTest):
    def test_has_the_same_bytes(self):
        first = digests(PACKAGES)
        self.assertEqual(len(first), 7)
        # Another place, another time and other habits.
        subprocess.run([ROOT / "scripts/package"], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                       cwd="/", env={**os.environ, "TZ": "Asia/Shanghai", "LC_ALL": "C"}, umask=0o077)
        again = digests(PACKAGES)
        self.assertEqual([name for name in first if again.get(name) != first[name]], [])
