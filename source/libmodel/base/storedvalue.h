#pragma once

#include "libmodel/base/settingsbatch.h"

#include <QByteArray>
#include <QList>
#include <QMetaEnum>
#include <QSettings>
#include <QSize>
#include <QString>
#include <QStringList>
#include <QVariant>

#include <optional>
#include <type_traits>
#include <vector>

namespace Model {

/// Something that can be read from a settings store.
class Storable
{
public:
    virtual ~Storable() = default;
    /// Takes what stands in \a store, the default if nothing does.
    virtual void load(const QSettings &store) = 0;
};

/// Opacities as text: each with two decimals and followed by ";", whatever the locale.
QString opacityLevelsText(const QList<double> &levels);
/// The opacities in \a text, held within 0 and 1; parts that are no number are left out.
QList<double> opacityLevelsFromText(const QString &text);

/// How a type stands in the store. read() gives nothing for a stored value that makes no sense.
template<typename T>
struct StoredForm
{
    static QVariant write(const T &value)
    {
        if constexpr (std::is_enum_v<T>)
            return QString::fromLatin1(QMetaEnum::fromType<T>().valueToKey(static_cast<int>(value)));
        else
            return QVariant::fromValue(value);
    }

    static std::optional<T> read(const QVariant &stored)
    {
        if constexpr (std::is_enum_v<T>) {
            bool isKey = false;
            const int value = QMetaEnum::fromType<T>().keyToValue(stored.toString().toUtf8().constData(), &isKey);
            return static_cast<T>(isKey ? value : 0);
        } else {
            QVariant converted = stored;
            return converted.convert(QMetaType::fromType<T>()) ? std::optional(converted.value<T>()) : std::nullopt;
        }
    }
};

template<>
struct StoredForm<QList<double>>
{
    static QVariant write(const QList<double> &levels) { return opacityLevelsText(levels); }
    static std::optional<QList<double>> read(const QVariant &stored);
};

/// One value of the settings: its place in the store, its default, and what it is now.
///
/// It enters itself into a list at construction, so the order of the members of a structure is the order of loading.
template<typename T>
class StoredValue : public Storable
{
public:
    /// Whether a value read from the store can be used.
    using Check = bool (*)(const T &);

    /// \a path is the key with its groups, "Group/Key"; it must outlive the value.
    StoredValue(std::vector<Storable *> &list, const char *path, const T &initial, Check check = nullptr)
        : m_path(path), m_initial(initial), m_value(initial), m_check(check)
    {
        list.push_back(this);
    }
    StoredValue(const StoredValue &) = delete;
    StoredValue &operator=(const StoredValue &) = delete;

    [[nodiscard]] const T &value() const { return m_value; }
    [[nodiscard]] const T &initial() const { return m_initial; }

    void load(const QSettings &store) override
    {
        m_value = m_initial;
        m_isRefused = false;
        const QVariant stored = store.value(QString::fromLatin1(m_path));
        if (!stored.isValid())
            return;
        const std::optional<T> read = StoredForm<T>::read(stored);
        m_isRefused = !read || (m_check && !m_check(*read));
        if (!m_isRefused)
            m_value = *read;
    }

    /// Keeps and stores \a value; does nothing if it stands already, unless load() could not use what is in the store.
    /// \return whether it is another value than before.
    bool set(const T &value)
    {
        const bool isOther = m_value != value;
        if (isOther || m_isRefused) {
            m_value = value;
            m_isRefused = false;
            SettingsBatch().store().setValue(QString::fromLatin1(m_path), StoredForm<T>::write(value));
        }
        return isOther;
    }

private:
    const char *m_path;
    const T m_initial;
    T m_value;
    Check m_check;
    /// What stands in the store makes no sense; the default stands for it.
    bool m_isRefused = false;
};

} // namespace Model
