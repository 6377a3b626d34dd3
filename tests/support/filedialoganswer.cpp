#include "support/filedialoganswer.h"

#include <QApplication>
#include <QEvent>
#include <QFileDialog>
#include <QLineEdit>
#include <QTimer>

FileDialogAnswer::FileDialogAnswer(const QString &filename) : m_filename(filename)
{
    qApp->installEventFilter(this);
}

FileDialogAnswer::~FileDialogAnswer()
{
    qApp->removeEventFilter(this);
}

bool FileDialogAnswer::eventFilter(QObject *object, QEvent *event)
{
    if (event->type() == QEvent::Show) {
        if (auto *dialog = qobject_cast<QFileDialog *>(object))
            QTimer::singleShot(0, dialog, [this, dialog] { answer(dialog); });
    }
    return false;
}

void FileDialogAnswer::answer(QFileDialog *dialog)
{
    ++m_count;
    m_title = dialog->windowTitle();
    auto *name = dialog->findChild<QLineEdit *>(QStringLiteral("fileNameEdit"));
    m_proposedFile = dialog->directory().filePath(name->text());
    if (m_action)
        m_action();
    if (m_filename.isEmpty()) {
        dialog->reject();
        return;
    }
    name->setText(m_filename);
    QMetaObject::invokeMethod(dialog, "accept");
}
