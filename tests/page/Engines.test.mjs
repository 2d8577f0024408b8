// Plays the page in a real browser: Chromium, or WebKit in a view as an app has it.

import assert from "node:assert/strict";
import { readFileSync } from "node:fs";
import { after, before, test } from "node:test";

import { Chromium } from "./support/Chromium.mjs";
import { Server } from "./support/Server.mjs";
import { Stage, acting, ending, pageOf, unitScript } from "./support/Stage.mjs";
import { WebKit } from "./support/WebKit.mjs";

const engine = process.env.TAMZO_ENGINE;
const pictures = process.env.TAMZO_PICTURES;  // a folder, for those who want to look
const server = new Server();
const browser = engine === "webkit" ? new WebKit(server) : new Chromium(server);
before(async () => {
  await server.start();
  await browser.start();
});
after(async () => {
  await browser.stop();
  server.stop();
});

// Limits that a test need not wait long for. Those that are not on trial stay as they are.
const soon = (...names) => ({ limits: Object.fromEntries(names.map((name) => [name, 300])) });

const STARTED = ["loaded", "creativeView", "impression"];
const STARTING = ["AdLoaded", "Moat", "AdStarted", "AdImpression"];

const wanted = process.env.TAMZO_SCENARIO;  // a part of a name
function scenario(name, play, { only } = {}) {
  if ((only && only !== browser.name) || (wanted && !name.includes(wanted))) {
    return;
  }
  test(`${browser.name}: ${name}`, { timeout: 240000 }, async () => {
    const stage = new Stage(browser, server);
    try {
      await play(stage);
      if (!stage.mayLeave) {
        assert.deepEqual(await browser.escapes(), { windows: 0, dialogs: 0, hasLeft: false });
      }
    } finally {
      await browser.close();
    }
  });
}

// ---- An ad from end to end ----------------------------------------------------------------------

const video = readFileSync(new URL("data/two-seconds.webm", import.meta.url));
const videoUnit = (url, steps = ["AdVideoStart", "AdVideoFirstQuartile", "AdVideoMidpoint",
  "AdVideoThirdQuartile"]) => unitScript(`
  window.unit.getAdDuration = function () { return this.video.duration || -2; };
  window.unit.getAdRemainingTime = function () {
    return this.video.duration ? this.video.duration - this.video.currentTime : -2;
  };
  window.unit.initAd = function (width, height, mode, bitrate, data, slots) {
    var unit = this;
    this.video = slots.videoSlot;
    this.video.loop = Boolean(this.isEndless);
    this.video.src = "${url}";
    this.video.addEventListener("canplay", function () {
      if (!unit.isLoaded) { unit.isLoaded = true; unit.happen("AdLoaded"); }
    });
    this.video.load();
  };
  window.unit.startAd = function () {
    var unit = this, video = this.video, at = 0;
    var steps = ${JSON.stringify(steps)};
    unit.happen("AdStarted");
    unit.happen("AdImpression");
    video.addEventListener("timeupdate", function () {
      while (at < steps.length && video.currentTime >= video.duration * at / 4) {
        unit.happen(steps[at]);
        at += 1;
      }
    });
    video.addEventListener("ended", function () {
      unit.happen("AdVideoComplete");
      unit.happen("AdStopped");
    });
    video.play();
  };`);
const servedVideo = () => server.serve("unit", video, { type: "video/webm" });

scenario("a video is played from its start to its end", async (stage) => {
  await stage.playUnit(videoUnit(servedVideo()), { settings: { autoplay: "muted" } });
  await stage.ended();
  stage.expectMessages("AdLoaded", "AdVolumeChange", "Moat", "AdStarted", "AdImpression",
    "AdVideoStart", "AdVideoFirstQuartile", "AdVideoMidpoint", "AdVideoThirdQuartile",
    "AdVideoComplete", "AdStopped");
  stage.expectPixels([...STARTED, "start", "firstQuartile", "midpoint", "thirdQuartile",
    "complete"]);
  await stage.expectQuiet();
});

scenario("progress is tracked where the video has come to", async (stage) => {
  const tracking = ["00:00:00.300", "50%", "00:00:10"].map((offset, i) =>
    `<Tracking event="progress" offset="${offset}">${stage.pixel(`progress-${i}`)}</Tracking>`);
  await stage.playUnit(videoUnit(servedVideo(), ["AdVideoStart"]) + "window.unit.isEndless = true;",
    { settings: { autoplay: "muted" }, ad: { tracking: tracking.join("") } });
  await stage.requested("progress-0");
  await stage.requested("progress-1");
  if (pictures) {
    await browser.screenshot(`${pictures}/${browser.name}-video.png`);
  }
  await stage.run("tamzoAd.stop()");
  await stage.ended();
  stage.expectPixels([...STARTED, "start", "progress-0", "progress-1"]);
});

