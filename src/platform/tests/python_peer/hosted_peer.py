"""A client peer of the hosted platform in Python 3, standard library only.

Written from docs/hosted-platform.md alone: the runtime directory (section 1), the frame
(section 4), the handshake (section 5), calls (section 6), handles (section 7) and events
(section 8). It knows nothing of the C++ code.
"""

import array
import os
import socket
import struct

HEADER = struct.Struct("<HHIHHIIi")  # iid, mid, size and flags, kind, version, arena size, sequence, result
HEADER_SIZE = 24
DESCRIPTOR_SIZE = 16
MAX_FRAME = 196608
MAX_HANDLES = 64
NO_HANDLE = 0xFFFFFF
IID_ANY = 0xFFFF

REQUEST, RESPONSE, RESOLVE, RESOLVED, REFUSED, EVENT = 1, 2, 3, 4, 5, 6

SIZE_MASK = 0x7FFFFF
HANDLES_SHIFT = 23
FAILED_FLAG = 0x80000000


def u32(code):
    """A result code as the unsigned 32-bit value the docs print."""
    return code & 0xFFFFFFFF


def runtime_directory():
    path = os.environ.get("HL_RUNTIME_DIR")
    if path:
        return path
    xdg = os.environ.get("XDG_RUNTIME_DIR")
    if xdg:
        return os.path.join(xdg, "halcyra")
    return "/tmp/halcyra-%d" % os.geteuid()


class Frame:
    """One packet: the 24-byte header, the descriptors and fields, the arena, the passed fds."""

    def __init__(self, kind, iid=0, mid=0, body=b"", arena=b"", sequence=0, result=0, handles=0,
                 failed=False, fds=()):
        self.kind, self.iid, self.mid = kind, iid, mid
        self.body, self.arena = bytes(body), bytes(arena)
        self.sequence, self.result, self.handles, self.failed = sequence, result, handles, failed
        self.fds = list(fds)

    @property
    def size(self):
        return HEADER_SIZE + len(self.body)

    def encode(self):
        word = (self.size & SIZE_MASK) | (self.handles << HANDLES_SHIFT) | (FAILED_FLAG if self.failed else 0)
        return HEADER.pack(self.iid, self.mid, word, self.kind, 1, len(self.arena), self.sequence,
                           self.result) + self.body + self.arena

    @staticmethod
    def decode(packet, fds):
        if len(packet) < HEADER_SIZE:
            raise ValueError("packet of %d bytes is shorter than the header" % len(packet))
        iid, mid, word, kind, version, arena, sequence, result = HEADER.unpack_from(packet)
        size, handles = word & SIZE_MASK, (word >> HANDLES_SHIFT) & 0xFF
        if version != 1 or not REQUEST <= kind <= EVENT:
            raise ValueError("unknown kind %d or version %d" % (kind, version))
        if size < HEADER_SIZE or size + arena != len(packet):
            raise ValueError("size word %d and arena %d do not add up to %d" % (size, arena, len(packet)))
        if HEADER_SIZE + handles * DESCRIPTOR_SIZE > size:
            raise ValueError("descriptors do not fit the message")
        return Frame(kind, iid, mid, packet[HEADER_SIZE:size], packet[size:], sequence, result, handles,
                     bool(word & FAILED_FLAG), fds)

    def descriptor(self, index):
        """The handle in the low 24 bits of descriptor `index` (NO_HANDLE for none)."""
        word, = struct.unpack_from("<I", self.body, index * DESCRIPTOR_SIZE)
        return word & NO_HANDLE

    def u32_at(self, offset):
        """The u32 at `offset` from the start of the message."""
        return struct.unpack_from("<I", self.body, offset - HEADER_SIZE)[0]


def descriptor_bytes(handle):
    """A handle descriptor: the handle in the low 24 bits of the first u32, the rest zero."""
    return struct.pack("<IIII", handle & NO_HANDLE, 0, 0, 0)


