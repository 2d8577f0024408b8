package com.tamzo.vast;

/**
 * Stops the parses whose options have it, from any thread. It stays cancelled for good. Closed, it
 * can be given to no other parse; one that is under way keeps what it needs of it.
 */
public final class Cancellation extends Handle {
  /** One that is not cancelled. */
  public Cancellation() {
    super(Native.createCancellation());
  }

  /**
   * Cancels: fetches under way fail, and those after them, so that the ads end with error 301. A
   * reader of the app's is asked to look at {@link UrlRequest#isCancelled()}.
   *
   * @throws IllegalStateException after {@link #close()}
   */
  public void cancel() {
    long handle = enter();
    try {
      Native.cancel(handle);
    } finally {
      leave();
    }
  }

  /**
   * True once it is cancelled.
   *
   * @return whether it is
   * @throws IllegalStateException after {@link #close()}
   */
  public boolean isCancelled() {
    long handle = enter();
    try {
      return Native.isCancelled(handle);
    } finally {
      leave();
    }
  }

  /** A closed one can no longer be asked: whoever closes it while a parse runs wants no more of it. */
  boolean isCancelledOrClosed() {
    try {
      return isCancelled();
    } catch (IllegalStateException closed) {
      return true;
    }
  }

  @Override
  void release(long handle) {
    Native.releaseCancellation(handle);
  }
}
