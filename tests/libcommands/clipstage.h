#pragma once

#include "commandstage.h"

#include "libcommands/pastedrawing.h"
#include "libmodel/layers/layeritem.h"
#include "libmodel/layers/visuallayer.h"

#include <QMimeData>

#include <algorithm>
#include <memory>

namespace TestSupport {

/// The layer \a layerIdx as CommandStage writes it down, but with the letters told by the pixels of the drawings rather
/// than by their names, which do not travel by the clipboard.
inline QString seenText(const CommandStage &stage, int layerIdx = 0)
{
    QStringList words;
    for (const auto &cell : stage.scene().visualLayer(layerIdx)->frames()) {
        const QImage &image = static_cast<const Model::StrokeDrawing &>(*cell->drawing).image();
        int most = 0;
        for (int y = 0; y < image.height(); ++y)
            most = std::max<int>(most, *std::max_element(image.scanLine(y), image.scanLine(y) + image.width()));
        // Coverage 100 is an A.
        const QChar letter = most == 0 ? QChar('_') : QChar('A' + most - 100);
        const QChar shown = most == 0 && cell->isClone() ? QChar('.') : cell->isClone() ? letter.toLower() : letter;
        words += cell->isDistantClone() ? QString(shown) + '*' : QString(shown);
    }
    return words.join(' ');
}

/// Cells on their way to the clipboard, as the program copies them.
inline std::unique_ptr<QMimeData> copied(const CommandStage &stage, int firstFrame, int count, int layerIdx = 0)
{
    return std::unique_ptr<QMimeData>(stage.scene().copyToMimeData(layerIdx, firstFrame, count));
}

} // namespace TestSupport
