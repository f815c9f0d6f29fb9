#include "pools/pool_template.h"

namespace {

constexpr const char* insar_template = R"(# INSAR pool of resample: fill in each 0 and nan.

# Samples a line and lines of the output, which are those of the master.
n_samples INT_32 0
n_lines INT_32 0

# Two-way range time of the slave's first sample and azimuth time of its first line [s], counted like
# the times of the Doppler centroid in the slave pool.
slave_first_rg_time FLT_15 nan
slave_first_az_time FLT_15 nan

# How the mapping is given: matrix or polynomial.
mapping_format STR matrix

# For matrix: samples and lines of the master from node to node of the mapping matrices.
shift_matrices_subsampling_rg INT_32 0
shift_matrices_subsampling_az INT_32 0

# For polynomial: the coefficients c0 ... c5 of the shifts in range [samples] and azimuth [lines] at
# master sample x and line y: c0 + c1 y + c2 x + c3 x y + c4 y^2 + c5 x^2.
respl_poly_rg FLT_15_V 0 6
{
  nan
  nan
  nan
  nan
  nan
  nan
}
respl_poly_az FLT_15_V 0 6
{
  nan
  nan
  nan
  nan
  nan
  nan
}
)";

constexpr const char* slave_template = R"(# Slave pool of resample: fill in each 0, nan and ?.

# Pulse repetition frequency and sampling frequency in range [Hz].
prf FLT_15 0
range_sampling_frequency FLT_15 0

# Oversampling of the image: its lines follow each other at oversampling * prf, its samples at
# oversampling * range_sampling_frequency.
oversampling FLT_15 1

# The Doppler centroid, a polynomial in range time at each of some azimuth times, which rise. The
# numbers behind FLT_15_V are 0 and how many polynomials there are; here two.
fdc_poly_az_time FLT_15_V 0 2
{
  nan
  nan
}

# The two-way range time [s] that each polynomial is expanded around.
fdc_poly_rg_ref_time FLT_15_V 0 2
{
  nan
  nan
}

# A row for each polynomial, with a coefficient for each degree from 0 [Hz / s^degree]. The numbers
# behind FLT_15_M are 0, the number of rows, 0 and the number of coefficients a row.
fdc_poly_coeff FLT_15_M 0 2 0 2
{
  {
    nan
    nan
  }
  {
    nan
    nan
  }
}

# Stripmap is SM, ATI or ATIS; others are SL, HS, HS300, ST, SC, WS, TS, TOPS, IW, EW and WV.
imaging_mode STR ?
)";

}  // namespace

std::string PoolTemplate(POOL_ROLE role) {
  return role == POOL_ROLE::SLAVE ? slave_template : insar_template;
}
