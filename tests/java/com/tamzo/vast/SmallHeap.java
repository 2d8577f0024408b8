package com.tamzo.vast;

import java.util.Arrays;

/** Ads that do not fit into the heap; run with one of 24 MB. */
public final class SmallHeap {
  private SmallHeap() {}

  public static void main(String[] none) {
    byte[] large = new byte[8 * 1024 * 1024];
    Arrays.fill(large, (byte) ' ');
    byte[] begin = "<VAST version='4.0'>".getBytes();
    System.arraycopy(begin, 0, large, 0, begin.length);
    int failed = 0;
    for (int times = 0; times < 5; ++times) {
      // The record has the response twice, and its array is as long again; the observer is given
      // the document once more.
      failed += isTooLarge(() -> TamzoVastAd.parse(large)) ? 1 : 0;
      failed += isTooLarge(() -> OpenVastAd.parse(large, ParseOptions.DEFAULT).close()) ? 1 : 0;
      failed += isTooLarge(() -> TamzoVastAd.parse("https://ads.example/v", reading(large))) ? 1 : 0;
    }
    TamzoVastAd ad = TamzoVastAd.parse(Responses.inLine(""));
    System.out.println(failed + " of 15 did not fit; then error " + ad.errorCode);
    if (failed != 15 || ad.errorCode != 0) {
      System.exit(1);
    }
  }

  private static ParseOptions reading(byte[] body) {
    return new ParseOptions.Builder()
        .reader(request -> new UrlAnswer(body))
        .observer(hop -> {})
        .build();
  }

  private static boolean isTooLarge(Runnable work) {
    try {
      work.run();
      return false;
    } catch (OutOfMemoryError error) {
      return true;
    }
  }
}
