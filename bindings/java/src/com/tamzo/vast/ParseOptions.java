package com.tamzo.vast;

import java.util.ArrayList;
import java.util.Collections;
import java.util.List;
import java.util.Objects;
import org.jetbrains.annotations.NotNull;
import org.jetbrains.annotations.Nullable;

/**
 * What a parse is given beside its response. They cannot be changed, need no closing, and may serve
 * many parses, also at once; their hooks are called on the threads that parse. A hook may parse
 * itself.
 *
 * <p>What a hook throws ends the parse, which throws it again when nothing of the parse is left. An
 * {@link java.io.IOException} of a {@link UrlReader} alone is a failed read. What a log throws is
 * thrown again at the end.
 */
public final class ParseOptions {
  /** Every limit and hook has its default. */
  public static final @NotNull ParseOptions DEFAULT = new Builder().build();

  /** Gives a text. */
  public interface TextSource {
    /**
     * The text.
     *
     * @return the text; null is nil
     */
    @Nullable String get();
  }

  /** Fills macros. */
  public interface MacroFiller {
    /**
     * Fills the macros of a text.
     *
     * @param text a tag URL
     * @return the text to take in its place; null is nil
     */
    @Nullable String fill(@NotNull String text);
  }

  /** Tells the time. */
  public interface Clock {
    /**
     * The moment.
     *
     * @return milliseconds since the beginning of 1970, UTC
     */
    long millis();
  }

  /** Draws numbers. */
  public interface RandomSource {
    /**
     * Draws one.
     *
     * @param bound what it stays below
     * @return a number from 0 to {@code bound - 1}
     */
    int next(int bound);
  }

  /** Takes the log. */
  public interface LogWriter {
    /**
     * Takes a line.
     *
     * @param line without a line break
     */
    void write(@NotNull String line);
  }

  /** Watches a chain. */
  public interface HopObserver {
    /**
     * Told of each document of a chain, in order, after it was processed or has failed.
     *
     * @param hop the document
     */
    void onHop(@NotNull Hop hop);
  }

  private static final class Header {
    final byte[] name;
    final byte[] value;
    final byte @Nullable [] host;

    Header(String name, String value, @Nullable String host) {
      this.name = Utf8.encode(name);
      this.value = Utf8.encode(value);
      this.host = Utf8.encodeOrNull(host);
    }
  }

  final @Nullable UrlReader reader;
  final @Nullable TextSource blockedCategories;
  final @Nullable TextSource sessionId;
  final @Nullable TextSource pageTemplate;
  final @Nullable MacroFiller macros;
  final @Nullable Clock clock;
  final @Nullable RandomSource random;
  final @Nullable LogWriter log;
  final @Nullable HopObserver observer;
  final @Nullable Cancellation cancellation;

  private final double deadline;
  private final double @Nullable [] fetchSeconds;
  private final long @Nullable [] maxBytes;
  private final @Nullable String userAgent;
  private final List<Header> headers;
  private final @Nullable String proxy;
  private final @Nullable String caFile;
  private final boolean publicAddressesOnly;
  private final boolean httpsStaysHttps;
  private final boolean cookies;

  private ParseOptions(Builder from) {
    reader = from.reader;
    blockedCategories = from.blockedCategories;
    sessionId = from.sessionId;
    pageTemplate = from.pageTemplate;
    macros = from.macros;
    clock = from.clock;
    random = from.random;
    log = from.log;
    observer = from.observer;
    cancellation = from.cancellation;
    deadline = from.deadline;
    fetchSeconds = from.fetchSeconds;
    maxBytes = from.maxBytes;
    userAgent = from.userAgent;
    headers = Collections.unmodifiableList(new ArrayList<>(from.headers));
    proxy = from.proxy;
    caFile = from.caFile;
    publicAddressesOnly = from.publicAddressesOnly;
    httpsStaysHttps = from.httpsStaysHttps;
    cookies = from.cookies;
  }

  /** A call of the library with these options. */
  interface Call<T> {
    T run(long options, Hooks hooks, int which);
  }

