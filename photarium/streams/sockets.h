#pragma once

// The platform's stream sockets: all that differs between systems.

#ifdef _WIN32
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <cerrno>
#endif

#include <climits>
#include <cstddef>
#include <stdexcept>
#include <string>

namespace Sockets {

// Longest wait for a peer that does not read.
constexpr int SendMilliseconds = 2000;

#ifdef _WIN32

using Native = SOCKET;
constexpr Native Invalid = INVALID_SOCKET;
constexpr int SocketFlags = 0;
constexpr int SendFlags = 0;

inline void start() {
  constexpr WORD version = 0x0101;  // 1.1
  WSADATA data;
  if (WSAStartup(version, &data) != 0)
    throw std::runtime_error("Couldn't initialize WinSock2.\n");
  if (data.wVersion == version) return;
  WSACleanup();
  throw std::runtime_error("WinSock doesn't support our version (1.1).\n");
}
inline void stop() {
  WSACleanup();
}
inline void setLastError(int error) {
  WSASetLastError(error);
}
inline bool wasInterrupted() {
  return false;
}
inline void closeNative(Native socket) {
  closesocket(socket);
}
inline bool awaitConnection(Native) {
  return false;
}
inline bool awaitRoom(Native) {
  return false;
}
// Windows bounds the wait by itself.
inline void prepare(Native socket) {
  DWORD const limit = SendMilliseconds;
  setsockopt(socket, SOL_SOCKET, SO_SNDTIMEO,
             reinterpret_cast<char const*>(&limit), sizeof(limit));
}

#else

using Native = int;
constexpr Native Invalid = -1;
#ifdef SOCK_CLOEXEC  // or programs that we start keep the connection open
constexpr int SocketFlags = SOCK_CLOEXEC;
#else
constexpr int SocketFlags = 0;
#endif
#ifdef MSG_NOSIGNAL
constexpr int SendFlags = MSG_DONTWAIT | MSG_NOSIGNAL;
#else
constexpr int SendFlags = MSG_DONTWAIT;
#endif

inline void start() {}
inline void stop() {}
inline void setLastError(int) {}
inline bool wasInterrupted() {
  return errno == EINTR;
}
inline void closeNative(Native socket) {
  ::close(socket);
}
inline bool awaitWritable(Native socket, int milliseconds) {
  pollfd event{socket, POLLOUT, 0};
  int ready = 0;
  do {
    ready = poll(&event, 1, milliseconds);
  } while (ready < 0 && wasInterrupted());
  return ready > 0;
}
// An attempt that a signal interrupted goes on by itself.
inline bool awaitConnection(Native socket) {
  int error = 0;
  socklen_t size = sizeof(error);
  return awaitWritable(socket, /*milliseconds=*/-1) &&
         getsockopt(socket, SOL_SOCKET, SO_ERROR, &error, &size) == 0 &&
         error == 0;
}
// True where a peer that had not read enough has done so in time.
inline bool awaitRoom(Native socket) {
  bool const isFull = errno == EAGAIN || errno == EWOULDBLOCK;
  return isFull && awaitWritable(socket, SendMilliseconds);
}
#ifdef SO_NOSIGPIPE
inline void prepare(Native socket) {
  int const yes = 1;
  setsockopt(socket, SOL_SOCKET, SO_NOSIGPIPE, &yes, sizeof(yes));
}
#else
inline void prepare(Native) {}
#endif

#endif

/// The addresses of a host and service for a TCP connection.
class Addresses {
 public:
  Addresses(std::string const& host, std::string const& port) {
    // Windows would take no name for this computer, and every system the part
    // ahead of a NUL for the name.
    if (host.empty()) return;
    if (host.find('\0') != host.npos || port.find('\0') != port.npos) return;
    addrinfo hints{};
    hints.ai_socktype = SOCK_STREAM;
    hints.ai_protocol = IPPROTO_TCP;
    int const error = getaddrinfo(host.c_str(), port.c_str(), &hints, &first_);
    setLastError(error);
    if (error != 0) first_ = nullptr;
  }
  Addresses(Addresses const&) = delete;
  Addresses& operator=(Addresses const&) = delete;
  ~Addresses() {
    if (first_) freeaddrinfo(first_);
  }

  /// Head of the list, null where the host or the service is unknown.
  addrinfo const* first() const { return first_; }

 private:
  addrinfo* first_ = nullptr;
};

/// One socket, closed with the object.
class Handle {
 public:
  /// A socket for addresses like `entry`; not open where there is none.
  explicit Handle(addrinfo const& entry)
      : native(socket(entry.ai_family, entry.ai_socktype | SocketFlags,
                      entry.ai_protocol)) {}
  Handle(Handle const&) = delete;
  Handle& operator=(Handle const&) = delete;
  ~Handle() { close(); }

  bool isOpen() const { return native != Invalid; }

  void close() {
    if (isOpen()) closeNative(native);
    native = Invalid;
  }

  /// True if the peer at `entry` took the connection.
  bool connect(addrinfo const& entry) {
    auto const length = entry.ai_addrlen;
    if (length > std::size_t(INT_MAX))
      throw std::runtime_error("Hostname too long.\n");
    bool const isConnected =
        ::connect(native, entry.ai_addr, static_cast<socklen_t>(length)) == 0 ||
        (wasInterrupted() && awaitConnection(native));
    if (isConnected) prepare(native);
    return isConnected;
  }

  /// Bytes sent, or -1 for this call and all later ones: the peer is gone, or
  /// reads nothing.
  long send(char const* data, std::size_t size) {
    if (isBroken) return -1;
    long sent = 0;
    do {
      sent = static_cast<long>(
          ::send(native, data, static_cast<Size>(size), SendFlags));
    } while (sent < 0 && (wasInterrupted() || awaitRoom(native)));
    isBroken = sent < 0;
    return sent;
  }

  /// Bytes received, 0 at the end, -1 on failure. Waits for them.
  long receive(char* data, std::size_t size) {
    long received = 0;
    do {
      received = static_cast<long>(
          ::recv(native, data, static_cast<Size>(size), /*flags=*/0));
    } while (received < 0 && wasInterrupted());
    return received;
  }

 private:
#ifdef _WIN32
  using Size = int;
#else
  using Size = std::size_t;
#endif

  Native native;
  bool isBroken = false;
};

}  // namespace Sockets
