package com.tamzo.vast;

import java.io.IOException;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/** Reads URLs for the parser, with the app's own HTTP client. May parse itself. */
public interface UrlReader {
  /**
   * Reads a URL, and follows its redirects. Called on the thread that parses.
   *
   * @param request what is asked for
   * @return what came; null is a failed read
   * @throws IOException for a failed read: the ad ends with error 301. Anything else that is thrown
   *     ends the parse, which throws it again.
   */
  @Nullable UrlAnswer read(@NotNull UrlRequest request) throws IOException;
}
