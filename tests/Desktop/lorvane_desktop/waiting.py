"""Waiting for what another process does: a look at its state again and again, up to a deadline."""

import time


def until(condition, seconds, what):
    """Gives the first true value of `condition()`; TimeoutError after `seconds`, telling `what`."""
    deadline = time.monotonic() + seconds
    while True:
        value = condition()
        if value:
            return value
        if time.monotonic() > deadline:
            raise TimeoutError(f"within {seconds} s there was no sign of {what}")
        time.sleep(0.01)
