package com.tamzo.vast;

import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Collections;
import java.util.LinkedHashMap;
import java.util.List;
import java.util.Map;
import org.jetbrains.annotations.Nullable;

/** Reads what jni/RecordBytes.cc writes. A count of -1 is nil. */
final class RecordReader {
  private static final int FORMAT = 1;

  /** What the objects that are read belong to. */
  final Object origin;

  private final byte[] bytes;
  private int at;

  RecordReader(byte[] bytes, Object origin) {
    this.bytes = bytes;
    this.origin = origin;
    if (integer() != FORMAT) {
      throw new IllegalStateException("libtamzovastjni is of another version than its classes");
    }
  }

  /** Makes an entry of what comes next. */
  interface Entry<T> {
    T read(RecordReader in);
  }

  /** Makes an entry that knows where it stands. */
  interface NumberedEntry<T> {
    T read(RecordReader in, int index);
  }

  void end() {
    if (at != bytes.length) {
      throw new IllegalStateException("libtamzovastjni is of another version than its classes");
    }
  }

  boolean flag() {
    return bytes[at++] != 0;
  }

  int integer() {
    int number =
        (bytes[at] & 0xFF) << 24
            | (bytes[at + 1] & 0xFF) << 16
            | (bytes[at + 2] & 0xFF) << 8
            | (bytes[at + 3] & 0xFF);
    at += 4;
    return number;
  }

  long longInteger() {
    long high = integer();
    return high << 32 | (integer() & 0xFFFFFFFFL);
  }

  double real() {
    return Double.longBitsToDouble(longInteger());
  }

  float shortReal() {
    return Float.intBitsToFloat(integer());
  }

  @Nullable Integer optionalInteger() {
    boolean isPresent = flag();
    int number = integer();
    return isPresent ? number : null;
  }

  @Nullable Boolean optionalFlag() {
    boolean isPresent = flag();
    boolean value = flag();
    return isPresent ? value : null;
  }

  /** What is no UTF-8 becomes U+FFFD. */
  @Nullable String text() {
    int length = integer();
    if (length < 0) {
      return null;
    }
    String text = new String(bytes, at, length, StandardCharsets.UTF_8);
    at += length;
    return text;
  }

  String textOrEmpty() {
    String text = text();
    return text == null ? "" : text;
  }

  <T> @Nullable List<T> list(Entry<T> entry) {
    return numberedList((in, index) -> entry.read(in));
  }

  <T> @Nullable List<T> numberedList(NumberedEntry<T> entry) {
    int count = integer();
    return count < 0 ? null : entries(count, entry);
  }

  private <T> List<T> entries(int count, NumberedEntry<T> entry) {
    List<T> list = new ArrayList<>(count);
    for (int index = 0; index < count; ++index) {
      list.add(entry.read(this, index));
    }
    return Collections.unmodifiableList(list);
  }

  @Nullable List<String> texts() {
    return list(RecordReader::textOrEmpty);
  }

  @Nullable AdDuration duration() {
    return flag() ? new AdDuration(this) : null;
  }

  @Nullable VpaidXml vpaidXml() {
    return flag() ? new VpaidXml(this) : null;
  }

  @Nullable List<MediaFile> mediaFiles() {
    return list(MediaFile::new);
  }

  @Nullable List<Verification> verifications() {
    return list(Verification::new);
  }

  @Nullable List<CompanionAd> companionAds() {
    return numberedList(CompanionAd::new);
  }

  @Nullable ExtraActions extraActions() {
    int count = integer();
    if (count == -2) {
      return new ExtraActions(text(), null);
    }
    return count < 0 ? null : new ExtraActions(null, entries(count, ExtraActions.Entry::new));
  }

  VastElement element(int list, int index) {
    return VastElement.read(this, list, index);
  }

  @Nullable List<VastElement> elements(int list) {
    return numberedList((in, index) -> in.element(list, index));
  }

  @Nullable Map<String, VastElement> namedElements() {
    int count = integer();
    if (count < 0) {
      return null;
    }
    Map<String, VastElement> elements = new LinkedHashMap<>();
    for (int index = 0; index < count; ++index) {
      String name = textOrEmpty();
      elements.put(name, element(VastElement.OTHER, index));
    }
    return Collections.unmodifiableMap(elements);
  }

  /** Names that differ only in what is no UTF-8 are one, with the trackers of all. */
  @Nullable Map<String, List<Tracker>> trackers() {
    int count = integer();
    if (count < 0) {
      return null;
    }
    Map<String, List<Tracker>> events = new LinkedHashMap<>();
    for (int index = 0; index < count; ++index) {
      String name = textOrEmpty();
      List<Tracker> all = events.get(name);
      if (all == null) {
        all = new ArrayList<>();
        events.put(name, all);
      }
      all.addAll(orEmpty(list(Tracker::new)));
    }
    for (Map.Entry<String, List<Tracker>> event : events.entrySet()) {
      event.setValue(Collections.unmodifiableList(event.getValue()));
    }
    return Collections.unmodifiableMap(events);
  }

  static <T> List<T> orEmpty(@Nullable List<T> list) {
    return list == null ? Collections.<T>emptyList() : list;
  }

  static <K, V> Map<K, V> orEmpty(@Nullable Map<K, V> map) {
    return map == null ? Collections.<K, V>emptyMap() : map;
  }
}
