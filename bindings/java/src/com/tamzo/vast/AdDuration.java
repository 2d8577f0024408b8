package com.tamzo.vast;

import org.jetbrains.annotations.Nullable;

/** How long the Linear is. */
public final class AdDuration {
  /** As written. */
  public final @Nullable String text;

  /** Whole ones. */
  public final long seconds;

  AdDuration(RecordReader in) {
    text = in.text();
    seconds = in.longInteger();
  }
}
