"""Answers to questions. Nothing on the board is changed by a question."""
from __future__ import annotations

from ._values import Range


class Answer:
    """An answer: `text`, and `document` with the same contents as dictionaries and lists."""

    def __init__(self, answer: tuple[str, str]):
        import json

        self.text = answer[0]
        self.document: dict = json.loads(answer[1])

    def __repr__(self) -> str:
        return self.text

    def _repr_html_(self) -> str:
        from ._html import preformatted

        return preformatted(self.text)


class Limits(Answer):
    """What the setter of a parameter accepts now, and what sets the limits.

    accepted   Range of a number, in its unit; None for other parameters, or if nothing is accepted
    minimum, maximum, step   the members of `accepted`
    set_by     what sets a limit: [{"limit", "parameter", "with", "becomes"}]
    fixed      limits that no parameter changes: ["minimum"]
    entries    entries of an enumeration: [{"value", "symbol", "label", "accepted"}]
    """

    def __init__(self, answer: tuple[str, str]):
        super().__init__(answer)
        its = self.document["parameters"][0]
        accepted = its.get("accepted") or {}
        self.accepted = (Range(accepted["minimum"], accepted["maximum"], accepted.get("step", 0))
                         if "minimum" in accepted else None)
        self.minimum: float | None
        self.maximum: float | None
        self.step: float | None
        self.minimum, self.maximum, self.step = self.accepted or (None, None, None)
        self.set_by: list[dict] = its.get("setBy", [])
        self.fixed: list[str] = its.get("fixed", [])
        self.entries: list[dict] = its.get("entries", [])


class Why(Answer):
    """Why a value is refused, or a parameter read-only.

    accepted       True if the value is accepted, or the parameter writable
    accepted_with  changes of other parameters with which it is accepted: ["FG_XOFFSET=0"]
    set_by         what sets the limit
    nearest        the nearest accepted value, or None
    """

    def __init__(self, answer: tuple[str, str]):
        super().__init__(answer)
        its = self.document["answers"][0]
        self.accepted: bool = its.get("accepted", its.get("writable", False))
        self.accepted_with: list[str] = its.get("acceptedWith", its.get("writableWith", []))
        self.set_by: list[dict] = its.get("setBy", [])
        self.nearest = its.get("nearest", {}).get("value")


class Plan(Answer):
    """The effects of assignments in the given order.

    writes   writes to the design: [{"access", "parameter", "type", "value"}]
    changes  values of the design that would change: [{"parameter", "before", "after"}]
    moves    limits and accesses that would change: [{"parameter", "what", "from", "to"}]
    refused  {"code", "symbol", "meaning", "message"} of the assignment that would be refused, or None
    """

    def __init__(self, answer: tuple[str, str]):
        super().__init__(answer)
        steps = self.document["assignments"]
        self.writes, self.changes, self.moves = (
            [row for step in steps for row in step.get(key, [])] for key in ("writes", "changes", "moves"))
        self.refused: dict | None = next((step["error"] for step in steps if "error" in step), None)


class Findings(Answer):
    """`findings`: what a load of a file would lose, or settings that are probably not intended."""

    def __init__(self, answer: tuple[str, str]):
        super().__init__(answer)
        self.findings: list[dict] = self.document["findings"]

    def __bool__(self) -> bool:
        return bool(self.findings)
