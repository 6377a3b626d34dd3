#pragma once

#include <QDialog>

#include <memory>

namespace UI {

/// Asks whether a drawing that has grown heavy is to be made a bitmap: Accepted says yes.
///
/// "Collapse automatically" shows the stored preference (Model::Settings::collapseAutomatically()) as it was when the
/// dialog was made. What it is set to is stored only if the question is answered with yes. Follows the interface scale.
class CollapseDialog : public QDialog
{
    Q_OBJECT

public:
    explicit CollapseDialog(QWidget *parent = nullptr);
    ~CollapseDialog() override;

    void accept() override;

signals:
    /// The user wants to know what collapsing is. The question stays open.
    void helpRequested();

private:
    class Private;
    std::unique_ptr<Private> d;
};

} // namespace UI
