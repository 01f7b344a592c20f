#pragma once
// The pool of temporary objects: CreateIt hands objects out, FreeIt takes
// them back; PooledVec and PooledMtx give theirs back on every exit.
//
// Threads: CreateIt, FreeIt, the Pooled handles and PoolOutstanding may be
// called from any number of threads at once (one lock guards the idle
// objects). An object handed out belongs to its caller alone until it is given
// back, as any TVec or TMtx: one thread uses it at a time. PoolOutstanding
// counts the objects out of every thread, so a test that compares two counts
// holds only while no other thread takes or gives back objects.

#include <span>
#include <type_traits>

#include "statkit/array/Config.h"
#include "statkit/array/Kalpa.h"

namespace statkit {

namespace detail {
STATKIT_API TVec* AcquireVec();
STATKIT_API TMtx* AcquireMtx();
STATKIT_API void Release(TVec*& v) noexcept;
STATKIT_API void Release(TMtx*& m) noexcept;
}  // namespace detail

/// \brief Hands out one to four pool vectors (or matrices); their content is unspecified.
template <class... T>
  requires(sizeof...(T) >= 1 && sizeof...(T) <= 4)
void CreateIt(T*&... objs) {
  ((objs = [] {
     if constexpr (std::is_same_v<T, TVec>) return detail::AcquireVec();
     else return detail::AcquireMtx();
   }()),
   ...);
}

/// \brief Gives the objects back to the pool; the variables become nullptr.
template <class... T>
  requires(sizeof...(T) >= 1 && sizeof...(T) <= 4)
void FreeIt(T*&... objs) noexcept {
  (detail::Release(objs), ...);
}

/// \brief Number of pool objects currently handed out (for tests of pool discipline).
[[nodiscard]] STATKIT_API int PoolOutstanding();

/// \brief A pool object held for the lifetime of the handle.
template <class T>
class Pooled {
public:
  Pooled() { CreateIt(obj_); }
  ~Pooled() { FreeIt(obj_); }
  Pooled(const Pooled&) = delete;
  Pooled& operator=(const Pooled&) = delete;
  T& operator*() const { return *obj_; }
  T* operator->() const { return obj_; }
  operator T&() const { return *obj_; }
  T* get() const { return obj_; }

private:
  T* obj_ = nullptr;
};
using PooledVec = Pooled<TVec>;
using PooledMtx = Pooled<TMtx>;

/// \brief Direct access to an object's elements (the storage is shared: writes land in the object).
inline void Enlist(TKalpa& Obj, TDoubleArray& Arr) {
  Arr = TDoubleArray(Obj.data(), static_cast<std::size_t>(Obj.Length()) * (Obj.Complex() ? 2 : 1));
}
inline void Enlist(const TKalpa& Obj, std::span<const double>& Arr) {
  Arr = std::span<const double>(Obj.data(), static_cast<std::size_t>(Obj.Length()) * (Obj.Complex() ? 2 : 1));
}
inline void Enlist(TKalpa& Obj1, TKalpa& Obj2, TDoubleArray& Arr1, TDoubleArray& Arr2) {
  Enlist(Obj1, Arr1);
  Enlist(Obj2, Arr2);
}
/// \brief As Enlist, until the matching DismissIt.
inline void EnlistIt(TKalpa& Obj, TDoubleArray& Arr) { Enlist(Obj, Arr); }
inline void EnlistIt(const TKalpa& Obj, std::span<const double>& Arr) { Enlist(Obj, Arr); }
inline void EnlistIt(TKalpa& a, TKalpa& b, TKalpa& c, TDoubleArray& A, TDoubleArray& B, TDoubleArray& C) {
  Enlist(a, A), Enlist(b, B), Enlist(c, C);
}
inline void EnlistIt(TKalpa& a, TKalpa& b, TKalpa& c, TKalpa& d, TDoubleArray& A, TDoubleArray& B,
                     TDoubleArray& C, TDoubleArray& D) {
  Enlist(a, A), Enlist(b, B), Enlist(c, C), Enlist(d, D);
}
STATKIT_API void EnlistIt(TMtx& a, TMtx& b, T2DSampleArray& A, T2DSampleArray& B);

/// \brief Ends direct access: the arrays become empty.
template <class... A>
void DismissIt(A&... arrays) noexcept {
  ((arrays = A{}), ...);
}

}  // namespace statkit
