// SPDX-License-Identifier: MIT
// The server does what its scripts say, seen through plain sockets.
#include "support/scripted_server.h"

#include <arpa/inet.h>
#include <gtest/gtest.h>
#include <netinet/in.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#include <thread>

namespace orb::test {
namespace {

using Clock = std::chrono::steady_clock;
using std::chrono::milliseconds;

/// A client's end of a connection.
class Socket {
 public:
  explicit Socket(std::uint16_t port) : socket_(::socket(AF_INET, SOCK_STREAM, 0)) {
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_port = htons(port);
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    if (::connect(socket_, reinterpret_cast<const sockaddr*>(&address), sizeof address) !=
        0) {
      ADD_FAILURE() << "connect: " << errno;
    }
  }
  ~Socket() { ::close(socket_); }
  Socket(const Socket&) = delete;
  Socket& operator=(const Socket&) = delete;

  void write(const std::string& bytes) {
    EXPECT_EQ(::send(socket_, bytes.data(), bytes.size(), MSG_NOSIGNAL),
              static_cast<ssize_t>(bytes.size()));
  }

  /// Waits for this many bytes; fewer when the server ends first.
  std::string read(std::size_t size) {
    std::string bytes(size, '\0');
    std::size_t count = 0;
    for (ssize_t part = 1; part > 0 && count < size;) {
      part = ::recv(socket_, &bytes[count], size - count, 0);
      error_ = part < 0 ? errno : 0;
      if (part > 0) count += static_cast<std::size_t>(part);
    }
    bytes.resize(count);
    return bytes;
  }

  int error() const { return error_; }

 private:
  const int socket_;
  int error_ = 0;  // of the last read
};

const char* const kRequest = "POST /f HTTP/1.1\r\ncontent-LENGTH: 3\r\n\r\nabc";

TEST(ScriptedServer, RecordsRequestsAndAnswersEachWithItsScript) {
  ScriptedServer server({send("usual")});
  server.onRequest({send("first")});
  Socket socket(server.port());
  socket.write(std::string(kRequest) + "GET / HTTP/1.1\r\n\r\n");
  EXPECT_EQ(socket.read(10), "firstusual");
  Socket other(server.port());
  other.write(kRequest);
  EXPECT_EQ(other.read(5), "usual");
  const std::vector<Request> requests = server.requests();
  ASSERT_EQ(requests.size(), 3U);
  EXPECT_EQ(requests[0].head, "POST /f HTTP/1.1\r\ncontent-LENGTH: 3\r\n\r\n");
  EXPECT_EQ(requests[0].body, "abc");
  EXPECT_EQ(requests[1].head, "GET / HTTP/1.1\r\n\r\n");
  EXPECT_EQ(requests[1].body, "");
  EXPECT_EQ(requests[1].connection, 0U);
  EXPECT_EQ(requests[2].connection, 1U);
  EXPECT_EQ(server.connections(), 2U);
}

TEST(ScriptedServer, PutsARequestTogetherFromItsParts) {
  ScriptedServer server({send("usual")});
  Socket socket(server.port());
  for (const char byte : std::string(kRequest)) socket.write(std::string(1, byte));
  EXPECT_EQ(socket.read(5), "usual");
  EXPECT_EQ(server.requests().at(0).body, "abc");
}

TEST(ScriptedServer, ClosesAndForgetsTheStepsBehind) {
  ScriptedServer server({send("usual"), close(), send("more")});
  Socket socket(server.port());
  socket.write(kRequest);
  EXPECT_EQ(socket.read(100), "usual");
  EXPECT_EQ(socket.error(), 0);
}

TEST(ScriptedServer, Resets) {
  ScriptedServer server({pause(milliseconds(20)), reset()});
  Socket socket(server.port());
  socket.write(kRequest);
  EXPECT_EQ(socket.read(100), "");
  EXPECT_EQ(socket.error(), ECONNRESET);
}

TEST(ScriptedServer, ShutsDownWritingAndGoesOnReading) {
  ScriptedServer server({send("usual"), shutDownWriting()});
  Socket socket(server.port());
  socket.write(kRequest);
  EXPECT_EQ(socket.read(100), "usual");
  socket.write(kRequest);
  while (server.requests().size() < 2) std::this_thread::yield();
}

TEST(ScriptedServer, DripsAndPauses) {
  ScriptedServer server(
      {drip("abc", milliseconds(10)), pause(milliseconds(20)), close()});
  Socket socket(server.port());
  const Clock::time_point start = Clock::now();
  socket.write(kRequest);
  EXPECT_EQ(socket.read(1), "a");
  EXPECT_EQ(socket.read(100), "bc");
  EXPECT_GE(Clock::now() - start, milliseconds(50));
}

TEST(ScriptedServer, ActsOnAConnectionBeforeARequest) {
  ScriptedServer server({send("usual")});
  server.onConnection({send("early"), close()});
  EXPECT_EQ(Socket(server.port()).read(100), "early");
  EXPECT_TRUE(server.requests().empty());
}

TEST(ScriptedServer, EndsWhileItStallsAndPauses) {
  const Clock::time_point start = Clock::now();
  {
    ScriptedServer server({stall()});
    server.onRequest({pause(std::chrono::hours(1))});
    Socket pausing(server.port());
    pausing.write(kRequest);
    while (server.requests().empty()) std::this_thread::yield();
    Socket stalling(server.port());
    stalling.write(kRequest);
    Socket idle(server.port());
  }
  EXPECT_LT(Clock::now() - start, std::chrono::seconds(5));
}

}  // namespace
}  // namespace orb::test
