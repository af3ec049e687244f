"""A picture of how stations change over the days."""

import io
import os
from datetime import date
from typing import Any, Dict, List, Tuple

from .batchFault import BatchError

_PANELS: Tuple[Tuple[str, str, str], ...] = (
    ("epipolar_rms_px", "", "epipolar RMS, px"),
    ("scale_ppm", "scale_sigma_ppm", "scale error, ppm"),
    ("length_rms", "", "length error RMS,\nplate units"),
    ("found_share", "", "found share of\ntextured points"),
    ("score", "", "score, median"),
)
_INCHES = (8.0, 2.2)  # width, and height of a panel


def driftPicture(rows: List[Dict[str, Any]], name: str) -> bytes:
    """The panels for which there are numbers, a line a station, as a picture of the kind that the name ends with."""
    try:
        import matplotlib

        matplotlib.use("Agg")
        from matplotlib import dates, pyplot, ticker
    except ImportError:
        raise BatchError("--plot needs Matplotlib (python3-matplotlib): install it, or leave the option out") from None
    kind = os.path.splitext(name)[1].lstrip(".").lower()
    if kind not in ("png", "svg", "pdf"):
        raise BatchError(f"{name}: a picture's name ends with .png, .svg or .pdf")
    panels = [panel for panel in _PANELS if any(row[panel[0]] is not None for row in rows)]
    if not panels:
        raise BatchError(f"{name}: these results have no figures that drift shows in: detect has none")
    figure, axes = pyplot.subplots(
        len(panels), 1, sharex=True, squeeze=False, figsize=(_INCHES[0], 0.8 + _INCHES[1] * len(panels)),
        layout="constrained",
    )
    for (column, deviation, words), axis in zip(panels, axes[:, 0]):
        for station in sorted({row["station"] for row in rows}):
            known = [row for row in rows if row["station"] == station and row[column] is not None]
            bars = [2 * row[deviation] for row in known] if deviation else None
            axis.errorbar([_place(row, rows) for row in known], [row[column] for row in known], yerr=bars,
                          marker="o", markersize=3, capsize=2, label=station)
        axis.set_ylabel(words)
        axis.grid(alpha=0.3)
    axes[0, 0].legend(fontsize="small", title="station")
    if _hasBars(panels):
        axes[-1, 0].set_xlabel("day; bars are two standard deviations")
    if all(row["day"] for row in rows):
        axes[-1, 0].xaxis.set_major_locator(ticker.MaxNLocator(integer=True))  # whole days
        axes[-1, 0].xaxis.set_major_formatter(dates.DateFormatter("%Y-%m-%d"))
    axes[-1, 0].tick_params(axis="x", rotation=30)
    out = io.BytesIO()
    figure.savefig(out, format=kind, dpi=120)
    pyplot.close(figure)
    return out.getvalue()


def _hasBars(panels: List[Tuple[str, str, str]]) -> bool:
    return any(deviation for _, deviation, _ in panels)


def _place(row: Dict[str, Any], rows: List[Dict[str, Any]]) -> Any:
    """The day; where days are not known, the word for that."""
    return date.fromisoformat(row["day"]) if all(r["day"] for r in rows) else (row["day"] or "no day")