scenario("an ad that was seen for two seconds is viewable, one that ended before is not",
  async (stage) => {
    const more = `<ViewableImpression><Viewable>${stage.pixel("viewable")}</Viewable>
      <NotViewable>${stage.pixel("not-viewable")}</NotViewable></ViewableImpression>`;
    await stage.playUnit(unitScript(), { ad: { more } });
    await stage.requested("viewable");
    await stage.run("tamzoAd.stop()");
    await stage.ended();
    stage.expectPixels([...STARTED, "viewable"]);

    const short = new Stage(browser, server);
    await short.playUnit(ending(), { ad: { more: more.split(stage.id).join(short.id) } });
    await short.ended();
    short.expectPixels([...STARTED, "not-viewable"]);
  });

scenario("phones see the ad fill the view, upright and across", async (stage) => {
  for (const [width, height] of [[320, 568], [390, 844], [844, 390]]) {
    await browser.resize(width, height);
    const one = new Stage(browser, server);
    await one.playUnit(unitScript(`window.unit.startAd = function () {
      this.slot.innerHTML = "<div style='position:absolute;top:0;left:0;right:0;bottom:0;" +
        "border:8px solid lime;background:navy;color:white;box-sizing:border-box'>slot</div>";
      this.happen("AdStarted");
    };`));
    await one.heard("AdStarted");
    const box = await one.runUnit("JSON.stringify(unit.slot.getBoundingClientRect())");
    const size = await one.run("[innerWidth, innerHeight]");
    const { x, y, width: slotWidth, height: slotHeight } = JSON.parse(box);
    assert.deepEqual([x, y, slotWidth, slotHeight], [0, 0, ...size]);
    if (browser.name === "chromium") {
      assert.deepEqual(size, [width, height]);
    }
    if (pictures) {
      await browser.screenshot(`${pictures}/${browser.name}-${width}x${height}.png`);
    }
  }
  await browser.resize(390, 844);
});

// ---- Pixels -------------------------------------------------------------------------------------

scenario("three clicks are three pixels", async (stage) => {
  await stage.playUnit(acting(`for (var i = 0; i < 3; ++i) {
    unit.happen("AdClickThru", "https://shop.example/" + i, "", true);
  }
  unit.happen("AdStopped");`));
  await stage.ended();
  stage.expectPixels({ loaded: 1, creativeView: 1, impression: 1, click: 3 });
});

scenario("an Impression that Wrapper and InLine share is requested for both", async (stage) => {
  const inner = stage.tag(stage.inLine(stage.unit(ending())));
  await stage.play(stage.wrapper(inner, ""));
  await stage.ended();
  stage.expectPixels({ loaded: 2, creativeView: 2, impression: 2 });
});

scenario("an app that closes the view at the last message loses no pixel", async (stage) => {
  const errors = Array.from({ length: 8 }, (_, i) => `error-${i}`);
  await stage.playUnit(acting(`unit.happen("AdVideoComplete"); unit.happen("AdError", "x");`),
    { closesAtLast: true,
      ad: { more: errors.map((name) => `<Error>${stage.pixel(name)}</Error>`).join("") } });
  await stage.ended();
  stage.expectPixels([...STARTED, "complete", "error-901", ...errors]);
});

scenario("the last message waits for pixels that are on their way", async (stage) => {
  server.delayOf = (path) => (path.endsWith("/slow") ? 400 : 0);
  await stage.playUnit(ending(), { ad: { more: `<Impression>${stage.pixel("slow")}</Impression>` } });
  await stage.ended();
  assert.ok(server.answered.has(`${stage.id}/slow`));
});

scenario("a pixel that is not answered holds the last message up for its limit only",
  async (stage) => {
    server.delayOf = (path) => (path.endsWith("/slow") ? 200000 : 0);
    await stage.playUnit(ending(), { settings: soon("pixels"),
      ad: { more: `<Impression>${stage.pixel("slow")}</Impression>` } });
    await stage.ended();
    assert.equal(server.answered.has(`${stage.id}/slow`), false);
    stage.expectMessages(...STARTING, "AdStopped");
  });

