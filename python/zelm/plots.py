"""Pictures of a calibration and of what was measured with it; they need matplotlib.

`Rig`, `Camera` and `Cloud` have them as methods. Every function takes `ax`, the axes to draw into, or makes a figure,
and returns the axes.
"""

from typing import Any, Dict, List, Mapping, Optional, Sequence, Tuple

import numpy as np

_SIDES = {"left": "tab:blue", "right": "tab:orange", "camera": "tab:blue"}
_DEPTH_COLOURS = "viridis_r"  # near ones yellow, as in the tool's pictures
_GRID = 48  # places along the longer side of an image where uncertainty is worked out
_SMALLEST_SCALE = 1e-12


def plot_residuals(summary: Mapping[str, Any], ax: Any = None) -> Any:
    """Reprojection errors of each view and camera: bars of the RMS, marks at the worst dot, from rig.json's figures.

    A view that stands out is one in which something moved, or of which an image is bad.
    """
    views = summary["views"]
    sides = _sidesOf(summary)
    (ax,) = _axes([ax], "reprojection error by view", (9, 4))
    width = 0.8 / len(sides)
    for i, side in enumerate(sides):
        errors = [_errorsOf(view, side) for view in views]
        at = np.arange(len(views)) + (i - (len(sides) - 1) / 2) * width
        ax.bar(at, [e["rms"] for e in errors], width, color=_SIDES[side], label=f"{side}, RMS")
        ax.plot(at, [e["worst"] for e in errors], "_", color="black", label="worst dot" if i == 0 else None)
    _markAll(ax, summary, sides)
    ax.set_xticks(range(len(views)), [str(view["view"]) for view in views])
    ax.set_xlabel("view")
    ax.set_ylabel("pixels")
    ax.legend(ncols=3, fontsize="small")
    return ax


def plot_coverage(cameras: Mapping[str, Any], plate: Any, ax: Any = None) -> Any:
    """Where the dots of all views lie in the images. Parts without dots are those where the lens is least known.

    `cameras` have `size`, `K`, `distortion` and `poses`; the dots are those that the plate has where its poses put it.
    """
    axes = _axes(ax, "coverage of the images", (6 * len(cameras), 4.6), len(cameras))
    places = plate.dots()[:, 2:]
    for (name, camera), one in zip(cameras.items(), axes):
        width, height = camera.size
        pixels = np.vstack([_projected(camera, pose, places) for pose in camera.poses])
        inside = (pixels > -0.5).all(axis=1) & (pixels < np.array([width, height]) - 0.5).all(axis=1)
        one.plot(*pixels[inside].T, ".", markersize=3, alpha=0.5, color=_SIDES.get(name, "tab:blue"))
        _asImage(one, width, height)
        one.set_title(f"{name}: {_coveredShare(pixels[inside], width, height):.0%} of 8 x 6 fields have dots")
    return ax if ax is not None else axes if len(axes) > 1 else axes[0]


def plot_rig(rig: Any, plate: Any = None, ax: Any = None) -> Any:
    """Both cameras and the plates of all views in 3-D, in the frame of the plate of view 0."""
    ax = _spaceAxes(ax)
    posesLeft, posesRight = rig.left.poses, rig.right.poses
    extent = _plateExtent(plate, posesLeft)
    for view, pose in enumerate(posesLeft):
        # A pair that another program calibrated has no plate, but for the frame.
        corners = _toWorld(posesLeft[0], _moved(pose, _rectangle(*extent)))
        ax.plot(*corners.T, color="tab:green" if view == 0 else "0.6", linewidth=1.6 if view == 0 else 0.8)
        ax.text(*corners[0], str(view), fontsize=7, color="0.3")
    for name, camera, first in (("left", rig.left, posesLeft[0]), ("right", rig.right, posesRight[0])):
        _drawCamera(ax, camera, first, name)
    for axis, length in zip(np.eye(3), "XYZ"):
        ax.plot(*np.stack([np.zeros(3), axis * extent[0] / 4]).T, color="tab:red", linewidth=1)
        ax.text(*(axis * extent[0] / 3.5), length, color="tab:red", fontsize=8)
    _evenAxes(ax)
    ax.set_title(f"the pair and {len(posesLeft)} plates, in {rig.unit}")
    return ax


