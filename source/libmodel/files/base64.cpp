#include "libmodel/files/base64.h"

#include <algorithm>
#include <optional>

namespace Model {

namespace {

bool isSpace(char c)
{
    return c == ' ' || c == '\n' || c == '\r' || c == '\t';
}

bool isDigit(char c)
{
    return (c >= 'A' && c <= 'Z') || (c >= 'a' && c <= 'z') || (c >= '0' && c <= '9') || c == '+' || c == '/';
}

/// The bytes of \a text, if it is all base64.
std::optional<QByteArray> strictlyDecoded(const QByteArray &text)
{
    // A single digit in the last group is too little for a byte.
    if (text.size() % 4 == 1)
        return std::nullopt;
    auto result =
        QByteArray::fromBase64Encoding(text, QByteArray::Base64Encoding | QByteArray::AbortOnBase64DecodingErrors);
    return result ? std::optional(std::move(result.decoded)) : std::nullopt;
}

} // namespace

DecodedBase64 decodeBase64(const QByteArray &text, BadBase64 bad)
{
    // As this program writes it there is no white space, so looking for it can wait.
    if (auto bytes = strictlyDecoded(text))
        return {std::move(*bytes)};
    QByteArray digits = text;
    digits.removeIf(isSpace);
    if (auto bytes = strictlyDecoded(digits))
        return {std::move(*bytes)};
    if (bad == BadBase64::EndsThere)
        digits.truncate(std::find_if_not(digits.cbegin(), digits.cend(), isDigit) - digits.cbegin());
    return {QByteArray::fromBase64(digits), true};
}

} // namespace Model