scenario("a root's Error is told of an answer without an ad", async (stage) => {
  const url = stage.tag(`<VAST version="3.0"><Error>${stage.pixel("none-[ERRORCODE]")}</Error></VAST>`);
  const html = (await pageOf(stage.inLine(stage.unit("")))).replace(
    /(data-tag-is-url=")false("[^]*<plaintext id="tag" hidden>)[^\u001f]*/,
    (all, start, end) => `${start}true${end}${url}`);
  await stage.open(html, {});
  assert.equal((await stage.ended()).code, 303);
  stage.expectMessages("AdError");
  stage.expectPixels(["none-303"]);
});

scenario("of two Linears the one that is not played stays silent", async (stage) => {
  const linear = `<Creative><Linear><Duration>00:00:02</Duration><TrackingEvents>
    <Tracking event="creativeView">${stage.pixel("second")}</Tracking></TrackingEvents>
    <VideoClicks><ClickTracking>${stage.pixel("second-click")}</ClickTracking></VideoClicks>
    </Linear></Creative>`;
  await stage.playUnit(acting(`unit.happen("AdClickThru", "", "", true);
    unit.happen("AdStopped");`), { ad: { linear } });
  await stage.ended();
  stage.expectPixels([...STARTED, "click"]);
});

scenario("over https, units and pixels of http are asked for over https", async (stage) => {
  const upgraded = (text) => text.split("//127.0.0.3:").join("//unit.test:")
    .split("//127.0.0.4:").join("//pixel.test:");
  await stage.play(upgraded(stage.inLine(stage.unit(ending()))), { scheme: "https" });
  await stage.ended();
  stage.expectMessages(...STARTING, "AdStopped");
  stage.expectPixels(STARTED);
}, { only: "chromium" });

scenario("macros are filled, and -1 stands for what nobody knows", async (stage) => {
  const extensions = `<Extensions><Extension><Tamzo><ClientUA>player/1 tamzo</ClientUA>
    <MimeType>video/mp4, video/webm</MimeType></Tamzo></Extension></Extensions>`;
  const more = `<Impression>${stage.pixel("m-[CLIENTUA]-[MEDIAMIME]-[IFA]-[foo]-[SERVERSIDE]-[NOSUCH]")
    }</Impression>`;
  await stage.playUnit(ending(), { ad: { extensions, more },
    settings: { macros: { PLAYERSIZE: "1,2" } } });
  await stage.ended();
  stage.expectPixels([...STARTED,
    "m-player%2F1%20tamzo-video%2Fmp4,video%2Fwebm--1-[foo]-0-[NOSUCH]"]);
});

// ---- Documents ----------------------------------------------------------------------------------

const documents = {
  "prefixes that nobody declared": (text) => text.replace("<AdTitle>Unit</AdTitle>",
    "<x:a x:b=\"1\">t</x:a><AdTitle>Unit</AdTitle>"),
  "a root with a schema's address": (text) => text.replace("<VAST version=\"3.0\"",
    "<VAST version=\"3.0\" xmlns=\"http://www.iab.com/VAST\" xmlns:xsi=\"http://www.w3.org/2001/" +
    "XMLSchema-instance\" xsi:noNamespaceSchemaLocation=\"vast.xsd\""),
  "line breaks between a name and its attributes": (text) =>
    text.replace("<MediaFile delivery", "<MediaFile\ndelivery").replace(" height=", "\nheight="),
  "an entity of its own": (text) =>
    "<!DOCTYPE VAST [<!ENTITY a \"[x]&#62;\"><!-- it's \"a\" ] --><!ELEMENT VAST ANY>]>" +
    text.replace("<AdTitle>Unit", "<AdTitle>&a;").replace("<AdParameters>", "<AdParameters>&a;")
};
for (const [what, change] of Object.entries(documents)) {
  scenario(`a document with ${what} is played`, async (stage) => {
    await stage.play(change(stage.inLine(stage.unit(ending()))));
    await stage.ended();
    stage.expectMessages(...STARTING, "AdStopped");
    stage.expectPixels(STARTED);
  });
}

scenario("a session id with an ampersand is part of the text", async (stage) => {
  const parameters = "<AdParameters>sid=[TAMZO_SESSION_ID]</AdParameters>";
  await stage.playUnit(ending(), { ad: { parameters }, sessionId: "a&b&amp=\"c" });
  await stage.ended();
  const [[, , , text]] = await stage.called("initAd");
  assert.equal(text, "sid=a&b&amp=\"c");
});

