#pragma once

#include <QAbstractButton>

namespace UI {

/// A button that looks like a link in a text: a single stop of the Tab key, which shows it, and pressed by Space and
/// Return alike without answering the dialog that it stands in.
class LinkButton : public QAbstractButton
{
    Q_OBJECT

public:
    explicit LinkButton(const QString &text, QWidget *parent = nullptr);

    [[nodiscard]] QSize sizeHint() const override;

protected:
    void keyPressEvent(QKeyEvent *event) override;
    void paintEvent(QPaintEvent *event) override;
};

} // namespace UI
