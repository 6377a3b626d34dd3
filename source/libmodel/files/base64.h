#pragma once

#include <QByteArray>

namespace Model {

/// What base64 text stands for.
struct DecodedBase64
{
    QByteArray bytes;
    bool isDamaged = false; ///< the text has characters that base64 does not, or ends where it cannot
};

/// What is made of the text behind a character that has no place there.
enum class BadBase64 {
    EndsThere,  ///< nothing: it may stand for something that is missing, and all that follows would be off
    PassedOver, ///< as if the character were not there
};

/// The bytes of \a text, in which white space does not count; the padding at its end may be missing.
[[nodiscard]] DecodedBase64 decodeBase64(const QByteArray &text, BadBase64 bad = BadBase64::EndsThere);

} // namespace Model
