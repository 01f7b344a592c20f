// LogisticRegress against R's glm(binomial) and MASS::polr, RidgeRegress against the 40-digit solution of
// the penalised normal equations (fixtures from gen_logistic_regression.R and gen_ridge_regression.py).

#include <gtest/gtest.h>

#include "statkit/Regress.h"
#include "support/expect.h"
#include "support/fixture.h"

namespace statkit::Regress {
namespace {

void expectAllRel(const TVec& actual, const TVec& expected, double tol, const char* what) {
  ASSERT_EQ(actual.Length(), expected.Length()) << what;
  for (int j = 0; j < expected.Length(); ++j)
    EXPECT_REL(actual[j], expected[j], tol) << what << "[" << j << "]";
}

TEST(LogisticRegress, BinomialAndOrdinalFitsMatchGlmAndPolr) {
  for (const auto& r : test::LoadFixture("logistic_regression.txt")) {
    test::PoolBalance balance;
    const TVec y = r.Vec("y");
    TVec B, se, mu;
    if (r.Str("kind") == "binomial") {
      const TMtx A = r.Has("A") ? r.Mtx("A") : TMtx();
      const TMtx* design = r.Has("A") ? &A : nullptr;  // none: the intercept alone
      LogisticRegress(y, r.Vec("n"), B, design, r.Num("offset"), &mu, &se, 1e-14);
      // glm stops at a relative deviance change of 1e-14: both fits agree to about its square root
      expectAllRel(B, r.Vec("B"), 1e-8, "B");
      expectAllRel(se, r.Vec("se"), 1e-8, "se");
      expectAllRel(mu, r.Vec("mu"), 1e-8, "mu");
      // no pass (Tol >= 1): nothing is written
      TVec b0{7.0}, mu0{7.0}, se0{7.0};
      LogisticRegress(y, r.Vec("n"), b0, design, r.Num("offset"), &mu0, &se0, 1.0);
      EXPECT_TRUE(b0[0] == 7.0 && mu0[0] == 7.0 && se0[0] == 7.0 && b0.Length() == 1);
      continue;
    }
    // ordinal: from the estimated start and again from polr's estimates perturbed; polr's Hessian is a
    // numeric one, so its standard errors carry about 1e-6 relative, and its optimum about the same
    for (bool init : {true, false}) {
      TVec theta = r.Vec("theta");
      B = r.Vec("B");
      B.Scale(1.3);
      double fmin = 0;
      TOptStopReason why{};
      LogisticRegress(y, r.Mtx("A"), B, theta, se, fmin, why, 500, 1e-14, init);
      expectAllRel(theta, r.Vec("theta"), 1e-5, "theta");
      expectAllRel(B, r.Vec("B"), 1e-5, "B");
      expectAllRel(se, r.Vec("se"), 1e-5, "se");
      EXPECT_REL(fmin, r.Num("deviance"), 1e-9);
      EXPECT_NE(why, osMaxIterations);
    }
  }
}

TEST(RidgeRegress, MatchesTheExactPenalisedSolution) {
  for (const auto& r : test::LoadFixture("ridge_regression.txt")) {
    test::PoolBalance balance;
    TVec B;
    RidgeRegress(r.Vec("y"), r.Mtx("A"), r.Num("k"), B);
    // QR against the exact solution: a few hundred eps from the rounding of the standardised predictors;
    // the constant column's coefficient is exactly 0
    expectAllRel(B, r.Vec("B"), 1e-12, "B");
  }
}

}  // namespace
}  // namespace statkit::Regress
