package com.tamzo.vast;

import static org.junit.Assert.assertArrayEquals;
import static org.junit.Assert.assertEquals;
import static org.junit.Assert.assertFalse;
import static org.junit.Assert.assertNotNull;
import static org.junit.Assert.assertNull;
import static org.junit.Assert.assertSame;
import static org.junit.Assert.assertThrows;
import static org.junit.Assert.assertTrue;

import java.lang.reflect.Field;
import java.lang.reflect.Modifier;
import java.nio.charset.StandardCharsets;
import java.util.Arrays;
import java.util.Collections;
import java.util.List;
import java.util.Map;
import org.junit.Test;

/** What a record holds. That every property arrives is DumpRecords' matter. */
public class RecordTest {
  private static TamzoVastAd parse(String response) {
    return TamzoVastAd.parse(response, Responses.reading(request -> null));
  }

  @Test
  public void recordOfAnInLine() {
    TamzoVastAd ad = parse(Responses.inLine("<Impression>https://t.example/i</Impression>"));
    assertEquals(VastError.SUCCESS, ad.error());
    assertEquals("a1", ad.adID);
    assertEquals("00:00:30", ad.duration.text);
    assertEquals(30, ad.duration.seconds);
    MediaFile file = ad.mediaFiles.get(0);
    assertEquals("https://c.example/a.mp4", file.url);
    assertEquals(Integer.valueOf(640), file.width);
    assertNull(file.height);
    assertNull(file.scalable);
    assertEquals("https://t.example/i", ad.trackers.get("Impression").get(0).url);
  }

  @Test
  public void nilIsNullAndEmptyIsEmpty() {
    TamzoVastAd ad = parse(Responses.inLine(""));
    assertEquals("", ad.mediaFiles.get(0).delivery);
    assertNull(ad.mediaFiles.get(0).codec);
    assertNull(ad.clickThrough);
    assertEquals("", ad.moatVastIds);
    assertNull(ad.cards);
    assertEquals(Collections.emptyList(), ad.trackersOffset);
  }

  @Test
  public void aFailedAdSaysWhy() {
    TamzoVastAd ad = parse("no XML");
    assertEquals(101, ad.errorCode);
    assertEquals(VastError.NOT_XML, ad.error());
    assertEquals("not XML", ad.error().words());
    assertFalse(ad.error().cause().isEmpty());
  }

  @Test
  public void errorsAreThoseOfTheLibrary() {
    int[] codes = Arrays.stream(VastError.values()).mapToInt(error -> error.code).toArray();
    assertArrayEquals(Native.errorCodes(), codes);
    assertNull(VastError.of(7));
    assertNull(Native.errorName(7));
  }

  @Test
  public void listsAndMapsCannotBeChanged() {
    TamzoVastAd ad =
        parse(Responses.inLine(Responses.companion(), Responses.icon("Choices")));
    List<MediaFile> files = ad.mediaFiles;
    assertThrows(UnsupportedOperationException.class, () -> files.remove(0));
    assertThrows(UnsupportedOperationException.class, () -> ad.trackers.clear());
    assertThrows(
        UnsupportedOperationException.class, () -> ad.extraActions.entries.get(0).icon.children.clear());
  }

  @Test
  public void everyFieldOfEveryClassIsFinal() {
    for (Class<?> each :
        Arrays.asList(
            TamzoVastAd.class, MediaFile.class, Companion.class, CompanionAd.class,
            Verification.class, Resource.class, Tracker.class, AdDuration.class, VpaidXml.class,
            VastElement.class, VastElement.Attribute.class, ExtraActions.class,
            ExtraActions.Entry.class, Hop.class, UrlRequest.class, ParseOptions.class)) {
      for (Field field : each.getDeclaredFields()) {
        assertTrue(field.toString(), Modifier.isFinal(field.getModifiers()) || field.isSynthetic());
      }
    }
  }

  @Test
  public void anElementBringsAllBelowIt() {
    String linear =
        "<Icons><Icon program='Choices' xmlns:x='urn:x' x:y='&amp;1'><IconClicks>"
            + "<IconClickThrough>https://choices.example/</IconClickThrough><b>1<c/>2</b>"
            + "</IconClicks><d> t </d></Icon></Icons>";
    VastElement icon = parse(Responses.inLine("", linear)).extraActions.entries.get(0).icon;
    assertEquals("Icon", icon.name);
    assertEquals("Choices", icon.attribute("program"));
    assertEquals("&1", icon.attribute("x:y"));
    assertNull(icon.attribute("none"));
    assertNull(icon.text);
    assertTrue(icon.xml.startsWith("<Icon "));
    assertTrue(icon.xml.contains("<b>1<c/>2</b>"));
    assertEquals(2, icon.children.size());
    VastElement clicks = icon.child("IconClicks");
    assertEquals("https://choices.example/", clicks.child("IconClickThrough").text);
    assertNull(clicks.child("b").text);
    assertEquals("c", clicks.child("b").children.get(0).name);
    assertEquals("", clicks.child("b").children.get(0).text);
    assertEquals(" t ", icon.child("d").text);
    assertNull(icon.child("none"));
    assertNull(clicks.xml);
  }

