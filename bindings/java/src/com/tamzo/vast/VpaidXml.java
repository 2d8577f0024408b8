package com.tamzo.vast;

import org.jetbrains.annotations.Nullable;

/** What is kept for a JavaScript VPAID ad. */
public final class VpaidXml {
  /** Null when absent. */
  public final @Nullable String vastVersion;

  VpaidXml(RecordReader in) {
    vastVersion = in.text();
  }
}
