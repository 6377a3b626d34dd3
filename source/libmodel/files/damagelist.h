#pragma once

#include <QCoreApplication>
#include <QStringList>

namespace Model {

/// What is wrong with a file that is read nevertheless: the first texts, and how many there were.
///
/// Every other line of a large file may be damaged; nobody reads a million texts, and they would need more memory than
/// the file.
class DamageList
{
    Q_DECLARE_TR_FUNCTIONS(Model::DamageList)

public:
    /// The most texts that are kept.
    static constexpr qsizetype maximumTexts = 1000;

    /// Notes one more damage, of which \a text tells.
    void append(const QString &text);

    /// The first maximumTexts texts, and one more that says how many others there were, if any.
    [[nodiscard]] QStringList texts() const;

    /// How many damages were noted.
    [[nodiscard]] qsizetype count() const { return m_count; }

private:
    QStringList m_texts;
    qsizetype m_count = 0;
};

} // namespace Model
