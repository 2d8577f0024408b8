package com.tamzo.vast;

import java.util.List;
import java.util.Map;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/** A companion. */
public final class Companion {
  /** Null when absent. */
  public final @Nullable String id;

  /** Pixels; null when absent. */
  public final @Nullable Integer width;

  /** Pixels; null when absent. */
  public final @Nullable Integer height;

  /** Null when absent. */
  public final @Nullable String adSlotId;

  /** Null when absent. */
  public final @Nullable String apiFramework;

  /** Null when absent. */
  public final @Nullable String altText;

  /** Images and the like. */
  public final @NotNull List<Resource> staticResources;

  /** URLs. */
  public final @NotNull List<String> iframeResources;

  /** Markup. */
  public final @NotNull List<String> htmlResources;

  /** Null when absent. */
  public final @Nullable String clickThrough;

  /** URLs. */
  public final @NotNull List<String> clickTracking;

  /** By event. */
  public final @NotNull Map<String, List<Tracker>> trackers;

  Companion(RecordReader in) {
    id = in.text();
    width = in.optionalInteger();
    height = in.optionalInteger();
    adSlotId = in.text();
    apiFramework = in.text();
    altText = in.text();
    staticResources = RecordReader.orEmpty(in.list(Resource::new));
    iframeResources = RecordReader.orEmpty(in.texts());
    htmlResources = RecordReader.orEmpty(in.texts());
    clickThrough = in.text();
    clickTracking = RecordReader.orEmpty(in.texts());
    trackers = RecordReader.orEmpty(in.trackers());
  }
}
