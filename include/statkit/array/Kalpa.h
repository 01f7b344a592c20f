#pragma once
// Vectors and matrices of the array layer: reference-counted dense storage of
// real or complex elements, element-wise arithmetic, reductions, sorting and
// dense linear algebra.

#include <complex>
#include <cstddef>
#include <functional>
#include <initializer_list>
#include <memory>
#include <span>
#include <vector>

#include "statkit/array/Config.h"
#include "statkit/array/Errors.h"
#include "statkit/array/Types.h"

namespace statkit {

namespace detail {
struct Buffer;
[[noreturn]] STATKIT_API void RaiseIndex();
[[noreturn]] STATKIT_API void RaiseComplex();
[[noreturn]] STATKIT_API void RaiseNotComplex();
}  // namespace detail

class TVec;
class TMtx;

/// \brief Polymorphic root of the library's objects.
class STATKIT_API TObject {
public:
  virtual ~TObject();

protected:
  TObject() = default;
  TObject(const TObject&) = default;
  TObject& operator=(const TObject&) = default;
};

/// \brief Abstract base of vectors and matrices: a length, a complex flag and
/// contiguous storage (complex elements are pairs of doubles).
///
/// Storage is a reference-counted buffer. A view (TVec::SetSubRange,
/// SetSubIndex) shares its source's buffer and so reads and writes the
/// source's elements; a view's length is fixed. Resizing an object whose
/// buffer is shared gives it a buffer of its own.
class STATKIT_API TKalpa : public TObject {
public:
  ~TKalpa() override;

  /// \brief Number of elements (complex elements count once).
  [[nodiscard]] int Length() const { return length_; }
  /// \brief True when the storage holds complex numbers.
  [[nodiscard]] bool Complex() const { return complex_; }
  /// \brief Sets the complex flag; the storage is reinterpreted: n real
  /// values become n/2 complex ones (n must be even) and back.
  void set_Complex(bool Value);

  /// \brief Takes the length (a matrix: the shape) and the complex flag of \p Src.
  void Size(const TKalpa& Src);
  /// \brief Becomes an exact copy of \p Src (length or shape, complex flag, values).
  void Copy(const TKalpa& Src);
  /// \brief Copies \p Len elements of \p Src from \p SrcIndex to Self from \p Index.
  void Copy(const TKalpa& Src, int SrcIndex, int Index, int Len);
  /// \brief Copies \p Len doubles of \p Src from \p SrcIndex to Self from \p Index.
  void CopyFromArray(std::span<const double> Src, int SrcIndex, int Index, int Len);

  /// \brief Narrows Self to its own elements \p BeginIndex .. \p EndIndex (both included).
  void SetSubIndex(int BeginIndex, int EndIndex);
  /// \brief Ends a SetSubIndex view: Self is whole again.
  void SetFullRange();
  /// \brief True while Self is a view (SetSubRange, SetSubIndex or SetExternal).
  [[nodiscard]] bool IsView() const { return subRange_ || narrowed_; }

  /// \brief Turns real storage into complex storage with zero imaginary parts (nothing when
  /// already complex; raises "Size mismatch" on a view).
  /// \param Unused has no effect; accepted for callers that pass it.
  void ExtendToComplex(bool Unused = false);

  /// \brief Sets every element to \p Value.
  void SetVal(double Value);
  /// \brief Sets every element of complex storage to \p Value (real storage raises "Complex data not supported").
  void SetVal(TCplx Value);
  /// \brief Sets elements \p Index .. \p Index + \p Len - 1 to \p Value.
  void SetVal(double Value, int Index, int Len);
  void SetVal(TCplx Value, int Index, int Len);
  /// \brief Sets every element (of the range) to 0.
  void SetZero();
  void SetZero(int Index, int Len);
  /// \brief Fills every element with normal variates of mean \p Mu and standard deviation
  /// \p Sigma from a new generator seeded by one draw of the process-wide generator.
  void RandGauss(double Mu = 0.0, double Sigma = 1.0);

  /// \brief Raw storage: Length() doubles, or 2 Length() for complex data (real and
  /// imaginary parts interleaved).
  [[nodiscard]] double* data() { return base_; }
  /// \copydoc data()
  [[nodiscard]] const double* data() const { return base_; }

protected:
  TKalpa() = default;
  TKalpa(const TKalpa&) = delete;
  TKalpa& operator=(const TKalpa&) = delete;

