"""Pictures as numpy arrays."""
from __future__ import annotations

import os
import tempfile
from typing import TYPE_CHECKING

import numpy

from . import _vexo
from ._values import file_name

if TYPE_CHECKING:
    from ._station import Station


class Image(numpy.ndarray):
    """A picture: lines × pixels × (blue, green, red), uint8 with 8 bits per component, else uint16 with the value of
    the component. With 8 and 16 bits it is the rendered memory, without a copy. A changed picture is written and shown
    with its changes.

    record   Record: number, size, times, losses; None for a part of a picture
    tick     time at which the picture was complete, in units of 8 ns; None for a part
    """

    record: _vexo.Record | None
    _bytes: numpy.ndarray
    _source: _vexo.Record | None  # of the picture that this array was made from

    def __array_finalize__(self, origin) -> None:
        self.record = None
        self._source = getattr(origin, "record", None) or getattr(origin, "_source", None)

    def __array_wrap__(self, array, context=None, return_scalar=False):
        return array[()] if array.ndim == 0 else numpy.ndarray.__array_wrap__(self, array, context)

    @property
    def tick(self) -> int | None:
        return None if self.record is None else self.record.arrival

    @property
    def rgb(self) -> numpy.ndarray:
        """The same memory as a plain array of red, green, blue."""
        return self.view(numpy.ndarray)[..., ::-1]

    def _written(self) -> numpy.ndarray:
        """Returns the bytes of the picture, with its changes."""
        if self.record is None:
            raise ValueError(self._why_not_written())
        if self.record.bits in (8, 16):
            return self._bytes
        data = numpy.empty(self.record.size, numpy.uint8)  # the array is a copy of the packed bits
        _vexo.pack(self.record, numpy.ascontiguousarray(self), data)
        return data

    def _why_not_written(self) -> str:
        source = self._source
        if source is None or self.shape != (source.height, source.width, 3):
            return "this is a part of a picture, and only a whole one can be written"
        return (f"this array of {self.dtype} was made from a picture, and only the picture itself can be written: "
                "put the values into a copy of it, copy = picture.copy(); copy[...] = values")

    def write(self, file: str | os.PathLike) -> None:
        """Writes the picture in the format of the suffix: .png, .tiff, .ppm or .raw. InvalidArgument: a component was
        changed to a value that does not fit in its bits."""
        _vexo.write_picture(self.record, self._written(), file_name(file))

    def copy(self, order: str = "C") -> Image:
        """Returns a copy in separate memory. The copy of a whole picture has its record."""
        if self.record is None:
            return super().copy(order)
        return image_of(self.record, self._written().copy())

    def __copy__(self) -> Image:
        return self.copy()

    def __deepcopy__(self, memo: dict) -> Image:
        return self.copy()

    def __reduce__(self):
        if self.record is None:
            return numpy.array(self).__reduce__()
        return image_of, (self.record, self._written())

    def _repr_png_(self) -> bytes | None:
        if self.record is None:
            return None
        with tempfile.TemporaryDirectory() as folder:
            file = os.path.join(folder, "picture.png")
            self.write(file)
            with open(file, "rb") as written:
                return written.read()


def image_of(record: _vexo.Record, data: numpy.ndarray) -> Image:
    """Returns the picture for its bytes."""
    shape = (record.height, record.width, 3)
    if record.bits in (8, 16):
        dtype = numpy.dtype(f"u{record.bits // 8}")
        image = numpy.ndarray.__new__(Image, shape, dtype, data, 0, (record.stride, 3 * dtype.itemsize, dtype.itemsize))
    else:
        pixels = numpy.empty(shape, numpy.uint16)
        _vexo.unpack(record, data, pixels)
        image = pixels[..., ::-1].view(Image)
    image.record = record
    image._bytes = data
    return image


def render(station: Station, record: _vexo.Record, out: numpy.ndarray | None) -> Image:
    """Renders the picture, to the memory of `out` if it is given."""
    if out is not None and not isinstance(out, numpy.ndarray):
        raise TypeError(f"out is a numpy array, not {type(out).__name__}")
    data = numpy.empty(record.size, numpy.uint8) if out is None else out
    station._render(record, data)
    return image_of(record, data.reshape(-1).view(numpy.uint8)[: record.size])
