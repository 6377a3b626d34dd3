#pragma once

#include "libmodel/base/fileresult.h"
#include "libmodel/layers/strokelayer.h"
#include "libmodel/scene/scene.h"

#include <QIODevice>
#include <QImage>
#include <QList>
#include <QUuid>

#include <memory>

class QWidget;

namespace Model {
class Stroke;
class StrokeDrawing;
} // namespace Model

namespace TestSupport {

/// The identifier {0000000N-0000-4000-8000-000000000000}.
QUuid uuid(int number);

/// A scene with frames of 16 x 8 pixels at 12 frames per second, without layers.
std::unique_ptr<Model::Scene> emptyScene();

/// A stroke layer of \a numFrames blank originals for the frames of \a scene. Layer \a number and its cells are known
/// by the identifiers uuid(number * 100 + 0, 1, 2 ...); it is red and its name is "Layer" and the number.
std::shared_ptr<Model::StrokeLayer> strokeLayer(const Model::Scene &scene, int number, int numFrames = 1);

/// A stroke of \a rect in which all pixels have the coverage \a value. Needs no renderer.
std::unique_ptr<Model::Stroke> block(QRect rect, int value);

/// A note for an annotation layer: empty but for the coverage \a value at \a point.
QImage note(QSize size, QPoint point, int value);

/// The drawing at \a frameId of \a layer.
Model::StrokeDrawing &drawingAt(const Model::VisualLayer &layer, int frameId);
Model::StrokeDrawing &drawingAt(const Model::Scene &scene, int layerIdx, int frameId);

/// A document around the elements \a layers, `scene` having the attributes \a sceneAttributes.
QByteArray document(const QByteArray &layers, const QByteArray &sceneAttributes = {});

/// A stroke layer element with \a drawings, named uuid(\a number).
QByteArray layerElement(const QByteArray &drawings, int number = 100);

/// What the writer makes of \a scene.
QByteArray written(Model::Scene &scene);

struct ReadResult
{
    Model::FileResult result;
    QString error;       ///< of the reader, whatever the result
    QStringList damages; ///< what could not be kept
};

/// Reads \a file into \a scene.
ReadResult readInto(Model::Scene &scene, const QByteArray &file);

/// A scene made from \a file, which must be readable. What of it could not be kept goes into \a damages, if given.
std::unique_ptr<Model::Scene> sceneFrom(const QByteArray &file, QStringList *damages = nullptr);

/// The number of layers with pictures. What a file lacks of the usual layers the reader adds, sound and notes among it.
int visualLayerCount(const Model::Scene &scene);

/// A device on a byte array that notes how far \a window's progress dialog is whenever bytes pass.
class ProgressRecorder : public QIODevice
{
    Q_OBJECT

public:
    explicit ProgressRecorder(QWidget *window, const QByteArray &content = {});

    bool isSequential() const override { return true; }
    /// The values in order, without repetitions.
    const QList<int> &values() const { return m_values; }

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    void record();

    QWidget *m_window;
    QByteArray m_content;
    qsizetype m_passed = 0;
    QList<int> m_values;
};

/// A device on a byte array that presses the button of \a window's progress dialog once \a cancelAt bytes have passed.
class CancellingDevice : public QIODevice
{
    Q_OBJECT

public:
    CancellingDevice(QWidget *window, qsizetype cancelAt, const QByteArray &content = {});

    bool isSequential() const override { return true; }
    const QByteArray &content() const { return m_content; }

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    qint64 writeData(const char *data, qint64 size) override;

private:
    void cancelWhenDue();

    QWidget *m_window;
    qsizetype m_cancelAt;
    QByteArray m_content;
    qsizetype m_passed = 0;
};

} // namespace TestSupport
