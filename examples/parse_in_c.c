/* A host in C: parses a response with a reader of its own and prints what to play and fire. */

#include <stdio.h>
#include <stdlib.h>
#include <string.h>

#include "tamzo/tamzo_vast.h"

/* Answers with what the app's own HTTP client brings; here, with the file that `user` names. */
static bool read_url(void* user, const tamzo_vast_request* request, tamzo_vast_reply* reply) {
  char bytes[16384];
  FILE* file = fopen(user, "rb");
  (void)request; /* tamzo_vast_request_url() has the URL */
  if (file == NULL) return false;
  const size_t length = fread(bytes, 1, sizeof(bytes), file);
  fclose(file);
  if (length == sizeof(bytes)) return false; /* longer than what this example takes */
  return tamzo_vast_reply_set_bytes(reply, bytes, length) == TAMZO_VAST_OK;
}

static void print(const char* what, tamzo_vast_text text) {
  printf("%s: %.*s\n", what, (int)text.size, text.data == NULL ? "" : text.data);
}

static int show(const tamzo_vast_ad* ad) {
  const int32_t code = tamzo_vast_ad_errorCode(ad);
  if (code != TAMZO_VAST_SUCCESS) {
    print("no ad", tamzo_vast_error_cause(code));
    return EXIT_FAILURE;
  }
  const tamzo_vast_media_files* files = tamzo_vast_ad_mediaFiles(ad);
  for (size_t at = 0; files != NULL && at < files->count; ++at) {
    print("play", files->items[at]->url);
  }
  const tamzo_vast_trackers* trackers = tamzo_vast_ad_trackers(ad);
  for (size_t at = 0; trackers != NULL && at < trackers->count; ++at) {
    print("event", trackers->items[at]->name);
  }
  return EXIT_SUCCESS;
}

int main(int argc, char** argv) {
  const char* url = "https://ads.example/vast";
  char* file = argc > 1 ? argv[1] : "response.xml";
  int result = EXIT_FAILURE;
  tamzo_vast_options* options = NULL;
  tamzo_vast_ad* ad = NULL;
  if (tamzo_vast_options_create(&options) == TAMZO_VAST_OK &&
      tamzo_vast_options_set_deadline(options, 10) == TAMZO_VAST_OK &&
      tamzo_vast_options_set_reader(options, read_url, file, NULL) == TAMZO_VAST_OK &&
      tamzo_vast_parse(url, strlen(url), options, &ad) == TAMZO_VAST_OK) {
    result = show(ad);
  }
  tamzo_vast_ad_release(ad);
  tamzo_vast_options_release(options);
  return result;
}
