#pragma once

#include "app/AppDelegate.h"
#include "doubles/AppDoubles.h"
#include "doubles/PipelineDoubles.h"
#include "doubles/ScriptedHttpClient.h"
#include "doubles/TestClock.h"

#include <QPointer>
#include <QTemporaryDir>

namespace tickwise::test {

/// What every delegate is given, as doubles. A test makes the delegate, which has to end before them.
struct DelegateDoubles
{
    AppEnvironment doubles()
    {
        return {.defaults = storage,
                .httpClient = http,
                .notificationCenter = notifications,
                .loginItem = loginItem,
                .makeStatusItem =
                    [this] {
                        auto made = std::make_unique<RecordingStatusItem>();
                        item = made.get();
                        return made;
                    },
                .reloadWidgets = [] {},
                .isSecondCopy = [] { return false; },
                .container = container.path(),
                .clock = clock.clock()};
    }

    int polls() const { return static_cast<int>(http.urls(Endpoints().binanceMain).size()); }

    TestClock clock;
    QTemporaryDir container;
    mutable MemoryDefaults storage; ///< windows write their frames
    ScriptedHttpClient http;
    RecordingNotificationCenter notifications;
    RecordingLoginItem loginItem;
    QPointer<RecordingStatusItem> item;
};

/// Changes the delegate's settings as a window does.
inline void changeSettings(AppDelegate &delegate, const std::function<void(AppSettings &)> &edit)
{
    AppSettings settings = delegate.settingsViewModel().settings();
    edit(settings);
    delegate.settingsViewModel().update(settings);
}

} // namespace tickwise::test
