"""Images, edges, blobs and searches."""

import math

import numpy as np
import pytest

from zelm import core


MORPHOLOGY = (core.zelmBinDilation, core.zelmBinErosion, core.zelmBinOpening, core.zelmBinClosing)


@pytest.fixture
def square():
    image = np.full((40, 60), 20, np.uint8)
    image[10:20, 15:35] = 220
    return image


def testThresholds(square):
    threshold = core.zelmBinOtsuThresholdImage(square)
    assert 20 < threshold <= 220
    histogram = np.bincount(square.ravel(), minlength=256)
    assert core.zelmBinOtsuThresholdHistogram(histogram) == threshold
    assert core.zelmBinOtsuThresholdGray(square.ravel()) == threshold
    assert core.zelmBinOtsuThresholdImage(square, (0, 0, 5, 5)) == 1


def testBinaryImagesAndMorphology(square):
    binary = core.zelmBinBinaryImage(square, 100)
    assert np.array_equal(binary, np.where(square >= 100, 255, 0))
    wanted = np.zeros_like(square)
    wanted[9:21, 14:36] = 255
    assert np.array_equal(core.zelmBinDilation(square, 100), wanted)
    wanted[:] = 0
    wanted[12:18, 17:33] = 255
    assert np.array_equal(core.zelmBinErosion(square, 100, iIterations=2), wanted)
    square[30, 30] = 220  # one pixel, which opening removes
    assert np.array_equal(core.zelmBinOpening(square, 100), binary)
    square[30, 30], square[15, 20] = 20, 20
    assert np.array_equal(core.zelmBinClosing(square, 100), binary)


def testAGivenDestinationIsWritten(square):
    destination = np.full_like(square, 7)
    result = core.zelmBinBinaryImage(square, 100, (15, 10, 5, 5), destination)
    assert result is destination
    assert (destination[10:15, 15:20] == 255).all() and (destination == 7).sum() == destination.size - 25
    for call in (core.zelmBinDilation, core.zelmBinErosion):
        with pytest.raises(core.ZelmParamError, match="share"):
            call(square, 100, tDst=square)
    for bad in (destination[:, ::2], destination.astype(np.int32), [[0]]):
        with pytest.raises((core.ZelmParamError, TypeError)):
            core.zelmBinBinaryImage(square, 100, tDst=bad)


@pytest.mark.parametrize("region", [(-1, 0, 5, 5), (0, -1, 5, 5), (0, 0, 61, 5), (0, 0, 5, 41), (58, 0, 2**31 - 1, 1)])
def testRegionsOutsideAreRefused(square, region):
    with pytest.raises(core.ZelmParamError, match="leaves the image"):
        core.zelmBinOtsuThresholdImage(square, region)
    with pytest.raises(core.ZelmParamError, match="leaves the image"):
        core.zelmBinBlob(square, 100, region)
    for call in (core.zelmBinBinaryImage, *MORPHOLOGY):
        with pytest.raises(core.ZelmParamError, match="leaves the image"):
            call(square, 100, region)
        big = np.zeros((1000, 1000), np.uint8)  # inside the source, outside the destination
        with pytest.raises(core.ZelmParamError, match="leaves the image of 60 x 40"):
            call(big, 100, (500, 500, 20, 20), tDst=square)


def testBlobsAreCopied(square):
    square[30:33, 40:44] = 220
    blobs = core.zelmBinBlob(square, 100)
    assert blobs["area"].tolist() == [200, 12]
    assert blobs[0]["cx"] == 24.5 and blobs[0]["cy"] == 14.5
    assert (blobs["left"][1], blobs["top"][1], blobs["right"][1], blobs["bottom"][1]) == (40, 30, 43, 32)
    assert len(core.zelmBinBlob(square, 100, iMinArea=50)) == 1
    assert len(core.zelmBinBlob(np.zeros((9, 9), np.uint8), 100)) == 0
    assert blobs.flags.owndata and blobs.flags.writeable
    with pytest.raises(core.ZelmParamError, match="iPolarity|option"):
        core.zelmBinBlob(square, 100, iPolarity=3)
    core.zelmBinFree()
    with pytest.raises(TypeError):
        core.zelmBinFree(blobs)


