"""Pictures as numpy arrays."""
from __future__ import annotations

import os
import tempfile
from typing import TYPE_CHECKING

import numpy

from . import _vexo

if TYPE_CHECKING:
    from ._station import Station


class Image(numpy.ndarray):
    """A picture: lines × pixels × (blue, green, red), uint8 with 8 bits per component, else uint16 with the value of
    the component. With 8 and 16 bits it is the memory that the renderer wrote. A changed picture is written and shown
    as it is now.

    record   Record: number, size, times, losses; None for a part of a picture
    tick     at which the picture was complete, in 8 ns; None for a part
    """

    record: _vexo.Record | None
    _bytes: numpy.ndarray

    def __array_finalize__(self, origin) -> None:
        self.record = None

    def __array_wrap__(self, array, context=None, return_scalar=False):
        return array[()] if array.ndim == 0 else numpy.ndarray.__array_wrap__(self, array, context)

    @property
    def tick(self) -> int | None:
        return None if self.record is None else self.record.arrival

    @property
    def rgb(self) -> numpy.ndarray:
        """The same memory as a plain array of red, green, blue."""
        return self.view(numpy.ndarray)[..., ::-1]

    def write(self, file: str | os.PathLike) -> None:
        """Writes the picture in the format of the suffix: .png, .tiff, .ppm or .raw. InvalidArgument for a component
        that was changed to more than its bits hold."""
        if self.record is None:
            raise ValueError("this is a part of a picture, and only a whole one can be written")
        data = self._bytes
        if self.record.bits not in (8, 16):  # the array is a copy of the packed bits
            data = numpy.empty(self.record.size, numpy.uint8)
            _vexo.pack(self.record, numpy.ascontiguousarray(self), data)
        _vexo.write_picture(self.record, data, os.fspath(file))

    def _repr_png_(self) -> bytes | None:
        if self.record is None:
            return None
        with tempfile.TemporaryDirectory() as folder:
            file = os.path.join(folder, "picture.png")
            self.write(file)
            with open(file, "rb") as written:
                return written.read()


def render(station: Station, record: _vexo.Record, out: numpy.ndarray | None) -> Image:
    """The picture, in the memory of `out` if it is given."""
    data = numpy.empty(record.size, numpy.uint8) if out is None else out
    station._render(record, data)
    flat = data.reshape(-1).view(numpy.uint8)[: record.size]
    shape = (record.height, record.width, 3)
    if record.bits in (8, 16):
        dtype = numpy.dtype(f"u{record.bits // 8}")
        image = numpy.ndarray.__new__(Image, shape, dtype, flat, 0, (record.stride, 3 * dtype.itemsize, dtype.itemsize))
    else:
        pixels = numpy.empty(shape, numpy.uint16)
        _vexo.unpack(record, flat, pixels)
        image = pixels[..., ::-1].view(Image)
    image.record = record
    image._bytes = flat
    return image
