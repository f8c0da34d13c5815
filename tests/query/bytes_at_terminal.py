"""Runs a command at a terminal of its own: bytes_at_terminal.py LINES COMMAND...

Types the lines of the file LINES, each once the prompt is there, and prints all that the terminal got, byte for byte.
Ends with the command's exit status. A line may hold \\xNN escapes.
"""
import os
import pty
import select
import sys
import time

PROMPTS = (b"qrysh> ", b"yes to replace it: ", b"yes to go on: ")
PATIENCE = 20  # seconds, of a slow machine


def read_until(terminal, is_done):
    """All that comes until it is done, or the command has ended."""
    got = b""
    end = time.monotonic() + PATIENCE
    while not is_done(got):
        if not select.select([terminal], [], [], max(0, end - time.monotonic()))[0]:
            sys.exit(f"the terminal shows no prompt behind {got!r}")
        try:
            part = os.read(terminal, 65536)
        except OSError:  # nobody holds its other end any more
            part = b""
        if not part:
            break
        got += part
    return got


def main():
    with open(sys.argv[1], "rb") as file:
        lines = [line.decode("unicode_escape").encode("latin-1") for line in file.read().splitlines()]
    child, terminal = pty.fork()
    if child == 0:
        os.execvp(sys.argv[2], sys.argv[2:])
    got = b""
    for line in lines:
        got += read_until(terminal, lambda text: text.endswith(PROMPTS))
        os.write(terminal, line + b"\n")
    got += read_until(terminal, lambda text: False)
    sys.stdout.buffer.write(got)
    return os.waitstatus_to_exitcode(os.waitpid(child, 0)[1])


sys.exit(main())
