#pragma once

#include "ui/updates/UpdateWindowContent.h"

#include <QDialog>

class QHBoxLayout;
class QLabel;
class QPlainTextEdit;
class QProgressBar;
class QVBoxLayout;

namespace tickwise {

/// The window of an update session. It holds no state but what it was last told to show.
class UpdateWindow : public QDialog
{
    Q_OBJECT

public:
    explicit UpdateWindow(QWidget *parent = nullptr);

    /// Shows the content; the buttons are replaced only when they changed, so that progress does not move the focus.
    void setContent(const UpdateWindowContent &content);

    /// Escape and the close button mean what the content says.
    void reject() override;

Q_SIGNALS:
    void chosen(tickwise::UpdateAction action);

protected:
    /// Closes also while an installation goes on, whatever the session makes of it.
    void closeEvent(QCloseEvent *event) override;

private:
    void buildText(QVBoxLayout *layout);
    void buildNotes(QVBoxLayout *layout);
    void buildProgress(QVBoxLayout *layout);
    void showNotes();
    void showProgress();
    void rebuildButtons();
    void addButton(const UpdateButton &button);

    UpdateWindowContent m_content;
    QLabel *m_text = nullptr;
    QLabel *m_notesLabel = nullptr;
    QPlainTextEdit *m_notes = nullptr;
    QProgressBar *m_progress = nullptr;
    QHBoxLayout *m_buttons = nullptr;
};

} // namespace tickwise
