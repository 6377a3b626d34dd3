#include "libmodel/strokes/guardedstream.h"

#include "libmodel/strokes/mappedbounds.h"

#include <QDataStream>
#include <QIODevice>

#include <algorithm>
#include <cmath>
#include <cstdlib>

namespace Model {

namespace {

bool isUsable(double value)
{
    return std::isfinite(value) && std::abs(value) <= coordinateLimit;
}

bool isOk(const QDataStream &stream)
{
    return stream.status() == QDataStream::Ok;
}

QByteArray readBytes(QDataStream &stream, qsizetype size)
{
    QByteArray bytes(size, Qt::Uninitialized);
    const int read = stream.readRawData(bytes.data(), int(size));
    bytes.truncate(std::max(read, 0));
    return bytes;
}

/// Walks over the elements: a path begins with a move, and a curve is always three elements in a row.
bool areElementsWellFormed(QDataStream &elements, qint32 count)
{
    int curveDataLeft = 0;
    for (qint32 i = 0; i < count; ++i) {
        qint32 type = 0;
        double x = 0.0;
        double y = 0.0;
        elements >> type >> x >> y;
        if (!isUsable(x) || !isUsable(y))
            return false;
        const bool isCurveData = type == QPainterPath::CurveToDataElement;
        if (type < QPainterPath::MoveToElement || type > QPainterPath::CurveToDataElement ||
            (i == 0 && type != QPainterPath::MoveToElement) || isCurveData != (curveDataLeft > 0))
            return false;
        if (isCurveData)
            --curveDataLeft;
        else if (type == QPainterPath::CurveToElement)
            curveDataLeft = 2;
    }
    return curveDataLeft == 0;
}

template<typename Integer>
bool readCountOf(QDataStream &stream, Integer &count, int bytesEach)
{
    count = 0;
    stream >> count;
    if (!isOk(stream))
        return false;
    // The device knows exactly what is left where it is a buffer or a file, which all of ours are.
    const qint64 left = stream.device() ? stream.device()->bytesAvailable() : 0;
    if (count < 0 || count > left / bytesEach) {
        count = 0;
        return refuse(stream);
    }
    return true;
}

} // namespace

bool StreamBudget::takeImage(qint64 bytes)
{
    if (bytes > imageBytes) {
        exceedsMemory = true;
        return false;
    }
    imageBytes -= bytes;
    return true;
}

bool refuse(QDataStream &stream)
{
    // Qt keeps the first failure, which is the one to know.
    stream.setStatus(QDataStream::ReadCorruptData);
    return false;
}

int bytesPerDouble(const QDataStream &stream)
{
    return stream.floatingPointPrecision() == QDataStream::SinglePrecision ? int(sizeof(float)) : int(sizeof(double));
}

bool readNumber(QDataStream &stream, double &value)
{
    stream >> value;
    return isOk(stream) && (isUsable(value) || refuse(stream));
}

bool readRadius(QDataStream &stream, double &value)
{
    return readNumber(stream, value) && (value >= 0.0 || refuse(stream));
}

bool readPoint(QDataStream &stream, QPointF &value)
{
    return readNumber(stream, value.rx()) && readNumber(stream, value.ry());
}

bool readRect(QDataStream &stream, QRect &value)
{
    stream >> value;
    if (!isOk(stream))
        return false;
    for (const int edge : {value.left(), value.top(), value.right(), value.bottom()}) {
        if (edge < -coordinateLimit || edge > coordinateLimit)
            return refuse(stream);
    }
    return true;
}

bool isReadable(const QTransform &transform)
{
    for (const double number :
         {transform.m11(), transform.m12(), transform.m21(), transform.m22(), transform.m31(), transform.m32()}) {
        if (!isUsable(number))
            return false;
    }
    return transform.m13() == 0.0 && transform.m23() == 0.0 && transform.m33() == 1.0;
}

bool readTransform(QDataStream &stream, QTransform &value)
{
    stream >> value;
    return isOk(stream) && (isReadable(value) || refuse(stream));
}

bool readPath(QDataStream &stream, QPainterPath &value)
{
    value = QPainterPath();
    const int bytesPerElement = int(sizeof(qint32)) + 2 * bytesPerDouble(stream);
    qint32 count = 0;
    if (!readCount(stream, count, bytesPerElement))
        return false;
    if (count == 0)
        return true;

    // Qt's own reader takes count, elements, first element of the last subpath and fill rule on trust, and an element
    // out of place makes every later use of the path read beyond its end. So it only gets to see what has been checked.
    const qsizetype size = qsizetype(count) * bytesPerElement;
    const QByteArray elements = readBytes(stream, size);
    qint32 subpathStart = 0;
    qint32 fillRule = 0;
    stream >> subpathStart >> fillRule;
    if (!isOk(stream) || elements.size() != size)
        return refuse(stream);
    QDataStream check(elements);
    check.setFloatingPointPrecision(stream.floatingPointPrecision());
    if (!areElementsWellFormed(check, count) || subpathStart < 0 || subpathStart >= count ||
        (fillRule != Qt::OddEvenFill && fillRule != Qt::WindingFill))
        return refuse(stream);

    QByteArray whole;
    QDataStream(&whole, QIODevice::WriteOnly) << count;
    whole += elements;
    QDataStream(&whole, QIODevice::Append) << subpathStart << fillRule;
    QDataStream checked(whole);
    checked.setFloatingPointPrecision(stream.floatingPointPrecision());
    checked >> value;
    return true;
}

bool readCount(QDataStream &stream, qint32 &count, int bytesEach)
{
    return readCountOf(stream, count, bytesEach);
}

bool readCount(QDataStream &stream, qint64 &count, int bytesEach)
{
    return readCountOf(stream, count, bytesEach);
}

} // namespace Model
