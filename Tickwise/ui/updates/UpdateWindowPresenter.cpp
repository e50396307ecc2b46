#include "ui/updates/UpdateWindowPresenter.h"

namespace tickwise {

UpdateWindowPresenter::UpdateWindowPresenter(QObject *parent)
    : UpdateUserDriver(parent)
{
}

UpdateWindowPresenter::~UpdateWindowPresenter()
{
    // Without an event loop to come, nothing would delete it later.
    delete m_window.release();
}

void UpdateWindowPresenter::show(const UpdateState &state)
{
    m_state = state;
    const bool isNew = !m_window;
    if (isNew)
        openWindow();
    m_window->setContent(updateWindowContent(m_state));
    if (isNew)
        m_window->show();
}

void UpdateWindowPresenter::openWindow()
{
    m_window.reset(new UpdateWindow);
    connect(m_window.get(), &UpdateWindow::chosen, this, &UpdateUserDriver::chosen);
}

void UpdateWindowPresenter::bringToFront()
{
    if (!m_window)
        return;
    m_window->raise();
    m_window->activateWindow();
}

void UpdateWindowPresenter::dismiss()
{
    if (!m_window)
        return;
    m_window->disconnect(this);
    m_window->hide();
    m_window.reset();
}

void UpdateWindowPresenter::retranslate()
{
    if (m_window)
        m_window->setContent(updateWindowContent(m_state));
}

} // namespace tickwise
