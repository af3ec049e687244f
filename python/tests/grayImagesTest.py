"""Images of files and arrays have the gray levels that the program reads."""

import struct
import sys

import deskRig
import numpy as np
import pytest
from hypothesis import given, settings
from hypothesis import strategies as st
from hypothesis.extra import numpy as npst
from PIL import Image

import zelm
from zelm._grayImages import grayImage

RNG = np.random.default_rng(4)
GRAY = RNG.integers(0, 256, (40, 57), dtype=np.uint8)
DEEP = RNG.integers(0, 65536, (40, 57), dtype=np.uint16)
COLOURS = RNG.integers(0, 256, (40, 57, 3), dtype=np.uint8)


def pnm(kind, levels, largest):
    height, width = levels.shape[:2]
    head = f"P{kind}\n# a comment\n{width} {height}\n{largest}\n".encode()
    if kind < 4:
        return head + " ".join(map(str, levels.ravel())).encode()
    return head + levels.astype(">u2" if largest > 255 else "u1").tobytes()


FILES = {
    "gray.png": GRAY,
    "deep.png": DEEP,
    "colours.png": COLOURS,
    "gray.tif": GRAY,
    "deep.tif": DEEP,
    "colours.tif": COLOURS,
    "gray.bmp": GRAY,
    "colours.bmp": COLOURS,
    "alpha.png": np.dstack([COLOURS, GRAY]),
    "palette.png": COLOURS,
    "bilevel.png": GRAY > 128,
    "gray.jpg": GRAY,
    "colours.jpg": COLOURS,
    "gray.pgm": pnm(5, GRAY, 255),
    "text.pgm": pnm(2, GRAY, 255),
    "deep.pgm": pnm(5, DEEP, 65535),
    "ten.pgm": pnm(5, DEEP >> 6, 1023),
    "few.pgm": pnm(5, GRAY >> 4, 15),
    "colours.ppm": pnm(6, COLOURS, 255),
    "text.ppm": pnm(3, COLOURS, 255),
}


def write(path, content):
    if isinstance(content, bytes):
        path.write_bytes(content)
    elif path.name.startswith("palette"):
        Image.fromarray(content).quantize(64).save(path)
    else:
        Image.fromarray(content).save(path)


@pytest.mark.parametrize("name", list(FILES))
def testFilesHaveTheLevelsThatTheProgramReads(name, tmp_path):
    """Undistorting with a camera that has no lens and is no larger than the image gives the image as it was read."""
    from syntheticPair import Camera, block, rotation

    write(tmp_path / name, FILES[name])
    K = np.array([[100.0, 0, 28], [0, 100, 20], [0, 0, 1]])
    pair = bytearray(block(Camera(K, rotation(0, 0.2), np.array([1.0, 0, 50])),
                           Camera(K, rotation(0, -0.2), np.array([-1.0, 0, 50]))))  # fmt: skip
    for at in (8, 20):
        pair[at : at + 8] = struct.pack("<2i", 57, 40)
    (tmp_path / "rig.zcal").write_bytes(pair)
    deskRig.run("undistort", tmp_path / "rig.zcal", tmp_path / name, "--camera", "left", "-o", tmp_path / "out")
    drawn = np.asarray(Image.open(next((tmp_path / "out").glob("*.png"))))
    read = grayImage(tmp_path / name, "image")
    own = read if drawn.ndim == 2 else grayImage(np.ascontiguousarray(drawn[..., :3]), "image")
    inner = (slice(2, -2), slice(2, -2))
    told = drawn if drawn.ndim == 2 else own
    np.testing.assert_array_equal(read[inner], told[inner])
    assert read.dtype == np.uint8 and read.shape == (40, 57)


def testArraysAreTheImagesOfTheirFiles(tmp_path):
    for name, content in FILES.items():
        if isinstance(content, np.ndarray) and content.dtype != bool and name.endswith((".png", ".tif")):
            if not name.startswith("palette"):
                write(tmp_path / name, content)
                np.testing.assert_array_equal(grayImage(tmp_path / name, "image"), grayImage(content, "image"))


def testGrayBytesAreNotCopied():
    assert grayImage(GRAY, "image") is GRAY
    wide = np.zeros((40, 100), np.uint8)[:, 10:67]
    assert grayImage(wide, "image") is wide


@given(npst.arrays(np.uint16, (3, 5)))
@settings(max_examples=50, deadline=None)
def testDeepLevelsAreRounded(levels):
    wanted = np.floor(levels / 257 + 0.5)
    np.testing.assert_array_equal(grayImage(levels, "image"), wanted)


@given(npst.arrays(np.uint8, npst.array_shapes(min_dims=3, max_dims=3, min_side=1, max_side=6)))
@settings(max_examples=50, deadline=None)
def testColoursAreWeighed(levels):
    if levels.shape[2] not in (3, 4):
        with pytest.raises(ValueError, match="shape"):
            grayImage(levels, "image")
        return
    red, green, blue = (levels[..., i].astype(int) for i in range(3))
    np.testing.assert_array_equal(grayImage(levels, "image"), (77 * red + 150 * green + 29 * blue) >> 8)
    turned = levels[::-1, ::-1]
    np.testing.assert_array_equal(grayImage(turned, "image"), grayImage(levels, "image")[::-1, ::-1])