def send_frame(sock, frame):
    data = frame.encode()
    if frame.fds:
        sock.sendmsg([data], [(socket.SOL_SOCKET, socket.SCM_RIGHTS, array.array("i", frame.fds))])
    else:
        sock.sendmsg([data])


def receive_frame(sock):
    """Reads one packet and the descriptors passed with it; None when the other side has gone."""
    fds = array.array("i")
    packet, ancillary, flags, _ = sock.recvmsg(MAX_FRAME + 1, socket.CMSG_SPACE(MAX_HANDLES * fds.itemsize))
    for level, kind, data in ancillary:
        if level == socket.SOL_SOCKET and kind == socket.SCM_RIGHTS:
            fds.frombytes(data[:len(data) - len(data) % fds.itemsize])
    if not packet:
        for fd in fds:
            os.close(fd)
        return None
    return Frame.decode(packet, list(fds))


class PlatformError(Exception):
    def __init__(self, code, text):
        super().__init__("%s (0x%08x)" % (text, u32(code)))
        self.code = u32(code)


class Channel:
    """A client channel to one server: connect, handshake, calls matched by sequence."""

    def __init__(self, server, timeout=10.0, sock=None):
        if sock is None:
            sock = socket.socket(socket.AF_UNIX, socket.SOCK_SEQPACKET)
            try:
                sock.connect(os.path.join(runtime_directory(), "servers", server))
            except (FileNotFoundError, ConnectionRefusedError):
                sock.close()
                raise PlatformError(0x90000013, "server %s is not there" % server)
        sock.settimeout(timeout)
        self.sock = sock
        self.next_sequence = 1
        self.riid = None

    def close(self):
        self.sock.close()

    def new_sequence(self):
        sequence = self.next_sequence
        self.next_sequence += 1
        return sequence

    def await_answer(self, sequence):
        """The next frame with `sequence`, or a Refused frame with sequence 0 (the refusal of a frame
        whose sequence the server could not read); answers to other sequences are skipped."""
        while True:
            frame = receive_frame(self.sock)
            if frame is None:
                raise PlatformError(0x90000019, "the server closed the channel")
            if frame.sequence == sequence or (frame.kind == REFUSED and frame.sequence == 0):
                return frame
            for fd in frame.fds:
                os.close(fd)

    def resolve(self, name):
        sequence = self.new_sequence()
        send_frame(self.sock, Frame(RESOLVE, iid=IID_ANY, arena=name.encode(), sequence=sequence))
        answer = self.await_answer(sequence)
        if answer.kind == REFUSED or (answer.kind == RESOLVED and answer.result != 0):
            raise PlatformError(answer.result, "resolving %s was refused" % name)
        if answer.kind != RESOLVED or answer.size < 28:
            raise PlatformError(0x90000016, "malformed handshake answer")
        self.riid = answer.u32_at(24)
        return self.riid

    def call(self, mid, body=b"", arena=b"", handles=0, fds=(), iid=None):
        """Sends a Request and returns the Response frame; a Refused answer raises PlatformError."""
        request = Frame(REQUEST, iid=self.riid if iid is None else iid, mid=mid, body=body, arena=arena,
                        sequence=self.new_sequence(), handles=handles, fds=fds)
        send_frame(self.sock, request)
        answer = self.await_answer(request.sequence)
        if answer.kind == REFUSED:
            raise PlatformError(answer.result, "the request was refused")
        if answer.kind != RESPONSE:
            raise PlatformError(0x90000016, "unexpected answer kind %d" % answer.kind)
        if answer.mid != request.mid or answer.iid != request.iid:
            raise PlatformError(0x90000017, "the response does not match the request")
        return answer


def raise_event(end, mask):
    """Raises `mask` on an object end (a socket), as KnNoticeSetObjectEvent does."""
    send_frame(end, Frame(EVENT, iid=IID_ANY, result=mask))


def read_event(end):
    """The mask of the next Event frame on an object end; None when the other end has hung up."""
    frame = receive_frame(end)
    if frame is None:
        return None
    if frame.kind != EVENT:
        raise PlatformError(0x90000016, "not an event frame")
    return u32(frame.result)