def testEdgesOfABlurredStep():
    x = np.arange(60.0)
    profile = 120 + 100 * np.vectorize(math.erf)((x - 30.3) / math.sqrt(2))
    image = np.tile(np.round(profile).astype(np.uint8), (20, 1))
    searches = [core.zelmEdge1dDiffMax, core.zelmEdge1dGenDiffMax, core.zelmEdge1dGenNearest]
    searches += [core.zelmEdge1dGenGradMax, core.zelmEdge1dGenNearestC]
    for search in searches:
        found, point, strength = search(image, (10, 10), (50, 10))
        assert found == 1 and point.x == pytest.approx(30.3, abs=0.03) and point.y == 10 and strength > 10
        assert search(image, (10, 10), (50, 10), -1).iFound == 0
    usual = core.ZelmEdge1dParam(1, 30, 5, 1, 2, 7, 0)
    assert core.zelmEdge1dManual(image, (10, 10), (50, 10), 0, usual).tEdgePoint == searches[0](
        image, (10, 10), (50, 10)
    ).tEdgePoint


def testSmallHelpers(square):
    rectangle = core.zelmMiscChangeRectToRect2((1, 2, 3, 4))
    assert tuple(rectangle) == (1, 2, 3, 5)
    assert tuple(core.zelmMiscChangeRect2ToRect(rectangle)) == (1, 2, 3, 4)
    assert core.zelmMiscBilinearGrayLevel(square, 14.5, 15) == 120
    assert core.zelmMiscBilinearGrayLevel(square, -1, 15) == 0
    assert core.zelmMiscPlotPointsOfLine((0, 0), (3, 3)).tolist() == [[0, 0], [1, 1], [2, 2], [3, 3]]
    assert core.zelmMiscPlotPointsOfLine((5, 5), (5, 5)).tolist() == [[5, 5]]
    with pytest.raises(core.ZelmParamError, match="2\\^30"):
        core.zelmMiscPlotPointsOfLine((-(2**31), 0), (2**31 - 1, 0))
    argb = np.zeros((2, 3, 4), np.uint8)
    argb[:, :, 1:] = 255, 0, 100
    assert (core.zelmConvertColorToGray_vImageARGB8888toPlanar8(argb) == (77 * 255 + 29 * 100) >> 8).all()
    walked = core.zelmCstmDrovnGetPixelOnEpiLine((0, 0, 5, 5), (0, 1, -2))
    for rectangle, line in (((0, 0, 9, 3), (0, 1, -1)), ((0, 0, 3, 9), (1, 0, -1))):
        assert len(core.zelmCstmDrovnGetPixelOnEpiLine(rectangle, line)) == 9
    assert sorted(walked.tolist()) == [[x, 2] for x in range(5)]


def testSearchFindsTheTemplate():
    image = np.random.default_rng(10).integers(0, 255, (60, 200)).astype(float)
    for _ in range(2):  # smooth, so that a match has a peak to refine
        image = sum(np.roll(image, *shift) for shift in ((0, 0), (1, 0), (-1, 0), (1, 1), (-1, 1))) / 5
    image = image.astype(np.uint8)
    template = np.ascontiguousarray(image[20:41, 90:111])
    reference = core.ZelmCstmRefImg(width=21, height=21, pixels=template, anchorX=10, anchorY=10)
    assert core.zelmCstmDrovnCalcBasicStatisticsOfRefImg(reference) is reference
    assert reference.mean[2] == pytest.approx(template.mean()) and reference.sigma[2] == pytest.approx(template.std())
    search = core.ZelmCstmSearchPrm(
        width=200, height=60, pixels=image, roiWidth=200, roiHeight=60, epiLine=core.Line2d(0, 1, -30),
        maxResults=4, minScore=0.7, minDistance=5, mode=core.ZELM_CSTM_FULL,
    )
    matches = core.zelmCstmDrovnSearchOnEpiLine(reference, search)
    assert len(matches) == 1 and matches["score"][0] == pytest.approx(1)
    assert (matches["x"][0], matches["y"][0]) == pytest.approx((100, 30), abs=0.1)
    planar = core.zelmCstmDrovnCalcBasicStatisticsOfRefImg_vImagePlanar8(image[20:41, 90:111])
    assert np.array_equal(planar.mean, reference.mean)
    planar.anchorX = planar.anchorY = 10
    again = core.zelmCstmDrovnSearchOnEpiLine_vImagePlanar8(planar, image[20:41, 90:111], search, image)
    assert np.array_equal(again, matches)
    search.epiLine = core.Line2d(0, 1, -50)
    assert len(core.zelmCstmDrovnSearchOnEpiLine(reference, search)) == 0
    search.height = 61  # more than the array has
    with pytest.raises(core.ZelmParamError, match="pixels has the shape"):
        core.zelmCstmDrovnSearchOnEpiLine(reference, search)
    with pytest.raises(core.ZelmParamError, match="no pixels"):
        core.zelmCstmDrovnCalcBasicStatisticsOfRefImg(core.ZelmCstmRefImg(width=3, height=3))
