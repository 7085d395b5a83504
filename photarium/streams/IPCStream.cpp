#include "photarium/streams/IPCStream.h"

#include <locale>

IPCStream::IPCStream() : std::iostream(nullptr) {
  rdbuf(&buf);  // now that it exists
  imbue(std::locale::classic());
}

// The connection stays with the other stream.
IPCStream::IPCStream(IPCStream const&) : IPCStream() {}

IPCStream& IPCStream::operator=(IPCStream const& other) {
  if (this == &other) return *this;
  buf = IPCBuf();
  clear();
  return *this;
}

IPCStream::~IPCStream() = default;

void IPCStream::Connect(std::string const& address) {
  buf.Connect(address);
}

bool IPCStream::isConnected() const {
  return buf.isConnected();
}
