"""Stands between programs and a PostgreSQL server, on a socket in a folder of its own, and meddles."""
import os, socket, struct, threading

PROTOCOL_3 = 196608


class Cut(Exception):
    """Raised by who meddles: both ends of the connection are closed."""


def socket_in(folder):
    return os.path.join(folder, ".s.PGSQL.5432")


def messages(connection):
    """What a client sends, message by message: the type (empty for those that begin) and the bytes."""
    data, has_begun = b"", False
    while True:
        head = 1 if has_begun else 0
        size = struct.unpack_from("!i", data, head)[0] if len(data) >= head + 4 else None
        if size is not None and len(data) >= head + size:
            message, data = data[: head + size], data[head + size :]
            kind = message[:head]
            has_begun = has_begun or struct.unpack_from("!i", message, 4)[0] == PROTOCOL_3
            yield kind, message
            continue
        more = connection.recv(65536)
        if not more:
            return
        data += more


class Proxy:
    """`meddle(to_server, kind, data, send)` sends the data on, or does not."""

    def __init__(self, folder, server, meddle):
        self.server, self.meddle = server, meddle
        self.listener = socket.socket(socket.AF_UNIX)
        self.listener.bind(socket_in(folder))
        self.listener.listen(64)
        threading.Thread(target=self.accept, daemon=True).start()

    def accept(self):
        while True:
            client = self.listener.accept()[0]
            server = socket.socket(socket.AF_UNIX)
            try:
                server.connect(socket_in(self.server))
            except OSError:
                client.close()
                continue
            for source, target, to_server in ((client, server, True), (server, client, False)):
                threading.Thread(target=self.pass_on, args=(source, target, to_server), daemon=True).start()

    def pass_on(self, source, target, to_server):
        try:
            if to_server:
                for kind, message in messages(source):
                    self.meddle(True, kind, message, target.sendall)
            else:
                while data := source.recv(65536):
                    self.meddle(False, b"", data, target.sendall)
        except (Cut, OSError):
            pass
        for end in (source, target):
            try:
                end.shutdown(socket.SHUT_RDWR)
            except OSError:
                pass
