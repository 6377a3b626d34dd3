#pragma once

#include <QApplication>
#include <QPointingDevice>

/// The application object: a QApplication that turns two kinds of platform event into signals.
///
/// - Tablet proximity becomes tabletPointerTypeChanged(), so that turning the stylus round can switch tools.
/// - The platform's request to open a file becomes requestFileOpen().
class Application : public QApplication
{
    Q_OBJECT

public:
    /// \a argc and \a argv as given to main(); both must outlive the object.
    Application(int &argc, char **argv);

    /// Swallows every proximity event, whatever device it came from; all else goes on to QApplication.
    bool event(QEvent *event) override;

signals:
    /// The platform asks to open the scene file \a filename.
    void requestFileOpen(QString filename);

    /// The end \a pointerType of a stylus came near the tablet; only ever Pen or Eraser.
    void tabletPointerTypeChanged(QPointingDevice::PointerType pointerType);
};
