#include "ui/updates/UpdateWindowPresenter.h"

#include "ui/controls/WindowActivation.h"

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
    if (!m_window)
        openWindow();
    m_window->setContent(updateWindowContent(m_state));
    m_window->show(); // the user may have closed it while an installation went on
}

void UpdateWindowPresenter::openWindow()
{
    m_window.reset(new UpdateWindow);
    connect(m_window.get(), &UpdateWindow::chosen, this, &UpdateUserDriver::chosen);
}

void UpdateWindowPresenter::bringToFront()
{
    if (m_window)
        tickwise::bringToFront(*m_window);
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
