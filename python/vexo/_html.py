"""Display in a notebook."""
from __future__ import annotations

_POINTS = 256  # of a curve


def escape(text: str) -> str:
    """Escapes text for HTML."""
    import html

    return html.escape(text)


def table(title: str, rows: list[tuple[str, str]]) -> str:
    """Formats rows of two cells below a title; rows without a text are left out."""
    cells = "".join(f'<tr><th style="text-align:left">{escape(name)}</th>'
                    f'<td style="text-align:left">{escape(str(text))}</td></tr>' for name, text in rows if text)
    return f"<table><caption><b>{escape(title)}</b></caption>{cells}</table>"


def preformatted(text: str) -> str:
    """Formats text with its columns."""
    return f"<pre>{escape(text)}</pre>"


def curve(values) -> str:
    """Draws the values of a field over their index."""
    chosen = values[:: max(1, len(values) // _POINTS)]
    top = max(1, int(values.max()))
    points = " ".join(f"{i * 256 / max(1, len(chosen) - 1):.4g},{128 - int(value) * 128 / top:.4g}"
                      for i, value in enumerate(chosen))
    return (f'<svg width="264" height="136" viewBox="-4 -4 264 136"><rect width="256" height="128" fill="none" '
            f'stroke="gray"/><polyline points="{points}" fill="none" stroke="currentColor" stroke-width="1.5"/>'
            f"<title>{len(values)} elements, 0 to {top}</title></svg>")
