"""Stations: an applet on a board, with its parameters, files, events and pictures."""
from __future__ import annotations

import os
import threading
from typing import TYPE_CHECKING, Any, Iterator

from . import _html, _vexo
from ._answers import Findings, Limits, Plan, Why
from ._errors import InvalidArgument, Timeout, UnknownName, closed, invalid
from ._parameter import Parameter
from ._values import Event, assignments_of, assumed, file_name, number, text, whole

if TYPE_CHECKING:
    import numpy

    from ._image import Image

    Path = str | os.PathLike[str]

TICKS_PER_SECOND: int = _vexo.TICKS_PER_SECOND

_LATEST = 2**62  # latest tick that is accepted

_VIRTUAL, _OFFLINE, _SYSTEM = range(3)
_LOOK, _NO_ADVICE = 1, 2
# A camera that delivers a line for each trigger, and a chart in front of it.
_CAMERA = """{"station": 1, "camera": {"width": 4096}, "scene": {"image": "chart"},
              "parameters": {"FG_SENSORWIDTH": 4096}}"""

# A wheel cannot contain the symbolic link that the virtual board needs beside its libraries.
_DESCRIPTORS = os.path.join(os.path.dirname(__file__), "lib", "vexo", "virtual-board", "descriptors.mcf")


def _optional(path: Path | None) -> bytes | None:
    return None if path is None else file_name(path)


def _link_descriptors() -> None:
    if os.path.isdir(os.path.dirname(_DESCRIPTORS)) and not os.path.lexists(_DESCRIPTORS):
        try:
            os.symlink("/proc/self/fd", _DESCRIPTORS)
        except OSError:
            pass  # a folder of another user: functions that need the link report an error


def _wall(seconds: float | None) -> float:
    return -1.0 if seconds is None else number("wall", seconds)


