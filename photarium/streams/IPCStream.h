#pragma once

#include <iostream>
#include <string>

#include "photarium/foundation/export.h"
#include "photarium/streams/IPCBuf.h"

/// Text stream to a program that wants to know how far the work is.
///
/// It needs no server: until it is connected, whatever is written is thrown
/// away, so that it can stand in any object. Numbers are in the classic locale.
///
///     IPCStream progress;
///     progress.Connect("localhost:12345");
///     progress << "Progress: " << 50 << std::endl;
///
/// A connection belongs to one stream: a copy is a new, unconnected stream, and
/// so is a stream that another one is assigned to. One thread at a time.
class PHOTARIUM_EXPORT IPCStream : public std::iostream {
 public:
  /// An unconnected stream. Throws as IPCBuf().
  IPCStream();
  IPCStream(IPCStream const& other);
  IPCStream& operator=(IPCStream const& other);

  /// Sends what is left and closes the connection.
  ~IPCStream() override;

  /// Connects to `address` and throws as IPCBuf::Connect() does.
  void Connect(std::string const& address);

  /// True once Connect() went well. A peer that is gone is not noticed.
  bool isConnected() const;

 private:
  IPCBuf buf;
};
