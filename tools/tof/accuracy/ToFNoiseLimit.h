#pragma once

// The standard deviation of a measurement that is due to shot noise alone, from the collected electrons.
//
// Shot noise is Poisson noise: its variance is the number of electrons. The functions propagate variances
// through the measuring equation to first order, which is valid while the result is small against the range.

/// Standard deviation in radians of the phase shift of a continuous-wave measurement with two taps.
///
/// Per phase k of N (N = 2: a quarter turn apart; N = 4, 8: evenly over the turn) the difference of the taps
/// is d_k = C S cos(p - t_k), with S reflected electrons and contrast C, and both taps together hold T
/// electrons. Its variance, V = T + other, is the same for every phase. The sums x = sum d_k cos t_k and y =
/// sum d_k sin t_k have the length C S N / 2 and, as cosine and sine are orthogonal over the t_k, the
/// uncorrelated variance V N / 2. The angle of (x, y) therefore has the standard deviation
///
///     sigma = sqrt(V N / 2) / (C S N / 2) = sqrt(2 V / N) / (C S).
///
/// other: additional variance of a difference (read noise and rounding of both taps), electrons squared.
double wavePhaseSigma(double signal, double total, double contrast, int phases, double other = 0.0);

/// Standard deviation of u = (Q - R) / (P + Q - 2 R), the position of a pulse between the windows P and Q
/// with the ambient light R, as a share of the pulse's range; from the electrons of the windows. With D = P +
/// Q - 2 R the derivatives are -u / D, (1 - u) / D and (2 u - 1) / D, and so
///
///     sigma = sqrt(u^2 var P + (1 - u)^2 var Q + (2 u - 1)^2 var R) / D.
///
/// other: additional variance of each window, electrons squared.
double pulseShareSigma(double first, double second, double ambient, double other = 0.0);
