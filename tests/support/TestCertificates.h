#pragma once

#include <string>

#include "tests/support/HttpServer.h"

namespace tamzo::testing {

/// What a certificate of a test says.
struct CertificateWanted {
  std::string names =
      "IP:127.0.0.1,DNS:a.test,DNS:b.test";  ///< as OpenSSL writes alternative names
  long validFrom = -3600;                    ///< seconds from now
  long validUntil = 3600;
  bool isSelfSigned = false;  ///< not by the authority
};

/// An authority of certificates, made when it is first asked for, in the folder of temporary files.
class TestCertificates {
 public:
  /// The authority's own certificate.
  static const std::string& caFile();
  /// The system's bundle of certificates with that of the authority behind it; the size of it is
  /// what a phone or server reads. "" where the system has none.
  static const std::string& caFileOfAll();
  /// A certificate for a server.
  static ServerCertificate make(const CertificateWanted& wanted = {});
};

}  // namespace tamzo::testing
