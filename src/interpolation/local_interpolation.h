#pragma once

#include "interpolation/interpolation.h"
#include "interpolation/poly_ref.h"

/// Piecewise interpolation: one polynomial through each run of m consecutive support points, used
/// from the middle of its run to the middle of the next one. The end pieces also serve everything
/// beyond the support points.
///
/// `SetSupportPointCount` gives m before `Init`. Fewer points than m make one polynomial through
/// all of them. Evaluating before set-up throws ERROR_ALGORITHM.
template <class T, class POLY, class PT>
class LOCAL_INTERPOLATION : public INTERPOLATION<T, PT> {
 public:
  using PIECE = POLY_REF<T, POLY, PT>;

  /// Throws ERROR_ALGORITHM without points or with a support count below 1, ERROR_NO_MEMORY, and
  /// what the polynomial's own set-up throws.
  void Init(ARRAY<PT>& points) override { Build(points); }
  void InitSupport(ARRAY<PT>& points) override { Build(points); }
  /// Handed on to every piece's polynomial.
  void SetOption(int option) override { option_ = option; }
  void SetSupportPointCount(int count) override { support_point_count_ = count; }

  T GetY(T x) const override { return PieceAt(x).polynom.GetY(x); }
  T GetDerivedY(T x) const override { return PieceAt(x).polynom.GetDerivedY(x); }
  T GetDerived2Y(T x) const override { return PieceAt(x).polynom.GetDerived2Y(x); }
  const T* GetCoeffs(T x) const override { return PieceAt(x).polynom.GetCoeffs(x); }

  int PieceCount() const noexcept { return pieces_.Size(); }
  /// Piece k in the order of the abscissae, 0 <= k < `PieceCount()`.
  const PIECE& Piece(int k) const noexcept { return pieces_.Origin()[k]; }

  /// The piece that serves x: the first one whose interval holds x, both ends included; the first
  /// of all for x before it; else, for NaN too, the last.
  const PIECE& PieceAt(T x) const {
    const PIECE* pieces = pieces_.Origin();
    if (pieces == nullptr) {
      this->Refuse("LOCAL_INTERPOLATION: evaluated before its set-up\n");
    }
    for (int k = 0; k < PieceCount(); ++k) {
      if (pieces[k].t_start <= x && x <= pieces[k].t_stop) {
        return pieces[k];
      }
    }
    return x < pieces[0].t_start ? pieces[0] : pieces[pieces_.Last()];
  }

 private:
  void Build(ARRAY<PT>& points) {
    if (points.Size() < 1 || support_point_count_ < 1) {
      this->Refuse("LOCAL_INTERPOLATION: no support points\n");
    }
    points_ = &points;
    LimitSupportPointCount();
    AllocatePieces();
    for (int k = 0; k < PieceCount(); ++k) {
      PlacePiece(k);
    }
    PIECE* pieces = pieces_.Origin();
    for (int k = 0; k < PieceCount(); ++k) {
      pieces[k].polynom.SetOption(option_);
      pieces[k].polynom.Init(pieces[k].points);
    }
  }

  void LimitSupportPointCount() {
    const int point_count = points_->Size();
    if (support_point_count_ > point_count) {
      Log() << LOGGING_LEVEL_T::WARNING << "LOCAL_INTERPOLATION: change support_point_count from "
            << support_point_count_ << " to " << point_count << "\n";
      support_point_count_ = point_count;
    }
  }

  void AllocatePieces() {
    const int piece_count = points_->Size() + 1 - support_point_count_;
    Log() << LOGGING_LEVEL_T::PARAMETER << "LOCAL_INTERPOLATION: polynom count; " << piece_count
          << "\n";
    if (pieces_.Create(RANGE<int>(0, piece_count)) != CONTAINER_OK) {
      Log() << LOGGING_LEVEL_T::ALARM << "LOCAL_INTERPOLATION: no memory for the polynoms\n";
      throw ERROR_NO_MEMORY();
    }
  }

  void PlacePiece(int k) {
    PIECE& piece = pieces_.Origin()[k];
    piece.points.Link(*points_, RANGE<int>(points_->First() + k, support_point_count_));
    piece.t_start = k == 0 ? Abscissa(0) : pieces_.Origin()[k - 1].t_stop;
    piece.t_stop = StopOfPiece(k);
    Log() << LOGGING_LEVEL_T::PARAMETER << "idx_start=" << static_cast<unsigned>(k)
          << " idx_stop=" << static_cast<unsigned>(k + support_point_count_ - 1)
          << " t_start=" << piece.t_start << " t_stop=" << piece.t_stop << "\n";
  }

  /// Where piece k hands over to the next one: half-way between the middle points of both runs
  /// for an odd number of points a run, at the point between their middles for an even one.
  T StopOfPiece(int k) const {
    const int last = points_->Size() - 1;
    if (support_point_count_ == last + 1) {
      return Abscissa(last);
    }
    if (support_point_count_ % 2 == 0) {
      return Abscissa(k + support_point_count_ / 2);
    }
    const int middle = k + (support_point_count_ - 1) / 2;
    if (middle == last) {  // one point a piece: the last one has no neighbour
      return Abscissa(last);
    }
    return Abscissa(middle) + (Abscissa(middle + 1) - Abscissa(middle)) * T(0.5);
  }

  T Abscissa(int position) const noexcept { return points_->Pointer(0)[position].x; }

  int support_point_count_ = 0;
  int option_ = 0;
  ARRAY<PT>* points_ = nullptr;
  ARRAY<PIECE> pieces_;
};
