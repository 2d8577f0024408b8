#pragma once

#include <string>

namespace tamzo::testing {

// Responses, built from the inside out: what a test is about stands in the test, what a response
// needs besides comes from here.

/// What makes a Linear playable.
inline const std::string kVideo =
    "<MediaFiles><MediaFile type='video/mp4'>u</MediaFile></MediaFiles>";

/// Creatives with one Linear.
inline std::string linear(const std::string& content = kVideo, const std::string& attributes = "") {
  return "<Creatives><Creative><Linear " + attributes + ">" + content +
         "</Linear></Creative></Creatives>";
}

/// Extensions with one Extension.
inline std::string extension(const std::string& content) {
  return "<Extensions><Extension>" + content + "</Extension></Extensions>";
}

/// The vendor block in its Extension.
inline std::string vendorExtension(const std::string& content) {
  return extension("<Tamzo>" + content + "</Tamzo>");
}

inline std::string vast(const std::string& version, const std::string& content) {
  return "<VAST version='" + version + "'>" + content + "</VAST>";
}

/// A response with that InLine, as it stands.
inline std::string bareInline(const std::string& version, const std::string& content) {
  return vast(version, "<Ad id='inline'><InLine>" + content + "</InLine></Ad>");
}

/// A response with an InLine of that content and one Linear.
inline std::string inlineAd(const std::string& version, const std::string& content = "",
                            const std::string& linearContent = kVideo) {
  return bareInline(version, content + linear(linearContent));
}

/// A response with a Wrapper of that content, behind which `tag` leads to the next document.
inline std::string wrapper(const std::string& version, const std::string& content = "",
                           const std::string& tag = "http://ads.example/2") {
  return vast(version, "<Ad id='wrapper'><Wrapper><VASTAdTagURI>" + tag + "</VASTAdTagURI>" +
                           content + "</Wrapper></Ad>");
}

}  // namespace tamzo::testing
