#pragma once

#include <string>

#include "tamzo/base/Export.h"
#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo {

/// How the text is laid out; what it says is the same.
enum class JsonLayout {
  compact,   ///< on one line
  indented,  ///< for people, two blanks a level
};

/// What of the record is written.
enum class RecordContent {
  whole,            ///< every property
  withoutResponse,  ///< null for `vastResponseStr`, and for `vastTagURI` that is a document's text
};

/// The record as one JSON object: every property under its own name, in the order of its table.
/// docs/record-json.md describes the form, which is stable. Nil is null. Bytes that are not UTF-8
/// are written as U+FFFD. Throws std::bad_alloc only.
TAMZO_EXPORT std::string recordAsJson(const TamzoVastAd& ad,
                                      JsonLayout layout = JsonLayout::compact,
                                      RecordContent content = RecordContent::whole);

}  // namespace tamzo
