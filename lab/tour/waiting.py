"""Waiting for what comes true by itself."""

import time

POLL_SECONDS = 0.05


class NotSo(Exception):
    """Something did not come true within its limit."""


def wait_for(what, condition, limit):
    """Waits until the condition answers something that counts as true, and answers that; `limit` is in seconds."""
    end = time.monotonic() + limit
    while not (answer := condition()):
        if time.monotonic() > end:
            raise NotSo(what)
        time.sleep(POLL_SECONDS)
    return answer
