"""Stations of a frame grabber, on a virtual board or on one of the machine.

    import vexo
    with vexo.Station.virtual() as station:
        station.FG_WIDTH = 2048
        image = station.grab()

Times are in seconds; a tick is 8 ns of the station's time.
"""
from ._interpreter import require_main

require_main()  # before the module _vexo is loaded, which would block forever in another interpreter

from ._answers import Answer, Findings, Limits, Plan, Why
from ._errors import (Closed, Error, FileError, Gone, InvalidArgument, NotNow, Refused, Timeout, UnknownName,
                      WrongKind)
from ._parameter import Parameter
from ._station import TICKS_PER_SECOND, Pictures, Station
from ._values import Entry, Event, Range
from ._vexo import Record, version

__version__ = version()
__all__ = ["Answer", "Closed", "Entry", "Error", "Event", "FileError", "Findings", "Gone", "Image", "InvalidArgument",
           "Limits", "NotNow", "Parameter", "Pictures", "Plan", "Range", "Record", "Refused", "Station",
           "TICKS_PER_SECOND", "Timeout", "UnknownName", "Why", "WrongKind"]

for _name in set(__all__) & set(globals()):
    if isinstance(globals()[_name], type):
        globals()[_name].__module__ = __name__  # what help and errors show


def __getattr__(name: str):
    if name == "Image":  # numpy is imported with the first picture
        from ._image import Image

        return Image
    raise AttributeError(f"module 'vexo' has no attribute '{name}'")
