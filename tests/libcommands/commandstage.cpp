#include "commandstage.h"

#include "libmodel/audio/audiolayer.h"
#include "libmodel/layers/annotationlayer.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/strokes/bitmapstroke.h"

#include <QHash>

using namespace Model;

namespace TestSupport {

namespace {

/// A drawing that no other letter makes.
std::shared_ptr<Drawing> letterDrawing(QChar letter)
{
    auto drawing = std::make_shared<StrokeDrawing>(stageFrame);
    if (!letter.isLetter())
        return drawing;
    const int number = letter.unicode() - 'A';
    const QRect rect(3 + number, 2 + number, 7, 5);
    QImage coverage(rect.size(), QImage::Format_Alpha8);
    coverage.fill(100 + number);
    drawing->addStroke(std::make_unique<BitmapStroke>(coverage, rect));
    drawing->setName(letter);
    return drawing;
}

QString cellText(const LayerItem &cell)
{
    const QString name = cell.drawing->name();
    QString text = cell.isClone() ? name.toLower() : name;
    if (name.isEmpty())
        text = cell.isClone() ? QStringLiteral(".") : QStringLiteral("_");
    if (cell.isDistantClone())
        text += '*';
    return cell.keyDrawing ? text + '!' : text;
}

} // namespace

CommandStage::CommandStage(const QStringList &layers)
{
    scene().setFrameSize(stageFrame, MR::FitMode::FitModeIgnore);
    MRScene::setCurrent(&m_scene);
    for (const QString &text : layers)
        addLayer(text);
    linkDistantClones(layers);
    Q_ASSERT(text() == layers.join(QStringLiteral(" | ")));
    scene().insertLayer(std::make_shared<AudioLayer>(), scene().layerCount());
    scene().insertLayer(std::make_shared<AnnotationLayer>(), scene().layerCount());
    scene().setFrameRange(1, scene().maximumFrameNumber(), 1, 0);
}

void CommandStage::addLayer(const QString &text)
{
    auto layer = std::make_shared<StrokeLayer>(Qt::black, stageFrame);
    QList<std::shared_ptr<LayerItem>> cells;
    for (const QString &word : text.split(' ')) {
        const QChar letter = word.front();
        const bool isHold = letter.isLower() || letter == '.';
        cells.append(std::make_shared<LayerItem>(isHold ? LayerItem::Type::Clone : LayerItem::Type::Original,
                                                 isHold ? cells.last()->drawing : letterDrawing(letter)));
        cells.last()->keyDrawing = word.endsWith('!');
    }
    layer->setFrames(cells);
    layer->setName(scene().nextLayerName());
    scene().insertLayer(layer, scene().layerCount());
}

void CommandStage::linkDistantClones(const QStringList &layers)
{
    // At first all of them are originals: only the text tells which is the one that supplies the drawing.
    QHash<QChar, CellRef> originals;
    for (const bool linking : {false, true}) {
        for (int layerIdx = 0; layerIdx < layers.size(); ++layerIdx) {
            const QStringList words = layers.at(layerIdx).split(' ');
            for (int i = 0; i < words.size(); ++i) {
                const bool isDistant = words.at(i).contains('*');
                if (linking && isDistant)
                    scene().makeDistantClone(layerIdx, i + 1, originals.value(words.at(i).front()));
                else if (!linking && !isDistant && words.at(i).front().isUpper())
                    originals.insert(words.at(i).front(), scene().visualLayer(layerIdx)->cellRef(i + 1));
            }
        }
    }
}

QModelIndexList CommandStage::cells(const QList<int> &frameIds, int layerIdx) const
{
    QModelIndexList list;
    for (const int frameId : frameIds)
        list.append(cell(frameId, layerIdx));
    return list;
}

StrokeDrawing &CommandStage::drawing(int frameId, int layerIdx) const
{
    return dynamic_cast<StrokeDrawing &>(*scene().item(layerIdx, frameId)->drawing);
}

QUuid CommandStage::identifier(int frameId, int layerIdx) const
{
    return scene().item(layerIdx, frameId)->identifier;
}

void CommandStage::activate(int frameId, int layerIdx)
{
    scene().setActiveFrameAndLayer(frameId, layerIdx, Scene::AllowFrameAfterLast);
}

void CommandStage::link(const QList<int> &layers)
{
    for (const int layerIdx : layers)
        scene().setLayerLinked(layerIdx, true);
}

QString CommandStage::text() const
{
    QStringList layers;
    for (int layerIdx = 0; layerIdx < scene().layerCount(); ++layerIdx) {
        const VisualLayer *layer = scene().visualLayer(layerIdx);
        if (!layer)
            continue;
        QStringList cells;
        for (const auto &cell : layer->frames())
            cells += cellText(*cell);
        layers += cells.join(' ');
    }
    return layers.join(QStringLiteral(" | "));
}

QString CommandStage::walk(QUndoCommand *command)
{
    const SceneSnapshot before = snapshot();
    const int index = stack().index();
    stack().push(command);
    if (stack().index() != index + 1)
        return QStringLiteral("no step on the stack");
    const SceneSnapshot after = snapshot();
    QString problem = brokenInvariant(scene());
    for (int round = 1; round <= 2 && problem.isEmpty(); ++round) {
        stack().undo();
        problem = before.diff(snapshot()) + brokenInvariant(scene());
        if (!problem.isEmpty())
            return QStringLiteral("undo %1: %2").arg(round).arg(problem);
        stack().redo();
        problem = after.diff(snapshot()) + brokenInvariant(scene());
        if (!problem.isEmpty())
            return QStringLiteral("redo %1: %2").arg(round).arg(problem);
    }
    return problem;
}

bool CommandStage::drops(QUndoCommand *command)
{
    const SceneSnapshot before = snapshot();
    const int index = stack().index();
    MRScene::pushCommand(command);
    return stack().index() == index && before == snapshot();
}

bool CommandStage::isRefused(QUndoCommand *command)
{
    return TestSupport::isRefused(m_scene, command);
}

bool isRefused(MRScene &mrScene, QUndoCommand *command)
{
    const SceneSnapshot before(mrScene);
    QUndoStack &stack = *mrScene.scene()->undoStack();
    // A step that does nothing, done, saved and taken back.
    stack.push(new QUndoCommand(QStringLiteral("step")));
    stack.setClean();
    stack.undo();
    const int index = stack.index();
    const bool wasObsolete = command->isObsolete();
    MRScene::pushCommand(command);
    return wasObsolete && stack.index() == index && stack.count() == index + 1 && stack.cleanIndex() == index + 1 &&
           before == SceneSnapshot(mrScene);
}

} // namespace TestSupport
