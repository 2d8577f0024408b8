// WebKitGTK in a window of an X server without a screen; the nearest to iOS that Debian has.

import { spawn } from "node:child_process";
import { once } from "node:events";
import { createInterface } from "node:readline";
import { fileURLToPath } from "node:url";

export class WebKit {
  constructor(server) {
    this.server = server;
    this.name = "webkit";
    this.asked = 0;
    this.answers = new Map();
    this.seen = { windows: 0, dialogs: 0, hasLeft: false };
  }

  async start() {
    this.display = spawn("Xvfb", ["-displayfd", "3", "-screen", "0", "1000x1000x24", "-nolisten",
      "tcp"], { stdio: ["ignore", "ignore", "ignore", "pipe"] });
    const [number] = await once(this.display.stdio[3], "data");
    this.view = spawn("/usr/bin/python3",
      [fileURLToPath(new URL("WebKitView.py", import.meta.url))], {
        stdio: ["pipe", "pipe", "ignore"],
        env: { ...process.env, DISPLAY: `:${String(number).trim()}`, NO_AT_BRIDGE: "1",
          GDK_BACKEND: "x11", LIBGL_ALWAYS_SOFTWARE: "1", GIO_USE_VFS: "local",
          GSETTINGS_BACKEND: "memory" }
      });
    await new Promise((resolve, reject) => {
      this.onReady = resolve;
      this.view.on("exit", () => reject(new Error("the view has ended")));
      createInterface({ input: this.view.stdout }).on("line", (line) => this.take(JSON.parse(line)));
    });
  }

  async stop() {
    this.view.stdin.end();
    await once(this.view, "exit");
    this.display.kill();
  }

  take({ event, ...what }) {
    const answer = this.answers.get(what.id);
    switch (event) {
      case "ready": this.onReady(); break;
      case "message": this.onMessage(what.message); break;
      case "window": this.seen.windows += 1; break;
      case "dialog": this.seen.dialogs += 1; break;
      case "left": this.seen.hasLeft = true; break;
      case "ran":
        this.answers.delete(what.id);
        if (what.error) {
          answer.reject(new Error(what.error));
        } else {
          answer.resolve(what.value);
        }
        break;
      default: throw new Error(event);
    }
  }

  tell(command, values = {}) {
    this.view.stdin.write(JSON.stringify({ command, ...values }) + "\n");
  }

  ask(command, values) {
    const id = ++this.asked;
    this.tell(command, { id, ...values });
    return new Promise((resolve, reject) => this.answers.set(id, { resolve, reject }));
  }

  async open(html, { settings = {}, onMessage, closesAtLast = false }) {
    this.onMessage = onMessage;
    this.seen = { windows: 0, dialogs: 0, hasLeft: false };
    const base = this.server.urlOf("page", "/");
    this.tell("open", { html, base, settings, closesAtLast });
  }

  run(script) { return this.ask("run", { script }); }
  async resize(width, height) { this.tell("resize", { width, height }); }
  async hide() { this.tell("hide"); }
  async show() { this.tell("show"); }
  screenshot(path) { return this.ask("screenshot", { path }); }
  async escapes() { return this.seen; }

  async close() {
    this.onMessage = () => {};
    this.tell("close");
  }
}
