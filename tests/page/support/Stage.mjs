// One ad in one view: its documents and unit on the server, what the app was told, and which pixels
// arrived, as often as they did.

import assert from "node:assert/strict";
import { execFile } from "node:child_process";

const TRACKED = ["loaded", "creativeView", "start", "firstQuartile", "midpoint", "thirdQuartile",
  "complete", "skip", "pause", "resume", "mute", "unmute", "expand", "collapse", "minimize", "close",
  "acceptInvitation"];
const GUARD_MS = 200000;  // against a test that would wait for ever; nothing is timed by it

// How busy the machine is must not decide what comes of an ad; a test sets the limit that it tries.
const PATIENT = Object.fromEntries(["fetch", "unit", "register", "load", "start", "stop", "stall",
  "pixels"].map((name) => [name, 60000]));

let stages = 0;

// The page that the command makes of a response; the status may be 0 or 1, as for any ad.
export function pageOf(response, sessionId = "S1") {
  return new Promise((resolve, reject) => {
    const isUrl = response.startsWith("http");
    const child = execFile(process.env.TAMZO_COMMAND,
      ["page", "--session-id", sessionId, isUrl ? response : "-"], { maxBuffer: 1 << 26 },
      (error, out, complaint) => (error && error.code !== 1 ? reject(new Error(complaint))
                                                            : resolve(out)));
    child.stdin.end(isUrl ? "" : response);
  });
}

// A unit that answers at once; `extra` may replace parts of it.
export function unitScript(extra = "") {
  return `
    window.unit = {
      listeners: {},
      volume: 1,
      note: function (name, values) {
        try { window.parent.calls.push([name].concat(values)); } catch (ignored) {}
      },
      happen: function (name) {
        var listener = this.listeners[name];
        if (listener) { listener.f.apply(listener.scope, [].slice.call(arguments, 1)); }
      },
      handshakeVersion: function () { return "2.0"; },
      subscribe: function (f, name, scope) { this.listeners[name] = { f: f, scope: scope }; },
      initAd: function (width, height, mode, bitrate, data, slots) {
        this.note("initAd", [width, height, data.AdParameters, slots.videoSlotCanAutoPlay]);
        this.slot = slots.slot;
        this.video = slots.videoSlot;
        this.happen("AdLoaded");
      },
      startAd: function () {
        this.note("startAd", []);
        this.happen("AdStarted");
        this.happen("AdImpression");
        this.act();
      },
      act: function () {},
      stopAd: function () { this.note("stopAd", []); this.happen("AdStopped"); },
      skipAd: function () { this.happen("AdSkipped"); this.happen("AdStopped"); },
      pauseAd: function () { this.note("pauseAd", []); this.happen("AdPaused"); },
      resumeAd: function () { this.note("resumeAd", []); this.happen("AdPlaying"); },
      resizeAd: function (width, height) { this.note("resizeAd", [width, height]); },
      setAdVolume: function (volume) {
        this.volume = volume;
        this.note("setAdVolume", [volume]);
        this.happen("AdVolumeChange");
      },
      getAdVolume: function () { return this.volume; },
      getAdExpanded: function () { return false; }
    };
    window.getVPAIDAd = function () { return window.unit; };
    ${extra}`;
}

// A unit whose startAd does this, as a function's body; "unit" is the unit.
export const acting = (body) => unitScript(
  `window.unit.act = function () { var unit = this; ${body} };`);
export const ending = (extra) => unitScript(extra +
  "; window.unit.act = function () { this.happen('AdStopped'); };");

export class Stage {
  constructor(browser, server) {
    this.browser = browser;
    this.server = server;
    this.id = `/stage-${++stages}`;
    this.messages = [];
    this.listeners = new Set();
  }

  // ---- Documents --------------------------------------------------------------------------------

  pixel(name) { return this.server.urlOf("pixel", `${this.id}/${name}`); }
  unit(script, options) {
    return this.server.serve("unit", script, { type: "text/javascript", ...options });
  }

  trackers(suffix = "") {
    return TRACKED.map((name) => `<Tracking event="${name}">${this.pixel(name + suffix)}</Tracking>`)
      .join("");
  }

