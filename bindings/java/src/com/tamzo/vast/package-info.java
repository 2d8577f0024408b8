/**
 * The VAST parser for Java and Kotlin.
 *
 * <p>{@link com.tamzo.vast.TamzoVastAd} is the record of an ad, a copy that belongs to no library and
 * needs no closing. {@link com.tamzo.vast.OpenVastAd} is a record that the library still holds, for
 * what is asked of it after the parse. {@link com.tamzo.vast.ParseOptions} bound a parse and put
 * functions of the app in place of the defaults; {@link com.tamzo.vast.Cancellation} stops one.
 *
 * <p>Null is what was never written, and an empty text is what was written empty. What a response
 * holds that is no UTF-8 becomes U+FFFD, and so does half of a surrogate pair in a text that is given
 * to the library. Lists and maps cannot be changed.
 *
 * <p>Classes may be used by several threads at once unless they say otherwise.
 */
package com.tamzo.vast;
