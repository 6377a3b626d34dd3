#include "libmodel/layers/linkbatch.h"

#include "libmodel/layers/layeritem.h"
#include "libmodel/strokes/imagedrawing.h"
#include "libmodel/strokes/strokedrawing.h"

#include <QTest>

#include <algorithm>
#include <random>
#include <vector>

using namespace Model;

namespace {

/// Three originals and the cells that they list, in any order, some twice, among entries that name nothing.
class Links
{
public:
    explicit Links(unsigned seed)
    {
        std::mt19937 random(seed);
        const auto drawing = std::make_shared<StrokeDrawing>(QSize(4, 4));
        for (int i = 0; i < 3; ++i) {
            originals.push_back(std::make_shared<LayerItem>(LayerItem::Type::Original, drawing));
            identify(*originals.back(), unsigned(i + 1));
        }
        for (unsigned i = 0; i < 40; ++i) {
            cells.push_back(std::make_shared<LayerItem>(LayerItem::Type::DistantClone, drawing));
            identify(*cells.back(), 100 + i);
            LayerItem &original = *originals.at(random() % originals.size());
            cells.back()->origin = refOf(original);
            for (unsigned entries = random() % 8; entries > 0; entries /= 3) // none, one or two
                insertAnywhere(original.clones, refOf(*cells.back()), random);
            if (random() % 4 == 0)
                insertAnywhere(original.clones, {layer, QUuid(i + 1000, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0)}, random);
        }
        std::shuffle(cells.begin(), cells.end(), random);
    }

    static CellRef refOf(const LayerItem &cell) { return {layer, cell.identifier}; }

    CellFinder finder() const
    {
        return [this](const CellRef &ref) -> std::shared_ptr<LayerItem> {
            for (const auto &original : originals) {
                if (refOf(*original) == ref)
                    return original;
            }
            return nullptr;
        };
    }

    /// What is to be equal, in one list.
    QList<qsizetype> places() const
    {
        QList<qsizetype> all;
        for (const auto &cell : cells)
            all.append(cell->formerLink);
        return all;
    }
    QList<QList<CellRef>> lists() const
    {
        QList<QList<CellRef>> all;
        for (const auto &original : originals)
            all.append(original->clones);
        return all;
    }

    std::vector<std::shared_ptr<LayerItem>> originals;
    std::vector<std::shared_ptr<LayerItem>> cells;

private:
    static void identify(LayerItem &cell, unsigned number)
    {
        cell.identifier = QUuid(number, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0);
    }
    static void insertAnywhere(QList<CellRef> &list, const CellRef &ref, std::mt19937 &random)
    {
        list.insert(qsizetype(random() % unsigned(list.size() + 1)), ref);
    }

    static inline const QUuid layer{7, 7, 7, 7, 7, 7, 7, 7, 7, 7, 7};
};

constexpr unsigned seeds = 200;

} // namespace

class tst_LinkBatch : public QObject
{
    Q_OBJECT

private slots:
    void unlinkingDoesWhatOneByOneDoes();
    void relinkingDoesWhatOneByOneDoes();
    void relinkingWithoutAPlaceGoesToTheEnd();
    void whatCannotBeRelinkedIsLeftAsItIs();
};

void tst_LinkBatch::unlinkingDoesWhatOneByOneDoes()
{
    for (unsigned seed = 0; seed < seeds; ++seed) {
        const Links expected(seed);
        const Links actual(seed);
        LinkBatch batch(actual.finder());
        for (size_t i = 0; i < actual.cells.size(); ++i) {
            unlinkDistantClone(*expected.cells.at(i), Links::refOf(*expected.cells.at(i)), expected.finder());
            batch.unlink(*actual.cells.at(i), Links::refOf(*actual.cells.at(i)));
        }
        batch.finishUnlinking();
        QCOMPARE(actual.places(), expected.places());
        QCOMPARE(actual.lists(), expected.lists());
    }
}

void tst_LinkBatch::relinkingDoesWhatOneByOneDoes()
{
    for (unsigned seed = 0; seed < seeds; ++seed) {
        const Links expected(seed);
        const Links actual(seed);
        std::mt19937 random(seed);
        LinkBatch batch(actual.finder());
        for (size_t i = 0; i < actual.cells.size(); ++i) {
            // As if some had been taken out at all kinds of places, and others never been in.
            const auto place = qsizetype(random() % 30) - 1;
            for (const Links *links : {&expected, &actual}) {
                links->cells.at(i)->formerLink = place;
                if (place % 3 == 0)
                    links->finder()(links->cells.at(i)->origin)->clones.removeAll(Links::refOf(*links->cells.at(i)));
            }
        }
        for (size_t i = 0; i < actual.cells.size(); ++i) {
            QVERIFY(relinkDistantClone(*expected.cells.at(i), Links::refOf(*expected.cells.at(i)), expected.finder()));
            QVERIFY(batch.relink(*actual.cells.at(i), Links::refOf(*actual.cells.at(i))));
        }
        batch.finishRelinking();
        QCOMPARE(actual.places(), expected.places());
        QCOMPARE(actual.lists(), expected.lists());
    }
}

void tst_LinkBatch::relinkingWithoutAPlaceGoesToTheEnd()
{
    const Links links(1);
    LayerItem &original = *links.originals.front();
    original.clones = {{QUuid(1, 1, 1, 1, 1, 1, 1, 1, 1, 1, 1), QUuid(2, 2, 2, 2, 2, 2, 2, 2, 2, 2, 2)}};
    LayerItem &cell = *links.cells.front();
    cell.origin = Links::refOf(original);
    LinkBatch batch(links.finder());
    QVERIFY(batch.relink(cell, Links::refOf(cell)));
    QCOMPARE(original.clones.size(), 1);
    batch.finishRelinking();
    QCOMPARE(original.clones.size(), 2);
    QCOMPARE(original.clones.last(), Links::refOf(cell));
    QCOMPARE(cell.drawing, original.drawing);
}

void tst_LinkBatch::whatCannotBeRelinkedIsLeftAsItIs()
{
    const Links links(2);
    const auto lists = links.lists();
    LayerItem &lost = *links.cells.at(0);
    lost.origin.cell = QUuid(9, 9, 9, 9, 9, 9, 9, 9, 9, 9, 9);
    lost.formerLink = 5;
    LayerItem &picture = *links.cells.at(1);
    picture.drawing = std::make_shared<ImageDrawing>(QImage());
    LinkBatch batch(links.finder());
    QVERIFY(!batch.relink(lost, Links::refOf(lost)));
    QVERIFY(!batch.relink(picture, Links::refOf(picture)));
    batch.finishRelinking();
    QCOMPARE(links.lists(), lists);
    QCOMPARE(lost.formerLink, 5);
    QCOMPARE(picture.drawing->type(), Drawing::Type::Image);
}

QTEST_APPLESS_MAIN(tst_LinkBatch)
#include "tst_linkbatch.moc"
