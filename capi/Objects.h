#pragma once

#include <string>
#include <string_view>
#include <utility>

#include "capi/Handle.h"
#include "tamzo/tamzo_vast.h"
#include "tamzo/xml/DDXMLElement.h"

// The objects that C knows by name alone, as far as several units make them.

struct tamzo_vast_string : tamzo::capi::Handle {
  explicit tamzo_vast_string(std::string_view text) : characters(text) {}

  std::string characters;
};

struct tamzo_vast_element : tamzo::capi::Handle {
  explicit tamzo_vast_element(tamzo::DDXMLElement of) : node(std::move(of)) {}

  tamzo::DDXMLElement node;
};