  /// Number of doubles the elements occupy.
  std::size_t Doubles() const { return static_cast<std::size_t>(length_) * (complex_ ? 2 : 1); }
  /// Gives Self \p len elements (keeping the first ones when \p keep); views may not change size.
  void Allocate(int len, bool complex, bool keep);
  /// Takes the storage of \p other (a move).
  void Steal(TKalpa& other) noexcept;
  /// Deep copy of \p src's elements into Self's own storage (shape handled by the caller).
  void CopyElements(const TKalpa& src);
  /// Derived classes take the shape of \p src here (a vector its length, a
  /// matrix its shape, or rows x 1 from a vector) with the given complex flag.
  virtual void SizeLike(const TKalpa& src, bool complex) = 0;
  /// Derived classes update their shape after a narrowing or its end.
  virtual void OnLengthChanged() {}
  /// Makes Self a view on \p src's elements \p index .. \p index + \p len - 1.
  void ShareFrom(const TKalpa& src, int index, int len);
  /// Makes Self a fixed-length view on \p len real elements at \p data, which Self does not own.
  void AttachExternal(double* data, int len);
  /// Gives up storage that a view may share, for an object going back to the pool.
  void ReleaseShared();
  void CheckRange(int index, int len) const;
  bool Narrowed() const { return narrowed_; }

  double& RealAt(int i) const {
    if (static_cast<unsigned>(i) >= static_cast<unsigned>(length_)) detail::RaiseIndex();
    if (complex_) detail::RaiseComplex();
    return base_[i];
  }
  TCplx& ComplexAt(int i) const {
    if (static_cast<unsigned>(i) >= static_cast<unsigned>(length_)) detail::RaiseIndex();
    if (!complex_) detail::RaiseNotComplex();
    return reinterpret_cast<TCplx*>(base_)[i];
  }

  friend class PoolAccess;

private:
  // Self becomes a fixed-length view on len elements at base (kept alive by buf, if any).
  void BecomeView(std::shared_ptr<detail::Buffer> buf, double* base, int len, bool complex);

  std::shared_ptr<detail::Buffer> buf_;
  double* base_ = nullptr;
  int length_ = 0;
  bool complex_ = false;
  // A SetSubIndex narrowing remembers the whole range to restore.
  bool narrowed_ = false;
  double* fullBase_ = nullptr;
  int fullLength_ = 0;
  bool subRange_ = false;  // Self is a SetSubRange view of another object's storage
};

/// \brief Dense storage with element-wise arithmetic and reductions, shared by TVec and TMtx.
///
/// Binary operations act element by element over the storage sequence (a matrix
/// row by row); operands of different lengths raise "Size mismatch". An
/// operation that writes a result into Self sizes Self like its first operand.
class STATKIT_API TDenseKalpa : public TKalpa {
public:
  /// \brief Complex element \p i of the storage (bounds-checked).
  TCplx& CValues(int i) { return ComplexAt(i); }
  const TCplx& CValues(int i) const { return ComplexAt(i); }

  // --- element-wise arithmetic ---------------------------------------------
  void Add(double Value);
  void Add(TCplx Value);
  void Add(const TDenseKalpa& Vec);
  void Add(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2);
  void Add(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2, int Vec1Index, int Vec2Index, int Index,
           int Len);
  /// \brief Self[i] += Factor * Vec[i].
  void AddScaled(const TDenseKalpa& Vec, double Factor);
  void Sub(double Value);
  void Sub(const TDenseKalpa& Vec);
  void Sub(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2);
  void Sub(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2, int Vec1Index, int Vec2Index, int Index,
           int Len);
  void Mul(double Value);
  void Mul(TCplx Value);
  void Mul(double Value, int Index, int Len);
  void Mul(const TDenseKalpa& Vec);
  void Mul(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2);
  void Divide(const TDenseKalpa& Vec);
  void Divide(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2);
  /// \brief Self[i] += Value.
  void Offset(double Value);
  /// \brief Self[i] *= Value.
  void Scale(double Value);
  /// \brief Self[i] = (Vec[i] - Sub) / Div.
  void Normalize(const TDenseKalpa& Vec, double Sub, double Div);
  void Normalize(const TDenseKalpa& Vec, TCplx Sub, double Div);
  /// \brief Self = Vec minus its mean (real data): the mean is refined by the mean of the
  /// first deviations, which removes what its rounding left, so the result sums to zero
  /// to rounding even on data offset far from zero. Raises "Empty vector" for no data.
  void Centre(const TDenseKalpa& Vec);

