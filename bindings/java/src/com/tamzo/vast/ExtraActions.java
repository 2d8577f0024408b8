package com.tamzo.vast;

import java.util.Collections;
import java.util.List;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/** Icons and the vendor's values; or one value of the vendor's that is no list. */
public final class ExtraActions {
  /** An icon, or a value that the vendor sent. */
  public static final class Entry {
    /** Null for a value. */
    public final @Nullable VastElement icon;

    /** The value, as JSON; null for an icon. */
    public final @Nullable String json;

    Entry(RecordReader in, int index) {
      json = in.text();
      icon = json == null ? in.element(VastElement.EXTRA_ACTIONS, index) : null;
    }
  }

  /** The one value, as JSON; null for a list. */
  public final @Nullable String json;

  /** The list; empty for one value. */
  public final @NotNull List<Entry> entries;

  ExtraActions(@Nullable String json, @Nullable List<Entry> entries) {
    this.json = json;
    this.entries = entries == null ? Collections.<Entry>emptyList() : entries;
  }
}
