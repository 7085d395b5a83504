#include "photarium/streams/IPCBuf.h"

#include <algorithm>
#include <stdexcept>
#include <utility>

#include "photarium/streams/sockets.h"

namespace {

using Traits = std::char_traits<char>;

struct Endpoint {
  std::string host = "localhost";
  std::string port = "12345";
};

Endpoint endpoint(std::string const& address) {
  Endpoint result;
  std::size_t const colon = address.find(':');
  if (colon != 0) result.host = address.substr(0, colon);
  if (colon != std::string::npos) result.port = address.substr(colon + 1);
  return result;
}

}  // namespace

IPCBuf::IPCBuf() {
  Sockets::start();
  clearAreas();
}

IPCBuf::IPCBuf(IPCBuf const& other)
    : std::streambuf(other), Socket(other.Socket) {
  Sockets::start();
  copyAreas(other);
}

IPCBuf& IPCBuf::operator=(IPCBuf const& other) {
  if (this == &other) return *this;
  std::streambuf::operator=(other);
  Socket = other.Socket;
  copyAreas(other);
  return *this;
}

IPCBuf::~IPCBuf() {
  IPCBuf::overflow(Traits::eof());
  Socket.reset();
  Sockets::stop();
}

void IPCBuf::Connect(std::string const& address) {
  auto const [host, port] = endpoint(address);
  Sockets::Addresses const addresses(host, port);
  if (!addresses.first())
    throw std::runtime_error("Host " + address + " not found.\n");
  Close();
  for (auto entry = addresses.first(); entry; entry = entry->ai_next) {
    auto candidate = std::make_shared<Sockets::Handle>(*entry);
    if (!candidate->isOpen() || !candidate->connect(*entry)) continue;
    Socket = std::move(candidate);
    clearAreas();
    return;
  }
  throw std::runtime_error("Connection to " + address + " failed.\n");
}

void IPCBuf::Close() {
  if (Socket) Socket->close();
}

bool IPCBuf::isConnected() const {
  return Socket && Socket->isOpen();
}

int IPCBuf::overflow(int c) {
  bool const hasCharacter = !Traits::eq_int_type(c, Traits::eof());
  if (isConnected()) {
    if (hasCharacter) *pptr() = Traits::to_char_type(c);
    char const* data = pbase();
    char const* const end = pptr() + (hasCharacter ? 1 : 0);
    while (data != end) {
      long const sent =
          Socket->send(data, static_cast<std::size_t>(end - data));
      if (sent < 0) return Traits::eof();
      data += sent;
    }
  }
  setp(putArea, putArea + Size);
  return hasCharacter ? c : 0;
}

int IPCBuf::underflow() {
  if (!isConnected()) return Traits::eof();
  long const received = Socket->receive(getArea, Size);
  if (received < 1) return Traits::eof();
  setg(getArea, getArea, getArea + received);
  return Traits::to_int_type(getArea[0]);
}

int IPCBuf::sync() {
  return overflow(Traits::eof()) == Traits::eof() ? -1 : 0;
}

void IPCBuf::clearAreas() {
  setg(getArea, getArea, getArea);
  setp(putArea, putArea + Size);
}

// The bytes of the other buffer, with positions in our own areas.
void IPCBuf::copyAreas(IPCBuf const& other) {
  std::copy(other.eback(), other.egptr(), getArea);
  setg(getArea, getArea + (other.gptr() - other.eback()),
       getArea + (other.egptr() - other.eback()));
  std::copy(other.pbase(), other.pptr(), putArea);
  setp(putArea, putArea + Size);
  pbump(static_cast<int>(other.pptr() - other.pbase()));
}