  /// \brief Absolute value (magnitude for complex data; the result is real).
  void Abs();
  void Abs(const TDenseKalpa& Src);
  void Abs(int Index, int Len);
  /// \brief Element-wise reciprocal 1/x.
  void Inv();
  void Inv(const TDenseKalpa& Src);
  void Exp();
  void Exp(const TDenseKalpa& Src);
  void Exp(int Index, int Len);
  void Ln();
  void Ln(const TDenseKalpa& Src);
  void Sqrt();
  void Sqrt(const TDenseKalpa& Src);
  void Sqr();
  void Sqr(const TDenseKalpa& Src);
  void Power(double Exponent);
  void IntPower(int Exponent);
  /// \brief Negates every element.
  void Sign();
  /// \brief Rounds every element up / toward zero (values stay doubles).
  void Ceil();
  void Trunc();
  /// \brief Converts whole-number storage of \p Src to doubles in Self.
  void IntToFloat(const TDenseKalpa& Src);
  /// \brief Complex conjugate of \p Src (a copy for real data).
  void Conj(const TDenseKalpa& Src);
  /// \brief Running sum in place over the range (Len -1: to the end).
  void CumSum(int Index = 0, int Len = -1);
  /// \brief Self[Index + i] = Src[SrcIndex + i + 1] - Src[SrcIndex + i] for the
  /// Len - 1 differences of Len source elements.
  void Difference(const TDenseKalpa& Src, int SrcIndex, int Index, int Len);
  /// \brief Ranged reverse copy: Self[Index + i] = Src[SrcIndex + Len - 1 - i].
  void Reverse(const TDenseKalpa& Src, int SrcIndex, int Index, int Len);

  // --- reductions ------------------------------------------------------------
  [[nodiscard]] double Sum() const;
  void Sum(TCplx& Result) const;
  /// \brief Arithmetic mean; raises "Empty vector" when there is nothing to average.
  [[nodiscard]] double Mean() const;
  [[nodiscard]] double Mean(int Index, int Len) const;
  [[nodiscard]] TCplx Meanc() const;
  [[nodiscard]] double Max() const;
  [[nodiscard]] double Min() const;
  /// \brief The smallest and the largest element in one read; both NaN when a NaN is present.
  void MinMax(double& Lo, double& Hi) const;
  /// \brief Dst[i] = the (First + i)-th smallest element (from 0; NaNs rank after +INF, as
  /// SortAscend orders them), found by selection without reordering Self; raises
  /// "Index out of range" unless First >= 0 and First + Dst.size() <= Length.
  void SelectRanks(int First, std::span<double> Dst) const;
  /// \brief Complex element of largest / smallest magnitude (the first on ties).
  [[nodiscard]] TCplx Maxc() const;
  [[nodiscard]] TCplx Minc() const;
  /// \brief Standard deviation about the elements' own mean, divisor Length - 1.
  [[nodiscard]] double StdDev() const;
  /// \brief Standard deviation about the given mean, divisor Length - 1.
  [[nodiscard]] double StdDev(double Mean) const;
  [[nodiscard]] double StdDev(TCplx Mean) const;
  [[nodiscard]] double RMS() const;
  /// \brief Square root of the sum of squared magnitudes.
  [[nodiscard]] double NormL2() const;
  [[nodiscard]] double SumOfSquares() const;
  void Product(double& Result) const;
  [[nodiscard]] double DotProd(const TDenseKalpa& Vec) const;
  [[nodiscard]] double DotProd(const TDenseKalpa& Vec, int VecIndex, int Index, int Len) const;
  /// \brief Complex dot product, conjugating Self's elements when \p Conjugate.
  [[nodiscard]] TCplx DotProdc(const TDenseKalpa& Vec, bool Conjugate) const;

protected:
  TDenseKalpa() = default;

private:
  // Self = op(Vec1, Vec2) element by element, Self sized like Vec1 (defined where used).
  template <class Op>
  void Zip(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2, Op op);
  // The ranged form: Len elements from the given positions of each operand.
  template <class Op>
  void ZipRange(const TDenseKalpa& Vec1, const TDenseKalpa& Vec2, int Vec1Index, int Vec2Index, int Index, int Len,
                Op op);
};

/// \brief Mean of the elements, as a free function.
[[nodiscard]] STATKIT_API double Mean(const TDenseKalpa& X);
/// \brief Smallest element, as a free function.
[[nodiscard]] STATKIT_API double Min(const TDenseKalpa& X);
/// \brief Largest element, as a free function.
[[nodiscard]] STATKIT_API double Max(const TDenseKalpa& X);

/// \brief A vector of real or complex elements.
///
/// Construction: `TVec v;` is empty; `TVec v{1.0, 2.0}` and `TVec{3}` hold the listed
/// values (braces always pick the list: `TVec{3}` is the one element 3); `TVec(3)` has
/// three zeros (parentheses pick the length). With an int variable n, `TVec{n}` is still the
/// one element n, through a narrowing conversion that g++ warns about and clang++ refuses:
/// write `TVec(n)` for a length.
///
/// Iteration: `for (double x : v)` visits the elements of a real vector. begin() and end()
/// of a complex vector raise "Complex data not supported"; read its elements with
/// CValues(i), i = 0 .. Length() - 1, or its 2 Length() doubles (real and imaginary parts
/// interleaved) through data().
class STATKIT_API TVec : public TDenseKalpa {
public:
  TVec() = default;
  /// \brief The listed values, in order (real).
  TVec(std::initializer_list<double> values);
  /// \brief \p Length zeros (complex zeros when \p Complex); a negative length raises "Size mismatch".
  explicit TVec(int Length, bool Complex = false);
  /// \brief The values of \p values, in order (real).
  explicit TVec(const std::vector<double>& values);
  TVec(const TVec& other);
  TVec(TVec&& other) noexcept;
  TVec& operator=(const TVec& other);
  TVec& operator=(TVec&& other) noexcept;
  ~TVec() override;

