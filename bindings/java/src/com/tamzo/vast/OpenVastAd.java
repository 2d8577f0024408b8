package com.tamzo.vast;

import java.util.Map;
import java.util.Objects;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/**
 * A record that the library still holds, for what is asked of it after the parse: the page, the
 * operations, its JSON. Close it when that is done; what it gave stays. Calls from several threads
 * wait for each other. A hook of a call must not call the same ad again, but may close it.
 */
public final class OpenVastAd extends Handle {
  private final Object origin = new Object();
  private final Object turn = new Object();
  private @Nullable TamzoVastAd record;

  private OpenVastAd(long handle, byte[] record) {
    super(handle);
    this.record = new TamzoVastAd(new RecordReader(record, origin));
  }

  /**
   * As {@link TamzoVastAd#parse(String, ParseOptions)}, for more than its record.
   *
   * @param response a response, or a URL that begins with "http"
   * @param options what bounds the parse
   * @return the ad, also a failed one
   */
  public static @NotNull OpenVastAd parse(@NotNull String response, @NotNull ParseOptions options) {
    return parse(Utf8.encode(response), options);
  }

  /**
   * As {@link TamzoVastAd#parse(byte[], ParseOptions)}, for more than its record.
   *
   * @param response a response, or a URL that begins with "http"
   * @param options what bounds the parse
   * @return the ad, also a failed one
   */
  public static @NotNull OpenVastAd parse(
      byte @NotNull [] response, @NotNull ParseOptions options) {
    Objects.requireNonNull(response, "response");
    Objects.requireNonNull(options, "options");
    long[] ad = new long[1];
    byte[] record =
        options.lend(
            (handle, hooks, which) -> Native.parse(response, handle, hooks, which, ad));
    try {
      return new OpenVastAd(ad[0], record);
    } catch (Throwable thrown) {
      Native.releaseAd(ad[0]);
      throw thrown;
    }
  }

  @Override
  void release(long handle) {
    Native.releaseAd(handle);
  }

  private interface Work<T> {
    T run(long ad);
  }

  /** One at a time: some change the record. */
  private <T> T inTurn(Work<T> work) {
    if (Thread.holdsLock(turn)) {
      throw new IllegalStateException("a hook calls the ad that is calling it");
    }
    synchronized (turn) {
      long ad = enter();
      try {
        return work.run(ad);
      } finally {
        leave();
      }
    }
  }

  private TamzoVastAd recordOf(long ad) {
    if (record == null) {
      record = new TamzoVastAd(new RecordReader(Native.record(ad), origin));
    }
    return record;
  }

  /**
   * The record as it is now. Records that were given before stay as they are.
   *
   * @return the record
   * @throws IllegalStateException after {@link #close()}
   */
  public @NotNull TamzoVastAd record() {
    return inTurn(this::recordOf);
  }

  /**
   * The record as JSON.
   *
   * @param isIndented on several lines
   * @return one object
   * @throws IllegalStateException after {@link #close()}
   */
  public @NotNull String asJson(boolean isIndented) {
    return inTurn(ad -> Utf8.decode(Native.json(ad, isIndented)));
  }

  /**
   * The page that plays a JavaScript VPAID ad; the record has it as vPaidHTML from then on.
   *
   * @param options whose session id, page template and log are used
   * @return the page; null where the ad has no tag or there is no template, where it is too large,
   *     and where memory runs out while it is made
   * @throws IllegalStateException after {@link #close()}
   */
  public @Nullable String page(@NotNull ParseOptions options) {
    Objects.requireNonNull(options, "options");
    return inTurn(
        ad -> {
          record = null;
          return options.lend(
              (handle, hooks, which) ->
                  Utf8.decodeOrNull(Native.page(ad, handle, hooks, which)));
        });
  }

  /**
   * The companion that fills a slot best.
   *
   * @param companions one of this record's companionAds
   * @param width pixels
   * @param height pixels
   * @return one of the companions; null when none fits
   * @throws IllegalArgumentException where the companions are another ad's
   * @throws IllegalStateException after {@link #close()}
   */
  public @Nullable Companion companionForSlot(
      @NotNull CompanionAd companions, int width, int height) {
    if (companions.origin != origin) {
      throw new IllegalArgumentException("companions of another ad");
    }
    return inTurn(
        ad -> {
          int best = Native.companionForSlot(ad, companions.index, width, height);
          return best < 0 ? null : companions.companions.get(best);
        });
  }

  /**
   * Sets the record's iconMap to the click elements of the first icon below an element: of its
   * Icons/Icon.
   *
   * @param node an element of this record's extraActions, cards or hotspotList, or one below these
   * @return the new iconMap: "iconClickThrough" and "iconClickTracking", as far as the icon has them
   * @throws IllegalArgumentException where the element is another ad's, or one of an iconMap
   * @throws IllegalStateException after {@link #close()}
   */
  public @NotNull Map<String, VastElement> imageAd(@NotNull VastElement node) {
    if (node.origin != origin || node.list == VastElement.OTHER) {
      throw new IllegalArgumentException("no element that this ad lists");
    }
    int[] path = node.path();
    return inTurn(
        ad -> {
          record = null;
          Native.imageAd(ad, node.list, path);
          return RecordReader.orEmpty(recordOf(ad).iconMap);
        });
  }
}
