#pragma once

#include "libmodel/layers/cellref.h"

#include <QList>
#include <QTransform>
#include <QUuid>

#include <memory>

namespace Model {

class Drawing;

/// One cell of the exposure sheet: what a layer shows at one frame.
///
///     frame       1         2       3         4             5
///     cell     Original   Clone   Clone   DistantClone    Clone
///     drawing     A ------- A ----- A         B ----------- B      (B belongs to an original elsewhere)
///
/// An original owns its drawing. A clone holds the cell before it and shares that cell's drawing, so it never stands
/// at frame 1. A distant clone shares the drawing of the original that origin names, which lists it in its clones.
/// Layers and change records hold cells by std::shared_ptr.
struct LayerItem
{
    /// The kinds of cell; the numbers are those of the model's roles and records.
    enum class Type { Original = 0, Clone = 1, DistantClone = 2 };

    /// A cell of \a cellType that shows \a shownDrawing (not null), with an identifier of its own, on its pegs.
    LayerItem(Type cellType, std::shared_ptr<Drawing> shownDrawing);

    [[nodiscard]] bool isOriginal() const { return type == Type::Original; }
    [[nodiscard]] bool isClone() const { return type == Type::Clone; }
    [[nodiscard]] bool isDistantClone() const { return type == Type::DistantClone; }

    Type type;
    QUuid identifier;                 ///< identity within the scene
    std::shared_ptr<Drawing> drawing; ///< never null
    QTransform offPegsTransform;      ///< how far this exposure is moved off its pegs, in paper pixels
    bool keyDrawing = false;          ///< marked as a key drawing
    QList<CellRef> clones;            ///< of an original: all its distant clones; empty otherwise
    CellRef origin;                   ///< of a distant clone: the original it shows; null otherwise

    /// Of a cell that was taken out of its links: where its entry stood in the list of clones of its original, so that
    /// the way back puts it exactly there. Of an original that left the scene with its layer and handed its distant
    /// clones over: how many of those it lists were nowhere at that time. -1 while the links stand, and for a cell that
    /// never had any.
    qsizetype formerLink = -1;
};

} // namespace Model
