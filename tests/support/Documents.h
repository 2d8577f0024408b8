#pragma once

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

#include "tamzo/xml/DDXMLDocument.h"

namespace tamzo::testing {

/// The document of a text that is XML.
inline std::shared_ptr<DDXMLDocument> documentOf(const Text& xml) {
  XmlError error;
  auto document = DDXMLDocument::initWithXMLString(xml, 0, &error);
  EXPECT_NE(document, nullptr) << error.message << " in " << xml;
  return document;
}

/// Its root element.
inline DDXMLElement root(const Text& xml) { return documentOf(xml)->rootElement(); }

using Texts = std::vector<std::string>;

/// The text of each node.
inline Texts texts(const NodeList& nodes) {
  Texts all;
  for (const DDXMLElement& node : nodes) {
    all.emplace_back(node.stringValue().view());
  }
  return all;
}

inline std::string repeat(const std::string& text, int times) {
  std::string all;
  all.reserve(text.size() * static_cast<std::size_t>(times));
  for (int i = 0; i < times; ++i) {
    all += text;
  }
  return all;
}

}  // namespace tamzo::testing