@pytest.mark.parametrize(
    "value", [GRAY.astype(float), GRAY.astype(np.int16), GRAY.astype(np.uint32), GRAY > 3, [[1, 2]], None, 5, b"abc"]
)
def testOtherTypesAreRefused(value):
    with pytest.raises(TypeError, match="the image"):
        grayImage(value, "the image")
    with pytest.raises(TypeError, match="masked"):
        grayImage(np.ma.masked_array(GRAY), "the image")


@pytest.mark.parametrize("shape", [(0, 5), (5,), (2, 3, 2), (1, 2, 3, 3)])
def testOtherShapesAreRefused(shape):
    with pytest.raises(ValueError, match="the image"):
        grayImage(np.zeros(shape, np.uint8), "the image")


@pytest.mark.parametrize(
    "content",
    [b"", b"text", b"P5\n5 5\n255\n123", b"P5\n5 x", b"P2\n2 1\n9\n3 12", b"P2 2 1 9 3 -1", b"P5 0 5 255\n",
     b"\x89PNG\r\n\x1a\nnothing", b"P5 9 9 70000\n"],
)  # fmt: skip
def testDamagedFilesAreRefusedByName(content, tmp_path):
    (tmp_path / "damaged.pgm").write_bytes(content)
    with pytest.raises(ValueError, match="damaged.pgm: "):
        grayImage(tmp_path / "damaged.pgm", "image")


def testCutFilesAreRefused(tmp_path):
    for name in ("deep.png", "gray.tif", "gray.jpg"):
        write(tmp_path / name, FILES[name])
        whole = (tmp_path / name).read_bytes()
        (tmp_path / name).write_bytes(whole[: len(whole) // 2])
        with pytest.raises(ValueError, match=name):
            grayImage(tmp_path / name, "image")


def testColoursOf16BitsAreRefusedRatherThanCut(tmp_path):
    cv2 = pytest.importorskip("cv2")
    for name in ("colours.png", "colours.tif"):
        cv2.imwrite(str(tmp_path / name), np.dstack([DEEP, DEEP.T[:40, :40].repeat(2, axis=1)[:, :57], DEEP]))
        with pytest.raises(ValueError, match=f"{name}.*16 bits"):
            grayImage(tmp_path / name, "image")


def testWithoutPillowTheRemedyIsTold(tmp_path, monkeypatch):
    write(tmp_path / "gray.png", GRAY)
    write(tmp_path / "gray.pgm", FILES["gray.pgm"])
    monkeypatch.setitem(sys.modules, "PIL", None)
    with pytest.raises(ImportError, match="gray.png.*Pillow"):
        grayImage(tmp_path / "gray.png", "image")
    np.testing.assert_array_equal(grayImage(tmp_path / "gray.pgm", "image"), GRAY)


def testDetectsTheDotsThatTheProgramFinds(tmp_path):
    path = deskRig.SAMPLE / "left_04.png"
    told = deskRig.run("detect", path, "--plate", deskRig.SAMPLE / "truth.json", "-o", tmp_path)["dots"]
    for image in (path, str(path), np.asarray(Image.open(path))):
        dots = zelm.detect(deskRig.plateRecord(), image)
        assert [list(dot["grid"]) for dot in dots] == [dot["grid"] for dot in told]
        assert [list(dot["pixel"]) for dot in dots] == [dot["pixel"] for dot in told]
        assert [list(dot["plane"]) for dot in dots] == [dot["plane"] for dot in told]


class Plate:
    def record(self):
        return deskRig.plateRecord()


def testDetectTellsWhatIsWrong():
    image = np.asarray(Image.open(deskRig.SAMPLE / "left_04.png"))
    assert len(zelm.detect(Plate(), image)) == 143
    with pytest.raises(zelm.ZelmError) as caught:
        zelm.detect(Plate(), np.full_like(image, 90))
    assert caught.value.cause in str(caught.value) and caught.value.diagnosis.read == 0
    covered = image.copy()
    dots = zelm.detect(Plate(), image)
    x, y = dots["pixel"][10].astype(int)
    covered[y - 12 : y + 13, x - 12 : x + 13] = image.max()
    with pytest.warns(zelm.MeasurementWarning, match="142 of 143 dots read"):
        assert len(zelm.detect(Plate(), covered)) == 142
    with pytest.raises(ValueError, match="not inside"):
        zelm.detect(Plate(), image, (0, 0, 5000, 10))
    wrong = deskRig.plateRecord()
    wrong.d6 = 60.0
    with pytest.raises(zelm.ZelmError):
        zelm.detect(wrong, image)
    with pytest.raises(TypeError):
        zelm.detect("plate.json", image)
