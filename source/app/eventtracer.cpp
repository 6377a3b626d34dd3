#include "app/eventtracer.h"

#include <QDebug>
#include <QEvent>
#include <QWidget>

namespace {

/// The event types that one piece of the list names; empty when it names none.
QList<int> parsePiece(const QByteArray &piece)
{
    bool isNumber = false;
    const int number = piece.toInt(&isNumber);
    if (isNumber)
        return {number};

    const QList<QByteArray> bounds = piece.split('-');
    if (bounds.size() != 2)
        return {};
    bool firstIsNumber = false;
    bool lastIsNumber = false;
    const int first = bounds[0].toInt(&firstIsNumber);
    const int last = bounds[1].toInt(&lastIsNumber);
    if (!firstIsNumber || !lastIsNumber)
        return {};
    // There are no more types than this; a range is cut there, so that a mistyped bound cannot fill the memory.
    constexpr qint64 mostTypes = qint64(QEvent::MaxUser) + 1;
    const qint64 count = qBound(qint64(0), qint64(last) - first + 1, mostTypes);
    QList<int> types;
    for (qint64 i = 0; i < count; ++i)
        types.append(int(first + i));
    return types;
}

/// Blanks with the branch of a drawn tree at the end: "| ", "| `-", "|   `-" and so on.
QByteArray treePrefix(qsizetype depth)
{
    QByteArray prefix(2 * depth + 2, ' ');
    prefix[0] = '|';
    if (depth > 0) {
        prefix[2 * depth] = '`';
        prefix[2 * depth + 1] = '-';
    }
    return prefix;
}

} // namespace

EventTracer::EventTracer(QObject *parent) : QObject(parent)
{
    for (const QByteArray &piece : qgetenv("MR_TRACE_EVENTS").split(','))
        m_eventTypes += parsePiece(piece.simplified());
}

bool EventTracer::eventFilter(QObject *object, QEvent *event)
{
    if (!m_eventTypes.contains(int(event->type())))
        return false;
    qDebug() << event << "->" << object;

    const auto *widget = qobject_cast<QWidget *>(object);
    if (!widget)
        return false;
    QList<const QWidget *> chain;
    for (const QWidget *ancestor = widget; ancestor; ancestor = ancestor->parentWidget())
        chain.prepend(ancestor);
    for (qsizetype depth = 0; depth < chain.size(); ++depth)
        qDebug().nospace() << treePrefix(depth).constData() << chain[depth];
    return false;
}
