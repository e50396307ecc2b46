#pragma once

#include <chrono>

namespace tickwise {

/// A damped oscillator that moves from 0 to 1, as its two usual parameters describe it.
struct Spring
{
    double response = 0;        ///< period of the undamped oscillation, in seconds; above 0
    double dampingFraction = 1; ///< share of the critical damping, above 0; from 1 on nothing overshoots

    /// The position after that time: 0 at the start, with no speed.
    double positionAt(std::chrono::duration<double> time) const;

    /// When the motion stays within a hundredth of its end.
    std::chrono::duration<double> settlingTime() const;
};

} // namespace tickwise
