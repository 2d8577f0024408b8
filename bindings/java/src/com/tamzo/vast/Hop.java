package com.tamzo.vast;

import org.jetbrains.annotations.Nullable;

/** One document of a chain, as an observer is told of it. */
public final class Hop {
  /** 1 for the first. */
  public final int number;

  /** As in the Wrapper before, macros unfilled; null for hop 1. */
  public final @Nullable String tag;

  /** The tag filled; null where nothing was fetched. */
  public final @Nullable String url;

  /** As received; null where none came. */
  public final @Nullable String document;

  /** Why the fetch failed, such as "timeout"; null where it did not. */
  public final @Nullable String failure;

  /** 0 without an answer. */
  public final int httpStatus;

  /** Of the whole fetch. */
  public final double milliseconds;

  /** Of the record after this hop. */
  public final int errorCode;

  Hop(
      int number,
      @Nullable String tag,
      @Nullable String url,
      @Nullable String document,
      @Nullable String failure,
      int httpStatus,
      double milliseconds,
      int errorCode) {
    this.number = number;
    this.tag = tag;
    this.url = url;
    this.document = document;
    this.failure = failure;
    this.httpStatus = httpStatus;
    this.milliseconds = milliseconds;
    this.errorCode = errorCode;
  }
}
