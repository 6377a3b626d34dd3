#pragma once

#include <QCursor>
#include <QObject>

#include <memory>

namespace Model {

/// A tool the user can hold: which kind it is, the state it is held in, and the cursor that shows it.
///
/// Tools handle no events; the paper routes input by type(). Cursors are made when first asked for, so a tool can be
/// made without a GUI as long as nobody asks for its cursor.
class Tool : public QObject
{
    Q_OBJECT
    Q_PROPERTY(QCursor cursor READ cursor NOTIFY cursorChanged)

public:
    enum class Type {
        Pen = 0,
        Eraser = 1,
        Hand = 2,
        Zoom = 3,
        Rotate = 4,
        ZPR = 5,
        OffPegs = 6,
        Lasso = 7,
        Cutter = 8,
        FloatingSelection = 9,
        Scrubbing = 10,
        PenAdjustment = 11,
        None = 12,
    };
    Q_ENUM(Type)

    enum class PenType {
        Pencil = 0,
        Marker = 1,
        Brush = 2,
    };
    Q_ENUM(PenType)

    enum class EraserType {
        KneadedEraser = 0,
        RubberEraser = 1,
        VinylEraser = 2,
    };
    Q_ENUM(EraserType)

    [[nodiscard]] Type type() const { return m_type; }

    /// 0 is the ordinary state; in any other the tool takes no strokes. What the others mean is up to the tool.
    [[nodiscard]] int mode() const { return m_mode; }
    void setMode(int mode) { m_mode = mode; }

    /// A tool like this one, without parent or connections.
    [[nodiscard]] virtual std::unique_ptr<Tool> clone() const = 0;

    /// The cursor as the tool is now. Needs a GUI application.
    [[nodiscard]] virtual QCursor cursor() const = 0;

public slots:
    /// Looks again at everything the cursor depends on, and tells if it has changed. Here: nothing can have.
    virtual void updateCursor() {}

signals:
    void cursorChanged(const QCursor &cursor);

protected:
    explicit Tool(Type type, QObject *parent = nullptr);

    /// A \a ToolClass made from \a arguments in this tool's mode.
    template<typename ToolClass, typename... Arguments>
    [[nodiscard]] std::unique_ptr<ToolClass> cloneAs(const Arguments &...arguments) const
    {
        auto copy = std::make_unique<ToolClass>(arguments...);
        copy->setMode(mode());
        return copy;
    }

private:
    Type m_type;
    int m_mode = 0;
};

} // namespace Model
