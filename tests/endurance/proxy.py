"""A TCP proxy on loopback that can break what it carries."""

import select
import socket
import struct
import threading
import time

CHUNK = 65536


def close(one, reset):
    """Closes a socket; with `reset` the other side is told that the connection is lost."""
    try:
        if reset:
            one.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
        else:
            one.shutdown(socket.SHUT_RDWR)
    except OSError:
        pass
    one.close()


class Link:
    """A connection through the proxy."""

    def __init__(self, proxy, client, server):
        self.proxy = proxy
        self.ends = {client: server, server: client}
        self.client = client
        self.lock = threading.Lock()
        self.left = None  # bytes that may still pass, or None; (count, from the client, reset)

    def cut_after(self, count, from_client, reset):
        with self.lock:
            self.left = [count, from_client, reset]

    def cut(self, reset):
        self.cut_after(0, None, reset)

    def passes(self, data, from_client):
        """What of the data may pass, and whether the link goes on."""
        with self.lock:
            if self.left is None or self.left[1] not in (None, from_client):
                return data, True
            self.left[0] -= len(data)
            if self.left[0] > 0:
                return data, True
            return data[:len(data) + self.left[0]] if self.left[1] is not None else b"", False

    def pump(self):
        reset = False
        try:
            while True:
                ready, _, _ = select.select(list(self.ends), [], [], 0.05)
                while time.monotonic() < self.proxy.stalled_until:
                    time.sleep(0.01)
                with self.lock:
                    if self.left is not None and self.left[1] is None:
                        break
                for end in ready:
                    data = end.recv(CHUNK)
                    allowed, goes_on = self.passes(data, end is self.client)
                    self.ends[end].sendall(allowed)
                    if not data or not goes_on:
                        return
        except OSError:
            pass
        finally:
            with self.lock:
                reset = self.left is not None and self.left[2]
            for end in self.ends:
                close(end, reset)
            self.proxy.forget(self)


class Proxy:
    """Carries connections to a port of loopback. `port` is its own."""

    def __init__(self, target):
        self.target = target
        self.stalled_until = 0.0
        self.links = []
        self.lock = threading.Lock()
        self.listener = socket.create_server(("127.0.0.1", 0))
        self.port = self.listener.getsockname()[1]
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        while True:
            client, _ = self.listener.accept()
            try:
                server = socket.create_connection(("127.0.0.1", self.target))
            except OSError:
                close(client, False)
                continue
            for end in (client, server):
                end.setsockopt(socket.IPPROTO_TCP, socket.TCP_NODELAY, 1)
            link = Link(self, client, server)
            with self.lock:
                self.links.append(link)
            threading.Thread(target=link.pump, daemon=True).start()

    def forget(self, link):
        with self.lock:
            self.links.remove(link)

    def stall(self, seconds):
        """Nothing passes for so long."""
        self.stalled_until = time.monotonic() + seconds

    def cut_one(self, random):
        """Cuts a connection in mid-message, from either side, so or so."""
        with self.lock:
            links = list(self.links)
        if links:
            random.choice(links).cut_after(random.randint(1, 400), random.random() < 0.5,
                                           random.random() < 0.5)

    def cut_all(self, reset):
        with self.lock:
            links = list(self.links)
        for link in links:
            link.cut(reset)
