#pragma once

// Stream sockets under one set of names on every system.

#ifdef _WIN32
#define WIN32_LEAN_AND_MEAN
#include <winsock2.h>
#include <ws2tcpip.h>
#else
#include <arpa/inet.h>
#include <netdb.h>
#include <netinet/in.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>
#endif

#include <cstddef>

#ifdef _WIN32

using TestSocket = SOCKET;
constexpr TestSocket NoSocket = INVALID_SOCKET;
constexpr int TestSocketFlags = 0;
constexpr int TestSendFlags = 0;
using ByteCount = int;

inline void closeSocket(TestSocket socket) {
  closesocket(socket);
}
inline int pollSocket(pollfd& event, int milliseconds) {
  return WSAPoll(&event, 1, milliseconds);
}
inline bool startSockets() {
  WSADATA data;
  static bool const isStarted = WSAStartup(0x0202, &data) == 0;
  return isStarted;
}

#else

using TestSocket = int;
constexpr TestSocket NoSocket = -1;
constexpr int TestSocketFlags = SOCK_CLOEXEC;
constexpr int TestSendFlags = MSG_NOSIGNAL;
using ByteCount = std::size_t;

inline void closeSocket(TestSocket socket) {
  ::close(socket);
}
inline int pollSocket(pollfd& event, int milliseconds) {
  return poll(&event, 1, milliseconds);
}
inline bool startSockets() {
  return true;
}

#endif