  /// \brief A new empty vector owned by the caller.
  [[nodiscard]] static TVec Create() { return TVec(); }

  /// \brief Makes Self a view on \p Len real elements at \p Data, owned by the caller, who keeps
  /// them alive while Self refers to them: a host's array is read (or written) in place, without
  /// a copy. The view's length is fixed; SetFullRange ends it (Self becomes empty).
  void SetExternal(double* Data, int Len);

  /// \brief Resizes; values are kept up to the shorter length.
  void SetLength(int Len);
  /// \brief Sets the length and the complex flag; element values are unspecified until written.
  /// \param Len the new length (>= 0).
  /// \param Complex true for complex elements.
  /// \param Unused has no effect; accepted for callers that pass it.
  void Size(int Len, bool Complex = false, bool Unused = false);
  using TKalpa::Size;
  /// \brief Changes the length keeping the existing elements (new ones are 0) and the complex flag.
  /// \param Len the new length (>= 0).
  /// \param Unused has no effect; accepted for callers that pass it.
  void Resize(int Len, bool Unused = false);
  /// \brief Resizes to \p Len taking the elements and the complex flag of \p Src (zero-filled beyond it).
  /// \param Src the source of the elements.
  /// \param Len the new length (>= 0).
  /// \param Unused has no effect; accepted for callers that pass it.
  void Resize(const TKalpa& Src, int Len, bool Unused = false);

  /// \brief Real element \p i (bounds-checked).
  double& operator[](int i) { return RealAt(i); }
  double operator[](int i) const { return RealAt(i); }
  double& Values(int i) { return RealAt(i); }
  double Values(int i) const { return RealAt(i); }
  /// \brief Element \p i as an int (the integer view that SortAscend fills).
  [[nodiscard]] int IValue(int i) const;

  /// \brief The first element of a real vector; raises "Complex data not supported" for complex data.
  [[nodiscard]] double* begin();
  /// \brief One past the last element of a real vector; raises "Complex data not supported" for complex data.
  [[nodiscard]] double* end();
  /// \copydoc begin()
  [[nodiscard]] const double* begin() const;
  /// \copydoc end()
  [[nodiscard]] const double* end() const;

