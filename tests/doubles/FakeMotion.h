#pragma once

#include "ui/MotionPreference.h"

namespace tickwise::test {

/// A user who wants less motion, or not.
struct FakeMotion : MotionPreference
{
    bool isReduced() const override { return reduced; }
    bool reduced = true;
};

} // namespace tickwise::test
