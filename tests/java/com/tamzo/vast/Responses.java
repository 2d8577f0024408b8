package com.tamzo.vast;

import java.nio.charset.StandardCharsets;

/** Responses for the tests. */
final class Responses {
  private Responses() {}

  static String wrapper(String tag) {
    return "<VAST version='4.0'><Ad id='w'><Wrapper><VASTAdTagURI><![CDATA["
        + tag
        + "]]></VASTAdTagURI></Wrapper></Ad></VAST>";
  }

  static String inLine(String content) {
    return inLine(content, "");
  }

  /** With something in its Linear as well. */
  static String inLine(String content, String linear) {
    return "<VAST version='4.0'><Ad id='a1'><InLine>"
        + content
        + "<Creatives><Creative><Linear><Duration>00:00:30</Duration><MediaFiles>"
        + "<MediaFile type='video/mp4' delivery='' width='640'>https://c.example/a.mp4</MediaFile>"
        + "</MediaFiles>"
        + linear
        + "</Linear></Creative></Creatives></InLine></Ad></VAST>";
  }

  static String icon(String program) {
    return "<Icons><Icon program='"
        + program
        + "'><IconClicks><IconClickThrough>https://choices.example/</IconClickThrough>"
        + "<IconClickTracking>https://t.example/k</IconClickTracking></IconClicks></Icon></Icons>";
  }

  /** An icon with another one inside, as deep as can be looked for. */
  static String iconInAnIcon() {
    return "<Icons><Icon program='outer'><a/><b><c/>" + icon("inner") + "</b></Icon></Icons>";
  }

  static String companion() {
    return "<Creatives><Creative><CompanionAds><Companion id='c' width='300' height='250'>"
        + "<StaticResource creativeType='image/png'>https://c.example/a.png</StaticResource>"
        + "</Companion></CompanionAds></Creative></Creatives>";
  }

  static UrlAnswer answer(String response) {
    return new UrlAnswer(response.getBytes(StandardCharsets.UTF_8));
  }

  static ParseOptions reading(UrlReader reader) {
    return new ParseOptions.Builder().reader(reader).build();
  }
}