const hostileValues = {
  "the end of an element and a script": "</xmp></plaintext></script><script>parent.hacked = 1; " +
    "window.hacked = 1</script>",
  "a refresh": "</xmp><meta http-equiv=\"refresh\" content=\"0;url=about:blank\">",
  "plaintext": "</xmp><plaintext>",
  "a comment": "<!--<script>"
};
for (const [what, value] of Object.entries(hostileValues)) {
  scenario(`the vendor's data with ${what} is data`, async (stage) => {
    const data = { value, list: [1, "{{VAST_TAG}}"] };
    const extensions = `<Extensions><Extension><Tamzo><AnalyticsKey><![CDATA[${value}]]></AnalyticsKey>
      <AnalyticsData><![CDATA[${JSON.stringify(data)}]]></AnalyticsData></Tamzo></Extension></Extensions>`;
    await stage.playUnit(unitScript(), { ad: { extensions } });
    assert.deepEqual(await stage.heard("Moat"), { data, partnerCode: value });
    assert.equal(await stage.run("typeof window.hacked"), "undefined");
    await stage.run("tamzoAd.stop()");
    await stage.ended();
    stage.expectPixels(STARTED);
  });
}

scenario("hostile text in every value is text, from the session id to a click's address", async (stage) => {
  const text = "</xmp></plaintext></script></style></title><script>window.hacked = 1; " +
    "parent.hacked = 1;</script><img src=x onerror=\"parent.hacked = 1\">$&$`$'\" onload=\"hacked=1";
  const quoted = JSON.stringify(text).replace(/</g, "\\u003c");
  const values = (...names) => names.map((name) => `<${name}><![CDATA[${text}]]></${name}>`).join("");
  await stage.play(stage.inLine(stage.unit(unitScript(`window.unit.act = function () {
    this.happen("AdLog", ${quoted});
    this.happen("AdInteraction", ${quoted});
    this.happen("AdClickThru", ${quoted}, ${quoted}, true);
    this.happen("AdStopped");
  };`)), {
    parameters: values("AdParameters"), clicks: values("CustomClick", "ClickTracking"),
    tracking: `<Tracking event="__proto__"><![CDATA[${text}]]></Tracking>`,
    more: values("Impression", "Error") + `<Impression>${stage.pixel("m?[CLIENTUA]")}</Impression>`,
    extensions: `<Extensions><Extension><Tamzo>${values("ServerUA", "ClientUA", "DeviceIp",
      "OMIDPartner", "GDPRConsent", "ClickType", "AnalyticsKey", "AnalyticsData")}</Tamzo></Extension>
      </Extensions>`
  }), { sessionId: text, settings: { session: text, macros: { IFA: text } } });
  assert.deepEqual(await stage.ended(), {});
  assert.equal(await stage.run("typeof window.hacked"), "undefined");
  assert.deepEqual(await stage.heard("Moat"), { data: {}, partnerCode: text });
  assert.equal((await stage.heard("AdLog")).message, text);
  assert.deepEqual(stage.messages.map(({ session }) => session), stage.messages.map(() => text));
  const [[, , , parameters]] = await stage.called("initAd");
  assert.equal(parameters, text);
  stage.expectPixels(["loaded", "creativeView", "impression", "click", `m?${encodeURIComponent(text)
    .replace(/'/g, "%27")}`]);
});

// ---- Units that fail ----------------------------------------------------------------------------

const thrown = {
  "null": "throw null;",
  "undefined": "throw undefined;",
  "a function": "throw function () {};",
  "an object whose properties throw": "throw { get message() { throw this; }, " +
    "toString: function () { throw this; } };"
};
for (const [what, statement] of Object.entries(thrown)) {
  scenario(`a unit that throws ${what} ends with 901`, async (stage) => {
    await stage.playUnit(unitScript(`window.unit.startAd = function () { ${statement} };`));
    assert.equal((await stage.ended()).code, 901);
    stage.expectMessages("AdLoaded", "Moat", "AdError");
    stage.expectPixels(["loaded", "error-901"]);
    await stage.expectQuiet();
  });
}

scenario("getVPAIDAd that throws is 901", async (stage) => {
  await stage.playUnit("window.getVPAIDAd = function () { throw new Error('no'); };");
  assert.equal((await stage.ended()).code, 901);
  stage.expectMessages("AdError");
  stage.expectPixels(["error-901"]);
});

