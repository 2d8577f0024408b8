package com.tamzo.vast;

import java.io.Closeable;

/**
 * What the library holds for an object of Java. It is released when it is closed, and not before
 * every call that uses it is over; used after that it says so.
 * Closeable rather than AutoCloseable, so that Kotlin's use() needs nothing else.
 */
abstract class Handle implements Closeable {
  private final long handle;
  private int users;
  private boolean isClosed;
  private boolean isReleased;

  Handle(long handle) {
    this.handle = handle;
  }

  abstract void release(long handle);

  /** The handle, which is good until {@link #leave()}. */
  final synchronized long enter() {
    if (isClosed) {
      throw new IllegalStateException(getClass().getSimpleName() + " was closed");
    }
    ++users;
    return handle;
  }

  final void leave() {
    synchronized (this) {
      --users;
    }
    releaseUnlessUsed();
  }

  /**
   * Releases it; a call that is under way goes on to its end first. Closing twice is no mistake.
   */
  @Override
  public void close() {
    synchronized (this) {
      isClosed = true;
    }
    releaseUnlessUsed();
  }

  private void releaseUnlessUsed() {
    synchronized (this) {
      if (!isClosed || users > 0 || isReleased) {
        return;
      }
      isReleased = true;
    }
    release(handle);
  }
}
