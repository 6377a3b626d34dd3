#pragma once

#include "libcommands/scenecommand.h"

#include <QCoreApplication>

#include <optional>

namespace Model {
class AudioLayer;
} // namespace Model

namespace Commands {

/// Changes the frames per second. A sound that begins before frame 1 is shifted by that, and undo puts it back exactly.
class SetFrameRate : public SceneCommand
{
    Q_DECLARE_TR_FUNCTIONS(Commands::SetFrameRate)

public:
    /// \a framesPerSecond is limited to what a scene takes. Obsolete when that is the present rate, and for what
    /// is no number.
    SetFrameRate(Model::MRScene *scene, double framesPerSecond, QUndoCommand *parent = nullptr);

    void redo() override;
    void undo() override;

    [[nodiscard]] int id() const override;
    /// Takes the rate of a later change.
    bool mergeWith(const QUndoCommand *other) override;

private:
    [[nodiscard]] Model::AudioLayer *audioLayer() const;
    [[nodiscard]] std::optional<double> audioOffset() const;
    void change(double framesPerSecond, std::optional<double> audioOffset);

    double m_new;
    double m_old = 0;
    /// Where the sound starts at these rates, in frames; the new one is known once it was taken back.
    std::optional<double> m_newOffset;
    std::optional<double> m_oldOffset;
};

} // namespace Commands
