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

/// How a type stands in the store. read() gives \a fallback for a stored value that makes no sense.
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

    static T read(const QVariant &stored, const T &fallback)
    {
        if constexpr (std::is_enum_v<T>) {
            bool isKey = false;
            const int value = QMetaEnum::fromType<T>().keyToValue(stored.toString().toUtf8().constData(), &isKey);
            return static_cast<T>(isKey ? value : 0);
        } else {
            QVariant converted = stored;
            return converted.convert(QMetaType::fromType<T>()) ? converted.value<T>() : fallback;
        }
    }
};

template<>
struct StoredForm<QList<double>>
{
    static QVariant write(const QList<double> &levels) { return opacityLevelsText(levels); }
    static QList<double> read(const QVariant &stored, const QList<double> &fallback);
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
        const QVariant stored = store.value(QString::fromLatin1(m_path));
        if (!stored.isValid())
            return;
        const T read = StoredForm<T>::read(stored, m_initial);
        if (!m_check || m_check(read))
            m_value = read;
    }

    /// Keeps and stores \a value. \return false, with nothing done, if it stands already.
    bool set(const T &value)
    {
        if (m_value == value)
            return false;
        m_value = value;
        SettingsBatch().store().setValue(QString::fromLatin1(m_path), StoredForm<T>::write(value));
        return true;
    }

private:
    const char *m_path;
    const T m_initial;
    T m_value;
    Check m_check;
};

} // namespace Model
