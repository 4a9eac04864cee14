"""Reads the parts of a Mach-O file that dyld uses: load commands, bindings, exports, the signature.

A file contains one image or, when it is universal, several. Only 64-bit images with chained fixups
are read, which linkers make for macOS 13; anything else raises Unreadable.
"""
import hashlib
import struct
from collections import namedtuple

Library = namedtuple("Library", "name current compatibility command")
Section = namedtuple("Section", "segment name address size")
Import = namedtuple("Import", "name library weak")
Signature = namedtuple("Signature", "ad_hoc hardened hashes_match")

EXECUTABLE, DYLIB = 2, 6
TWO_LEVEL, POSITION_INDEPENDENT = 0x80, 0x200000
MACOS = 1

ARCHITECTURES = {0x01000007: "x86_64", 0x0100000C: "arm64"}
LIBRARY_COMMANDS = {0x0C: "load", 0x80000018: "weak", 0x8000001F: "re-export", 0x20: "lazy",
                    0x80000023: "upward"}
SYMTAB, ID_DYLIB, SEGMENT, SIGNATURE, BUILD_VERSION = 0x02, 0x0D, 0x19, 0x1D, 0x32
RPATH, MAIN, EXPORTS, FIXUPS = 0x8000001C, 0x80000028, 0x80000033, 0x80000034


class Unreadable(Exception):
    """The bytes are not a Mach-O file that this module can read."""


def images(data):
    """The images in the bytes of a file, in file order."""
    try:
        if data[:4] != b"\xca\xfe\xba\xbe":
            return [Image(data)]
        count, = struct.unpack_from(">I", data, 4)
        entries = [struct.unpack_from(">5I", data, 8 + 20 * i) for i in range(count)]
        return [Image(data[place:place + size]) for _, _, place, size, _ in entries]
    except (struct.error, IndexError, ValueError) as error:
        raise Unreadable(f"not a whole Mach-O file: {error}") from error


def version(packed):
    return f"{packed >> 16}.{packed >> 8 & 255}.{packed & 255}"


def text(data, start):
    return data[start:data.index(b"\0", start)].decode()


def uleb(data, at):
    """A ULEB128 number, and the position after it."""
    value = shift = 0
    while data[at] >= 128:
        value |= (data[at] & 127) << shift
        at, shift = at + 1, shift + 7
    return value | data[at] << shift, at + 1


