// The calling frame through small operations shaped like the library's own:
// a check before the protected block, pool temporaries inside it, nested
// calls. Messages must nest one prefix per block, every temporary must go
// back to the pool also when an error passes through, and concurrent calls
// must not disturb each other.

#include <gtest/gtest.h>

#include <atomic>
#include <stdexcept>
#include <thread>
#include <vector>

#include "core/frame.h"
#include "support/expect.h"

namespace statkit::core {
namespace {

enum class Fault { none, arrayError, foreignException, unknownException };

// A test-only operation: its own check before the block, the work inside it.
double InnerOp(const TVec& x, Fault fault) {
  if (x.Length() == 0) ERaise("InnerOp: X.Length = 0");
  return Guarded("InnerOp : ", [&] {
    PooledVec squares;
    squares->Sqr(x);
    if (fault == Fault::arrayError) (void)(*squares)[x.Length()];
    if (fault == Fault::foreignException) throw std::out_of_range("vector index 1 of 0");
    if (fault == Fault::unknownException) throw 42;
    return squares->Sum();
  });
}

// A test-only operation that calls another inside its own block.
double OuterOp(const TVec& x, Fault fault) {
  return Guarded("OuterOp : ", [&] {
    TVec *a, *b;
    CreateIt(a, b);
    try {
      a->Copy(x);
      b->Copy(x);
      double r = InnerOp(*a, fault) + b->Length();
      FreeIt(a, b);
      return r;
    } catch (...) {
      FreeIt(a, b);
      throw;
    }
  });
}

TEST(CallingFrame, EveryBlockAddsOnePrefixFromTheOutsideIn) {
  TVec x{1, 2, 3};
  TVec empty;
  const test::RaiseCase cases[] = {
      {"InnerOp: X.Length = 0", [&] { return InnerOp(empty, Fault::none); }, "own check, no block"},
      {"OuterOp : InnerOp: X.Length = 0", [&] { return OuterOp(empty, Fault::none); },
       "inner check through the outer block"},
      {"OuterOp : InnerOp : Index out of range", [&] { return OuterOp(x, Fault::arrayError); },
       "array error inside both blocks"},
      {"InnerOp : vector index 1 of 0", [&] { return InnerOp(x, Fault::foreignException); },
       "a standard exception keeps its text"},
      {"OuterOp : InnerOp : Unknown error", [&] { return OuterOp(x, Fault::unknownException); }, "anything else"},
  };
  test::ExpectEachRaises(cases);
  test::PoolBalance balance;
  EXPECT_EQ(OuterOp(x, Fault::none), 14 + 3);
}

TEST(CallingFrame, ConcurrentCallsKeepTheirTemporariesApart) {
  const int start = PoolOutstanding();
  std::atomic<int> wrong{0};
  std::vector<std::thread> threads;
  for (int t = 0; t < 8; ++t) {
    threads.emplace_back([t, &wrong] {
      for (int i = 0; i < 2000; ++i) {
        TVec x;
        x.Size(1 + (i + t) % 50);
        x.Ramp(t, 1);
        double want = 0;
        for (double v : x) want += v * v;
        Fault fault = i % 7 == 0 ? Fault::arrayError : Fault::none;
        try {
          if (OuterOp(x, fault) != want + x.Length()) ++wrong;
          if (fault != Fault::none) ++wrong;
        } catch (const EArrayError& e) {
          if (fault == Fault::none || std::string(e.what()) != "OuterOp : InnerOp : Index out of range") ++wrong;
        }
      }
    });
  }
  for (auto& th : threads) th.join();
  EXPECT_EQ(wrong.load(), 0);
  EXPECT_EQ(PoolOutstanding(), start);
}

}  // namespace
}  // namespace statkit::core
