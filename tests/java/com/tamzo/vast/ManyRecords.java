package com.tamzo.vast;

import java.io.IOException;
import java.nio.charset.StandardCharsets;
import java.nio.file.Files;
import java.nio.file.Paths;

/** Parses as an app does that runs for long, and looks at what the process has of memory. */
public final class ManyRecords {
  private static final int ROUNDS = 7000;
  private static final long MOST_GROWTH = 8L * 1024 * 1024;

  private ManyRecords() {}

  public static void main(String[] none) throws IOException {
    // What the machine of Java's compiles and caches by itself is done after some.
    run(ROUNDS / 4);
    long before = residentBytes();
    run(ROUNDS);
    long growth = residentBytes() - before;
    System.out.println(3 * ROUNDS + " records, grown by " + growth / 1024 + " KiB");
    if (growth > MOST_GROWTH) {
      System.exit(1);
    }
  }

  /** Three records a round. A leak of a kilobyte of each is 20 MB over all. */
  private static void run(int rounds) {
    StringBuilder padding = new StringBuilder();
    for (int at = 0; at < 60; ++at) {
      padding.append("<Impression>https://t.example/0123456789012345678901</Impression>");
    }
    byte[] response =
        Responses.inLine(padding + Responses.companion(), Responses.icon("p"))
            .getBytes(StandardCharsets.UTF_8);
    ParseOptions reading = Responses.reading(request -> new UrlAnswer(response));
    ParseOptions throwing =
        Responses.reading(
            request -> {
              throw new IllegalStateException();
            });
    for (int at = 0; at < rounds; ++at) {
      TamzoVastAd.parse(Responses.wrapper("https://ads.example/v"), reading);
      try (Cancellation cancellation = new Cancellation();
          OpenVastAd ad =
              OpenVastAd.parse(
                  response, new ParseOptions.Builder().cancellation(cancellation).build())) {
        ad.imageAd(ad.record().extraActions.entries.get(0).icon);
      }
      try {
        TamzoVastAd.parse(Responses.wrapper("https://ads.example/v"), throwing);
        throw new AssertionError();
      } catch (IllegalStateException thrown) {
        // What the reader threw.
      }
    }
  }

  private static long residentBytes() throws IOException {
    System.gc();
    for (String line : Files.readAllLines(Paths.get("/proc/self/status"))) {
      if (line.startsWith("VmRSS:")) {
        return Long.parseLong(line.replaceAll("[^0-9]", "")) * 1024;
      }
    }
    throw new AssertionError("no VmRSS");
  }
}
