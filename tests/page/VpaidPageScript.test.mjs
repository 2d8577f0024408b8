// Runs the page that "tamzo-vast page" prints, with a real HTML and XML parser (jsdom), a real HTTP
// server for tags and units, and units written for each case.

import assert from "node:assert/strict";
import { execFile } from "node:child_process";
import { once } from "node:events";
import { readFileSync } from "node:fs";
import { createServer } from "node:http";
import { createRequire } from "node:module";
import { after, before, test } from "node:test";

const require = createRequire(import.meta.url);  // unlike import it heeds NODE_PATH
const { JSDOM, VirtualConsole } = require("jsdom");
const acorn = require("acorn");

const command = process.env.TAMZO_COMMAND;
assert.ok(command, "TAMZO_COMMAND names the command tamzo-vast");

// ---- The server ---------------------------------------------------------------------------------

const bodies = new Map();
const server = createServer((request, response) => {
  const body = bodies.get(request.url);
  response.writeHead(body === undefined ? 404 : 200, { "Access-Control-Allow-Origin": "*" });
  response.end(body);
});
let host = "";
before(async () => {
  server.listen(0, "127.0.0.1");
  await once(server, "listening");
  host = `http://127.0.0.1:${server.address().port}`;
});
after(() => {
  server.close();
  server.closeAllConnections();
});

let served = 0;
function serve(body) {
  const path = `/${++served}`;
  bodies.set(path, body);
  return host + path;
}

// ---- Ads and units ------------------------------------------------------------------------------

// A unit that notes each call and answers at once; `extra` may replace parts of it.
function unitScript(extra = "") {
  return `
    window.unit = {
      listeners: {},
      note: function (name, values) { window.parent.calls.push([name].concat(values)); },
      happen: function (name) {
        const values = Array.prototype.slice.call(arguments, 1);
        const listener = this.listeners[name];
        if (listener) { listener.f.apply(listener.scope, values); }
      },
      handshakeVersion: function (version) { this.note("handshakeVersion", [version]); return "2.0"; },
      subscribe: function (f, name, scope) {
        this.note("subscribe", [name]);
        this.listeners[name] = { f: f, scope: scope };
      },
      initAd: function (width, height, mode, bitrate, creativeData, environment) {
        this.note("initAd", [width, height, mode, bitrate, creativeData, environment]);
        this.happen("AdLoaded");
      },
      startAd: function () {
        this.note("startAd", []);
        this.happen("AdStarted");
        this.happen("AdImpression");
      },
      stopAd: function () { this.note("stopAd", []); this.happen("AdStopped"); },
      pauseAd: function () { this.note("pauseAd", []); this.happen("AdPaused"); },
      resizeAd: function (width, height, mode) { this.note("resizeAd", [width, height, mode]); },
      getAdVolume: function () { return this.volume; },
      getAdExpanded: function () { return this.expanded; },
      volume: 1,
      expanded: false
    };
    window.getVPAIDAd = function () { window.parent.calls.push(["getVPAIDAd"]); return window.unit; };
    ${extra}`;
}

function mediaFile(url) {
  return `<MediaFile delivery="progressive" width="640" height="360" type="application/javascript"
    apiFramework="VPAID"><![CDATA[ ${url} ]]></MediaFile>`;
}

const trackingEvents = ["creativeView", "start", "firstQuartile", "midpoint", "thirdQuartile",
  "complete", "skip", "pause", "resume", "mute", "unmute", "expand", "collapse", "close"]
  .map((name) => `<Tracking event="${name}">https://t.example/${name}</Tracking>`).join("\n");

function inLineAd(files, { parameters = "", more = "", attributes = "" } = {}) {
  return `<VAST version="3.0"${attributes}>
    <Ad id="a"><InLine>
      <AdTitle>Unit</AdTitle>
      <Error>https://t.example/error?code=[ERRORCODE]</Error>
      <Impression>https://t.example/impression</Impression>
      <Creatives><Creative><Linear>
        <Duration>00:00:10</Duration>
        <TrackingEvents>${trackingEvents}</TrackingEvents>
        <AdParameters>${parameters}</AdParameters>
        <VideoClicks>
          <ClickThrough>https://shop.example/</ClickThrough>
          <ClickTracking>https://t.example/click</ClickTracking>
        </VideoClicks>
        <MediaFiles>${files}</MediaFiles>
      </Linear></Creative>${more}</Creatives>
    </InLine></Ad></VAST>`;
}

function wrapper(url, id) {
  return `<VAST version="3.0" xmlns="http://www.iab.com/VAST"><Ad><Wrapper>
    <VASTAdTagURI><![CDATA[${url}]]></VASTAdTagURI>
    <Error>https://t.example/error-${id}?[ERRORCODE]</Error>
    <Impression>https://t.example/impression-${id}</Impression>
    <Creatives><Creative><Linear><TrackingEvents>
      <Tracking event="start">https://t.example/start-${id}</Tracking>
    </TrackingEvents></Linear></Creative></Creatives>
  </Wrapper></Ad></VAST>`;
}

