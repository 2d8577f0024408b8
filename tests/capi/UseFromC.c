/* The library from a C11 program, as a host in C meets it. */

#include <string.h>

#include "../support/ExpectInC.h"
#include "tamzo/tamzo_vast.h"

static bool is(tamzo_vast_text text, const char* expected) {
  return text.data != NULL && text.size == strlen(expected) &&
         memcmp(text.data, expected, text.size) == 0;
}

static bool holds(tamzo_vast_text text, const char* part) {
  const size_t length = strlen(part);
  for (size_t at = 0; at + length <= text.size; ++at) {
    if (memcmp(text.data + at, part, length) == 0) return true;
  }
  return false;
}

static bool isNil(tamzo_vast_text text) { return text.data == NULL && text.size == 0; }

static tamzo_vast_ad* parse(const char* response, const tamzo_vast_options* options) {
  tamzo_vast_ad* ad = NULL;
  EXPECT(tamzo_vast_parse(response, strlen(response), options, &ad) == TAMZO_VAST_OK);
  EXPECT(ad != NULL);
  return ad;
}

static const char kInLine[] =
    "<VAST version='4.2'><Ad id='a1'><InLine>"
    "<Impression>https://t.example/i</Impression><Category>IAB8</Category>"
    "<Creatives><Creative><Linear skipoffset='00:00:05'><Duration>00:00:30</Duration>"
    "<TrackingEvents><Tracking event='start'>https://t.example/s</Tracking>"
    "<Tracking event='progress' offset='00:00:10'>https://t.example/p</Tracking></TrackingEvents>"
    "<MediaFiles><MediaFile type='video/mp4' delivery='' width='640'> https://c.example/a.mp4 "
    "</MediaFile></MediaFiles>"
    "<Icons><Icon program='Choices' xmlns:x='urn:x' x:y='1'><IconClicks>"
    "<IconClickThrough>https://choices.example/</IconClickThrough></IconClicks></Icon></Icons>"
    "</Linear></Creative><Creative><CompanionAds><Companion id='c' width='300' height='250'>"
    "<StaticResource creativeType='image/png'>https://c.example/a.png</StaticResource>"
    "<IFrameResource>https://c.example/f</IFrameResource></Companion></CompanionAds></Creative>"
    "</Creatives>"
    "<Extensions><Extension type='AdVerifications'><AdVerifications><Verification "
    "vendor='meter.example'>"
    "<JavaScriptResource apiFramework='omid' browserOptional='true'>https://m.example/s.js"
    "</JavaScriptResource><VerificationParameters>{}</VerificationParameters>"
    "<TrackingEvents><Tracking event='verificationNotExecuted'>https://m.example/n</Tracking>"
    "</TrackingEvents></Verification></AdVerifications></Extension></Extensions>"
    "</InLine></Ad></VAST>";

static const char kWrapper[] =
    "<VAST version='4.2'><Ad><Wrapper><VASTAdTagURI>http://ads.example/2</VASTAdTagURI>"
    "<Creatives/></Wrapper></Ad></VAST>";

static void testVersions(void) {
  EXPECT(tamzo_vast_abi() == TAMZO_VAST_ABI);
  EXPECT(strncmp(tamzo_vast_version(), "8.", 2) == 0);
  EXPECT(strcmp(tamzo_vast_status_name(TAMZO_VAST_NO_MEMORY), "no memory") == 0);
  EXPECT(strcmp(tamzo_vast_status_name(99), "") == 0);
}

static void testErrors(void) {
  EXPECT(is(tamzo_vast_error_name(TAMZO_VAST_NOT_XML), "not XML"));
  EXPECT(holds(tamzo_vast_error_cause(TAMZO_VAST_NO_AD), "no Ad"));
  EXPECT(isNil(tamzo_vast_error_name(7)));
  EXPECT(isNil(tamzo_vast_error_cause(7)));
  EXPECT(tamzo_vast_error_count() == 10);
  EXPECT(tamzo_vast_error_code_at(0) == TAMZO_VAST_SUCCESS);
  EXPECT(tamzo_vast_error_code_at(9) == TAMZO_VAST_NO_USABLE_LINEAR);
  EXPECT(tamzo_vast_error_code_at(10) == -1);
}

static void testTrackers(const tamzo_vast_ad* ad) {
  const tamzo_vast_trackers* trackers = tamzo_vast_ad_trackers(ad);
  bool hasProgress = false;
  for (size_t at = 0; at < trackers->count; ++at) {
    const tamzo_vast_event* event = trackers->items[at];
    if (is(event->name, "progress")) {
      hasProgress = true;
      EXPECT(event->count == 1);
      EXPECT(is(event->items[0]->url, "https://t.example/p"));
      EXPECT(is(event->items[0]->offset, "10"));
    }
  }
  EXPECT(hasProgress);
}

