package com.tamzo.vast;

import java.nio.ByteBuffer;
import java.nio.CharBuffer;
import java.nio.charset.CharacterCodingException;
import java.nio.charset.CodingErrorAction;
import java.nio.charset.StandardCharsets;
import java.util.Arrays;
import org.jetbrains.annotations.Nullable;

/** Texts as the library has them. JNI's own conversion has another idea of UTF-8. */
final class Utf8 {
  private static final byte[] REPLACEMENT = {(byte) 0xEF, (byte) 0xBF, (byte) 0xBD};

  private Utf8() {}

  /** Half of a surrogate pair becomes U+FFFD, where getBytes would write "?". */
  static byte[] encode(String text) {
    try {
      ByteBuffer bytes =
          StandardCharsets.UTF_8
              .newEncoder()
              .onMalformedInput(CodingErrorAction.REPLACE)
              .onUnmappableCharacter(CodingErrorAction.REPLACE)
              .replaceWith(REPLACEMENT)
              .encode(CharBuffer.wrap(text));
      return bytes.arrayOffset() == 0 && bytes.limit() == bytes.array().length
          ? bytes.array()
          : Arrays.copyOfRange(
              bytes.array(), bytes.arrayOffset(), bytes.arrayOffset() + bytes.limit());
    } catch (CharacterCodingException e) {
      throw new AssertionError(e);
    }
  }

  static byte @Nullable [] encodeOrNull(@Nullable String text) {
    return text == null ? null : encode(text);
  }

  /** What is no UTF-8 becomes U+FFFD. */
  static @Nullable String decodeOrNull(byte @Nullable [] bytes) {
    return bytes == null ? null : new String(bytes, StandardCharsets.UTF_8);
  }

  /** Null becomes "". */
  static String decode(byte @Nullable [] bytes) {
    return bytes == null ? "" : new String(bytes, StandardCharsets.UTF_8);
  }
}
