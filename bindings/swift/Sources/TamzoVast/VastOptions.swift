import Foundation

/// Stops the parses that it was given to, from any thread. It stays cancelled for good.
public final class VastCancellation: @unchecked Sendable {
  let handle: OpaquePointer

  public init() throws {
    var made: OpaquePointer?
    try check(tamzo_vast_cancellation_create(&made))
    handle = made!
  }

  deinit { tamzo_vast_cancellation_release(handle) }

  /// Fetches under way fail, and those after them, so that the ads end with error 301.
  public func cancel() { tamzo_vast_cancellation_cancel(handle) }
  public var isCancelled: Bool { tamzo_vast_cancellation_is_cancelled(handle) }
}

/// What a reader is asked for.
public struct VastRequest: Sendable {
  /// The URL, escaped.
  public let url: String
  /// Which document of the chain, 1 for the first.
  public let hop: Int32
  /// Seconds that are left for this fetch.
  public let secondsLeft: Double
  /// Most bytes that the body may have.
  public let maxBytes: Int
}

/// What a parse is given beside its response. One may serve many parses, also at once, once it is
/// set up: change it on one thread, before. Hooks are called on the threads that parse.
public final class VastOptions: @unchecked Sendable {
  /// Answers with a body; nil, or an error that is thrown, is a failed read, error 301.
  public typealias Reader = @Sendable (VastRequest) throws -> Data?
  /// Answers with a text; nil is nil.
  public typealias TextSource = @Sendable () -> String?

  let handle: OpaquePointer

  /// Every limit and hook has its default.
  public init() throws {
    var made: OpaquePointer?
    try check(tamzo_vast_options_create(&made))
    handle = made!
  }

  deinit { tamzo_vast_options_release(handle) }

  /// Longest time for all fetches of a chain together; infinity is none.
  public func setDeadline(seconds: Double) throws {
    try check(tamzo_vast_options_set_deadline(handle, seconds))
  }

  /// Most bytes of one body and of all bodies of a chain, after decompression.
  public func setMaxBytes(body: Int, chain: Int) throws {
    try check(tamzo_vast_options_set_max_bytes(handle, max(0, body), max(0, chain)))
  }

  /// Shares the cancellation; nil takes it away again.
  public func setCancellation(_ cancellation: VastCancellation?) throws {
    try check(tamzo_vast_options_set_cancellation(handle, cancellation?.handle))
  }

  /// Sent as User-Agent by the library's own reader; nil and "" send none.
  public func setUserAgent(_ userAgent: String?) throws {
    try lend(userAgent) { try check(tamzo_vast_options_set_user_agent(handle, $0)) }
  }

  /// A header for every request of the library's own reader, or for those to one host.
  public func addHeader(_ name: String, _ value: String, host: String? = nil) throws {
    try lend(name) { name in
      try lend(value) { value in
        try lend(host) { try check(tamzo_vast_options_add_header(handle, name, value, $0)) }
      }
    }
  }

  /// Reads URLs in place of the library, with the app's own HTTP client.
  public func setReader(_ reader: @escaping Reader) throws {
    try check(
      tamzo_vast_options_set_reader(handle, answerRead, retained(reader), releaseHook))
  }

  /// Category codes that the app blocks, separated by ",".
  public func setBlockedCategories(_ source: @escaping TextSource) throws {
    try check(
      tamzo_vast_options_set_blocked_categories(handle, answerText, retained(source), releaseHook))
  }

  /// What [TAMZO_SESSION_ID] stands for in the page.
  public func setSessionId(_ source: @escaping TextSource) throws {
    try check(tamzo_vast_options_set_session_id(handle, answerText, retained(source), releaseHook))
  }

  /// The template of the page; nil says that there is none.
  public func setPageTemplate(_ source: @escaping TextSource) throws {
    try check(
      tamzo_vast_options_set_page_template(handle, answerText, retained(source), releaseHook))
  }

  /// Takes the log, a line at a time.
  public func setLog(_ write: @escaping @Sendable (String) -> Void) throws {
    try check(tamzo_vast_options_set_log(handle, takeLine, retained(write), releaseHook))
  }
}

/// Owns the closure of a hook for C, which releases it once.
private final class Hook {
  let closure: Any
  init(_ closure: Any) { self.closure = closure }
}

private func retained(_ closure: Any) -> UnsafeMutableRawPointer {
  Unmanaged.passRetained(Hook(closure)).toOpaque()
}

private func closure<Closure>(_ user: UnsafeMutableRawPointer?, _: Closure.Type) -> Closure? {
  user.flatMap { Unmanaged<Hook>.fromOpaque($0).takeUnretainedValue().closure as? Closure }
}

private func releaseHook(_ user: UnsafeMutableRawPointer?) {
  if let user = user { Unmanaged<Hook>.fromOpaque(user).release() }
}

private func answer(_ reply: OpaquePointer?, _ data: Data) -> Bool {
  data.withUnsafeBytes {
    tamzo_vast_reply_set_bytes(reply, $0.baseAddress, $0.count) == TAMZO_VAST_OK
  }
}

private func answerRead(
  _ user: UnsafeMutableRawPointer?, _ request: OpaquePointer?, _ reply: OpaquePointer?
) -> Bool {
  guard let read = closure(user, VastOptions.Reader.self) else { return false }
  let asked = VastRequest(
    url: text(tamzo_vast_request_url(request)) ?? "", hop: tamzo_vast_request_hop(request),
    secondsLeft: tamzo_vast_request_seconds_left(request),
    maxBytes: Int(clamping: tamzo_vast_request_max_bytes(request)))
  guard let body = (try? read(asked)) ?? nil else { return false }
  return answer(reply, body)
}

private func answerText(_ user: UnsafeMutableRawPointer?, _ reply: OpaquePointer?) -> Bool {
  guard let source = closure(user, VastOptions.TextSource.self) else { return false }
  guard let given = source() else { return true }
  return answer(reply, Data(given.utf8))
}

private func takeLine(_ user: UnsafeMutableRawPointer?, _ line: tamzo_vast_text) {
  closure(user, (@Sendable (String) -> Void).self)?(text(line) ?? "")
}
