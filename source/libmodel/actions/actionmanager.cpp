#include "libmodel/actions/actionmanager.h"

#include "libmodel/actions/actiontable.h"
#include "libmodel/actions/settingsmirrors.h"

#include <QAction>
#include <QActionGroup>
#include <QDebug>
#include <QFile>
#include <QGuiApplication>
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

QList<QKeySequence> shortcutsOf(const ActionRow &row)
{
    QList<QKeySequence> shortcuts;
    for (const ActionKey &key : row.keys) {
        QKeySequence shortcut(key.standard);
        if (shortcut.isEmpty() && key.text)
            shortcut = QKeySequence(ActionManager::tr(key.text));
        if (!shortcut.isEmpty() && !shortcuts.contains(shortcut))
            shortcuts.append(shortcut);
    }
    return shortcuts;
}

void setKeysAndIcon(QAction &action, const ActionRow &row)
{
    action.setIcon(iconOf(row.iconStem));
    const QList<QKeySequence> shortcuts = shortcutsOf(row);
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
        createAction(row);
        if (row.group == ActionGroup::None)
            continue;
        QActionGroup *&group = groups[row.group];
        if (!group)
            group = new QActionGroup(this);
        group->addAction(m_records.at(row.action).action);
    }
    mirrorSettings(*this);
}

void ActionManager::createAction(const ActionRow &row)
{
    QString text = tr(row.text);
    if (row.flags & ActionRow::NamesProgram)
        text = text.arg(QGuiApplication::applicationDisplayName());
    auto *action = new QAction(text, this);
    setKeysAndIcon(*action, row);
    action->setCheckable(row.flags & ActionRow::Checkable);
    action->setChecked(row.flags & ActionRow::Checked);
    action->setAutoRepeat(!(row.flags & ActionRow::NoAutoRepeat));
    action->setEnabled(!(row.flags & ActionRow::Disabled));
    action->setVisible(!(row.flags & ActionRow::Hidden));
    insertAction(row.action, action);
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
    const ActionRow *row = actionRow(id);
    if (row && row->alternateText) {
        record.alternateText = QString::fromUtf8(row->alternateText);
        if (const QIcon icon = iconOf(row->alternateIconStem); !icon.isNull())
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
