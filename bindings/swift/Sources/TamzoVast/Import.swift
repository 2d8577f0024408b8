// The interface for C: of an XCFramework, or of the installed library.
#if canImport(TamzoVastC)
@_exported import TamzoVastC
#else
@_exported import CTamzoVast
#endif