static void testCompanions(const tamzo_vast_ad* ad) {
  const tamzo_vast_companion_ad* companions = tamzo_vast_ad_most_suitable_companion(ad);
  EXPECT(companions == tamzo_vast_ad_companionAds(ad)->items[0]);
  EXPECT(companions->count == 1);
  const tamzo_vast_companion* companion = companions->items[0];
  EXPECT(is(companion->id, "c"));
  EXPECT(companion->width.is_present && companion->width.value == 300);
  EXPECT(isNil(companion->ad_slot_id));
  EXPECT(is(companion->static_resources->items[0]->type, "image/png"));
  EXPECT(is(companion->iframe_resources->items[0], "https://c.example/f"));
  EXPECT(companion->html_resources->count == 0);
  const tamzo_vast_companion* fitting = NULL;
  EXPECT(tamzo_vast_ad_companion_for_slot(ad, companions, 320, 250, &fitting) == TAMZO_VAST_OK);
  EXPECT(fitting == companion);
  EXPECT(tamzo_vast_ad_companion_for_slot(ad, companions, 10, 10, &fitting) == TAMZO_VAST_OK);
  EXPECT(fitting == NULL);
}

static void testVerifications(const tamzo_vast_ad* ad) {
  const tamzo_vast_verifications* all = tamzo_vast_ad_measurementProviderList(ad);
  EXPECT(all != NULL && all->count == 1);
  if (all == NULL || all->count == 0) {
    return;
  }
  const tamzo_vast_verification* one = all->items[0];
  EXPECT(is(one->vendor, "meter.example"));
  EXPECT(is(one->javascript_resources->items[0]->api_framework, "omid"));
  EXPECT(one->javascript_resources->items[0]->browser_optional.value);
  EXPECT(one->executable_resources->count == 0);
  EXPECT(is(one->verification_parameters, "{}"));
  EXPECT(is(one->trackers->items[0]->name, "verificationNotExecuted"));
}

/* The text that a call gives the caller. */
#define EXPECT_TEXT(call, string, expected)               \
  do {                                                    \
    EXPECT((call) == TAMZO_VAST_OK);                      \
    EXPECT(is(tamzo_vast_string_text(string), expected)); \
    tamzo_vast_string_release(string);                    \
    (string) = NULL;                                      \
  } while (0)

static void testElements(tamzo_vast_ad* ad) {
  const tamzo_vast_extra_actions* actions = tamzo_vast_ad_extraActions(ad);
  EXPECT(actions->count == 1 && isNil(actions->json));
  const tamzo_vast_element* icon = actions->items[0]->icon;
  EXPECT(isNil(actions->items[0]->json));
  tamzo_vast_string* text = NULL;
  EXPECT_TEXT(tamzo_vast_element_name(icon, &text), text, "Icon");
  EXPECT_TEXT(tamzo_vast_element_text(icon, &text), text, "https://choices.example/");
  EXPECT_TEXT(tamzo_vast_element_attribute(icon, tamzo_vast_text_of("program"), &text), text,
              "Choices");
  EXPECT(tamzo_vast_element_attribute(icon, tamzo_vast_text_of("none"), &text) == TAMZO_VAST_OK);
  EXPECT(text == NULL);
  EXPECT(tamzo_vast_element_xml(icon, &text) == TAMZO_VAST_OK);
  EXPECT(holds(tamzo_vast_string_text(text), "<IconClickThrough>https://choices.example/</"));
  tamzo_vast_string_release(text);

  tamzo_vast_attributes* attributes = NULL;
  EXPECT(tamzo_vast_element_attributes(icon, &attributes) == TAMZO_VAST_OK);
  EXPECT(attributes->count == 2);
  EXPECT(is(attributes->items[0]->name, "program") && is(attributes->items[0]->value, "Choices"));
  EXPECT(is(attributes->items[1]->name, "x:y") && is(attributes->items[1]->value, "1"));
  tamzo_vast_attributes_release(attributes);

  tamzo_vast_element* clicks = NULL;
  tamzo_vast_element* through = NULL;
  tamzo_vast_element* none = NULL;
  EXPECT(tamzo_vast_element_first_child(icon, &clicks) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_element_first_child(clicks, &through) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_element_next_sibling(through, &none) == TAMZO_VAST_OK && none == NULL);
  EXPECT_TEXT(tamzo_vast_element_name(through, &text), text, "IconClickThrough");

  EXPECT(tamzo_vast_ad_iconMap(ad) == NULL);
  EXPECT(tamzo_vast_ad_get_image_ad(ad, clicks) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_ad_iconMap(ad)->count == 0);
  tamzo_vast_element_release(clicks);
  tamzo_vast_ad_release(ad);

  /* An element of the caller's outlives the record. */
  EXPECT_TEXT(tamzo_vast_element_text(through, &text), text, "https://choices.example/");
  tamzo_vast_element_release(through);
}

