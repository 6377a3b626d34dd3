#include "libmodel/actions/actionmanager.h"

#include "libmodel/actions/actiontable.h"
#include "support/isolatedstore.h"

#include <QAction>
#include <QIcon>
#include <QImage>
#include <QTest>
#include <QUndoStack>

using namespace Model;

namespace {

QImage pictureOf(const QIcon &icon)
{
    return icon.pixmap(32).toImage();
}

QAction *actionOf(MR::Action action)
{
    return ActionManager::instance()->action(action);
}

} // namespace

/// The pictures of the actions, with the resources that the program has.
class tst_ActionIcons : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void actionsShowTheirDrawings();
    void actionsWithoutADrawingShowNone();
    void playShowsStopWhilePlaying();
    void secondFaceWithoutADrawingKeepsTheFirst();

private:
    IsolatedStore m_store;
};

void tst_ActionIcons::initTestCase()
{
    Q_INIT_RESOURCE(model);
    ActionManager *manager = ActionManager::instance();
    manager->createActions();
    static QUndoStack stack;
    manager->insertUndoActions(stack.createUndoAction(manager), stack.createRedoAction(manager));
}

void tst_ActionIcons::actionsShowTheirDrawings()
{
    int count = 0;
    for (const ActionRow &row : actionTable()) {
        if (!*row.iconStem)
            continue;
        const QIcon drawing(QStringLiteral(":/icons/") + QLatin1String(row.iconStem) + QLatin1String("_icon.svg"));
        const QImage shown = pictureOf(actionOf(row.action)->icon());
        QVERIFY2(!shown.isNull() && shown == pictureOf(drawing), row.iconStem);
        ++count;
    }
    // Of the sixty drawings one belongs to a second face.
    QCOMPARE(count, 59);
}

void tst_ActionIcons::actionsWithoutADrawingShowNone()
{
    for (const ActionRow &row : actionTable()) {
        if (!*row.iconStem)
            QVERIFY2(actionOf(row.action)->icon().isNull(), row.text);
    }
}

void tst_ActionIcons::playShowsStopWhilePlaying()
{
    const QAction *play = actionOf(MR::Action::Play);
    const QImage atRest = pictureOf(play->icon());
    ActionManager::instance()->setActionFace(MR::Action::Play, 1, 1);
    const QImage playing = pictureOf(play->icon());
    ActionManager::instance()->setActionFace(MR::Action::Play, 0, 1);
    QVERIFY(playing != atRest);
    QCOMPARE(playing, pictureOf(QIcon(QStringLiteral(":/icons/Stop_icon.svg"))));
    QCOMPARE(pictureOf(play->icon()), atRest);
}

void tst_ActionIcons::secondFaceWithoutADrawingKeepsTheFirst()
{
    const QAction *discard = actionOf(MR::Action::DiscardDrawing);
    const QImage ordinary = pictureOf(discard->icon());
    ActionManager::instance()->setActionFace(MR::Action::DiscardDrawing, 1, 3);
    QCOMPARE(pictureOf(discard->icon()), ordinary);
    ActionManager::instance()->setActionFace(MR::Action::DiscardDrawing, 0, 1);
}

QTEST_MAIN(tst_ActionIcons)
#include "tst_actionicons.moc"
