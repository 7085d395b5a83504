#include "photarium/streams/IPCBuf.h"

#include <chrono>
#include <stdexcept>

#include "tests/support/Listener.h"

namespace {

constexpr int Eof = std::char_traits<char>::eof();

class OpenBuf : public IPCBuf {
 public:
  using IPCBuf::overflow;
  using IPCBuf::sync;
  using IPCBuf::underflow;
};

void put(std::streambuf& buffer, std::string const& text) {
  buffer.sputn(text.data(), std::streamsize(text.size()));
}

std::string failureOf(std::string const& address) {
  IPCBuf buffer;
  try {
    buffer.Connect(address);
  } catch (std::runtime_error const& failure) {
    EXPECT_FALSE(buffer.isConnected());
    return failure.what();
  }
  return "no failure";
}

// Writes until the connection refuses, 64 MB at most.
int writeUntilRefused(OpenBuf& buffer) {
  std::string const text(255, 'x');
  for (int i = 0; i < 1 << 18; ++i) {
    put(buffer, text);
    if (buffer.sync() == -1) return -1;
  }
  return 0;
}

double secondsOf(auto action) {
  auto const begin = std::chrono::steady_clock::now();
  action();
  return std::chrono::duration<double>(std::chrono::steady_clock::now() - begin)
      .count();
}

// Addresses

TEST(IPCBuf, IsUnconnectedAtFirst) {
  EXPECT_FALSE(IPCBuf().isConnected());
}

TEST(IPCBuf, ConnectsToAHostAndPort) {
  Listener listener;
  IPCBuf buffer;
  buffer.Connect("127.0.0.1:" + listener.port());
  EXPECT_TRUE(buffer.isConnected());
  EXPECT_TRUE(listener.accept().isOpen());
}

TEST(IPCBuf, ConnectsToANameThatStandsForSeveralAddresses) {
  if (!isLocalhostKnown()) GTEST_SKIP() << "localhost has no address";
  Listener listener;
  IPCBuf buffer;
  buffer.Connect("localhost:" + listener.port());
  EXPECT_TRUE(listener.accept().isOpen());
}

TEST(IPCBuf, ConnectsToTheDefaultHostForAColonAndAPort) {
  if (!isLocalhostKnown()) GTEST_SKIP() << "localhost has no address";
  Listener listener;
  IPCBuf buffer;
  buffer.Connect(":" + listener.port());
  EXPECT_TRUE(listener.accept().isOpen());
}

TEST(IPCBuf, TakesTheDefaultPortForAHostAlone) {
  // Nobody listens on 127.0.0.9, so that the port cannot be in use.
  EXPECT_EQ(failureOf("127.0.0.9"), "Connection to 127.0.0.9 failed.\n");
}

TEST(IPCBuf, HandsAnEmptyPortOn) {
  EXPECT_EQ(failureOf("127.0.0.1:"), "Connection to 127.0.0.1: failed.\n");
}

TEST(IPCBuf, TakesAnEmptyAddressForTheHost) {
  EXPECT_EQ(failureOf(""), "Host  not found.\n");
}

TEST(IPCBuf, TellsOfAPortThatNobodyListensOn) {
  Listener listener;
  std::string const address = listener.address();
  listener.close();
  EXPECT_EQ(failureOf(address), "Connection to " + address + " failed.\n");
}

TEST(IPCBuf, EndsTheHostAtTheFirstColon) {
  EXPECT_EQ(failureOf("::1"), "Host ::1 not found.\n");
  EXPECT_EQ(failureOf("127.0.0.1:12:34"), "Host 127.0.0.1:12:34 not found.\n");
}

TEST(IPCBuf, FindsNoHostOrPortWithANul) {
  Listener listener;
  std::string const nul(1, '\0');
  // The text of an exception ends at the NUL.
  EXPECT_EQ(failureOf("127.0.0.1" + nul + ":" + listener.port()),
            "Host 127.0.0.1");
  EXPECT_EQ(failureOf("127.0.0.1:" + listener.port() + nul + "1"),
            "Host 127.0.0.1:" + listener.port());
}

TEST(IPCBuf, TellsOfAServiceThatIsUnknown) {
  EXPECT_EQ(failureOf("127.0.0.1:no-such-service"),
            "Host 127.0.0.1:no-such-service not found.\n");
}

TEST(IPCBuf, TellsOfAHostThatIsUnknown) {
  // A label of more than 63 bytes is no name, so that nobody is asked for it.
  std::string const host = std::string(64, 'x') + ".invalid";
  EXPECT_EQ(failureOf(host + ":80"), "Host " + host + ":80 not found.\n");
}

// Connections

TEST(IPCBuf, StaysConnectedWhereTheNextHostIsUnknown) {
  Listener listener;
  IPCBuf buffer;
  buffer.Connect(listener.address());
  EXPECT_THROW(buffer.Connect(":no-such-service"), std::runtime_error);
  EXPECT_TRUE(buffer.isConnected());
  put(buffer, "on");
  buffer.pubsync();
  EXPECT_EQ(listener.accept().receive(2), "on");
}

TEST(IPCBuf, IsUnconnectedWhereTheNextHostRefuses) {
  Listener listener, other;
  std::string const refusing = other.address();
  other.close();
  IPCBuf buffer;
  buffer.Connect(listener.address());
  EXPECT_THROW(buffer.Connect(refusing), std::runtime_error);
  EXPECT_FALSE(buffer.isConnected());
  EXPECT_EQ(listener.accept().receive(), "");
}

TEST(IPCBuf, ClosesTheOldConnectionForANewOne) {
  Listener listener, other;
  IPCBuf buffer;
  buffer.Connect(listener.address());
  buffer.Connect(other.address());
  EXPECT_EQ(listener.accept().receive(), "");
  EXPECT_TRUE(buffer.isConnected());
}

TEST(IPCBuf, SendsNothingThatWasWrittenBeforeItConnected) {
  Listener listener, other;
  IPCBuf buffer;
  put(buffer, "unconnected");
  buffer.Connect(listener.address());
  put(buffer, "first");
  buffer.Connect(other.address());
  put(buffer, "second");
  buffer.pubsync();
  buffer.Close();
  EXPECT_EQ(listener.accept().receive(), "");
  EXPECT_EQ(other.accept().receive(), "second");
}

TEST(IPCBuf, ReadsNothingThatTheOldPeerSent) {
  Listener listener, other;
  IPCBuf buffer;
  buffer.Connect(listener.address());
  listener.accept().send("old");
  EXPECT_EQ(buffer.sgetc(), 'o');
  buffer.Connect(other.address());
  other.accept().send("new");
  EXPECT_EQ(buffer.sgetc(), 'n');
}

TEST(IPCBuf, ClosesWithoutSending) {
  Listener listener;
  IPCBuf buffer;
  buffer.Connect(listener.address());
  put(buffer, "lost");
  buffer.Close();
  EXPECT_FALSE(buffer.isConnected());
  buffer.Close();
  EXPECT_EQ(listener.accept().receive(), "");
}

TEST(IPCBuf, SendsWhatIsLeftWhenItIsDestroyed) {
  Listener listener;
  {
    IPCBuf buffer;
    buffer.Connect(listener.address());
    put(buffer, "left");
  }
  EXPECT_EQ(listener.accept().receive(), "left");
}

// Writing

TEST(IPCBuf, DropsWhatIsWrittenUnconnected) {
  OpenBuf buffer;
  put(buffer, std::string(1000, 'x'));
  EXPECT_EQ(buffer.sync(), 0);
  EXPECT_EQ(buffer.overflow('x'), 'x');
  EXPECT_EQ(buffer.overflow(Eof), 0);
}

TEST(IPCBuf, SendsWhenTwoHundredFiftySevenBytesHaveGathered) {
  Listener listener;
  IPCBuf buffer;
  buffer.Connect(listener.address());
  Peer peer = listener.accept();
  put(buffer, std::string(256, 'x'));
  buffer.sputc('y');
  EXPECT_EQ(peer.receive(257), std::string(256, 'x') + "y");
}

TEST(IPCBuf, SendsLongTextWhole) {
  ProgressListener listener;
  std::string text;
  while (text.size() < 3000000) text += std::to_string(text.size());
  {
    IPCBuf buffer;
    buffer.Connect(listener.address());
    put(buffer, text);
  }
  EXPECT_EQ(listener.text() == text, true);
}

TEST(IPCBuf, ReturnsTheCharacterThatOverflowSent) {
  Listener listener;
  OpenBuf buffer;
  buffer.Connect(listener.address());
  EXPECT_EQ(buffer.overflow('x'), 'x');
  EXPECT_EQ(buffer.overflow(0xff), 0xff);
  EXPECT_EQ(buffer.overflow(Eof), 0);
  EXPECT_EQ(listener.accept().receive(2), "x\xff");
}

TEST(IPCBuf, FailsWithoutASignalOnAPeerThatClosedAtOnce) {
  Listener listener;
  OpenBuf buffer;
  buffer.Connect(listener.address());
  listener.accept().close();
  EXPECT_EQ(writeUntilRefused(buffer), -1);
  EXPECT_TRUE(buffer.isConnected());
}

TEST(IPCBuf, WaitsForAPeerThatNeverReadsOnceAndNotForLong) {
  Listener listener;
  auto buffer = std::make_unique<OpenBuf>();
  buffer->Connect(listener.address());
  // Until the room of both ends is filled and the wait is over.
  double const first =
      secondsOf([&] { EXPECT_EQ(writeUntilRefused(*buffer), -1); });
  EXPECT_GT(first, 1.);
  EXPECT_LT(first, 30.);
  double const later = secondsOf([&] {
    EXPECT_EQ(writeUntilRefused(*buffer), -1);
    buffer.reset();
  });
  EXPECT_LT(later, 1.);
}

TEST(IPCBuf, WaitsForAPeerThatReadsLate) {
  Listener listener;
  std::string const text(16 << 20, 'x');
  std::string received;
  OpenBuf buffer;
  buffer.Connect(listener.address());
  std::thread late([peer = listener.accept(), &received]() mutable {
    std::this_thread::sleep_for(std::chrono::milliseconds(300));
    received = peer.receive();
  });
  put(buffer, text);
  EXPECT_EQ(buffer.sync(), 0);
  buffer.Close();
  late.join();
  EXPECT_EQ(received.size(), text.size());
}

// Reading

TEST(IPCBuf, ReadsTheEndWhereThePeerWasKilled) {
  Listener listener;
  IPCBuf buffer;
  buffer.Connect(listener.address());
  listener.accept().reset();
  EXPECT_EQ(buffer.sgetc(), Eof);
  EXPECT_TRUE(buffer.isConnected());
}

TEST(IPCBuf, ReadsTheEndUnconnected) {
  OpenBuf buffer;
  EXPECT_EQ(buffer.underflow(), Eof);
}

TEST(IPCBuf, ReadsWhatThePeerSent) {
  Listener listener;
  IPCBuf buffer;
  buffer.Connect(listener.address());
  std::string text;
  while (text.size() < 1000) text += "\xff line of an answer\n";
  {
    Peer peer = listener.accept();
    peer.send(text);
  }
  std::string const read{std::istreambuf_iterator<char>(&buffer), {}};
  EXPECT_EQ(read, text);
}

TEST(IPCBuf, ReadsTheEndOnceThePeerHasClosedAndStaysConnected) {
  Listener listener;
  IPCBuf buffer;
  buffer.Connect(listener.address());
  listener.accept().close();
  EXPECT_EQ(buffer.sgetc(), Eof);
  EXPECT_TRUE(buffer.isConnected());
}

// Copies

TEST(IPCBuf, SharesItsConnectionWithCopies) {
  Listener listener;
  IPCBuf buffer;
  buffer.Connect(listener.address());
  Peer peer = listener.accept();
  {
    IPCBuf copy(buffer);
    EXPECT_TRUE(copy.isConnected());
    put(copy, "copy ");
  }
  put(buffer, "original");
  buffer.pubsync();
  EXPECT_EQ(peer.receive(13), "copy original");
}

TEST(IPCBuf, ClosesTheConnectionWithTheLastCopy) {
  Listener listener;
  auto buffer = std::make_unique<IPCBuf>();
  buffer->Connect(listener.address());
  Peer peer = listener.accept();
  IPCBuf copy;
  copy = *buffer;
  buffer.reset();
  put(copy, "alive");
  copy.pubsync();
  EXPECT_EQ(peer.receive(5), "alive");
  copy = IPCBuf();
  EXPECT_EQ(peer.receive(), "");
}

TEST(IPCBuf, ClosesTheConnectionOfEveryCopy) {
  Listener listener;
  IPCBuf buffer;
  buffer.Connect(listener.address());
  IPCBuf const copy(buffer);
  buffer.Close();
  EXPECT_FALSE(copy.isConnected());
}

TEST(IPCBuf, CopiesItsAreas) {
  Listener listener;
  IPCBuf buffer;
  buffer.Connect(listener.address());
  Peer peer = listener.accept();
  peer.send("12345");
  EXPECT_EQ(buffer.sbumpc(), '1');
  put(buffer, "left ");
  {
    IPCBuf copy(buffer);
    EXPECT_EQ(copy.sbumpc(), '2');
    EXPECT_EQ(copy.sbumpc(), '3');
    EXPECT_EQ(buffer.sbumpc(), '2');
  }
  buffer.pubsync();
  EXPECT_EQ(peer.receive(10), "left left ");
}

TEST(IPCBuf, AssignsToItself) {
  Listener listener;
  IPCBuf buffer;
  buffer.Connect(listener.address());
  IPCBuf const& same = buffer;
  put(buffer, "kept");
  buffer = same;
  buffer.pubsync();
  EXPECT_EQ(listener.accept().receive(4), "kept");
}

}  // namespace
