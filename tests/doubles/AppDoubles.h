#pragma once

#include "pipeline/UserNotificationCenter.h"
#include "ui/LoginItem.h"

#include <vector>

namespace tickwise::test {

/// A notification service that takes everything, later.
class RecordingNotificationCenter : public UserNotificationCenter
{
    Q_OBJECT

public:
    void requestAuthorization(Completion<void> done) override
    {
        ++authorizationRequests;
        m_deliveries.push_back(deliverLater<void>({}, std::move(done)));
    }
    void add(const UserNotification &notification, Completion<void> done) override
    {
        notifications.push_back(notification);
        m_deliveries.push_back(deliverLater<void>({}, std::move(done)));
    }

    int authorizationRequests = 0;
    std::vector<UserNotification> notifications;

private:
    std::vector<Subscription> m_deliveries;
};

/// A login item that remembers what was asked of it.
class RecordingLoginItem : public LoginItem
{
public:
    void setRegistered(bool registered, Completion<void> done) override
    {
        requests.push_back(registered);
        m_delivery = deliverLater<void>({}, std::move(done));
    }

    std::vector<bool> requests;

private:
    Subscription m_delivery;
};

} // namespace tickwise::test
