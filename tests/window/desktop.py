"""What a desktop sends to a program's window, on the display of DISPLAY.

    desktop.py close WINDOW            the close button of the window manager's frame
    desktop.py drop WINDOW X Y FILE    a file manager's drag and drop (XDND, version 5), X and Y from the root; 0 when it was taken
"""
import ctypes
import sys
import time
import urllib.parse

x11 = ctypes.CDLL("libX11.so.6")
Window = Atom = Time = ctypes.c_ulong
CLIENT_MESSAGE, SELECTION_REQUEST, SELECTION_NOTIFY = 33, 30, 31
PATIENCE = 15


class ClientMessage(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int), ("display", ctypes.c_void_p),
                ("window", Window), ("message_type", Atom), ("format", ctypes.c_int), ("data", ctypes.c_long * 5)]


class SelectionRequest(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int), ("display", ctypes.c_void_p),
                ("owner", Window), ("requestor", Window), ("selection", Atom), ("target", Atom), ("property", Atom), ("time", Time)]


class SelectionNotify(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int), ("display", ctypes.c_void_p),
                ("requestor", Window), ("selection", Atom), ("target", Atom), ("property", Atom), ("time", Time)]


class Event(ctypes.Union):
    _fields_ = [("type", ctypes.c_int), ("client", ClientMessage), ("request", SelectionRequest), ("notify", SelectionNotify),
                ("room", ctypes.c_long * 24)]


x11.XOpenDisplay.restype = ctypes.c_void_p
x11.XDefaultRootWindow.restype = x11.XCreateSimpleWindow.restype = Window
x11.XInternAtom.restype = Atom
x11.XInternAtom.argtypes = [ctypes.c_void_p, ctypes.c_char_p, ctypes.c_int]
x11.XDefaultRootWindow.argtypes = x11.XFlush.argtypes = x11.XPending.argtypes = [ctypes.c_void_p]
x11.XCreateSimpleWindow.argtypes = [ctypes.c_void_p, Window] + [ctypes.c_int] * 2 + [ctypes.c_uint] * 3 + [ctypes.c_ulong] * 2
x11.XSetSelectionOwner.argtypes = [ctypes.c_void_p, Atom, Window, Time]
x11.XSendEvent.argtypes = [ctypes.c_void_p, Window, ctypes.c_int, ctypes.c_long, ctypes.POINTER(Event)]
x11.XNextEvent.argtypes = [ctypes.c_void_p, ctypes.POINTER(Event)]
x11.XChangeProperty.argtypes = [ctypes.c_void_p, Window, Atom, Atom, ctypes.c_int, ctypes.c_int, ctypes.c_char_p, ctypes.c_int]


class Desktop:
    def __init__(self, target):
        self.display = x11.XOpenDisplay(None)
        self.source = x11.XCreateSimpleWindow(self.display, x11.XDefaultRootWindow(self.display), 0, 0, 1, 1, 0, 0, 0)
        self.target = target

    def atom(self, name):
        return x11.XInternAtom(self.display, name.encode(), 0)

    def send(self, window, event):
        x11.XSendEvent(self.display, window, 0, 0, ctypes.byref(event))
        x11.XFlush(self.display)

    def tell(self, kind, *data):
        event = Event()
        event.client = ClientMessage(CLIENT_MESSAGE, 0, 1, self.display, self.target, self.atom(kind), 32, (ctypes.c_long * 5)(*data))
        self.send(self.target, event)

    def hand_over(self, request, path):
        text = ("file://" + urllib.parse.quote(path) + "\r\n").encode()
        x11.XChangeProperty(self.display, request.requestor, request.property, request.target, 8, 0, text, len(text))
        event = Event()
        event.notify = SelectionNotify(SELECTION_NOTIFY, 0, 1, self.display, request.requestor, request.selection, request.target,
                                       request.property, request.time)
        self.send(request.requestor, event)

    def next_event(self, end):
        while not x11.XPending(self.display):
            if time.monotonic() > end:
                sys.exit("no answer to the drop")
            time.sleep(0.005)
        event = Event()
        x11.XNextEvent(self.display, ctypes.byref(event))
        return event


def close(window):
    desktop = Desktop(int(window))
    desktop.tell("WM_PROTOCOLS", desktop.atom("WM_DELETE_WINDOW"), 0)
    return 0


def drop(window, x, y, path):
    desktop = Desktop(int(window))
    x11.XSetSelectionOwner(desktop.display, desktop.atom("XdndSelection"), desktop.source, 0)
    desktop.tell("XdndEnter", desktop.source, 5 << 24, desktop.atom("text/uri-list"), 0, 0)
    desktop.tell("XdndPosition", desktop.source, 0, int(x) << 16 | int(y), 0, desktop.atom("XdndActionCopy"))
    end = time.monotonic() + PATIENCE
    while True:
        event = desktop.next_event(end)
        if event.type == SELECTION_REQUEST:
            desktop.hand_over(event.request, path)
        elif event.type == CLIENT_MESSAGE and event.client.message_type == desktop.atom("XdndStatus"):
            if not event.client.data[1] & 1:
                return 1
            desktop.tell("XdndDrop", desktop.source, 0, 0, 0, 0)
        elif event.type == CLIENT_MESSAGE and event.client.message_type == desktop.atom("XdndFinished"):
            return 0 if event.client.data[1] & 1 else 1


sys.exit({"close": close, "drop": drop}[sys.argv[1]](*sys.argv[2:]))
