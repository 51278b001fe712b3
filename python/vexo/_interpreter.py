"""The interpreter that imports the package."""
from __future__ import annotations


def require_main() -> None:
    """Raises ImportError outside the main interpreter of the process."""
    try:
        import _interpreters as interpreters  # 3.13 and later
    except ImportError:
        try:
            import _xxsubinterpreters as interpreters
        except ImportError:
            return  # this Python cannot identify interpreters
    if interpreters.get_current() != interpreters.get_main():
        raise ImportError("vexo can be imported by the main interpreter of a process only")
