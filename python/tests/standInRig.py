"""What the program's commands need of a rig: its three files."""

import contextlib
import json
import tempfile
from pathlib import Path

from zelm._rigCommands import RigCommands

NAMES = ("rig.zcal", "rig.zcov", "rig.json")


class Rig(RigCommands):
    def __init__(self, files):
        self.files = files

    @classmethod
    def _from_folder(cls, folder):
        return cls({name: (Path(folder) / name).read_bytes() for name in NAMES if (Path(folder) / name).exists()})

    @property
    def summary(self):
        return json.loads(self.files["rig.json"])

    @contextlib.contextmanager
    def _folder(self):
        with tempfile.TemporaryDirectory(prefix="zelm.") as folder:
            for name, content in self.files.items():
                (Path(folder) / name).write_bytes(content)
            yield folder
