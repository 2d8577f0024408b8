package com.tamzo.vast;

import static org.junit.Assert.assertArrayEquals;
import static org.junit.Assert.assertEquals;

import java.io.ByteArrayOutputStream;
import java.nio.charset.StandardCharsets;
import java.util.Arrays;
import org.junit.Test;

/** Texts that UTF-8, UTF-16 and JNI do not agree about. */
public class TextsTest {
  private static String trackerOf(String url) {
    String response = Responses.inLine("<Impression>" + url + "</Impression>");
    return TamzoVastAd.parse(response).trackers.get("Impression").get(0).url;
  }

  @Test
  public void supplementaryCharactersArriveWhole() {
    assertEquals("https://t.example/\uD83D\uDE00\u00E9\u20AC", trackerOf("https://t.example/\uD83D\uDE00\u00E9\u20AC"));
  }

  @Test
  public void halfOfAPairIsReplaced() {
    byte[] replacement = {(byte) 0xEF, (byte) 0xBF, (byte) 0xBD};
    assertArrayEquals(replacement, Utf8.encode("\uD800"));
    assertArrayEquals(replacement, Utf8.encode("\uDC00"));
    assertEquals("a\uFFFDb", trackerOf("a\uD800b"));
    assertEquals("a\uFFFDb", trackerOf("a\uDC00b"));
    assertEquals("\uFFFD\uFFFD", trackerOf("\uDC00\uD800"));
    assertEquals("\uFFFD\uD83D\uDE00", trackerOf("\uD83D\uD83D\uDE00"));
  }

  @Test
  public void halfOfAPairInEveryText() {
    ParseOptions options =
        new ParseOptions.Builder()
            .reader(request -> Responses.answer(Responses.inLine("")))
            .blockedCategories(() -> "\uD800")
            .macros(text -> text + "\uD800")
            .sessionId(() -> "\uDC00")
            .pageTemplate(() -> "[\uD800]{{VAST_TAG}}")
            .userAgent("")
            .proxy("")
            .caFile("")
            .build();
    try (OpenVastAd ad =
        OpenVastAd.parse(Responses.wrapper("https://ads.example/v"), options)) {
      assertEquals(VastError.SUCCESS, ad.record().error());
      assertEquals("[\uFFFD]", ad.page(options).substring(0, 3));
    }
  }

  @Test
  public void nulInAResponseIsNoEnd() {
    // The parser takes no NUL, which must not look like the end of a response either.
    TamzoVastAd ad = TamzoVastAd.parse(Responses.inLine("") + "\0<");
    assertEquals(VastError.NOT_XML, ad.error());
    assertEquals(Responses.inLine("").length() + 2, ad.vastResponseStr.length());
    assertEquals('\0', ad.vastResponseStr.charAt(ad.vastResponseStr.length() - 2));
  }

  @Test
  public void bytesThatAreNoUtf8AreReplaced() {
    ByteArrayOutputStream bytes = new ByteArrayOutputStream();
    byte[] text = "<VAST>".getBytes(StandardCharsets.US_ASCII);
    bytes.write(text, 0, text.length);
    for (int each : new int[] {0xFF, 0xC0, 0x80, 0xED, 0xA0, 0x80, 'x'}) {
      bytes.write(each);
    }
    String kept = TamzoVastAd.parse(bytes.toByteArray()).vastResponseStr;
    assertEquals("<VAST>", kept.substring(0, 6));
    assertEquals('x', kept.charAt(kept.length() - 1));
    assertEquals('\uFFFD', kept.charAt(6));
  }

  @Test
  public void bytesAreLeftAsTheyWere() {
    byte[] response = Responses.inLine("").getBytes(StandardCharsets.UTF_8);
    byte[] before = Arrays.copyOf(response, response.length);
    TamzoVastAd.parse(response);
    assertArrayEquals(before, response);
  }
}
