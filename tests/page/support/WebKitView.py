"""A WebKit view in a window, as an app has it: commands on standard input, what happens on standard
output, both a JSON object a line. Messages of the page come through a real script message handler.
"""

import json
import os

import gi

gi.require_version("Gtk", "3.0")
gi.require_version("WebKit2", "4.1")
from gi.repository import GLib, Gtk, WebKit2  # noqa: E402


def report(**what):
    print(json.dumps(what), flush=True)


class App:
    def __init__(self):
        self.window = Gtk.Window()
        self.window.set_default_size(390, 844)
        self.view = None

    def open(self, html, base, settings, closesAtLast):
        manager = WebKit2.UserContentManager()
        manager.connect("script-message-received::tamzo", self.on_message, closesAtLast)
        manager.register_script_message_handler("tamzo")
        script = f"window.calls = []; window.tamzoSettings = {json.dumps(settings)};"
        manager.add_script(WebKit2.UserScript(
            script, WebKit2.UserContentInjectedFrames.TOP_FRAME,
            WebKit2.UserScriptInjectionTime.START, None, None))
        self.close()
        self.view = WebKit2.WebView(
            user_content_manager=manager,
            website_policies=WebKit2.WebsitePolicies(autoplay=WebKit2.AutoplayPolicy.ALLOW))
        preferences = self.view.get_settings()
        preferences.set_media_playback_requires_user_gesture(False)
        preferences.set_hardware_acceleration_policy(WebKit2.HardwareAccelerationPolicy.NEVER)
        self.view.connect("create", lambda *_: report(event="window"))
        self.view.connect("script-dialog", self.on_dialog)
        self.view.connect("load-changed", self.on_load, base)
        self.window.add(self.view)
        self.window.show_all()
        self.view.load_html(html, base)

    def on_message(self, _manager, result, closes_at_last):
        message = json.loads(result.get_js_value().to_json(0))
        if closes_at_last and message["name"] in ("AdStopped", "AdError"):
            self.close()
        report(event="message", message=message)

    def on_dialog(self, _view, _dialog):
        report(event="dialog")
        return True

    def on_load(self, view, _event, base):
        if view.get_uri() not in (base, None):
            report(event="left", uri=view.get_uri())

    def run(self, id, script):
        def done(view, result):
            try:
                value = view.evaluate_javascript_finish(result)
                report(event="ran", id=id, value=json.loads(value.to_json(0) or "null"))
            except GLib.Error as error:
                report(event="ran", id=id, error=str(error))
        self.view.evaluate_javascript(script, -1, None, None, None, done)

    def resize(self, width, height):
        self.window.resize(width, height)

    def hide(self):
        self.view.hide()

    def show(self):
        self.view.show()

    def screenshot(self, id, path):
        def done(view, result):
            view.get_snapshot_finish(result).write_to_png(path)
            report(event="ran", id=id, value=None)
        self.view.get_snapshot(WebKit2.SnapshotRegion.VISIBLE, WebKit2.SnapshotOptions.NONE, None,
                               done)

    def close(self):
        if self.view:
            self.view.destroy()
            self.view = None


def main():
    app = App()

    unread = bytearray()

    def on_input(_channel, _condition):
        piece = os.read(0, 1 << 16)
        if not piece:
            Gtk.main_quit()
            return False
        unread.extend(piece)
        *lines, rest = bytes(unread).split(b"\n")
        unread[:] = rest
        for line in lines:
            command = json.loads(line)
            getattr(app, command.pop("command"))(**command)
        return True

    GLib.io_add_watch(0, GLib.IO_IN | GLib.IO_HUP, on_input)
    report(event="ready")
    Gtk.main()


main()
