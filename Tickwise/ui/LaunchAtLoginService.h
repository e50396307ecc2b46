#pragma once

namespace tickwise {

class LoginItem;

/// Applies the `launchAtLogin` setting. A failure is one log line and nothing else: the setting keeps its value.
class LaunchAtLoginService
{
public:
    /// `item` has to outlive the service.
    explicit LaunchAtLoginService(LoginItem &item)
        : m_item(&item)
    {
    }

    void setEnabled(bool enabled);

private:
    LoginItem *m_item;
};

} // namespace tickwise
