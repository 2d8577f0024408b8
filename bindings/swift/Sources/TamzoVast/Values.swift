// Copies of what a record holds. All are values and may go to any thread.

/// A copy of a text; nil stays nil, and what is no UTF-8 becomes U+FFFD.
func text(_ text: tamzo_vast_text) -> String? {
  guard let data = text.data else { return nil }
  return String(decoding: UnsafeRawBufferPointer(start: data, count: text.size), as: UTF8.self)
}

/// Lends the library a text for the time of a call.
func lend<Result>(_ string: String?, _ body: (tamzo_vast_text) throws -> Result) rethrows -> Result {
  guard var string = string else { return try body(tamzo_vast_text(data: nil, size: 0)) }
  return try string.withUTF8 { bytes in
    try bytes.withMemoryRebound(to: CChar.self) { characters in
      // An empty text is not nil.
      if let first = characters.baseAddress, !characters.isEmpty {
        return try body(tamzo_vast_text(data: first, size: characters.count))
      }
      return try "".withCString { try body(tamzo_vast_text(data: $0, size: 0)) }
    }
  }
}

/// A copy of a text that is the caller's, which is released.
func take(_ string: OpaquePointer?) -> String? {
  defer { tamzo_vast_string_release(string) }
  return text(tamzo_vast_string_text(string))
}

func integer(_ number: tamzo_vast_integer) -> Int32? { number.is_present ? number.value : nil }
func flag(_ flag: tamzo_vast_flag) -> Bool? { flag.is_present ? flag.value : nil }

/// What a list of C's holds, one after the other.
func items<Item, Value>(
  _ count: Int, _ items: UnsafePointer<UnsafePointer<Item>?>?, _ make: (Item) -> Value
) -> [Value] {
  guard let items = items else { return [] }
  return (0..<count).compactMap { at in items[at].map { make($0.pointee) } }
}

func texts(_ list: UnsafePointer<tamzo_vast_texts>?) -> [String]? {
  guard let list = list?.pointee else { return nil }
  guard let all = list.items else { return [] }
  return (0..<list.count).map { text(all[$0]) ?? "" }
}

/// How long the Linear is.
public struct VastDuration: Equatable, Sendable {
  /// As written.
  public let text: String?
  /// Whole ones.
  public let seconds: Int64
}

func duration(_ duration: UnsafePointer<tamzo_vast_duration>?) -> VastDuration? {
  duration.map { VastDuration(text: text($0.pointee.text), seconds: $0.pointee.seconds) }
}

/// A tracking URL.
public struct VastTracker: Equatable, Sendable {
  /// Untrimmed, macros unfilled.
  public let url: String?
  /// Whole seconds as decimal text; empty without a time.
  public let offset: String?
}

/// The tracking URLs of one event, in the order met.
public struct VastEvent: Equatable, Sendable {
  /// As the document writes it.
  public let name: String
  public let trackers: [VastTracker]
}

func trackers(_ all: UnsafePointer<tamzo_vast_trackers>?) -> [VastEvent]? {
  guard let all = all?.pointee else { return nil }
  return items(all.count, all.items) { event in
    VastEvent(
      name: text(event.name) ?? "",
      trackers: items(event.count, event.items) {
        VastTracker(url: text($0.url), offset: text($0.offset))
      })
  }
}

/// A media file. Numbers are pixels, kilobits a second and bytes; what is absent is nil.
public struct VastMediaFile: Equatable, Sendable {
  /// White space trimmed at both ends.
  public let url: String?
  public let id: String?
  /// "progressive" or "streaming".
  public let delivery: String?
  /// MIME type.
  public let type: String?
  public let codec: String?
  public let apiFramework: String?
  public let width: Int32?
  public let height: Int32?
  public let bitrate: Int32?
  public let minBitrate: Int32?
  public let maxBitrate: Int32?
  public let fileSize: Int32?
  /// May be shown at another size.
  public let scalable: Bool?
  /// Must keep its shape then.
  public let maintainAspectRatio: Bool?
}

func mediaFiles(_ all: UnsafePointer<tamzo_vast_media_files>?) -> [VastMediaFile]? {
  guard let all = all?.pointee else { return nil }
  return items(all.count, all.items) { file in
    VastMediaFile(
      url: text(file.url), id: text(file.id), delivery: text(file.delivery), type: text(file.type),
      codec: text(file.codec), apiFramework: text(file.api_framework), width: integer(file.width),
      height: integer(file.height), bitrate: integer(file.bitrate),
      minBitrate: integer(file.min_bitrate), maxBitrate: integer(file.max_bitrate),
      fileSize: integer(file.file_size), scalable: flag(file.scalable),
      maintainAspectRatio: flag(file.maintain_aspect_ratio))
  }
}

/// A resource of a companion or a verification.
public struct VastResource: Equatable, Sendable {
  /// White space trimmed at both ends.
  public let url: String?
  /// MIME type; nil for a script.
  public let type: String?
  /// Of a verification.
  public let apiFramework: String?
  /// Of a verification's script.
  public let browserOptional: Bool?
}

func resources(_ all: UnsafePointer<tamzo_vast_resources>?) -> [VastResource] {
  guard let all = all?.pointee else { return [] }
  return items(all.count, all.items) {
    VastResource(
      url: text($0.url), type: text($0.type), apiFramework: text($0.api_framework),
      browserOptional: flag($0.browser_optional))
  }
}

