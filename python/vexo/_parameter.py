"""A parameter of a station."""
from __future__ import annotations

import builtins
from typing import TYPE_CHECKING, Any

from . import _html
from ._answers import Limits, Why
from ._errors import Error, WrongKind
from ._values import Entry, Range, elements_of

if TYPE_CHECKING:
    import numpy

    from ._station import Station

_KINDS = ["", "int32", "uint32", "int64", "uint64", "double", "text", "enumeration", "field"]


class Parameter:
    """A parameter: `station["FG_WIDTH"]`.

    name, label   "FG_WIDTH" and "Width"
    id            its number in the applet
    kind          "int32", "uint32", "int64", "uint64", "double", "text", "enumeration" or "field"
    unit          of value, range and limits: "pixel"
    description   one or more sentences
    group         labels from the top of the tree down: "Digital I/O / GPO"
    elements      number of elements of a field, else 0
    entries       entries of an enumeration
    read_effect, set_effect   side effects, such as "clears when read"
    """

    __slots__ = ("_station", "_index", "id", "kind", "elements", "name", "label", "unit", "description", "group",
                 "read_effect", "set_effect", "entries")

    def __init__(self, station: Station, index: int):
        self._station, self._index = station, index
        (self.id, kind, self.elements, self.name, self.label, self.unit, self.description, self.group,
         self.read_effect, self.set_effect, entries) = station._describe(index)
        self.kind: str = _KINDS[kind]
        self.entries: tuple[Entry, ...] = tuple(entries.values())

    @property
    def value(self) -> Any:
        """A number, Entry, text, or array of a field. An assignment sets it; Refused has the accepted values."""
        return self._station._read(self._index)

    @value.setter
    def value(self, value: Any) -> None:
        self._station._write(self._index, value)

    @property
    def is_number(self) -> bool:
        """True if it is a number; a range is published for most of them."""
        return self.kind not in ("text", "enumeration")

    @property
    def range(self) -> Range:
        """The published range. Setters may accept less, see `limits`. WrongKind if there is no range."""
        return Range(*self._station._range(self._index))

    @property
    def limits(self) -> Limits:
        """What is accepted now, and what sets it."""
        return self._station.limits(self.name)

    def why(self, value: Any = None, /, **given: Any) -> Why:
        """Finds why a value is refused, or the parameter is read-only, with other values as given."""
        return self._station.why(self.name, value, **given)

    @property
    def access(self) -> str:
        """The present access: "ro", "rw", "rw+" (also while acquiring), "wo", "wo+" or "-"."""
        bits = self._station._access(self._index)
        return ["-", "ro", "wo", "rw"][bits & 3] + ("+" if bits & 4 else "")

    @property
    def is_writable(self) -> bool:
        """True if it can be set now."""
        return "w" in self.access

    def _span(self, index: int | slice) -> builtins.range:
        if self.kind != "field":
            raise TypeError(f"{self.name} is not a field")
        try:
            indices = range(self.elements)[index]
        except IndexError:
            raise IndexError(f"{self.name} has the elements 0 to {self.elements - 1}, and no {index}") from None
        if isinstance(indices, int):
            return range(indices, indices + 1)
        if indices.step != 1:
            raise ValueError(f"{self.name}: elements are read and set one after the other; the step is {indices.step}")
        return indices

    def __getitem__(self, index: int | slice) -> int | numpy.ndarray:
        """Elements of a field."""
        import numpy

        span = self._span(index)
        values = numpy.empty(len(span), numpy.uint32)
        if len(span):
            self._station._read_elements(self._index, span.start, values)
        return values if isinstance(index, slice) else int(values[0])

    def __setitem__(self, index: int | slice, value: Any) -> None:
        span = self._span(index)
        values = [value] * len(span) if hasattr(value, "__index__") and not hasattr(value, "__len__") else value
        elements = elements_of(values, self.name, len(span))
        if len(span):
            self._station._write_elements(self._index, span.start, elements)

    __iter__ = None  # a field is iterated by its value

    def _shown(self) -> str:
        if self.read_effect:
            return f"not read, since a read {self.read_effect}"
        try:
            return f"{self.elements} elements" if self.kind == "field" else f"{self.value!r} {self.unit}".rstrip()
        except Error as error:
            return error.meaning

    def _range_shown(self) -> str:
        if not self.is_number:
            return ", ".join(map(str, self.entries))
        try:
            low, high, step = self.range
        except WrongKind:
            return ""
        return f"{low:.12g} to {high:.12g}" + (f" in steps of {step:.12g}" if step else "")

    def __repr__(self) -> str:
        if not self._station.is_open:
            return f"<{self.name} of a closed station>"
        about = ", ".join(filter(None, (self._range_shown(), self.access)))
        return f"<{self.name} = {self._shown()}; {about}>"

    def _repr_html_(self) -> str:
        if not self._station.is_open:
            return _html.preformatted(repr(self))
        rows = [("value", self._shown()), ("range" if self.is_number else "entries", self._range_shown()),
                ("access", self.access), ("group", self.group), ("", self.description)]
        curve = _html.curve(self.value) if self.kind == "field" and not self.read_effect else ""
        return _html.table(f"{self.name} · {self.label}", rows) + curve