class Image:
    """One image. Addresses are those that the linker assigned."""

    def __init__(self, data):
        self.data = data
        magic, cpu, _, self.file_type, count, size, self.flags, _ = struct.unpack_from("<8I", data)
        if magic != 0xFEEDFACF or cpu not in ARCHITECTURES:
            raise Unreadable(f"no 64-bit image for a Mac (magic {magic:#x}, processor {cpu:#x})")
        self.architecture = ARCHITECTURES[cpu]
        self.has_entry_point = False
        self.install_name = self.platform = self.minimum_system = self.signature = None
        self.libraries = []
        self.run_paths = []
        self.sections = []
        self.symbols = {}   # address: name of the symbol defined there
        self.imports = []
        self.binds = {}     # address: the Import whose address dyld stores there
        self.rebases = {}   # address: the address in this image that dyld stores there
        self.exports = []
        self._segments = []  # (name, address, file offset), in the order of the commands
        self._fixups = None
        at = 32
        for _ in range(count):
            command, length = struct.unpack_from("<2I", data, at)
            self._read_command(command, at)
            at += length
        if at != 32 + size:
            raise Unreadable("the load commands do not fill their space")
        if self._fixups is not None:  # they refer to libraries that later commands name
            self._read_fixups(self._fixups)

    def _read_command(self, command, at):
        if command in LIBRARY_COMMANDS:
            self.libraries.append(self._library(at, LIBRARY_COMMANDS[command]))
        elif command == ID_DYLIB:
            self.install_name = self._library(at, "id")
        elif command == RPATH:
            name, = struct.unpack_from("<I", self.data, at + 8)
            self.run_paths.append(text(self.data, at + name))
        elif command == MAIN:
            self.has_entry_point = True
        elif command == BUILD_VERSION:
            self.platform, minimum = struct.unpack_from("<2I", self.data, at + 8)
            self.minimum_system = version(minimum)
        elif command == SEGMENT:
            self._read_segment(at)
        elif command == SYMTAB:
            self._read_symbols(at)
        elif command == FIXUPS:
            self._fixups, = struct.unpack_from("<I", self.data, at + 8)
        elif command == EXPORTS:
            self._read_exports(*struct.unpack_from("<2I", self.data, at + 8))
        elif command == SIGNATURE:
            self._read_signature(struct.unpack_from("<I", self.data, at + 8)[0])

    def _library(self, at, command):
        name, _, current, compatibility = struct.unpack_from("<4I", self.data, at + 8)
        return Library(text(self.data, at + name), version(current), version(compatibility),
                       command)

    def _read_segment(self, at):
        segment, address, _, place = struct.unpack_from("<16s3Q", self.data, at + 8)
        self._segments.append((segment.rstrip(b"\0"), address, place))
        count, = struct.unpack_from("<I", self.data, at + 64)
        for i in range(count):
            name, segment, start, size = struct.unpack_from("<16s16s2Q", self.data,
                                                            at + 72 + 80 * i)
            self.sections.append(Section(segment.rstrip(b"\0").decode(),
                                         name.rstrip(b"\0").decode(), start, size))

    def _read_symbols(self, at):
        table, count, names = struct.unpack_from("<3I", self.data, at + 8)
        for i in range(count):
            name, kind, _, _, address = struct.unpack_from("<IBBHQ", self.data, table + 16 * i)
            if kind & 0xE0 == 0 and kind & 0x0E == 0x0E:  # not for debuggers, and in a section
                self.symbols.setdefault(address, text(self.data, names + name))

    def _read_fixups(self, at):
        _, starts, entries, names, count, form, packing = struct.unpack_from("<7I", self.data, at)
        if form != 1 or packing != 0:
            raise Unreadable(f"chained imports of format {form}")
        for i in range(count):
            entry, = struct.unpack_from("<I", self.data, at + entries + 4 * i)
            self.imports.append(Import(text(self.data, at + names + (entry >> 9)),
                                       self._library_name(entry & 255), bool(entry & 256)))
        segments, = struct.unpack_from("<I", self.data, at + starts)
        for i in range(segments):
            offset, = struct.unpack_from("<I", self.data, at + starts + 4 + 4 * i)
            if offset:
                self._read_chains(at + starts + offset, *self._segments[i][1:])

    def _library_name(self, ordinal):
        special = {0: "itself", 253: "any (weak)", 254: "any (flat)", 255: "the main program"}
        return special.get(ordinal) or self.libraries[ordinal - 1].name

    def _read_chains(self, at, address, place):
        page_size, form, _, _, pages = struct.unpack_from("<2HQIH", self.data, at + 4)
        if form not in (2, 6):
            raise Unreadable(f"chained pointers of format {form}")
        base = next(start for name, start, _ in self._segments if name == b"__TEXT")
        for page in range(pages):
            start, = struct.unpack_from("<H", self.data, at + 22 + 2 * page)
            if start == 0xFFFF:  # nothing to fix on this page
                continue
            here, step = page * page_size + start, None
            while step != 0:
                word, = struct.unpack_from("<Q", self.data, place + here)
                if word >> 63:
                    self.binds[address + here] = self.imports[word & 0xFFFFFF]
                else:
                    self.rebases[address + here] = (word & 0xFFFFFFFFF) + (base if form == 6 else 0)
                step = 4 * (word >> 51 & 0xFFF)
                here += step

    def _read_exports(self, place, size):
        trie = self.data[place:place + size]
        waiting = [(0, b"")] if trie else []
        while waiting:
            at, name = waiting.pop()
            terminal, at = uleb(trie, at)
            if terminal:
                self.exports.append(name.decode())
            at += terminal
            children, at = trie[at], at + 1
            for _ in range(children):
                end = trie.index(b"\0", at)
                child, following = uleb(trie, end + 1)
                waiting.append((child, name + trie[at:end]))
                at = following

    def _read_signature(self, place):
        magic, _, count = struct.unpack_from(">3I", self.data, place)
        blobs = [struct.unpack_from(">2I", self.data, place + 12 + 8 * i) for i in range(count)]
        directories = [place + offset for kind, offset in blobs if kind == 0]
        if magic != 0xFADE0CC0 or len(directories) != 1:
            raise Unreadable("a signature without its one code directory")
        at = directories[0]
        flags, hashes = struct.unpack_from(">2I", self.data, at + 12)
        count, limit = struct.unpack_from(">2I", self.data, at + 28)
        hash_size, hash_kind, _, page_bits = struct.unpack_from("4B", self.data, at + 36)
        pages = range(0, limit, 1 << page_bits)
        computed = b"".join(
            hashlib.sha256(self.data[i:min(i + pages.step, limit)]).digest() for i in pages)
        stored = self.data[at + hashes:at + hashes + hash_size * count]
        self.signature = Signature(bool(flags & 0x2), bool(flags & 0x10000),
                                   hash_kind == 2 and limit == place and stored == computed)