class Station(_vexo.Core):
    """An open station: `Station.virtual()`, `.offline()` or `.system()`; `close()` or the end of a with block closes it.

    Parameters are attributes: `station.FG_WIDTH = 2048`. Case and "FG_" do not matter, and a label is a name too.
    `station["FG_WIDTH"]` is the Parameter. Any number of threads may use a station; waits, pictures,
    questions and sets release the interpreter lock.
    """

    if TYPE_CHECKING:
        def __getattr__(self, name: str) -> Any: ...
        def __setattr__(self, name: str, value: Any) -> None: ...

    def __init__(self, board: int = _VIRTUAL, *, station: Path | None = None, library_dir: Path | None = None,
                 applet: Path | None = None, bridge: Path | None = None, look: bool = False, advice: bool = True):
        """Opens a board; virtual(), offline() and system() have the usual arguments.

        station      station file of a virtual board; default: that of the variable VBOARD_STATION, if set
        library_dir  folder of the libraries; default: those of this package
        applet       file of another applet library
        bridge       library that opens the board of the machine
        look         read-only: no start value is written to the board, and sets, loads and pictures are NotNow
        advice       refusals say what would be accepted, found on a scratch board
        """
        _link_descriptors()
        whole("board", board, _VIRTUAL, _SYSTEM)
        flags = (_LOOK if look else 0) | (0 if advice else _NO_ADVICE)
        super().__init__(board, flags, *map(_optional, (library_dir, applet, bridge, station)))
        self._parameters: dict[str, Parameter] = {}

    @classmethod
    def virtual(cls, station: Path | None = None, **options: Any) -> Station:
        """Opens a virtual board, set up from a station file. The default is a camera of 4096 pixels above a chart."""
        opened = cls(_VIRTUAL, station=station, **options)
        if station is None and not os.environ.get("VBOARD_STATION"):
            opened._set_up_text(_CAMERA, None)
        return opened

    @classmethod
    def offline(cls, **options: Any) -> Station:
        """Opens a station without a board: parameters and limits, no pictures, files or measured values."""
        return cls(_OFFLINE, **options)

    @classmethod
    def system(cls, bridge: Path | None = None, **options: Any) -> Station:
        """Opens the board of this machine; `bridge` is the library that opens it, if the board library does not."""
        return cls(_SYSTEM, bridge=bridge, **options)

    def __enter__(self) -> Station:
        return self

    def __exit__(self, *error: Any) -> None:
        self.close()

    # Parameters

    def __getitem__(self, name: str) -> Parameter:
        if not self.is_open:
            raise closed()
        known = self._parameters.get(name)
        if known is None:
            known = self._parameters[name] = Parameter(self, self._index(name))
        return known

    def _index(self, name: str) -> int:
        index = self._names().get(text("the name of a parameter", name))
        return self._find(name) if index is None else index

    def __setitem__(self, name: str, value: Any) -> None:
        self[name].value = value

    def __iter__(self) -> Iterator[Parameter]:
        """Iterates over all parameters, in the order of the tree."""
        return (self[name] for name in self._names())

    def __len__(self) -> int:
        return len(self._names())

    def __contains__(self, name: object) -> bool:
        """True for every name that `station[name]` accepts."""
        try:
            return isinstance(name, str) and self._index(name) >= 0
        except (UnknownName, InvalidArgument):
            return False

    def __bool__(self) -> bool:
        return self.is_open

    def __dir__(self) -> list[str]:
        return [*super().__dir__(), *self._names()]

    def set(self, values: dict[str, Any] | None = None, /, *, any_order: bool = False, **named: Any) -> None:
        """Sets all parameters or none: `set(FG_WIDTH=2048, FG_HEIGHT=512)`. `any_order`: finds an order in which all
        are accepted. A dictionary can also have names such as "FG_LUT_VALUE_RED[0..255]"."""
        if not isinstance(any_order, bool):
            raise TypeError(f"any_order is True or False, not {any_order!r}")
        self._set_all(assignments_of(values or {}, named), any_order)

    def save(self, file: Path) -> None:
        """Saves the parameters to a configuration file, whose name must contain ".mcf"."""
        self._save(file_name(file))

    def load(self, file: Path) -> None:
        """Loads a configuration file. `losses(file)` shows in advance which of its values are refused."""
        self._load(file_name(file))

    def document(self) -> str:
        """Returns the XML document (GenApi 1.0) of the parameters with their present limits."""
        return self._document()

    def info(self) -> dict:
        """Describes the station: "version", "board", "applet", "files", "parameters", "notes"."""
        import json

        return json.loads(self._info())

    # Questions

    def limits(self, name: str, /, **given: Any) -> Limits:
        """Finds what a parameter accepts now and what sets its limits, with other values as given."""
        return Limits(self._limits(text("name", name), assumed(given)))

    def why(self, name: str, value: Any = None, /, **given: Any) -> Why:
        """Finds why a value is refused, or (without one) the parameter is read-only, with other values as given."""
        text("name", name)
        question = name if value is None else assignments_of({name: value}, {})[0]
        return Why(self._why(question, assumed(given)))

    def plan(self, values: dict[str, Any] | None = None, /, **named: Any) -> Plan:
        """Finds the effects of these assignments in this order. Nothing is set."""
        return Plan(self._plan(assignments_of(values or {}, named)))

    def losses(self, file: Path) -> Findings:
        """Finds what a load of the configuration file would lose."""
        return Findings(self._check(file_name(file)))

    def lint(self) -> Findings:
        """Finds settings that are accepted, but probably not intended."""
        return Findings(self._lint())

    # Time, signals and events of a virtual board

    def clock(self, factor: float) -> None:
        """Makes time follow the wall clock, `factor` times as fast (0.001 to 1000). 0, the default: stepped, time
        advances only in waits and advance()."""
        self._clock(number("factor", factor))

    @property
    def now(self) -> int:
        """The present time in ticks of 8 ns."""
        return self._now()

    def advance(self, seconds: float = 0.0, *, ticks: int = 0) -> None:
        """Advances stepped time; Ctrl-C stops at the tick that has been reached."""
        whole("ticks", ticks, 0, _LATEST)
        wanted = number("seconds", seconds) * TICKS_PER_SECOND
        if not 0 <= wanted <= _LATEST:
            raise invalid(f"seconds is {seconds}; 0 to {_LATEST / TICKS_PER_SECOND:.0f} is accepted")
        self._advance(round(wanted) + ticks)

    def wave(self, wave: str) -> None:
        """Connects a wave to an input: "GPI_0=high", "GPI_2=square:1ms", "GPI_0,GPI_1=encoder:20000"."""
        self._wave(text("wave", wave))

    def set_up(self, station: Path | dict) -> None:
        """Sets up camera, belt, scene, inputs, clock and parameters from a station file, or from its contents."""
        if isinstance(station, dict):
            import json

            self._set_up_text(json.dumps(station), None)
        else:
            self._set_up(file_name(station))

    @property
    def events(self) -> dict[str, int]:
        """The masks of all events, by name."""
        return dict(self._events())

    def wait_event(self, *names: str, timeout: float = 1.0, wall: float | None = None) -> Event | None:
        """Takes the oldest event with one of these names, or waits for one; others are dropped. No name: any event.
        `timeout` in seconds of the station's time, `wall` of the wall clock. Returns None after the time-out."""
        mask = 0
        for name in names:
            mask |= self._event_mask(text("the name of an event", name))
        found = self._wait_event(mask, number("timeout", timeout), _wall(wall))
        return None if found is None else Event(*found)

    # Pictures

    def pictures(self, count: int | None = None, *, timeout: float = 1.0, wall: float | None = None, frames: int = 4,
                 ring: bool = False, out: numpy.ndarray | None = None) -> Pictures:
        """Starts an acquisition of `count` pictures, or a continuous one. It ends with the last picture, with close()
        or stop(), or at the end of a with block; it continues after a Timeout.

        timeout   for each picture, in seconds of the station's time; Timeout has the most likely reason
        wall      the same in seconds of the wall clock
        frames    number of frames of the memory, 1 to 65536
        ring      a full memory overwrites the oldest picture; otherwise the acquisition waits
        out       contiguous array for the bytes of a picture, used for every picture
        """
        return Pictures(self, count, timeout, wall, frames, ring, out)

    def stop(self) -> None:
        """Ends the running acquisition; does nothing if there is none."""
        self._stop()

    def grab(self, *, timeout: float = 1.0, wall: float | None = None, out: numpy.ndarray | None = None) -> Image:
        """Takes one picture; the arguments are those of pictures()."""
        with self.pictures(1, timeout=timeout, wall=wall, out=out) as pictures:
            return next(pictures)

    # Display

    def __repr__(self) -> str:
        if not self.is_open:
            return "<vexo.Station, closed>"
        info = self.info()
        return f"<vexo.Station: {info['applet']['name']} {info['applet']['version']}, board: {info['board']}>"

    def _repr_html_(self) -> str:
        if not self.is_open:
            return _html.preformatted(repr(self))
        groups: dict[str, list[str]] = {}
        for parameter in self:
            groups.setdefault(parameter.group, []).append(f"{parameter.name} = {parameter._shown()}")
        return _html.table(repr(self)[1:-1], [(group or "·", ", ".join(rows)) for group, rows in groups.items()])


