#include "photarium/streams/IPCStream.h"

#include "tests/support/Listener.h"

namespace {

TEST(IPCStream, TakesTextUnconnected) {
  IPCStream stream;
  stream << "Progress: " << 50 << std::endl;
  stream << std::string(1000, 'x') << std::flush;
  EXPECT_TRUE(stream.good());
  EXPECT_FALSE(stream.isConnected());
}

TEST(IPCStream, ReadsTheEndUnconnected) {
  IPCStream stream;
  std::string word;
  EXPECT_FALSE(stream >> word);
  EXPECT_TRUE(stream.eof());
}

TEST(IPCStream, SendsWhatIsWritten) {
  ProgressListener listener;
  {
    IPCStream stream;
    stream.Connect(listener.address());
    EXPECT_TRUE(stream.isConnected());
    for (int percent : {0, 50, 100})
      stream << "Progress: " << percent << std::endl;
  }
  EXPECT_EQ(listener.lines(),
            (std::vector<std::string>{"Progress: 0", "Progress: 50",
                                      "Progress: 100"}));
}

TEST(IPCStream, ReadsAnswers) {
  Listener listener;
  IPCStream stream;
  stream.Connect(listener.address());
  listener.accept().send("stop 7\n");
  std::string word;
  int number = 0;
  stream >> word >> number;
  EXPECT_EQ(word, "stop");
  EXPECT_EQ(number, 7);
}

TEST(IPCStream, HandsFailuresOfConnectOn) {
  IPCStream stream;
  EXPECT_THROW(stream.Connect("127.0.0.1:no-such-service"), std::runtime_error);
  EXPECT_TRUE(stream.good());
}

TEST(IPCStream, GoesBadWhereThePeerIsGone) {
  Listener listener;
  IPCStream stream;
  stream.Connect(listener.address());
  listener.accept().close();
  for (int i = 0; i < 1 << 18 && stream; ++i)
    stream << "Progress: " << i << std::endl;
  EXPECT_TRUE(stream.bad());
}

TEST(IPCStream, CopiesToAnUnconnectedStream) {
  Listener listener;
  IPCStream stream;
  stream.Connect(listener.address());
  IPCStream copy(stream);
  copy << "dropped" << std::flush;
  EXPECT_FALSE(copy.isConnected());
  EXPECT_TRUE(stream.isConnected());
  stream << "sent" << std::flush;
  EXPECT_EQ(listener.accept().receive(4), "sent");
}

TEST(IPCStream, IsUnconnectedOnceAnotherOneIsAssigned) {
  Listener listener;
  IPCStream stream, other;
  stream.Connect(listener.address());
  stream.setstate(std::ios::badbit);
  stream = other;
  EXPECT_FALSE(stream.isConnected());
  EXPECT_TRUE(stream.good());
  EXPECT_EQ(listener.accept().receive(), "");
}

TEST(IPCStream, KeepsItsConnectionWhenItIsAssignedToItself) {
  Listener listener;
  IPCStream stream;
  stream.Connect(listener.address());
  IPCStream const& same = stream;
  stream = same;
  EXPECT_TRUE(stream.isConnected());
}

}  // namespace
