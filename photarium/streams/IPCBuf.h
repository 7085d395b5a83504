#pragma once

#include <cstddef>
#include <memory>
#include <streambuf>
#include <string>

#include "photarium/foundation/export.h"

namespace Sockets {
class Handle;
}

/// Stream buffer over a TCP connection to a program that wants to know how far
/// the work is. IPCStream is the stream to use it through.
///
/// Without a connection reading meets the end at once, and whatever is written
/// is dropped with success: progress is optional. A peer that is gone, or that
/// reads nothing for two seconds while the system's own buffers are full, ends
/// writing: overflow() returns the end-of-file value, the stream goes bad, and
/// nothing else happens. No signal is raised, nothing is thrown.
///
/// Copies share one connection. It is closed once: by Close() or Connect() of
/// any of them, or with the last one.
///
/// One thread at a time, copies included.
class PHOTARIUM_EXPORT IPCBuf : public std::streambuf {
 public:
  /// An unconnected buffer. Throws std::runtime_error "Couldn't initialize
  /// WinSock2.\n" or "WinSock doesn't support our version (1.1).\n" where the
  /// system's socket library needs a start and refuses it.
  IPCBuf();

  /// A buffer on the same connection, with areas of its own and the same bytes
  /// in them: text in the put area is sent by each copy.
  IPCBuf(IPCBuf const& other);
  IPCBuf& operator=(IPCBuf const& other);

  /// Sends what is in the put area and lets go of the connection.
  ~IPCBuf() override;

  /// Connects to `address`: "host:port", ":port" (on localhost) or "host" (port
  /// 12345). The first colon counts, so that an IPv6 address needs a name. The
  /// port may be the name of a service.
  ///
  /// A connection that is open is closed once the host is found. Nothing that
  /// was written before goes out by the new one. Throws std::runtime_error
  /// "Host ADDRESS not found.\n" or "Connection to ADDRESS failed.\n"; the
  /// latter leaves the buffer unconnected.
  void Connect(std::string const& address);

  /// Closes the connection, if there is one. The put area is not sent.
  void Close();

  /// True from Connect() to Close(). A peer that is gone is not noticed.
  bool isConnected() const;

 protected:
  /// Sends the put area and `c`, if that is not the end-of-file value. Returns
  /// `c`, 0 for the end-of-file value, and the end-of-file value on failure.
  int overflow(int c) override;

  /// Waits for bytes. Returns the end-of-file value once the peer has closed.
  int underflow() override;

  int sync() override;

 private:
  static constexpr std::size_t Size = 256;

  void clearAreas();
  void copyAreas(IPCBuf const& other);

  std::shared_ptr<Sockets::Handle> Socket;  // null: never connected
  char getArea[Size];
  char putArea[Size + 1];  // with a place for the character of overflow()
};
