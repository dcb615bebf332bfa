"""Another client of the X server, for what others may do to a window: events that are sent, and devices that type."""
import ctypes

X11 = ctypes.CDLL("libX11.so.6")
XI = ctypes.CDLL("libXi.so.6")
XTST = ctypes.CDLL("libXtst.so.6")
X11.XOpenDisplay.restype = ctypes.c_void_p
X11.XInternAtom.restype = ctypes.c_ulong
X11.XDefaultRootWindow.restype = ctypes.c_ulong
X11.XCreateSimpleWindow.restype = ctypes.c_ulong
XI.XListInputDevices.restype = ctypes.c_void_p
XI.XOpenDevice.restype = ctypes.c_void_p

KEY_PRESS, KEY_RELEASE, BUTTON_PRESS, BUTTON_RELEASE, CLIENT_MESSAGE = 2, 3, 4, 5, 33
OVERRIDE_REDIRECT = 1 << 9
CURRENT_TIME = 0

ERROR_HANDLER = ctypes.CFUNCTYPE(ctypes.c_int, ctypes.c_void_p, ctypes.c_void_p)
IGNORE = ERROR_HANDLER(lambda display, error: 0)  # a window may be gone, or not viewable yet: whoever asks looks again
X11.XSetErrorHandler(IGNORE)


class InputEvent(ctypes.Structure):
    """XKeyEvent and XButtonEvent, which are laid out alike."""
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("root", ctypes.c_ulong),
                ("subwindow", ctypes.c_ulong), ("time", ctypes.c_ulong), ("x", ctypes.c_int), ("y", ctypes.c_int),
                ("x_root", ctypes.c_int), ("y_root", ctypes.c_int), ("state", ctypes.c_uint), ("code", ctypes.c_uint),
                ("same_screen", ctypes.c_int), ("pad", ctypes.c_long * 24)]


class MessageEvent(ctypes.Structure):
    _fields_ = [("type", ctypes.c_int), ("serial", ctypes.c_ulong), ("send_event", ctypes.c_int),
                ("display", ctypes.c_void_p), ("window", ctypes.c_ulong), ("message_type", ctypes.c_ulong),
                ("format", ctypes.c_int), ("data", ctypes.c_long * 5), ("pad", ctypes.c_long * 24)]


class WindowAttributes(ctypes.Structure):
    """XSetWindowAttributes as far as override_redirect."""
    _fields_ = [("skipped", ctypes.c_long * 9), ("event_mask", ctypes.c_long), ("no_propagate", ctypes.c_long),
                ("override_redirect", ctypes.c_int), ("colormap", ctypes.c_ulong), ("cursor", ctypes.c_ulong)]


class DeviceInfo(ctypes.Structure):
    _fields_ = [("id", ctypes.c_ulong), ("type", ctypes.c_ulong), ("name", ctypes.c_char_p),
                ("classes", ctypes.c_int), ("use", ctypes.c_int), ("info", ctypes.c_void_p)]


