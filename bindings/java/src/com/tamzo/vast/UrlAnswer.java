package com.tamzo.vast;

import org.jetbrains.annotations.Nullable;

/** What a reader brings. */
public final class UrlAnswer {
  final byte @Nullable [] body;
  final int httpStatus;

  /**
   * A body. It is not copied: leave it as it is until the parse is over.
   *
   * @param body the bytes; null is a failed read
   */
  public UrlAnswer(byte @Nullable [] body) {
    this(body, 0);
  }

  /**
   * A body, and HTTP's status for whoever is told of the fetch.
   *
   * @param body the bytes; null is a failed read
   * @param httpStatus the status; 0 for none
   */
  public UrlAnswer(byte @Nullable [] body, int httpStatus) {
    this.body = body;
    this.httpStatus = httpStatus;
  }
}