def plot_uncertainty(rig: Any, depth: Optional[float] = None, noise: Optional[float] = None, ax: Any = None) -> Any:
    """Standard deviation of the depth of points over the left image, as `Rig.triangulate` tells it.

    The points face the left camera in a plane at `depth` along its axis, in the rig's unit: by default that of the
    plate of view 0. `noise` is the standard deviation of a pixel's coordinate. White is where the right camera does
    not look.
    """
    (ax,) = _axes([ax], "", (7.5, 5.2))
    depth = float(rig.left.poses[0][2, 3]) if depth is None else float(depth)
    width, height = rig.left.size
    step = max(width, height) / _GRID
    x, y = (np.arange(step / 2, size, step) for size in (width, height))
    pixels = np.stack(np.meshgrid(x, y), axis=-1).reshape(-1, 2)
    sigma = _depthSigmas(rig, pixels, depth, noise).reshape(len(y), len(x))
    if np.isnan(sigma).all():
        raise ValueError(f"no point at a depth of {depth:g} {rig.unit} is seen by both cameras, or no covariance known")
    edges = (-0.5, width - 0.5, height - 0.5, -0.5)
    shown = ax.imshow(sigma, extent=edges, cmap="viridis", interpolation="nearest", aspect="equal")
    ax.figure.colorbar(shown, ax=ax, label=f"standard deviation of the depth, {rig.unit}")
    ax.set_title(f"points at {depth:.6g} {rig.unit}: median {np.nanmedian(sigma):.3g} {rig.unit}")
    _asImage(ax, width, height)
    return ax