  /// \brief Sets length and values from a list (pairs re, im when \p Complex).
  void SetIt(bool Complex, std::span<const double> Values);
  void SetIt(std::span<const double> Values);
  void SetIt(std::initializer_list<double> Values) { SetIt(std::span<const double>(Values.begin(), Values.size())); }
  /// \brief Makes Self a view of \p Len elements of \p Src from \p Index.
  void SetSubRange(const TKalpa& Src, int Index, int Len);
  /// \brief Self becomes the vectors one after another.
  void Concat(std::initializer_list<std::reference_wrapper<const TVec>> Src);
  /// \brief Cuts Self into the given vectors by their lengths.
  void Split(std::initializer_list<std::reference_wrapper<TVec>> Dst) const;
  /// \brief Self becomes row / column \p Index of \p Mtx.
  void GetRow(const TMtx& Mtx, int Index);
  void GetCol(const TMtx& Mtx, int Index);
  /// \brief Self becomes the k-th diagonal of \p Mtx (0 main, > 0 above, < 0 below).
  void Diag(const TMtx& Mtx, int k);
  /// \brief Values[i] = Offset + i * Step over the current length.
  void Ramp(double Offset, double Step);
  /// \brief Reverses the order of the elements (of \p Src into Self).
  void Reverse();
  void Reverse(const TDenseKalpa& Src);
  using TDenseKalpa::Reverse;
  /// \brief Moves the elements by \p Offset positions (toward the end when positive); vacated places become 0.
  void Shift(int Offset);
  /// \brief Differences of consecutive elements in place; one element fewer.
  void Difference();
  using TDenseKalpa::Difference;

  /// \brief Sorts ascending in place (NaNs last).
  void SortAscend();
  /// \brief Sorts ascending in place and fills \p IndexVec with each sorted element's former position.
  void SortAscend(TVec& IndexVec);

  /// \brief Self = Mtx * Vec (Vec a column vector).
  void TensorProd(const TMtx& Mtx, const TVec& Vec, TMtxType MtxType = mtGeneral);

  /// \brief Biased autocorrelation: Self[k] = (1/n) sum_i Src[i] Src[i+k], k = 0..Lags (0 when k >= n).
  void AutoCorrBiased(const TVec& Src, int Lags);
  /// \brief Biased cross-correlation: Self[k] = (1/n) sum_i Vec1[i] Vec2[i + Offset + k], k = 0..Lags, n = Vec1.Length.
  void CrossCorr(const TVec& Vec1, const TVec& Vec2, int Lags, int Offset);

protected:
  void SizeLike(const TKalpa& src, bool complex) override;
};

/// \brief A matrix stored row by row: element (r, c) is element r * Cols + c.
class STATKIT_API TMtx : public TDenseKalpa {
public:
  TMtx() = default;
  /// \brief A \p Rows x \p Cols matrix (complex when \p Complex); element values are unspecified until written.
  TMtx(int Rows, int Cols, bool Complex = false);
  /// \brief The listed rows, each of the same length (else "Size mismatch").
  TMtx(std::initializer_list<std::initializer_list<double>> rows);
  TMtx(const TMtx& other);
  TMtx(TMtx&& other) noexcept;
  TMtx& operator=(const TMtx& other);
  TMtx& operator=(TMtx&& other) noexcept;
  ~TMtx() override;

  /// \brief A new empty matrix owned by the caller.
  [[nodiscard]] static TMtx Create() { return TMtx(); }

  [[nodiscard]] int Rows() const { return rows_; }
  [[nodiscard]] int Cols() const { return cols_; }

  /// \brief Sets the shape and the complex flag; element values are unspecified until written.
  /// \param Rows the number of rows (>= 0).
  /// \param Cols the number of columns (>= 0).
  /// \param Complex true for complex elements.
  /// \param Unused has no effect; accepted for callers that pass it.
  void Size(int Rows, int Cols, bool Complex = false, bool Unused = false);
  using TKalpa::Size;
  /// \brief Changes the shape keeping element (r, c) where it exists in both; new elements are 0.
  void Resize(int Rows, int Cols);
  /// \brief Makes Self a view on the \p Rows x \p Cols real elements at \p Data (row by row),
  /// owned by the caller as for TVec::SetExternal; the shape is fixed.
  void SetExternal(double* Data, int Rows, int Cols);
  void SetRows(int Value);
  void SetCols(int Value);

  /// \brief Real element (r, c) (bounds-checked).
  double& operator()(int r, int c) { return RealAt(At(r, c)); }
  double operator()(int r, int c) const { return RealAt(At(r, c)); }
  double& Values(int r, int c) { return RealAt(At(r, c)); }
  double Values(int r, int c) const { return RealAt(At(r, c)); }
  TCplx& CValues(int r, int c) { return ComplexAt(At(r, c)); }
  const TCplx& CValues(int r, int c) const { return ComplexAt(At(r, c)); }
  using TDenseKalpa::CValues;

