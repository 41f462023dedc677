#!/usr/bin/env python3
# SPDX-License-Identifier: Apache-2.0
"""A real FTP server for the FTP back end's tests, bound to one loopback address.

Serves ROOT as the home of one account with every permission. Prints "ready" on stdout once it
listens, or "error: ..." and exits non-zero: 3 when the address cannot be bound, 4 when pyftpdlib
is missing. Runs until killed.
"""
import argparse
import sys


def main():
    parser = argparse.ArgumentParser()
    parser.add_argument("--address", required=True)
    parser.add_argument("--port", type=int, default=21)
    parser.add_argument("--root", required=True)
    parser.add_argument("--user", default="qord")
    parser.add_argument("--password", default="")
    args = parser.parse_args()

    # Die with the test program, so that a crashed test leaves no server holding the address.
    try:
        import ctypes
        import signal
        ctypes.CDLL("libc.so.6", use_errno=True).prctl(1, signal.SIGKILL)  # PR_SET_PDEATHSIG
    except (OSError, AttributeError):
        pass

    try:
        from pyftpdlib.authorizers import DummyAuthorizer
        from pyftpdlib.handlers import FTPHandler
        from pyftpdlib.servers import FTPServer
    except ImportError as error:
        print("error: pyftpdlib is missing (%s)" % error, flush=True)
        return 4

    # Only warnings: the tests read nothing from the log, and a chatty server slows big transfers.
    import logging
    logging.basicConfig(level=logging.WARNING)

    authorizer = DummyAuthorizer()
    authorizer.add_user(args.user, args.password, args.root, perm="elradfmwMT")
    handler = FTPHandler
    handler.authorizer = authorizer
    handler.banner = "test FTP server ready."
    try:
        server = FTPServer((args.address, args.port), handler)
    except OSError as error:
        print("error: cannot listen on %s:%d (%s)" % (args.address, args.port, error), flush=True)
        return 3
    print("ready", flush=True)
    server.serve_forever(handle_exit=False)
    return 0


if __name__ == "__main__":
    sys.exit(main())