class XClient:
    def __init__(self):
        self.display = ctypes.c_void_p(X11.XOpenDisplay(None))
        self.root = X11.XDefaultRootWindow(self.display)

    def close(self):
        X11.XCloseDisplay(self.display)

    def sync(self):
        X11.XSync(self.display, 0)

    def keycode(self, keysym):
        return X11.XKeysymToKeycode(self.display, ctypes.c_ulong(keysym))

    def _send(self, window, event):
        X11.XSendEvent(self.display, ctypes.c_ulong(window), 0, ctypes.c_long(0), ctypes.byref(event))
        self.sync()

    def send_key(self, window, keysym, time=CURRENT_TIME):
        """A key that no keyboard pressed (XSendEvent)."""
        for kind in (KEY_PRESS, KEY_RELEASE):
            self._send(window, InputEvent(type=kind, window=window, root=self.root, time=time, x=1, y=1,
                                          code=self.keycode(keysym), same_screen=1))

    def send_click(self, window, x, y, time=CURRENT_TIME):
        for kind, state in ((BUTTON_PRESS, 0), (BUTTON_RELEASE, 1 << 8)):
            self._send(window, InputEvent(type=kind, window=window, root=self.root, time=time, x=x, y=y, code=1,
                                          state=state, same_screen=1))

    def send_protocol(self, window, protocol, time=CURRENT_TIME):
        """A WM_PROTOCOLS message, as a window manager sends it, or anybody else."""
        atom = [X11.XInternAtom(self.display, name, 0) for name in (b"WM_PROTOCOLS", protocol.encode())]
        event = MessageEvent(type=CLIENT_MESSAGE, window=window, message_type=atom[0], format=32)
        event.data[0], event.data[1] = atom[1], time
        self._send(window, event)

    def device_key(self, keysym):
        """A key of the server's own keyboard, as if somebody had pressed it."""
        count = ctypes.c_int()
        devices = ctypes.cast(XI.XListInputDevices(self.display, ctypes.byref(count)), ctypes.POINTER(DeviceInfo))
        keyboards = [d.id for d in devices[: count.value] if d.use == 3 and b"XTEST" not in d.name]  # extension keyboards
        device = ctypes.c_void_p(XI.XOpenDevice(self.display, ctypes.c_ulong(keyboards[-1])))
        for down in (1, 0):
            XTST.XTestFakeDeviceKeyEvent(self.display, device, self.keycode(keysym), down, None, 0, ctypes.c_ulong(5))
        self.sync()

    def repeat_keys(self, delay_ms, interval_ms):
        X11.XkbSetAutoRepeatRate(self.display, 0x100, delay_ms, interval_ms)  # the core keyboard
        self.sync()

    def window(self, x, y, width, height):
        """An ordinary window, under the manager's care; its id."""
        window = self._create(x, y, width, height)
        X11.XMapRaised(self.display, ctypes.c_ulong(window))
        self.sync()
        return window

    def _create(self, x, y, width, height):
        return X11.XCreateSimpleWindow(self.display, ctypes.c_ulong(self.root), x, y, width, height, 0,
                                       ctypes.c_ulong(0), ctypes.c_ulong(0x445566))

    def cover(self, x, y, width, height):
        """A window on top of all others, which no manager cares for; its id."""
        window = self._create(x, y, width, height)
        attributes = WindowAttributes(override_redirect=1)
        X11.XChangeWindowAttributes(self.display, ctypes.c_ulong(window), ctypes.c_ulong(OVERRIDE_REDIRECT),
                                    ctypes.byref(attributes))
        X11.XMapRaised(self.display, ctypes.c_ulong(window))
        self.sync()
        return window

    def unmap(self, window):
        X11.XUnmapWindow(self.display, ctypes.c_ulong(window))
        self.sync()

    def focus(self, window):
        """Gives the keyboard away as a window manager does, whatever the window says it wants."""
        X11.XSetInputFocus(self.display, ctypes.c_ulong(window), 1, ctypes.c_ulong(CURRENT_TIME))
        self.sync()

    def grab_pointer(self):
        X11.XGrabPointer(self.display, ctypes.c_ulong(self.root), 0, 4, 1, 1, ctypes.c_ulong(0), ctypes.c_ulong(0),
                         ctypes.c_ulong(CURRENT_TIME))  # of button presses, both modes asynchronous
        self.sync()

    def ungrab_pointer(self):
        X11.XUngrabPointer(self.display, ctypes.c_ulong(CURRENT_TIME))
        self.sync()

    def focused(self):
        window, revert = ctypes.c_ulong(), ctypes.c_int()
        X11.XGetInputFocus(self.display, ctypes.byref(window), ctypes.byref(revert))
        return window.value

    def top(self):
        """The uppermost child of the root."""
        return self.children(self.root)[-1]

    def children(self, window):
        root, parent, kids, count = ctypes.c_ulong(), ctypes.c_ulong(), ctypes.POINTER(ctypes.c_ulong)(), ctypes.c_uint()
        X11.XQueryTree(self.display, ctypes.c_ulong(window), ctypes.byref(root), ctypes.byref(parent),
                       ctypes.byref(kids), ctypes.byref(count))
        return [kids[i] for i in range(count.value)]
