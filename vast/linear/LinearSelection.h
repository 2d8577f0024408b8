#pragma once

#include <cstdint>

#include "tamzo/xml/NodeList.h"

namespace tamzo {

/// What a MediaFile or InteractiveCreativeFile can be used for.
enum class MediaUse : std::uint8_t { unusable, video, javaScriptVpaid };

/// Goes by the type and the apiFramework, both exactly as they are written; nil is of no use.
MediaUse mediaUseOf(const DDXMLElement& file);

/// The files that decide whether the first of `linears` can be played: MediaFile elements rule
/// InteractiveCreativeFile elements out, even when none of them fits.
NodeList decidingFilesOf(const NodeList& linears);

}  // namespace tamzo
