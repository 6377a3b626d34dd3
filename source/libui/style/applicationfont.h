#pragma once

#include <QFont>
#include <QObject>

namespace UI {

/// Keeps the application's font at the size of the interface: menus, dialogs and tool tips follow it at once.
///
/// Each size is derived from the base font, so that any number of changes leads back to where it began.
class ApplicationFont : public QObject
{
    Q_OBJECT

public:
    /// Sets \a base, which is the font at scale 1, at the present scale.
    explicit ApplicationFont(const QFont &base, QObject *parent = nullptr);

    /// The font at scale 1.
    [[nodiscard]] const QFont &base() const { return m_base; }

private:
    void apply();

    QFont m_base;
};

} // namespace UI
