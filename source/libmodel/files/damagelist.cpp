#include "libmodel/files/damagelist.h"

namespace Model {

void DamageList::append(const QString &text)
{
    if (++m_count <= maximumTexts)
        m_texts.append(text);
}

QStringList DamageList::texts() const
{
    QStringList texts = m_texts;
    if (m_count > m_texts.size())
        texts.append(tr("... and %1 more").arg(m_count - m_texts.size()));
    return texts;
}

} // namespace Model
