#!/usr/bin/python3
'''A loopback MMS centre: keeps every POSTed request and answers an m-send-conf.

Usage: loopback_mmsc.py FOLDER PORT. Listens on 127.0.0.1:PORT (0 picks one) and writes the port it
got on standard output. Each request body is kept as FOLDER/requestN.mms. While FOLDER/refuse exists the
answer refuses the message (Response-Status Error-permanent-failure). Ends on SIGTERM.
'''

import http.server
import os
import signal
import sys
import threading

folder = sys.argv[1]
port = int(sys.argv[2])
lock = threading.Lock()


def send_conf(request, refuse):
    # Echo the request's transaction id: 8C 80 (m-send-req) 98 <text> 00.
    tid = b'0'
    if request[:3] == b'\x8c\x80\x98':
        end = request.find(b'\x00', 3)
        if end > 3:
            tid = request[3:end]
    status = b'\xe0' if refuse else b'\x80'
    conf = b'\x8c\x81' + b'\x98' + tid + b'\x00' + b'\x8d\x90' + b'\x92' + status
    if not refuse:
        conf += b'\x8b' + b'loopback-' + tid + b'\x00'
    return conf


class Handler(http.server.BaseHTTPRequestHandler):
    protocol_version = 'HTTP/1.1'

    def do_POST(self):
        length = int(self.headers.get('Content-Length', '0'))
        body = self.rfile.read(length)
        with lock:
            n = len([f for f in os.listdir(folder) if f.startswith('request')]) + 1
            tmp = os.path.join(folder, '.request%d' % n)
            with open(tmp, 'wb') as f:
                f.write(body)
            os.replace(tmp, os.path.join(folder, 'request%d.mms' % n))
        answer = send_conf(body, os.path.exists(os.path.join(folder, 'refuse')))
        self.send_response(200)
        self.send_header('Content-Type', 'application/vnd.wap.mms-message')
        self.send_header('Content-Length', str(len(answer)))
        # One request a connection, so no idle keep-alive connection holds a worker.
        self.send_header('Connection', 'close')
        self.close_connection = True
        self.end_headers()
        self.wfile.write(answer)

    def log_message(self, format, *args):
        sys.stderr.write('mmsc: ' + (format % args) + '\n')


http.server.ThreadingHTTPServer.allow_reuse_address = True
http.server.ThreadingHTTPServer.daemon_threads = True
server = http.server.ThreadingHTTPServer(('127.0.0.1', port), Handler)
signal.signal(signal.SIGTERM, lambda *_: sys.exit(0))
os.makedirs(folder, exist_ok=True)
print(server.server_address[1], flush=True)
server.serve_forever()
