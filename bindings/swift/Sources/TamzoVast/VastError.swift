/// What a call of the library can fail with. A failed ad is no such error: its record says why.
public enum VastError: Error, Equatable, Sendable {
  /// A value that cannot be used, such as a header that HTTP would not take.
  case invalidArgument
  /// Nothing was made or changed.
  case noMemory
  /// A hook threw what the parser does not take for a failure.
  case hookFailed
  /// The ad has no tag or no template, its page is too large, a hook failed, or memory ran out.
  case noPage
}

/// Throws what a status says.
func check(_ status: tamzo_vast_status) throws {
  switch status {
  case TAMZO_VAST_OK: return
  case TAMZO_VAST_NO_MEMORY: throw VastError.noMemory
  case TAMZO_VAST_HOOK_FAILED: throw VastError.hookFailed
  case TAMZO_VAST_NO_PAGE: throw VastError.noPage
  default: throw VastError.invalidArgument
  }
}

/// A code that a parse can end with, which is an IAB VAST error code.
public struct VastErrorCode: RawRepresentable, Hashable, Sendable {
  public let rawValue: Int32
  public init(rawValue: Int32) { self.rawValue = rawValue }

  public static let success = VastErrorCode(rawValue: 0)
  public static let exception = VastErrorCode(rawValue: 100)
  public static let notXml = VastErrorCode(rawValue: 101)
  public static let badVersion = VastErrorCode(rawValue: 102)
  public static let categoryBlocked = VastErrorCode(rawValue: 205)
  public static let noWrapperOrInLine = VastErrorCode(rawValue: 300)
  public static let emptyContent = VastErrorCode(rawValue: 301)
  public static let wrapperLimit = VastErrorCode(rawValue: 302)
  public static let noAd = VastErrorCode(rawValue: 303)
  public static let noUsableLinear = VastErrorCode(rawValue: 405)

  /// A few words, such as "not XML"; nil for a code that no parse ends with.
  public var name: String? { text(tamzo_vast_error_name(rawValue)) }
  /// What happened, in a sentence without a full stop; nil as above.
  public var cause: String? { text(tamzo_vast_error_cause(rawValue)) }
}