  /** Makes options of the library for the time of one call. */
  <T> T lend(Call<T> call) {
    long options = Native.createOptions();
    try {
      configure(options);
      Hooks hooks = new Hooks(this);
      return call.run(options, hooks, hooks.which());
    } finally {
      Native.releaseOptions(options);
    }
  }

  private void configure(long options) {
    Native.setDeadline(options, deadline);
    if (fetchSeconds != null) {
      Native.setFetchSeconds(options, fetchSeconds[0], fetchSeconds[1]);
    }
    if (maxBytes != null) {
      Native.setMaxBytes(options, maxBytes[0], maxBytes[1]);
    }
    if (userAgent != null) {
      Native.setUserAgent(options, Utf8.encode(userAgent));
    }
    for (Header header : headers) {
      Native.addHeader(options, header.name, header.value, header.host);
    }
    if (proxy != null) {
      Native.setProxy(options, Utf8.encode(proxy));
    }
    if (caFile != null) {
      Native.setCaFile(options, Utf8.encode(caFile));
    }
    Native.setSwitches(options, publicAddressesOnly, httpsStaysHttps, cookies);
    if (cancellation != null) {
      long handle = cancellation.enter();
      try {
        Native.setCancellation(options, handle);
      } finally {
        cancellation.leave();
      }
    }
  }

  /** Collects options. For one thread. Null where a hook or a text may be null is the default. */
  public static final class Builder {
    private @Nullable UrlReader reader;
    private @Nullable TextSource blockedCategories;
    private @Nullable TextSource sessionId;
    private @Nullable TextSource pageTemplate;
    private @Nullable MacroFiller macros;
    private @Nullable Clock clock;
    private @Nullable RandomSource random;
    private @Nullable LogWriter log;
    private @Nullable HopObserver observer;
    private @Nullable Cancellation cancellation;
    private double deadline = Double.POSITIVE_INFINITY;
    private double @Nullable [] fetchSeconds;
    private long @Nullable [] maxBytes;
    private @Nullable String userAgent;
    private final List<Header> headers = new ArrayList<>();
    private @Nullable String proxy;
    private @Nullable String caFile;
    private boolean publicAddressesOnly;
    private boolean httpsStaysHttps;
    private boolean cookies;

    /** Starts with the defaults. */
    public Builder() {}

    /**
     * Longest time for all fetches of a chain together.
     *
     * @param seconds infinity, the default, is none; NaN and less than 0 count as 0
     * @return this
     */
    public @NotNull Builder deadline(double seconds) {
      deadline = seconds;
      return this;
    }

    /**
     * Longest times of a fetch by the library.
     *
     * @param connect until it has its connection; 5 by default
     * @param total for the whole of it; 15 by default
     * @return this
     */
    public @NotNull Builder fetchSeconds(double connect, double total) {
      fetchSeconds = new double[] {connect, total};
      return this;
    }

    /**
     * Most bytes of one body and of all bodies of a chain, after decompression.
     *
     * @param body 16 MiB by default; less than 0 counts as 0
     * @param chain 32 MiB by default; less than 0 counts as 0
     * @return this
     */
    public @NotNull Builder maxBytes(long body, long chain) {
      maxBytes = new long[] {body, chain};
      return this;
    }

    /**
     * Sent as User-Agent by the library.
     *
     * @param text null, the default, and "" send none
     * @return this
     */
    public @NotNull Builder userAgent(@Nullable String text) {
      userAgent = text;
      return this;
    }

    /**
     * A header for every request of the library.
     *
     * @param name the name
     * @param value the value
     * @return this
     */
    public @NotNull Builder header(@NotNull String name, @NotNull String value) {
      headers.add(header(name, value, null, false));
      return this;
    }

    /**
     * A header for the requests of the library to one host.
     *
     * @param name the name
     * @param value the value
     * @param host the host
     * @return this
     */
    public @NotNull Builder header(
        @NotNull String name, @NotNull String value, @NotNull String host) {
      headers.add(header(name, value, host, true));
      return this;
    }

    private static Header header(
        String name, String value, @Nullable String host, boolean hasHost) {
      Objects.requireNonNull(name, "name");
      Objects.requireNonNull(value, "value");
      if (hasHost) {
        Objects.requireNonNull(host, "host");
      }
      return new Header(name, value, host);
    }