scenario("a unit that damages the page's built-ins does not keep the end away", async (stage) => {
  await stage.playUnit(acting(`
    [window.parent, window].forEach(function (scope) {
      var f = function () { throw new Error("damaged"); };
      ["Promise", "JSON", "Image", "fetch", "setTimeout", "clearTimeout", "XMLHttpRequest", "String",
        "Array", "Object", "Map", "Set", "URL", "Math", "Date"].forEach(function (name) {
        try { scope[name] = f; } catch (ignored) {}
      });
      [scope.Array, scope.String, scope.RegExp, scope.Promise, scope.Map, scope.Set, scope.Object,
        scope.Function].forEach(function (type) {
        if (!type || !type.prototype) { return; }
        Object.getOwnPropertyNames(type.prototype).forEach(function (name) {
          try { if (name !== "constructor") { type.prototype[name] = f; } } catch (ignored) {}
        });
      });
      try { scope.Object.prototype.toJSON = f; } catch (ignored) {}
    });
    throw null;`), { leaves: true });  // a view whose built-ins are damaged is asked nothing more
  assert.equal((await stage.ended()).code, 901);
  stage.expectMessages(...STARTING, "AdError");
  stage.expectPixels([...STARTED, "error-901"]);
});

const damage = {
  "the prototypes that addresses and times come from": ["Date", "URL", "Error", "WeakMap"],
  "the prototypes of the document": ["Document", "Node", "Element", "EventTarget",
    "HTMLIFrameElement", "HTMLMediaElement"]
};
for (const [what, types] of Object.entries(damage)) {
  scenario(`a unit that damages ${what} keeps no Error pixel away`, async (stage) => {
    await stage.playUnit(acting(`
      [window.parent, window].forEach(function (scope) {
        var f = function () { throw new RangeError("damaged"); };
        ["encodeURIComponent", "isFinite", "parseInt", "Error"].forEach(function (name) {
          try { scope[name] = f; } catch (ignored) {}
        });
        ${JSON.stringify(types)}.forEach(function (type) {
          var prototype = scope[type].prototype;
          prototype && Object.getOwnPropertyNames(prototype).forEach(function (name) {
            try { Object.defineProperty(prototype, name, { get: f }); } catch (ignored) {}
          });
        });
      });
      throw null;`), { leaves: true,
      ad: { more: `<Error>${stage.pixel("time-[SERVERSIDE]#[TIMESTAMP]")}</Error>` } });
    assert.equal((await stage.ended()).code, 901);
    stage.expectMessages(...STARTING, "AdError");
    stage.expectPixels([...STARTED, "error-901", "time-0"]);
  });
}

for (const [what, getter] of Object.entries({ throws: "throw 1;", "is true": "return true;" })) {
  scenario(`a unit for which the page's document.hidden ${what} is watched all the same`,
    async (stage) => {
      await stage.playUnit(acting(`Object.defineProperty(window.parent.document, "hidden",
        { get: function () { ${getter} } });`), { settings: soon("stall") });
      assert.equal((await stage.ended()).message, "the unit has gone quiet");
      stage.expectMessages(...STARTING, "AdError");
    });
}

scenario("a unit that takes the bridge and the app's calls off the page is heard and ended",
  async (stage) => {
    await stage.playUnit(acting(`
      var page = window.parent;
      ["TamzoBridge", "webkit", "tamzoAd"].forEach(function (name) {
        try { Object.defineProperty(page, name, { value: null }); } catch (ignored) {}
        try { page[name] = null; } catch (ignored) {}
      });`));
    await stage.heard("AdImpression");
    await stage.run("tamzoAd.stop()");
    await stage.ended();
    stage.expectMessages(...STARTING, "AdStopped");
    stage.expectPixels(STARTED);
  });

scenario("AdError is heard from a unit whose stack is used up", async (stage) => {
  await stage.playUnit(acting(`setTimeout(function deeper() {
    try { deeper(); } catch (full) { unit.happen("AdError", "deep"); throw full; }
  }, 0);`));
  assert.deepEqual(await stage.ended(), { code: 901, message: "deep" });
  stage.expectMessages(...STARTING, "AdError");
  stage.expectPixels([...STARTED, "error-901"]);
  await stage.expectQuiet();
});

scenario("a unit that tells of a change when it is asked about it is asked once", async (stage) => {
  await stage.playUnit(acting(`
    unit.getAdVolume = function () { this.happen("AdVolumeChange"); return 0; };
    unit.happen("AdVolumeChange");
    unit.happen("AdStopped");`));
  await stage.ended();
  stage.expectMessages(...STARTING, "AdVolumeChange", "AdVolumeChange", "AdStopped");
  stage.expectPixels([...STARTED, "mute"]);
});