// ---- The page -----------------------------------------------------------------------------------

// What the command makes of a response; the status may be 0 or 1, as for any ad.
function pageOf(response) {
  return new Promise((resolve, reject) => {
    const isUrl = response.startsWith("http");
    const child = execFile(command, ["page", "--session-id", "S1", isUrl ? response : "-"],
      (error, out, complaint) => (error && error.code !== 1 ? reject(new Error(complaint))
                                                            : resolve(out)));
    child.stdin.end(isUrl ? "" : response);
  });
}

const open = [];
after(() => open.forEach((window) => window.close()));

// Opens a page and watches it. `speed` shortens the page's time limits.
function openPage(html, { speed = 1, bridge = "ios", settings = {} } = {}) {
  const watched = { told: [], places: [], pixels: [], calls: [], opened: [] };
  const listeners = new Set();
  const tell = (name, details) => {
    watched.told.push({ name, details });
    listeners.forEach((listener) => listener());
  };
  const dom = new JSDOM(html, {
    runScripts: "dangerously",
    resources: "usable",
    pretendToBeVisual: true,
    virtualConsole: new VirtualConsole(),
    beforeParse(window) {
      if (window !== window.parent) {
        return;
      }
      window.calls = watched.calls;
      window.tamzoSettings = settings;
      window.fetch = (url) => {
        watched.pixels.push(url);
        return Promise.resolve();
      };
      window.open = (url) => watched.opened.push(url);
      const setTimeout = window.setTimeout;
      window.setTimeout = (f, milliseconds) => setTimeout(f, milliseconds / speed);
      if (bridge === "ios") {
        window.webkit = { messageHandlers: { tamzo: {
          postMessage: ({ session, sequence, name, details }) => {
            watched.places.push({ session, sequence });
            tell(name, { ...details });
          }
        } } };
      } else if (bridge === "android") {
        window.TamzoBridge = { onEvent: (name, json) => {
          const { session, sequence, ...details } = JSON.parse(json);
          watched.places.push({ session, sequence });
          tell(name, details);
        } };
      }
    }
  });
  watched.window = dom.window;
  open.push(dom.window);
  watched.heard = (name) => new Promise((resolve, reject) => {
    const guard = setTimeout(() => reject(new Error(
      `${name} was not told, only ${JSON.stringify(watched.told)}`)), 20000);
    const look = () => {
      const found = watched.told.find((message) => message.name === name);
      if (found) {
        clearTimeout(guard);
        listeners.delete(look);
        resolve(found.details);
      }
    };
    listeners.add(look);
    look();
  });
  watched.names = () => watched.told.map((message) => message.name);
  watched.unit = () => dom.window.document.querySelector("iframe").contentWindow.unit;
  watched.happen = (...event) => watched.unit().happen(...event);
  return watched;
}

async function play(response, options) {
  return openPage(await pageOf(response), options);
}

// Promises that the page has yet to settle run before the next turn of the event loop.
const turn = () => new Promise((resolve) => setImmediate(resolve));

// ---- Order --------------------------------------------------------------------------------------

test("a unit is called in the order of VPAID 2.0", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript()))));
  await page.heard("AdStarted");
  const names = page.calls.map(([name]) => name);
  const order = names.filter((name, index) => names.indexOf(name) === index);
  assert.deepEqual(order, ["getVPAIDAd", "handshakeVersion", "subscribe", "initAd", "startAd"]);
  assert.deepEqual([...page.calls[1]], ["handshakeVersion", "2.0"]);
  const subscribed = page.calls.filter(([name]) => name === "subscribe").map(([, event]) => event);
  for (const event of ["AdLoaded", "AdStarted", "AdStopped", "AdError", "AdSkipped", "AdImpression",
    "AdVideoStart", "AdVideoFirstQuartile", "AdVideoMidpoint", "AdVideoThirdQuartile",
    "AdVideoComplete", "AdClickThru", "AdUserClose", "AdLog"]) {
    assert.equal(subscribed.filter((name) => name === event).length, 1, event);
  }
});

test("initAd is given the size, the parameters and slots of the frame", async () => {
  const parameters = "<![CDATA[{\"a\":\"1 < 2 & 3\"}]]>";
  const page = await play(inLineAd(mediaFile(serve(unitScript())), { parameters }));
  await page.heard("AdStarted");
  const [, width, height, mode, bitrate, creativeData, environment] =
    page.calls.find(([name]) => name === "initAd");
  assert.deepEqual([width, height, mode], [page.window.innerWidth, page.window.innerHeight, "normal"]);
  assert.equal(typeof bitrate, "number");
  assert.equal(creativeData.AdParameters, "{\"a\":\"1 < 2 & 3\"}");
  const frame = page.window.document.querySelector("iframe");
  assert.equal(environment.slot.ownerDocument, frame.contentDocument);
  assert.equal(environment.slot.localName, "div");
  assert.equal(environment.videoSlot.localName, "video");
  assert.equal(environment.videoSlotCanAutoPlay, true);
});

