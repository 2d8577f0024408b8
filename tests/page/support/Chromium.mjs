// Headless Chromium, driven by WebDriver. The app's side of the bridge is a script of the page that
// posts each message to the server before it returns, as a call of Android's bridge does.

import { spawn } from "node:child_process";
import { writeFile } from "node:fs/promises";

const ARGUMENTS = ["--headless=new", "--no-sandbox", "--disable-gpu", "--disable-dev-shm-usage",
  "--autoplay-policy=no-user-gesture-required", "--mute-audio", "--window-size=390,844",
  "--disable-features=HttpsUpgrades",
  "--host-resolver-rules=MAP unit.test 127.0.0.3,MAP pixel.test 127.0.0.4"];

// Runs in the page before everything else.
function bridge(settings, { path, closesAtLast }) {
  window.calls = [];
  window.tamzoSettings = settings;
  const tell = (message) => {
    try {
      const request = new XMLHttpRequest();
      request.open("POST", path, false);
      request.send(JSON.stringify(message));
    } catch (tooLate) {  // while the page goes
      navigator.sendBeacon(path, JSON.stringify(message));
    }
    if (closesAtLast && /^Ad(Stopped|Error)$/.test(message.name)) {
      window.location.replace("about:blank");
    }
  };
  window.TamzoBridge = {
    onEvent(name, json) {
      const { session, sequence, ...details } = JSON.parse(json);
      tell({ name, details, session, sequence });
    }
  };
}

export class Chromium {
  constructor(server) {
    this.server = server;
    this.name = "chromium";
    this.opened = 0;
  }

  async start() {
    this.driver = spawn("chromedriver", ["--port=0"], { stdio: ["ignore", "pipe", "ignore"] });
    this.port = await new Promise((resolve, reject) => {
      let text = "";
      this.driver.stdout.on("data", (piece) => {
        text += piece;
        const found = /successfully on port (\d+)/.exec(text);
        if (found) {
          resolve(found[1]);
        }
      });
      this.driver.on("error", reject);
      this.driver.on("exit", () => reject(new Error("chromedriver ended: " + text)));
    });
    const { sessionId } = await this.ask("POST", "/session", { capabilities: { alwaysMatch: {
      browserName: "chrome", acceptInsecureCerts: true, pageLoadStrategy: "eager",
      unhandledPromptBehavior: "ignore",
      "goog:chromeOptions": { args: ARGUMENTS } } } });
    this.session = `/session/${sessionId}`;
    await this.ask("POST", `${this.session}/timeouts`, { script: 60000, pageLoad: 60000 });
  }

  async stop() {
    if (this.session) {
      await this.ask("DELETE", this.session);
    }
    this.driver.kill();
  }

  async ask(method, path, body) {
    const response = await fetch(`http://127.0.0.1:${this.port}${path}`,
      { method, body: body && JSON.stringify(body) });
    const { value } = await response.json();
    if (!response.ok) {
      throw new Error(`${value.error}: ${value.message}`);
    }
    return value;
  }

  async open(html, { settings = {}, onMessage, closesAtLast = false, scheme = "http" }) {
    const path = `/told/${++this.opened}`;  // a page that was left may still have something to say
    this.server.takers.set(path, onMessage);
    const literal = JSON.stringify(settings).replace(/</g, "\\u003c");  // a text may end a script
    const script = `<script>(${bridge})(${literal}, ` +
      `${JSON.stringify({ path, closesAtLast })});</script>`;
    const url = new URL(this.server.serve("page", html.replace("<head>", () => "<head>" + script),
      { type: "text/html" }));
    url.protocol = scheme;
    await this.ask("POST", `${this.session}/url`, { url: url.href });
  }

  run(script) {
    return this.ask("POST", `${this.session}/execute/sync`, { script: `return (${script});`, args: [] });
  }

  async resize(width, height) {
    await this.ask("POST", `${this.session}/goog/cdp/execute`, {
      cmd: "Emulation.setDeviceMetricsOverride",
      params: { width, height, deviceScaleFactor: 1, mobile: true } });
  }

  // Another tab comes to the front, and goes again.
  async hide() {
    [this.first] = await this.ask("GET", `${this.session}/window/handles`);
    const { handle } = await this.ask("POST", `${this.session}/window/new`, { type: "tab" });
    await this.ask("POST", `${this.session}/window`, { handle });
    this.second = handle;
  }

  async show() {
    await this.ask("DELETE", `${this.session}/window`);
    await this.ask("POST", `${this.session}/window`, { handle: this.first });
    await this.ask("POST", `${this.session}/goog/cdp/execute`, { cmd: "Page.bringToFront", params: {} });
  }

  async clickAt(x, y) {
    await this.ask("POST", `${this.session}/actions`, { actions: [{ type: "pointer", id: "finger",
      parameters: { pointerType: "touch" }, actions: [
        { type: "pointerMove", duration: 0, x, y }, { type: "pointerDown", button: 0 },
        { type: "pointerUp", button: 0 }] }] });
  }

  // What the page or its frame did that only a browser can tell.
  async escapes() {
    const windows = await this.ask("GET", `${this.session}/window/handles`);
    const dialog = await this.ask("GET", `${this.session}/alert/text`).catch(() => null);
    const url = dialog === null ? await this.ask("GET", `${this.session}/url`) : "";
    return { windows: windows.length - 1, dialogs: dialog === null ? 0 : 1,
      hasLeft: dialog === null && !url.includes("/served/") };
  }

  async screenshot(path) {
    await writeFile(path, await this.ask("GET", `${this.session}/screenshot`), "base64");
  }

  async close() {
    await this.ask("DELETE", `${this.session}/alert`).catch(() => {});
    const [first, ...others] = await this.ask("GET", `${this.session}/window/handles`);
    for (const handle of others) {
      await this.ask("POST", `${this.session}/window`, { handle });
      await this.ask("DELETE", `${this.session}/window`);
    }
    await this.ask("POST", `${this.session}/window`, { handle: first });
    await this.ask("POST", `${this.session}/url`, { url: "about:blank" });
  }
}
