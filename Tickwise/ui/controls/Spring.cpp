#include "ui/controls/Spring.h"

#include <cmath>
#include <numbers>

namespace tickwise {

namespace {

constexpr double settled = 0.01;

/// The distance from the end, of a motion that swings.
double underdampedDistance(double frequency, double damping, double time)
{
    const double decay = damping * frequency;
    const double swing = frequency * std::sqrt(1 - damping * damping);
    return std::exp(-decay * time) * (std::cos(swing * time) + decay / swing * std::sin(swing * time));
}

/// The distance from the end, of a motion that creeps in with two rates.
double overdampedDistance(double frequency, double damping, double time)
{
    const double root = std::sqrt(damping * damping - 1);
    const double slow = frequency * (damping - root);
    const double fast = frequency * (damping + root);
    return (fast * std::exp(-slow * time) - slow * std::exp(-fast * time)) / (fast - slow);
}

} // namespace

double Spring::positionAt(std::chrono::duration<double> time) const
{
    const double t = time.count();
    if (t <= 0)
        return 0;
    const double frequency = 2 * std::numbers::pi / response;
    if (dampingFraction < 1)
        return 1 - underdampedDistance(frequency, dampingFraction, t);
    if (dampingFraction > 1)
        return 1 - overdampedDistance(frequency, dampingFraction, t);
    return 1 - std::exp(-frequency * t) * (1 + frequency * t);
}

std::chrono::duration<double> Spring::settlingTime() const
{
    // Walks backwards from a time at which every spring of this damping rests.
    const double frequency = 2 * std::numbers::pi / response;
    const double slowest = dampingFraction <= 1
                               ? dampingFraction * frequency
                               : frequency * (dampingFraction - std::sqrt(dampingFraction * dampingFraction - 1));
    const double step = response / 100;
    double time = 10 / slowest;
    while (time > step && std::abs(1 - positionAt(std::chrono::duration<double>(time - step))) < settled)
        time -= step;
    return std::chrono::duration<double>(time);
}

} // namespace tickwise