test("startAd waits for AdLoaded", async () => {
  const late = "window.unit.initAd = function () { this.note('initAd', []); };";
  const page = await play(inLineAd(mediaFile(serve(unitScript(late)))));
  while (!page.calls.some(([name]) => name === "initAd")) {
    await turn();
  }
  await turn();
  assert.ok(!page.calls.some(([name]) => name === "startAd"));
  page.happen("AdLoaded");
  await page.heard("AdStarted");
});

// ---- Where the unit is found --------------------------------------------------------------------

test("a tag URL is fetched by the page", async () => {
  const url = serve(inLineAd(mediaFile(serve(unitScript())),
    { attributes: " xmlns:xs=\"http://www.w3.org/2001/XMLSchema\"" }));
  const html = await pageOf(url);
  assert.ok(html.includes("data-tag-is-url=\"true\""));
  await openPage(html).heard("AdStarted");
});

test("Wrappers are followed, and their pixels fired too", async () => {
  const inner = serve(inLineAd(mediaFile(serve(unitScript()))));
  const outer = serve(wrapper(serve(wrapper(inner, "inner")), "outer"));
  // A host's template may stand behind any tag, so the page must manage without the parser's merge.
  const html = (await pageOf(inLineAd(mediaFile("https://x.example/")))).replace(
    /(data-tag-is-url=")false("[^]*<plaintext id="tag" hidden>)[^]*/,
    (all, start, end) => `${start}true${end}${outer}`);
  const page = openPage(html);
  await page.heard("AdImpression");
  assert.deepEqual(page.pixels.filter((url) => url.includes("impression")),
    ["https://t.example/impression-outer", "https://t.example/impression-inner",
      "https://t.example/impression"]);
  page.happen("AdVideoStart");
  assert.deepEqual(page.pixels.filter((url) => url.includes("/start")),
    ["https://t.example/start-outer", "https://t.example/start-inner", "https://t.example/start"]);
});

test("a chain of Wrappers without end is given up with 302", async () => {
  const url = serve("");
  bodies.set(new URL(url).pathname, wrapper(url, "loop"));
  const page = openPage((await pageOf(inLineAd(mediaFile("https://x.example/")))).replace(
    /<plaintext id="tag" hidden>[^]*/,
    () => `<plaintext id="tag" hidden>${wrapper(url, "first")}`));
  assert.equal((await page.heard("AdError")).code, 302);
  assert.deepEqual(page.pixels, ["https://t.example/error-first?302",
    ...Array(5).fill("https://t.example/error-loop?302")]);
});

test("a document that the parser merged behind a Wrapper is played from its text", async () => {
  const page = await play(wrapper(serve(inLineAd(mediaFile(serve(unitScript())))), "outer")
    .replace(" xmlns=\"http://www.iab.com/VAST\"", ""));
  await page.heard("AdImpression");
  assert.deepEqual(page.pixels.filter((url) => url.includes("impression")),
    ["https://t.example/impression-outer", "https://t.example/impression"]);
});

test("an InteractiveCreativeFile beside a video is found", async () => {
  const page = await play(inLineAd(`
    <MediaFile type="video/mp4" delivery="progressive">https://cdn.example/a.mp4</MediaFile>
    <InteractiveCreativeFile type="application/javascript" apiFramework="VPAID">
      ${serve(unitScript())}</InteractiveCreativeFile>`).replace("3.0", "4.2"));
  await page.heard("AdStarted");
});

test("an ad without a unit ends with 403", async () => {
  const page = await play(inLineAd(
    "<MediaFile type=\"video/mp4\" delivery=\"progressive\">https://cdn.example/a.mp4</MediaFile>"));
  assert.equal((await page.heard("AdError")).code, 403);
  assert.deepEqual(page.pixels, ["https://t.example/error?code=403"]);
});

// ---- Texts that are awkward to carry ------------------------------------------------------------

