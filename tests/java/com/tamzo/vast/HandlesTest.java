package com.tamzo.vast;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertFalse;
import static org.junit.Assert.assertNotNull;
import static org.junit.Assert.assertThrows;
import static org.junit.Assert.assertTrue;

import java.util.concurrent.CountDownLatch;
import org.junit.Test;

/** Cancellation, and objects that are closed too early, twice or by somebody else. */
public class HandlesTest {
  private static final String TAG = "https://ads.example/v";

  private static ParseOptions.Builder answering() {
    return new ParseOptions.Builder()
        .reader(request -> Responses.answer(Responses.inLine("")));
  }

  @Test
  public void cancelledBeforeTheStart() {
    try (Cancellation cancellation = new Cancellation()) {
      assertFalse(cancellation.isCancelled());
      cancellation.cancel();
      cancellation.cancel();
      assertTrue(cancellation.isCancelled());
      TamzoVastAd ad =
          TamzoVastAd.parse(
              Responses.wrapper(TAG), answering().cancellation(cancellation).build());
      assertEquals(VastError.EMPTY_CONTENT, ad.error());
      // What needs no fetch is read all the same.
      assertEquals(
          VastError.SUCCESS,
          TamzoVastAd.parse(
                  Responses.inLine(""), answering().cancellation(cancellation).build())
              .error());
    }
  }

  @Test
  public void cancelledFromAnotherThread() throws InterruptedException {
    CountDownLatch isReading = new CountDownLatch(1);
    try (Cancellation cancellation = new Cancellation()) {
      Thread other =
          new Thread(
              () -> {
                try {
                  isReading.await();
                } catch (InterruptedException e) {
                  throw new AssertionError(e);
                }
                cancellation.cancel();
              });
      other.start();
      ParseOptions options =
          new ParseOptions.Builder()
              .cancellation(cancellation)
              .reader(
                  request -> {
                    isReading.countDown();
                    while (!request.isCancelled()) {
                      Thread.yield();
                    }
                    return null;
                  })
              .build();
      assertEquals(
          VastError.EMPTY_CONTENT, TamzoVastAd.parse(Responses.wrapper(TAG), options).error());
      other.join();
    }
  }

  @Test
  public void aCancellationMayBeClosedWhileItIsUsed() {
    Cancellation cancellation = new Cancellation();
    ParseOptions options =
        new ParseOptions.Builder()
            .cancellation(cancellation)
            .reader(
                request -> {
                  cancellation.close();
                  assertTrue(request.isCancelled());
                  return Responses.answer(Responses.inLine(""));
                })
            .build();
    assertEquals(VastError.SUCCESS, TamzoVastAd.parse(Responses.wrapper(TAG), options).error());
    assertThrows(
        IllegalStateException.class, () -> TamzoVastAd.parse(Responses.wrapper(TAG), options));
  }

  @Test
  public void usedAfterTheEnd() {
    Cancellation cancellation = new Cancellation();
    cancellation.close();
    cancellation.close();
    assertThrows(IllegalStateException.class, cancellation::cancel);
    assertThrows(IllegalStateException.class, cancellation::isCancelled);
    assertThrows(
        IllegalStateException.class, () -> answering().cancellation(cancellation).build());

    OpenVastAd ad =
        OpenVastAd.parse(
            Responses.inLine(Responses.companion(), Responses.icon("p")), ParseOptions.DEFAULT);
    TamzoVastAd record = ad.record();
    ad.close();
    ad.close();
    assertThrows(IllegalStateException.class, ad::record);
    assertThrows(IllegalStateException.class, () -> ad.asJson(true));
    assertThrows(IllegalStateException.class, () -> ad.page(ParseOptions.DEFAULT));
    assertThrows(
        IllegalStateException.class,
        () -> ad.companionForSlot(record.companionAds.get(0), 300, 250));
    IllegalStateException said =
        assertThrows(
            IllegalStateException.class,
            () -> ad.imageAd(record.extraActions.entries.get(0).icon));
    assertEquals("OpenVastAd was closed", said.getMessage());
    // What was given stays.
    assertEquals("a1", record.adID);
  }

  @Test
  public void aHookMayCloseTheAdAndMustNotCallIt() {
    OpenVastAd ad = OpenVastAd.parse(Responses.inLine(""), ParseOptions.DEFAULT);
    ParseOptions asking =
        new ParseOptions.Builder()
            .pageTemplate(
                () -> {
                  assertThrows(IllegalStateException.class, ad::record);
                  assertThrows(
                      IllegalStateException.class, () -> ad.page(ParseOptions.DEFAULT));
                  ad.close();
                  return "{{VAST_TAG}}";
                })
            .build();
    assertNotNull(ad.page(asking));
    assertThrows(IllegalStateException.class, ad::record);
  }

  @Test
  public void closedByAnotherThreadWhileItIsAsked() throws InterruptedException {
    for (int times = 0; times < 50; ++times) {
      OpenVastAd ad = OpenVastAd.parse(Responses.inLine(""), ParseOptions.DEFAULT);
      Thread other = new Thread(ad::close);
      other.start();
      try {
        while (true) {
          assertTrue(ad.asJson(false).startsWith("{"));
        }
      } catch (IllegalStateException closed) {
        other.join();
      }
    }
  }

  @Test
  public void headersThatHttpRefusesAreRefused() {
    ParseOptions.Builder builder = new ParseOptions.Builder().header("X-One", "1");
    assertNotNull(builder.build());
    assertThrows(
        IllegalArgumentException.class,
        () -> new ParseOptions.Builder().header("X-Two", "a\r\nb").build());
    assertThrows(
        IllegalArgumentException.class,
        () -> new ParseOptions.Builder().header("a b", "c").build());
    assertThrows(
        IllegalArgumentException.class,
        () -> new ParseOptions.Builder().userAgent("a\nb").build());
  }

  @Test
  public void limitsOutOfRange() {
    ParseOptions options =
        new ParseOptions.Builder()
            .deadline(Double.NaN)
            .fetchSeconds(-1, Double.POSITIVE_INFINITY)
            .maxBytes(-1, Long.MAX_VALUE)
            .reader(request -> Responses.answer(Responses.inLine("")))
            .build();
    assertEquals(
        VastError.EMPTY_CONTENT, TamzoVastAd.parse(Responses.wrapper(TAG), options).error());
  }
}
