#include "libmodel/files/xmlguard.h"

#include <algorithm>
#include <cstring>

namespace Model {

namespace {

/// Where \a byte stands first from \a at on, \a end if nowhere.
const char *find(const char *at, const char *end, char byte)
{
    const void *found = std::memchr(at, byte, size_t(end - at));
    return found ? static_cast<const char *>(found) : end;
}

bool isSpace(char byte)
{
    return byte == ' ' || byte == '\n' || byte == '\r' || byte == '\t';
}

} // namespace

XmlGuard::XmlGuard(QIODevice *source) : m_source(source)
{
    open(QIODevice::ReadOnly | QIODevice::Unbuffered);
}

XmlGuard::~XmlGuard() = default;

qint64 XmlGuard::readData(char *data, qint64 maxSize)
{
    if (!m_refusal.isEmpty() || maxSize < 1)
        return 0;
    const qint64 size = m_source->read(data, maxSize);
    if (size < 0)
        m_refusal = tr("The file cannot be read: %1").arg(m_source->errorString());
    if (size <= 0)
        return 0;
    // Encodings of two or four bytes a character hide the markup; their angle brackets have a null byte beside them.
    const char *nullByte = find(data, data + size, '\0');
    const char *at = data;
    while (at < nullByte && m_refusal.isEmpty())
        at = pass(at, nullByte);
    if (m_refusal.isEmpty() && nullByte < data + size)
        m_refusal = tr("The file is not in UTF-8");
    return at - data;
}

qint64 XmlGuard::writeData(const char *, qint64)
{
    return -1;
}

// Each of these takes what it can from there on, and stays in its place where the data have to end.
const char *XmlGuard::pass(const char *at, const char *end)
{
    switch (m_state) {
    case State::Text:
        return passText(at, end);
    case State::Opened:
        return passOpened(at);
    case State::Exclaimed:
        return passExclaimed(at);
    case State::Comment:
        return passUntilClosed(at, end, '-', 2);
    case State::CharacterData:
        return passUntilClosed(at, end, ']', 2);
    case State::Instruction:
        return passUntilClosed(at, end, '?', 1);
    case State::Declaration:
        return passDeclaration(at);
    case State::DeclarationValue:
        return passValue(at, end, State::Declaration);
    case State::StartTag:
        return passStartTag(at);
    case State::Value:
        return passValue(at, end, State::StartTag);
    case State::EndTag:
        return passEndTag(at, end);
    }
    return end;
}

const char *XmlGuard::passText(const char *at, const char *end)
{
    at = find(at, end, '<');
    if (at == end)
        return end;
    m_state = State::Opened;
    return at + 1;
}

const char *XmlGuard::passOpened(const char *at)
{
    m_marks = 0;
    switch (*at) {
    case '/':
        m_state = State::EndTag;
        return at + 1;
    case '?':
        m_state = State::Instruction;
        return at + 1;
    case '!':
        m_exclaimed.clear();
        m_state = State::Exclaimed;
        return at + 1;
    default:
        break;
    }
    if (m_depth >= maximumDepth) {
        m_refusal = tr("Elements are nested deeper than %1").arg(maximumDepth);
        return at;
    }
    ++m_depth;
    m_attributes = 0;
    m_nameLength = 0;
    m_isSelfClosing = false;
    m_state = State::StartTag;
    return at;
}

const char *XmlGuard::passExclaimed(const char *at)
{
    static const QByteArray comment("--");
    static const QByteArray characterData("[CDATA[");
    m_exclaimed.append(*at);
    if (m_exclaimed == comment)
        m_state = State::Comment;
    else if (m_exclaimed == characterData)
        m_state = State::CharacterData;
    else if (!comment.startsWith(m_exclaimed) && !characterData.startsWith(m_exclaimed))
        m_state = State::Declaration;
    return m_state == State::Declaration ? at : at + 1;
}

const char *XmlGuard::passUntilClosed(const char *at, const char *end, char mark, int marks)
{
    if (m_marks == 0)
        at = find(at, end, mark);
    for (; at < end; ++at) {
        if (*at == mark) {
            m_marks = std::min(m_marks + 1, marks);
            continue;
        }
        if (*at == '>' && m_marks == marks)
            m_state = State::Text;
        m_marks = 0;
        return at + 1;
    }
    return end;
}

const char *XmlGuard::passDeclaration(const char *at)
{
    if (*at == '[') {
        m_refusal = tr("A document type with declarations of its own is not accepted");
        return at;
    }
    if (*at == '"' || *at == '\'') {
        m_quote = *at;
        m_state = State::DeclarationValue;
    } else if (*at == '>') {
        m_state = State::Text;
    }
    return at + 1;
}

const char *XmlGuard::passStartTag(const char *at)
{
    const char byte = *at;
    if (byte == '>') {
        m_depth -= m_isSelfClosing ? 1 : 0;
        m_state = State::Text;
        return at + 1;
    }
    m_isSelfClosing = byte == '/';
    if (byte == '"' || byte == '\'') {
        m_quote = byte;
        m_state = State::Value;
    } else if (byte == '=' || isSpace(byte)) {
        m_nameLength = 0;
        m_attributes += byte == '=' ? 1 : 0;
    } else {
        ++m_nameLength;
    }
    if (m_attributes > maximumAttributes)
        m_refusal = tr("An element has more than %1 attributes").arg(maximumAttributes);
    else if (m_nameLength > maximumNameLength)
        m_refusal = tr("A name is longer than %1 bytes").arg(maximumNameLength);
    return m_refusal.isEmpty() ? at + 1 : at;
}

const char *XmlGuard::passValue(const char *at, const char *end, State behind)
{
    at = find(at, end, m_quote);
    if (at == end)
        return end;
    m_state = behind;
    m_nameLength = 0;
    return at + 1;
}

const char *XmlGuard::passEndTag(const char *at, const char *end)
{
    at = find(at, end, '>');
    if (at == end)
        return end;
    m_depth = std::max(m_depth - 1, 0);
    m_state = State::Text;
    return at + 1;
}

} // namespace Model