test("no text of an ad breaks the page", async () => {
  const awkward = [
    "quotes \" ' `", "$& $1 $$ ${x}", "back\\slash \\n \\u0041 \\", "&amp; &lt;", "a < b && c > d",
    "<script>alert(1)</script><script src=\"x\"></script>", "<!-- <script> -->", "<!--<script>",
    "</textarea></template></style></xmp></title></iframe></noscript>", "</plaintext></body></html>",
    "--> ]] > {{X}} {{ VAST_TAG }}", "é 漢 🎬", "[TAMZO_SESSION_ID]"
  ].join(" | ");
  const more = "<Creative><CompanionAds><Companion width=\"1\" height=\"1\"><HTMLResource>" +
    `<![CDATA[${awkward}]]></HTMLResource></Companion></CompanionAds></Creative>`;
  const parameters = `<![CDATA[${awkward}]]>`;
  const page = await play(inLineAd(mediaFile(serve(unitScript())), { parameters, more }));
  await page.heard("AdStarted");
  const [, , , , , creativeData] = page.calls.find(([name]) => name === "initAd");
  assert.equal(creativeData.AdParameters, awkward.replace("[TAMZO_SESSION_ID]", "S1"));
  const [text] = page.window.document.getElementById("tag").textContent.split("\u001f");
  const tag = new page.window.DOMParser().parseFromString(text.trim(), "text/xml");
  assert.equal(tag.getElementsByTagName("HTMLResource")[0].textContent,
    awkward.replace("[TAMZO_SESSION_ID]", "S1"));
});

test("character references in the markup stay the document's own", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript())),
    { parameters: "a=1&amp;b=&lt;c&gt;&amp;amp;&#36;&quot;" }));
  await page.heard("AdStarted");
  const [, , , , , creativeData] = page.calls.find(([name]) => name === "initAd");
  assert.equal(creativeData.AdParameters, "a=1&b=<c>&amp;$\"");
});

test("Moat data and partner code reach the app as the vendor block gave them", async () => {
  const data = { level1: "a & b </script> <!-- \\ \"$&\"", n: [1, 2] };
  const extension = `<Extensions><Extension><Tamzo>
    <AnalyticsKey>partner-1</AnalyticsKey>
    <AnalyticsData><![CDATA[${JSON.stringify(data)}]]></AnalyticsData>
  </Tamzo></Extension></Extensions></InLine>`;
  const page = await play(inLineAd(mediaFile(serve(unitScript()))).replace("</InLine>",
    () => extension));
  assert.deepEqual(JSON.parse(JSON.stringify(await page.heard("Moat"))),
    { data, partnerCode: "partner-1" });
});

test("without Moat data the app hears of none", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript()))), { bridge: "android" });
  assert.deepEqual(await page.heard("Moat"), { data: {}, partnerCode: "" });
});

// ---- Events -------------------------------------------------------------------------------------

test("events fire the pixels that they map to, once where they count once", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript()))));
  await page.heard("AdImpression");
  const cases = [
    ["AdVideoStart", ["start"]], ["AdVideoStart", []],
    ["AdVideoFirstQuartile", ["firstQuartile"]], ["AdVideoMidpoint", ["midpoint"]],
    ["AdVideoThirdQuartile", ["thirdQuartile"]], ["AdVideoComplete", ["complete"]],
    ["AdPaused", ["pause"]], ["AdPlaying", ["resume"]], ["AdPaused", ["pause"]],
    ["AdImpression", []], ["AdLog", []], ["AdUserClose", ["close"]], ["AdSkipped", ["skip"]]
  ];
  assert.deepEqual(page.pixels.splice(0),
    ["https://t.example/creativeView", "https://t.example/impression"]);
  for (const [event, expected] of cases) {
    page.happen(event);
    assert.deepEqual(page.pixels.splice(0), expected.map((name) => `https://t.example/${name}`),
      event);
  }
});

test("volume and expansion are asked of the unit", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript()))));
  await page.heard("AdImpression");
  page.pixels.splice(0);
  for (const volume of [0.5, 0, 0, 1]) {
    page.unit().volume = volume;
    page.happen("AdVolumeChange");
  }
  for (const expanded of [true, false]) {
    page.unit().expanded = expanded;
    page.happen("AdExpandedChange");
  }
  assert.deepEqual(page.pixels, ["mute", "unmute", "expand", "collapse"].map(
    (name) => `https://t.example/${name}`));
});

test("a click is tracked and left to the app, with the ad's own URL where the unit gives none",
  async () => {
    const page = await play(inLineAd(mediaFile(serve(unitScript()))), { bridge: "android" });
    await page.heard("AdStarted");
    page.happen("AdClickThru", "", "button", true);
    assert.deepEqual(await page.heard("AdClickThru"),
      { url: "https://shop.example/", id: "button", playerHandles: true });
    assert.deepEqual(page.pixels.filter((url) => url.endsWith("/click")), ["https://t.example/click"]);
    assert.deepEqual(page.opened, []);
  });

test("without an app the page opens a click itself, unless the unit does", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript()))), { bridge: "none" });
  while (!page.calls.some(([name]) => name === "startAd")) {
    await turn();
  }
  page.happen("AdClickThru", "https://own.example/", "", false);
  page.happen("AdClickThru", "https://page.example/", "", true);
  assert.deepEqual(page.opened, ["https://page.example/"]);
});