  /// \brief Copies the RowCount x ColCount block of \p Src at (SrcRow, SrcCol) into Self at (Row, Col).
  /// The trailing \p Unused has no effect; it is accepted for callers that pass it.
  void Copy(const TMtx& Src, int SrcRow, int SrcCol, int Row, int Col, int RowCount, int ColCount,
            bool Unused = false);
  using TKalpa::Copy;
  void SetRow(const TDenseKalpa& Vec, int Index);
  void SetCol(const TDenseKalpa& Vec, int Index);
  /// \brief Identity matrix of the given shape.
  void Eye(int Rows, int Cols, bool Complex = false);
  /// \brief Self becomes the matrices side by side / stacked.
  void ConcatHorz(std::initializer_list<std::reference_wrapper<const TMtx>> Src);
  /// \brief Writes the matrices side by side into Self from (DestRow, DestCol); Self keeps its size.
  void ConcatHorz(int DestRow, int DestCol, std::initializer_list<std::reference_wrapper<const TMtx>> Src);
  void ConcatVert(std::initializer_list<std::reference_wrapper<const TMtx>> Src);
  /// \brief Transposes in place, or \p Src into Self.
  void Transp();
  void Transp(const TMtx& Src);

  /// \brief Element-wise product.
  void MulElem(const TMtx& Mtx);
  /// \brief Element-wise reciprocal; an element with |e| < Threshold becomes +-1/Threshold (+ for 0).
  void InvElem(double Threshold);

  /// \brief Per-column / per-row mean or sum into \p Dst.
  void MeanCols(TVec& Dst) const;
  void MeanRows(TVec& Dst) const;
  void SumCols(TVec& Dst) const;
  void SumRows(TVec& Dst) const;

  // --- matrix algebra --------------------------------------------------------
  /// \brief Self = op1(Mtx1) * op2(Mtx2); complex when either operand is. With matrix kinds,
  /// a symmetric or Hermitian operand is read from the triangle its TriangleForm names and a
  /// triangular one from its triangle (unit diagonal when TriangleUnit).
  void Mul(const TMtx& Mtx1, const TMtx& Mtx2, TMtxOperation Op1 = opNone, TMtxOperation Op2 = opNone);
  void Mul(const TMtx& Mtx1, const TMtx& Mtx2, TMtxType Type1, TMtxType Type2, TMtxOperation Op1 = opNone,
           TMtxOperation Op2 = opNone);
  using TDenseKalpa::Mul;
  /// \brief Outer product: Self(i, j) = Vec1[i] * Vec2[j].
  void TensorProd(const TVec& Vec1, const TVec& Vec2);
  /// \brief Adds the outer product Vec1 Vec2' (conjugating Vec2 when \p ConjVec2) to Self.
  void AddTensorProd(const TVec& Vec1, const TVec& Vec2, bool ConjVec2 = false);
  /// \brief Inverts in place; raises "Singular matrix" (a zero pivot, or an estimated reciprocal
  /// condition number of the equilibrated matrix below epsilon) or "Matrix is not positive
  /// definite" for the positive definite kinds.
  void Inv(TMtxType MtxType);
  using TDenseKalpa::Inv;
  /// \brief Solves op(Self) * X = B by LU decomposition (triangular solve for mtTriangular,
  /// Cholesky for the positive definite kinds), refined once when SetRefineSolution is on.
  void LUSolve(const TVec& B, TVec& X, TMtxType MtxType = mtGeneral, TMtxOperation Op = opNone) const;
  void LUSolve(const TMtx& B, TMtx& X, TMtxType MtxType = mtGeneral, TMtxOperation Op = opNone) const;
  /// \brief Least-squares solution of op(Self) * X = B by Householder QR, refined in long double
  /// (the minimum-norm solution when op(Self) has fewer rows than columns); \p R receives the
  /// upper triangular factor (of op(Self)' in the minimum-norm case; its TriangleForm becomes
  /// tfUpper, so R.Inv(mtTriangular) inverts it). Rank deficiency raises "Singular matrix".
  void LQRSolve(const TVec& B, TVec& X, TMtx* R = nullptr, TMtxOperation Op = opNone) const;
  /// \brief QR factorisation Self = Q R (Q with orthonormal columns, thin form; R's TriangleForm becomes tfUpper).
  /// The trailing \p Unused has no effect (the thin form is always computed); it is accepted for
  /// callers that pass it.
  void LQR(TMtx& Q, TMtx& R, bool Unused = false) const;
  /// \brief Singular value decomposition Self = U diag(S) V^H (V^H = V' for real data), S real and descending.
  /// \param U the left singular vectors, by columns.
  /// \param S the min(Rows, Cols) singular values, descending.
  /// \param V the right singular vectors, by columns.
  /// \param Thin true: thin U and V (min(Rows, Cols) columns); false: square U (Rows x Rows)
  /// and V (Cols x Cols).
  void SVD(TMtx& U, TVec& S, TMtx& V, bool Thin = true) const;
  /// \brief The singular values alone, descending.
  void SVD(TVec& S) const;
  /// \brief The singular values \p S, descending, and the right singular vectors \p V (thin, by columns)
  /// without the left ones: a tall matrix is reduced to its QR factor R first.
  void SVD(TVec& S, TMtx& V) const;
  /// \brief Cholesky factor in place: Self = L L' with L lower triangular (the upper part zeroed,
  /// TriangleForm tfLower); reads the lower triangle.
  void Cholesky();
  /// \brief Options read by the solvers for mtTriangular matrices and refinement.
  void SetTriangleForm(TTriangleForm Form) { triangleForm_ = Form; }
  void SetTriangleUnit(bool Unit) { triangleUnit_ = Unit; }
  void SetRefineSolution(bool Refine) { refineSolution_ = Refine; }
  [[nodiscard]] TTriangleForm TriangleForm() const { return triangleForm_; }
  [[nodiscard]] bool TriangleUnit() const { return triangleUnit_; }
  [[nodiscard]] bool RefineSolution() const { return refineSolution_; }
  /// \brief Toeplitz matrix of Vec1.Length rows and Vec2.Length + 1 columns: Vec1 fills the
  /// first column (main diagonal and below), Vec2 the first row from the first off-diagonal on.
  void Toeplitz(const TVec& Vec1, const TVec& Vec2);
  /// \brief Vandermonde matrix of \p Vec: Self(i, j) = Vec[i]^(Cols - 1 - j).
  void VanderMonde(int Cols, const TVec& Vec);

protected:
  void SizeLike(const TKalpa& src, bool complex) override;
  void OnLengthChanged() override;

private:
  int At(int r, int c) const {
    if (static_cast<unsigned>(r) >= static_cast<unsigned>(rows_) ||
        static_cast<unsigned>(c) >= static_cast<unsigned>(cols_))
      detail::RaiseIndex();
    return r * cols_ + c;
  }
  void SetShape(int rows, int cols) { rows_ = rows; cols_ = cols; }