  @Test
  public void deepElementsTakeNoStack() throws InterruptedException {
    StringBuilder deep = new StringBuilder("<Icons><Icon program='p'>");
    for (int at = 0; at < 200; ++at) {
      deep.append("<d>");
    }
    deep.append("x");
    for (int at = 0; at < 200; ++at) {
      deep.append("</d>");
    }
    String response = Responses.inLine("", deep + "</Icon></Icons>");
    VastElement[] found = new VastElement[1];
    Thread small =
        new Thread(
            null, () -> found[0] = parse(response).extraActions.entries.get(0).icon, "small", 1 << 19);
    small.start();
    small.join();
    int depth = 0;
    VastElement element = found[0];
    for (; !element.children.isEmpty(); element = element.children.get(0)) {
      ++depth;
    }
    assertEquals(200, depth);
    assertEquals("x", element.text);
  }

  @Test
  public void thirtyThousandEntriesNeedNoReferences() {
    StringBuilder trackers = new StringBuilder();
    for (int at = 0; at < 30000; ++at) {
      trackers.append("<Impression>https://t.example/").append(at).append("</Impression>");
    }
    List<Tracker> all = parse(Responses.inLine(trackers.toString())).trackers.get("Impression");
    assertEquals(30000, all.size());
    assertEquals("https://t.example/29999", all.get(29999).url);
  }

  @Test
  public void emptyInputIsAFailedAd() {
    assertEquals(VastError.EXCEPTION, parse("").error());
    assertEquals(VastError.EXCEPTION, TamzoVastAd.parse(new byte[0]).error());
  }

  @Test
  public void nullIsRefusedEverywhere() {
    String response = Responses.inLine("");
    byte[] bytes = response.getBytes(StandardCharsets.UTF_8);
    ParseOptions options = ParseOptions.DEFAULT;
    ParseOptions.Builder builder = new ParseOptions.Builder();
    List<org.junit.function.ThrowingRunnable> calls =
        Arrays.asList(
            () -> TamzoVastAd.parse((String) null),
            () -> TamzoVastAd.parse((byte[]) null),
            () -> TamzoVastAd.parse((String) null, options),
            () -> TamzoVastAd.parse((byte[]) null, options),
            () -> TamzoVastAd.parse(response, null),
            () -> TamzoVastAd.parse(bytes, null),
            () -> OpenVastAd.parse((String) null, options),
            () -> OpenVastAd.parse((byte[]) null, options),
            () -> OpenVastAd.parse(response, null),
            () -> OpenVastAd.parse(bytes, null),
            () -> builder.header(null, "value"),
            () -> builder.header("name", null),
            () -> builder.header("name", "value", null));
    for (org.junit.function.ThrowingRunnable call : calls) {
      assertThrows(NullPointerException.class, call);
    }
    try (OpenVastAd ad = OpenVastAd.parse(response, options)) {
      assertThrows(NullPointerException.class, () -> ad.page(null));
      assertThrows(NullPointerException.class, () -> ad.imageAd(null));
      assertThrows(NullPointerException.class, () -> ad.companionForSlot(null, 1, 1));
    }
  }

  @Test
  public void operations() {
    String response = Responses.inLine(Responses.companion(), Responses.iconInAnIcon());
    try (OpenVastAd ad = OpenVastAd.parse(response, ParseOptions.DEFAULT)) {
      TamzoVastAd record = ad.record();
      CompanionAd companions = record.mostSuitableCompanion();
      assertSame(record.companionAds.get(0), companions);
      assertSame(companions.companions.get(0), ad.companionForSlot(companions, 320, 250));
      assertNull(ad.companionForSlot(companions, 10, 10));

      VastElement icon = record.extraActions.entries.get(0).icon;
      assertNull(record.iconMap);
      assertTrue(ad.imageAd(icon).isEmpty());
      assertTrue(ad.record().iconMap.isEmpty());
      Map<String, VastElement> clicks = ad.imageAd(icon.child("b"));
      assertEquals("https://choices.example/", clicks.get("iconClickThrough").text);
      assertEquals("https://t.example/k", clicks.get("iconClickTracking").text);
      assertNull(record.iconMap);
      assertEquals(2, ad.record().iconMap.size());

      String page = ad.page(ParseOptions.DEFAULT);
      assertTrue(page.contains("<html"));
      assertNull(record.vPaidHTML);
      assertEquals(page, ad.record().vPaidHTML);
      assertTrue(ad.asJson(false).startsWith("{\"adID\":\"a1\""));
      assertTrue(ad.asJson(true).contains("\n"));
    }
    assertNull(TamzoVastAd.parse(Responses.inLine("")).mostSuitableCompanion());
  }

  @Test
  public void operationsTakeOnlyWhatIsTheAdsOwn() {
    String response = Responses.inLine(Responses.companion(), Responses.iconInAnIcon());
    TamzoVastAd other = TamzoVastAd.parse(response);
    try (OpenVastAd ad = OpenVastAd.parse(response, ParseOptions.DEFAULT)) {
      assertThrows(
          IllegalArgumentException.class,
          () -> ad.companionForSlot(other.companionAds.get(0), 300, 250));
      assertThrows(
          IllegalArgumentException.class,
          () -> ad.imageAd(other.extraActions.entries.get(0).icon));
      VastElement icon = ad.record().extraActions.entries.get(0).icon;
      VastElement click = ad.imageAd(icon.child("b")).get("iconClickThrough");
      assertThrows(IllegalArgumentException.class, () -> ad.imageAd(click));
    }
  }

  @Test
  public void versionIsThatOfTheLibrary() {
    assertNotNull(TamzoVast.version());
    assertTrue(TamzoVast.version().matches("\\d+\\.\\d+\\.\\d+"));
  }
}
