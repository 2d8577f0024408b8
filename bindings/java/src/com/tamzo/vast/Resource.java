package com.tamzo.vast;

import org.jetbrains.annotations.Nullable;

/** A resource of a companion or a verification. */
public final class Resource {
  /** White space trimmed at both ends. */
  public final @Nullable String url;

  /** MIME type; null for a script. */
  public final @Nullable String type;

  /** Of a verification; null when absent. */
  public final @Nullable String apiFramework;

  /** Of a verification's script; null when absent. */
  public final @Nullable Boolean browserOptional;

  Resource(RecordReader in) {
    url = in.text();
    type = in.text();
    apiFramework = in.text();
    browserOptional = in.optionalFlag();
  }
}
