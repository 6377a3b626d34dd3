#pragma once

#include <QMessageBox>
#include <QObject>
#include <functional>

/// Answers every message box that comes up while it lives, as a user would who always presses the same button.
class MessageBoxAnswer : public QObject
{
    Q_OBJECT

public:
    explicit MessageBoxAnswer(QMessageBox::StandardButton button);
    ~MessageBoxAnswer() override;

    /// Runs \a action while a box is on screen, ahead of pressing its button.
    void beforeAnswering(std::function<void()> action) { m_action = std::move(action); }

    /// How many boxes were answered.
    int count() const { return m_count; }

    /// The text and the title of the last box.
    QString text() const { return m_text; }
    QString title() const { return m_title; }
    /// What stood below its text in smaller print.
    QString informativeText() const { return m_informativeText; }

    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void answer(QMessageBox *box);

    QMessageBox::StandardButton m_button;
    std::function<void()> m_action;
    int m_count = 0;
    QString m_text;
    QString m_title;
    QString m_informativeText;
};
