#pragma once

#include "libmodel/base/mr.h"

#include <QImage>
#include <QList>
#include <QRgb>
#include <QSize>
#include <QString>
#include <QUuid>

#include <memory>

namespace Model {

/// The picture of a cell: strokes, or an imported image.
class Drawing
{
public:
    enum class Type { Stroke = 0, Image = 1 };

    virtual ~Drawing() = default;

    [[nodiscard]] virtual Type type() const = 0;

    /// A deep copy, with the same copyId() and name.
    [[nodiscard]] virtual std::shared_ptr<Drawing> clone() const = 0;

    /// The drawing within \a size (pixels), in the colours of \a colorTable where it has none of its own; kept until
    /// the content or the size changes. Null if there is nothing to show.
    [[nodiscard]] virtual QImage thumbnail(QSize size, const QList<QRgb> &colorTable) = 0;

    [[nodiscard]] virtual QString name() const;

    /// Drops what thumbnail() keeps.
    virtual void clearThumbnails() = 0;

    /// Makes the drawing fit a frame of \a size (pixels).
    virtual void resize(QSize size, MR::FitMode fitMode) = 0;

    /// Adds the content of \a other on top, where the two kinds allow it.
    virtual void merge(const Drawing &other) = 0;

    void setName(const QString &name);

    /// Identifies the content as it stood when it last went to the clipboard; null after any change.
    [[nodiscard]] QUuid copyId() const;
    void setCopyId(QUuid copyId);

protected:
    Drawing() = default;
    Drawing(const Drawing &) = default;
    Drawing &operator=(const Drawing &) = default;

private:
    QUuid m_copyId;
    QString m_name;
};

} // namespace Model