def plot_cloud(cloud: Any, image: Optional[np.ndarray] = None, ax: Any = None) -> Any:
    """Depths of points over the left image; near ones are yellow. `cloud` has `left`, `depth` and `unit`.

    Colours span the bulk of the depths, from the 2nd to the 98th percentile.
    """
    if len(cloud.depth) == 0:
        raise ValueError("the cloud has no points to show")
    (ax,) = _axes([ax], "", (8, 5.2))
    low, high = np.percentile(cloud.depth, [2, 98])
    if image is not None:
        shown = np.asarray(image)
        ax.imshow(shown // 2 if shown.ndim == 3 else shown, cmap="gray", vmin=0, vmax=2 * max(1, int(shown.max())))
    pixels = np.asarray(cloud.left)
    step = _spacing(pixels)
    dots = ax.scatter(*pixels.T, c=cloud.depth, s=_markSize(ax, pixels, step), marker="s", linewidths=0,
                      cmap=_DEPTH_COLOURS, vmin=low, vmax=high)  # fmt: skip
    ax.figure.colorbar(dots, ax=ax, extend="both", label=f"depth, {cloud.unit}")
    ax.set_title(f"{len(cloud.depth)} points, depth {cloud.depth.min():.6g} to {cloud.depth.max():.6g} {cloud.unit}")
    width, height = (image.shape[1], image.shape[0]) if image is not None else pixels.max(axis=0) + step
    _asImage(ax, width, height)
    return ax


def _axes(given: Any, title: str, size: Tuple[float, float], count: int = 1) -> List[Any]:
    """As many axes as wanted: those given, or those of a new figure."""
    axes = [one for one in np.ravel(given) if one is not None]
    if axes:
        if len(axes) != count:
            raise ValueError(f"{count} axes are needed, not {len(axes)}")
        return axes
    figure, made = _pyplot().subplots(1, count, figsize=size, squeeze=False, layout="constrained")
    if title:
        figure.suptitle(title)
    return list(made[0])


def _pyplot() -> Any:
    try:
        from matplotlib import pyplot
    except ImportError as error:
        raise ImportError("plots need matplotlib: install it (Debian: python3-matplotlib)") from error
    return pyplot


def _sidesOf(summary: Mapping[str, Any]) -> Sequence[str]:
    return ("left", "right") if "left" in summary else ("camera",)


def _errorsOf(view: Mapping[str, Any], side: str) -> Dict[str, float]:
    part = view if side == "camera" else view.get(side, {})
    return part.get("reprojection") or {"rms": np.nan, "worst": np.nan}


def _markAll(ax: Any, summary: Mapping[str, Any], sides: Sequence[str]) -> None:
    for side in sides:
        errors = summary["reprojection"] if side == "camera" else summary["reprojection"][side]
        ax.axhline(errors["rms"], color=_SIDES[side], linewidth=0.8, linestyle="--")


def _moved(pose: np.ndarray, points: np.ndarray) -> np.ndarray:
    return points @ pose[:, :3].T + pose[:, 3]


def _toWorld(pose: np.ndarray, points: np.ndarray) -> np.ndarray:
    """From a camera's frame to that of the plate with this pose."""
    return (points - pose[:, 3]) @ pose[:, :3]


def _projected(camera: Any, pose: np.ndarray, points: np.ndarray) -> np.ndarray:
    """Raw pixels of points of a plate, by the formulas of docs/formats.md."""
    seen = _moved(pose, points)
    parallel = getattr(camera, "model", "perspective") == "parallel"
    normal = seen[:, :2] if parallel else seen[:, :2] / seen[:, 2:]
    r2 = (normal**2).sum(axis=1, keepdims=True)
    k1, k2 = camera.distortion
    normal = normal * (1 + k1 * r2 + k2 * r2**2)
    return np.column_stack([normal, np.ones(len(normal))]) @ np.asarray(camera.K)[:2].T


def _coveredShare(pixels: np.ndarray, width: int, height: int, fields: Tuple[int, int] = (8, 6)) -> float:
    at = np.floor((pixels + 0.5) * fields / [width, height]).astype(int)
    return len({tuple(field) for field in at}) / (fields[0] * fields[1])


def _asImage(ax: Any, width: float, height: float) -> None:
    ax.set_xlim(-0.5, width - 0.5)
    ax.set_ylim(height - 0.5, -0.5)
    ax.set_aspect("equal")
    ax.set_xlabel("x, pixels")
    ax.set_ylabel("y, pixels")


def _spaceAxes(ax: Any) -> Any:
    if ax is not None:
        return ax
    figure = _pyplot().figure(figsize=(7.5, 7))
    return figure.add_subplot(projection="3d")


def _plateExtent(plate: Any, poses: np.ndarray) -> Tuple[float, float]:
    if plate is not None:
        return plate.fieldWidth, plate.fieldHeight
    size = abs(poses[0][2, 3]) / 4 or 1.0  # of a pair whose plate is not known: a square to show the frame
    return size, size


def _rectangle(width: float, height: float) -> np.ndarray:
    corners = np.array([[-1, -1], [1, -1], [1, 1], [-1, 1], [-1, -1]]) / 2
    return np.column_stack([corners * [width, height], np.zeros(5)])


def _drawCamera(ax: Any, camera: Any, first: np.ndarray, name: str) -> None:
    """The pyramid that a camera sees; of a parallel one, which has no centre, its rays."""
    width, height = camera.size
    K, colour = np.asarray(camera.K), _SIDES[name]
    corners = np.array([[0, 0, 1], [width, 0, 1], [width, height, 1], [0, height, 1], [0, 0, 1]], dtype=float)
    rays = corners @ np.linalg.inv(K).T
    reach = 0.2 * abs(first[2, 3]) or 1.0
    if camera.model == "parallel":
        near = np.column_stack([rays[:, :2], np.full(5, -reach)])
        sides = [np.stack([corner, corner + [0, 0, 2 * reach]]) for corner in near[:4]]
        mark = near[:4].mean(axis=0)
    else:
        near = rays * reach
        sides = [np.stack([np.zeros(3), corner]) for corner in near[:4]]
        mark = np.zeros(3)
    for line in (near, *sides):
        ax.plot(*_toWorld(first, line).T, color=colour, linewidth=1)
    ax.text(*_toWorld(first, mark[None])[0], name, color=colour)


def _evenAxes(ax: Any) -> None:
    """The same scale along all axes, and the cameras above the plate: Z points away from them."""
    limits = np.array([ax.get_xlim3d(), ax.get_ylim3d(), ax.get_zlim3d()])
    ax.set_box_aspect(np.maximum(np.ptp(limits, axis=1), _SMALLEST_SCALE), zoom=0.88)
    ax.invert_zaxis()
    ax.invert_yaxis()
    ax.view_init(elev=20, azim=-60)
    ax.set_xlabel("X")
    ax.set_ylabel("Y")
    ax.set_zlabel("Z")


def _depthSigmas(rig: Any, pixels: np.ndarray, depth: float, noise: Optional[float]) -> np.ndarray:
    """Of points at these raw pixels of the left image; NaN where the right camera does not see them."""
    camera, first = rig.left, rig.left.poses[0]
    undistorted = camera.undistort(pixels)
    rays = np.column_stack([undistorted, np.ones(len(pixels))]) @ np.linalg.inv(camera.K).T
    points = _toWorld(first, np.column_stack([rays[:, :2], np.full(len(rays), depth)])
                      if camera.model == "parallel" else rays * depth)  # fmt: skip
    left, right = rig.project(points)
    width, height = rig.right.size
    with np.errstate(invalid="ignore"):
        seen = (right > -0.5).all(axis=1) & (right < np.array([width, height]) - 0.5).all(axis=1)
    seen &= np.isfinite(left).all(axis=1)
    sigmas = np.full(len(pixels), np.nan)
    if seen.any():
        covariance = np.asarray(rig.triangulate(left[seen], right[seen], noise=noise)[1])
        axis = first[2, :3]  # the camera's, in the frame of the points
        sigmas[seen] = np.sqrt(np.einsum("i,nij,j->n", axis, covariance, axis))
    return sigmas


def _spacing(pixels: np.ndarray) -> float:
    """That of the grid of pixels, or of points that lie anywhere."""
    steps = np.diff(np.unique(pixels[:, 0]))
    area = float(np.prod(np.maximum(np.ptp(pixels, axis=0), 1.0)))
    return float(max(steps.min() if len(steps) else 1.0, 0.5 * np.sqrt(area / len(pixels)), 1.0))


def _markSize(ax: Any, pixels: np.ndarray, step: float) -> float:
    """Area in square points of a mark that is a step wide."""
    inches = ax.get_position().width * ax.figure.get_size_inches()[0]
    return float(max(1.0, (72 * inches * step / max(1.0, float(pixels[:, 0].max()))) ** 2))
