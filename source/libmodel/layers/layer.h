#pragma once

#include "libmodel/layers/layerchange.h"

#include <QList>
#include <QObject>
#include <QString>
#include <QUuid>

#include <memory>

namespace Model {

/// A column of the exposure sheet, of any kind. Owned by the scene (and by commands that took it out) through
/// std::shared_ptr, never by a QObject parent.
///
/// Frames are counted from 1.
class Layer : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QString name READ name WRITE setName NOTIFY nameChanged)
    Q_PROPERTY(bool linked READ isLinked WRITE setLinked NOTIFY linkedChanged)

public:
    /// The numbers of layerType(). Paint has no class; files and type tests know the number.
    enum LayerType { Stroke = 1, Paint = 2, Reference = 3, Audio = 4, Annotation = 5 };

    /// What a layer shows past its last cell.
    enum LayerBeyondLast : int {
        ShowNothing = 1,
        FreezeLast = 2,    ///< the drawing of the last cell
        CycleDrawings = 3, ///< the whole timing again from frame 1, holds included
    };
    Q_ENUM(LayerBeyondLast)

    /// The most frames that any layer takes; what would go beyond is refused. Keeps a wrong number from filling
    /// the memory (at 24 frames a second this is eleven hours).
    static constexpr int maximumFrames = 1'000'000;

    ~Layer() override;

    /// Does a layer of type number \a type show pictures in the frame (types 1 to 3)?
    [[nodiscard]] static bool isVisualType(int type) { return type >= Stroke && type <= Reference; }
    /// Can a layer of type number \a type be drawn on (types 1 and 2)?
    [[nodiscard]] static bool isDrawType(int type) { return type == Stroke || type == Paint; }

    /// One of LayerType.
    [[nodiscard]] virtual int layerType() const = 0;
    /// The number of cells; 0 for an annotation layer.
    [[nodiscard]] virtual int numFrames() const = 0;
    /// Is \a frameId from 1 to numFrames()?
    [[nodiscard]] virtual bool isValidFrame(int frameId) const;
    /// Puts a new blank cell behind \a frameId, 0 being in front of frame 1. Nothing when out of range.
    virtual void insertBlankAfter(int frameId) = 0;
    /// Puts a new hold behind \a frameId; at 0, where nothing stands before it, a blank. Nothing when out of range.
    virtual void insertCloneAfter(int frameId) = 0;
    /// Takes away what stands at \a frameId. \return the steps taken, the last first; empty when nothing was done.
    virtual QList<LayerChange> removeFrame(int frameId) = 0;
    /// A deep copy under an identifier of its own; null for the kinds of which a scene has only one.
    [[nodiscard]] virtual std::shared_ptr<Layer> clone() const;

    [[nodiscard]] QString name() const { return m_name; }
    [[nodiscard]] bool isLinked() const { return m_linked; }
    /// The identity that survives moves, saving and loading.
    [[nodiscard]] QUuid identifier() const { return m_identifier; }
    /// Takes an identity read from a file. A null one is ignored.
    void setIdentifier(const QUuid &identifier);
    [[nodiscard]] LayerBeyondLast beyondLast() const { return m_beyondLast; }

public slots:
    void setName(const QString &name);
    /// Makes the layer a member of the scene's one group of linked layers, whose timing is edited together.
    void setLinked(bool linked);
    /// \return false when \a beyondLast is no such mode or is the present one.
    bool setLayerBeyondLast(Model::Layer::LayerBeyondLast beyondLast);

signals:
    void nameChanged(QString name);
    void linkedChanged(bool linked);

protected:
    explicit Layer(QObject *parent);
    /// A layer like \a other under an identifier of its own, without QObject parent and connections.
    Layer(const Layer &other);

private:
    QString m_name;
    bool m_linked = false;
    QUuid m_identifier;
    LayerBeyondLast m_beyondLast = ShowNothing;
};

} // namespace Model
