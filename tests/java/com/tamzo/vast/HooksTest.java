package com.tamzo.vast;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertFalse;
import static org.junit.Assert.assertNotNull;
import static org.junit.Assert.assertNull;
import static org.junit.Assert.assertSame;
import static org.junit.Assert.assertThrows;
import static org.junit.Assert.assertTrue;

import java.io.IOException;
import java.util.ArrayList;
import java.util.List;
import java.util.concurrent.atomic.AtomicInteger;
import java.util.concurrent.atomic.AtomicReference;
import org.junit.After;
import org.junit.Test;

/** Functions of the app in place of the defaults, and what they throw. */
public class HooksTest {
  private static final String TAG = "https://ads.example/v?t=[TIMESTAMP]&r=[CACHEBUSTING]";

  @After
  public void logNoMore() {
    TamzoVast.setDebugEnabled(false);
  }

  @Test
  public void readerIsAskedForEachDocument() {
    List<UrlRequest> requests = new ArrayList<>();
    ParseOptions options =
        new ParseOptions.Builder()
            .deadline(9)
            .maxBytes(1000, 2000)
            .reader(
                request -> {
                  requests.add(request);
                  return Responses.answer(
                      request.hop < 3
                          ? Responses.wrapper("https://ads.example/3")
                          : Responses.inLine(""));
                })
            .build();
    TamzoVastAd ad = TamzoVastAd.parse(Responses.wrapper("https://ads.example/2"), options);
    assertEquals(VastError.SUCCESS, ad.error());
    assertEquals(2, requests.size());
    assertEquals("https://ads.example/2", requests.get(0).url);
    assertEquals(2, requests.get(0).hop);
    assertEquals("https://ads.example/3", requests.get(1).url);
    assertTrue(requests.get(0).secondsLeft > 0 && requests.get(0).secondsLeft <= 9);
    assertEquals(1000, requests.get(0).maxBytes);
    assertFalse(requests.get(0).isCancelled());
  }

  @Test
  public void aUrlIsReadAsWell() {
    TamzoVastAd ad =
        TamzoVastAd.parse(
            "https://ads.example/v",
            Responses.reading(request -> Responses.answer(Responses.inLine(""))));
    assertEquals("a1", ad.adID);
  }

  @Test
  public void failedReadsAreError301() {
    List<UrlReader> readers = new ArrayList<>();
    readers.add(request -> null);
    readers.add(request -> new UrlAnswer(null, 404));
    readers.add(request -> new UrlAnswer(new byte[0]));
    readers.add(
        request -> {
          throw new IOException("no network");
        });
    for (UrlReader reader : readers) {
      TamzoVastAd ad =
          TamzoVastAd.parse(Responses.wrapper("https://ads.example/v"), Responses.reading(reader));
      assertEquals(VastError.EMPTY_CONTENT, ad.error());
    }
  }

  @Test
  public void whatAReaderThrowsIsThrownAgain() {
    for (Throwable thrown :
        new Throwable[] {
          new IllegalStateException("reader"), new StackOverflowError(), new OutOfMemoryError("test")
        }) {
      AtomicInteger calls = new AtomicInteger();
      ParseOptions options =
          Responses.reading(
              request -> {
                calls.incrementAndGet();
                throw HooksTest.<RuntimeException>sneak(thrown);
              });
      Throwable caught =
          assertThrows(
              Throwable.class, () -> TamzoVastAd.parse(Responses.wrapper(TAG), options));
      assertSame(thrown, caught);
      assertEquals(1, calls.get());
    }
  }

  @SuppressWarnings("unchecked")
  private static <T extends Throwable> RuntimeException sneak(Throwable thrown) throws T {
    throw (T) thrown;
  }

