#include "tests/support/TestCertificates.h"

#include <openssl/evp.h>
#include <openssl/pem.h>
#include <openssl/x509v3.h>
#include <unistd.h>

#include <cstdio>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <stdexcept>

namespace tamzo::testing {
namespace {

struct Free {
  void operator()(EVP_PKEY* key) const noexcept { EVP_PKEY_free(key); }
  void operator()(X509* certificate) const noexcept { X509_free(certificate); }
  void operator()(std::FILE* file) const noexcept { std::fclose(file); }
};
using Key = std::unique_ptr<EVP_PKEY, Free>;
using Certificate = std::unique_ptr<X509, Free>;

struct Pair {
  Key key;
  Certificate certificate;
};

// Removed when the process ends.
class Folder {
 public:
  Folder()
      : path_(std::filesystem::temp_directory_path() /
              ("tamzo-certificates-" + std::to_string(getpid()))) {
    std::filesystem::create_directories(path_);
  }
  ~Folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }
  std::string file(const std::string& name) const { return path_ / name; }

 private:
  std::filesystem::path path_;
};

const Folder& folder() {
  static const Folder it;
  return it;
}

int nextNumber() {
  static int number = 0;
  return ++number;
}

void addExtension(X509* certificate, X509* issuer, int id, const std::string& value) {
  X509V3_CTX context{};
  X509V3_set_ctx(&context, issuer, certificate, nullptr, nullptr, 0);
  X509_EXTENSION* extension = X509V3_EXT_conf_nid(nullptr, &context, id, value.c_str());
  if (extension == nullptr) {
    throw std::runtime_error("no such extension: " + value);
  }
  X509_add_ext(certificate, extension, -1);
  X509_EXTENSION_free(extension);
}

Pair make(const std::string& name, const CertificateWanted& wanted, const Pair* issuer) {
  Pair pair{Key(EVP_EC_gen("P-256")), Certificate(X509_new())};
  X509* certificate = pair.certificate.get();
  X509_set_version(certificate, X509_VERSION_3);
  ASN1_INTEGER_set(X509_get_serialNumber(certificate), nextNumber());
  X509_gmtime_adj(X509_getm_notBefore(certificate), wanted.validFrom);
  X509_gmtime_adj(X509_getm_notAfter(certificate), wanted.validUntil);
  X509_set_pubkey(certificate, pair.key.get());
  X509_NAME_add_entry_by_txt(X509_get_subject_name(certificate), "CN", MBSTRING_ASC,
                             reinterpret_cast<const unsigned char*>(name.c_str()), -1, -1, 0);
  X509* by = issuer == nullptr ? certificate : issuer->certificate.get();
  X509_set_issuer_name(certificate, X509_get_subject_name(by));
  if (wanted.names.empty()) {
    addExtension(certificate, by, NID_basic_constraints, "critical,CA:TRUE");
  } else {
    addExtension(certificate, by, NID_subject_alt_name, wanted.names);
  }
  X509_sign(certificate, (issuer == nullptr ? pair : *issuer).key.get(), EVP_sha256());
  return pair;
}

void write(const std::string& path, const Pair& pair, bool isKey) {
  const std::unique_ptr<std::FILE, Free> file(std::fopen(path.c_str(), "w"));
  if (file == nullptr) {
    throw std::runtime_error("cannot write " + path);
  }
  if (isKey) {
    PEM_write_PrivateKey(file.get(), pair.key.get(), nullptr, nullptr, 0, nullptr, nullptr);
  } else {
    PEM_write_X509(file.get(), pair.certificate.get());
  }
}

const Pair& authority() {
  static const Pair pair = [] {
    CertificateWanted wanted;
    wanted.names = "";
    return make("Test authority", wanted, nullptr);
  }();
  return pair;
}

std::string readFile(const std::string& path) {
  std::ifstream file(path);
  return {std::istreambuf_iterator<char>(file), {}};
}

}  // namespace

const std::string& TestCertificates::caFile() {
  static const std::string path = [] {
    std::string file = folder().file("ca.pem");
    write(file, authority(), false);
    return file;
  }();
  return path;
}

const std::string& TestCertificates::caFileOfAll() {
  static const std::string path = [] {
    const std::string systems = readFile("/etc/ssl/certs/ca-certificates.crt");
    std::string file = folder().file("all.pem");
    std::ofstream(file) << systems << readFile(caFile());
    return systems.empty() ? std::string() : file;
  }();
  return path;
}

ServerCertificate TestCertificates::make(const CertificateWanted& wanted) {
  const Pair pair = testing::make("server", wanted, wanted.isSelfSigned ? nullptr : &authority());
  const std::string stem = folder().file("server-" + std::to_string(nextNumber()));
  write(stem + ".pem", pair, false);
  write(stem + ".key", pair, true);
  return {stem + ".pem", stem + ".key"};
}

}  // namespace tamzo::testing
