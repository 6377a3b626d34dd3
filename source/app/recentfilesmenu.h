#pragma once

#include <QMenu>

/// The menu "Open Recent": the scene files opened or saved last, newest first, from the settings.
///
/// Rebuilt each time it opens, so that it always shows what the settings hold. Files with the same name are told apart
/// by their folder in the tool tip.
class RecentFilesMenu : public QMenu
{
    Q_OBJECT

public:
    /// How many files the list keeps.
    static constexpr int maximumCount = 10;

    explicit RecentFilesMenu(QWidget *parent);

    /// Puts \a filename at the front of the stored list.
    static void add(const QString &filename);

    /// Takes \a filename out of the stored list.
    static void remove(const QString &filename);

signals:
    /// The user chose \a filename.
    void fileChosen(QString filename);

private:
    void rebuild();
};
