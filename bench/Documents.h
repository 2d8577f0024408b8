#pragma once

#include <array>
#include <cstdint>
#include <map>
#include <string>
#include <string_view>

#include "tamzo/vast/TamzoVastAd.h"

namespace tamzo::bench {

// The responses that parsing is measured on. Each is the same for the same seed everywhere; other
// seeds give other texts of the same shape.

/// (a) 12 to 14 KB: a VAST 4 InLine with every child that a vendor block can have, 30 Tracking,
/// 6 MediaFile, 3 Impression, 2 companions, 4 icons and 2 verifications.
std::string fullVast4(std::uint64_t seed);

/// (b) 4 to 5 KB: a VAST 3 InLine.
std::string plainVast3(std::uint64_t seed);

/// (c) 1 MB: thousands of Tracking and Impression.
std::string largeVast4(std::uint64_t seed);

/// (d) 2 to 3 KB: what ad servers send most.
std::string smallVast4(std::uint64_t seed);

/// (d) with a default namespace, which the parse takes away first.
std::string smallVast4WithNamespace(std::uint64_t seed);

/// (e) Three Wrappers and an InLine.
struct Chain {
  std::string response;
  std::map<std::string, std::string, std::less<>> bodies;  ///< by URL
};
Chain wrapperChain(std::uint64_t seed);

struct DocumentKind {
  std::string_view name;
  std::string (*make)(std::uint64_t seed);
  std::size_t minBytes;
  std::size_t maxBytes;
};
inline constexpr std::array kDocumentKinds{
    DocumentKind{"a", fullVast4, 12'000, 14'000},
    DocumentKind{"b", plainVast3, 4'000, 5'000},
    DocumentKind{"c", largeVast4, 1'000'000, 1'100'000},
    DocumentKind{"d", smallVast4, 2'000, 3'000},
    DocumentKind{"d+xmlns", smallVast4WithNamespace, 2'000, 3'000},
};

/// Throws std::runtime_error unless the record of the document of that name ("a" to "e") holds
/// what the document says, and the text has the size that it must: what is measured is a parse
/// that works.
void requireWholeRecord(std::string_view name, const TamzoVastAd& record);
void requireSize(const DocumentKind& kind, const std::string& text);

}  // namespace tamzo::bench
