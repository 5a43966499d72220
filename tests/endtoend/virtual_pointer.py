# SPDX-License-Identifier: GPL-3.0-or-later
"""A virtual pointer for a Wayland compositor: wlr-virtual-pointer-unstable-v1 in Wayland's wire format."""
import os
import socket
import struct
import time

MANAGER = b"zwlr_virtual_pointer_manager_v1"
DISPLAY, REGISTRY, MANAGER_ID, POINTER = 1, 2, 3, 4  # object numbers
LEFT_BUTTON = 0x110


def wire_string(words):
    words += b"\0"
    return struct.pack("=I", len(words)) + words + b"\0" * (-len(words) % 4)


class VirtualPointer:
    def __init__(self, width, height):
        self.extent = width, height
        self.socket = socket.socket(socket.AF_UNIX)
        self.socket.connect(os.path.join(os.environ["XDG_RUNTIME_DIR"], os.environ["WAYLAND_DISPLAY"]))
        self.send(DISPLAY, 1, struct.pack("=I", REGISTRY))  # get_registry
        name = self.wait_for_manager()
        self.send(REGISTRY, 0, struct.pack("=I", name) + wire_string(MANAGER) + struct.pack("=II", 1, MANAGER_ID))  # bind
        self.send(MANAGER_ID, 0, struct.pack("=II", 0, POINTER))  # create_virtual_pointer on the only seat

    def send(self, target, operation, arguments=b""):
        self.socket.sendall(struct.pack("=IHH", target, operation, 8 + len(arguments)) + arguments)

    def receive(self, length):
        received = self.socket.recv(length, socket.MSG_WAITALL)
        assert len(received) == length, "the compositor closed the connection"
        return received

    def wait_for_manager(self):
        """Waits until the registry reports the manager, and returns its number."""
        while True:
            _, _, size = struct.unpack("=IHH", self.receive(8))
            event = self.receive(size - 8)
            if MANAGER in event:
                return struct.unpack_from("=I", event)[0]

    def now(self):
        return int(time.monotonic() * 1000) & 0xFFFFFFFF

    def move(self, x, y):
        self.send(POINTER, 1, struct.pack("=IIIII", self.now(), x, y, *self.extent))
        self.send(POINTER, 4)  # frame

    def button(self, pressed):
        self.send(POINTER, 2, struct.pack("=III", self.now(), LEFT_BUTTON, pressed))
        self.send(POINTER, 4)
