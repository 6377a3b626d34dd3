#include "fuzz/seedscenes.h"

#include "fuzz/seedblocks.h"
#include "support/noprogress.h"
#include "support/randomnumbers.h"
#include "support/scenegenerator.h"

#include "libmodel/files/scenewriter.h"
#include "libmodel/scene/scene.h"

#include <QBuffer>
#include <QHash>
#include <QUuid>

namespace TestSupport {

namespace {

constexpr int generatedScenes = 12;
constexpr qsizetype uuidLength = 38; // with braces

/// Gives the identifiers in \a file, which are other ones each time, numbers in the order in which they come.
QByteArray withCountedIdentifiers(QByteArray file)
{
    QHash<QByteArray, QByteArray> names;
    for (qsizetype at = file.indexOf("\"{"); at >= 0; at = file.indexOf("\"{", at + uuidLength)) {
        const QByteArray old = file.mid(at + 1, uuidLength);
        if (!names.contains(old)) {
            const auto number = uint(names.size() + 1);
            names.insert(old, QUuid(number, 0, 0x4000, 0x80, 0, 0, 0, 0, 0, 0, 0).toByteArray());
        }
        file.replace(at + 1, uuidLength, names.value(old));
    }
    return file;
}

QByteArray generated(quint64 seed)
{
    Model::Scene scene;
    RandomNumbers random(seed);
    fillScene(scene, random);
    QBuffer buffer;
    TestSupport::NoProgress progress;
    if (!buffer.open(QIODevice::WriteOnly) ||
        Model::SceneWriter(&scene, progress).write(&buffer) != Model::FileResult::Success)
        return {};
    return withCountedIdentifiers(buffer.data());
}

QByteArray document(const QByteArray &layers, const QByteArray &attributes)
{
    return "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<!DOCTYPE mr>\n<mr version=\"0.4\">\n<scene " + attributes +
           ">\n<layers>\n" + layers + "</layers>\n</scene>\n</mr>\n";
}

QByteArray identifier(int number)
{
    return QUuid(uint(number), 0, 0x4000, 0x80, 0, 0, 0, 0, 0, 0, 0).toByteArray();
}

QByteArray strokeLayer(int number, const QByteArray &drawings)
{
    return "<layer identifier=\"" + identifier(number) + "\" name=\"a\" linked=\"yes\" visible=\"yes\" " +
           "beyond=\"cycleDrawings\" type=\"stroke\">\n<opacity>0.5</opacity>\n<color>#2861b8</color>\n" + drawings +
           "</layer>\n";
}

QByteArray drawing(int number, const QByteArray &block)
{
    return "<drawing xOffset=\"1.5\" yOffset=\"-2\" rotationDeg=\"30\" keyDrawing=\"yes\" type=\"original\" "
           "identifier=\"" +
           identifier(number) + "\">\n<strokes>" + block.toBase64() + "</strokes>\n</drawing>\n";
}

QByteArray distantClone(int number, int layer, int cell)
{
    return "<drawing type=\"distantClone\" identifier=\"" + identifier(number) + "\">\n<original layer=\"" +
           identifier(layer) + "\" drawing=\"" + identifier(cell) + "\"/>\n</drawing>\n";
}

QByteArray allBlocks()
{
    constexpr qsizetype longest = 4096;
    QByteArray drawings;
    int number = 100;
    for (const QByteArray &block : strokeBlocks()) {
        if (block.size() <= longest)
            drawings += drawing(++number, block);
    }
    return document(strokeLayer(1, drawings), "frameWidth=\"64\" frameHeight=\"48\" fps=\"12.5\"");
}

QByteArray allNotes()
{
    QByteArray images;
    for (const QByteArray &block : runLengthBlocks())
        images += "<image>" + block.toBase64() + "</image>\n";
    return document("<ordering>0;1;2</ordering>\n<layer name=\"n\" linked=\"no\" type=\"scribble\">" + images +
                        "</layer>\n<layer type=\"audio\"><offsetFrames>-2.5</offsetFrames>"
                        "<originalAudioData>UklGRg==</originalAudioData></layer>\n<layer type=\"paint\"><x/></layer>\n",
                    "frameWidth=\"16\" frameHeight=\"12\" frameRange=\"2;7\" activeFrameNumber=\"3\"");
}

/// Distant clones of nothing, of each other, of themselves, of their own layer and of another.
QByteArray allLinks()
{
    const QByteArray clone = "<drawing type=\"clone\"/>\n";
    const QByteArray listed = "<drawing type=\"original\" identifier=\"" + identifier(11) + "\">\n<clone layer=\"" +
                              identifier(2) + "\" drawing=\"" + identifier(21) + "\"/>\n</drawing>\n";
    const QByteArray first = strokeLayer(1, listed + clone + distantClone(12, 1, 11) + distantClone(13, 9, 99));
    const QByteArray second = strokeLayer(2, clone + distantClone(21, 1, 11) + clone + distantClone(22, 2, 21));
    return document("<ordering>1;0</ordering>\n" + first + second, "frameWidth=\"16\" frameHeight=\"12\"");
}

QByteArray cycle()
{
    return document(strokeLayer(1, distantClone(11, 1, 12) + distantClone(12, 1, 11) + distantClone(13, 1, 13)),
                    "frameWidth=\"16\" frameHeight=\"12\"");
}

QByteArray entities()
{
    return "<?xml version=\"1.0\"?>\n<!DOCTYPE mr [<!ENTITY a \"12\"><!ENTITY b \"&a;&a;\">]>\n<mr version=\"0.4\">"
           "<scene fps=\"&a;\"><!-- c --><layers><![CDATA[x]]><layer type=\"stroke\" name=\"&b;&#10;&amp;\">"
           "<opacity>&a;</opacity></layer></layers></scene></mr>";
}

} // namespace

std::vector<QByteArray> sceneFiles()
{
    std::vector<QByteArray> files = {
        allBlocks(), allNotes(), allLinks(), cycle(), entities(), "<mr version=\"0.4\"/>", document({}, {})};
    for (int seed = 0; seed < generatedScenes; ++seed)
        files.push_back(generated(quint64(seed)));
    return files;
}

} // namespace TestSupport
