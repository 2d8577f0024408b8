package com.tamzo.vast;

import org.jetbrains.annotations.NotNull;

/** The library itself. */
public final class TamzoVast {
  private TamzoVast() {}

  /**
   * The version of the library that runs.
   *
   * @return "MAJOR.MINOR.PATCH"
   */
  public static @NotNull String version() {
    return Utf8.decode(Native.version());
  }

  /**
   * Turns the log on or off for the whole process. Off by default.
   *
   * @param isOn whether it is on
   */
  public static void setDebugEnabled(boolean isOn) {
    Native.setDebugEnabled(isOn);
  }
}
