"""A camchain of Kalibr by a parser of YAML and the published formulas of its models."""
import json
import os

import numpy as np
import yaml
from peerSupport import Measure, Rig, close, exported, folder, round_trip, run, zelm


def radtan(x, y, c):
    """Brown (1971)."""
    k1, k2, p1, p2 = c
    r2 = x * x + y * y
    s = 1 + k1 * r2 + k2 * r2 * r2
    return x * s + 2 * p1 * x * y + p2 * (r2 + 2 * x * x), y * s + p1 * (r2 + 2 * y * y) + 2 * p2 * x * y


def equidistant(x, y, c):
    """Kannala and Brandt (2006)."""
    r = np.hypot(x, y)
    a = np.arctan(r)
    d = a * (1 + c[0] * a**2 + c[1] * a**4 + c[2] * a**6 + c[3] * a**8)
    return x * d / r, y * d / r


def project(cam, X):
    lens = {"radtan": radtan, "equidistant": equidistant}[cam["distortion_model"]]
    x, y = lens(X[:, 0] / X[:, 2], X[:, 1] / X[:, 2], cam["distortion_coeffs"])
    fu, fv, pu, pv = cam["intrinsics"]
    return np.stack([fu * x + pu, fv * y + pv], 1)


def projectionsAreOurs():
    for seed in range(5):
        with folder() as where:
            rig = Rig(seed)
            path = rig.write(os.path.join(where, "rig.zcal"))
            exported(path, "kalibr", where)
            chain = yaml.safe_load(open(os.path.join(where, "camchain.yaml")))
            T = np.array(chain["cam1"]["T_cn_cnm1"])
            assert chain["cam0"]["resolution"] == [1280, 960] and T.shape == (4, 4)
            ours = Measure(path)
            R, t = ours.pose("L")
            X = rig.points()
            X0 = (X @ R.T + t) * 0.001
            X1 = X0 @ T[:3, :3].T + T[:3, 3]
            close(project(chain["cam0"], X0), ours.project("L", X), what="cam0")
            close(project(chain["cam1"], X1), ours.project("R", X), what="cam1")


def returnsBitByBit():
    with folder() as where:
        path = Rig(8, frame=False).write(os.path.join(where, "rig.zcal"))
        assert exported(path, "kalibr", where) == ""
        round_trip(path, "kalibr", ["camchain.yaml"], where)


def equidistantLens():
    """Another lens is taken as near as is told, or refused."""
    with folder() as where:
        rig = Rig(12, frame=False)
        R, t = rig.motion()
        T = np.eye(4)
        T[:3, :3], T[:3, 3] = R, 0.001 * t
        cam = lambda c: {"camera_model": "pinhole", "distortion_model": "equidistant", "resolution": [1280, 960],
                         "distortion_coeffs": [0.01, -0.02, 0.01, 0.0], "intrinsics": [c.fx, c.fy, c.cx, c.cy]}
        chain = {"cam0": cam(rig.left), "cam1": cam(rig.right)}
        chain["cam1"]["T_cn_cnm1"] = T.tolist()
        file = os.path.join(where, "chain.yaml")
        yaml.safe_dump(chain, open(file, "w"))
        back = os.path.join(where, "back.zcal")
        told = json.loads(zelm("import", file, "--from", "kalibr", "-o", back, "--tolerance", "0.2", "--json")[0])
        ours = Measure(back)
        c = rig.left
        g = np.random.default_rng(2)
        pixels = g.uniform([0, 0], [1279, 959], (400, 2))
        # The angle of a direction grows with its distance from the middle: bisection.
        d = np.hypot((pixels[:, 0] - c.cx) / c.fx, (pixels[:, 1] - c.cy) / c.fy)
        low, high = np.zeros(len(d)), np.ones(len(d))
        for _ in range(80):
            a = (low + high) / 2
            smaller = a * (1 + 0.01 * a**2 - 0.02 * a**4 + 0.01 * a**6) < d
            low, high = np.where(smaller, a, low), np.where(smaller, high, a)
        s = np.tan(low) / d
        rays = np.stack([s * (pixels[:, 0] - c.cx) / c.fx, s * (pixels[:, 1] - c.cy) / c.fy, np.ones(len(d))], 1)
        off = np.linalg.norm(ours.project("L", rays * 300) - pixels, axis=1)
        stated = told["lens"]["left"]
        assert 0 < stated["worst"] < 0.2 and off.max() < 1.02 * stated["worst"] + 1e-6, (off.max(), stated)
        _, errors = zelm("import", file, "--from", "kalibr", "-o", back, "--tolerance", "1e-7", status=1)
        assert "--tolerance" in errors and errors.count("\n") == 1, errors


run([projectionsAreOurs, returnsBitByBit, equidistantLens])