  @Test
  public void whatAnyHookThrowsIsThrownAgain() {
    RuntimeException thrown = new RuntimeException("hook");
    ParseOptions.Builder each = new ParseOptions.Builder();
    UrlReader reader = request -> Responses.answer(Responses.inLine("<Category>IAB1</Category>"));
    List<ParseOptions> all = new ArrayList<>();
    all.add(builder(reader).blockedCategories(() -> { throw thrown; }).build());
    all.add(builder(reader).macros(text -> { throw thrown; }).build());
    all.add(builder(reader).clock(() -> { throw thrown; }).build());
    all.add(builder(reader).random(bound -> { throw thrown; }).build());
    all.add(builder(reader).observer(hop -> { throw thrown; }).build());
    all.add(builder(reader).log(line -> { throw thrown; }).build());
    TamzoVast.setDebugEnabled(true);
    for (ParseOptions options : all) {
      int which = all.indexOf(options);
      try {
        TamzoVastAd.parse(Responses.wrapper(TAG), options);
        throw new AssertionError("hook " + which + " threw nothing");
      } catch (RuntimeException caught) {
        assertSame("hook " + which, thrown, caught);
      }
    }
    TamzoVast.setDebugEnabled(false);
    try (OpenVastAd ad = OpenVastAd.parse(Responses.inLine(""), each.build())) {
      ParseOptions page = new ParseOptions.Builder().pageTemplate(() -> { throw thrown; }).build();
      assertSame(thrown, assertThrows(RuntimeException.class, () -> ad.page(page)));
      ParseOptions session = new ParseOptions.Builder().sessionId(() -> { throw thrown; }).build();
      assertSame(thrown, assertThrows(RuntimeException.class, () -> ad.page(session)));
      assertNotNull(ad.page(ParseOptions.DEFAULT));
    }
  }

  private static ParseOptions.Builder builder(UrlReader reader) {
    return new ParseOptions.Builder().reader(reader).log(line -> {});
  }

  @Test
  public void afterAThrowNoHookIsCalledAgain() {
    List<String> calls = new ArrayList<>();
    TamzoVast.setDebugEnabled(true);
    ParseOptions options =
        new ParseOptions.Builder()
            .reader(
                request -> {
                  calls.add("read");
                  throw new IllegalStateException();
                })
            .log(line -> calls.add("log"))
            .observer(hop -> calls.add("hop"))
            .build();
    assertThrows(
        IllegalStateException.class, () -> TamzoVastAd.parse("https://ads.example/v", options));
    assertEquals("read", calls.get(calls.size() - 1));
  }

  @Test
  public void hooksGiveWhatTheParseUses() {
    List<String> urls = new ArrayList<>();
    List<String> lines = new ArrayList<>();
    TamzoVast.setDebugEnabled(true);
    ParseOptions options =
        new ParseOptions.Builder()
            .reader(
                request -> {
                  urls.add(request.url);
                  return Responses.answer(Responses.inLine("<Category>IAB7-1</Category>"));
                })
            .clock(() -> 0)
            .random(bound -> bound - 1)
            .blockedCategories(() -> "IAB7-1")
            .log(lines::add)
            .build();
    TamzoVastAd ad = TamzoVastAd.parse(Responses.wrapper(TAG), options);
    assertEquals(VastError.CATEGORY_BLOCKED, ad.error());
    assertTrue(urls.get(0), urls.get(0).contains("1970-01-01"));
    assertFalse(urls.get(0), urls.get(0).contains("CACHEBUSTING"));
    assertFalse(lines.isEmpty());
  }

  @Test
  public void macrosCanBeFilledByTheApp() {
    List<String> urls = new ArrayList<>();
    ParseOptions options =
        new ParseOptions.Builder()
            .reader(
                request -> {
                  urls.add(request.url);
                  return null;
                })
            .macros(text -> text.replace("[TIMESTAMP]", "now"))
            .build();
    TamzoVastAd.parse(Responses.wrapper("https://ads.example/[TIMESTAMP]"), options);
    assertEquals("https://ads.example/now", urls.get(0));
  }

  @Test
  public void nilFromAHookIsNothing() {
    ParseOptions options =
        new ParseOptions.Builder()
            .blockedCategories(() -> null)
            .pageTemplate(() -> null)
            .macros(text -> null)
            .reader(request -> Responses.answer(Responses.inLine("")))
            .build();
    assertEquals(VastError.SUCCESS, TamzoVastAd.parse(Responses.inLine(""), options).error());
    assertFalse(
        VastError.SUCCESS.equals(TamzoVastAd.parse(Responses.wrapper(TAG), options).error()));
    try (OpenVastAd ad = OpenVastAd.parse(Responses.inLine(""), options)) {
      assertNull(ad.page(options));
    }
  }

