#pragma once
// Assertions shared by the tests: exact error messages, relative tolerances
// in multiples of epsilon, and pool discipline.

#include <gtest/gtest.h>

#include <cmath>
#include <functional>
#include <limits>
#include <string>

#include "statkit/Array.h"

namespace statkit::test {

inline constexpr double kEps = std::numeric_limits<double>::epsilon();

/// Runs \p call and checks that it raises EArrayError whose what() is exactly \p message.
template <class Call>
::testing::AssertionResult RaisesExactly(Call&& call, const std::string& message) {
  try {
    call();
  } catch (const EArrayError& e) {
    if (e.what() == message) return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << "raised \"" << e.what() << "\", expected \"" << message << "\"";
  } catch (const std::exception& e) {
    return ::testing::AssertionFailure() << "raised a non-EArrayError \"" << e.what() << "\"";
  }
  return ::testing::AssertionFailure() << "raised nothing, expected \"" << message << "\"";
}

// The call's result, if any, is discarded on purpose: only the error matters.
#define EXPECT_RAISES(call, message) EXPECT_TRUE(::statkit::test::RaisesExactly([&] { (void)(call); }, message))

/// |actual - expected| <= tol * |expected| (both NaN, or equal infinities, also pass).
inline ::testing::AssertionResult NearRel(double actual, double expected, double tol) {
  if (std::isnan(expected) && std::isnan(actual)) return ::testing::AssertionSuccess();
  if (actual == expected) return ::testing::AssertionSuccess();
  double err = std::fabs(actual - expected);
  if (err <= tol * std::fabs(expected)) return ::testing::AssertionSuccess();
  return ::testing::AssertionFailure() << "actual " << actual << " expected " << expected << " relative error "
                                       << err / std::fabs(expected) << " > " << tol;
}

#define EXPECT_REL(actual, expected, tol) EXPECT_TRUE(::statkit::test::NearRel((actual), (expected), (tol)))

/// Counts the pool objects out before and after a scope: everything taken is given back.
class PoolBalance {
public:
  PoolBalance() : before_(PoolOutstanding()) {}
  ~PoolBalance() { EXPECT_EQ(PoolOutstanding(), before_) << "pool temporaries not returned"; }

private:
  int before_;
};

/// One bad call and the exact message it must raise (label: what the row is, when the message does not say it).
struct RaiseCase {
  std::string message;
  std::function<void()> call;
  std::string label = {};
};

/// Runs every case of \p cases (any rows with members message, call and label): each must raise exactly
/// its message and give back every pool temporary; \p after(row) then checks what the row must leave.
template <class Cases, class After>
void ExpectEachRaises(const Cases& cases, After after) {
  int row = 0;
  for (const auto& c : cases) {
    const std::string label(c.label);
    SCOPED_TRACE(label.empty() ? "row " + std::to_string(row) + ": " + std::string(c.message) : label);
    ++row;
    PoolBalance balance;
    EXPECT_TRUE(RaisesExactly(c.call, c.message));
    after(c);
  }
}

template <class Cases>
void ExpectEachRaises(const Cases& cases) {
  ExpectEachRaises(cases, [](const auto&) {});
}

}  // namespace statkit::test
