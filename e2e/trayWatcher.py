#!/usr/bin/python3
"""A tray of the StatusNotifierItem kind for tests: org.kde.StatusNotifierWatcher and a host in one.

Reads commands from standard input, one a line, and answers each with one line of JSON. Debian's python3-gi is its
D-Bus library, so it runs with Debian's interpreter.
"""
import json
import sys

from gi.repository import Gio, GLib

WATCHER = "org.kde.StatusNotifierWatcher"
ITEM = "org.kde.StatusNotifierItem"
MENU = "com.canonical.dbusmenu"
PROPERTIES = "org.freedesktop.DBus.Properties"
INTERFACE = """<node><interface name="org.kde.StatusNotifierWatcher">
<method name="RegisterStatusNotifierItem"><arg type="s" direction="in"/></method>
<method name="RegisterStatusNotifierHost"><arg type="s" direction="in"/></method>
<property name="RegisteredStatusNotifierItems" type="as" access="read"/>
<property name="IsStatusNotifierHostRegistered" type="b" access="read"/>
<property name="ProtocolVersion" type="i" access="read"/>
<signal name="StatusNotifierHostRegistered"/><signal name="StatusNotifierHostUnregistered"/>
</interface></node>"""

bus = Gio.bus_get_sync(Gio.BusType.SESSION)
items = []  # service names
signals = []
state = {"name": 0, "object": 0, "host": True, "refuse": False}


def called(_bus, _sender, _path, _interface, method, arguments, invocation):
    if method == "RegisterStatusNotifierItem":
        if state["refuse"]:
            invocation.return_dbus_error("org.kde.Error.Refused", "no")
            return
        items.append(arguments[0])
    invocation.return_value(None)


def asked(_bus, _sender, _path, _interface, name):
    return {"RegisteredStatusNotifierItems": GLib.Variant("as", items),
            "IsStatusNotifierHostRegistered": GLib.Variant("b", state["host"]),
            "ProtocolVersion": GLib.Variant("i", 0)}[name]


def call(path, interface, method, signature=None, *arguments):
    parameters = GLib.Variant(signature, arguments) if signature else None
    return bus.call_sync(items[0], path, interface, method, parameters, None, Gio.DBusCallFlags.NONE, 5000, None).unpack()


def start(host="1"):
    state["host"] = host == "1"
    node = Gio.DBusNodeInfo.new_for_xml(INTERFACE)
    state["object"] = bus.register_object("/StatusNotifierWatcher", node.interfaces[0], called, asked, None)
    reply = bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "RequestName",
                          GLib.Variant("(su)", (WATCHER, 4)), None, Gio.DBusCallFlags.NONE, 5000, None)
    return reply.unpack()[0]


def stop():
    items.clear()
    bus.unregister_object(state["object"])
    bus.call_sync("org.freedesktop.DBus", "/org/freedesktop/DBus", "org.freedesktop.DBus", "ReleaseName",
                  GLib.Variant("(s)", (WATCHER,)), None, Gio.DBusCallFlags.NONE, 5000, None)


def host(on):
    state["host"] = on == "1"
    name = "StatusNotifierHostRegistered" if state["host"] else "StatusNotifierHostUnregistered"
    bus.emit_signal(None, "/StatusNotifierWatcher", WATCHER, name, None)


def refuse(on):
    state["refuse"] = on == "1"


def plain(value):
    """Pixels as their length and one of them: the middle of the lower left quarter."""
    if isinstance(value, (list, tuple)) and len(value) == 3 and isinstance(value[2], list) and value[0] == value[1] > 1:
        side, _, data = value
        at = (side * 3 // 4 * side + side // 12) * 4
        return {"side": side, "bytes": len(data), "mark": data[at:at + 4]}
    if isinstance(value, (list, tuple)):
        return [plain(each) for each in value]
    if isinstance(value, dict):
        return {key: plain(each) for key, each in value.items()}
    return value


def get(name):
    return plain(call("/StatusNotifierItem", PROPERTIES, "Get", "(ss)", ITEM, name)[0])


def get_all():
    return plain(call("/StatusNotifierItem", PROPERTIES, "GetAll", "(s)", ITEM)[0])


def layout(parent="0", depth="-1", *names):
    def tree(node):
        number, properties, children = node
        icon = properties.pop("icon-data", None)
        if icon:
            properties["icon-data"] = bytes(icon[:4]).decode("latin-1")
        return [number, properties, [tree(child) for child in children]]
    revision, top = call("/MenuBar", MENU, "GetLayout", "(iias)", int(parent), int(depth), list(names))
    return [revision, tree(top)]


def group(*numbers):
    return call("/MenuBar", MENU, "GetGroupProperties", "(aias)", [int(n) for n in numbers], [])[0]


def prop(number, name):
    return call("/MenuBar", MENU, "GetProperty", "(is)", int(number), name)[0]


def event(number, kind="clicked"):
    call("/MenuBar", MENU, "Event", "(isvu)", int(number), kind, GLib.Variant("i", 0), 0)


def events(*numbers):
    group_of = [(int(n), "clicked", GLib.Variant("i", 0), 0) for n in numbers]
    return call("/MenuBar", MENU, "EventGroup", "(a(isvu))", group_of)[0]


def show(number):
    return call("/MenuBar", MENU, "AboutToShow", "(i)", int(number))[0]


def item(method, x="3", y="4"):
    if method == "Scroll":
        call("/StatusNotifierItem", ITEM, method, "(is)", 1, "vertical")
    else:
        call("/StatusNotifierItem", ITEM, method, "(ii)", int(x), int(y))


def odd(path, interface, method):
    call(path, interface, method)


def taken():
    seen = list(signals)
    signals.clear()
    return seen


def signal_came(_bus, _sender, _path, _interface, name, parameters):
    signals.append([name, parameters.unpack()])


def owner_changed(_bus, _sender, _path, _interface, _name, parameters):
    name, _, owner = parameters.unpack()
    if not owner and name in items:
        items.remove(name)


commands = {"start": start, "stop": stop, "host": host, "refuse": refuse, "items": lambda: list(items), "get": get,
            "all": get_all, "layout": layout, "group": group, "prop": prop, "event": event, "events": events,
            "show": show, "item": item, "odd": odd, "signals": taken}


def line_came(_channel, _condition):
    line = sys.stdin.readline()
    if not line:
        loop.quit()
        return False
    word, *arguments = line.split()
    try:
        answer = commands[word](*arguments)
    except GLib.Error as failure:
        answer = {"error": failure.message}
    except IndexError:
        answer = {"error": "no item"}
    print(json.dumps(answer), flush=True)
    return True


bus.signal_subscribe("org.freedesktop.DBus", "org.freedesktop.DBus", "NameOwnerChanged", None, None,
                     Gio.DBusSignalFlags.NONE, owner_changed)
for each in (ITEM, MENU):
    bus.signal_subscribe(None, each, None, None, None, Gio.DBusSignalFlags.NONE, signal_came)
GLib.io_add_watch(GLib.IOChannel.unix_new(0), GLib.PRIORITY_DEFAULT, GLib.IO_IN | GLib.IO_HUP, line_came)
loop = GLib.MainLoop()
loop.run()