test("the app's calls and a new size reach the unit", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript()))));
  await page.heard("AdStarted");
  page.window.tamzoAd.call("pauseAd");
  await page.heard("AdPaused");
  page.window.dispatchEvent(new page.window.Event("resize"));
  assert.deepEqual([...page.calls.at(-1)],
    ["resizeAd", page.window.innerWidth, page.window.innerHeight, "normal"]);
});

test("AdStopped ends the ad and takes the unit away", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript()))));
  await page.heard("AdStarted");
  const unit = page.unit();
  unit.happen("AdStopped");
  await turn();
  assert.equal(page.window.document.querySelector("iframe"), null);
  const { length } = page.told;
  unit.happen("AdVideoStart");
  assert.equal(page.told.length, length);
  assert.equal(page.names().at(-1), "AdStopped");
});

// ---- Failures -----------------------------------------------------------------------------------

test("AdError of the unit ends the ad with 901", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript()))));
  await page.heard("AdStarted");
  page.happen("AdError", "no video");
  assert.deepEqual(await page.heard("AdError"), { code: 901, message: "no video" });
  await turn();
  assert.equal(page.window.document.querySelector("iframe"), null);
  assert.equal(page.pixels.at(-1), "https://t.example/error?code=901");
  assert.equal(page.names().at(-1), "AdError");
});

const silent = {
  "initAd is never answered": "window.unit.initAd = function () {};",
  "startAd is never answered": "window.unit.startAd = function () {};"
};
for (const [what, extra] of Object.entries(silent)) {
  test(`${what}: the ad ends with 901, and the unit is stopped`, async () => {
    const page = await play(inLineAd(mediaFile(serve(unitScript(extra)))), { speed: 8 });
    assert.equal((await page.heard("AdError")).code, 901);
    assert.ok(page.calls.some(([name]) => name === "stopAd"));
    await turn();
    assert.equal(page.window.document.querySelector("iframe"), null);
    assert.ok(!page.names().includes("AdStopped"));
  });
}

test("a unit that does not stop after AdSkipped is stopped", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript()))), { speed: 8 });
  await page.heard("AdStarted");
  page.happen("AdSkipped");
  await page.heard("AdStopped");
  await turn();
  assert.equal(page.window.document.querySelector("iframe"), null);
});

const broken = {
  "no script at its URL": [undefined, 901],
  "a script without getVPAIDAd": ["window.other = 1;", 901],
  "a script that is no JavaScript": ["<html>", 901],
  "another version": [unitScript("window.unit.handshakeVersion = function () { return '3.0'; };"), 901],
  "an exception in initAd": [unitScript("window.unit.initAd = function () { throw new Error('x'); };"), 901],
  "AdError instead of AdLoaded":
    [unitScript("window.unit.initAd = function () { this.happen('AdError', 'x'); };"), 901]
};
for (const [what, [script, code]] of Object.entries(broken)) {
  test(`a unit with ${what} ends with ${code}`, async () => {
    const url = script === undefined ? `${host}/nothing` : serve(script);
    const page = await play(inLineAd(mediaFile(url)));
    assert.equal((await page.heard("AdError")).code, code);
    await turn();
    assert.equal(page.window.document.querySelector("iframe"), null);
  });
}

test("tags that give no ad end with the code that says why", async () => {
  const html = await pageOf(inLineAd(mediaFile("https://x.example/")));
  const withTag = (isUrl, tag) => html.replace(
    /(data-tag-is-url=")false("[^]*<plaintext id="tag" hidden>)[^]*/,
    (all, start, end) => `${start}${isUrl}${end}${tag}`);
  const cases = [
    [true, `${host}/nothing`, 301], [true, serve("no XML"), 100], [false, "<VAST", 100],
    [false, "<html/>", 100], [false, "<VAST version='3.0'/>", 303],
    [false, "<VAST version='3.0'><Ad><Wrapper/></Ad></VAST>", 300]
  ];
  for (const [isUrl, tag, code] of cases) {
    assert.equal((await openPage(withTag(isUrl, tag)).heard("AdError")).code, code, tag);
  }
});

// ---- What units get wrong -----------------------------------------------------------------------

test("one subscribe that throws ends nothing", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript(`
    const subscribe = window.unit.subscribe;
    window.unit.subscribe = function (f, name, scope) {
      if (name === "AdLog") { throw null; }
      subscribe.call(this, f, name, scope);
    };`)))));
  await page.heard("AdImpression");
});

test("what a unit lacks is not asked of it, and it hears of no failure", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript(`
    delete window.unit.getAdVolume;
    delete window.unit.getAdExpanded;
    window.unit.getAdRemainingTime = null;`)))));
  await page.heard("AdImpression");
  page.pixels.splice(0);
  page.happen("AdVolumeChange");
  page.happen("AdExpandedChange");
  page.happen("AdVideoStart");
  assert.deepEqual(page.pixels, ["https://t.example/start"]);
  assert.deepEqual(page.names().slice(-3), ["AdVolumeChange", "AdExpandedChange", "AdVideoStart"]);
});

