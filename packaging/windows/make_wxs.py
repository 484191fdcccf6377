#!/usr/bin/env python3
"""Writes the description of the MSI from the folder of what it installs: make_wxs.py FOLDER VERSION.
wixl takes it in that folder.

Every identifier follows from a file's path, or from the version, so that the same folder gives the
same package and an upgrade recognises its files.
"""

import sys
import uuid
from pathlib import Path
from xml.sax.saxutils import quoteattr

SPACE = uuid.UUID("6f1c7f0e-5a63-4d0c-9d5b-1f2f5d3c8a41")  # of this product alone, for ever
REGISTRY_KEY = r"Software\ORVEL\PKI\Devices\TembraKey"


def guid(name):
    return str(uuid.uuid5(SPACE, name)).upper()


def identifier(path):
    return "x" + uuid.uuid5(SPACE, f"id:{path}").hex


def attributes(**values):
    return " ".join(f"{name}={quoteattr(str(value))}" for name, value in values.items())


class Description:
    def __init__(self, folder):
        self.folder = folder
        self.properties = []
        self.lines = []
        self.components = []

    def component(self, name, content):
        self.components.append(identifier(name))
        self.lines += [f"<Component {attributes(Id=identifier(name), Guid=guid(name), Win64='yes')}>",
                       content, "</Component>"]

    def directory(self, folder):
        for path in sorted(folder.iterdir()):
            name = path.relative_to(self.folder).as_posix()
            if path.is_dir():
                self.lines.append(f"<Directory {attributes(Id=identifier(name), Name=path.name)}>")
                self.directory(path)
                self.lines.append("</Directory>")
            else:
                file = attributes(Id=identifier(f"file:{name}"), Name=path.name, Source=name, KeyPath="yes")
                self.component(name, f"<File {file}/>")

    def settings(self):
        """The values of the .reg file, so that an installed provider finds all four; what the registry
        has already is kept, through a property for each value. Its search gives numbers and takes them
        back as "#" and digits, while a value declared a number would get another "#" before it."""
        content = []
        for line in next(self.folder.glob("*.reg")).read_text("utf-8").splitlines():
            name, _, default = line.partition("=dword:")
            if not default:
                continue
            value = {"Root": "HKLM", "Key": REGISTRY_KEY, "Name": name.strip('"')}
            variable = value["Name"].upper()
            search = attributes(Id=identifier(f"search:{variable}"), Type="raw", Win64="yes", **value)
            self.properties += [f"<Property {attributes(Id=variable, Value=f'#{int(default, 16)}')}>",
                                f"<RegistrySearch {search}/>", "</Property>"]
            key_path = {} if content else {"KeyPath": "yes"}
            row = attributes(Type="string", Value=f"[{variable}]", **value, **key_path)
            content.append(f"<RegistryValue {row}/>")
        self.component("settings", "\n".join(content))


def main():
    folder, version = Path(sys.argv[1]).resolve(), sys.argv[2]
    description = Description(folder)
    description.directory(folder)
    description.settings()
    product = attributes(Id=guid(f"product {version}"), UpgradeCode=guid("upgrade"), Version=version,
                         Name="TembraKeyProv", Manufacturer="TembraKeyProv developers", Language=1033)
    package = attributes(InstallerVersion=200, Compressed="yes", InstallScope="perMachine",
                         Description="Device key provider for SKF tokens")
    print("\n".join([
        '<?xml version="1.0" encoding="utf-8"?>',
        '<Wix xmlns="http://schemas.microsoft.com/wix/2006/wi">',
        f"<Product {product}>",
        f"<Package {package}/>",
        '<MajorUpgrade DowngradeErrorMessage="A newer version is installed."/>',
        *description.properties,
        '<Media Id="1" Cabinet="files.cab" EmbedCab="yes"/>',
        '<Directory Id="TARGETDIR" Name="SourceDir">',
        '<Directory Id="ProgramFiles64Folder"><Directory Id="INSTALLDIR" Name="TembraKeyProv">',
        *description.lines,
        "</Directory></Directory></Directory>",
        '<Feature Id="Everything" Level="1">',
        *[f'<ComponentRef Id="{one}"/>' for one in description.components],
        "</Feature></Product></Wix>",
    ]))


main()
