#pragma once

/// A coregistration mapping: tells where a pixel of the master lies in the slave.
///
/// Positions are in pixels of their image, samples along range and lines along azimuth, the first
/// one 0, and may be fractional. Evaluations only read and may run in many threads at once.
class MAPPING_BASE {
 public:
  virtual ~MAPPING_BASE() = default;

  /// The slave's range position [samples] of the master position (range, azimuth).
  virtual double GetSlaveRange(double range, double azimuth) const = 0;
  /// The slave's azimuth position [lines] of the master position (range, azimuth).
  virtual double GetSlaveAzimuth(double range, double azimuth) const = 0;

  /// The largest master sample that the mapping covers. A mapping of no extent wraps to 2^32 - 1.
  virtual unsigned GetMaxRange() const = 0;
  /// The same for master lines.
  virtual unsigned GetMaxAzimuth() const = 0;

 protected:
  MAPPING_BASE() = default;
  MAPPING_BASE(const MAPPING_BASE&) = default;
  MAPPING_BASE& operator=(const MAPPING_BASE&) = default;
};