test("one minimising is one collapse", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript()))));
  await page.heard("AdImpression");
  page.pixels.splice(0);
  page.happen("AdUserMinimize");
  page.happen("AdExpandedChange");
  assert.deepEqual(page.pixels, ["https://t.example/collapse"]);
});

test("AdStarted that is told as AdImpression alone will do", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript(
    "window.unit.startAd = function () { this.happen('AdImpression'); };")))), { speed: 8 });
  await page.heard("AdImpression");
  page.happen("AdStopped");
  await page.heard("AdStopped");
  assert.deepEqual(page.names(), ["AdLoaded", "Moat", "AdImpression", "AdStopped"]);
});

test("clicks lead where an app may follow", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript()))));
  await page.heard("AdImpression");
  const cases = [
    [["market://details?id=a", "", true], "market://details?id=a", true],
    [["file:///etc/passwd", "", true], "https://shop.example/", true],
    [["intent://x#Intent;end", "", "yes"], "https://shop.example/", true],
    [[{ url: "https://o.example/?[CACHEBUSTING]", playerHandles: "FALSE" }],
      /^https:\/\/o\.example\/\?\d{8}$/, false],
    [[null, 5, 1], "https://shop.example/", true]
  ];
  for (const [parameters, url, playerHandles] of cases) {
    page.told.splice(0);
    page.happen("AdClickThru", ...parameters);
    const [{ details }] = page.told;
    assert.ok(url instanceof RegExp ? url.test(details.url) : url === details.url, details.url);
    assert.equal(details.playerHandles, playerHandles);
  }
});

// ---- What the ad says ---------------------------------------------------------------------------

test("AdParameters are handed over as they stand, or decoded where they say so", async () => {
  const cases = [
    ["<AdParameters> a\t b </AdParameters>", " a\t b "],
    ["<AdParameters xmlEncoded=\"true\">" +
      "<![CDATA[{&quot;a&quot;:&#39;&lt;&#x62;&amp;amp;&gt;]]></AdParameters>",
      "{\"a\":'<b&amp;>"],
    ["<AdParameters xmlEncoded=\"false\"><![CDATA[&lt;]]></AdParameters>", "&lt;"]
  ];
  for (const [element, expected] of cases) {
    const page = await play(inLineAd(mediaFile(serve(unitScript())))
      .replace("<AdParameters></AdParameters>", () => element));
    await page.heard("AdStarted");
    assert.equal(page.calls.find(([name]) => name === "initAd")[5].AdParameters, expected);
  }
});

test("CustomClicks, viewability and progress are the page's to fire", async () => {
  const response = inLineAd(mediaFile(serve(unitScript())))
    .replace("</VideoClicks>", `<CustomClick id="a">https://t.example/custom-a</CustomClick>
      <CustomClick>https://t.example/custom</CustomClick></VideoClicks>`)
    .replace("</TrackingEvents>", `
      <Tracking event="progress" offset="25%">https://t.example/progress-2.5</Tracking>
      <Tracking event="progress" offset="00:00:05.000">https://t.example/progress-5</Tracking>
      <Tracking event="progress">https://t.example/progress-none</Tracking></TrackingEvents>`)
    .replace("</InLine>", `<ViewableImpression><NotViewable>https://t.example/unseen</NotViewable>
      </ViewableImpression></InLine>`);
  const page = await play(response);
  await page.heard("AdImpression");
  page.pixels.splice(0);
  const happens = (...event) => {
    page.happen(...event);
    return page.pixels.splice(0).map((url) => url.replace("https://t.example/", ""));
  };
  assert.deepEqual(happens("AdInteraction", "a"), ["custom-a", "custom"]);
  assert.deepEqual(happens("AdInteraction", "b"), ["custom"]);
  assert.deepEqual(happens("AdVideoFirstQuartile"), ["firstQuartile", "progress-2.5"]);
  assert.deepEqual(happens("AdVideoMidpoint"), ["midpoint", "progress-5"]);
  assert.deepEqual(happens("AdVideoThirdQuartile"), ["thirdQuartile"]);
  assert.deepEqual(happens("AdStopped"), ["unseen"]);
});

