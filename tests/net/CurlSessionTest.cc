#include "net/CurlSession.h"

#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <chrono>
#include <memory>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace tamzo::testing {
namespace {

using namespace std::chrono_literals;
using Clock = CurlSessionPool::Clock;

TEST(CurlSessionPoolTest, GivesBackTheSessionThatCameLast) {
  CurlSessionPool pool;
  auto first = pool.take();
  auto second = pool.take();
  ASSERT_NE(first, second);
  const CurlSession* firstOne = first.get();
  const CurlSession* secondOne = second.get();
  pool.give(std::move(first));
  pool.give(std::move(second));
  const auto again = pool.take();
  EXPECT_EQ(again.get(), secondOne);
  const auto andAgain = pool.take();
  EXPECT_EQ(andAgain.get(), firstOne);
}

// What tells a session from one that was made in its place, perhaps at the same address.
const std::string kMark = ".ads.example\tTRUE\t/\tFALSE\t0\tid\t42";

std::unique_ptr<CurlSession> marked(std::unique_ptr<CurlSession> session) {
  session->startCookies({kMark});
  return session;
}

bool isMarked(CurlSession& session) { return !session.takeCookies().empty(); }

TEST(CurlSessionPoolTest, KeepsSixteenTheYoungest) {
  CurlSessionPool pool;
  std::vector<std::unique_ptr<CurlSession>> sessions;
  std::set<const CurlSession*> youngest;
  for (int i = 0; i < 20; ++i) {
    sessions.push_back(marked(pool.take()));
  }
  for (std::size_t i = 0; i < sessions.size(); ++i) {
    if (i >= 4) {
      youngest.insert(sessions[i].get());
    }
    pool.give(std::move(sessions[i]));
  }
  std::vector<std::unique_ptr<CurlSession>> taken;
  std::set<const CurlSession*> kept;
  for (std::size_t i = 0; i < CurlSessionPool::kMostIdle; ++i) {
    taken.push_back(pool.take());
    kept.insert(taken.back().get());
  }
  EXPECT_EQ(kept, youngest);
  EXPECT_FALSE(isMarked(*pool.take())) << "the others are gone";
}

TEST(CurlSessionPoolTest, AMinuteIdleIsTooLong) {
  CurlSessionPool pool;
  const auto start = Clock::now();
  auto session = pool.take(start);
  const CurlSession* first = session.get();
  pool.give(std::move(session), start);
  session = pool.take(start + 60s);
  EXPECT_EQ(session.get(), first);
  auto other = marked(pool.take(start));
  pool.give(std::move(other), start);
  pool.give(std::move(session), start + 61s);
  session = pool.take(start + 100s);
  EXPECT_EQ(session.get(), first);
  EXPECT_FALSE(isMarked(*pool.take(start + 100s))) << "the older one is gone";
}

TEST(CurlSessionPoolTest, NothingIsLeftOnceItIsCleared) {
  CurlSessionPool pool;
  auto one = marked(pool.take());
  auto other = marked(pool.take());
  pool.give(std::move(one));
  pool.give(std::move(other));
  pool.clear();
  EXPECT_FALSE(isMarked(*pool.take()));
}

TEST(CurlSessionPoolTest, AChildHasAPoolOfItsOwn) {
  const CurlSessionPool* parents = &CurlSessionPool::ofProcess();
  EXPECT_EQ(&CurlSessionPool::ofProcess(), parents);
  const pid_t child = fork();
  if (child == 0) {
    _exit(&CurlSessionPool::ofProcess() != parents &&
                  &CurlSessionPool::ofProcess() == &CurlSessionPool::ofProcess()
              ? 0
              : 1);
  }
  int status = -1;
  ASSERT_EQ(waitpid(child, &status, 0), child);
  EXPECT_EQ(status, 0);
  EXPECT_EQ(&CurlSessionPool::ofProcess(), parents);
}

TEST(CurlSessionPoolTest, ThreadsShareIt) {
  CurlSessionPool pool;
  std::vector<std::thread> threads;
  for (int i = 0; i < 4; ++i) {
    threads.emplace_back([&pool] {
      for (int round = 0; round < 100; ++round) {
        auto session = pool.take();
        session->reset();
        pool.give(std::move(session));
      }
      pool.clear();
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
}

TEST(CurlSessionTest, CookiesStayUntilTheyAreTaken) {
  CurlSession session;
  EXPECT_TRUE(session.takeCookies().empty());
  session.startCookies({kMark});
  session.reset();
  EXPECT_EQ(session.takeCookies(), std::vector<std::string>{kMark});
  EXPECT_TRUE(session.takeCookies().empty());
  session.startCookies({});
  EXPECT_TRUE(session.takeCookies().empty());
}

}  // namespace
}  // namespace tamzo::testing