  int rows_ = 0;
  int cols_ = 0;
  int fullRows_ = -1;  // the shape to restore after a SetSubIndex narrowing, -1 when none
  int fullCols_ = -1;
  TTriangleForm triangleForm_ = tfLower;
  bool triangleUnit_ = false;
  bool refineSolution_ = false;
};

/// \brief Fills \p Roots (complex) with the roots of the polynomial
/// Coeffs[0] x^(n-1) + ... + Coeffs[n-1] (highest power first, as numpy.roots): leading
/// zeros are dropped, trailing zeros give exact zero roots, a constant or zero polynomial
/// gives none, and a non-finite coefficient gives NaN roots.
STATKIT_API void PolyRoots(TVec& Roots, const TVec& Coeffs);

/// \brief Solves the Yule-Walker equations of orders 1..m for the autocovariances (or
/// autocorrelations) R[0..m] by the Durbin-Levinson recursion, in O(m^2): \p Phi gets the
/// order-m autoregressive coefficients, \p Reflection the partial autocorrelations of lags
/// 1..m (the last coefficient of each order), \p ErrVar the prediction error variances of
/// orders 0..m-1 (ErrVar[0] = R[0]). Each output has m elements and may be R itself; m = 0
/// leaves them empty. A zero error variance divides by zero the IEEE way.
STATKIT_API void DurbinLevinson(const TVec& R, TVec& Phi, TVec& Reflection, TVec& ErrVar);

/// \brief One step of the Durbin-Levinson recursion: the order-k autoregressive coefficients in
/// \p Phi[0..k-2] become those of order k = Phi.size() with the reflection coefficient (partial
/// autocorrelation) \p Reflection, which is written to Phi[k-1].
STATKIT_API void LevinsonStepUp(std::span<double> Phi, double Reflection);

}  // namespace statkit
