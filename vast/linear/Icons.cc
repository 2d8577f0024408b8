#include "tamzo/vast/TamzoVastAd.h"

#include <optional>
#include <utility>
#include <variant>
#include <vector>

#include "tamzo/base/KeyIndex.h"
#include "tamzo/sdk/TamzoLogger.h"

namespace tamzo {
namespace {

// The icons of an extra-actions list by program, so that a document of many icons is read in time
// linear in their number. JSON values in the list have no program and are passed over.
class IconPrograms {
 public:
  explicit IconPrograms(List<TamzoExtraActions::Entry> actions) : actions_(std::move(actions)) {
    for (std::size_t i = 0; i < actions_->size(); ++i) {
      if (const auto* icon = std::get_if<DDXMLElement>(&(*actions_)[i])) {
        // Of several with one program the last is remembered.
        remember(icon->attributeValue("program"), i);
      }
    }
  }

  bool empty() const noexcept { return actions_->empty(); }

  void put(const Text& program, const DDXMLElement& icon) {
    const auto position = program.isNil() ? std::nullopt : positions_.find(program);
    if (position) {
      (*actions_)[*position] = icon;
    } else {
      actions_->emplace_back(icon);
      remember(program, actions_->size() - 1);
    }
  }

 private:
  void remember(const Text& program, std::size_t position) {
    if (!program.isNil()) {
      programs_.push_back(program);
      positions_.set(program, position);
    }
  }

  List<TamzoExtraActions::Entry> actions_;
  std::vector<Text> programs_;  // keeps the characters of the keys
  KeyIndex positions_;
};

}  // namespace

void TamzoVastAd::updateIcons(const NodeList& linears) {
  const NodeList icons = linears.nodesUnderFirst("Icons/Icon");
  if (icons.empty()) {
    return;
  }
  std::optional<IconPrograms> programs;
  if (extraActions().isList()) {
    programs.emplace(extraActions().list());
  }
  for (const DDXMLElement& icon : icons) {
    const Text program = icon.attributeValue("program");
    // Where the ad server sent no list, there is nothing that an icon could join.
    if (!program.hasCharacters() || !programs) {
      continue;
    }
    const bool isFirst = programs->empty();
    programs->put(program, icon);
    if (!isFirst) {
      TAMZO_LOG("scsd");  // as the SDK has always logged it: its log filters look for this text
    }
  }
  TAMZO_LOG("Added Extra Action");
}

void TamzoVastAd::checkProgramExist(const Text& program, const DDXMLElement& withElement) {
  if (extraActions().isList()) {
    IconPrograms(extraActions().list()).put(program, withElement);
  }
  TAMZO_LOG("scsd");  // see updateIcons
}

}  // namespace tamzo
