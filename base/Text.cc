#include "tamzo/base/Text.h"

namespace tamzo {

Text::Text(std::string_view characters) : Text(std::string(characters)) {}

Text::Text(std::string&& characters) : isTerminated_(true) {
  if (characters.empty()) {
    view_ = "";
    return;
  }
  auto owner = std::make_shared<std::string>(std::move(characters));
  view_ = *owner;
  owner_ = std::move(owner);
}

MutableText MutableText::create() {
  MutableText text;
  text.characters_ = std::make_shared<std::string>();
  return text;
}

void MutableText::appendString(std::string_view more) {
  if (characters_ != nullptr) {
    characters_->append(more);
  }
}

}  // namespace tamzo
