"""Files appear whole or not at all."""

import os
import stat

import pytest
from zelm._outputs import copyWhole, writeTogether, writeWhole


def testAFileIsWrittenAsOthersAre(tmp_path):
    mask = os.umask(0o027)
    try:
        assert writeWhole(tmp_path / "a", b"1") == tmp_path / "a"
    finally:
        os.umask(mask)
    assert (tmp_path / "a").read_bytes() == b"1"
    assert stat.S_IMODE((tmp_path / "a").stat().st_mode) == 0o640
    copyWhole(tmp_path / "a", tmp_path / "b")
    assert (tmp_path / "b").read_bytes() == b"1"


def testNothingIsLeftOfAGroupThatFails(tmp_path):
    (tmp_path / "folder").mkdir()
    (tmp_path / "old").write_bytes(b"old")
    with pytest.raises(IsADirectoryError, match="folder: a folder has this name"):
        writeTogether({tmp_path / "old": b"new", tmp_path / "folder": b"2"})
    with pytest.raises(FileNotFoundError, match="there is no folder .*none"):
        writeTogether({tmp_path / "old": b"new", tmp_path / "none" / "a": b"2"})
    assert sorted(path.name for path in tmp_path.iterdir()) == ["folder", "old"]
    assert (tmp_path / "old").read_bytes() == b"old"
