/*
 * The VAST parser for C, and for languages that call C. Compiles as C11 and as C++.
 *
 *     tamzo_vast_ad* ad = NULL;
 *     if (tamzo_vast_parse(bytes, length, NULL, &ad) != TAMZO_VAST_OK) return;
 *     if (tamzo_vast_ad_errorCode(ad) == TAMZO_VAST_SUCCESS) play(tamzo_vast_ad_mediaFiles(ad));
 *     tamzo_vast_ad_release(ad);
 *
 * Texts are UTF-8, a pointer and a length, and no NUL need follow. Nil has a null pointer: it was
 * never written. An empty text has another pointer and length 0. Lists are null for nil, and have
 * count 0 when empty. What a response holds that is no UTF-8 is handed on as it is.
 *
 * Ownership. What a function gives through a pointer to a pointer that is not const is the
 * caller's, who hands it to the release function of its type, once; null may be released.
 * Everything else is borrowed: what belongs to a record lives until that is released, or changed by
 * a function that says so. What is given to a function is the caller's own again when it returns.
 *
 * Threads. Every function may be called from any thread. Several threads may read one record or
 * element at once, while none changes or releases it; the same goes for options. A cancellation may
 * be used from several threads at any time.
 *
 * Failing. No function throws, and no exception of a hook passes one. A null where an object is
 * asked for gives nil, 0, false or null, and TAMZO_VAST_INVALID_ARGUMENT from a function that
 * returns a status; nothing is written through the other pointers then, save that a pointer for a
 * result is set to null. A length that no object can have, such as -1, is as a null. In a debug
 * build of the library an object that is used after its release ends the program, with a line on
 * standard error that names the function.
 *
 * Versions. The caller never allocates one of the structs below that the library fills, nor depends
 * on their size: a later version may add members at their ends. TAMZO_VAST_ABI grows when a program
 * must be compiled anew.
 */
#ifndef TAMZO_VAST_H
#define TAMZO_VAST_H

#include <stdbool.h>
#include <stddef.h>
#include <stdint.h>

#if defined(TAMZO_SHARED) && !defined(_WIN32)
#define TAMZO_VAST_API __attribute__((visibility("default")))
#else
#define TAMZO_VAST_API
#endif

