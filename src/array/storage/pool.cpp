// The pool of temporary vectors and matrices. Objects given back keep their
// buffer (up to a size limit) so that the next caller reuses it; a buffer that
// a view still shares is dropped instead, so no later user of the object
// shares memory with that view. One mutex guards the free lists.

#include <atomic>
#include <memory>
#include <mutex>
#include <vector>

#include "array/checks.h"
#include "statkit/array/Pool.h"

namespace statkit {

class PoolAccess {
public:
  static void Reset(TKalpa& obj) { obj.ReleaseShared(); }
};

namespace {

constexpr std::size_t kMaxIdle = 64;  // idle objects kept per kind

template <class T>
class FreeList {
public:
  T* Acquire() {
    {
      std::lock_guard<std::mutex> lock(mutex_);
      if (!idle_.empty()) {
        T* obj = idle_.back().release();
        idle_.pop_back();
        return obj;
      }
    }
    return detail::RaisingOutOfMemory([] { return new T(); });
  }

  void Release(T* obj) noexcept {
    PoolAccess::Reset(*obj);
    std::unique_ptr<T> owned(obj);
    std::lock_guard<std::mutex> lock(mutex_);
    if (idle_.size() < kMaxIdle) {
      try {
        idle_.push_back(std::move(owned));
      } catch (...) {
        // The object is freed by owned.
      }
    }
  }

private:
  std::mutex mutex_;
  std::vector<std::unique_ptr<T>> idle_;
};

// Never destroyed: objects may go back to the pool from static destructors.
FreeList<TVec>& vectors() {
  static auto* list = new FreeList<TVec>;
  return *list;
}
FreeList<TMtx>& matrices() {
  static auto* list = new FreeList<TMtx>;
  return *list;
}
std::atomic<int> outstanding{0};

}  // namespace

namespace detail {

TVec* AcquireVec() {
  TVec* v = vectors().Acquire();
  outstanding.fetch_add(1, std::memory_order_relaxed);
  return v;
}

TMtx* AcquireMtx() {
  TMtx* m = matrices().Acquire();
  outstanding.fetch_add(1, std::memory_order_relaxed);
  return m;
}

void Release(TVec*& v) noexcept {
  if (!v) return;
  vectors().Release(v);
  v = nullptr;
  outstanding.fetch_sub(1, std::memory_order_relaxed);
}

void Release(TMtx*& m) noexcept {
  if (!m) return;
  // The solver options belong to the user, not to the storage: the next user
  // of this object starts from the defaults (factorisations mark their
  // triangular outputs, and a stale form would solve with the wrong triangle).
  m->SetTriangleForm(tfLower), m->SetTriangleUnit(false), m->SetRefineSolution(false);
  matrices().Release(m);
  m = nullptr;
  outstanding.fetch_sub(1, std::memory_order_relaxed);
}

}  // namespace detail

int PoolOutstanding() { return outstanding.load(std::memory_order_relaxed); }

void EnlistIt(TMtx& a, TMtx& b, T2DSampleArray& A, T2DSampleArray& B) {
  detail::RequireReal(a, b);
  A = T2DSampleArray(a.data(), a.Rows(), a.Cols());
  B = T2DSampleArray(b.data(), b.Rows(), b.Cols());
}

}  // namespace statkit
