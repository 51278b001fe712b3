"""Values of parameters."""
from __future__ import annotations

import os
from typing import TYPE_CHECKING, NamedTuple

from ._errors import invalid

if TYPE_CHECKING:
    import numpy


class Entry(int):
    """The value of an enumeration: a number with `symbol` ("FG_COL24") and `label` ("Color 24bit")."""

    symbol: str
    label: str

    def __new__(cls, value: int, symbol: str = "", label: str = "") -> Entry:
        entry = super().__new__(cls, value)
        entry.symbol = symbol
        entry.label = label
        return entry

    def __getnewargs__(self):
        return int(self), self.symbol, self.label

    def __repr__(self) -> str:
        return f"{self.symbol or self.label} ({int(self)})"

    def __str__(self) -> str:
        return self.symbol or self.label or format(int(self))


class Range(NamedTuple):
    """A range of numbers; `step` 0: any value in between."""

    minimum: float
    maximum: float
    step: float


class Event(NamedTuple):
    """An event: `tick` counts units of 8 ns since the opening; `mask` is 0 for the board's own events."""

    name: str
    tick: int
    mask: int


def elements_of(values, name: str, count: int) -> numpy.ndarray:
    """Converts values to `count` elements of a field, 32-bit numbers."""
    import numpy

    given = numpy.asarray(values)
    if given.shape == (0,):
        given = given.astype(numpy.uint32)  # an empty list has no type of its own
    if given.dtype.kind not in "iu" or given.ndim != 1:
        raise TypeError(f"{name} takes a list of whole numbers, not {given.ndim}-dimensional {given.dtype}")
    if len(given) != count:
        raise ValueError(f"{name}: {count} elements are set, and {len(given)} were given")
    if len(given) and not 0 <= int(given.min()) <= int(given.max()) <= 0xFFFFFFFF:
        raise ValueError(f"{name} takes numbers from 0 to 4294967295; given were {given.min()} to {given.max()}")
    return numpy.ascontiguousarray(given, dtype=numpy.uint32)


def number(name: str, value) -> float:
    """Checks that an argument is a number."""
    try:
        if not isinstance(value, str):
            return float(value)
    except (TypeError, ValueError):
        pass
    raise TypeError(f"{name} is a number, not {value!r}")


def whole(name: str, value, least: int, most: int) -> int:
    """Checks that an argument is a whole number within limits."""
    if not hasattr(value, "__index__"):
        raise TypeError(f"{name} is a whole number, not {value!r}")
    if not least <= int(value) <= most:
        raise invalid(f"{name} is {value}; {least} to {most} is accepted")
    return int(value)


def text(name: str, value) -> str:
    """Checks that an argument is a text."""
    if not isinstance(value, str):
        raise TypeError(f"{name} is a text, not {value!r}")
    return value


def file_name(file: str | os.PathLike) -> bytes:
    """The name of a file, which may be any bytes."""
    try:
        return os.fsencode(file)
    except UnicodeEncodeError:
        raise invalid(f"{file!r} has a half of a character (a surrogate), which no name of a file can hold") from None


def text_of(name: str, value) -> str:
    """Formats a value for an assignment "NAME=VALUE"."""
    if isinstance(value, str):
        return value
    if hasattr(value, "__len__"):
        raise TypeError(f"{name}: an assignment takes a number or a text; set a field by itself")
    if hasattr(value, "__index__"):
        return str(int(value))
    try:
        return repr(float(value))
    except (TypeError, ValueError):
        raise TypeError(f"{name} takes a number or a text, not {type(value).__name__}") from None


def assignments_of(given: dict, named: dict) -> list[str]:
    """Formats both dictionaries as "NAME=VALUE"."""
    return [f"{name}={text_of(name, value)}" for name, value in {**given, **named}.items()]


def assumed(given: dict) -> str:
    """Formats values that a question assumes as one line; each is quoted as one word."""
    import shlex

    return shlex.join(assignments_of({}, given))
