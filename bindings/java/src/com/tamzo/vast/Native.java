package com.tamzo.vast;

import org.jetbrains.annotations.Nullable;

/** The functions of the bridge, libtamzovastjni. A handle is never 0 and must be alive. */
final class Native {
  static {
    System.loadLibrary("tamzovastjni");
  }

  private Native() {}

  static native byte[] version();

  static native void setDebugEnabled(boolean isOn);

  static native int[] errorCodes();

  static native byte @Nullable [] errorName(int code);

  static native byte @Nullable [] errorCause(int code);

  static native long createCancellation();

  static native void cancel(long cancellation);

  static native boolean isCancelled(long cancellation);

  static native void releaseCancellation(long cancellation);

  static native long createOptions();

  static native void releaseOptions(long options);

  static native void setDeadline(long options, double seconds);

  static native void setFetchSeconds(long options, double connect, double total);

  static native void setMaxBytes(long options, long body, long chain);

  static native void setUserAgent(long options, byte[] text);

  static native void addHeader(long options, byte[] name, byte[] value, byte @Nullable [] host);

  static native void setProxy(long options, byte[] url);

  static native void setCaFile(long options, byte[] path);

  static native void setSwitches(
      long options, boolean publicAddressesOnly, boolean httpsStaysHttps, boolean cookies);

  static native void setCancellation(long options, long cancellation);

  /** The record; through {@code ad} its handle, unless that is null. */
  static native byte[] parse(
      byte[] response, long options, Hooks hooks, int which, long @Nullable [] ad);

  static native byte[] record(long ad);

  static native byte[] json(long ad, boolean isIndented);

  /** Null without a page. */
  static native byte @Nullable [] page(long ad, long options, Hooks hooks, int which);

  /** Which companion; -1 where none fits. */
  static native int companionForSlot(long ad, int companionAd, int width, int height);

  static native void imageAd(long ad, int list, int[] path);

  static native void releaseAd(long ad);
}
