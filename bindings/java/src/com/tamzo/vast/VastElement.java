package com.tamzo.vast;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.Objects;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/** A copy of an element of a document, with those below it. */
public final class VastElement {
  /** An attribute. */
  public static final class Attribute {
    /** As written, prefix included. */
    public final @NotNull String name;

    /** As it stands, entities resolved. */
    public final @NotNull String value;

    Attribute(RecordReader in) {
      name = in.textOrEmpty();
      value = in.textOrEmpty();
    }
  }

  static final int EXTRA_ACTIONS = 0;
  static final int CARDS = 1;
  static final int HOTSPOTS = 2;
  static final int OTHER = 3;

  /** As written, prefix included. */
  public final @NotNull String name;

  /** In document order. */
  public final @NotNull List<Attribute> attributes;

  /** Untrimmed; null for an element that holds others, of which {@link #xml} has all. */
  public final @Nullable String text;

  /** The elements in it, in document order. */
  public final @NotNull List<VastElement> children;

  /** Written back as XML; null for an element that stands in another one here. */
  public final @Nullable String xml;

  final Object origin;

  /** Which list of the record the outermost element stands in. */
  final int list;

  private final @Nullable VastElement parent;
  private final int index;

  /** The list of children is open until the elements below this one were read. */
  private VastElement(
      RecordReader in,
      @Nullable String xml,
      List<VastElement> children,
      int list,
      @Nullable VastElement parent,
      int index) {
    name = in.textOrEmpty();
    attributes = RecordReader.orEmpty(in.list(Attribute::new));
    text = in.text();
    this.children = Collections.unmodifiableList(children);
    this.xml = xml;
    origin = in.origin;
    this.list = list;
    this.parent = parent;
    this.index = index;
  }

  /** Where it stands: in the list, in the element that is there, and so on. */
  int[] path() {
    int depth = 0;
    for (VastElement each = this; each != null; each = each.parent) {
      ++depth;
    }
    int[] path = new int[depth];
    for (VastElement each = this; each != null; each = each.parent) {
      path[--depth] = each.index;
    }
    return path;
  }

  /** Reads an element and all below it, which may be deep. */
  static VastElement read(RecordReader in, int list, int index) {
    List<List<VastElement>> open = new ArrayList<>();
    open.add(new ArrayList<>());
    VastElement outermost = new VastElement(in, in.text(), open.get(0), list, null, index);
    VastElement element = outermost;
    while (element != null) {
      List<VastElement> siblings = open.get(open.size() - 1);
      if (in.flag()) {
        List<VastElement> children = new ArrayList<>(0);
        element = new VastElement(in, null, children, list, element, siblings.size());
        siblings.add(element);
        open.add(children);
      } else {
        open.remove(open.size() - 1);
        element = element.parent;
      }
    }
    return outermost;
  }

  /**
   * The value of an attribute.
   *
   * @param attribute its name as written
   * @return the first one's value; null when there is none
   */
  public @Nullable String attribute(@NotNull String attribute) {
    Objects.requireNonNull(attribute, "attribute");
    for (Attribute each : attributes) {
      if (each.name.equals(attribute)) {
        return each.value;
      }
    }
    return null;
  }

  /**
   * The first element in this one of that name.
   *
   * @param child its name as written
   * @return the element; null when there is none
   */
  public @Nullable VastElement child(@NotNull String child) {
    Objects.requireNonNull(child, "child");
    for (VastElement each : children) {
      if (each.name.equals(child)) {
        return each;
      }
    }
    return null;
  }
}
