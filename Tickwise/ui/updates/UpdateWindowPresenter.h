#pragma once

#include "ui/updates/UpdateUserDriver.h"
#include "ui/updates/UpdateWindow.h"

#include <memory>

namespace tickwise {

/// Shows update sessions in an `UpdateWindow` that lives as long as the session.
class UpdateWindowPresenter : public UpdateUserDriver
{
    Q_OBJECT

public:
    explicit UpdateWindowPresenter(QObject *parent = nullptr);
    ~UpdateWindowPresenter() override;

    void show(const UpdateState &state) override;
    void bringToFront() override;
    void dismiss() override;

    /// Writes the texts again after the language changed.
    void retranslate();

    /// The window while there is a session to show.
    UpdateWindow *window() const { return m_window.get(); }

private:
    void openWindow();

    /// A window may be closed by one of its own buttons, so it goes when the event is over.
    struct DeleteLater
    {
        void operator()(QObject *object) const { object->deleteLater(); }
    };
    std::unique_ptr<UpdateWindow, DeleteLater> m_window;
    UpdateState m_state;
};

} // namespace tickwise