/// A companion; what is absent is nil.
public struct VastCompanion: Equatable, Sendable {
  public let id: String?
  /// Pixels.
  public let width: Int32?
  /// Pixels.
  public let height: Int32?
  public let adSlotId: String?
  public let apiFramework: String?
  public let altText: String?
  /// Images and the like.
  public let staticResources: [VastResource]
  /// URLs.
  public let iframeResources: [String]
  /// Markup.
  public let htmlResources: [String]
  public let clickThrough: String?
  /// URLs.
  public let clickTracking: [String]
  public let trackers: [VastEvent]
}

func companion(_ companion: tamzo_vast_companion) -> VastCompanion {
  VastCompanion(
    id: text(companion.id), width: integer(companion.width), height: integer(companion.height),
    adSlotId: text(companion.ad_slot_id), apiFramework: text(companion.api_framework),
    altText: text(companion.alt_text), staticResources: resources(companion.static_resources),
    iframeResources: texts(companion.iframe_resources) ?? [],
    htmlResources: texts(companion.html_resources) ?? [],
    clickThrough: text(companion.click_through),
    clickTracking: texts(companion.click_tracking) ?? [],
    trackers: trackers(companion.trackers) ?? [])
}

func companions(_ ad: tamzo_vast_companion_ad) -> [VastCompanion] {
  items(ad.count, ad.items, companion)
}

/// The companions of each document of the chain that has any.
func companionAds(_ all: UnsafePointer<tamzo_vast_companion_ads>?) -> [[VastCompanion]]? {
  guard let all = all?.pointee else { return nil }
  return items(all.count, all.items, companions)
}

/// Who measures, and with what.
public struct VastVerification: Equatable, Sendable {
  public let vendor: String?
  /// Scripts.
  public let javascriptResources: [VastResource]
  /// Programs of a platform.
  public let executableResources: [VastResource]
  /// Untrimmed.
  public let verificationParameters: String?
  public let trackers: [VastEvent]
}

func verifications(_ all: UnsafePointer<tamzo_vast_verifications>?) -> [VastVerification]? {
  guard let all = all?.pointee else { return nil }
  return items(all.count, all.items) {
    VastVerification(
      vendor: text($0.vendor), javascriptResources: resources($0.javascript_resources),
      executableResources: resources($0.executable_resources),
      verificationParameters: text($0.verification_parameters),
      trackers: trackers($0.trackers) ?? [])
  }
}

/// A copy of an element of a document.
public struct VastElement: Equatable, Sendable {
  /// As written, prefix included.
  public let name: String
  /// By name as written, in document order.
  public let attributes: [VastAttribute]
  /// Of the element and of all below it, untrimmed.
  public let text: String
  /// Written back as XML.
  public let xml: String
}

/// An attribute.
public struct VastAttribute: Equatable, Sendable {
  /// As written, prefix included.
  public let name: String
  /// As it stands, entities resolved.
  public let value: String
}

func attributes(_ element: OpaquePointer) -> [VastAttribute] {
  var all: UnsafeMutablePointer<tamzo_vast_attributes>?
  guard tamzo_vast_element_attributes(element, &all) == TAMZO_VAST_OK, let all = all else { return [] }
  defer { tamzo_vast_attributes_release(all) }
  return items(all.pointee.count, all.pointee.items) {
    VastAttribute(name: text($0.name) ?? "", value: text($0.value) ?? "")
  }
}

func element(_ element: OpaquePointer) -> VastElement {
  var name: OpaquePointer?
  var content: OpaquePointer?
  var xml: OpaquePointer?
  _ = tamzo_vast_element_name(element, &name)
  _ = tamzo_vast_element_text(element, &content)
  _ = tamzo_vast_element_xml(element, &xml)
  return VastElement(
    name: take(name) ?? "", attributes: attributes(element), text: take(content) ?? "",
    xml: take(xml) ?? "")
}

func elements(_ all: UnsafePointer<tamzo_vast_elements>?) -> [VastElement]? {
  guard let all = all?.pointee else { return nil }
  guard let items = all.items else { return [] }
  return (0..<all.count).compactMap { items[$0].map(element) }
}

func namedElements(_ all: UnsafePointer<tamzo_vast_named_elements>?) -> [String: VastElement]? {
  guard let all = all?.pointee else { return nil }
  let pairs = items(all.count, all.items) { (text($0.name) ?? "", $0.element.map(element)) }
  return pairs.reduce(into: [:]) { $0[$1.0] = $1.1 }
}

/// Icons and the vendor's values; or one value of the vendor's that is no list.
public enum VastExtraActions: Equatable, Sendable {
  /// The one value, as JSON.
  case json(String)
  case list([Entry])

  /// An icon, or a value that the vendor sent, as JSON.
  public enum Entry: Equatable, Sendable {
    case icon(VastElement)
    case json(String)
  }
}

func extraActions(_ all: UnsafePointer<tamzo_vast_extra_actions>?) -> VastExtraActions? {
  guard let all = all?.pointee else { return nil }
  if let json = text(all.json) { return .json(json) }
  let entries = items(all.count, all.items) { action -> VastExtraActions.Entry? in
    if let json = text(action.json) { return .json(json) }
    return action.icon.map { .icon(element($0)) }
  }
  return .list(entries.compactMap { $0 })
}

/// What is kept for a JavaScript VPAID ad.
public struct VastVpaidXml: Equatable, Sendable {
  public let vastVersion: String?
}

func vpaidXml(_ xml: UnsafePointer<tamzo_vast_vpaid_xml>?) -> VastVpaidXml? {
  xml.map { VastVpaidXml(vastVersion: text($0.pointee.vast_version)) }
}
