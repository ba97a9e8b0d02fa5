"""The Python peer against a real server process of the platform (the platform's test peer).

Usage: python_peer_test.py TEST_PEER_EXECUTABLE

Runs in a runtime directory of its own below $HL_RUNTIME_DIR (or the system's temporary directory).
The methods of the test peer are those of src/platform/tests/peer/test_peer_protocol.h.
"""

import os
import select
import socket
import struct
import subprocess
import sys
import tempfile
import unittest

import hosted_peer as hp

ECHO, GIVE_HANDLE, RAISE, USE_HANDLE = 0, 4, 5, 7
SERVER = "python-peer"


class PythonPeerTest(unittest.TestCase):
    @classmethod
    def setUpClass(cls):
        base = os.environ.get("HL_RUNTIME_DIR") or tempfile.gettempdir()
        os.makedirs(base, exist_ok=True)
        cls.directory = tempfile.TemporaryDirectory(prefix="python-peer-", dir=base)
        os.environ["HL_RUNTIME_DIR"] = cls.directory.name
        cls.server = subprocess.Popen([sys.argv[1], "serve", SERVER], stdout=subprocess.PIPE)
        if cls.server.stdout.readline().strip() != b"ready":
            raise RuntimeError("the test peer did not start")

    @classmethod
    def tearDownClass(cls):
        cls.server.kill()
        cls.server.wait()
        cls.directory.cleanup()

    def setUp(self):
        self.channel = hp.Channel(SERVER)
        self.addCleanup(self.channel.close)

    def test_handshake_resolves_names_of_the_endpoint_and_refuses_others(self):
        for name in ("echo", "echo.echo", "hl.test.Echo", "hl.test.Echo.echo"):
            self.assertEqual(self.channel.resolve(name), 1, name)
        with self.assertRaises(hp.PlatformError) as refused:
            self.channel.resolve("hl.test.Nobody")
        self.assertEqual(refused.exception.code, 0x90000015)
        with self.assertRaises(hp.PlatformError) as absent:
            hp.Channel("nobody-serves-this")
        self.assertEqual(absent.exception.code, 0x90000013)

    def test_call_is_answered_with_its_sequence_fields_and_arena(self):
        self.channel.resolve("echo")
        for fields, arena in ((bytes(range(1, 9)), b"hello"), (b"", b""), (b"\xff" * 1000, b"a" * 4096)):
            answer = self.channel.call(ECHO, fields, arena)
            self.assertEqual((answer.kind, answer.iid, answer.mid), (hp.RESPONSE, 1, ECHO))
            self.assertEqual((answer.body, answer.arena, answer.failed), (fields, arena, False))

    def test_frames_the_server_cannot_take_are_refused_and_the_channel_goes_on(self):
        self.channel.resolve("echo")
        cases = [  # frame, result code of the Refused answer
            (hp.Frame(hp.EVENT, iid=hp.IID_ANY, sequence=90, result=0x10), 0x90000016),
            (hp.Frame(hp.RESPONSE, iid=1, sequence=91), 0x90000016),
            (hp.Frame(hp.REQUEST, iid=1, body=b"x" * 1001, sequence=92), 0x90000018),  # over the peer's room
            (hp.Frame(hp.REQUEST, iid=1, sequence=93, handles=70, body=b""), 0x90000016),  # size checked first
        ]
        for frame, code in cases:
            hp.send_frame(self.channel.sock, frame)
            answer = self.channel.await_answer(frame.sequence)
            self.assertEqual((answer.kind, hp.u32(answer.result)), (hp.REFUSED, code), frame.sequence)
            self.assertEqual((answer.iid, answer.mid, answer.size), (frame.iid, frame.mid, 24))
        self.channel.sock.send(b"\x01\x02\x03")  # shorter than a header: refused with sequence 0,
        answer = self.channel.await_answer(self.channel.next_sequence)  # taken by the waiting call
        self.assertEqual(answer.sequence, 0)
        self.assertEqual((answer.kind, hp.u32(answer.result)), (hp.REFUSED, 0x90000016))
        self.assertEqual(self.channel.call(ECHO, b"\x01\x02\x03\x04").body, b"\x01\x02\x03\x04")

    def test_handle_given_by_the_server_is_an_object_end_that_carries_its_events(self):
        self.channel.resolve("echo")
        answer = self.channel.call(GIVE_HANDLE)
        self.assertEqual((answer.size, answer.handles, len(answer.fds)), (40, 1, 1))
        self.assertNotEqual(answer.descriptor(0), hp.NO_HANDLE)
        with socket.socket(fileno=answer.fds[0]) as end:
            end.settimeout(10)
            self.assertEqual(end.type, socket.SOCK_SEQPACKET)
            self.assertEqual(self.channel.call(RAISE, struct.pack("<I", 0x20)).u32_at(24), 0)
            self.assertEqual(hp.read_event(end), 0x20)

    def test_handle_passed_to_the_server_reaches_it(self):
        self.channel.resolve("echo")
        kept, given = socket.socketpair(socket.AF_UNIX, socket.SOCK_SEQPACKET)
        with kept, given:
            answer = self.channel.call(USE_HANDLE, hp.descriptor_bytes(given.fileno()), handles=1,
                                       fds=[given.fileno()])
            self.assertEqual(answer.u32_at(24), 0)
            kept.settimeout(10)
            self.assertEqual(hp.read_event(kept), 0x10000)
            given.close()  # the server closed its copy: the end hangs up
            self.assertIn(select.POLLHUP, [e & select.POLLHUP for _, e in _poll(kept)])

    def test_pipelined_requests_are_answered_by_sequence(self):
        self.channel.resolve("echo")
        sequences = []
        for value in (b"a", b"b", b"c"):
            frame = hp.Frame(hp.REQUEST, iid=1, mid=ECHO, body=value * 4, sequence=self.channel.new_sequence())
            hp.send_frame(self.channel.sock, frame)
            sequences.append((frame.sequence, value * 4))
        answers = [hp.receive_frame(self.channel.sock) for _ in sequences]
        self.assertEqual(sorted((a.sequence, a.body) for a in answers), sequences)


def _poll(sock):
    poller = select.poll()
    poller.register(sock, select.POLLIN)
    return poller.poll(10000)


if __name__ == "__main__":
    unittest.main(argv=sys.argv[:1], verbosity=2)
