package com.tamzo.vast;

import java.util.List;
import org.jetbrains.annotations.NotNull;

/** The companions of one document. */
public final class CompanionAd {
  /** In document order. */
  public final @NotNull List<Companion> companions;

  final Object origin;
  final int index;

  CompanionAd(RecordReader in, int index) {
    companions = RecordReader.orEmpty(in.list(Companion::new));
    origin = in.origin;
    this.index = index;
  }
}
