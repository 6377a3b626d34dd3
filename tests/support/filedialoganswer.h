#pragma once

#include <QObject>

#include <functional>

class QFileDialog;

/// Answers every file dialog that comes up while it lives by choosing a file, or by cancelling.
class FileDialogAnswer : public QObject
{
    Q_OBJECT

public:
    /// \a filename as a user would type it; empty cancels.
    explicit FileDialogAnswer(const QString &filename);
    ~FileDialogAnswer() override;

    /// Runs \a action while a dialog is on screen, ahead of answering it.
    void beforeAnswering(std::function<void()> action) { m_action = std::move(action); }

    /// How many dialogs were answered.
    int count() const { return m_count; }

    /// The caption of the last dialog, and the file it proposed.
    QString title() const { return m_title; }
    QString proposedFile() const { return m_proposedFile; }

    bool eventFilter(QObject *object, QEvent *event) override;

private:
    void answer(QFileDialog *dialog);

    QString m_filename;
    std::function<void()> m_action;
    int m_count = 0;
    QString m_title;
    QString m_proposedFile;
};
