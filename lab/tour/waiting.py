"""Waiting for what comes true by itself."""

import time

POLL_SECONDS = 0.05


class NotSo(Exception):
    """Something did not come true within its limit."""


def wait_for(what, condition, limit, pause=POLL_SECONDS):
    """Waits until the condition answers something that counts as true, and answers that; `limit`, and the pause after which
    it is asked again, are in seconds."""
    end = time.monotonic() + limit
    while not (answer := condition()):
        if time.monotonic() > end:
            raise NotSo(what)
        time.sleep(pause)
    return answer
