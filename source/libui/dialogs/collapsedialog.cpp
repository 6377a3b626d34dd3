#include "libui/dialogs/collapsedialog.h"

#include "libmodel/base/settings.h"
#include "libui/dialogs/linkbutton.h"
#include "libui/style/uiscale.h"

#include <QCheckBox>
#include <QDialogButtonBox>
#include <QLabel>
#include <QPixmap>
#include <QPushButton>
#include <QVBoxLayout>

namespace UI {

namespace {

// Logical pixels at an interface scale of 100 percent.
constexpr double margin = 18.0;
constexpr double gap = 12.0;

/// The picture of the question at the present scale; null where the resources of the interface are not there.
QPixmap graphic(double deviceRatio)
{
    const QPixmap picture(QStringLiteral(":/dialogs/CollapseGraphic@2x.png"));
    if (picture.isNull())
        return picture;
    const QSizeF size = picture.deviceIndependentSize() * uiScale() * deviceRatio;
    QPixmap scaledPicture = picture.scaled(size.toSize(), Qt::IgnoreAspectRatio, Qt::SmoothTransformation);
    scaledPicture.setDevicePixelRatio(deviceRatio);
    return scaledPicture;
}

} // namespace

/// The widgets belong to the dialog.
class CollapseDialog::Private
{
public:
    explicit Private(CollapseDialog *dialog);

    /// Gives all that has a size of its own that of the present scale.
    void applyScale();

    CollapseDialog *q;
    QLabel *picture;
    QLabel *question;
    LinkButton *help;
    QCheckBox *automatically;
    QDialogButtonBox *buttons;
    QVBoxLayout *layout;
};

CollapseDialog::Private::Private(CollapseDialog *dialog)
    : q(dialog),
      picture(new QLabel),
      question(new QLabel),
      help(new LinkButton(CollapseDialog::tr("What's this?"))),
      automatically(new QCheckBox(CollapseDialog::tr("Collapse automatically"))),
      buttons(new QDialogButtonBox),
      layout(new QVBoxLayout(dialog))
{
    picture->setAlignment(Qt::AlignCenter);
    picture->setAccessibleName(CollapseDialog::tr("Lines with their points become one flat picture"));
    question->setTextFormat(Qt::RichText);
    question->setText(CollapseDialog::tr("Collapse the<br/>current drawing?"));
    question->setAlignment(Qt::AlignCenter);
    QFont bold;
    bold.setBold(true);
    question->setFont(bold);
    help->setAccessibleDescription(CollapseDialog::tr("Opens the page about collapsing"));
    automatically->setChecked(Model::Settings::instance()->collapseAutomatically());
    automatically->setProperty("Menu Marks", true);
    automatically->setAccessibleDescription(
        CollapseDialog::tr("Heavy drawings are collapsed from now on without a question"));
    QPushButton *yes = buttons->addButton(CollapseDialog::tr("Collapse"), QDialogButtonBox::AcceptRole);
    // The style's icon for it keeps its size at all scales.
    buttons->addButton(QDialogButtonBox::Cancel)->setIcon({});

    layout->addWidget(picture);
    layout->addWidget(question);
    layout->addWidget(help, 0, Qt::AlignHCenter);
    layout->addWidget(automatically, 0, Qt::AlignHCenter);
    layout->addWidget(buttons);
    layout->setSizeConstraint(QLayout::SetFixedSize);
    // Not before it stands in the dialog, which would not know of it otherwise.
    yes->setDefault(true);
    yes->setFocus();
    applyScale();
}

void CollapseDialog::Private::applyScale()
{
    const int edge = scaled(margin);
    layout->setContentsMargins(edge, edge, edge, edge);
    layout->setSpacing(scaled(gap));
    picture->setPixmap(graphic(q->devicePixelRatioF()));
}

CollapseDialog::CollapseDialog(QWidget *parent) : QDialog(parent), d(std::make_unique<Private>(this))
{
    setWindowTitle(tr("Collapse"));
    setWindowFlags(Qt::Dialog | Qt::CustomizeWindowHint | Qt::WindowTitleHint | Qt::WindowCloseButtonHint);
    connect(d->help, &LinkButton::clicked, this, &CollapseDialog::helpRequested);
    connect(d->buttons, &QDialogButtonBox::accepted, this, &CollapseDialog::accept);
    connect(d->buttons, &QDialogButtonBox::rejected, this, &CollapseDialog::reject);
    connect(Model::Settings::instance(), &Model::Settings::UIScaleChanged, this, [this] { d->applyScale(); });
}

CollapseDialog::~CollapseDialog() = default;

void CollapseDialog::accept()
{
    Model::Settings::instance()->setCollapseAutomatically(d->automatically->isChecked());
    QDialog::accept();
}

} // namespace UI
