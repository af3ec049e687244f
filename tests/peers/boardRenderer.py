"""Flat boards as a camera with a known lens sees them: every sample of a pixel is traced to the board."""
import numpy as np

SAMPLES = 4  # a side of a pixel


class Camera:
    """Perspective camera with the lens 1 + k1 r^2 + k2 r^4; pixel centres at whole numbers."""

    def __init__(self, width, height, fx, fy, cx, cy, k1, k2):
        self.width, self.height = width, height
        self.fx, self.fy, self.cx, self.cy, self.k1, self.k2 = fx, fy, cx, cy, k1, k2
        # The rays of all samples are the same in every image: a list of x/z, y/z over the image, one an offset.
        offsets = (np.arange(SAMPLES) + 0.5) / SAMPLES - 0.5
        u, v = np.meshgrid(np.arange(width, dtype=float), np.arange(height, dtype=float))
        self.rays = [self.normalised(u + dx, v + dy) for dy in offsets for dx in offsets]

    def project(self, points):
        x, y = points[:, 0] / points[:, 2], points[:, 1] / points[:, 2]
        r2 = x * x + y * y
        lens = 1 + (self.k1 + self.k2 * r2) * r2
        return np.stack([self.fx * lens * x + self.cx, self.fy * lens * y + self.cy], axis=1)

    def normalised(self, u, v):
        """The ray of a raw pixel, x/z and y/z: the lens inverted by Newton's method along the radius."""
        xd, yd = (u - self.cx) / self.fx, (v - self.cy) / self.fy
        rd = np.hypot(xd, yd)
        r = rd.copy()
        for _ in range(6):  # converges quadratically; lenses of a few per cent
            r2 = r * r
            value = r * (1 + (self.k1 + self.k2 * r2) * r2) - rd
            r -= value / (1 + (3 * self.k1 + 5 * self.k2 * r2) * r2)
        scale = np.where(rd > 0, r / np.where(rd > 0, rd, 1), 1)
        return xd * scale, yd * scale


def rotation(vector):
    angle = np.linalg.norm(vector)
    if angle == 0:
        return np.eye(3)
    x, y, z = np.asarray(vector) / angle
    K = np.array([[0, -z, y], [z, 0, -x], [-y, x, 0]])
    return np.eye(3) + np.sin(angle) * K + (1 - np.cos(angle)) * K @ K


def render(camera, R, t, gray, extent, noise, random):
    """The image of a board whose gray level is gray(X, Y); extent: xmin, ymin, xmax, ymax with the margin."""
    x0, y0, x1, y1 = extent
    edge = np.array([[x0 + (x1 - x0) * s, y0 + (y1 - y0) * q, 0] for s in np.linspace(0, 1, 9)
                     for q in np.linspace(0, 1, 9)])
    seen = camera.project(edge @ R.T + t)
    left, top = np.maximum(np.floor(seen.min(axis=0)).astype(int) - 2, 0)
    right, bottom = np.minimum(np.ceil(seen.max(axis=0)).astype(int) + 3, [camera.width, camera.height])
    image = np.full((camera.height, camera.width), 90.0)
    h = np.linalg.inv(np.column_stack([R[:, 0], R[:, 1], t]))
    total = np.zeros((bottom - top, right - left))
    for rays in camera.rays:
        x, y = (a[top:bottom, left:right] for a in rays)
        w = h[2, 0] * x + h[2, 1] * y + h[2, 2]
        X, Y = (h[0, 0] * x + h[0, 1] * y + h[0, 2]) / w, (h[1, 0] * x + h[1, 1] * y + h[1, 2]) / w
        inside = (X >= x0) & (X <= x1) & (Y >= y0) & (Y <= y1)
        total += np.where(inside, gray(X, Y), 90.0)
    image[top:bottom, left:right] = total / SAMPLES**2
    image += random.normal(0, noise, image.shape)
    return np.clip(np.round(image), 0, 255).astype(np.uint8)