    /**
     * The proxy of the library's requests.
     *
     * @param url "" is none; null, the default, is what the environment says
     * @return this
     */
    public @NotNull Builder proxy(@Nullable String url) {
      proxy = url;
      return this;
    }

    /**
     * A file of certificates in PEM to be trusted in place of the system's.
     *
     * @param path null and "" are the system's
     * @return this
     */
    public @NotNull Builder caFile(@Nullable String path) {
      caFile = path;
      return this;
    }

    /**
     * Refuses addresses that are not of the public Internet.
     *
     * @param isOn off by default
     * @return this
     */
    public @NotNull Builder publicAddressesOnly(boolean isOn) {
      publicAddressesOnly = isOn;
      return this;
    }

    /**
     * Refuses a redirect from https to http.
     *
     * @param isOn off by default
     * @return this
     */
    public @NotNull Builder httpsStaysHttps(boolean isOn) {
      httpsStaysHttps = isOn;
      return this;
    }

    /**
     * Keeps cookies within one chain.
     *
     * @param isOn off by default
     * @return this
     */
    public @NotNull Builder cookies(boolean isOn) {
      cookies = isOn;
      return this;
    }

    /**
     * Stops the parse.
     *
     * @param stop who does; null, the default, is nobody
     * @return this
     */
    public @NotNull Builder cancellation(@Nullable Cancellation stop) {
      cancellation = stop;
      return this;
    }

    /**
     * Reads URLs in place of the library. One that is built without libcurl reads none by itself.
     *
     * @param hook null is the library's own
     * @return this
     */
    public @NotNull Builder reader(@Nullable UrlReader hook) {
      reader = hook;
      return this;
    }

    /**
     * Category codes that the app blocks, separated by ",".
     *
     * @param hook null, the default, blocks nothing
     * @return this
     */
    public @NotNull Builder blockedCategories(@Nullable TextSource hook) {
      blockedCategories = hook;
      return this;
    }

    /**
     * What [TAMZO_SESSION_ID] stands for in the page.
     *
     * @param hook null is the default
     * @return this
     */
    public @NotNull Builder sessionId(@Nullable TextSource hook) {
      sessionId = hook;
      return this;
    }

    /**
     * The template of the page.
     *
     * @param hook null is the library's own; one that gives null says that there is none
     * @return this
     */
    public @NotNull Builder pageTemplate(@Nullable TextSource hook) {
      pageTemplate = hook;
      return this;
    }

    /**
     * Fills the macros of tag URLs.
     *
     * @param hook null is the library's own
     * @return this
     */
    public @NotNull Builder macros(@Nullable MacroFiller hook) {
      macros = hook;
      return this;
    }

    /**
     * The moment for [TIMESTAMP].
     *
     * @param hook null is the system's
     * @return this
     */
    public @NotNull Builder clock(@Nullable Clock hook) {
      clock = hook;
      return this;
    }

    /**
     * The number for [CACHEBUSTING].
     *
     * @param hook null is the library's own
     * @return this
     */
    public @NotNull Builder random(@Nullable RandomSource hook) {
      random = hook;
      return this;
    }

    /**
     * Where the log of these parses goes, while {@link TamzoVast#setDebugEnabled} is on.
     *
     * @param hook null is the system's log
     * @return this
     */
    public @NotNull Builder log(@Nullable LogWriter hook) {
      log = hook;
      return this;
    }

    /**
     * Told of each document of a chain.
     *
     * @param hook null, the default, is nobody
     * @return this
     */
    public @NotNull Builder observer(@Nullable HopObserver hook) {
      observer = hook;
      return this;
    }

    /**
     * The options. The builder may be used on.
     *
     * @return the options
     * @throws IllegalArgumentException where HTTP would not take a header or the user agent
     * @throws IllegalStateException where the cancellation was closed
     */
    public @NotNull ParseOptions build() {
      ParseOptions options = new ParseOptions(this);
      options.lend((handle, hooks, which) -> which);
      return options;
    }
  }
}
