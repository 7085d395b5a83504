#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "tests/support/sockets.h"

/// The far end of one TCP connection. Nothing waits longer than ten seconds.
class Peer {
 public:
  explicit Peer(TestSocket socket) : socket_(socket) {}
  Peer(Peer&& other) noexcept
      : socket_(std::exchange(other.socket_, NoSocket)) {}
  Peer& operator=(Peer&&) = delete;
  ~Peer() { close(); }

  bool isOpen() const { return socket_ != NoSocket; }

  void close() {
    if (isOpen()) closeSocket(socket_);
    socket_ = NoSocket;
  }

  /// Ends the connection as a program does that is killed.
  void reset() {
    linger const atOnce{1, 0};
    auto const* const bytes = reinterpret_cast<char const*>(&atOnce);
    EXPECT_EQ(setsockopt(socket_, SOL_SOCKET, SO_LINGER, bytes, sizeof(atOnce)),
              0);
    close();
  }

  void send(std::string const& text) {
    auto const size = static_cast<ByteCount>(text.size());
    EXPECT_EQ(std::size_t(::send(socket_, text.data(), size, TestSendFlags)),
              text.size());
  }

  /// The next `size` bytes; fewer if the connection ends or time is up.
  std::string receive(std::size_t size = std::string::npos) {
    std::string text;
    char bytes[4096];
    while (text.size() < size && isReady(socket_)) {
      std::size_t const wanted = std::min(sizeof(bytes), size - text.size());
      auto const got =
          ::recv(socket_, bytes, static_cast<ByteCount>(wanted), 0);
      if (got <= 0) break;
      text.append(bytes, std::size_t(got));
    }
    return text;
  }

  /// True once `socket` has something to take, false when time is up.
  static bool isReady(TestSocket socket, int milliseconds = 10000) {
    pollfd event{socket, POLLIN, 0};
    return pollSocket(event, milliseconds) == 1;
  }

 private:
  TestSocket socket_;
};

/// False on a machine without /etc/hosts, as in a bare chroot.
inline bool isLocalhostKnown() {
  addrinfo* found = nullptr;
  bool const isKnown =
      startSockets() && getaddrinfo("localhost", nullptr, nullptr, &found) == 0;
  if (isKnown) freeaddrinfo(found);
  return isKnown;
}

/// A server on a free port of the loopback address.
class Listener {
 public:
  explicit Listener(int backlog = 8) {
    EXPECT_TRUE(startSockets());
    sockaddr_in address{};
    address.sin_family = AF_INET;
    address.sin_addr.s_addr = htonl(INADDR_LOOPBACK);
    socklen_t size = sizeof(address);
    auto* const generic = reinterpret_cast<sockaddr*>(&address);
    socket_ = ::socket(AF_INET, SOCK_STREAM | TestSocketFlags, 0);
    EXPECT_EQ(::bind(socket_, generic, size), 0);
    EXPECT_EQ(::listen(socket_, backlog), 0);
    EXPECT_EQ(::getsockname(socket_, generic, &size), 0);
    port_ = ntohs(address.sin_port);
  }
  Listener(Listener const&) = delete;
  Listener& operator=(Listener const&) = delete;
  ~Listener() { close(); }

  void close() {
    if (socket_ != NoSocket) closeSocket(socket_);
    socket_ = NoSocket;
  }

  std::string port() const { return std::to_string(port_); }
  std::string address() const { return "127.0.0.1:" + port(); }

  /// The next connection, not open if none comes in time.
  Peer accept(int milliseconds = 10000) {
    return Peer(Peer::isReady(socket_, milliseconds)
                    ? ::accept(socket_, nullptr, nullptr)
                    : NoSocket);
  }

 private:
  TestSocket socket_ = NoSocket;
  std::uint16_t port_ = 0;
};

/// A controlling program: takes one connection and all that comes over it,
/// while the case goes on.
///
///     ProgressListener listener;
///     config.IPC.Connect(listener.address());
///     ... work, and let go of the connection ...
///     EXPECT_EQ(listener.lines().back(), "Progress: 100");
class ProgressListener {
 public:
  ProgressListener()
      : thread_([this] { text_ = listener_.accept().receive(); }) {}
  ~ProgressListener() {
    if (thread_.joinable()) thread_.join();
  }

  std::string address() const { return listener_.address(); }

  /// All that came. Waits for the end of the connection.
  std::string const& text() {
    if (thread_.joinable()) thread_.join();
    return text_;
  }

  /// The same by lines. A last line without end is one, too.
  std::vector<std::string> lines() {
    std::vector<std::string> result;
    std::string line;
    for (char c : text()) {
      if (c != '\n') line += c;
      if (c == '\n') result.push_back(std::exchange(line, ""));
    }
    if (!line.empty()) result.push_back(line);
    return result;
  }

 private:
  Listener listener_;
  std::string text_;
  std::thread thread_;
};
