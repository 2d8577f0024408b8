package com.tamzo.vast;

import java.io.IOException;
import org.jetbrains.annotations.Nullable;

/** What the bridge calls, by name: the hooks of some options, for texts as bytes. */
final class Hooks {
  static final int READER = 1;
  static final int BLOCKED_CATEGORIES = 2;
  static final int SESSION_ID = 4;
  static final int PAGE_TEMPLATE = 8;
  static final int MACROS = 16;
  static final int CLOCK = 32;
  static final int RANDOM = 64;
  static final int LOG = 128;
  static final int OBSERVER = 256;

  private final ParseOptions options;

  Hooks(ParseOptions options) {
    this.options = options;
  }

  /** Which of them there are. */
  int which() {
    return (options.reader == null ? 0 : READER)
        | (options.blockedCategories == null ? 0 : BLOCKED_CATEGORIES)
        | (options.sessionId == null ? 0 : SESSION_ID)
        | (options.pageTemplate == null ? 0 : PAGE_TEMPLATE)
        | (options.macros == null ? 0 : MACROS)
        | (options.clock == null ? 0 : CLOCK)
        | (options.random == null ? 0 : RANDOM)
        | (options.log == null ? 0 : LOG)
        | (options.observer == null ? 0 : OBSERVER);
  }

  byte @Nullable [] read(byte[] url, int hop, double secondsLeft, long maxBytes, int[] status) {
    UrlRequest request =
        new UrlRequest(Utf8.decode(url), hop, secondsLeft, maxBytes, options.cancellation);
    try {
      UrlAnswer answer = options.reader.read(request);
      if (answer == null) {
        return null;
      }
      status[0] = answer.httpStatus;
      return answer.body;
    } catch (IOException failed) {
      return null;
    }
  }

  byte @Nullable [] text(int which) {
    return Utf8.encodeOrNull(sourceOf(which).get());
  }

  private ParseOptions.TextSource sourceOf(int which) {
    switch (which) {
      case BLOCKED_CATEGORIES:
        return options.blockedCategories;
      case SESSION_ID:
        return options.sessionId;
      default:
        return options.pageTemplate;
    }
  }

  byte @Nullable [] macros(byte @Nullable [] text) {
    return Utf8.encodeOrNull(options.macros.fill(Utf8.decode(text)));
  }

  long now() {
    return options.clock.millis();
  }

  int random(int bound) {
    return options.random.next(bound);
  }

  void log(byte @Nullable [] line) {
    options.log.write(Utf8.decode(line));
  }

  void hop(
      int number,
      byte @Nullable [] tag,
      byte @Nullable [] url,
      byte @Nullable [] document,
      byte @Nullable [] failure,
      int httpStatus,
      double milliseconds,
      int errorCode) {
    options.observer.onHop(
        new Hop(
            number,
            Utf8.decodeOrNull(tag),
            Utf8.decodeOrNull(url),
            Utf8.decodeOrNull(document),
            Utf8.decodeOrNull(failure),
            httpStatus,
            milliseconds,
            errorCode));
  }
}
