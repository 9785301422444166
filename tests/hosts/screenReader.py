"""Reads the windows of the gallery and of shelf as a screen reader does, through the desktop's accessibility bus.

The screen, the session's bus and the accessibility bus are the test's own, so that it neither needs
nor disturbs those of whoever runs it. Keys go through the X server.
"""

import os
import signal
import subprocess
import sys
import tempfile
import time

import gi
gi.require_version("Atspi", "2.0")
from gi.repository import Atspi, GLib

processes = []


def start(*command, **options):
    process = subprocess.Popen(command, start_new_session=True, **options)
    processes.append(process)
    return process


def first_line(*command):
    process = start(*command, stdout=subprocess.PIPE, text=True)
    return process.stdout.readline().strip()


def wait_for(what, look, seconds=30):
    end = time.monotonic() + seconds
    while time.monotonic() < end:
        found = look()
        if found:
            return found
        time.sleep(0.05)
    raise AssertionError("not there in time: " + what)


def check(what, found, wanted):
    if found != wanted:
        raise AssertionError(f"{what}: {found!r} instead of {wanted!r}")


def set_up(home):
    os.environ.update(HOME=home, XDG_CONFIG_HOME=home, XDG_RUNTIME_DIR=home, XDG_DATA_HOME=home,
                      QT_QPA_PLATFORM="xcb", QT_LINUX_ACCESSIBILITY_ALWAYS_ON="1",
                      QT_STYLE_OVERRIDE="Fusion", NO_AT_BRIDGE="1")
    read, write = os.pipe()
    # A server that resets when its last client leaves turns away whoever connects just then.
    screen = start("Xvfb", "-displayfd", str(write), "-screen", "0", "1280x800x24",
                   "-nolisten", "tcp", "-noreset", pass_fds=[write])
    os.close(write)
    with os.fdopen(read) as display:
        os.environ["DISPLAY"] = ":" + display.readline().strip()
    os.environ["DBUS_SESSION_BUS_ADDRESS"] = first_line(
        "dbus-daemon", "--session", "--nofork", "--print-address")
    start("/usr/libexec/at-spi-bus-launcher", "--launch-immediately", stderr=subprocess.DEVNULL)
    return screen


def descendants(node):
    yield node
    for i in range(node.get_child_count()):
        child = node.get_child_at_index(i)
        if child:
            yield from descendants(child)


def window_of(process, title):
    """The window of a program once the accessibility bus has it."""
    def look():
        check("the program's end", process.poll(), None)
        desktop = Atspi.get_desktop(0)
        for i in range(desktop.get_child_count()):
            application = desktop.get_child_at_index(i)
            if application and application.get_process_id() == process.pid:
                for node in descendants(application):
                    if node.get_role_name() in ("frame", "window") and node.get_name() == title:
                        return node
        return None
    return wait_for("the window " + title, look)


def take_events():
    """Has the listeners told of what has come."""
    while GLib.MainContext.default().iteration(False):
        pass


def give_keyboard(title):
    subprocess.run(["xdotool", "search", "--sync", "--onlyvisible", "--name", "^" + title + "$",
                    "windowfocus", "--sync"], check=True, stdout=subprocess.DEVNULL)


def press_keys(*keys):
    subprocess.run(["xdotool", "key", *keys], check=True)


