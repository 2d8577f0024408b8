// An app in Swift: parses a response with a reader of its own and prints what to play.
// Not compiled here: see docs/swift.md.

import Foundation
import TamzoVast

/// Answers with what the app's own HTTP client brings; here, with a file.
func options(reading file: URL, _ cancellation: VastCancellation) throws -> VastOptions {
  let options = try VastOptions()
  try options.setDeadline(seconds: 10)
  try options.setCancellation(cancellation)
  try options.setReader { request in try Data(contentsOf: file) }
  return options
}

func play(_ file: URL) throws {
  let cancellation = try VastCancellation()
  let ad = try VastAd.parse(
    "https://ads.example/vast", options: options(reading: file, cancellation))
  guard ad.error == .success else {
    print("no ad:", ad.error.cause ?? "")
    return
  }
  for file in ad.mediaFiles ?? [] {
    print("play:", file.url ?? "")
  }
  if let through = ad.clickThrough {
    print("click:", through)
  }
}

try play(URL(fileURLWithPath: CommandLine.arguments[1]))
