package com.tamzo.vast;

import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/** What a reader is asked for. */
public final class UrlRequest {
  /** The URL, escaped. */
  public final @NotNull String url;

  /** Which document of the chain, 1 for the first. */
  public final int hop;

  /** Seconds that were left for this fetch when it was asked for. */
  public final double secondsLeft;

  /** Most bytes that the body may have. */
  public final long maxBytes;

  private final @Nullable Cancellation cancellation;

  UrlRequest(
      String url, int hop, double secondsLeft, long maxBytes, @Nullable Cancellation cancellation) {
    this.url = url;
    this.hop = hop;
    this.secondsLeft = secondsLeft;
    this.maxBytes = maxBytes;
    this.cancellation = cancellation;
  }

  /**
   * True once the parse is cancelled.
   *
   * @return whether it is; false where it cannot be
   */
  public boolean isCancelled() {
    return cancellation != null && cancellation.isCancelledOrClosed();
  }
}
