#include "libmodel/strokes/drawing.h"

namespace Model {

QString Drawing::name() const
{
    return m_name;
}

void Drawing::setName(const QString &name)
{
    m_name = name;
}

QUuid Drawing::copyId() const
{
    return m_copyId;
}

void Drawing::setCopyId(QUuid copyId)
{
    m_copyId = copyId;
}

} // namespace Model
