// What C reads of elements.

#include <memory>

#include "capi/Boundary.h"
#include "capi/Objects.h"
#include "capi/Values.h"
#include "tamzo/vast/TamzoVastAd.h"
#include "tamzo/xml/NodeList.h"

using tamzo::DDXMLElement;
using tamzo::Text;
using tamzo::capi::give;
using tamzo::capi::isUnreadable;
using tamzo::capi::viewOf;

namespace {

// What the caller is given a pointer to, with the memory behind it.
struct Attributes : tamzo_vast_attributes, tamzo::capi::Handle {
  tamzo::capi::Arena arena;
};

// Gives the text that `read` finds, or null for nil.
template <typename Read>
tamzo_vast_status giveText(bool isNull, tamzo_vast_string** out, Read read) noexcept {
  return give(isNull, out, [&] {
    if (const Text text = read(); !text.isNil()) {
      // NOLINTNEXTLINE(bugprone-unhandled-exception-at-new): give() handles it
      *out = new tamzo_vast_string(text);
    }
    return TAMZO_VAST_OK;
  });
}

template <typename Find>
tamzo_vast_status giveElement(bool isNull, tamzo_vast_element** out, Find find) noexcept {
  return give(isNull, out, [&] {
    if (DDXMLElement found = find()) {
      // NOLINTNEXTLINE(bugprone-unhandled-exception-at-new): give() handles it
      *out = new tamzo_vast_element(std::move(found));
    }
    return TAMZO_VAST_OK;
  });
}

std::unique_ptr<Attributes> attributesOf(const DDXMLElement& element) {
  auto all = std::make_unique<Attributes>();
  const tamzo::NodeList found = element.nodesForXPath("@*");
  auto* items = all->arena.make<tamzo_vast_attribute>(found.size());
  auto* pointers = all->arena.make<const tamzo_vast_attribute*>(found.size());
  for (std::size_t at = 0; at < found.size(); ++at) {
    const DDXMLElement attribute = found.at(at);
    items[at] = {all->arena.keep(attribute.name()), all->arena.keep(attribute.stringValue())};
    pointers[at] = &items[at];
  }
  all->count = found.size();
  all->items = pointers;
  return all;
}

}  // namespace

tamzo_vast_text tamzo_vast_string_text(const tamzo_vast_string* string) {
  return TAMZO_IS_NULL(string)
             ? tamzo_vast_text{nullptr, 0}
             : tamzo_vast_text{string->characters.c_str(), string->characters.size()};
}

void tamzo_vast_string_release(tamzo_vast_string* string) {
  if (!TAMZO_IS_NULL(string)) {
    delete string;
  }
}

tamzo_vast_status tamzo_vast_element_name(const tamzo_vast_element* element,
                                          tamzo_vast_string** name) {
  return giveText(TAMZO_IS_NULL(element), name, [&] { return element->node.name(); });
}

tamzo_vast_status tamzo_vast_element_text(const tamzo_vast_element* element,
                                          tamzo_vast_string** text) {
  return giveText(TAMZO_IS_NULL(element), text, [&] { return element->node.stringValue(); });
}

tamzo_vast_status tamzo_vast_element_xml(const tamzo_vast_element* element,
                                         tamzo_vast_string** xml) {
  return giveText(TAMZO_IS_NULL(element), xml, [&] { return element->node.XMLString(); });
}

tamzo_vast_status tamzo_vast_element_attribute(const tamzo_vast_element* element,
                                               tamzo_vast_text name, tamzo_vast_string** value) {
  return giveText(TAMZO_IS_NULL(element) || isUnreadable(name), value,
                  [&] { return element->node.attributeValue(viewOf(name)); });
}

tamzo_vast_status tamzo_vast_element_attributes(const tamzo_vast_element* element,
                                                tamzo_vast_attributes** attributes) {
  return give(TAMZO_IS_NULL(element), attributes, [&] {
    *attributes = attributesOf(element->node).release();
    return TAMZO_VAST_OK;
  });
}

void tamzo_vast_attributes_release(tamzo_vast_attributes* attributes) {
  auto* all = static_cast<Attributes*>(attributes);
  if (!TAMZO_IS_NULL(all)) {
    delete all;
  }
}

tamzo_vast_status tamzo_vast_element_first_child(const tamzo_vast_element* element,
                                                 tamzo_vast_element** child) {
  return giveElement(TAMZO_IS_NULL(element), child,
                     [&] { return element->node.firstChildElement(); });
}

tamzo_vast_status tamzo_vast_element_next_sibling(const tamzo_vast_element* element,
                                                  tamzo_vast_element** sibling) {
  return giveElement(TAMZO_IS_NULL(element), sibling,
                     [&] { return element->node.nextSiblingElement(); });
}

tamzo_vast_status tamzo_vast_element_at_path(const tamzo_vast_element* element,
                                             tamzo_vast_text path, tamzo_vast_element** node) {
  return giveElement(TAMZO_IS_NULL(element) || isUnreadable(path), node, [&] {
    return tamzo::TamzoVastAd::getNodeAsStringValue(element->node, viewOf(path));
  });
}

void tamzo_vast_element_release(tamzo_vast_element* element) {
  if (!TAMZO_IS_NULL(element)) {
    delete element;
  }
}
