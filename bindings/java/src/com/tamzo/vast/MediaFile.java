package com.tamzo.vast;

import org.jetbrains.annotations.Nullable;

/** A media file. */
public final class MediaFile {
  /** White space trimmed at both ends. */
  public final @Nullable String url;

  /** Null when absent. */
  public final @Nullable String id;

  /** "progressive" or "streaming"; null when absent. */
  public final @Nullable String delivery;

  /** MIME type; null when absent. */
  public final @Nullable String type;

  /** Null when absent. */
  public final @Nullable String codec;

  /** Null when absent. */
  public final @Nullable String apiFramework;

  /** Pixels; null when absent. */
  public final @Nullable Integer width;

  /** Pixels; null when absent. */
  public final @Nullable Integer height;

  /** Kilobits a second; null when absent. */
  public final @Nullable Integer bitrate;

  /** Kilobits a second; null when absent. */
  public final @Nullable Integer minBitrate;

  /** Kilobits a second; null when absent. */
  public final @Nullable Integer maxBitrate;

  /** Bytes; null when absent. */
  public final @Nullable Integer fileSize;

  /** May be shown at another size; null when absent. */
  public final @Nullable Boolean scalable;

  /** Must keep its shape then; null when absent. */
  public final @Nullable Boolean maintainAspectRatio;

  MediaFile(RecordReader in) {
    url = in.text();
    id = in.text();
    delivery = in.text();
    type = in.text();
    codec = in.text();
    apiFramework = in.text();
    width = in.optionalInteger();
    height = in.optionalInteger();
    bitrate = in.optionalInteger();
    minBitrate = in.optionalInteger();
    maxBitrate = in.optionalInteger();
    fileSize = in.optionalInteger();
    scalable = in.optionalFlag();
    maintainAspectRatio = in.optionalFlag();
  }
}
