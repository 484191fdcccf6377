"""The same sources give the same packages."""

import hashlib
import os
import subprocess

from packages import PACKAGES, ROOT, PackageTest


class Repeated(PackageTest):
    def test_has_the_same_bytes(self):
        def digests():
            return {path.name: hashlib.sha256(path.read_bytes()).hexdigest() for path in PACKAGES.iterdir()}

        first = digests()
        self.assertEqual(len(first), 7)
        # Another place, another time and other habits.
        subprocess.run([ROOT / "scripts/package"], check=True, stdout=subprocess.DEVNULL, stderr=subprocess.DEVNULL,
                       cwd="/", env={**os.environ, "TZ": "Asia/Shanghai", "LC_ALL": "C"}, umask=0o077)
        again = digests()
        self.assertEqual([name for name in first if again.get(name) != first[name]], [])