scenario("a page that leaves while its pixels are on their way says its last message",
  async (stage) => {
    server.delayOf = (path) => (path.endsWith("/slow") ? 200000 : 0);
    await stage.playUnit(acting(`var page = window.parent;
      unit.happen("AdStopped");
      page.setTimeout("location.replace('about:blank#left')", 0);`), { leaves: true,
      ad: { more: `<Impression>${stage.pixel("slow")}</Impression>` } });
    await stage.ended();
    server.delayOf = () => 0;
    stage.expectMessages(...STARTING, "AdStopped");
  });

scenario("a link of a document that the unit wrote anew is the app's to open", async (stage) => {
  await stage.playUnit(acting(`document.open();
    document.write("<a href='https://own.example/' style='position:absolute;top:0;left:0;" +
      "width:300px;height:300px'>link</a>");
    document.close();`), { settings: { limits: { overall: 60000 } } });
  await stage.heard("AdImpression");
  while (!stage.names().includes("Open")) {  // the listeners are looked after four times a second
    await browser.clickAt(100, 100);
  }
  await stage.run("tamzoAd.stop()");
  await stage.ended();
  stage.expectPixels(STARTED);
}, { only: "chromium" });

const twice = {
  "AdError, then AdStopped": ["unit.happen('AdError', 'x'); unit.happen('AdStopped');", "AdError"],
  "AdStopped, then AdError": ["unit.happen('AdStopped'); unit.happen('AdError', 'x');", "AdStopped"],
  "AdStopped twice": ["unit.happen('AdStopped'); unit.happen('AdStopped');", "AdStopped"]
};
for (const [what, [body, last]] of Object.entries(twice)) {
  scenario(`${what}: one last message`, async (stage) => {
    await stage.playUnit(acting(body));
    await stage.ended();
    await stage.expectQuiet();
    stage.expectMessages(...STARTING, last);
    stage.expectPixels([...STARTED, ...(last === "AdError" ? ["error-901"] : [])]);
  });
}

scenario("AdStopped in initAd is the end, and no failure", async (stage) => {
  await stage.playUnit(unitScript("window.unit.initAd = function () { this.happen('AdStopped'); };"),
    { settings: soon("load") });
  await stage.ended();
  await stage.expectQuiet();
  stage.expectMessages("AdStopped");
  stage.expectPixels([]);
});

scenario("AdLog and AdClickThru with things that cannot be copied are passed on as texts",
  async (stage) => {
    await stage.playUnit(acting(`
      unit.happen("AdLog", { toString: function () { throw 1; }, f: function () {} });
      unit.happen("AdLog", document.body);
      unit.happen("AdClickThru", { url: "https://own.example/[CACHEBUSTING]", id: 7,
        playerHandles: "false", f: function () {} });
      unit.happen("AdClickThru", "javascript:alert(1)", function () {}, "true");
      unit.happen("AdStopped");`));
    await stage.ended();
    stage.expectMessages(...STARTING, "AdLog", "AdLog", "AdClickThru", "AdClickThru", "AdStopped");
    const [object, hostile] = stage.messages.filter(({ name }) => name === "AdClickThru")
      .map(({ details }) => details);
    assert.match(object.url, /^https:\/\/own\.example\/\d{8}$/);
    assert.deepEqual([object.id, object.playerHandles], ["7", false]);
    assert.deepEqual([hostile.url, hostile.playerHandles], ["https://shop.example/", true]);
  });

// ---- Units that go quiet, or away ---------------------------------------------------------------

scenario("a unit that goes quiet after AdStarted ends with 901", async (stage) => {
  await stage.playUnit(unitScript(), { settings: soon("stall") });
  assert.deepEqual(await stage.ended(), { code: 901, message: "the unit has gone quiet" });
  stage.expectMessages(...STARTING, "AdError");
  stage.expectPixels([...STARTED, "error-901"]);
  await stage.expectQuiet();
});

const lost = {
  "reloads its frame": "window.location.reload();",
  "navigates its frame away": "window.location.href = 'about:blank';",
  "wipes its body": "document.body.innerHTML = '';",
  "wipes its document": "document.open(); document.close();",
  "wipes the page's body": "window.parent.document.body.innerHTML = '';",
  "removes its frame": "window.frameElement.remove();"
};
for (const [what, body] of Object.entries(lost)) {
  scenario(`a unit that ${what} ends with 901`, async (stage) => {
    await stage.playUnit(acting(body));
    assert.deepEqual(await stage.ended(), { code: 901, message: "the unit has left its frame" });
    stage.expectMessages(...STARTING, "AdError");
    stage.expectPixels([...STARTED, "error-901"]);
    await stage.expectQuiet();
  });
}

