#include "libmodel/strokes/bitmapstroke.h"
#include "libmodel/strokes/coverage.h"
#include "libui/paper/floatingselectionview.h"
#include "libui/paper/viewtransform.h"

#include <QImage>
#include <QPainter>
#include <QTest>

#include <algorithm>
#include <cmath>

using namespace UI;
using Transform = Model::FloatingSelection::Transform;

/// Selections that are made smaller in one direction than in the other.
class tst_SquashedSelection : public QObject
{
    Q_OBJECT

private slots:
    void squashedLinesKeepTheirInk_data();
    void squashedLinesKeepTheirInk();
    void lineAlongTheSquashedSideStaysSharp();

private:
    static constexpr QSize frameSize{400, 300};
    static constexpr QRect usable{0, 0, 600, 500};

    static ViewTransform view()
    {
        ViewTransform view;
        view.setUsableRect(usable);
        view.setPaperRect(QRectF({0, 0}, frameSize));
        return view;
    }

    /// \a picture as it is seen under \a transform.
    static QImage painted(const QImage &picture, const Transform &transform)
    {
        FloatingSelectionView floating;
        floating.setSelection({std::make_unique<Model::BitmapStroke>(picture, picture.rect()), frameSize});
        floating.setTransform(transform);
        floating.rebuildHandles(view(), 1.0);
        QImage image(usable.size(), QImage::Format_ARGB32_Premultiplied);
        image.fill(Qt::transparent);
        QPainter painter(&image);
        floating.paint(&painter, usable, view(), Qt::red);
        return image;
    }
};

void tst_SquashedSelection::squashedLinesKeepTheirInk_data()
{
    QTest::addColumn<QTransform>("scale"); // from the paper to the content
    QTest::addColumn<QTransform>("rotation");
    QTest::addColumn<bool>("hasColumns");
    QTest::newRow("across") << QTransform::fromScale(6, 1) << QTransform() << true;
    QTest::newRow("down") << QTransform::fromScale(1, 6) << QTransform() << false;
    QTest::newRow("much across") << QTransform::fromScale(9, 1) << QTransform() << true;
    QTest::newRow("across, and larger down") << QTransform::fromScale(6, 0.5) << QTransform() << true;
    QTest::newRow("both, but across more") << QTransform::fromScale(12, 3) << QTransform() << true;
    QTest::newRow("across, mirrored") << QTransform::fromScale(-6, 1) << QTransform() << true;
    QTest::newRow("a quarter turned") << QTransform::fromScale(1, 6) << QTransform(0, 1, -1, 0, 0, 0) << true;
    QTest::newRow("half a quarter turned") << QTransform::fromScale(6, 1) << QTransform().rotate(45) << true;
}

// Lines of a pixel's width. Whoever looks at two pixels only of each six misses most of them and makes much of others.
void tst_SquashedSelection::squashedLinesKeepTheirInk()
{
    QFETCH(const QTransform, scale);
    QFETCH(const QTransform, rotation);
    QFETCH(const bool, hasColumns);
    constexpr int side = 300;
    constexpr int distance = 41; // in no step with squashing
    QImage lines = Model::blankCoverage({side, side});
    for (int y = 0; y < side; ++y) {
        for (int x = 0; x < side; ++x)
            lines.scanLine(y)[x] = (hasColumns ? x : y) % distance == 0 ? 255 : 0;
    }
    Transform transform;
    transform.scale = scale;
    transform.rotation = rotation;
    // The translation is the last on the way to the content, whose middle is to lie in the middle of the paper.
    const QPointF middle = QPointF(side, side) / 2;
    const QPointF apart = middle - transform.paperToContent().map(QPointF(frameSize.width(), frameSize.height()) / 2);
    transform.translation = QTransform::fromTranslate(apart.x(), apart.y());
    const QTransform shown = transform.contentToPaper() * view().paperToWidget();
    const QImage image = painted(lines, transform);

    const QPointF along = hasColumns ? QPointF(shown.m21(), shown.m22()) : QPointF(shown.m11(), shown.m12());
    const bool isUpright = std::abs(along.y()) >= std::abs(along.x());
    const double width = std::abs(shown.determinant()) / (isUpright ? std::abs(along.y()) : std::abs(along.x()));
    const QPoint step = isUpright ? QPoint(1, 0) : QPoint(0, 1);
    for (int at = 2 * distance; at < side - distance; at += distance) {
        // Off the pivot's sign in the middle.
        const QPointF on = hasColumns ? QPointF(at + 0.5, side / 3.0) : QPointF(side / 3.0, at + 0.5);
        double ink = 0;
        const int reach = int(distance * width / 2);
        for (int i = -reach; i <= reach; ++i)
            ink += qAlpha(image.pixel(shown.map(on).toPoint() + i * step));
        QVERIFY2(ink > 0.5 * width * 255 && ink < 1.6 * width * 255,
                 qPrintable(QStringLiteral("%1 of %2 at %3").arg(ink).arg(width * 255).arg(at)));
    }
}

void tst_SquashedSelection::lineAlongTheSquashedSideStaysSharp()
{
    QImage line = Model::blankCoverage({300, 300});
    std::fill_n(line.scanLine(60), 300, uchar(255));
    Transform transform;
    transform.scale = QTransform::fromScale(6, 1);
    const QImage image = painted(line, transform);
    const QTransform shown = transform.contentToPaper() * view().paperToWidget();
    const QPoint on = shown.map(QPointF(100.5, 60.5)).toPoint() - QPoint(0, 1);
    int sum = 0;
    int most = 0;
    for (int y = -3; y <= 4; ++y) {
        const int alpha = qAlpha(image.pixel(on + QPoint(0, y)));
        sum += alpha;
        most = std::max(most, alpha);
    }
    QVERIFY2(most >= 127, qPrintable(QString::number(most)));
    QVERIFY2(std::abs(sum - 255) <= 8, qPrintable(QString::number(sum)));
}

QTEST_MAIN(tst_SquashedSelection)
#include "tst_squashedselection.moc"
