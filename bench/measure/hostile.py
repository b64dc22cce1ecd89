"""Clients that do not behave: what they do must cost the set nothing but the moment."""
import socket
import struct

TIMEOUT = 10


def _connect(server):
    host, _, port = server.url.removeprefix("http://").rpartition(":")
    return socket.create_connection((host, int(port)), timeout=TIMEOUT)


def _sent(server, data):
    """A connection over which that was sent."""
    connection = _connect(server)
    connection.sendall(data)
    return connection


def _reset(connection):
    """Closes so that the other side sees a reset."""
    connection.setsockopt(socket.SOL_SOCKET, socket.SO_LINGER, struct.pack("ii", 1, 0))
    connection.close()


def leave_before_the_answer(server, random):
    connection = _sent(server, b"GET /ws/epg2/channels HTTP/1.1\r\nHost: localhost\r\n\r\n")
    _reset(connection)


def leave_in_the_answer(server, random):
    connection = _sent(server, b"GET /ws/epg2/programs?items_max=5000 HTTP/1.1\r\nHost: localhost\r\n\r\n")
    connection.recv(100)
    _reset(connection)


def leave_in_the_headers(server, random):
    connection = _sent(server, b"GET /ws/epg2/channels HTTP/1.1\r\nHost: local")
    connection.close()


def leave_in_the_body(server, random):
    connection = _sent(server, b"POST /ws/epg2/schedules HTTP/1.1\r\nHost: localhost\r\nContent-Length: 500\r\n\r\n{")
    _reset(connection)


def send_what_is_no_http(server, random):
    connection = _sent(server, random.randbytes(300) + b"\r\n\r\n")
    connection.close()


def send_long_headers(server, random):
    connection = _connect(server)
    try:
        connection.sendall(b"GET / HTTP/1.1\r\nHost: localhost\r\nX-Long: " + b"x" * 100_000 + b"\r\n\r\n")
        connection.recv(100)
    except OSError:
        pass  # refused before all of it was sent
    connection.close()


def listen_and_leave(server, random):
    connection = _sent(server, b"GET /set/events HTTP/1.1\r\nHost: localhost\r\n\r\n")
    connection.recv(100)
    _reset(connection)


ALL = [leave_before_the_answer, leave_in_the_answer, leave_in_the_headers, leave_in_the_body,
       send_what_is_no_http, send_long_headers, listen_and_leave]