static void testRecord(void) {
  tamzo_vast_ad* ad = parse(kInLine, NULL);
  EXPECT(tamzo_vast_ad_errorCode(ad) == TAMZO_VAST_SUCCESS);
  EXPECT(is(tamzo_vast_ad_adID(ad), "a1"));
  EXPECT(isNil(tamzo_vast_ad_clickThrough(ad)));
  EXPECT(is(tamzo_vast_ad_vpaidVastVersion(ad), "4.2"));
  EXPECT(tamzo_vast_ad_skipOffsetMillis(ad) == 5000.0);
  EXPECT(tamzo_vast_ad_duration(ad)->seconds == 30);
  EXPECT(is(tamzo_vast_ad_categoryArray(ad)->items[0], "IAB8"));
  EXPECT(tamzo_vast_ad_cards(ad) == NULL);
  EXPECT(!tamzo_vast_ad_jsVPaidPresent(ad));
  const tamzo_vast_media_file* file = tamzo_vast_ad_mediaFiles(ad)->items[0];
  EXPECT(is(file->url, "https://c.example/a.mp4"));
  EXPECT(is(file->delivery, ""));
  EXPECT(isNil(file->codec));
  EXPECT(file->width.is_present && file->width.value == 640 && !file->height.is_present);
  testTrackers(ad);
  testCompanions(ad);
  testVerifications(ad);
  tamzo_vast_string* json = NULL;
  EXPECT(tamzo_vast_ad_as_json(ad, false, &json) == TAMZO_VAST_OK);
  EXPECT(holds(tamzo_vast_string_text(json), "\"adID\":\"a1\""));
  tamzo_vast_string_release(json);
  tamzo_vast_string* page = NULL;
  EXPECT(tamzo_vast_ad_get_page(ad, NULL, &page) == TAMZO_VAST_OK);
  EXPECT(holds(tamzo_vast_ad_vPaidHTML(ad), "<html"));
  tamzo_vast_string_release(page);
  testElements(ad);
}

static void testBadInput(void) {
  tamzo_vast_ad* ad = NULL;
  EXPECT(tamzo_vast_parse(NULL, 0, NULL, &ad) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_ad_errorCode(ad) == TAMZO_VAST_EXCEPTION);
  tamzo_vast_ad_release(ad);
  EXPECT(tamzo_vast_parse(NULL, 1, NULL, &ad) == TAMZO_VAST_INVALID_ARGUMENT && ad == NULL);
  EXPECT(tamzo_vast_parse("<VAST/>", 7, NULL, NULL) == TAMZO_VAST_INVALID_ARGUMENT);
  ad = parse("\xFF\xED\xA0\x80<VAST", NULL);
  EXPECT(tamzo_vast_ad_errorCode(ad) == TAMZO_VAST_NOT_XML);
  tamzo_vast_ad_release(ad);
}

/* As -1 becomes, and what no object can be. */
static void testLengthsThatNothingHas(void) {
  static const size_t kLengths[] = {SIZE_MAX, SIZE_MAX / 2 + 1};
  tamzo_vast_options* options = NULL;
  tamzo_vast_ad* icons = parse(kInLine, NULL);
  const tamzo_vast_element* icon = tamzo_vast_ad_extraActions(icons)->items[0]->icon;
  EXPECT(tamzo_vast_options_create(&options) == TAMZO_VAST_OK);
  for (size_t at = 0; at < 2; ++at) {
    const tamzo_vast_text text = {"a", kLengths[at]};
    const tamzo_vast_text good = {"a", 1};
    tamzo_vast_ad* ad = icons;
    tamzo_vast_string* value = NULL;
    tamzo_vast_element* node = NULL;
    EXPECT(tamzo_vast_parse("a", kLengths[at], NULL, &ad) == TAMZO_VAST_INVALID_ARGUMENT);
    EXPECT(ad == NULL);
    EXPECT(tamzo_vast_options_set_user_agent(options, text) == TAMZO_VAST_INVALID_ARGUMENT);
    EXPECT(tamzo_vast_options_set_proxy(options, text) == TAMZO_VAST_INVALID_ARGUMENT);
    EXPECT(tamzo_vast_options_set_ca_file(options, text) == TAMZO_VAST_INVALID_ARGUMENT);
    EXPECT(tamzo_vast_options_add_header(options, text, good, good) == TAMZO_VAST_INVALID_ARGUMENT);
    EXPECT(tamzo_vast_options_add_header(options, good, text, good) == TAMZO_VAST_INVALID_ARGUMENT);
    EXPECT(tamzo_vast_options_add_header(options, good, good, text) == TAMZO_VAST_INVALID_ARGUMENT);
    EXPECT(tamzo_vast_element_attribute(icon, text, &value) == TAMZO_VAST_INVALID_ARGUMENT);
    EXPECT(tamzo_vast_element_at_path(icon, text, &node) == TAMZO_VAST_INVALID_ARGUMENT);
  }
  tamzo_vast_options_release(options);
  tamzo_vast_ad_release(icons);
}

