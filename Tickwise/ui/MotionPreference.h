#pragma once

namespace tickwise {

/// Whether the user has asked the desktop for less motion.
class MotionPreference
{
public:
    MotionPreference() = default;
    virtual ~MotionPreference() = default;
    MotionPreference(const MotionPreference &) = delete;
    MotionPreference &operator=(const MotionPreference &) = delete;

    virtual bool isReduced() const = 0;
};

} // namespace tickwise
