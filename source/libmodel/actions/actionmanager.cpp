#include "libmodel/actions/actionmanager.h"

#include "libmodel/actions/actiontable.h"
#include "libmodel/actions/settingsmirrors.h"

#include <QAction>
#include <QActionGroup>
#include <QCoreApplication>
#include <QDebug>
#include <QFile>
#include <QMetaEnum>

namespace Model {

namespace {

constexpr const char *wasEnabledProperty = "WasEnabled";

ActionManager *manager = nullptr;

void dropManager()
{
    delete manager;
    manager = nullptr;
}

/// The icon of that stem; none if it was not drawn.
QIcon iconOf(const char *stem)
{
    const QString path = QStringLiteral(":/icons/%1_icon.svg").arg(QLatin1String(stem));
    return *stem && QFile::exists(path) ? QIcon(path) : QIcon();
}

void setKeysAndIcon(QAction &action, const ActionRow &row)
{
    action.setIcon(iconOf(row.iconStem));
    // The icons are dark, and so are the menus.
    action.setIconVisibleInMenu(false);
    const QList<QKeySequence> shortcuts = actionShortcuts(row);
    if (shortcuts.isEmpty())
        return;
    action.setShortcuts(shortcuts);
    action.setShortcutContext(Qt::ApplicationShortcut);
}

} // namespace

ActionManager *ActionManager::instance()
{
    if (!manager) {
        manager = new ActionManager;
        qAddPostRoutine(dropManager);
    }
    return manager;
}

ActionManager::ActionManager() = default;

ActionManager::~ActionManager() = default;

void ActionManager::createActions()
{
    std::map<ActionGroup, QActionGroup *> groups;
    for (const ActionRow &row : actionTable()) {
        if (row.flags & ActionRow::Given)
            continue;
        QAction *action = createAction(row);
        if (row.group != ActionGroup::None) {
            QActionGroup *&group = groups[row.group];
            if (!group)
                group = new QActionGroup(this);
            group->addAction(action);
        }
        // In its group, so that of several only one is checked.
        action->setChecked(row.flags & ActionRow::Checked);
    }
    mirrorSettings(*this);
}

QAction *ActionManager::createAction(const ActionRow &row)
{
    auto *action = new QAction(actionText(row), this);
    if (row.shortText)
        action->setIconText(tr(row.shortText));
    setKeysAndIcon(*action, row);
    action->setCheckable(row.flags & ActionRow::Checkable);
    action->setAutoRepeat(!(row.flags & ActionRow::NoAutoRepeat));
    action->setEnabled(!(row.flags & ActionRow::Disabled));
    action->setVisible(!(row.flags & ActionRow::Hidden));
    insertAction(row.action, action);
    return action;
}

void ActionManager::insertUndoActions(QAction *undo, QAction *redo)
{
    for (const auto &[id, action] : {std::pair(MR::Action::Undo, undo), std::pair(MR::Action::Redo, redo)}) {
        setKeysAndIcon(*action, *actionRow(id));
        insertAction(id, action);
    }
}

void ActionManager::insertAction(MR::Action id, QAction *action)
{
    const QString key = QString::fromLatin1(QMetaEnum::fromType<MR::Action>().valueToKey(static_cast<int>(id)));
    if (key.isEmpty()) {
        qDebug() << "Model::ActionManager::ActionManagerPrivate::insertAction"
                 << "Tried to add unnamed action";
        return;
    }
    action->setParent(this);
    action->setProperty("MRActionName", key);
    if (m_records.contains(id))
        qDebug() << "Replacing action" << key;
    ActionRecord record{.action = action, .text = action->text(), .icon = action->icon()};
    if (const ActionFace *face = secondFace(id)) {
        record.alternateText = QString::fromUtf8(face->text);
        if (const QIcon icon = iconOf(face->iconStem); !icon.isNull())
            record.alternateIcon = icon;
    }
    record.updateToolTip();
    m_records.insert_or_assign(id, std::move(record));
}

const ActionRecord *ActionManager::mrAction(MR::Action action) const
{
    const auto found = m_records.find(action);
    if (found != m_records.end())
        return &found->second;
    if (action != MR::Action::NoAction)
        qDebug() << "Model::ActionManager::mrAction"
                 << "action not found" << QMetaEnum::fromType<MR::Action>().valueToKey(static_cast<int>(action));
    return nullptr;
}

QAction *ActionManager::action(MR::Action action) const
{
    const ActionRecord *record = mrAction(action);
    return record ? record->action : nullptr;
}

QList<QAction *> ActionManager::actions() const
{
    QList<QAction *> all;
    for (const auto &[id, record] : m_records)
        all << record.action;
    return all;
}

void ActionManager::setActionFace(MR::Action action, int face, int n)
{
    if (const ActionRecord *record = mrAction(action))
        record->showFace(face, n);
}

void ActionManager::setAvailable(MR::Action action, bool available, const QString &reason)
{
    if (!mrAction(action))
        return;
    ActionRecord &record = m_records.at(action);
    const QString obstacle = available ? QString() : reason;
    if (record.obstacle != obstacle) {
        record.obstacle = obstacle;
        record.updateToolTip();
    }
    if (record.action->property(wasEnabledProperty).isValid())
        record.action->setProperty(wasEnabledProperty, available);
    else
        record.action->setEnabled(available);
}

void ActionManager::disableAllActions()
{
    for (const auto &[id, record] : m_records) {
        // A hidden action says that it is disabled, which is not what it was set to.
        if (!record.action->isVisible())
            continue;
        record.action->setProperty(wasEnabledProperty, record.action->isEnabled());
        record.action->setEnabled(false);
    }
}

void ActionManager::restoreAllActions()
{
    for (const auto &[id, record] : m_records) {
        const QVariant wasEnabled = record.action->property(wasEnabledProperty);
        if (!wasEnabled.isValid())
            continue;
        record.action->setEnabled(wasEnabled.toBool());
        record.action->setProperty(wasEnabledProperty, QVariant());
    }
}

} // namespace Model
