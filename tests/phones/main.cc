// Runs the tests as an app runs the parser: without libcurl, with a reader of its own.

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cstdint>
#include <optional>
#include <string>

#include "tests/support/HostHooks.h"

namespace tamzo::testing {
namespace {

// The answer of "http://127.0.0.1:PORT/path", headers and all; "" when there is none.
std::string answerOf(const std::string& url) {
  const std::size_t port = url.find(':', 5) + 1;
  const std::size_t path = url.find('/', port);
  const int connection = socket(AF_INET, SOCK_STREAM, 0);
  sockaddr_in address{};
  address.sin_family = AF_INET;
  address.sin_port = htons(static_cast<std::uint16_t>(std::stoi(url.substr(port, path - port))));
  address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
  const std::string request = "GET " + url.substr(path) + " HTTP/1.0\r\n\r\n";
  std::string answer;
  if (connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0 &&
      send(connection, request.data(), request.size(), 0) == static_cast<ssize_t>(request.size())) {
    shutdown(connection, SHUT_WR);  // the server keeps connections for those who may ask again
    char block[4096];
    for (ssize_t got = 0; (got = recv(connection, block, sizeof block, 0)) > 0;) {
      answer.append(block, static_cast<std::size_t>(got));
    }
  }
  close(connection);
  return answer;
}

std::optional<std::string> readBody(const Text& url) {
  const std::string answer = answerOf(std::string(url.view()));
  const std::size_t end = answer.find("\r\n\r\n");
  if (answer.find(" 200 ") > answer.find('\n') || end == std::string::npos) {
    return std::nullopt;
  }
  return answer.substr(end + 4);
}

class OwnReader : public ::testing::EmptyTestEventListener {
  void OnTestStart(const ::testing::TestInfo&) override { readUrlsWith(readBody); }
};

}  // namespace
}  // namespace tamzo::testing

int main(int argc, char** argv) {
  ::testing::InitGoogleTest(&argc, argv);
  ::testing::UnitTest::GetInstance()->listeners().Append(new tamzo::testing::OwnReader);
  return RUN_ALL_TESTS();
}
