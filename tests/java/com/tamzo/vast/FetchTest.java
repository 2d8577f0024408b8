package com.tamzo.vast;

import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertTrue;

import com.sun.net.httpserver.HttpServer;
import java.io.IOException;
import java.net.InetAddress;
import java.net.InetSocketAddress;
import java.nio.charset.StandardCharsets;
import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import org.junit.After;
import org.junit.Assume;
import org.junit.Before;
import org.junit.Test;

/** Fetches by the library itself, from a server on loopback. */
public class FetchTest {
  private HttpServer server;
  private final List<String> seen = Collections.synchronizedList(new ArrayList<>());

  @Before
  public void serve() throws IOException {
    Assume.assumeTrue("built without libcurl", Boolean.getBoolean("tamzo.curl"));
    server = HttpServer.create(new InetSocketAddress(InetAddress.getLoopbackAddress(), 0), 0);
    server.createContext(
        "/",
        exchange -> {
          seen.add(
              exchange.getRequestURI()
                  + " "
                  + exchange.getRequestHeaders().getFirst("User-Agent")
                  + " "
                  + exchange.getRequestHeaders().getFirst("X-App"));
          String body =
              exchange.getRequestURI().getPath().equals("/wrapper")
                  ? Responses.wrapper(url("/inline"))
                  : Responses.inLine("");
          byte[] bytes = body.getBytes(StandardCharsets.UTF_8);
          exchange.sendResponseHeaders(200, bytes.length);
          exchange.getResponseBody().write(bytes);
          exchange.close();
        });
    server.start();
  }

  @After
  public void stop() {
    if (server != null) {
      server.stop(0);
    }
  }

  private String url(String path) {
    return "http://127.0.0.1:" + server.getAddress().getPort() + path;
  }

  private static ParseOptions.Builder builder() {
    return new ParseOptions.Builder().proxy("").fetchSeconds(5, 10);
  }

  @Test
  public void aChainIsFetched() {
    ParseOptions options =
        builder().userAgent("app/1").header("X-App", "yes", "127.0.0.1").build();
    TamzoVastAd ad = TamzoVastAd.parse(url("/wrapper"), options);
    assertEquals(VastError.SUCCESS, ad.error());
    assertEquals("w", ad.adID);
    assertEquals(1, ad.mediaFiles.size());
    assertEquals(2, seen.size());
    assertEquals("/wrapper app/1 yes", seen.get(0));
    assertEquals("/inline app/1 yes", seen.get(1));
  }

  @Test
  public void addressesThatAreNotPublicAreRefusedWhereAsked() {
    TamzoVastAd ad = TamzoVastAd.parse(url("/inline"), builder().publicAddressesOnly(true).build());
    assertEquals(VastError.EMPTY_CONTENT, ad.error());
    assertTrue(seen.isEmpty());
  }

  @Test
  public void theSizeOfABodyIsBounded() {
    TamzoVastAd ad = TamzoVastAd.parse(url("/inline"), builder().maxBytes(50, 50).build());
    assertEquals(VastError.EMPTY_CONTENT, ad.error());
  }

  @Test
  public void noTimeLeft() {
    TamzoVastAd ad = TamzoVastAd.parse(url("/inline"), builder().deadline(0).build());
    assertEquals(VastError.EMPTY_CONTENT, ad.error());
    assertTrue(seen.isEmpty());
  }
}
