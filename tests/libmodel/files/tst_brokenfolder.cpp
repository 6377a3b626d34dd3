// The files in tests/data/brokenfiles, each named by its defect, and what has to come of them.

#include "scenefixture.h"

#include "libmodel/files/scenereader.h"
#include "support/glfixture.h"
#include "support/sceneinvariants.h"

#include <QDir>
#include <QFile>
#include <QTest>

using namespace Model;
using namespace TestSupport;

namespace {

/// The cells of the layers with pictures, a letter each: o original, c hold, d distant clone, x one of nothing.
QString cellsOf(const Scene &scene)
{
    QStringList layers;
    for (int layerIdx = 0; layerIdx < scene.layerCount(); ++layerIdx) {
        const VisualLayer *layer = scene.visualLayer(layerIdx);
        if (!layer)
            continue;
        QString cells;
        for (const auto &cell : layer->frames()) {
            if (cell->isDistantClone())
                cells += scene.findItem(cell->origin) ? u'd' : u'x';
            else
                cells += cell->isClone() ? u'c' : u'o';
        }
        layers += cells;
    }
    return layers.join(u' ');
}

QByteArray contentOf(const QString &name)
{
    QFile file(QStringLiteral(MIRELLE_BROKEN_FILES "/") + name + QStringLiteral(".mr"));
    return file.open(QIODevice::ReadOnly) ? file.readAll() : QByteArray("cannot be opened");
}

} // namespace

class tst_BrokenFolder : public QObject
{
    Q_OBJECT

private slots:
    void initTestCase();
    void refusedFilesSayWhatAndWhere_data();
    void refusedFilesSayWhatAndWhere();
    void otherFilesGiveAScene_data();
    void otherFilesGiveAScene();
    void everyFileIsExpected();

private:
    QStringList m_tested;
};

void tst_BrokenFolder::initTestCase()
{
    QVERIFY(startRenderer());
}

void tst_BrokenFolder::refusedFilesSayWhatAndWhere_data()
{
    QTest::addColumn<QString>("what"); ///< empty where the words are the parser's own
    QTest::addColumn<int>("line");
    const auto row = [](const char *name, const char *what, int line) {
        QTest::newRow(name) << QString::fromLatin1(what) << line;
    };
    const char *foreign = "The file is not an MR version 0.4 file";
    const char *notUtf8 = "The file is not in UTF-8";
    const char *ownDeclarations = "A document type with declarations of its own is not accepted";
    const char *frameSize = "The frame size in the file is not between 1 and 8192 pixels";
    const char *circle = "A distant clone has no original: its links go round in a circle";
    row("empty", foreign, 1);
    row("no-xml", foreign, 1);
    row("other-version", foreign, 3);
    row("other-root", foreign, 3);
    row("cut-in-a-tag", "", 8);
    row("cut-in-a-value", "", 6);
    row("cut-between-tags", "", 11);
    row("tags-that-do-not-match", "", 10);
    row("more-behind-the-end", "", 14);
    row("entity-bomb", ownDeclarations, 2);
    row("entity-of-another-file", ownDeclarations, 2);
    row("entity-without-declaration", "", 6);
    row("utf-16", notUtf8, 1);
    row("latin-1", notUtf8, 1);
    // The parser takes the file in large helpings, and notices ahead of the place.
    row("bytes-that-are-no-utf-8", foreign, 1);
    row("null-byte", notUtf8, 6);
    row("attributes-without-end", "An element has more than 64 attributes", 6);
    row("attribute-twice", "", 6);
    row("elements-nested-too-deep", "Elements are nested deeper than 64", 7);
    row("name-too-long", "A name is longer than 256 bytes", 5);
    row("frame-size-of-0", frameSize, 4);
    row("frame-size-negative", frameSize, 4);
    row("frame-size-beyond-the-limit", frameSize, 4);
    row("frame-size-beyond-32-bits", frameSize, 4);
    row("range-that-ends-before-it-begins", "The frame range in the file ends before it begins", 4);
    row("layer-number-negative", "The layer number -1 in the file is not between 0 and 1000000000", 4);
    row("layer-number-beyond-the-limit", "The layer number 1000000001 in the file is not between 0 and 1000000000", 4);
    row("frame-rate-that-is-no-number", "The frame rate in the file is not a number", 4);
    row("move-infinite", "The number inf in xOffset is out of range", 7);
    row("move-that-is-no-number", "The number nan in yOffset is out of range", 8);
    row("move-out-of-reach", "The number -1e9 in xOffset is out of range", 7);
    row("rotation-out-of-reach", "The number 1e300 in rotationDeg is out of range", 7);
    row("opacity-that-is-no-number", "The number nan in opacity is out of range", 7);
    row("sound-offset-infinite", "The number -inf in offsetFrames is out of range", 11);
    row("sound-offset-out-of-reach", "The number 1e12 in offsetFrames is out of range", 11);
    row("layers-of-one-identifier", "Two layers have the same identifier", 11);
    row("cells-of-one-identifier", "Two drawings of a layer have the same identifier", 9);
    row("circle-of-distant-clones", circle, 8);
    row("distant-clone-of-itself", circle, 8);
    row("distant-clone-across-types", "A distant clone shows a drawing from a layer of another type", 12);
    row("drawing-of-unknown-type", "There is no drawing of the type \"tween\"", 8);
    row("content-twice", "A drawing has its content twice", 7);
    row("scenes-without-end", "The file has more than 4 scenes", 8);
}