for (const call of ["stop", "skip"]) {
  scenario(`a unit that goes quiet after ${call} is ended`, async (stage) => {
    await stage.playUnit(unitScript(
      "window.unit.stopAd = window.unit.skipAd = function () {};"), { settings: soon("stop") });
    await stage.heard("AdImpression");
    await stage.run(`tamzoAd.${call}()`);
    await stage.ended();
    stage.expectMessages(...STARTING, "AdStopped");
    stage.expectPixels(STARTED);
    await stage.expectQuiet();
  });
}

scenario("an ad may not run for ever", async (stage) => {
  await stage.playUnit(unitScript("window.unit.getAdRemainingTime = Math.random;"),
    { settings: soon("overall") });
  assert.equal((await stage.ended()).code, 901);
  stage.expectPixels([...STARTED, "error-901"]);
});

scenario("a paused ad is not taken for a dead one", async (stage) => {
  await stage.playUnit(acting("unit.happen('AdPaused');"),
    { settings: { limits: { stall: 300, overall: 2500 } } });
  assert.equal((await stage.ended()).message, "the ad ran too long");
});

// ---- Escapes ------------------------------------------------------------------------------------

const escapes = {
  "navigate the page": "try { window.top.location.href = 'about:blank#left'; } catch (ignored) {}",
  "open a window": "window.open('about:blank#window'); window.parent.unused = 1;",
  "open a window by a link": "var a = document.createElement('a'); a.href = 'https://x.example/'; " +
    "a.target = '_blank'; document.body.appendChild(a); a.click();",
  "open a window in the page's name": "window.parent.open('about:blank#window');",
  "raise a dialog": "window.alert('x'); window.confirm('x');",
  "raise a dialog in the page's name": "window.parent.alert('x');",
  "navigate the page in its name": "try { window.parent.location = 'about:blank#left'; } " +
    "catch (ignored) {}",
  "navigate the page by a link": "var a = document.createElement('a'); a.target = '_top'; " +
    "a.href = 'about:blank#left'; document.body.appendChild(a); a.click();"
};
for (const [what, body] of Object.entries(escapes)) {
  scenario(`a unit may not ${what}`, async (stage) => {
    await stage.playUnit(acting(`${body}; setTimeout(function () { unit.happen("AdStopped"); }, 100);`));
    await stage.ended();
    stage.expectMessages(...STARTING, "AdStopped");
    stage.expectPixels(STARTED);
  });
}

scenario("a unit that has the page leave ends with an error", async (stage) => {
  await stage.playUnit(acting(
    "window.parent.setTimeout(\"location.replace('about:blank#left')\", 0);"), { leaves: true });
  assert.equal((await stage.ended()).code, 900);
  stage.expectMessages(...STARTING, "AdError");
  stage.expectPixels(STARTED);
});

scenario("what a unit opens at a touch is the app's to open", async (stage) => {
  await stage.playUnit(acting("this.slot.onclick = function () { " +
    "window.open('https://own.example/'); window.open('javascript:alert(1)'); };"));
  await stage.heard("AdImpression");
  await browser.clickAt(100, 100);
  assert.deepEqual(await stage.heard("Open"), { url: "https://own.example/" });
  await stage.run("tamzoAd.stop()");
  await stage.ended();
  stage.expectMessages(...STARTING, "Open", "AdStopped");
}, { only: "chromium" });

// ---- The app ------------------------------------------------------------------------------------

scenario("an ad that is loaded to be shown later waits for the call", async (stage) => {
  await stage.playUnit(ending(), { settings: { start: "call", session: "load-1" } });
  await stage.heard("Moat");
  await stage.requested("loaded");
  stage.expectPixels(["loaded"]);
  await stage.run("tamzoAd.start()");
  await stage.ended();
  stage.expectMessages(...STARTING, "AdStopped");
  stage.expectPixels(STARTED);
  assert.equal(stage.messages[0].session, "load-1");
});

