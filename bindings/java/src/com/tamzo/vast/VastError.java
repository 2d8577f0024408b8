package com.tamzo.vast;

import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/** What a parse can end with: IAB VAST error codes. */
public enum VastError {
  /** Nothing failed. */
  SUCCESS(0),
  /** Reading failed half-way. */
  EXCEPTION(100),
  /** The text is not XML. */
  NOT_XML(101),
  /** No VAST, or none of a version that is read. */
  BAD_VERSION(102),
  /** The ad has a category that the app blocks. */
  CATEGORY_BLOCKED(205),
  /** The Ad holds neither a Wrapper nor an InLine. */
  NO_WRAPPER_OR_INLINE(300),
  /** A tag URL gave nothing. */
  EMPTY_CONTENT(301),
  /** The chain of Wrappers is too long. */
  WRAPPER_LIMIT(302),
  /** The document holds no Ad. */
  NO_AD(303),
  /** The Linear has nothing that can be played. */
  NO_USABLE_LINEAR(405);

  /** The number. */
  public final int code;

  VastError(int code) {
    this.code = code;
  }

  /**
   * The error of a number.
   *
   * @param code the number
   * @return the error; null for a number that no parse ends with
   */
  public static @Nullable VastError of(int code) {
    for (VastError error : values()) {
      if (error.code == code) {
        return error;
      }
    }
    return null;
  }

  /**
   * A few words, such as "not XML".
   *
   * @return the words
   */
  public @NotNull String words() {
    return Utf8.decode(Native.errorName(code));
  }

  /**
   * What happened.
   *
   * @return a sentence without a full stop
   */
  public @NotNull String cause() {
    return Utf8.decode(Native.errorCause(code));
  }
}
