/* The explanation from a C11 program. */

#include <string.h>

#include "../support/ExpectInC.h"
#include "tamzo/tamzo_vast_explain.h"

static bool holds(const tamzo_vast_string* json, const char* part) {
  /* A NUL follows the text. */
  const tamzo_vast_text text = tamzo_vast_string_text(json);
  return text.data != NULL && strstr(text.data, part) != NULL;
}

static void count_hop(void* user, const tamzo_vast_hop* hop) {
  (void)hop;
  ++*(int*)user;
}

static void test_explanation(void) {
  static const char kResponse[] = "<VAST version='4.0'></VAST>";
  tamzo_vast_string* json = NULL;
  EXPECT(tamzo_vast_explain(kResponse, strlen(kResponse), NULL, false, &json) == TAMZO_VAST_OK);
  EXPECT(holds(json, "\"record\":"));
  EXPECT(holds(json, "\"explanation\":"));
  EXPECT(holds(json, "\"verdict\":\"failed\""));
  tamzo_vast_string_release(json);
  EXPECT(tamzo_vast_explain(kResponse, strlen(kResponse), NULL, true, &json) == TAMZO_VAST_OK);
  EXPECT(holds(json, "\n"));
  tamzo_vast_string_release(json);
}

static void test_observer(void) {
  tamzo_vast_options* options = NULL;
  tamzo_vast_string* json = NULL;
  int hops = 0;
  EXPECT(tamzo_vast_options_create(&options) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_options_set_observer(options, count_hop, &hops, NULL) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_explain("<VAST/>", 7, options, false, &json) == TAMZO_VAST_OK);
  EXPECT(hops == 1);
  tamzo_vast_string_release(json);
  tamzo_vast_options_release(options);
}

static void test_bad_input(void) {
  tamzo_vast_string* json = NULL;
  EXPECT(tamzo_vast_explain(NULL, 0, NULL, false, &json) == TAMZO_VAST_OK);
  EXPECT(holds(json, "\"errorCode\":100"));
  tamzo_vast_string_release(json);
  EXPECT(tamzo_vast_explain(NULL, 1, NULL, false, &json) == TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(json == NULL);
  EXPECT(tamzo_vast_explain("", SIZE_MAX, NULL, false, &json) == TAMZO_VAST_INVALID_ARGUMENT);
  EXPECT(tamzo_vast_explain("<VAST/>", 7, NULL, false, NULL) == TAMZO_VAST_INVALID_ARGUMENT);
}

static bool refuse(void* user, tamzo_vast_reply* reply) {
  (void)user;
  (void)reply;
  return false;
}

/* The parse takes it for a failure, and so the explanation does. */
static void test_hook_that_fails(void) {
  static const char kResponse[] =
      "<VAST version='4.0'><Ad><InLine><Category>IAB8</Category></InLine></Ad></VAST>";
  tamzo_vast_options* options = NULL;
  tamzo_vast_string* json = NULL;
  EXPECT(tamzo_vast_options_create(&options) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_options_set_blocked_categories(options, refuse, NULL, NULL) == TAMZO_VAST_OK);
  EXPECT(tamzo_vast_explain(kResponse, strlen(kResponse), options, false, &json) == TAMZO_VAST_OK);
  EXPECT(holds(json, "\"errorCode\":100"));
  tamzo_vast_string_release(json);
  tamzo_vast_options_release(options);
}

int main(void) {
  test_explanation();
  test_observer();
  test_hook_that_fails();
  test_bad_input();
  return outcome();
}