#ifdef __cplusplus
extern "C" {
#endif

/** The version of this interface. */
#define TAMZO_VAST_ABI 1

/** TAMZO_VAST_ABI of the library that runs. */
TAMZO_VAST_API uint32_t tamzo_vast_abi(void);
/** The library's version, "MAJOR.MINOR.PATCH", with a NUL behind it. Lives for good. */
TAMZO_VAST_API const char* tamzo_vast_version(void);

/* ---- Texts and statuses ------------------------------------------------------------------- */

/** A text: nil when data is null. */
typedef struct tamzo_vast_text {
  const char* data; /**< the first byte; not null for an empty text */
  size_t size;      /**< bytes */
} tamzo_vast_text;

/** The text up to a NUL; nil for null. Borrows the characters. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_text_of(const char* characters);

/** What came of a call. */
typedef enum tamzo_vast_status {
  TAMZO_VAST_OK = 0,               /**< it did what it says */
  TAMZO_VAST_INVALID_ARGUMENT = 1, /**< a null, or a value that cannot be used */
  TAMZO_VAST_NO_MEMORY = 2,        /**< nothing was made or changed */
  TAMZO_VAST_HOOK_FAILED = 3,      /**< a hook threw what the parser does not take for a failure */
  TAMZO_VAST_NO_PAGE = 4           /**< tamzo_vast_ad_get_page() says when */
} tamzo_vast_status;

/** The status in words, with a NUL behind them; "" for a number that is none. Lives for good. */
TAMZO_VAST_API const char* tamzo_vast_status_name(int32_t status);

/** A text that belongs to the caller. */
typedef struct tamzo_vast_string tamzo_vast_string;

/** Its characters, which live until it is released; a NUL follows them. Nil for null. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_string_text(const tamzo_vast_string* string);
/** Releases it. */
TAMZO_VAST_API void tamzo_vast_string_release(tamzo_vast_string* string);

/* ---- Error codes of a record -------------------------------------------------------------- */

/** The codes that a parse can end with, which are IAB VAST error codes. */
enum {
  TAMZO_VAST_SUCCESS = 0,
  TAMZO_VAST_EXCEPTION = 100,
  TAMZO_VAST_NOT_XML = 101,
  TAMZO_VAST_BAD_VERSION = 102,
  TAMZO_VAST_CATEGORY_BLOCKED = 205,
  TAMZO_VAST_NO_WRAPPER_OR_INLINE = 300,
  TAMZO_VAST_EMPTY_CONTENT = 301,
  TAMZO_VAST_WRAPPER_LIMIT = 302,
  TAMZO_VAST_NO_AD = 303,
  TAMZO_VAST_NO_USABLE_LINEAR = 405
};

/** A few words, such as "not XML"; nil for a code that no parse ends with. Lives for good. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_error_name(int32_t code);
/** What happened, in a sentence without a full stop; nil as above. Lives for good. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_error_cause(int32_t code);
/** How many codes there are. */
TAMZO_VAST_API size_t tamzo_vast_error_count(void);
/** The codes in ascending order; -1 past the end. */
TAMZO_VAST_API int32_t tamzo_vast_error_code_at(size_t index);

/* ---- Cancellation ------------------------------------------------------------------------- */

/** Stops the parses that it was given to. It stays cancelled for good. */
typedef struct tamzo_vast_cancellation tamzo_vast_cancellation;

/** A new one, for the caller to release. */
TAMZO_VAST_API tamzo_vast_status
tamzo_vast_cancellation_create(tamzo_vast_cancellation** cancellation);
/** Cancels: fetches under way fail, and those after them, so that the ads end with error 301. */
TAMZO_VAST_API void tamzo_vast_cancellation_cancel(const tamzo_vast_cancellation* cancellation);
/** True once it is cancelled. */
TAMZO_VAST_API bool tamzo_vast_cancellation_is_cancelled(
    const tamzo_vast_cancellation* cancellation);
/** Releases it; options and parses that it was given to keep their share. */
TAMZO_VAST_API void tamzo_vast_cancellation_release(tamzo_vast_cancellation* cancellation);

/* ---- Options ------------------------------------------------------------------------------ */

/** What a parse is given beside its response. One may serve many parses, also at once. */
typedef struct tamzo_vast_options tamzo_vast_options;

/** New options, for the caller to release: every limit and hook has its default. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_create(tamzo_vast_options** options);
/** Releases them, and what their hooks were given; not while a parse uses them. */
TAMZO_VAST_API void tamzo_vast_options_release(tamzo_vast_options* options);

/** Longest time for all fetches of a chain together; infinity, the default, is none. NaN and less
 *  than 0 count as 0. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_set_deadline(tamzo_vast_options* options,
                                                                 double seconds);
/** Shares the cancellation; null takes it away again. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_set_cancellation(
    tamzo_vast_options* options, const tamzo_vast_cancellation* cancellation);
/** Seconds until a fetch has its connection, and for the whole of a fetch; 5 and 15 by default.
 *  NaN, 0 and less leave no time, infinity is no limit. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_set_fetch_seconds(tamzo_vast_options* options,
                                                                      double connect, double total);
/** Most bytes of one body and of all bodies of a chain, after decompression; 16 and 32 MiB by
 *  default. Less for the chain than for a body counts as that of a body. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_set_max_bytes(tamzo_vast_options* options,
                                                                  size_t body, size_t chain);
/** Sent as User-Agent; nil or empty, the default: none. Copied. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_set_user_agent(tamzo_vast_options* options,
                                                                   tamzo_vast_text user_agent);
/** A header for every request, or for those to `host` alone unless that is nil. Copied. Refused
 *  where HTTP would not take it. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_add_header(tamzo_vast_options* options,
                                                               tamzo_vast_text name,
                                                               tamzo_vast_text value,
                                                               tamzo_vast_text host);
/** A proxy's URL; empty: none; nil, the default: what the environment says. Copied. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_set_proxy(tamzo_vast_options* options,
                                                              tamzo_vast_text proxy);
/** A file of certificates in PEM to be trusted in place of the system's; nil or empty: those.
 * Copied. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_set_ca_file(tamzo_vast_options* options,
                                                                tamzo_vast_text path);
/** Refuses addresses that are not of the public Internet. Off by default. */
TAMZO_VAST_API tamzo_vast_status
tamzo_vast_options_set_public_addresses_only(tamzo_vast_options* options, bool is_on);
/** Refuses a redirect from https to http. Off by default. */
TAMZO_VAST_API tamzo_vast_status
tamzo_vast_options_set_https_stays_https(tamzo_vast_options* options, bool is_on);
/** Keeps cookies within one chain. Off by default. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_set_cookies(tamzo_vast_options* options,
                                                                bool is_on);

/* Hooks. Each takes a function, a pointer that is handed to it, and a function that releases this
 * pointer, which may be null. The pointer is released once: when the options are released, when
 * another takes its place, or at once when the setter fails. A null function brings the default
 * back, and the pointer is released at once. Hooks are called on the thread that parses, and on
 * several threads at once where the options serve several parses. They may parse themselves. */

/** Releases the pointer of a hook. Must not throw. */
typedef void (*tamzo_vast_release_function)(void* user);

/** What a hook answers with, valid during its call only. */
typedef struct tamzo_vast_reply tamzo_vast_reply;
/** Answers with those bytes, which are copied; a nil text with length 0 is empty. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_reply_set_bytes(tamzo_vast_reply* reply,
                                                            const void* bytes, size_t length);
/** For a reader: HTTP's status, for whoever is told of the fetch; 0 unless it is set. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_reply_set_http_status(tamzo_vast_reply* reply,
                                                                  int32_t status);

/** What a reader is asked for, valid during its call only. */
typedef struct tamzo_vast_request tamzo_vast_request;
/** The URL, escaped. Nil for null. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_request_url(const tamzo_vast_request* request);
/** Which document of the chain, 1 for the first. */
TAMZO_VAST_API int32_t tamzo_vast_request_hop(const tamzo_vast_request* request);
/** Seconds that are left for this fetch; infinity without a limit. */
TAMZO_VAST_API double tamzo_vast_request_seconds_left(const tamzo_vast_request* request);
/** Most bytes that the body may have. */
TAMZO_VAST_API size_t tamzo_vast_request_max_bytes(const tamzo_vast_request* request);
/** True once the parse is cancelled. */
TAMZO_VAST_API bool tamzo_vast_request_is_cancelled(const tamzo_vast_request* request);

/** Reads a URL: answers with the body and true. False, or no answer, is a failed read: error 301.
 */
typedef bool (*tamzo_vast_read_function)(void* user, const tamzo_vast_request* request,
                                         tamzo_vast_reply* reply);
/** Reads URLs in place of libcurl. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_set_reader(tamzo_vast_options* options,
                                                               tamzo_vast_read_function read,
                                                               void* user,
                                                               tamzo_vast_release_function release);

/** Answers with a text; without an answer it is nil. False ends the ad with error 100, or leaves it
 *  without a page. */
typedef bool (*tamzo_vast_text_function)(void* user, tamzo_vast_reply* reply);
/** Category codes that the app blocks, separated by ",". Nil, the default, blocks nothing. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_set_blocked_categories(
    tamzo_vast_options* options, tamzo_vast_text_function function, void* user,
    tamzo_vast_release_function release);
/** What [TAMZO_SESSION_ID] stands for in the page. */
TAMZO_VAST_API tamzo_vast_status
tamzo_vast_options_set_session_id(tamzo_vast_options* options, tamzo_vast_text_function function,
                                  void* user, tamzo_vast_release_function release);
/** The template of the page; nil: there is none. */
TAMZO_VAST_API tamzo_vast_status
tamzo_vast_options_set_page_template(tamzo_vast_options* options, tamzo_vast_text_function function,
                                     void* user, tamzo_vast_release_function release);

/** Answers with the text, its macros filled. False ends the ad with error 100. */
typedef bool (*tamzo_vast_macro_function)(void* user, tamzo_vast_text text,
                                          tamzo_vast_reply* reply);
/** Fills the macros of tag URLs. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_set_macros(tamzo_vast_options* options,
                                                               tamzo_vast_macro_function function,
                                                               void* user,
                                                               tamzo_vast_release_function release);

/** Milliseconds since the beginning of 1970, UTC. A moment that the system's clock cannot hold is
 *  taken for the nearest that it can. */
typedef int64_t (*tamzo_vast_clock_function)(void* user);
/** The moment for [TIMESTAMP]. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_set_clock(tamzo_vast_options* options,
                                                              tamzo_vast_clock_function function,
                                                              void* user,
                                                              tamzo_vast_release_function release);
/** A number from 0 to bound - 1. */
typedef uint32_t (*tamzo_vast_random_function)(void* user, uint32_t bound);
/** The number for [CACHEBUSTING]. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_set_random(tamzo_vast_options* options,
                                                               tamzo_vast_random_function function,
                                                               void* user,
                                                               tamzo_vast_release_function release);

/** Takes one line of the log, without a line break. The line lives during the call. */
typedef void (*tamzo_vast_log_function)(void* user, tamzo_vast_text line);
/** Where the log of these parses goes; the system's by default. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_options_set_log(tamzo_vast_options* options,
                                                            tamzo_vast_log_function function,
                                                            void* user,
                                                            tamzo_vast_release_function release);
/** Turns the log on or off for the whole process. Off by default. */
TAMZO_VAST_API void tamzo_vast_set_debug_enabled(bool is_on);

/** One document of a chain. Lives during the call. */
typedef struct tamzo_vast_hop {
  int32_t number;           /**< 1 for the first */
  tamzo_vast_text tag;      /**< as in the Wrapper before, macros unfilled; nil for hop 1 */
  tamzo_vast_text url;      /**< the tag filled; nil where nothing was fetched */
  tamzo_vast_text document; /**< as received; nil where none came */
  tamzo_vast_text failure;  /**< why the fetch failed, such as "timeout"; nil where it did not */
  int32_t http_status;      /**< 0 without an answer */
  double milliseconds;      /**< of the whole fetch; 0 where nothing was fetched */
  int32_t error_code;       /**< of the record after this hop */
} tamzo_vast_hop;
/** Told of each hop, in order, after it was processed or has failed. */
typedef void (*tamzo_vast_hop_function)(void* user, const tamzo_vast_hop* hop);
/** Who is told; nobody by default. */
TAMZO_VAST_API tamzo_vast_status
tamzo_vast_options_set_observer(tamzo_vast_options* options, tamzo_vast_hop_function function,
                                void* user, tamzo_vast_release_function release);

/* ---- What a record holds ------------------------------------------------------------------ */

/** A number that an attribute may leave out. */
typedef struct tamzo_vast_integer {
  int32_t value;   /**< 0 when it is absent */
  bool is_present; /**< false when it is absent */
} tamzo_vast_integer;

/** A flag that an attribute may leave out. */
typedef struct tamzo_vast_flag {
  bool value;      /**< false when it is absent */
  bool is_present; /**< false when it is absent */
} tamzo_vast_flag;

/** A list of texts. */
typedef struct tamzo_vast_texts {
  size_t count;                 /**< how many */
  const tamzo_vast_text* items; /**< `count` of them */
} tamzo_vast_texts;

/** How long the Linear is. */
typedef struct tamzo_vast_duration {
  tamzo_vast_text text; /**< as written */
  int64_t seconds;      /**< whole ones */
} tamzo_vast_duration;

/** A tracking URL. */
typedef struct tamzo_vast_tracker {
  tamzo_vast_text url;    /**< untrimmed, macros unfilled */
  tamzo_vast_text offset; /**< whole seconds as decimal text; empty without a time */
} tamzo_vast_tracker;

/** The tracking URLs of one event, in the order met. */
typedef struct tamzo_vast_event {
  tamzo_vast_text name;                   /**< as the document writes it */
  size_t count;                           /**< how many */
  const tamzo_vast_tracker* const* items; /**< one pointer each, `count` of them */
} tamzo_vast_event;

/** Tracking URLs by event name, in the order in which the names were first met. */
typedef struct tamzo_vast_trackers {
  size_t count;                         /**< how many */
  const tamzo_vast_event* const* items; /**< one pointer each, `count` of them */
} tamzo_vast_trackers;

/** A media file. Numbers are pixels, kilobits a second and bytes. */
typedef struct tamzo_vast_media_file {
  tamzo_vast_text url;                   /**< white space trimmed at both ends */
  tamzo_vast_text id;                    /**< nil when absent */
  tamzo_vast_text delivery;              /**< "progressive" or "streaming"; nil when absent */
  tamzo_vast_text type;                  /**< MIME type; nil when absent */
  tamzo_vast_text codec;                 /**< nil when absent */
  tamzo_vast_text api_framework;         /**< nil when absent */
  tamzo_vast_integer width;              /**< pixels */
  tamzo_vast_integer height;             /**< pixels */
  tamzo_vast_integer bitrate;            /**< kilobits a second */
  tamzo_vast_integer min_bitrate;        /**< kilobits a second */
  tamzo_vast_integer max_bitrate;        /**< kilobits a second */
  tamzo_vast_integer file_size;          /**< bytes */
  tamzo_vast_flag scalable;              /**< may be shown at another size */
  tamzo_vast_flag maintain_aspect_ratio; /**< must keep its shape then */
} tamzo_vast_media_file;

/** Media files, in document order. */
typedef struct tamzo_vast_media_files {
  size_t count;                              /**< how many */
  const tamzo_vast_media_file* const* items; /**< one pointer each, `count` of them */
} tamzo_vast_media_files;

/** A resource of a companion or a verification. */
typedef struct tamzo_vast_resource {
  tamzo_vast_text url;              /**< white space trimmed at both ends */
  tamzo_vast_text type;             /**< MIME type; nil for a script */
  tamzo_vast_text api_framework;    /**< of a verification */
  tamzo_vast_flag browser_optional; /**< of a verification's script */
} tamzo_vast_resource;

/** Resources, in document order. */
typedef struct tamzo_vast_resources {
  size_t count;                            /**< how many */
  const tamzo_vast_resource* const* items; /**< one pointer each, `count` of them */
} tamzo_vast_resources;

/** A companion. */
typedef struct tamzo_vast_companion {
  tamzo_vast_text id;                           /**< nil when absent */
  tamzo_vast_integer width;                     /**< pixels */
  tamzo_vast_integer height;                    /**< pixels */
  tamzo_vast_text ad_slot_id;                   /**< nil when absent */
  tamzo_vast_text api_framework;                /**< nil when absent */
  tamzo_vast_text alt_text;                     /**< nil when absent */
  const tamzo_vast_resources* static_resources; /**< images and the like */
  const tamzo_vast_texts* iframe_resources;     /**< URLs */
  const tamzo_vast_texts* html_resources;       /**< markup */
  tamzo_vast_text click_through;                /**< nil when absent */
  const tamzo_vast_texts* click_tracking;       /**< URLs */
  const tamzo_vast_trackers* trackers;          /**< by event */
} tamzo_vast_companion;

/** The companions of one document. */
typedef struct tamzo_vast_companion_ad {
  size_t count;                             /**< how many */
  const tamzo_vast_companion* const* items; /**< one pointer each, `count` of them */
} tamzo_vast_companion_ad;

/** One entry for each document of the chain that has companions. */
typedef struct tamzo_vast_companion_ads {
  size_t count;                                /**< how many */
  const tamzo_vast_companion_ad* const* items; /**< one pointer each, `count` of them */
} tamzo_vast_companion_ads;

/** Who measures, and with what. */
typedef struct tamzo_vast_verification {
  tamzo_vast_text vendor;                           /**< nil when absent */
  const tamzo_vast_resources* javascript_resources; /**< scripts */
  const tamzo_vast_resources* executable_resources; /**< programs of a platform */
  tamzo_vast_text verification_parameters;          /**< untrimmed; nil when absent */
  const tamzo_vast_trackers* trackers;              /**< by event */
} tamzo_vast_verification;

/** Who measures. */
typedef struct tamzo_vast_verifications {
  size_t count;                                /**< how many */
  const tamzo_vast_verification* const* items; /**< one pointer each, `count` of them */
} tamzo_vast_verifications;

/** An element of a document. */
typedef struct tamzo_vast_element tamzo_vast_element;

/** Elements, in document order. */
typedef struct tamzo_vast_elements {
  size_t count;                           /**< how many */
  const tamzo_vast_element* const* items; /**< one pointer each, `count` of them */
} tamzo_vast_elements;

/** An element under a key. */
typedef struct tamzo_vast_named_element {
  tamzo_vast_text name;              /**< the key */
  const tamzo_vast_element* element; /**< never null */
} tamzo_vast_named_element;

/** Elements by key: "iconClickThrough" and "iconClickTracking". */
typedef struct tamzo_vast_named_elements {
  size_t count;                                 /**< how many */
  const tamzo_vast_named_element* const* items; /**< one pointer each, `count` of them */
} tamzo_vast_named_elements;

/** An icon, or a value that the vendor sent. */
typedef struct tamzo_vast_extra_action {
  const tamzo_vast_element* icon; /**< null for a value */
  tamzo_vast_text json;           /**< the value, as JSON; nil for an icon */
} tamzo_vast_extra_action;

/** Icons and the vendor's values; or one value that is no list. */
typedef struct tamzo_vast_extra_actions {
  tamzo_vast_text json;                        /**< the one value; nil for a list */
  size_t count;                                /**< how many */
  const tamzo_vast_extra_action* const* items; /**< null for one value */
} tamzo_vast_extra_actions;

/** What is kept for a JavaScript VPAID ad. */
typedef struct tamzo_vast_vpaid_xml {
  tamzo_vast_text vast_version; /**< nil when absent */
} tamzo_vast_vpaid_xml;

/* ---- The record --------------------------------------------------------------------------- */

/** The record of one ad. */
typedef struct tamzo_vast_ad tamzo_vast_ad;

/**
 * Parses an ad server's response, or what it gives when it is a URL that begins with "http", and
 * follows its Wrappers; blocks meanwhile. Gives a record also for a failed ad, whose errorCode says
 * why. `bytes` may be null when `length` is 0, `options` may be null. The record is the caller's.
 */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_parse(const void* bytes, size_t length,
                                                  const tamzo_vast_options* options,
                                                  tamzo_vast_ad** ad);
/** Releases the record and all that was borrowed from it. */
TAMZO_VAST_API void tamzo_vast_ad_release(tamzo_vast_ad* ad);

/** The record as one JSON object, on one line or indented. The text is the caller's. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_ad_as_json(const tamzo_vast_ad* ad, bool is_indented,
                                                       tamzo_vast_string** json);

/** The companions of the first document of the chain that had any; null when there are none.
 *  Borrowed from the record. */
TAMZO_VAST_API const tamzo_vast_companion_ad* tamzo_vast_ad_most_suitable_companion(
    const tamzo_vast_ad* ad);
/** The companion of `companions`, which are this record's, that fills a slot of that size in pixels
 *  best; null with TAMZO_VAST_OK when none fits. Borrowed from the record. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_ad_companion_for_slot(
    const tamzo_vast_ad* ad, const tamzo_vast_companion_ad* companions, int32_t width,
    int32_t height, const tamzo_vast_companion** companion);
/** Sets iconMap to the click elements of the first icon below `node`. Changes the record: an
 *  iconMap that was borrowed before is gone. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_ad_get_image_ad(tamzo_vast_ad* ad,
                                                            const tamzo_vast_element* node);
/** The page that plays a JavaScript VPAID ad, which is the caller's, and is stored in vPaidHTML
 *  too. Changes the record: a vPaidHTML that was borrowed before is gone. `options` may be null.
 *  TAMZO_VAST_NO_PAGE when the ad has no tag or no template, when the page is too large, when a
 *  hook fails or when memory runs out while it is made; vPaidHTML keeps its value then. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_ad_get_page(tamzo_vast_ad* ad,
                                                        const tamzo_vast_options* options,
                                                        tamzo_vast_string** page);

/* The properties, each by its name. All are borrowed from the record; the spellings are meant. */

/* clang-format off */
/* The functions below are written by scripts/generate-record.py. */
/** Id of the first Ad of the outermost document, as written; nil when it has none. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_adID(const tamzo_vast_ad* ad);

/** At first the response. After a Wrapper, the URL of the document behind it, macros filled and
 *  white space at both ends taken off when it is fetched; "" when the Wrapper has none. For a
 *  JavaScript VPAID ad behind Wrappers, the text of one document that merges the chain. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_vastTagURI(const tamzo_vast_ad* ad);

/** Where a click on the video leads: the last ClickThrough of the Linear that has text,
 *  untrimmed; nil when there is none. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_clickThrough(const tamzo_vast_ad* ad);

/** How long the Linear is: whole seconds, and the text as written. Null when it does not say. */
TAMZO_VAST_API const tamzo_vast_duration* tamzo_vast_ad_duration(const tamzo_vast_ad* ad);

/** When the viewer may skip, in milliseconds from the start; 0 when the ad does not say. Of the
 *  Linear or, over that, of the vendor's `SkipOffset`. May be negative, infinite or NaN, as the
 *  ad server has it: `-5%`, `1e999%`, and that without a duration. */
TAMZO_VAST_API double tamzo_vast_ad_skipOffsetMillis(const tamzo_vast_ad* ad);

/** 0, or why the ad failed: one of the codes in tamzo/vast/ErrorCodes.h. The code that was set
 *  last wins. A chain of six Wrappers ends with 0 and has nothing to play. */
TAMZO_VAST_API int32_t tamzo_vast_ad_errorCode(const tamzo_vast_ad* ad);

/** What the ad pays, in the ad server's own unit: the vendor's `vc`. */
TAMZO_VAST_API double tamzo_vast_ad_bid(const tamzo_vast_ad* ad);

/** Tracking URLs by event name, over the whole chain, outermost document first. Never null after
 *  a parse. */
TAMZO_VAST_API const tamzo_vast_trackers* tamzo_vast_ad_trackers(const tamzo_vast_ad* ad);

/** Reserved: the parser never adds to it, and tracks an offset that it lists all the same. Never
 *  null after initWithVast. */
TAMZO_VAST_API const tamzo_vast_texts* tamzo_vast_ad_trackersOffset(const tamzo_vast_ad* ad);

/** One entry for each document of the chain that has companions, outermost first. Never null
 *  after a parse. */
TAMZO_VAST_API const tamzo_vast_companion_ads* tamzo_vast_ad_companionAds(const tamzo_vast_ad* ad);

/** Every MediaFile of the Linear, in document order. Never null after a parse. */
TAMZO_VAST_API const tamzo_vast_media_files* tamzo_vast_ad_mediaFiles(const tamzo_vast_ad* ad);

/** The click elements of an icon; null until getImageAd is called. */
TAMZO_VAST_API const tamzo_vast_named_elements* tamzo_vast_ad_iconMap(const tamzo_vast_ad* ad);

/** The cards of the vendor's `Cards/Card`, whose elements the player reads. Null before the
 *  first vendor block; a block without cards empties it. */
TAMZO_VAST_API const tamzo_vast_elements* tamzo_vast_ad_cards(const tamzo_vast_ad* ad);

/** The vendor's `Analytics`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_analytics(const tamzo_vast_ad* ad);

/** The vendor's `AnalyticsKey`: Moat's partner code on the VPAID page. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_analyticsKey(const tamzo_vast_ad* ad);

/** The vendor's `AnalyticsData`: Moat's data on the VPAID page, JSON. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_analyticsData(const tamzo_vast_ad* ad);

/** "" until an extension brings verifications for Moat; from then on the very object of
 *  moatViewImpressionStr. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_moatVastIds(const tamzo_vast_ad* ad);

/** The markup of every ViewableImpression for Moat, one after the other. Not nil after
 *  initWithVast; it grows over parses. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_moatViewImpressionStr(const tamzo_vast_ad* ad);

/** The vendor's `NielsenKey`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_nielsenKey(const tamzo_vast_ad* ad);

/** The vendor's `NielsenUrl`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_nielsenUrl(const tamzo_vast_ad* ad);

/** The vendor's `NielsenCI`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_nielsenCI(const tamzo_vast_ad* ad);

/** The vendor's `NielsenCA`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_nielsenCA(const tamzo_vast_ad* ad);

/** The vendor's `NielsenPlacementId`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_nielsenPlacementId(const tamzo_vast_ad* ad);

/** The vendor's `NielsenCreativeId`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_nielsenCreativeId(const tamzo_vast_ad* ad);

/** The vendor's `ViewabilityAction`. */
TAMZO_VAST_API int32_t tamzo_vast_ad_viewabilityAction(const tamzo_vast_ad* ad);

/** The icons of the Linear, one a program, and the vendor's `ExtraActions`. An empty list at
 *  first; nil when the vendor's JSON is malformed. */
TAMZO_VAST_API const tamzo_vast_extra_actions* tamzo_vast_ad_extraActions(const tamzo_vast_ad* ad);

/** The vendor's `VideoPlacementType`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_VideoPlacementType(const tamzo_vast_ad* ad);

/** The ad is for children: the vendor's `CoppaEnabled`. */
TAMZO_VAST_API bool tamzo_vast_ad_isCoppaEnabled(const tamzo_vast_ad* ad);

/** The vendor's `InvalidCachedOfferIds`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_invalidCachedOfferIds(const tamzo_vast_ad* ad);

/** The vendor's `GratificationInfo`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_gratificationInfo(const tamzo_vast_ad* ad);

/** The vendor's `GratificationTime`, as it stands: no time is made of it. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_gratificationTime(const tamzo_vast_ad* ad);

/** The vendor's `WebViewBaseUrl`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_webViewBaseUrl(const tamzo_vast_ad* ad);

/** The vendor's `ComscoreCreativeId`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_comScoreCreativeId(const tamzo_vast_ad* ad);

/** The vendor's `ComscoreCampaignId`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_comScoreCampaignId(const tamzo_vast_ad* ad);

/** The vendor's `ComscorePlacementId`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_comScorePlacementId(const tamzo_vast_ad* ad);

/** An overlay's share of the video: the vendor's `AdOverlay/AdOverlayDimensionRatio`. Kept by a
 *  block without an `AdOverlay`. */
TAMZO_VAST_API float tamzo_vast_ad_overlayDimensionRatioNode(const tamzo_vast_ad* ad);

/** What an overlay shows: the vendor's `AdOverlay/AdOverlayUrl`. Kept by a block without an
 *  `AdOverlay`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_overlayUrl(const tamzo_vast_ad* ad);

/** The response as parseVast was given it: after the clean-up of `xmlns=`, when initWithVast
 *  called it. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_vastResponseStr(const tamzo_vast_ad* ad);

/** The video is a 360-degree one: the vendor's `Is360Video`. */
TAMZO_VAST_API bool tamzo_vast_ad_is360Video(const tamzo_vast_ad* ad);

/** Another component plays the ad: the vendor's `ImaTracking`. Set, it ends the chain, and
 *  vastTagURI holds the URL that was not fetched. It stays set: a second parse of the record
 *  reads nothing until it is set back. */
TAMZO_VAST_API bool tamzo_vast_ad_isImaEnabled(const tamzo_vast_ad* ad);

/** The hotspots of a 360-degree video: the vendor's `Video360/Hotspots/Hotspot`. Null until a
 *  block has any. */
TAMZO_VAST_API const tamzo_vast_elements* tamzo_vast_ad_hotspotList(const tamzo_vast_ad* ad);

/** The record of the last Wrapper met, linked to those around it; null without a Wrapper. */
TAMZO_VAST_API const tamzo_vast_vpaid_xml* tamzo_vast_ad_vpaidXml(const tamzo_vast_ad* ad);

/** The `version` of the last document read; nil when that has none. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_vpaidVastVersion(const tamzo_vast_ad* ad);

/** Verification resources for Open Measurement, over the whole chain. Never null after a parse;
 *  it grows over parses. */
TAMZO_VAST_API const tamzo_vast_verifications* tamzo_vast_ad_measurementProviderList(
    const tamzo_vast_ad* ad);

/** The web view may zoom: the vendor's `AdditionalWebSettings/canZoom`. */
TAMZO_VAST_API bool tamzo_vast_ad_canZoom(const tamzo_vast_ad* ad);

/** Links may leave the app: the vendor's `AdditionalWebSettings/canOpenExternal`. */
TAMZO_VAST_API bool tamzo_vast_ad_canOpenExternal(const tamzo_vast_ad* ad);

/** Media may start by themselves: the vendor's `AdditionalWebSettings/canAutoPlay`. */
TAMZO_VAST_API bool tamzo_vast_ad_canAutoPlay(const tamzo_vast_ad* ad);

/** The web view may scroll: the vendor's `AdditionalWebSettings/canScroll`. */
TAMZO_VAST_API bool tamzo_vast_ad_canScroll(const tamzo_vast_ad* ad);

/** The viewer is asked first: the vendor's `AdditionalWebSettings/shouldAskPermission`. */
TAMZO_VAST_API bool tamzo_vast_ad_shouldAskPermission(const tamzo_vast_ad* ad);

/** The ad may be played again: the vendor's `canReplay` holds a URL, which is in `trackers`
 *  under that name. Kept by a block without one. */
TAMZO_VAST_API bool tamzo_vast_ad_canReplay(const tamzo_vast_ad* ad);

/** Open Measurement is on; true unless the vendor's `isOMIDEnabled` says otherwise. Kept by a
 *  block without it. */
TAMZO_VAST_API bool tamzo_vast_ad_isOMIDEnable(const tamzo_vast_ad* ad);

/** The InLine's Expires as a number, as the ad server means it (seconds in IAB VAST); 0 when it
 *  does not say. VAST 4. */
TAMZO_VAST_API double tamzo_vast_ad_expires(const tamzo_vast_ad* ad);

/** Every Category of the InLine, as it stands. Never null after a parse; it grows over parses,
 *  and every entry may block, those of earlier parses too. VAST 4. */
TAMZO_VAST_API const tamzo_vast_texts* tamzo_vast_ad_categoryArray(const tamzo_vast_ad* ad);

/** The vendor's `TrackId`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_trackId(const tamzo_vast_ad* ad);

/** The vendor's `ServerUA`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_serverUA(const tamzo_vast_ad* ad);

/** The vendor's `DeviceIp`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_deviceIP(const tamzo_vast_ad* ad);

/** The vendor's `OMIDPartner`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_omidPartner(const tamzo_vast_ad* ad);

/** The vendor's `PlayerCapability`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_playerCapability(const tamzo_vast_ad* ad);

/** The vendor's `InventoryState`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_inventoryState(const tamzo_vast_ad* ad);

/** The vendor's `GDPRConsent`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_GDPRConsentInfo(const tamzo_vast_ad* ad);

/** The vendor's `VastVersions`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_vastVersions(const tamzo_vast_ad* ad);

/** The vendor's `APIFrameworks`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_apiFrameworks(const tamzo_vast_ad* ad);

/** The vendor's `VerificationVendors`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_verificationVendors(const tamzo_vast_ad* ad);

/** The `idRegistry` of the InLine's first UniversalAdId; nil when it has none. VAST 4. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_univversalIDRegistry(const tamzo_vast_ad* ad);

/** The `idValue` of the InLine's first UniversalAdId; nil when it has none. VAST 4. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_universalIDValue(const tamzo_vast_ad* ad);

/** The vendor's `SupportedExtension`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_supportedExtension(const tamzo_vast_ad* ad);

/** The vendor's `MimeType`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_mimeType(const tamzo_vast_ad* ad);

/** The vendor's `ClickType`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_clickType(const tamzo_vast_ad* ad);

/** The vendor's `ClientUA`. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_clientUA(const tamzo_vast_ad* ad);

/** The ad has a JavaScript VPAID unit: show the page of getVideoWAPView. In VAST 2 and 3 such an
 *  ad has no media files, duration, click-through or icons of its own. */
TAMZO_VAST_API bool tamzo_vast_ad_jsVPaidPresent(const tamzo_vast_ad* ad);

/** Reserved: the parser never sets it. */
TAMZO_VAST_API bool tamzo_vast_ad_flashVPaidPresent(const tamzo_vast_ad* ad);

/** The page that getVideoWAPView built last; nil before. */
TAMZO_VAST_API tamzo_vast_text tamzo_vast_ad_vPaidHTML(const tamzo_vast_ad* ad);

/* The functions above are written by scripts/generate-record.py. */
/* clang-format on */

/* ---- Elements ----------------------------------------------------------------------------- */

/** An attribute. */
typedef struct tamzo_vast_attribute {
  tamzo_vast_text name;  /**< as written, prefix included */
  tamzo_vast_text value; /**< as it stands, entities resolved */
} tamzo_vast_attribute;

/** The attributes of an element, which belong to the caller. */
typedef struct tamzo_vast_attributes {
  size_t count;                             /**< how many */
  const tamzo_vast_attribute* const* items; /**< one pointer each, `count` of them */
} tamzo_vast_attributes;

/** The name as written, prefix included. The text is the caller's. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_element_name(const tamzo_vast_element* element,
                                                         tamzo_vast_string** name);
/** The text of the element and of all below it, untrimmed. The text is the caller's. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_element_text(const tamzo_vast_element* element,
                                                         tamzo_vast_string** text);
/** The element written back as XML. The text is the caller's. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_element_xml(const tamzo_vast_element* element,
                                                        tamzo_vast_string** xml);
/** The value of an attribute; null with TAMZO_VAST_OK when there is none. The text is the caller's.
 */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_element_attribute(const tamzo_vast_element* element,
                                                              tamzo_vast_text name,
                                                              tamzo_vast_string** value);
/** All attributes, in document order. They are the caller's. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_element_attributes(const tamzo_vast_element* element,
                                                               tamzo_vast_attributes** attributes);
/** Releases them. */
TAMZO_VAST_API void tamzo_vast_attributes_release(tamzo_vast_attributes* attributes);
/** The first child that is an element; null with TAMZO_VAST_OK when there is none. It is the
 *  caller's, and outlives the record. */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_element_first_child(const tamzo_vast_element* element,
                                                                tamzo_vast_element** child);
/** The next element beside this one; otherwise as tamzo_vast_element_first_child(). */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_element_next_sibling(const tamzo_vast_element* element,
                                                                 tamzo_vast_element** sibling);
/** The first node that a path of names finds, as the SDK's getNodeAsStringValue; otherwise as
 *  tamzo_vast_element_first_child(). */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_element_at_path(const tamzo_vast_element* element,
                                                            tamzo_vast_text path,
                                                            tamzo_vast_element** node);
/** Releases an element that is the caller's; not one borrowed from a record. */
TAMZO_VAST_API void tamzo_vast_element_release(tamzo_vast_element* element);

#ifdef __cplusplus
}
#endif

#endif