static void testNulls(void) {
  tamzo_vast_string* string = (tamzo_vast_string*)&failures;
  tamzo_vast_element* element = (tamzo_vast_element*)&failures;
  tamzo_vast_attributes some = {0, NULL};
  tamzo_vast_attributes* attributes = &some;
  const tamzo_vast_companion* companion = NULL;
  EXPECT(isNil(tamzo_vast_text_of(NULL)));
  EXPECT(isNil(tamzo_vast_string_text(NULL)));
  EXPECT(isNil(tamzo_vast_ad_adID(NULL)));
  EXPECT(tamzo_vast_ad_errorCode(NULL) == 0);
  EXPECT(tamzo_vast_ad_mediaFiles(NULL) == NULL);
  EXPECT(tamzo_vast_ad_most_suitable_companion(NULL) == NULL);
  EXPECT(tamzo_vast_ad_companion_for_slot(NULL, NULL, 1, 1, &companion) ==
         TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(tamzo_vast_ad_get_image_ad(NULL, NULL) == TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(tamzo_vast_ad_as_json(NULL, true, &string) == TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(string == NULL);
  EXPECT(tamzo_vast_ad_get_page(NULL, NULL, NULL) == TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(tamzo_vast_element_xml(NULL, &string) == TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(tamzo_vast_element_attribute(NULL, tamzo_vast_text_of(NULL), NULL) ==
         TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(tamzo_vast_element_first_child(NULL, &element) == TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(element == NULL);
  EXPECT(tamzo_vast_element_attributes(NULL, &attributes) == TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(attributes == NULL);
  EXPECT(tamzo_vast_options_create(NULL) == TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(tamzo_vast_cancellation_create(NULL) == TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(tamzo_vast_options_set_deadline(NULL, 1) == TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(tamzo_vast_options_set_cookies(NULL, true) == TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(tamzo_vast_reply_set_bytes(NULL, "a", 1) == TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(isNil(tamzo_vast_request_url(NULL)));
  EXPECT(!tamzo_vast_cancellation_is_cancelled(NULL));
  tamzo_vast_cancellation_cancel(NULL);
  tamzo_vast_cancellation_release(NULL);
  tamzo_vast_options_release(NULL);
  tamzo_vast_string_release(NULL);
  tamzo_vast_attributes_release(NULL);
  tamzo_vast_element_release(NULL);
  tamzo_vast_ad_release(NULL);
}

/* A host's reader, and what it is called with. */
struct Reader {
  int reads;
  int releases;
  int hops;
  bool fails;
};

static bool readUrl(void* user, const tamzo_vast_request* request, tamzo_vast_reply* reply) {
  struct Reader* reader = user;
  ++reader->reads;
  EXPECT(is(tamzo_vast_request_url(request), "http://ads.example/2"));
  EXPECT(tamzo_vast_request_hop(request) == 2);
  EXPECT(tamzo_vast_request_seconds_left(request) <= 15.0);
  EXPECT(tamzo_vast_request_max_bytes(request) > 0);
  EXPECT(!tamzo_vast_request_is_cancelled(request));
  if (reader->fails) return false;
  /* A reader may parse itself. */
  tamzo_vast_ad* inner = parse(kInLine, NULL);
  EXPECT(tamzo_vast_ad_errorCode(inner) == TAMZO_VAST_SUCCESS);
  tamzo_vast_ad_release(inner);
  EXPECT(tamzo_vast_reply_set_http_status(reply, 200) == TAMZO_VAST_OK);
  return tamzo_vast_reply_set_bytes(reply, kInLine, sizeof(kInLine) - 1) == TAMZO_VAST_OK;
}

static void countHop(void* user, const tamzo_vast_hop* hop) {
  struct Reader* reader = user;
  EXPECT(hop->number == ++reader->hops);
  EXPECT(hop->number == 1 ? isNil(hop->tag) : is(hop->tag, "http://ads.example/2"));
  EXPECT(hop->number == 1 || reader->fails || hop->http_status == 200);
  EXPECT(hop->number == 1 || reader->fails == !isNil(hop->failure));
}

static void release(void* user) { ++((struct Reader*)user)->releases; }

static bool blockAll(void* user, tamzo_vast_reply* reply) {
  (void)user;
  return tamzo_vast_reply_set_bytes(reply, "IAB8", 4) == TAMZO_VAST_OK;
}

static bool refuse(void* user, tamzo_vast_reply* reply) {
  (void)user;
  (void)reply;
  return false;
}

static int32_t codeOf(const char* response, const tamzo_vast_options* options) {
  tamzo_vast_ad* ad = parse(response, options);
  const int32_t code = tamzo_vast_ad_errorCode(ad);
  tamzo_vast_ad_release(ad);
  return code;
}

static void testHooks(void) {
  struct Reader reader = {0, 0, 0, false};
  tamzo_vast_options* options = NULL;
  EXPECT(tamzo_vast_options_create(&options) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_options_set_reader(options, readUrl, &reader, release) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_options_set_observer(options, countHop, &reader, NULL) == TAMZO_VAST_OK);
  EXPECT(codeOf(kWrapper, options) == TAMZO_VAST_SUCCESS);
  EXPECT(reader.reads == 1 && reader.hops == 2);
  reader.fails = true;
  reader.hops = 0;
  EXPECT(codeOf(kWrapper, options) == TAMZO_VAST_EMPTY_CONTENT);
  EXPECT(reader.hops == 2 && reader.releases == 0);

  EXPECT(tamzo_vast_options_set_observer(options, NULL, NULL, NULL) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_options_set_blocked_categories(options, blockAll, &reader, release) ==
         TAMZO_VAST_OK);
  EXPECT(codeOf(kInLine, options) == TAMZO_VAST_CATEGORY_BLOCKED);
  EXPECT(tamzo_vast_options_set_blocked_categories(options, refuse, NULL, NULL) == TAMZO_VAST_OK);
  EXPECT(reader.releases == 1);
  EXPECT(codeOf(kInLine, options) == TAMZO_VAST_EXCEPTION);
  tamzo_vast_options_release(options);
  EXPECT(reader.releases == 2);

  /* What the setter does not take is released at once. */
  EXPECT(tamzo_vast_options_set_reader(NULL, readUrl, &reader, release) ==
         TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(reader.releases == 3);
}

static void testOptions(void) {
  tamzo_vast_options* options = NULL;
  tamzo_vast_cancellation* cancellation = NULL;
  const tamzo_vast_text nil = {NULL, 0};
  EXPECT(tamzo_vast_options_create(&options) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_options_set_fetch_seconds(options, 1, 2) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_options_set_max_bytes(options, 1000, 2000) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_options_set_user_agent(options, tamzo_vast_text_of("app/1")) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_options_add_header(options, tamzo_vast_text_of("X-App"),
                                       tamzo_vast_text_of("1"), nil) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_options_add_header(options, tamzo_vast_text_of("X-App"),
                                       tamzo_vast_text_of("1\r\nX: 2"),
                                       nil) == TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(tamzo_vast_options_set_public_addresses_only(options, true) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_options_set_https_stays_https(options, true) == TAMZO_VAST_OK);

  EXPECT(tamzo_vast_cancellation_create(&cancellation) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_options_set_cancellation(options, cancellation) == TAMZO_VAST_OK);
  tamzo_vast_cancellation_cancel(cancellation);
  EXPECT(tamzo_vast_cancellation_is_cancelled(cancellation));
  tamzo_vast_cancellation_release(cancellation);
  EXPECT(codeOf(kWrapper, options) == TAMZO_VAST_EMPTY_CONTENT);
  EXPECT(codeOf(kInLine, options) == TAMZO_VAST_SUCCESS);
  tamzo_vast_options_release(options);
}

int main(void) {
  testVersions();
  testErrors();
  testRecord();
  testBadInput();
  testLengthsThatNothingHas();
  testNulls();
  testHooks();
  testOptions();
  return outcome();
}