  inLine(unitUrl, { parameters = "", tracking = "", more = "", clicks = "", root = "", linear = "",
    extensions = "", media = "" } = {}) {
    return `<VAST version="3.0"${root}><Ad id="a"><InLine><AdTitle>Unit</AdTitle>
      <Error>${this.pixel("error-[ERRORCODE]")}</Error>
      <Impression>${this.pixel("impression")}</Impression>
      <Creatives><Creative><Linear><Duration>00:00:02</Duration>
        <TrackingEvents>${this.trackers()}${tracking}</TrackingEvents>
        ${parameters || "<AdParameters></AdParameters>"}
        <VideoClicks><ClickThrough>https://shop.example/</ClickThrough>
          <ClickTracking>${this.pixel("click")}</ClickTracking>${clicks}</VideoClicks>
        <MediaFiles>${media}<MediaFile delivery="progressive" width="640" height="360"
          type="application/javascript" apiFramework="VPAID"><![CDATA[ ${unitUrl} ]]></MediaFile>
        </MediaFiles></Linear></Creative>${linear}</Creatives>${more}
      ${extensions}</InLine></Ad></VAST>`;
  }

  wrapper(url, suffix) {
    return `<VAST version="3.0"><Ad><Wrapper><VASTAdTagURI><![CDATA[${url}]]></VASTAdTagURI>
      <Error>${this.pixel(`error-[ERRORCODE]${suffix}`)}</Error>
      <Impression>${this.pixel(`impression${suffix}`)}</Impression>
      <Creatives><Creative><Linear><TrackingEvents>${this.trackers(suffix)}</TrackingEvents>
      </Linear></Creative></Creatives></Wrapper></Ad></VAST>`;
  }

  tag(document) { return this.server.serve("tag", document, { type: "text/xml" }); }

  // ---- The page ---------------------------------------------------------------------------------

  async play(response, { sessionId, ...options } = {}) {
    await this.open(await pageOf(response, sessionId), options);
  }

  playUnit(script, options = {}) {
    return this.play(this.inLine(this.unit(script, options.unit), options.ad), options);
  }

  open(html, options) {
    this.mayLeave = options.closesAtLast || options.leaves;
    const limits = { ...PATIENT, ...(options.settings || {}).limits };
    const settings = { ...options.settings, limits };
    return this.browser.open(html, { ...options, settings, onMessage: (message) => {
      this.messages.push(message);
      this.listeners.forEach((look) => look());
    } });
  }

  run(script) { return this.browser.run(script); }
  runUnit(script) {
    return this.run(`(function (unit) { return ${script}; })` +
      "(document.querySelector('iframe').contentWindow.unit)");
  }
  happen(...event) {
    return this.runUnit(`unit.happen(${event.map((value) => JSON.stringify(value)).join(", ")})`);
  }

  // ---- What came of it --------------------------------------------------------------------------

  when(accepts, what) {
    return new Promise((resolve, reject) => {
      const guard = setTimeout(() => reject(new Error(
        `${what} did not come, only ${JSON.stringify(this.messages)}`)), GUARD_MS);
      const look = () => {
        const found = this.messages.find(accepts);
        if (found) {
          clearTimeout(guard);
          this.listeners.delete(look);
          resolve(found.details);
        }
      };
      this.listeners.add(look);
      look();
    });
  }

  heard(name) { return this.when((message) => message.name === name, name); }
  ended() {
    return this.when(({ name }) => name === "AdStopped" || name === "AdError", "the last message");
  }

  async called(name) {
    for (;;) {
      const calls = await this.run("window.calls || []");
      const found = calls.filter(([called]) => called === name);
      if (found.length) {
        return found;
      }
    }
  }

  names() { return this.messages.map((message) => message.name); }

  pixels() {
    const count = {};
    for (const path of this.server.requests) {
      if (path.startsWith(this.id + "/")) {
        const name = path.slice(this.id.length + 1);
        count[name] = (count[name] || 0) + 1;
      }
    }
    return count;
  }

  // Waits until a pixel has arrived; how often each did is looked at when the ad has ended.
  async requested(name) {
    await this.server.whenRequested(() => name in this.pixels());
  }

  // Exactly these messages in this order, numbered without a gap, and exactly these pixels.
  expectMessages(...names) {
    assert.deepEqual(this.names(), names);
    assert.deepEqual(this.messages.map(({ sequence }) => sequence), names.map((name, i) => i + 1));
    assert.equal(new Set(this.messages.map(({ session }) => session)).size, 1);
  }

  expectPixels(expected) {
    const counts = Array.isArray(expected) ? Object.fromEntries(expected.map((name) => [name, 1]))
                                           : expected;
    assert.deepEqual(this.pixels(), counts);
  }

  // The ad has ended, and neither message nor pixel nor frame comes behind.
  async expectQuiet() {
    const [messages, pixels] = [this.names(), this.pixels()];
    await this.run("(window.isLater = false, setTimeout(() => { window.isLater = true; }, 700), 0)");
    while (!await this.run("window.isLater")) {
      // asked again
    }
    assert.deepEqual(this.names(), messages);
    assert.deepEqual(this.pixels(), pixels);
    assert.equal(await this.run("document.querySelectorAll('iframe').length"), 0);
  }
}
