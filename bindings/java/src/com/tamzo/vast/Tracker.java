package com.tamzo.vast;

import org.jetbrains.annotations.Nullable;

/** A tracking URL. */
public final class Tracker {
  /** Untrimmed, macros unfilled. */
  public final @Nullable String url;

  /** Whole seconds as decimal text; empty without a time. */
  public final @Nullable String offset;

  Tracker(RecordReader in) {
    url = in.text();
    offset = in.text();
  }
}
