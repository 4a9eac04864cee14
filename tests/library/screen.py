"""A terminal for tests, which shows a program's output as a person sees it."""

import fcntl
import os
import pty
import re
import struct
import termios
import threading


class Screen:
    """A screen of limited width and unlimited height. Like current terminals it wraps long lines,
    and wraps them again when the width changes."""

    PIECE = re.compile(r"\r|\n|\x1b\[J|\x1b\[(?:31|39)m|[^\r\n\x1b]")

    def __init__(self, width):
        self.width = width
        self.lines = [""]   # as written; each takes as many rows as it needs
        self.column = 0     # of the cursor, in the last line
        self.drawings = 0   # how often the last line was erased
        self.colours = False
        self.unknown = []

    def feed(self, text):
        at = 0
        while at < len(text):
            found = self.PIECE.match(text, at)
            if not found:
                self.unknown.append(text[at:at + 8])
                at += 1
                continue
            self.take(found.group())
            at = found.end()

    def take(self, piece):
        line = self.lines[-1]
        if piece == "\r":
            # To the start of the row. After a full row the cursor is still in that row.
            self.column = max(self.column - 1, 0) // self.width * self.width
        elif piece == "\n":
            self.lines.append("")
            self.column = 0
        elif piece == "\x1b[J":
            self.lines[-1] = line[:self.column]
            self.drawings += 1
        elif piece.startswith("\x1b["):
            self.colours = True
        else:
            self.lines[-1] = line[:self.column].ljust(self.column) + piece + line[self.column + 1:]
            self.column += 1

    def rows(self):
        """The rows on the screen, without empty ones."""
        return [line[i:i + self.width] for line in self.lines
                for i in range(0, len(line), self.width)]


class Terminal:
    """A pseudo-terminal. Everything written to `slave` appears on `screen`. With a width of 0 the
    system does not know the width, and the screen is wide."""

    def __init__(self, width):
        self.master, self.slave = pty.openpty()
        self.screen = Screen(width)
        self.lock = threading.Lock()
        self.written = b""
        self.resize(width)
        self.reader = threading.Thread(target=self.read, daemon=True)
        self.reader.start()

    def read(self):
        while True:
            try:
                piece = os.read(self.master, 65536)
            except OSError:  # the last process that had it open has ended
                return
            if not piece:
                return
            with self.lock:
                self.written += piece
                self.screen.feed(piece.decode("utf-8", "replace"))

    def resize(self, width):
        with self.lock:
            fcntl.ioctl(self.slave, termios.TIOCSWINSZ, struct.pack("4H", 24, width, 0, 0))
            self.screen.width = width or 200

    def last_line(self):
        with self.lock:
            return self.screen.lines[-1]

    def close(self):
        """Reads the remaining output after the program has ended."""
        os.close(self.slave)
        self.reader.join(30)
        os.close(self.master)
