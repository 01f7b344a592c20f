// Storage of vectors and matrices: reference-counted, 64-byte aligned buffers,
// sizing, copying, views and the shape-changing operations.
//
// A view shares its source's buffer, so it never dangles; an object that must
// change size while its buffer is shared takes a fresh buffer, so no view ever
// sees a resize.

#include <algorithm>
#include <cstring>
#include <new>

#if defined(__linux__)
#include <sys/mman.h>
#endif

#include "array/checks.h"
#include "statkit/array/Kalpa.h"
#include "statkit/array/Math.h"

namespace statkit {

namespace detail {

// Large buffers are aligned to 2 MiB and offered transparent huge pages: a
// pass over 10^7 doubles then takes a few dozen TLB misses instead of 20000,
// which is a fifth of the time of a reduction.
constexpr std::size_t kHugePage = std::size_t(1) << 21;

std::size_t alignmentFor(std::size_t bytes) { return bytes >= 2 * kHugePage ? kHugePage : 64; }

struct Buffer {
  explicit Buffer(std::size_t n) : capacity(n), alignment(alignmentFor(n * sizeof(double))) {
    data = static_cast<double*>(::operator new[](n * sizeof(double), std::align_val_t(alignment)));
#if defined(__linux__) && defined(MADV_HUGEPAGE)
    if (alignment == kHugePage) madvise(data, n * sizeof(double) & ~(kHugePage - 1), MADV_HUGEPAGE);
#endif
  }
  ~Buffer() { ::operator delete[](data, std::align_val_t(alignment)); }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;

