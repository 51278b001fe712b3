"""Failed calls, as exceptions."""
from __future__ import annotations


class Error(Exception):
    """A failed call. Its message says what was wrong, the limit, what sets it, and what would be accepted.

    code     the applet's code, such as -6000, or one of libvexo below -20000
    symbol   the name of the code, "FG_ERR_OUT_OF_RANGE"
    meaning  short description of the code
    details  all details, as a dictionary
    """

    def __init__(self, details: dict):
        super().__init__(details["message"])
        self.details = details
        self.code: int = details["code"]
        self.symbol: str = details["symbol"]
        self.meaning: str = details["meaning"]

    def __str__(self) -> str:
        return self.details["message"]

    def __reduce__(self):
        return type(self), (self.details,)


class Refused(Error, ValueError):
    """A value was refused, and nothing was changed. Unknown members are None or empty.

    name           the parameter
    requested      the refused value
    limit          {"minimum", "maximum", "step"} of a number, as accepted now
    nearest        the nearest accepted value
    set_by         what sets the limit: [{"limit", "parameter", "with", "becomes"}]
    accepted_with  changes of other parameters that make the value accepted: ["FG_XOFFSET=0"]
    """

    def __init__(self, details: dict):
        super().__init__(details)
        self.name: str | None = details.get("name")
        self.requested = details.get("requested", {}).get("value")
        self.limit: dict | None = details.get("limit")
        self.nearest = details.get("nearest", {}).get("value")
        self.set_by: list[dict] = details.get("setBy", [])
        self.accepted_with: list[str] = details.get("acceptedWith", [])


class UnknownName(Error, AttributeError, KeyError):
    """No parameter or event has that name; `suggestions` has the nearest names."""

    def __init__(self, details: dict):
        super().__init__(details)
        self.suggestions: list[str] = details.get("suggestions", [])
        self.name, self.obj = "", None  # prevents suggestions of the interpreter: the message has its own


class Timeout(Error, TimeoutError):
    """Nothing arrived in time; the message has the most likely reason."""


class InvalidArgument(Error, ValueError):
    """An argument is beyond its limits."""


class WrongKind(Error, TypeError):
    """The parameter has another kind of value."""


class NotNow(Error, RuntimeError):
    """Not possible in this state, or on this board; the message says why."""


class Closed(NotNow, ValueError):
    """The station was closed, or never opened."""


class Gone(Error, LookupError):
    """The picture is no longer in the memory."""


class FileError(Error, OSError):
    """A file cannot be read or written, or is not what was expected."""


_CLASSES = {
    "VEXO_TIMEOUT": Timeout,
    "VEXO_ERR_ARGUMENT": InvalidArgument,
    "VEXO_ERR_NAME": UnknownName,
    "VEXO_ERR_VALUE": Refused,
    "VEXO_ERR_KIND": WrongKind,
    "VEXO_ERR_NOT_VIRTUAL": NotNow,
    "VEXO_ERR_STATE": NotNow,
    "VEXO_ERR_GONE": Gone,
    "VEXO_ERR_FILE": FileError,
}


def error_of(text: str) -> Error:
    """Returns the exception for the details of a failed call (JSON)."""
    import json

    details = json.loads(text)
    kind = Refused if "requested" in details else _CLASSES.get(details["symbol"], Error)
    return kind(details)


def invalid(words: str) -> InvalidArgument:
    """Returns the exception for an argument that is checked before the call of libvexo."""
    return InvalidArgument({"code": -20002, "symbol": "VEXO_ERR_ARGUMENT",
                            "meaning": "an argument beyond its limits", "message": words})


def closed() -> Closed:
    """Returns the exception for a use of a closed station."""
    return Closed({"code": -20010, "symbol": "VEXO_ERR_STATE", "meaning": "not possible now",
                   "message": "the station is closed"})
