/*
 * Why a response did or did not become an ad, for C. A library of its own, tamzo_explain, which an
 * app for viewers need not carry; it goes with the static library. What tamzo_vast.h says of texts,
 * ownership, threads and failing holds here too.
 */
#ifndef TAMZO_VAST_EXPLAIN_H
#define TAMZO_VAST_EXPLAIN_H

#include "tamzo/tamzo_vast.h"

#ifdef __cplusplus
extern "C" {
#endif

/**
 * Parses as tamzo_vast_parse() does, and gives the record and what there is to know about the
 * response as one JSON object, {"record": ..., "explanation": ...}, on one line or indented. An
 * observer of the options is told as well. `bytes` may be null when `length` is 0, `options` may be
 * null. The text is the caller's.
 */
TAMZO_VAST_API tamzo_vast_status tamzo_vast_explain(const void* bytes, size_t length,
                                                    const tamzo_vast_options* options,
                                                    bool is_indented, tamzo_vast_string** json);

#ifdef __cplusplus
}
#endif

#endif
