// What other systems have no form of: signals, a process without descriptors.

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>

#include <chrono>
#include <stdexcept>

#include "photarium/streams/IPCBuf.h"
#include "tests/support/Listener.h"

namespace {

// While it lives, SIGUSR1 interrupts what the thread waits for.
class Interruptible {
 public:
  Interruptible() {
    struct sigaction action {};
    action.sa_handler = [](int) {};  // interrupts, as there is no SA_RESTART
    sigaction(SIGUSR1, &action, &before_);
  }
  Interruptible(Interruptible const&) = delete;
  Interruptible& operator=(Interruptible const&) = delete;
  ~Interruptible() { sigaction(SIGUSR1, &before_, nullptr); }

  // Waits, so that the thread waits too, and sends the signal.
  void interrupt() const {
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    pthread_kill(thread_, SIGUSR1);
  }

 private:
  struct sigaction before_ {};
  pthread_t thread_ = pthread_self();
};

// While it lives, the program can open nothing more.
class NoDescriptors {
 public:
  NoDescriptors() {
    getrlimit(RLIMIT_NOFILE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = 0;
    setrlimit(RLIMIT_NOFILE, &limit);
  }
  NoDescriptors(NoDescriptors const&) = delete;
  NoDescriptors& operator=(NoDescriptors const&) = delete;
  ~NoDescriptors() { setrlimit(RLIMIT_NOFILE, &before_); }

 private:
  rlimit before_{};
};

}  // namespace

TEST(IPCBuf, ConnectsThroughSignals) {
  Listener listener(/*backlog=*/0);
  IPCBuf first, second;
  first.Connect(listener.address());
  // The next one has to wait until the first one is accepted.
  Interruptible const connecting;
  std::thread accepting([&] {
    connecting.interrupt();
    connecting.interrupt();
    EXPECT_TRUE(listener.accept().isOpen());
  });
  second.Connect(listener.address());
  accepting.join();
  second.sputn("through", 7);
  second.pubsync();
  EXPECT_EQ(listener.accept().receive(7), "through");
}

TEST(IPCBuf, FailsWhereNoSocketIsLeftAndConnectsLater) {
#ifdef __SANITIZE_ADDRESS__
  GTEST_SKIP() << "the sanitizers open pipes of their own";
#endif
  Listener listener;
  IPCBuf buffer;
  {
    NoDescriptors const none;
    EXPECT_THROW(buffer.Connect(listener.address()), std::runtime_error);
  }
  EXPECT_FALSE(buffer.isConnected());
  buffer.Connect(listener.address());
  EXPECT_TRUE(buffer.isConnected());
}

TEST(IPCBuf, ReadsOnThroughASignal) {
  Listener listener;
  IPCBuf buffer;
  buffer.Connect(listener.address());
  Interruptible const reader;
  std::thread answering([peer = listener.accept(), &reader]() mutable {
    reader.interrupt();
    std::this_thread::sleep_for(std::chrono::milliseconds(100));
    peer.send("answer");
  });
  EXPECT_EQ(buffer.sgetc(), 'a');
  answering.join();
}