class Pictures:
    """The pictures of a running acquisition: an iterator and a context manager. Each picture is rendered when it is
    reached. Several threads may share the iterator: one waits for the next picture while the others render theirs."""

    def __init__(self, station: Station, count: int | None, timeout: float, wall: float | None, frames: int,
                 ring: bool, out: numpy.ndarray | None):
        self._is_running = False
        self._left = None if count is None else whole("count", count, 0, 2**63)
        self._station, self._ring, self._out = station, bool(ring), out
        self._timeout, self._wall = number("timeout", timeout), _wall(wall)
        self._lock = threading.Lock()  # guards _left and _taking
        self._taking = 0  # pictures that threads are taking
        self._waiting = threading.Lock()  # held by the thread that waits for the next picture
        frames = whole("frames", frames, 1, _vexo.MOST_FRAMES)
        self._free = threading.Semaphore(frames)  # frames without a picture being rendered
        station._start(frames, self._ring)
        self._is_running = True

    def __iter__(self) -> Pictures:
        return self

    def __next__(self) -> Image:
        with self._lock:
            is_over = self._left == 0 or not self._is_running
            is_last = is_over and self._taking == 0
            if not is_over:
                self._taking += 1
                if self._left is not None:
                    self._left -= 1
        if is_last:
            self.close()
        if is_over:
            raise StopIteration
        image = None
        try:
            with self._free:
                image = self._take()
        except Timeout:
            raise
        except BaseException:  # such as Ctrl-C
            self.close()
            raise
        finally:
            self._finish(image is not None)
        if image is None:
            raise StopIteration
        return image

    def _take(self) -> Image | None:
        """Takes the next picture; None if the acquisition has ended."""
        from ._image import render

        with self._waiting:
            if not self._is_running:
                return None
            record = self._station._wait_picture(0, self._timeout, self._wall)
        image = render(self._station, record, self._out)
        if not self._ring:
            self._station._release(record.number)
        return image

    def _finish(self, is_taken: bool) -> None:
        with self._lock:
            self._taking -= 1
            if not is_taken and self._left is not None:
                self._left += 1
            is_last = self._left == 0 and self._taking == 0
        if is_last:
            self.close()

    def close(self) -> None:
        """Ends the acquisition; does nothing if it has ended."""
        if self._is_running and self._station.is_open:
            self._is_running = False
            self._station._stop()

    def __enter__(self) -> Pictures:
        return self

    def __exit__(self, *error: Any) -> None:
        self.close()

    def __del__(self) -> None:
        self.close()