test("macros of the standard are filled, others stay", async () => {
  const extension = `<Extensions><Extension><Tamzo><DeviceIp>2001:db8::1</DeviceIp>
    <VastVersions> 7, ,8</VastVersions><GDPRConsent>x=</GDPRConsent><CoppaEnabled>+01</CoppaEnabled>
    </Tamzo></Extension></Extensions></InLine>`;
  const asked = ["DEVICEIP", "VASTVERSIONS", "GDPRCONSENT", "REGULATIONS", "SERVERUA", "IFA",
    "PAGEURL", "CONTENTPLAYHEAD", "ERRORCODE", "timestamp", "PLAYERSIZE", "TAMZO_SESSION_ID"];
  const url = `https://t.example/${asked.map((name) => `[${name}]`).join("~")}`;
  const page = await play(inLineAd(mediaFile(serve(unitScript())))
    .replace("https://t.example/impression", url).replace("</InLine>", () => extension),
  { settings: { macros: { PLAYERSIZE: "3,4" } } });
  await page.heard("AdImpression");
  assert.deepEqual(page.pixels.at(-1).replace("https://t.example/", "").split("~"),
    ["2001%3Adb8%3A%3A1", "7,8", "x%3D", "coppa,gdpr", "-1", "-1", "0", "-1", "[ERRORCODE]",
      "[timestamp]", "3%2C4", "S1"]);
});

test("a cache-buster is new for each pixel, a time is one of ISO 8601", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript()))).replace(
    "https://t.example/impression", "https://t.example/[CACHEBUSTING]/[TIMESTAMP]"));
  await page.heard("AdImpression");
  assert.match(page.pixels.at(-1),
    /\/[1-9]\d{7}\/20\d\d-\d\d-\d\dT\d\d%3A\d\d%3A\d\d\.\d{3}%2B00%3A00$/);
});

test("only the web's own schemes are asked for pixels, documents and units", async () => {
  const page = await play(inLineAd(mediaFile("javascript:window.getVPAIDAd=1"))
    .replace("</InLine>", "<Error>ftp://t.example/</Error><Error>//t.example/relative</Error></InLine>"));
  assert.equal((await page.heard("AdError")).code, 901);
  assert.deepEqual(page.pixels, ["https://t.example/error?code=901", "https://t.example/relative"]);
});

// ---- The app ------------------------------------------------------------------------------------

for (const bridge of ["ios", "android"]) {
  test(`messages are numbered within their session (${bridge})`, async () => {
    const page = await play(inLineAd(mediaFile(serve(unitScript()))), { bridge });
    await page.heard("AdImpression");
    const [{ session }] = page.places;
    assert.match(session, /^\d{16}$/);
    assert.deepEqual(page.places, page.places.map((place, i) => ({ session, sequence: i + 1 })));
  });
}

test("a message waits neither for an app that throws nor for one that is not there", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript()))), { bridge: "none" });
  page.window.TamzoBridge = { onEvent() { throw new Error("gone"); } };
  while (!page.pixels.includes("https://t.example/impression")) {
    await turn();
  }
});

test("what the app may set is read with care", async () => {
  for (const settings of [null, 7, { start: {}, autoplay: 1, macros: 5, limits: "x", session: {} },
    { limits: { load: "x", start: -1 } }]) {
    const page = await play(inLineAd(mediaFile(serve(unitScript()))), { settings });
    await page.heard("AdImpression");
  }
});

test("a view that does not play by itself says so to the unit", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript()))),
    { settings: { autoplay: "none" } });
  await page.heard("AdImpression");
  assert.equal(page.calls.find(([name]) => name === "initAd")[6].videoSlotCanAutoPlay, false);
});

test("an app that stops before anything was loaded gets one last message", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript("window.unit.initAd = () => {};")))));
  while (!page.calls.some(([name]) => name === "getVPAIDAd")) {
    await turn();
  }
  page.window.tamzoAd.stop();
  await page.heard("AdStopped");
  assert.deepEqual(page.names(), ["AdStopped"]);
  assert.deepEqual(page.pixels, []);
});

test("a web view without fetch loads its pixels as images", async () => {
  const html = (await pageOf(inLineAd(mediaFile(serve(unitScript()))))).replace("<head>",
    () => `<head><script>delete window.fetch; window.images = [];
      window.Image = class { set src(url) { window.images.push(url); this.onload(); } };</script>`);
  const page = openPage(html);
  await page.heard("AdImpression");
  assert.deepEqual([...page.window.images],
    ["https://t.example/creativeView", "https://t.example/impression"]);
});

test("what an answer from an app's call cannot carry is left out", async () => {
  const page = await play(inLineAd(mediaFile(serve(unitScript(
    "window.unit.getAdIcons = () => true; window.unit.getAdLinear = () => ({});")))));
  await page.heard("AdImpression");
  assert.equal(page.window.tamzoAd.call("getAdIcons"), true);
  assert.equal(page.window.tamzoAd.call("getAdLinear"), undefined);
  assert.equal(page.window.tamzoAd.call("nothing"), undefined);
});

// ---- XML ----------------------------------------------------------------------------------------

const xml = new JSDOM("", { runScripts: "outside-only" }).window;
xml.eval(["builtIns", "settings", "xml"].map((name) => readFileSync(
  new URL(`../../sdk/page/${name}.js`, import.meta.url), "utf8")).join("\n") +
  "; window.read = parseXml; window.repair = (text) => new XmlRepair(text).run();");

