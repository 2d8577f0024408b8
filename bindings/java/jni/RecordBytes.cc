#include "bindings/java/jni/RecordBytes.h"

#include <cstddef>
#include <utility>
#include <vector>

#include "bindings/java/jni/Owners.h"

namespace tamzo::jni {
namespace {

class Writer {
 public:
  explicit Writer(Bytes& bytes) : bytes_(bytes) {}

  template <typename T>
  void write(T value) {
    bytes_.write(value);
  }
  void write(tamzo_vast_integer number) {
    write(number.is_present);
    write(number.value);
  }
  void write(tamzo_vast_flag flag) {
    write(flag.is_present);
    write(flag.value);
  }
  void write(const tamzo_vast_texts* texts) { writeItems(texts); }
  void write(const tamzo_vast_trackers* trackers) { writeItems(trackers); }
  void write(const tamzo_vast_media_files* files) { writeItems(files); }
  void write(const tamzo_vast_resources* resources) { writeItems(resources); }
  void write(const tamzo_vast_companion_ads* ads) { writeItems(ads); }
  void write(const tamzo_vast_verifications* all) { writeItems(all); }
  void write(const tamzo_vast_elements* elements) { writeItems(elements); }
  void write(const tamzo_vast_named_elements* elements) { writeItems(elements); }
  void write(const tamzo_vast_duration* duration) {
    write(duration != nullptr);
    if (duration != nullptr) {
      write(duration->text);
      write(duration->seconds);
    }
  }
  void write(const tamzo_vast_vpaid_xml* xml) {
    write(xml != nullptr);
    if (xml != nullptr) {
      write(xml->vast_version);
    }
  }
  // One value that is no list has the count -2.
  void write(const tamzo_vast_extra_actions* actions) {
    if (actions != nullptr && actions->json.data != nullptr) {
      write(std::int32_t{-2});
      write(actions->json);
      return;
    }
    writeItems(actions);
  }

 private:
  // A null list is nil.
  template <typename List>
  void writeItems(const List* list) {
    if (list == nullptr) {
      bytes_.writeNil();
      return;
    }
    bytes_.writeCount(list->count);
    for (std::size_t at = 0; at < list->count; ++at) {
      writeItem(list->items[at]);
    }
  }
  void writeItem(tamzo_vast_text text) { write(text); }
  void writeItem(const tamzo_vast_event* event) {
    write(event->name);
    writeItems(event);
  }
  void writeItem(const tamzo_vast_tracker* tracker) {
    write(tracker->url);
    write(tracker->offset);
  }
  void writeItem(const tamzo_vast_media_file* file) {
    for (const tamzo_vast_text text :
         {file->url, file->id, file->delivery, file->type, file->codec, file->api_framework}) {
      write(text);
    }
    for (const tamzo_vast_integer number :
         {file->width, file->height, file->bitrate, file->min_bitrate, file->max_bitrate,
          file->file_size}) {
      write(number);
    }
    write(file->scalable);
    write(file->maintain_aspect_ratio);
  }
  void writeItem(const tamzo_vast_resource* resource) {
    write(resource->url);
    write(resource->type);
    write(resource->api_framework);
    write(resource->browser_optional);
  }
  void writeItem(const tamzo_vast_companion_ad* ad) { writeItems(ad); }
  void writeItem(const tamzo_vast_companion* companion) {
    write(companion->id);
    write(companion->width);
    write(companion->height);
    write(companion->ad_slot_id);
    write(companion->api_framework);
    write(companion->alt_text);
    write(companion->static_resources);
    write(companion->iframe_resources);
    write(companion->html_resources);
    write(companion->click_through);
    write(companion->click_tracking);
    write(companion->trackers);
  }
  void writeItem(const tamzo_vast_verification* verification) {
    write(verification->vendor);
    write(verification->javascript_resources);
    write(verification->executable_resources);
    write(verification->verification_parameters);
    write(verification->trackers);
  }
  void writeItem(const tamzo_vast_named_element* named) {
    write(named->name);
    writeItem(named->element);
  }
  void writeItem(const tamzo_vast_extra_action* action) {
    write(action->json);
    if (action->json.data == nullptr) {
      writeItem(action->icon);
    }
  }
  void writeItem(const tamzo_vast_element* element);
  void writeString(const tamzo_vast_string* string) { write(tamzo_vast_string_text(string)); }
  bool writeTag(const tamzo_vast_element* element, Owned<tamzo_vast_element>* firstChild);

  Bytes& bytes_;
};

// The name, the attributes, and the text of an element that holds no other; true where it does.
bool Writer::writeTag(const tamzo_vast_element* element, Owned<tamzo_vast_element>* firstChild) {
  writeString(given<tamzo_vast_string>([&](auto** name) {
                return tamzo_vast_element_name(element, name);
              }).get());
  const auto attributes = given<tamzo_vast_attributes>(
      [&](auto** all) { return tamzo_vast_element_attributes(element, all); });
  bytes_.writeCount(attributes->count);
  for (std::size_t at = 0; at < attributes->count; ++at) {
    write(attributes->items[at]->name);
    write(attributes->items[at]->value);
  }
  *firstChild = given<tamzo_vast_element>(
      [&](auto** child) { return tamzo_vast_element_first_child(element, child); });
  if (*firstChild != nullptr) {
    bytes_.writeNil();
    return true;
  }
  writeString(given<tamzo_vast_string>([&](auto** text) {
                return tamzo_vast_element_text(element, text);
              }).get());
  return false;
}

// The markup, then the element and those below it in document order, as the tags stand: true opens
// one, false closes the one that is open. Texts and markup are written once each, so that this is
// linear however deep the elements are.
void Writer::writeItem(const tamzo_vast_element* element) {
  writeString(given<tamzo_vast_string>([&](auto** xml) {
                return tamzo_vast_element_xml(element, xml);
              }).get());
  std::vector<Owned<tamzo_vast_element>> open;
  Owned<tamzo_vast_element> next;
  writeTag(element, &next);
  while (true) {
    if (next != nullptr) {
      write(true);
      open.push_back(std::move(next));
      writeTag(open.back().get(), &next);
      continue;
    }
    write(false);
    if (open.empty()) {
      return;
    }
    next = given<tamzo_vast_element>([&](auto** sibling) {
      return tamzo_vast_element_next_sibling(open.back().get(), sibling);
    });
    open.pop_back();
  }
}

std::int32_t indexOfMostSuitableCompanion(const tamzo_vast_ad& ad) {
  const tamzo_vast_companion_ads* all = tamzo_vast_ad_companionAds(&ad);
  const tamzo_vast_companion_ad* best = tamzo_vast_ad_most_suitable_companion(&ad);
  for (std::size_t at = 0; best != nullptr && at < all->count; ++at) {
    if (all->items[at] == best) {
      return static_cast<std::int32_t>(at);
    }
  }
  return -1;
}

}  // namespace

Bytes recordAsBytes(const tamzo_vast_ad& ad) {
  Bytes bytes;
  Writer writer(bytes);
  bytes.write(kRecordFormat);
#define TAMZO_PROPERTY(type, name, setter, when, initial) writer.write(tamzo_vast_ad_##name(&ad));
#include "vast/TamzoVastAdProperties.def"
#undef TAMZO_PROPERTY
  bytes.write(indexOfMostSuitableCompanion(ad));
  return bytes;
}

}  // namespace tamzo::jni