  double* data;
  std::size_t capacity;
  std::size_t alignment;
};

void RaiseIndex() { ERaise(msg::IndexOutOfRange); }
void RaiseComplex() { ERaise(msg::ComplexNotSupported); }
// A complex element asked of real storage: the element sizes disagree.
void RaiseNotComplex() { ERaise(msg::SizeMismatch); }

}  // namespace detail

void ERaise(const std::string& Msg) { throw EArrayError(Msg); }

TObject::~TObject() = default;
TKalpa::~TKalpa() = default;

namespace {
std::size_t doublesFor(int len, bool complex) { return static_cast<std::size_t>(len) * (complex ? 2 : 1); }
}  // namespace

void TKalpa::Allocate(int len, bool complex, bool keep) {
  if (len < 0) ERaise(msg::SizeMismatch);
  if (len == length_ && complex == complex_) return;
  if (IsView()) ERaise(msg::SizeMismatch);
  std::size_t need = doublesFor(len, complex);
  if (!buf_ || buf_.use_count() > 1 || buf_->capacity < need) {
    std::shared_ptr<detail::Buffer> fresh =
        detail::RaisingOutOfMemory([&] { return std::make_shared<detail::Buffer>(std::max<std::size_t>(need, 1)); });
    if (keep && base_) std::memcpy(fresh->data, base_, std::min(Doubles(), need) * sizeof(double));
    buf_ = std::move(fresh);
  }
  base_ = buf_->data;
  length_ = len;
  complex_ = complex;
}

void TKalpa::Steal(TKalpa& o) noexcept {
  buf_ = std::move(o.buf_);
  base_ = o.base_;
  length_ = o.length_;
  complex_ = o.complex_;
  narrowed_ = o.narrowed_;
  fullBase_ = o.fullBase_;
  fullLength_ = o.fullLength_;
  subRange_ = o.subRange_;
  o.base_ = nullptr;
  o.length_ = 0;
  o.complex_ = false;
  o.narrowed_ = o.subRange_ = false;
  o.fullBase_ = nullptr;
  o.fullLength_ = 0;
}

void TKalpa::CopyElements(const TKalpa& src) {
  if (src.base_ != base_ && src.Doubles() > 0) std::memmove(base_, src.base_, src.Doubles() * sizeof(double));
}

void TKalpa::CheckRange(int index, int len) const {
  if (index < 0 || len < 0 || index > length_ - len) ERaise(msg::IndexOutOfRange);
}

void TKalpa::set_Complex(bool Value) {
  if (Value == complex_) return;
  if (Value && length_ % 2 != 0) ERaise(msg::SizeMismatch);
  if (!Value && length_ > std::numeric_limits<int>::max() / 2) ERaise(msg::IntegerOverflow);
  int len = Value ? length_ / 2 : length_ * 2;
  if (IsView()) ERaise(msg::SizeMismatch);
  // Reinterpretation keeps every double where it is.
  length_ = len;
  complex_ = Value;
  OnLengthChanged();
}

void TKalpa::Size(const TKalpa& Src) {
  if (&Src == this) return;
  SizeLike(Src, Src.complex_);
}

void TKalpa::Copy(const TKalpa& Src) {
  if (&Src == this) return;
  SizeLike(Src, Src.complex_);
  CopyElements(Src);
}

void TKalpa::Copy(const TKalpa& Src, int SrcIndex, int Index, int Len) {
  if (Src.complex_ != complex_) ERaise(msg::ComplexNotSupported);
  Src.CheckRange(SrcIndex, Len);
  CheckRange(Index, Len);
  const std::size_t w = complex_ ? 2 : 1;
  if (Len > 0) std::memmove(base_ + Index * w, Src.base_ + SrcIndex * w, doublesFor(Len, complex_) * sizeof(double));
}

void TKalpa::CopyFromArray(std::span<const double> Src, int SrcIndex, int Index, int Len) {
  if (SrcIndex < 0 || Len < 0 || static_cast<std::size_t>(SrcIndex) + Len > Src.size()) ERaise(msg::IndexOutOfRange);
  detail::RequireReal(*this);
  CheckRange(Index, Len);
  if (Len > 0) std::memmove(base_ + Index, Src.data() + SrcIndex, Len * sizeof(double));
}

void TKalpa::SetSubIndex(int BeginIndex, int EndIndex) {
  if (narrowed_) SetFullRange();
  // The length in 64 bits: EndIndex - BeginIndex + 1 overflows an int for far-apart arguments.
  const long long len = static_cast<long long>(EndIndex) - BeginIndex + 1;
  if (BeginIndex < 0 || len < 0 || len > length_ - BeginIndex) ERaise(msg::IndexOutOfRange);
  fullBase_ = base_;
  fullLength_ = length_;
  narrowed_ = true;
  base_ += static_cast<std::size_t>(BeginIndex) * (complex_ ? 2 : 1);
  length_ = static_cast<int>(len);
  OnLengthChanged();
}

void TKalpa::SetFullRange() {
  if (narrowed_) {
    base_ = fullBase_;
    length_ = fullLength_;
    narrowed_ = false;
    fullBase_ = nullptr;
    OnLengthChanged();
  } else if (subRange_) {
    // Ending a view of another object: Self becomes an empty object of its own.
    buf_.reset();
    base_ = nullptr;
    length_ = 0;
    subRange_ = false;
    OnLengthChanged();
  }
}

// The arguments come by value: \p buf and \p base may be read from Self itself.
void TKalpa::BecomeView(std::shared_ptr<detail::Buffer> buf, double* base, int len, bool complex) {
  buf_ = std::move(buf);
  base_ = base;
  length_ = len;
  complex_ = complex;
  narrowed_ = false;
  fullBase_ = nullptr;
  subRange_ = true;
}

void TKalpa::ShareFrom(const TKalpa& src, int index, int len) {
  src.CheckRange(index, len);
  double* base = src.base_ ? src.base_ + static_cast<std::size_t>(index) * (src.complex_ ? 2 : 1) : nullptr;
  BecomeView(src.buf_, base, len, src.complex_);
}

void TKalpa::AttachExternal(double* data, int len) {
  if (len < 0 || (len > 0 && data == nullptr)) ERaise(msg::SizeMismatch);
  BecomeView(nullptr, data, len, false);
}

void TKalpa::ReleaseShared() {
  if (IsView() || (buf_ && buf_.use_count() > 1)) {
    buf_.reset();
    base_ = nullptr;
  }
  narrowed_ = subRange_ = false;
  fullBase_ = nullptr;
  length_ = 0;
  complex_ = false;
  // Large buffers are not worth keeping in the pool's idle objects.
  constexpr std::size_t kKeepDoubles = std::size_t(1) << 22;
  if (buf_ && buf_->capacity > kKeepDoubles) {
    buf_.reset();
    base_ = nullptr;
  }
  OnLengthChanged();
}

void TKalpa::ExtendToComplex(bool) {
  if (complex_) return;
  int n = length_;
  if (IsView()) ERaise(msg::SizeMismatch);
  // Spread backwards so the values are read before they are overwritten.
  length_ = 0;
  complex_ = false;
  auto old = buf_;
  double* src = base_;
  base_ = nullptr;
  buf_.reset();
  Allocate(n, true, false);
  for (int i = n - 1; i >= 0; --i) {
    double v = src[i];
    base_[2 * i] = v;
    base_[2 * i + 1] = 0.0;
  }
  OnLengthChanged();
}

void TKalpa::SetVal(double Value) { SetVal(Value, 0, length_); }
void TKalpa::SetVal(TCplx Value) { SetVal(Value, 0, length_); }

void TKalpa::SetVal(double Value, int Index, int Len) {
  CheckRange(Index, Len);
  if (complex_) {
    SetVal(TCplx(Value, 0.0), Index, Len);
    return;
  }
  std::fill(base_ + Index, base_ + Index + Len, Value);
}

void TKalpa::SetVal(TCplx Value, int Index, int Len) {
  CheckRange(Index, Len);
  if (!complex_) ERaise(msg::ComplexNotSupported);
  auto* c = reinterpret_cast<TCplx*>(base_);
  std::fill(c + Index, c + Index + Len, Value);
}

void TKalpa::SetZero() { SetZero(0, length_); }
void TKalpa::SetZero(int Index, int Len) {
  CheckRange(Index, Len);
  int w = complex_ ? 2 : 1;
  if (Len > 0) std::memset(base_ + static_cast<std::size_t>(Index) * w, 0, doublesFor(Len, complex_) * sizeof(double));
}

// --- TVec -------------------------------------------------------------------

TVec::TVec(std::initializer_list<double> values) {
  Allocate(static_cast<int>(values.size()), false, false);
  std::copy(values.begin(), values.end(), data());
}

TVec::TVec(int Length, bool Complex) {
  Allocate(Length, Complex, false);
  SetZero();
}

TVec::TVec(const std::vector<double>& values) {
  if (values.size() > static_cast<std::size_t>(std::numeric_limits<int>::max())) ERaise(msg::IntegerOverflow);
  Allocate(static_cast<int>(values.size()), false, false);
  std::copy(values.begin(), values.end(), data());
}

TVec::TVec(const TVec& other) : TDenseKalpa() {
  Allocate(other.Length(), other.Complex(), false);
  CopyElements(other);
}

TVec::TVec(TVec&& other) noexcept { Steal(other); }

TVec& TVec::operator=(const TVec& other) {
  Copy(other);
  return *this;
}

TVec& TVec::operator=(TVec&& other) noexcept {
  if (this != &other) Steal(other);
  return *this;
}

TVec::~TVec() = default;

void TVec::SizeLike(const TKalpa& src, bool complex) { Allocate(src.Length(), complex, false); }

void TVec::SetLength(int Len) { Resize(Len); }

void TVec::Size(int Len, bool Complex, bool) { Allocate(Len, Complex, false); }

void TVec::Resize(int Len, bool) {
  int old = Length();
  Allocate(Len, Complex(), true);
  if (Len > old) SetZero(old, Len - old);
}

void TVec::Resize(const TKalpa& Src, int Len, bool) {
  if (Len < 0) ERaise(msg::SizeMismatch);
  TVec tmp;
  tmp.Allocate(Len, Src.Complex(), false);
  tmp.SetZero();
  int n = std::min(Len, Src.Length());
  if (n > 0) std::memcpy(tmp.data(), Src.data(), doublesFor(n, Src.Complex()) * sizeof(double));
  if (IsView()) {
    Copy(tmp);
  } else {
    Steal(tmp);
  }
}

int TVec::IValue(int i) const {
  double v = RealAt(i);
  if (!(v >= -2147483648.0 && v < 2147483648.0)) ERaise(msg::IntegerOverflow);
  return static_cast<int>(v);
}

double* TVec::begin() {
  detail::RequireReal(*this);
  return data();
}
double* TVec::end() { return begin() + Length(); }
const double* TVec::begin() const {
  detail::RequireReal(*this);
  return data();
}
const double* TVec::end() const { return begin() + Length(); }

void TVec::SetIt(bool Complex, std::span<const double> Values) {
  if (Complex && Values.size() % 2 != 0) ERaise(msg::SizeMismatch);
  int len = static_cast<int>(Complex ? Values.size() / 2 : Values.size());
  // The list may live in Self's own storage: copy it out first.
  std::vector<double> copy(Values.begin(), Values.end());
  Allocate(len, Complex, false);
  std::copy(copy.begin(), copy.end(), data());
}

void TVec::SetIt(std::span<const double> Values) { SetIt(false, Values); }

void TVec::SetSubRange(const TKalpa& Src, int Index, int Len) { ShareFrom(Src, Index, Len); }

void TVec::SetExternal(double* Data, int Len) { AttachExternal(Data, Len); }

void TVec::Concat(std::initializer_list<std::reference_wrapper<const TVec>> Src) {
  long total = 0;
  bool complex = Src.size() > 0 && Src.begin()->get().Complex();
  for (const TVec& v : Src) {
    if (v.Complex() != complex) ERaise(msg::ComplexNotSupported);
    total += v.Length();
  }
  if (total > std::numeric_limits<int>::max()) ERaise(msg::IntegerOverflow);
  TVec tmp;
  tmp.Size(static_cast<int>(total), complex);
  int at = 0;
  for (const TVec& v : Src) {
    tmp.Copy(v, 0, at, v.Length());
    at += v.Length();
  }
  Copy(tmp);
}

void TVec::Split(std::initializer_list<std::reference_wrapper<TVec>> Dst) const {
  long total = 0;
  for (const TVec& v : Dst) total += v.Length();
  if (total > Length()) ERaise(msg::SizeMismatch);
  TVec self(*this);  // a destination may be Self
  int at = 0;
  for (TVec& v : Dst) {
    int n = v.Length();
    v.Size(n, self.Complex());
    v.Copy(self, at, 0, n);
    at += n;
  }
}

void TVec::GetRow(const TMtx& Mtx, int Index) {
  if (Index < 0 || Index >= Mtx.Rows()) ERaise(msg::IndexOutOfRange);
  TVec tmp;
  tmp.Size(Mtx.Cols(), Mtx.Complex());
  tmp.Copy(Mtx, Index * Mtx.Cols(), 0, Mtx.Cols());
  Copy(tmp);
}

void TVec::GetCol(const TMtx& Mtx, int Index) {
  if (Index < 0 || Index >= Mtx.Cols()) ERaise(msg::IndexOutOfRange);
  int rows = Mtx.Rows(), cols = Mtx.Cols();
  TVec tmp;
  tmp.Size(rows, Mtx.Complex());
  const double* s = Mtx.data();
  double* d = tmp.data();
  if (Mtx.Complex()) {
    for (int r = 0; r < rows; ++r) {
      d[2 * r] = s[2 * (static_cast<std::size_t>(r) * cols + Index)];
      d[2 * r + 1] = s[2 * (static_cast<std::size_t>(r) * cols + Index) + 1];
    }
  } else {
    for (int r = 0; r < rows; ++r) d[r] = s[static_cast<std::size_t>(r) * cols + Index];
  }
  Copy(tmp);
}

void TVec::Diag(const TMtx& Mtx, int k) {
  // The offsets in 64 bits: -k overflows an int for k = INT_MIN.
  const long long r0 = k < 0 ? -static_cast<long long>(k) : 0, c0 = k > 0 ? k : 0;
  if ((c0 >= Mtx.Cols() && Mtx.Cols() > 0) || (r0 >= Mtx.Rows() && Mtx.Rows() > 0)) ERaise(msg::IndexOutOfRange);
  const int n = static_cast<int>(std::max(0LL, std::min(Mtx.Rows() - r0, Mtx.Cols() - c0)));
  TVec tmp;
  tmp.Size(n, Mtx.Complex());
  for (int i = 0; i < n; ++i) tmp.Copy(Mtx, static_cast<int>((r0 + i) * Mtx.Cols() + c0 + i), i, 1);
  Copy(tmp);
}

void TVec::Ramp(double Offset, double Step) {
  detail::RequireReal(*this);
  double* d = data();
  for (int i = 0; i < Length(); ++i) d[i] = Offset + i * Step;
}

void TVec::Reverse() {
  if (Complex()) {
    auto* c = reinterpret_cast<TCplx*>(data());
    std::reverse(c, c + Length());
  } else {
    std::reverse(data(), data() + Length());
  }
}

void TVec::Reverse(const TDenseKalpa& Src) {
  if (&Src == this) {
    Reverse();
    return;
  }
  Size(Src.Length(), Src.Complex());
  TDenseKalpa::Reverse(Src, 0, 0, Src.Length());
}

void TVec::Shift(int Offset) {
  int n = Length();
  if (Offset >= n || Offset <= -n) {
    SetZero();
    return;
  }
  if (Offset > 0) {
    Copy(*this, 0, Offset, n - Offset);
    SetZero(0, Offset);
  } else if (Offset < 0) {
    Copy(*this, -Offset, 0, n + Offset);
    SetZero(n + Offset, -Offset);
  }
}

void TVec::Difference() {
  if (Length() == 0) ERaise(msg::EmptyVector);
  TDenseKalpa::Difference(*this, 0, 0, Length());
  Resize(Length() - 1);
}

// --- TMtx -------------------------------------------------------------------

TMtx::TMtx(int Rows, int Cols, bool Complex) { Size(Rows, Cols, Complex); }

TMtx::TMtx(std::initializer_list<std::initializer_list<double>> rows) {
  int r = static_cast<int>(rows.size());
  int c = r ? static_cast<int>(rows.begin()->size()) : 0;
  for (const auto& row : rows)
    if (static_cast<int>(row.size()) != c) ERaise(msg::SizeMismatch);
  Size(r, c);
  double* d = data();
  for (const auto& row : rows) d = std::copy(row.begin(), row.end(), d);
}

TMtx::TMtx(const TMtx& other) : TDenseKalpa() { *this = other; }

TMtx::TMtx(TMtx&& other) noexcept { *this = std::move(other); }

// A copy or a move carries the solver options with the elements.
TMtx& TMtx::operator=(const TMtx& other) {
  Copy(other);
  triangleForm_ = other.triangleForm_;
  triangleUnit_ = other.triangleUnit_;
  refineSolution_ = other.refineSolution_;
  return *this;
}

TMtx& TMtx::operator=(TMtx&& other) noexcept {
  if (this != &other) {
    Steal(other);
    rows_ = other.rows_;
    cols_ = other.cols_;
    fullRows_ = other.fullRows_;
    fullCols_ = other.fullCols_;
    triangleForm_ = other.triangleForm_;
    triangleUnit_ = other.triangleUnit_;
    refineSolution_ = other.refineSolution_;
    other.rows_ = other.cols_ = 0;
  }
  return *this;
}

TMtx::~TMtx() = default;

void TMtx::SizeLike(const TKalpa& src, bool complex) {
  if (auto* m = dynamic_cast<const TMtx*>(&src)) Size(m->rows_, m->cols_, complex);
  else Size(src.Length(), 1, complex);
}

void TMtx::OnLengthChanged() {
  if (Narrowed()) {
    // A narrowed matrix is seen as one row of its remaining elements.
    if (fullRows_ < 0) fullRows_ = rows_, fullCols_ = cols_;
    SetShape(1, Length());
  } else if (fullRows_ >= 0) {
    SetShape(fullRows_, fullCols_);
    fullRows_ = fullCols_ = -1;
  } else if (const long long n = Length(), was = static_cast<long long>(rows_) * cols_; n != was) {
    // The complex flag was switched (pairs of columns become one) or the storage was given up.
    if (n == 0) SetShape(0, 0);
    else if (2 * n == was && cols_ % 2 == 0) SetShape(rows_, cols_ / 2);
    else if (n == 2 * was) SetShape(rows_, 2 * cols_);
    else SetShape(Length(), 1);
  }
}

void TMtx::Size(int Rows, int Cols, bool Complex, bool) {
  if (Rows < 0 || Cols < 0) ERaise(msg::SizeMismatch);
  long long n = static_cast<long long>(Rows) * Cols;
  if (n > std::numeric_limits<int>::max()) ERaise(msg::IntegerOverflow);
  if (IsView() && (Rows != rows_ || Cols != cols_)) ERaise(msg::SizeMismatch);
  Allocate(static_cast<int>(n), Complex, false);
  SetShape(Rows, Cols);
}

void TMtx::SetExternal(double* Data, int Rows, int Cols) {
  if (Rows < 0 || Cols < 0) ERaise(msg::SizeMismatch);
  const long long n = static_cast<long long>(Rows) * Cols;
  if (n > std::numeric_limits<int>::max()) ERaise(msg::IntegerOverflow);
  AttachExternal(Data, static_cast<int>(n));
  fullRows_ = fullCols_ = -1;
  SetShape(Rows, Cols);
}

void TMtx::Resize(int Rows, int Cols) {
  if (Rows == rows_ && Cols == cols_) return;
  TMtx tmp(Rows, Cols, Complex());
  tmp.SetZero();
  int rr = std::min(Rows, rows_), cc = std::min(Cols, cols_);
  if (rr > 0 && cc > 0) tmp.Copy(*this, 0, 0, 0, 0, rr, cc);
  if (IsView()) ERaise(msg::SizeMismatch);
  *this = std::move(tmp);
}

void TMtx::SetRows(int Value) { Resize(Value, cols_); }
void TMtx::SetCols(int Value) { Resize(rows_, Value); }

void TMtx::Copy(const TMtx& Src, int SrcRow, int SrcCol, int Row, int Col, int RowCount, int ColCount, bool) {
  if (Src.Complex() != Complex()) ERaise(msg::ComplexNotSupported);
  if (RowCount < 0 || ColCount < 0 || SrcRow < 0 || SrcCol < 0 || Row < 0 || Col < 0 ||
      SrcRow > Src.rows_ - RowCount || SrcCol > Src.cols_ - ColCount || Row > rows_ - RowCount ||
      Col > cols_ - ColCount)
    ERaise(msg::IndexOutOfRange);
  if (RowCount == 0 || ColCount == 0) return;
  // Overlapping blocks of one object: read a copy.
  const TMtx* from = &Src;
  TMtx copy;
  if (Src.data() == data()) {
    copy = Src;
    from = &copy;
  }
  int w = Complex() ? 2 : 1;
  for (int r = 0; r < RowCount; ++r)
    std::memcpy(data() + (static_cast<std::size_t>(Row + r) * cols_ + Col) * w,
                from->data() + (static_cast<std::size_t>(SrcRow + r) * Src.cols_ + SrcCol) * w,
                static_cast<std::size_t>(ColCount) * w * sizeof(double));
}

void TMtx::SetRow(const TDenseKalpa& Vec, int Index) {
  if (Index < 0 || Index >= rows_) ERaise(msg::IndexOutOfRange);
  if (Vec.Length() != cols_) ERaise(msg::SizeMismatch);
  TKalpa::Copy(Vec, 0, Index * cols_, cols_);
}

void TMtx::SetCol(const TDenseKalpa& Vec, int Index) {
  if (Index < 0 || Index >= cols_) ERaise(msg::IndexOutOfRange);
  if (Vec.Length() != rows_) ERaise(msg::SizeMismatch);
  if (Vec.Complex() != Complex()) ERaise(msg::ComplexNotSupported);
  TVec copy;
  copy.Copy(Vec);  // Vec may be a view on Self
  const std::size_t w = Complex() ? 2 : 1;
  for (std::size_t r = 0; r < static_cast<std::size_t>(rows_); ++r)
    for (std::size_t k = 0; k < w; ++k) data()[(r * cols_ + Index) * w + k] = copy.data()[r * w + k];
}

void TMtx::Eye(int Rows, int Cols, bool Complex) {
  Size(Rows, Cols, Complex);
  SetZero();
  for (int i = 0; i < std::min(Rows, Cols); ++i) data()[(static_cast<std::size_t>(i) * Cols + i) * (Complex ? 2 : 1)] = 1.0;
}

namespace {
/// The matrices side by side (\p horizontal) or stacked, in a new matrix.
TMtx concatenated(std::initializer_list<std::reference_wrapper<const TMtx>> Src, bool horizontal) {
  const TMtx* first = Src.size() ? &Src.begin()->get() : nullptr;
  int shared = first ? (horizontal ? first->Rows() : first->Cols()) : 0;
  long long total = 0;  // 64 bits: matrices with no rows may each have INT_MAX columns
  for (const TMtx& m : Src) {
    if ((horizontal ? m.Rows() : m.Cols()) != shared) ERaise(msg::SizeMismatch);
    total += horizontal ? m.Cols() : m.Rows();
  }
  if (total > std::numeric_limits<int>::max()) ERaise(msg::IntegerOverflow);
  const int n = static_cast<int>(total);
  TMtx out = horizontal ? TMtx(shared, n, first && first->Complex()) : TMtx(n, shared, first && first->Complex());
  int at = 0;
  for (const TMtx& m : Src) {
    out.Copy(m, 0, 0, horizontal ? 0 : at, horizontal ? at : 0, m.Rows(), m.Cols());
    at += horizontal ? m.Cols() : m.Rows();
  }
  return out;
}
}  // namespace

void TMtx::ConcatHorz(std::initializer_list<std::reference_wrapper<const TMtx>> Src) {
  *this = concatenated(Src, true);
}

void TMtx::ConcatHorz(int DestRow, int DestCol, std::initializer_list<std::reference_wrapper<const TMtx>> Src) {
  int col = DestCol;
  for (const TMtx& m : Src) {
    Copy(m, 0, 0, DestRow, col, m.Rows(), m.Cols());
    col += m.Cols();
  }
}

void TMtx::ConcatVert(std::initializer_list<std::reference_wrapper<const TMtx>> Src) {
  *this = concatenated(Src, false);
}

void TMtx::Transp() {
  TMtx tmp;
  tmp.Transp(*this);
  if (IsView()) {
    if (tmp.rows_ != rows_) ERaise(msg::SizeMismatch);
    CopyElements(tmp);
  } else {
    *this = std::move(tmp);
  }
}

void TMtx::Transp(const TMtx& Src) {
  if (&Src == this) {
    Transp();
    return;
  }
  int R = Src.rows_, C = Src.cols_;
  Size(C, R, Src.Complex());
  const double* s = Src.data();
  double* d = data();
  if (Src.Complex()) {
    auto* sc = reinterpret_cast<const TCplx*>(s);
    auto* dc = reinterpret_cast<TCplx*>(d);
    for (int r = 0; r < R; ++r)
      for (int c = 0; c < C; ++c) dc[static_cast<std::size_t>(c) * R + r] = sc[static_cast<std::size_t>(r) * C + c];
  } else {
    // Blocked so that both the reads and the writes stay in cache.
    constexpr int B = 32;
    for (int r0 = 0; r0 < R; r0 += B)
      for (int c0 = 0; c0 < C; c0 += B)
        for (int r = r0; r < std::min(R, r0 + B); ++r)
          for (int c = c0; c < std::min(C, c0 + B); ++c)
            d[static_cast<std::size_t>(c) * R + r] = s[static_cast<std::size_t>(r) * C + c];
  }
}

}  // namespace statkit
