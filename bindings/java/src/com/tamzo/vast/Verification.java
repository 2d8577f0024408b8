package com.tamzo.vast;

import java.util.List;
import java.util.Map;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/** Who measures, and with what. */
public final class Verification {
  /** Null when absent. */
  public final @Nullable String vendor;

  /** Scripts. */
  public final @NotNull List<Resource> javascriptResources;

  /** Programs of a platform. */
  public final @NotNull List<Resource> executableResources;

  /** Untrimmed; null when absent. */
  public final @Nullable String verificationParameters;

  /** By event. */
  public final @NotNull Map<String, List<Tracker>> trackers;

  Verification(RecordReader in) {
    vendor = in.text();
    javascriptResources = RecordReader.orEmpty(in.list(Resource::new));
    executableResources = RecordReader.orEmpty(in.list(Resource::new));
    verificationParameters = in.text();
    trackers = RecordReader.orEmpty(in.trackers());
  }
}
