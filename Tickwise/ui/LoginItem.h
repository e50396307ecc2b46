#pragma once

#include "support/Subscription.h"

namespace tickwise {

/// The desktop's entry that starts the application when the user logs in.
class LoginItem
{
public:
    virtual ~LoginItem() = default;

    /// Adds or removes the entry; one that is already as wanted is a success. `done` gets the one result, later.
    virtual void setRegistered(bool registered, Completion<void> done) = 0;
};

} // namespace tickwise
