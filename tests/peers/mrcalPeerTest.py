"""mrcal reads what zelm export writes, and projects the same with it."""
import os

import mrcal
import numpy as np
from peerSupport import Measure, Rig, close, exported, folder, round_trip, run, zelm


def models(where):
    return [mrcal.cameramodel(os.path.join(where, side + ".cameramodel")) for side in ("left", "right")]


def projectionsAreOurs():
    for seed in range(5):
        with folder() as where:
            rig = Rig(seed)
            path = rig.write(os.path.join(where, "rig.zcal"))
            exported(path, "mrcal", where)
            X = rig.points()
            ours = Measure(path)
            for model, side in zip(models(where), "LR"):
                assert tuple(model.imagersize()) == (1280, 960)
                seen = mrcal.project(mrcal.transform_point_rt(model.rt_cam_ref() if hasattr(model, "rt_cam_ref")
                                                              else model.extrinsics_rt_fromref(), X * 0.001),
                                     *model.intrinsics())
                close(seen, ours.project(side, X), what=side)


def returnsBitByBit():
    with folder() as where:
        path = Rig(7).write(os.path.join(where, "rig.zcal"))
        assert exported(path, "mrcal", where) == ""
        round_trip(path, "mrcal", ["left.cameramodel", "right.cameramodel"], where)


def filesOfMrcal():
    """A model that mrcal wrote itself, with eight terms."""
    with folder() as where:
        rig = Rig(31, frame=False)
        R, t = rig.motion()
        files = []
        for side, c, rt in (("left", rig.left, np.zeros(6)),
                            ("right", rig.right, mrcal.rt_from_Rt(np.vstack([R, 0.001 * t])))):
            lens = [c.k1, c.k2, 0, 0, 0, 0, 0, 0]
            model = mrcal.cameramodel(intrinsics=("LENSMODEL_OPENCV8", np.array([c.fx, c.fy, c.cx, c.cy] + lens)),
                                      imagersize=(1280, 960), extrinsics_rt_fromref=rt)
            files.append(os.path.join(where, side + ".cameramodel"))
            model.write(files[-1], note="written by a test\nwith a note of two lines")
        back = os.path.join(where, "back.zcal")
        zelm("import", *files, "--from", "mrcal", "-o", back, "--quiet")
        X = rig.points()
        for model, side in zip(models(where), "LR"):
            seen = mrcal.project(mrcal.transform_point_rt(model.extrinsics_rt_fromref(), X * 0.001),
                                 *model.intrinsics())
            close(seen, Measure(back).project(side, X), what=side)
        # Another lens is refused, and the line says what to do.
        stereographic = mrcal.cameramodel(intrinsics=("LENSMODEL_STEREOGRAPHIC", np.array([1500., 1500, 640, 480])),
                                          imagersize=(1280, 960), extrinsics_rt_fromref=np.zeros(6))
        stereographic.write(files[0])
        _, errors = zelm("import", *files, "--from", "mrcal", "-o", back, status=1)
        assert "mrcal-convert-lensmodel" in errors, errors


run([projectionsAreOurs, returnsBitByBit, filesOfMrcal])