scenario("what a unit says of play before startAd is no impression", async (stage) => {
  await stage.playUnit(unitScript(`window.unit.initAd = function () {
      ["AdStarted", "AdImpression", "AdVideoStart", "AdLoaded"].forEach(this.happen, this);
    };
    window.unit.startAd = function () { this.happen("AdStopped"); };`),
  { settings: { start: "call" } });
  await stage.heard("Moat");
  await stage.requested("loaded");
  stage.expectPixels(["loaded"]);
  await stage.run("tamzoAd.start()");
  await stage.ended();
  stage.expectMessages(...STARTING, "AdVideoStart", "AdStopped");
  stage.expectPixels([...STARTED, "start"]);
});

scenario("a view that is hidden pauses the ad until it is seen again", async (stage) => {
  await stage.playUnit(unitScript());
  await stage.heard("AdImpression");
  await browser.hide();
  await stage.heard("AdPaused");
  await browser.show();
  await stage.heard("AdPlaying");
  await stage.run("tamzoAd.stop()");
  await stage.ended();
  stage.expectMessages(...STARTING, "AdPaused", "AdPlaying", "AdStopped");
  stage.expectPixels([...STARTED, "pause", "resume"]);
});

scenario("a unit that registers late, in a view that is turned meanwhile, gets the new size",
  async (stage) => {
    await browser.resize(390, 844);
    await stage.playUnit(unitScript(`
      delete window.getVPAIDAd;
      setTimeout(function () { window.getVPAIDAd = function () { return window.unit; }; }, 300);
      window.unit.initAd = function (width, height) { this.note("initAd", [width, height]); };`));
    await stage.called("initAd");
    await browser.resize(844, 390);
    while (await stage.run("innerWidth") < 500) {
      // asked again
    }
    await stage.happen("AdLoaded");
    const [[, width, height]] = await stage.called("resizeAd");
    assert.deepEqual([width, height], await stage.run("[innerWidth, innerHeight]"));
    await stage.run("tamzoAd.stop()");
    await stage.ended();
    await browser.resize(390, 844);
  });

scenario("a view that plays without sound only is honoured", async (stage) => {
  await stage.playUnit(unitScript(), { settings: { autoplay: "muted" } });
  await stage.heard("AdImpression");
  assert.deepEqual(await stage.called("setAdVolume"), [["setAdVolume", 0]]);
  assert.equal(await stage.runUnit("unit.video.muted"), true);
  await stage.run("tamzoAd.call('setAdVolume', 1)");
  await stage.requested("unmute");
  await stage.run("tamzoAd.stop()");
  await stage.ended();
  stage.expectPixels([...STARTED, "unmute"]);
});

// A video with a unit beside it: of a chain that ends so, the page is given the last URL alone.
function videoWithUnit(stage, unitUrl) {
  const media = "<MediaFile type=\"video/mp4\" delivery=\"progressive\">https://cdn.example/a.mp4" +
    "</MediaFile>";
  return stage.inLine(unitUrl, { media }).replace("3.0", "4.0").replace(
    /<MediaFile delivery[^>]*VPAID">([^]*?)<\/MediaFile>/,
    "<InteractiveCreativeFile type=\"application/javascript\" apiFramework=\"VPAID\">$1" +
    "</InteractiveCreativeFile>");
}

scenario("behind a Wrapper whose pixels it does not know, the page tells the app what it fires",
  async (stage) => {
    const inner = videoWithUnit(stage, stage.unit(ending()));
    await stage.play(stage.wrapper(stage.tag(inner), "-outer").replace("3.0", "4.0"));
    await stage.ended();
    const { urls } = await stage.heard("Trackers");
    assert.deepEqual(urls.Impression, [stage.pixel("impression")]);
    assert.deepEqual(urls.start, [stage.pixel("start")]);
    assert.deepEqual(stage.messages.filter(({ name }) => name === "Track")
      .map(({ details }) => details.event), ["loaded", "creativeView", "Impression", "NotViewable"]);
    stage.expectPixels(STARTED);
  });

scenario("a page that is given the Wrappers fires their pixels too", async (stage) => {
  const inner = videoWithUnit(stage, stage.unit(acting("unit.happen('AdError', 'x');")));
  const wrappers = stage.wrapper("", "-outer").replace(/Wrapper>/g, "InLine>");
  await stage.play(stage.wrapper(stage.tag(inner), "-outer").replace("3.0", "4.0"),
    { settings: { wrappers } });
  await stage.ended();
  stage.expectMessages(...STARTING, "AdError");
  stage.expectPixels([...STARTED, ...STARTED.map((name) => name + "-outer"), "error-901",
    "error-901-outer"]);
});