  @Test
  public void pageUsesItsHooks() {
    ParseOptions options =
        new ParseOptions.Builder()
            .pageTemplate(() -> "page: {{VAST_TAG}}")
            .sessionId(() -> "s-1")
            .build();
    try (OpenVastAd ad =
        OpenVastAd.parse(
            Responses.inLine("<Impression>https://t.example/[TAMZO_SESSION_ID]</Impression>"),
            options)) {
      String page = ad.page(options);
      assertTrue(page, page.startsWith("page: <VAST"));
      assertTrue(page, page.contains("https://t.example/s-1"));
    }
  }

  @Test
  public void observerIsToldOfEachHop() {
    List<Hop> hops = new ArrayList<>();
    ParseOptions options =
        new ParseOptions.Builder().reader(request -> new UrlAnswer(null, 503)).observer(hops::add).build();
    TamzoVastAd.parse(Responses.wrapper("https://ads.example/v"), options);
    assertEquals(2, hops.size());
    assertEquals(1, hops.get(0).number);
    assertNull(hops.get(0).tag);
    assertTrue(hops.get(0).document.contains("<Wrapper>"));
    Hop failed = hops.get(1);
    assertEquals(2, failed.number);
    assertEquals("https://ads.example/v", failed.tag);
    assertEquals("https://ads.example/v", failed.url);
    assertNull(failed.document);
    assertEquals("other", failed.failure);
    assertEquals(503, failed.httpStatus);
    assertEquals(301, failed.errorCode);
  }

  @Test
  public void readerMayParse() {
    AtomicReference<TamzoVastAd> inner = new AtomicReference<>();
    ParseOptions options =
        Responses.reading(
            request -> {
              inner.set(
                  TamzoVastAd.parse(
                      Responses.wrapper("https://ads.example/inner"),
                      Responses.reading(deeper -> Responses.answer(Responses.inLine("")))));
              return Responses.answer(Responses.inLine(""));
            });
    assertEquals(VastError.SUCCESS, TamzoVastAd.parse(Responses.wrapper(TAG), options).error());
    assertEquals(1, inner.get().mediaFiles.size());
  }

  @Test
  public void aThrowFromAParseWithinAParseGoesThroughBoth() {
    ParseOptions failing =
        Responses.reading(
            request -> {
              throw new ArithmeticException();
            });
    ParseOptions options =
        Responses.reading(
            request -> {
              TamzoVastAd.parse(Responses.wrapper(TAG), failing);
              return null;
            });
    assertThrows(
        ArithmeticException.class, () -> TamzoVastAd.parse(Responses.wrapper(TAG), options));
  }

  @Test
  public void hooksRunOnTheThreadThatParses() throws InterruptedException {
    AtomicInteger elsewhere = new AtomicInteger();
    List<Thread> threads = new ArrayList<>();
    AtomicReference<Thread> unused = new AtomicReference<>();
    for (int at = 0; at < 4; ++at) {
      threads.add(
          new Thread(
              () -> {
                Thread own = Thread.currentThread();
                ParseOptions options =
                    Responses.reading(
                        request -> {
                          if (Thread.currentThread() != own) {
                            elsewhere.incrementAndGet();
                          }
                          return Responses.answer(Responses.inLine(""));
                        });
                for (int times = 0; times < 50; ++times) {
                  if (TamzoVastAd.parse(Responses.wrapper(TAG), options).errorCode != 0) {
                    elsewhere.incrementAndGet();
                  }
                }
                unused.set(own);
              }));
    }
    for (Thread thread : threads) {
      thread.start();
    }
    for (Thread thread : threads) {
      thread.join();
    }
    assertEquals(0, elsewhere.get());
    assertNotNull(unused.get());
  }

  @Test
  public void oneSetOfOptionsServesManyThreads() throws InterruptedException {
    AtomicInteger reads = new AtomicInteger();
    ParseOptions options =
        Responses.reading(
            request -> {
              reads.incrementAndGet();
              return Responses.answer(Responses.inLine(""));
            });
    Runnable work =
        () -> {
          for (int times = 0; times < 50; ++times) {
            TamzoVastAd.parse(Responses.wrapper(TAG), options);
          }
        };
    Thread one = new Thread(work);
    Thread other = new Thread(work);
    one.start();
    other.start();
    one.join();
    other.join();
    assertEquals(100, reads.get());
  }
}