test("markup that browsers refuse is written anew", () => {
  const cases = [
    ["<a b:c='1' xmlns='u' xmlns:d='v' e=\"2\"/>", "<a e=\"2\"/>"],
    ["<x:a><b:c:d/></x:a>", "<x_a><b_c_d/></x_a>"],
    ["<ab=\"1\"c='2'>t</a>", "<a c='2' b=\"1\">t</a>"],
    ["<ab=\"1\">t</ab>", "<ab>t</ab>"],
    ["<a b='<&quot;&c;&'/>", "<a b='&lt;&quot;&amp;c;&amp;'/>"],
    ["<a>x & y &z; &#65; ]]></a>", "<a>x &amp; y &amp;z; &#65; ]]&gt;</a>"],
    ["<?xml version=\"1.1\"encoding=\"x\"?><!-- <a> & --><a><![CDATA[<&]]></a>",
      "<a><![CDATA[<&]]></a>"],
    ["<a b c=\"1\" d></a >", "<a c=\"1\"></a>"],
    ["<\u00e9/>", "<_/>"]
  ];
  for (const [text, expected] of cases) {
    assert.equal(xml.repair(text), expected);
  }
});

test("what is no XML is refused with 100", () => {
  for (const text of ["", "text", "<a", "<a>", "<a></b>", "<a><!-- ", "<a><![CDATA[ </a>", "<a b='>",
    "<a/><b/>", "<>", "< a/>", "<a></a></a>", "<!DOCTYPE a [", "<a b='1' b='2'/>", "<1/>", "<a>&#0;</a>"]) {
    assert.throws(() => xml.read(text), { vastCode: 100 }, text);
  }
});

test("reading takes no longer than its text is long", () => {
  // What takes the square of its length would not end here.
  const length = 100000;
  for (const [piece, end] of [["<", ""], ["<a ", ""], ["&", ""], ["<!--", ""], ["<![CDATA[", ""],
    ["<a b=", ""], ["'", ""], [" ", ""], ["<!DOCTYPE[", ""], ["]]>", ""], ["<a>", ""], ["</a>", ""],
    ["<a b='1'", ""], ["\"", ">"]]) {
    for (const start of ["", "<a ", "<a b=\"", "<!DOCTYPE a [", "<!DOCTYPE \"", "<a>"]) {
      try {
        xml.repair(start + piece.repeat(length) + end);
      } catch (error) {
        assert.equal(error.vastCode, 100);
      }
    }
  }
});

// ---- The template -------------------------------------------------------------------------------

test("the script is ECMAScript 2017, for the web views of old phones", async () => {
  const html = await pageOf(inLineAd(mediaFile("https://x.example/")));
  const [, script] = /<script>([^]*?)<\/script>/.exec(html);
  acorn.parse(script, { ecmaVersion: 2017 });
});

test("the page's script is that of the tree, without its comments", async () => {
  const html = await pageOf(inLineAd(mediaFile("https://x.example/")));
  const [, script] = /<script>([^]*?)<\/script>/.exec(html);
  const list = readFileSync(new URL("../../cmake/VpaidPage.cmake", import.meta.url), "utf8");
  const names = /\(TAMZO_VPAID_SCRIPTS\s+([^)]*)\)/.exec(list)[1].trim().split(/\s+/);
  const tree = names.map((name) => readFileSync(
    new URL(`../../sdk/page/${name}.js`, import.meta.url), "utf8")).join("\n");
  const tokens = (text) => Array.from(acorn.tokenizer(text, { ecmaVersion: 2017 }),
    ({ type, value }) => [type.label, value && value.pattern ? String(value.pattern) : value]);
  assert.deepEqual(tokens(script), tokens(`(function () { "use strict"; ${tree} })();`));
});

// The page fills in what only the SDK knows with what the app gave it, or -1.
test("the macros that nobody knows are those of the parser", async () => {
  const namesIn = (file, pattern) => {
    const text = readFileSync(new URL(`../../sdk/${file}`, import.meta.url), "utf8");
    return new Set(pattern.exec(text)[1].match(/[A-Z]{2,}/g));
  };
  const inPage = namesIn("page/macros.js", /const UNKNOWN = \(([^)]*)\)/);
  const inParser = namesIn("TamzoMacroReplacementUtil.cc", /kUnknownMacros =([^;]*);/);
  assert.ok(inParser.size > 30);
  assert.deepEqual([...inParser].filter((name) => !inPage.has(name)), []);
  assert.deepEqual([...inPage].filter((name) => !inParser.has(name)),
    ["BLOCKEDADCATEGORIES", "REGULATIONS"]);
});

test("a page without an ad has 40 KB at most", async () => {
  const response = inLineAd(mediaFile("https://x.example/"));
  assert.ok(Buffer.byteLength(await pageOf(response)) <= 40960 + response.length);
});
