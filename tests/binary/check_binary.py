#!/usr/bin/env python3
"""Compares a built provider, ELF or PE, with what it may export, import and carry."""

import argparse
import os
import re
import subprocess
import sys

SYSTEM_LIBRARIES = {
    "elf": {"libc.so.6", "ld-linux-x86-64.so.2"},
    "pe": {"KERNEL32.dll", "ADVAPI32.dll", "msvcrt.dll"},
}
IMPORT_TABLES = {"QXSKFAPI": "skf_functions.h", "ORVEL_CRYPTO": "orvel_crypto_functions.h"}
SIZE_LIMIT = 128 * 1024

# Names of the C++ run-time: whatever is mangled, throws, unwinds or registers destructors.
CXX_RUNTIME = re.compile(r"^(_Z|__cxa_(?!finalize)|__gxx|_Unwind|__cxx)|GLIBCXX|CXXABI")


class Binary:
    def __init__(self, options):
        self.options = options
        self.path = options.binary
        with open(self.path, "rb") as file:
            self.bytes = file.read()
        self.format = "elf" if self.bytes.startswith(b"\x7fELF") else "pe"
        self.headers = self.run(options.objdump, "-p")

    def run(self, *command):
        return subprocess.run([*command, self.path], check=True, text=True, stdout=subprocess.PIPE,
                              stderr=subprocess.DEVNULL).stdout

    def exports(self):
        if self.format == "elf":
            lines = self.run(self.options.nm, "-D", "--defined-only").splitlines()
            return {line.split()[-1] for line in lines}
        table = self.headers.partition("[Ordinal/Name Pointer] Table")[2].partition("\n\n")[0]
        return set(re.findall(r"^\s*\[\s*\d+\] (?:\+base\[\s*\d+\]\s+\w+ )?(\w+)", table, re.M))

    def libraries(self):
        return set(re.findall(r"^\s*(?:NEEDED|DLL Name:)\s+(\S+)", self.headers, re.M))

    def imports(self):
        if self.format == "elf":
            lines = self.run(self.options.nm, "-D", "--undefined-only").splitlines()
            return {line.split()[-1].partition("@")[0] for line in lines}
        return set(re.findall(r"^\t[0-9a-f]+\t\s*\d+\s+(\w+)$", self.headers, re.M))

    def sections(self):
        listing = self.run(self.options.objdump, "-h")
        return set(re.findall(r"^\s*\d+ (\S+)", listing, re.M))


def expect_equal(what, found, wanted):
    extra, missing = sorted(found - wanted), sorted(wanted - found)
    return [f"{what}: {name} should not be there" for name in extra] + [
        f"{what}: {name} is missing" for name in missing]


def expect(condition, complaint):
    return [] if condition else [complaint]


def names_in(options, path, pattern):
    with open(os.path.join(options.source_dir, path), encoding="utf-8") as file:
        return set(re.findall(pattern, file.read(), re.M))


def check_exports(binary):
    table = names_in(binary.options, "include/tembra_key_prov_entry_points.h",
                     r"^TEMBRA_ENTRY_POINT\(\w+, (\w+),")
    return expect(len(table) == 49, f"the table holds {len(table)} entry points, not 49") + \
        expect_equal("exports", binary.exports(), table)


def check_imports(binary):
    suffix = {"elf": "lib{}.so", "pe": "{}.dll"}[binary.format]
    ours = {suffix.format(library) for library in IMPORT_TABLES}
    libraries = binary.libraries()
    names = {name for name in binary.imports() if name.startswith(("SKF_", "OrvelPKICrypto"))}
    wanted = set().union(*(names_in(binary.options, f"src/platform/{table}",
                                    r"^TEMBRA_IMPORT\([^,]+, (\w+),")
                           for table in IMPORT_TABLES.values()))
    return expect_equal("libraries", libraries - SYSTEM_LIBRARIES[binary.format], ours) + \
        expect_equal("imports", names, wanted)


def check_runtime(binary):
    found = sorted(name for name in binary.imports() if CXX_RUNTIME.search(name))
    complaints = [f"uses {name} of the C++ run-time" for name in found]
    linked_in = [b"libstdc++", b"GLIBCXX", b"St9exception", b"bad_alloc"]
    return complaints + [f"carries {text.decode()}" for text in linked_in if text in binary.bytes]


def check_hardening(binary):
    if binary.format == "pe":
        return [f"{flag} is not set" for flag in ("HIGH_ENTROPY_VA", "DYNAMIC_BASE", "NX_COMPAT")
                if not re.search(rf"^\s+{flag}$", binary.headers, re.M)]
    stack = re.search(r"^\s+STACK .*\n.*flags (\S+)", binary.headers, re.M)
    return expect(re.search(r"^\s+RELRO ", binary.headers, re.M), "no RELRO segment") + \
        expect(re.search(r"^\s+FLAGS\s+0x0*8$", binary.headers, re.M), "not bound at load") + \
        expect(stack and stack.group(1) == "rw-", "the stack is executable") + \
        expect("flags rwx" not in binary.headers, "a segment is writable and executable") + \
        expect("TEXTREL" not in binary.headers, "has text relocations") + \
        expect(re.search(r"^\s+RUNPATH\s+\$ORIGIN$", binary.headers, re.M),
               "does not find its libraries beside itself") + \
        expect("__stack_chk_fail" in binary.imports(), "no stack protector")


def check_debug(binary):
    size = len(binary.bytes)
    complaints = expect(size < SIZE_LIMIT, f"{size} bytes, the limit is {SIZE_LIMIT}")
    inside = sorted(name for name in binary.sections() if name.startswith(".debug"))
    complaints += [f"carries {name}" for name in inside]
    complaints += expect(".gnu_debuglink" in binary.sections(), "no link to its debug information")
    binary.path += ".debug"
    return complaints + expect(".debug_info" in binary.sections(), "the .debug file is empty")


def check_version(binary):
    if binary.format == "elf":
        return expect(re.search(r"^\s+SONAME\s+libTembraKeyProv\.so$", binary.headers, re.M),
                      "another SONAME than libTembraKeyProv.so")
    texts = ("VS_VERSION_INFO", "FileDescription", binary.options.version)
    return [f"the version resource lacks {text}" for text in texts
            if text.encode("utf-16-le") not in binary.bytes]


def main():
    parser = argparse.ArgumentParser(description=__doc__)
    parser.add_argument("binary")
    for option in ("--source-dir", "--version", "--objdump", "--nm"):
        parser.add_argument(option, required=True)
    options = parser.parse_args()
    checks = (check_exports, check_imports, check_runtime, check_hardening, check_debug, check_version)
    complaints = [complaint for check in checks for complaint in check(Binary(options))]
    print("\n".join(complaints) or "as it should be")
    return 1 if complaints else 0


if __name__ == "__main__":
    sys.exit(main())
