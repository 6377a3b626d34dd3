#include "sceneelements.h"

#include "scenefixture.h"

namespace TestSupport {

QByteArray original(int number, const QByteArray &strokes, const QByteArray &attributes)
{
    const QByteArray content = strokes.isEmpty() ? QByteArray() : "<strokes>" + strokes + "</strokes>";
    return "<drawing " + attributes + " type=\"original\" identifier=\"" + uuid(number).toByteArray() + "\">" +
           content + "</drawing>\n";
}

QByteArray distantClone(int number, int layer, int cell)
{
    return "<drawing type=\"distantClone\" identifier=\"" + uuid(number).toByteArray() + "\"><original layer=\"" +
           uuid(layer).toByteArray() + "\" drawing=\"" + uuid(cell).toByteArray() + "\"/></drawing>\n";
}

BlockBuilder bitmapBlock()
{
    BlockBuilder block;
    block.size(16, 8).i64(1).i32(2).rect(1, 1, 2, 1).i32(2).rle(2, 1, QByteArray::fromHex("0302ffff0a"));
    return block.plainCompoundEnd();
}

QByteArray bitmapPixels()
{
    return QByteArray(16 * 8, '\0').replace(17, 2, "\xff\xff");
}

std::unique_ptr<Model::Scene> sceneWithLayers(const QByteArray &layers, const QByteArray &sceneAttributes)
{
    return sceneFrom(document(layers, sceneAttributes));
}

std::unique_ptr<Model::Scene> sceneWithDrawings(const QByteArray &drawings, const QByteArray &sceneAttributes)
{
    return sceneWithLayers(layerElement(drawings), sceneAttributes);
}

} // namespace TestSupport
