#pragma once

#include "libmodel/base/settings.h"

#include <QCoreApplication>
#include <QSettings>
#include <QTemporaryDir>

/// A settings store of a test's own: nothing of the user's is read or written, and reset() makes it empty again.
class IsolatedStore
{
public:
    IsolatedStore()
    {
        QCoreApplication::setOrganizationName(QStringLiteral("MirelleTests"));
        QCoreApplication::setApplicationName(QStringLiteral("MirelleTests"));
        QSettings::setPath(QSettings::NativeFormat, QSettings::UserScope, m_folder.path());
        reset();
    }

    /// Empties the store; the settings stand at their defaults.
    void reset()
    {
        QSettings().clear();
        Model::Settings::instance()->load();
    }

    /// Puts \a value under \a path, as a store written elsewhere would hold it, and loads it.
    void load(const QString &path, const QVariant &value)
    {
        QSettings().setValue(path, value);
        Model::Settings::instance()->load();
    }

private:
    QTemporaryDir m_folder;
};