def read_shelf(program, folder):
    """A collection, a table, a tree and their selections, with the keyboard alone."""
    heard = []  # from the program's start on, which is told whom to tell
    listener = Atspi.EventListener.new(
        lambda event: heard.append((event.type.split(":")[2], event.source.get_name())))
    listener.register("object:state-changed:focused")
    listener.register("object:state-changed:selected")
    shelf = start(program, "-r", folder)
    shown = window_of(shelf, os.path.basename(folder))

    def named(role, name):
        return next((node for node in descendants(shown)
                     if node.get_role_name() == role and node.get_name() == name), None)

    def names(role, name, part, state=None):
        """The names of the parts of something, of those that have a state."""
        whole = named(role, name)
        if not whole:
            return None
        whole.clear_cache()
        return [node.get_name() for node in descendants(whole) if node.get_role_name() == part
                and (state is None or node.get_state_set().contains(state))]

    def expect(what, wanted, *where):
        wait_for(what, lambda: names(*where) == wanted)

    selected = Atspi.StateType.SELECTED
    wait_for("the pictures", lambda: len(names("list", "Pictures", "list item") or []) == 40)
    give_keyboard(os.path.basename(folder))
    press_keys("Home", "shift+Right")
    expect("selected pictures", ["alpha.png", "cmyk.jpg"], "list", "Pictures", "list item", selected)

    def told():
        take_events()
        return {("focused", "cmyk.jpg"), ("selected", "alpha.png")} <= set(heard)
    wait_for("word of the current item and of the selection", told)

    # The table has the same list, and its columns.
    press_keys("ctrl+2")
    expect("the columns", ["Name", "Date", "Size", "Kind", "Folder"], "table", "Pictures",
           "table column header")
    rows = names("table", "Pictures", "table cell", selected)
    check("selected rows", [rows[0], rows[5]], ["alpha.png", "cmyk.jpg"])
    press_keys("ctrl+f")
    subprocess.run(["xdotool", "type", "irot"], check=True)
    wait_for("the filter", lambda: [name for name in names("table", "Pictures", "table cell")
                                    if name.endswith(".heic")] ==
             ["irot-180.heic", "irot-against-exif.heic", "irot-and-exif.heic", "irot-imir.heic",
              "irot.heic"])

    # The tree closes and opens.
    tree = named("tree", "What is shown")

    def reached():
        press_keys("Tab")
        time.sleep(0.1)
        tree.clear_cache()
        return tree.get_state_set().contains(Atspi.StateType.FOCUSED)
    wait_for("the tree, by Tab", reached)
    press_keys("Home", "Down", "Left")
    expanded = Atspi.StateType.EXPANDED
    expect("a closed branch", ["Kinds"], "tree", "What is shown", "table cell", expanded)
    press_keys("Right")
    expect("an open branch", ["Folders", "Kinds"], "tree", "What is shown", "table cell", expanded)
    shelf.terminate()
    shelf.wait()


def read_gallery(program, screen):
    gallery = start(program)
    shown = window_of(gallery, "Gallery")

    def named(name, role):
        def look():
            for node in descendants(shown):
                # Later releases say "button" where earlier ones said "push button".
                if node.get_name() == name and node.get_role_name() in (role, "push " + role):
                    return node
            return None
        return wait_for(f"{role} {name!r}", look, 10)

    def has(node, state):
        return node.get_state_set().contains(state)

    def press(node):
        for i in range(node.get_n_actions()):
            if node.get_action_name(i) == "Press":
                return node.do_action(i)
        raise AssertionError("no press: " + node.get_name())

    # What is there, by name and role.
    named("Toolbar", "tool bar")
    check("disabled", has(named("Disabled", "button"), Atspi.StateType.ENABLED), False)
    check("enabled", has(named("Push button", "button"), Atspi.StateType.ENABLED), True)
    named("Tinted button", "button")
    named("Back", "button")
    date = wait_for("the chosen order", lambda: next(
        (node for node in descendants(shown) if node.get_name() == "Date"), None))
    check("chosen", has(date, Atspi.StateType.CHECKED), True)

    # A view of the program's own, and its changes.
    level = named("Level", "slider")
    check("level", level.get_description(), "40 %")
    heard = []
    listener = Atspi.EventListener.new(lambda event: heard.append(event.type))
    listener.register("object:property-change:accessible-description")
    press(named("Raise", "button"))
    def told():
        take_events()
        return heard
    wait_for("word of the change", told, 10)
    level.clear_cache()
    check("level", level.get_description(), "50 %")

    # Keys through the X server: into the search field that has the keyboard, with its caret.
    give_keyboard("Gallery")
    field = next(node for node in descendants(shown)
                 if node.get_role_name() == "text" and node.get_name() == "Search")
    check("focus", field.get_component_iface().grab_focus(), True)
    wait_for("focus", lambda: has(field, Atspi.StateType.FOCUSED))
    subprocess.run(["xdotool", "type", "abc"], check=True)
    wait_for("the text", lambda: Atspi.Text.get_text(field, 0, -1) == "abc")
    check("caret", Atspi.Text.get_caret_offset(field), 3)
    press_keys("Left")
    wait_for("the caret", lambda: Atspi.Text.get_caret_offset(field) == 2)
    press_keys("Tab")
    wait_for("Tab", lambda: not has(field, Atspi.StateType.FOCUSED))

    # A screen that goes takes the program with it, which ends by itself.
    screen.terminate()
    check("the end", gallery.wait(30), 1)


def main():
    with tempfile.TemporaryDirectory() as home:
        try:
            screen = set_up(home)
            Atspi.init()
            gallery, shelf, pictures = sys.argv[1:]
            read_shelf(shelf, pictures)
            read_gallery(gallery, screen)
        finally:
            for process in reversed(processes):
                try:
                    os.killpg(process.pid, signal.SIGTERM)
                except ProcessLookupError:
                    pass
                process.wait()


main()