void tst_BrokenFolder::refusedFilesSayWhatAndWhere()
{
    QFETCH(QString, what);
    QFETCH(int, line);
    m_tested.append(QTest::currentDataTag());
    Scene scene;
    const ReadResult read = readInto(scene, contentOf(QTest::currentDataTag()));
    QCOMPARE(read.result, FileResult::Error);
    const QStringList lines = read.error.split(u'\n');
    QCOMPARE(lines.size(), 2);
    if (what.isEmpty())
        QVERIFY(!lines[0].isEmpty());
    else
        QCOMPARE(lines[0], what);
    QVERIFY2(lines[1].startsWith(QStringLiteral("Line %1, column ").arg(line)), qPrintable(read.error));
}

void tst_BrokenFolder::otherFilesGiveAScene_data()
{
    QTest::addColumn<QString>("cells");
    QTest::addColumn<int>("rangeFirst");
    QTest::addColumn<int>("rangeLast");
    QTest::addColumn<int>("activeFrame");
    QTest::addColumn<QStringList>("damages");
    const auto row = [](const char *name, const char *cells, int first, int last, int active,
                        const QStringList &damages = {}) {
        QTest::newRow(name) << QString::fromLatin1(cells) << first << last << active << damages;
    };
    row("distant-clone-of-nothing", "oxc", 1, 3, 1);
    row("distant-clone-of-a-missing-layer", "x", 1, 1, 1);
    row("distant-clone-of-a-distant-clone", "ddo", 1, 3, 1);
    row("distant-clone-without-reference", "oc", 1, 2, 1);
    row("list-of-clones-in-disorder", "odod", 1, 4, 1);
    row("range-without-semicolon", "occ", 1, 3, 1);
    row("range-outside", "occ", 1, 3, 1);
    row("range-beyond-32-bits", "occ", 1, 2, 1);
    row("active-frame-far-outside", "occ", 1, 3, 3);
    row("active-frame-negative", "occ", 1, 3, 1);
    row("active-layer-far-outside", "occ", 1, 3, 1);
    row("frame-rate-in-words", "occ", 1, 3, 1);
    row("frame-rate-out-of-bounds", "occ", 1, 3, 1);
    row("frame-rate-infinite", "occ", 1, 3, 1);
    row("total-beyond-32-bits", "occ", 1, 3, 1);
    row("total-negative", "occ", 1, 3, 1);
    row("opacity-infinite", "o", 1, 1, 1);
    row("elements-with-a-prefix", "oc", 1, 2, 1);
    row("sound-that-is-no-base64", "occ", 1, 3, 1, {"Line 12: the sound is not stored as it should be"});
    row("opacity-out-of-bounds", "o", 1, 1, 1);
    row("clone-in-front", "oc", 1, 2, 1);
    row("clones-only", "o", 1, 1, 1);
    row("layer-without-type", "occ", 1, 3, 1);
    row("drawing-without-type", "oc", 1, 2, 1);
    row("order-longer-than-the-layers", "occ o", 1, 3, 1);
    row("order-of-layers-that-are-not-there", "occ o", 1, 3, 1);
    row("no-layers", "o", 1, 1, 1);
    row("no-scene", "o", 1, 1, 1);
    row("foreign-elements", "oc", 1, 2, 1);
    row("sound-layers-two", "occ", 1, 3, 1, {"Line 12: a scene has only one layer for sound, this one was left out"});
    row("notes-layers-two", "occ", 1, 3, 1, {"Line 12: a scene has only one layer for notes, this one was left out"});
    const QStringList drawing{"Line 7: a drawing cannot be read to its end"};
    row("strokes-that-are-no-base64", "oo", 1, 2, 1, drawing);
    row("strokes-cut", "oo", 1, 2, 1, drawing);
    row("strokes-of-2-to-31-segments", "o", 1, 1, 1, drawing);
    row("strokes-of-2-to-62-children", "o", 1, 1, 1, drawing);
    const QStringList noteDamage{"Line 12: a note cannot be read"};
    row("note-of-2-to-31-pixels-square", "occ", 1, 3, 1, noteDamage);
    row("note-of-negative-size", "occ", 1, 3, 1, noteDamage);
    row("note-that-leaves-its-row", "occ", 1, 3, 1, noteDamage);
    row("picture-that-is-none", "o", 1, 1, 1, {"Line 7: a picture cannot be read"});
}

void tst_BrokenFolder::otherFilesGiveAScene()
{
    QFETCH(QString, cells);
    QFETCH(int, rangeFirst);
    QFETCH(int, rangeLast);
    QFETCH(int, activeFrame);
    QFETCH(QStringList, damages);
    m_tested.append(QTest::currentDataTag());
    Scene scene;
    const ReadResult read = readInto(scene, contentOf(QTest::currentDataTag()));
    QVERIFY2(read.result == FileResult::Success, qPrintable(read.error));
    QCOMPARE(read.damages, damages);
    QCOMPARE(cellsOf(scene), cells);
    QCOMPARE(scene.rangeFirst(), rangeFirst);
    QCOMPARE(scene.rangeLast(), rangeLast);
    QCOMPARE(scene.activeFrame(), activeFrame);
    QCOMPARE(scene.activeLayerIdx(), 0);
    QCOMPARE(brokenInvariant(scene, DanglingLinks::Allowed), QString());
    // What was made of it can be saved and read again, and is the same.
    const QByteArray again = written(scene);
    QCOMPARE(written(*sceneFrom(again)), again);
}

void tst_BrokenFolder::everyFileIsExpected()
{
    if (m_tested.size() < 3)
        QSKIP("Only some of the files were asked for.");
    QStringList files;
    for (const QFileInfo &file : QDir(QStringLiteral(MIRELLE_BROKEN_FILES)).entryInfoList({QStringLiteral("*.mr")}))
        files.append(file.completeBaseName());
    m_tested.sort();
    files.sort();
    QCOMPARE(files, m_tested);
}

QTEST_MAIN(tst_BrokenFolder)
#include "tst_brokenfolder.moc"
