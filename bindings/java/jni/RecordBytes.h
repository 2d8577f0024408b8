#pragma once

#include "bindings/java/jni/Bytes.h"
#include "tamzo/tamzo_vast.h"

namespace tamzo::jni {

/// Grows when RecordReader must read something else.
inline constexpr std::int32_t kRecordFormat = 1;

/// A copy of all that the record holds, in the order of the table of properties: one array crosses
/// to Java, and no object of Java is made here, however many entries there are. Throws
/// std::bad_alloc.
Bytes recordAsBytes(const tamzo_vast_ad& ad);

}  // namespace tamzo::jni
