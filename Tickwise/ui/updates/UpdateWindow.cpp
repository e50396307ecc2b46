#include "ui/updates/UpdateWindow.h"

#include <QCloseEvent>
#include <QHBoxLayout>
#include <QIcon>
#include <QLabel>
#include <QPlainTextEdit>
#include <QProgressBar>
#include <QPushButton>
#include <QVBoxLayout>

namespace tickwise {

namespace {

constexpr int minimumWidthInCharacters = 52;
constexpr int notesHeightInLines = 12;

} // namespace

UpdateWindow::UpdateWindow(QWidget *parent)
    : QDialog(parent)
{
    setObjectName(QStringLiteral("updateWindow"));
    setWindowIcon(QIcon(QStringLiteral(":/app-logo.svg")));
    setMinimumWidth(fontMetrics().averageCharWidth() * minimumWidthInCharacters);
    auto *layout = new QVBoxLayout(this);
    buildText(layout);
    buildNotes(layout);
    buildProgress(layout);
    m_buttons = new QHBoxLayout;
    m_buttons->addStretch();
    layout->addLayout(m_buttons);
}

void UpdateWindow::buildText(QVBoxLayout *layout)
{
    m_text = new QLabel(this);
    m_text->setObjectName(QStringLiteral("updateText"));
    // Versions come from the feed: never as markup.
    m_text->setTextFormat(Qt::PlainText);
    m_text->setWordWrap(true);
    // A path in it can be copied, by the keyboard too.
    m_text->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_text->setFocusPolicy(Qt::StrongFocus);
    layout->addWidget(m_text);
}

void UpdateWindow::buildNotes(QVBoxLayout *layout)
{
    m_notesLabel = new QLabel(this);
    m_notesLabel->setTextFormat(Qt::PlainText);
    m_notes = new QPlainTextEdit(this);
    m_notes->setObjectName(QStringLiteral("updateNotes"));
    m_notes->setReadOnly(true);
    m_notes->setTabChangesFocus(true);
    m_notes->setTextInteractionFlags(Qt::TextSelectableByMouse | Qt::TextSelectableByKeyboard);
    m_notes->setMinimumHeight(m_notes->fontMetrics().lineSpacing() * notesHeightInLines);
    m_notesLabel->setBuddy(m_notes);
    layout->addWidget(m_notesLabel);
    layout->addWidget(m_notes, 1);
}

void UpdateWindow::buildProgress(QVBoxLayout *layout)
{
    m_progress = new QProgressBar(this);
    m_progress->setObjectName(QStringLiteral("updateProgress"));
    m_progress->setTextVisible(false);
    layout->addWidget(m_progress);
}

void UpdateWindow::setContent(const UpdateWindowContent &content)
{
    const bool sameButtons = !m_content.buttons.empty() && m_content.buttons == content.buttons;
    const bool sameShape = sameButtons && m_content.notes == content.notes;
    m_content = content;
    setWindowTitle(content.title);
    m_text->setText(content.text);
    showNotes();
    showProgress();
    if (!sameButtons)
        rebuildButtons();
    if (!sameShape)
        adjustSize();
}

void UpdateWindow::showNotes()
{
    const bool shown = !m_content.notes.isEmpty();
    m_notesLabel->setVisible(shown);
    m_notes->setVisible(shown);
    m_notesLabel->setText(m_content.notesLabel);
    m_notes->setAccessibleName(m_content.notesLabel);
    if (m_notes->toPlainText() != m_content.notes)
        m_notes->setPlainText(m_content.notes);
}

void UpdateWindow::showProgress()
{
    m_progress->setVisible(m_content.showsProgress);
    m_progress->setAccessibleName(m_content.text);
    // A range without extent is the bar's sign of work without a known end.
    m_progress->setRange(0, m_content.percent ? 100 : 0);
    m_progress->setValue(m_content.percent.value_or(0));
}

void UpdateWindow::rebuildButtons()
{
    // Later: a button may be the one that is being clicked.
    for (QPushButton *button : findChildren<QPushButton *>(QString(), Qt::FindDirectChildrenOnly)) {
        button->hide();
        m_buttons->removeWidget(button);
        button->setParent(nullptr);
        button->deleteLater();
    }
    for (auto button = m_content.buttons.rbegin(); button != m_content.buttons.rend(); ++button)
        addButton(*button);
}

void UpdateWindow::addButton(const UpdateButton &button)
{
    auto *widget = new QPushButton(button.text, this);
    widget->setAutoDefault(true);
    const bool isFirst = button == m_content.buttons.front();
    widget->setDefault(isFirst);
    connect(widget, &QPushButton::clicked, this, [this, action = button.action] { Q_EMIT chosen(action); });
    m_buttons->addWidget(widget);
    widget->show();
    if (isFirst)
        widget->setFocus();
}

void UpdateWindow::closeEvent(QCloseEvent *event)
{
    // An ignored event would keep the application from quitting.
    event->accept();
    reject();
}

void UpdateWindow::reject()
{
    Q_EMIT chosen(m_content.escapeAction);
}

} // namespace tickwise
