import Foundation

/// The record of one ad. Each property is a copy; nil is what was never written, and "" what was
/// written empty. May be used from any thread: a lock keeps what changes a record from those that
/// read it. What fails throws a VastError.
public final class VastAd: @unchecked Sendable {
  private let handle: OpaquePointer
  private let lock = NSRecursiveLock()

  private init(_ handle: OpaquePointer) { self.handle = handle }

  deinit { tamzo_vast_ad_release(handle) }

  /// Parses an ad server's response, or what it gives when it is a URL that begins with "http", and
  /// follows its Wrappers; blocks meanwhile. Gives a record also for a failed ad, whose errorCode
  /// says why.
  public static func parse(_ data: Data, options: VastOptions? = nil) throws -> VastAd {
    try data.withUnsafeBytes { try parse($0, options) }
  }

  /// As parse(_: Data).
  public static func parse(_ bytes: [UInt8], options: VastOptions? = nil) throws -> VastAd {
    try bytes.withUnsafeBytes { try parse($0, options) }
  }

  /// As parse(_: Data).
  public static func parse(_ response: String, options: VastOptions? = nil) throws -> VastAd {
    try parse(Array(response.utf8), options: options)
  }

  private static func parse(_ bytes: UnsafeRawBufferPointer, _ options: VastOptions?) throws -> VastAd {
    var ad: OpaquePointer?
    try withExtendedLifetime(options) {
      try check(tamzo_vast_parse(bytes.baseAddress, bytes.count, options?.handle, &ad))
    }
    return VastAd(ad!)
  }

  func read<Value>(_ body: (OpaquePointer) throws -> Value) rethrows -> Value {
    lock.lock()
    defer { lock.unlock() }
    return try body(handle)
  }

  /// Why the ad failed.
  public var error: VastErrorCode { VastErrorCode(rawValue: errorCode) }

  /// The record as one JSON object, on one line or indented.
  public func json(indented: Bool = false) throws -> String {
    try read { ad in
      var json: OpaquePointer?
      try check(tamzo_vast_ad_as_json(ad, indented, &json))
      return take(json) ?? ""
    }
  }

  /// The page that plays a JavaScript VPAID ad, which is stored in vPaidHTML too. Throws
  /// VastError.noPage where there is none.
  public func page(options: VastOptions? = nil) throws -> String {
    try read { ad in
      var page: OpaquePointer?
      try withExtendedLifetime(options) {
        try check(tamzo_vast_ad_get_page(ad, options?.handle, &page))
      }
      return take(page) ?? ""
    }
  }

  /// The companions of the first document of the chain that had any; nil when there are none.
  public var mostSuitableCompanion: [VastCompanion]? {
    read { ad in tamzo_vast_ad_most_suitable_companion(ad).map { companions($0.pointee) } }
  }

  /// The companion of those of a document of the chain, by its index in companionAds, that fills a
  /// slot of that size in pixels best; nil when none fits.
  public func companion(of index: Int, width: Int32, height: Int32) throws -> VastCompanion? {
    try read { ad in
      guard let all = tamzo_vast_ad_companionAds(ad)?.pointee, (0..<all.count).contains(index) else {
        throw VastError.invalidArgument
      }
      var best: UnsafePointer<tamzo_vast_companion>?
      try check(tamzo_vast_ad_companion_for_slot(ad, all.items[index], width, height, &best))
      return best.map { TamzoVast.companion($0.pointee) }
    }
  }

  /// Sets iconMap to the click elements of the first icon below a card.
  public func imageAd(card index: Int) throws -> [String: VastElement] {
    try read { ad in
      guard let all = tamzo_vast_ad_cards(ad)?.pointee, (0..<all.count).contains(index) else {
        throw VastError.invalidArgument
      }
      try check(tamzo_vast_ad_get_image_ad(ad, all.items[index]))
      return namedElements(tamzo_vast_ad_iconMap(ad)) ?? [:]
    }
  }
}
