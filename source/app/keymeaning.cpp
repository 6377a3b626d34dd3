#include "app/keymeaning.h"

#include <QKeyEvent>

namespace {

struct Row
{
    int key;
    bool withShiftToo;
    KeyGesture gesture;
};

constexpr Row rows[] = {
    {Qt::Key_Escape, false, KeyGesture::Escape}, {Qt::Key_Return, false, KeyGesture::Flip},
    {Qt::Key_Enter, false, KeyGesture::Flip},    {Qt::Key_Space, false, KeyGesture::View},
    {Qt::Key_D, false, KeyGesture::Draw},        {Qt::Key_E, false, KeyGesture::Erase},
    {Qt::Key_Q, true, KeyGesture::StepBack},     {Qt::Key_W, true, KeyGesture::StepForward},
    {Qt::Key_S, true, KeyGesture::SpeedDial},    {Qt::Key_Z, false, KeyGesture::Zoom},
    {Qt::Key_H, false, KeyGesture::Pan},         {Qt::Key_R, false, KeyGesture::Rotate},
    {Qt::Key_C, false, KeyGesture::Palette},
};

/// Where the letters lie, as the key codes that X11 and Wayland report (the kernel's, and 8).
struct Place
{
    quint32 scanCode;
    int key;
};

constexpr Place places[] = {
    {24, Qt::Key_Q}, {25, Qt::Key_W}, {26, Qt::Key_E}, {27, Qt::Key_R}, {39, Qt::Key_S},
    {40, Qt::Key_D}, {43, Qt::Key_H}, {52, Qt::Key_Z}, {54, Qt::Key_C},
};

/// The bit of Caps Lock among the native modifiers.
constexpr quint32 capsLock = 0x100;

/// A letter beyond Latin-1, and no key with a name.
bool isForeignLetter(int key)
{
    return key > 0xff && key < Qt::Key_Escape;
}

int latinKey(const QKeyEvent &event)
{
    if (!isForeignLetter(event.key()))
        return event.key();
    for (const Place &place : places) {
        if (place.scanCode == event.nativeScanCode())
            return place.key;
    }
    return event.key();
}

} // namespace

KeyGesture gestureOf(const QKeyEvent &event)
{
    const Qt::KeyboardModifiers modifiers = event.modifiers() & ~(Qt::KeypadModifier | Qt::GroupSwitchModifier);
    const int key = latinKey(event);
    for (const Row &row : rows) {
        if (row.key == key && (modifiers == Qt::NoModifier || (row.withShiftToo && modifiers == Qt::ShiftModifier)))
            return row.gesture;
    }
    return KeyGesture::None;
}

bool stepsByKeyDrawings(const QKeyEvent &event)
{
    const bool withShift = event.modifiers().testFlag(Qt::ShiftModifier);
    const bool withCapsLock = event.nativeModifiers() & capsLock;
    return withShift != withCapsLock;
}
