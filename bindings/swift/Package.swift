// swift-tools-version:5.7
// Not compiled here: see docs/swift.md.

import PackageDescription

let package = Package(
  name: "TamzoVast",
  platforms: [.iOS("16.3"), .macOS("13.3")],
  products: [.library(name: "TamzoVast", targets: ["TamzoVast"])],
  targets: [
    // The installed library, which pkg-config finds. An app has an XCFramework in its place, whose
    // module is TamzoVastC: .binaryTarget(name: "TamzoVastC", path: "TamzoVast.xcframework").
    .systemLibrary(name: "CTamzoVast", pkgConfig: "tamzovast"),
    .target(name: "TamzoVast", dependencies: ["CTamzoVast"]),
  ]
)
