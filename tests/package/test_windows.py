"""The MSI and the archives for Windows, under Wine."""

import re
import subprocess

from packages import DEFAULTS, PACKAGES, ROOT, VERSION, PackageTest, digests, files

ARCHIVE = PACKAGES / f"TembraKeyProv-{VERSION}-windows-x64.zip"
KIT_ARCHIVE = PACKAGES / f"tembra-devkit-{VERSION}-windows-x64.zip"
MSI = PACKAGES / f"TembraKeyProv-{VERSION}-x64.msi"
MAKE_WXS = ROOT / "packaging/windows/make_wxs.py"
PREFIX = ROOT / "build/wine-package"  # what is installed here meets no other test
PROGRAM = PREFIX / "drive_c/Program Files/TembraKeyProv"
REGISTRY_KEY = r"HKLM\Software\ORVEL\PKI\Devices\TembraKey"
PROVIDER_FILES = {
    "bin/TembraKeyProv.dll", "bin/tembrakey.exe", "lib/libTembraKeyProv.dll.a",
    "include/tembra_key_prov.h", "include/tembra_key_prov_entry_points.h", "tembra_key_prov.reg",
    "doc/README.md", "doc/docs/host-guide.md", "lib/cmake/TembraKeyProv/TembraKeyProvConfig.cmake",
}
KIT_FILES = {"QXSKFAPI.dll", "ORVEL_CRYPTO.dll", "tembra-devkit.cmd", "include/tembra_soft_token.h",
             "include/tembra_devkit_faults.h", "doc/development-kit.md"}


def windows_path(path):
    return "Z:" + str(path).replace("/", "\\")


class WindowsTest(PackageTest):
    def setUp(self):
        super().setUp()
        self.environment["WINEPREFIX"] = str(PREFIX)
        for name in ("TEMBRA_SOFT_TOKEN_DIR", "TEMBRA_KEY_PROV_LOG_PATH"):
            self.environment[name] = windows_path(self.environment[name])
        for archive in (ARCHIVE, KIT_ARCHIVE):
            self.run_command("unzip", "-q", archive)
        self.provider = self.folder / ARCHIVE.stem
        self.kit = self.folder / KIT_ARCHIVE.stem

    def wine(self, *command, **options):
        return self.run_command(ROOT / "scripts/wine", *command, **options)

    def with_kit(self, program):
        return [ROOT / "scripts/wine", "cmd", "/c", windows_path(self.kit / "tembra-devkit.cmd"),
                windows_path(program)]


class Msi(WindowsTest):
    def registry(self):
        """The values as Windows has them, or nothing when there is no such key."""
        done = subprocess.run([ROOT / "scripts/wine", "reg", "query", REGISTRY_KEY], env=self.environment,
                              stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, text=True, check=False)
        return {name: int(value, 16)
                for name, value in re.findall(r"^\s+(\w+)\s+REG_DWORD\s+0x(\w+)", done.stdout, re.MULTILINE)}

    def msiexec(self, action, msi=MSI):
        self.wine("msiexec", action, windows_path(msi), "/qn")

    def install(self):
        if PROGRAM.exists():  # an earlier run was interrupted
            self.msiexec("/x")
        self.assertEqual(self.registry(), {})
        self.msiexec("/i")
        self.addCleanup(lambda: PROGRAM.exists() and self.msiexec("/x"))
        self.assertEqual(digests(PROGRAM), digests(self.provider))
        self.assertEqual(self.registry(), DEFAULTS)

    def newer(self):
        """A package of the same files that is a version ahead."""
        version = re.sub(r"\d+$", lambda last: str(int(last[0]) + 1), VERSION)
        (self.folder / "newer.wxs").write_text(self.run_command(MAKE_WXS, self.provider, version), "utf-8")
        self.run_command("sh", "-c", f"cd {self.provider.name} && wixl --arch x64 --output ../newer.msi ../newer.wxs")
        return self.folder / "newer.msi"

    def test_installs_works_and_removes(self):
        self.install()
        self.check_tool(self.with_kit(PROGRAM / "bin/tembrakey.exe"))
        self.check_settings_found()

        self.msiexec("/x")
        self.assertFalse(PROGRAM.exists())
        self.assertEqual(self.registry(), {})

    def test_an_upgrade_keeps_the_settings(self):
        self.install()
        changed = {**DEFAULTS, "HasSM4": 1, "MaxOperationLen": 0xffffffff}
        for name, value in changed.items():
            self.wine("reg", "add", REGISTRY_KEY, "/v", name, "/t", "REG_DWORD", "/d", value, "/f")
        newer = self.newer()
        for msi in (MSI, newer):
            self.msiexec("/i", msi)
            self.assertEqual(self.registry(), changed)
        self.addCleanup(lambda: PROGRAM.exists() and self.msiexec("/x", newer))
        self.assertEqual(digests(PROGRAM), digests(self.provider))
        self.msiexec("/x", newer)
        self.assertFalse(PROGRAM.exists())
        self.assertEqual(self.registry(), {})

    def test_is_for_64_bit_and_all_users(self):
        self.assertIn("x64", self.run_command("msiinfo", "suminfo", MSI))
        properties = self.run_command("msiinfo", "export", MSI, "Property")
        self.assertIn("ALLUSERS\t1", properties)
        self.assertIn(f"ProductVersion\t{VERSION}", properties)


class Archive(WindowsTest):
    def test_holds_the_provider_and_the_kit_apart(self):
        self.assertLessEqual(PROVIDER_FILES, files(self.provider))
        self.assertLessEqual(KIT_FILES, files(self.kit))
        self.assertFalse({"QXSKFAPI.dll", "ORVEL_CRYPTO.dll"} & {path.split("/")[-1] for path in files(self.provider)})
        self.wine(windows_path(self.provider / "bin/tembrakey.exe"), "list", expect=1)
        self.check_links(self.provider / "doc")

    def test_settings_go_into_the_registry(self):
        self.wine("reg", "import", windows_path(self.provider / "tembra_key_prov.reg"))
        self.assertIn("MaxOperationLen    REG_DWORD    0x400", self.wine("reg", "query", REGISTRY_KEY))
        self.wine("reg", "delete", REGISTRY_KEY, "/f")

    def test_host_by_find_package(self):
        self.build_host(f"-DCMAKE_TOOLCHAIN_FILE={ROOT}/cmake/mingw-w64.cmake",
                        f"-DTembraKeyProv_DIR={self.provider}/lib/cmake/TembraKeyProv")
        # Windows finds DLLs beside the program, or on the path.
        self.environment["WINEPATH"] = windows_path(self.provider / "bin")
        self.check_host(self.with_kit(self.provider / "bin/tembrakey.exe"),
                        self.with_kit(self.folder / "build/host.exe"))
