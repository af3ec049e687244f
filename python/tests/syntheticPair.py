"""A pair of cameras with exact truth: its calibration block, and images of its plate."""

import struct
from dataclasses import dataclass
from typing import Tuple

import numpy as np

WIDTH, HEIGHT = 640, 480


@dataclass
class Camera:
    K: np.ndarray
    R: np.ndarray
    t: np.ndarray
    k1: float = 0.0
    k2: float = 0.0

    def project(self, points: np.ndarray) -> np.ndarray:
        """Raw pixels of points in the plate's frame."""
        x = (np.asarray(points) @ self.R.T + self.t) @ self.K.T
        ideal = x[:, :2] / x[:, 2:]
        offset = ideal - self.K[:2, 2]
        r2 = ((offset / np.diag(self.K)[:2]) ** 2).sum(axis=1)
        return self.K[:2, 2] + offset * (1 + self.k1 * r2 + self.k2 * r2**2)[:, None]


def rotation(x: float, y: float, z: float = 0.0) -> np.ndarray:
    cx, sx, cy, sy, cz, sz = np.cos(x), np.sin(x), np.cos(y), np.sin(y), np.cos(z), np.sin(z)
    return (
        np.array([[cz, -sz, 0], [sz, cz, 0], [0, 0, 1]])
        @ np.array([[cy, 0, sy], [0, 1, 0], [-sy, 0, cy]])
        @ np.array([[1, 0, 0], [0, cx, -sx], [0, sx, cx]])
    )


def pair(k1: float = -0.1, k2: float = 0.02) -> Tuple[Camera, Camera]:
    K = np.array([[900.0, 0, 322], [0, 905, 238], [0, 0, 1]])
    left = Camera(K, rotation(0, 0.2), np.array([10.0, 0, 500]), k1, k2)
    right = Camera(K * [[1.01], [1], [1]], rotation(0, -0.2), np.array([-10.0, 0, 500]), k1, k2)
    return left, right


def block(left: Camera, right: Camera, views: int = 3) -> bytes:
    """The calibration block of a pair, every view at the same pose."""
    R = right.R @ left.R.T
    t = right.t - R @ left.t
    skew = np.array([[0, -t[2], t[1]], [t[2], 0, -t[0]], [-t[1], t[0], 0]])
    F = (np.linalg.inv(right.K).T @ skew @ R @ np.linalg.inv(left.K)).T
    F /= np.abs(F).max()
    data = struct.pack("<7i", views, 0, WIDTH, HEIGHT, 0, WIDTH, HEIGHT)
    for camera in (left, right):
        M = camera.K @ camera.R
        data += M.tobytes() + np.linalg.inv(M).tobytes()
    data += F.tobytes() + np.ascontiguousarray(F.T).tobytes()
    for camera in (left, right):
        K = camera.K
        numbers = [*K.ravel(), K[0, 0], K[1, 1], K[0, 1], K[0, 2], K[1, 2], 0, camera.k1, camera.k2, *[0.0] * 5]
        data += np.array(numbers).tobytes()
    for camera in (left, right):
        data += np.array([*camera.R.ravel(), *camera.t, 0, 0, 0]).tobytes() * views
    return data


PLATE = dict(d0=200.0, d1=160.0, d2=8.0, d3=15.0, d4=20.0, d5=20.0, d6=60.0, d7=40.0)


def drawPlate(camera: Camera) -> np.ndarray:
    """The gray image of a white plate with dark dots, four samples a pixel. Meant for cameras without distortion."""
    fine = 2
    x = (np.arange(WIDTH * fine, dtype=np.float32) - 0.5) / fine
    y = (np.arange(HEIGHT * fine, dtype=np.float32)[:, None] - 0.5) / fine
    H = np.linalg.inv(camera.K @ np.column_stack([camera.R[:, 0], camera.R[:, 1], camera.t])).astype(np.float32)
    depth = 1 / (H[2, 0] * x + H[2, 1] * y + H[2, 2])
    px = (H[0, 0] * x + H[0, 1] * y + H[0, 2]) * depth
    py = (H[1, 0] * x + H[1, 1] * y + H[1, 2]) * depth
    i, j = np.round(px / PLATE["d4"]), np.round(py / PLATE["d5"])
    marker = ((i == 0) & (j == 0)) | ((i == 3) & (j == 0)) | ((i == 0) & (j == 2))
    radius = np.where(marker, PLATE["d3"], PLATE["d2"]) / 2
    dot = np.hypot(px - i * PLATE["d4"], py - j * PLATE["d5"]) < radius
    dot &= (np.abs(i) <= 5) & (np.abs(j) <= 4)
    plate = (np.abs(px) < 115) & (np.abs(py) < 95)
    gray = np.where(dot, 40.0, np.where(plate, 210.0, 20.0)).reshape(HEIGHT, fine, WIDTH, fine)
    return np.round(gray.mean(axis=(1, 3))).astype(np.uint8)
