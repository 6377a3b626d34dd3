#pragma once

#include <QByteArray>
#include <QCoreApplication>
#include <QIODevice>
#include <QString>

namespace Model {

/// Stands between a file and the XML parser and lets nothing through that would keep the parser busy for ever.
///
/// The parser compares every attribute of an element with every other, keeps one record per open element, and expands
/// the entities that a document declares for itself. A small state machine follows the markup as it passes; where a
/// limit is overstepped the data end, so that the parser stands at the very place that refusal() speaks of. What is
/// merely malformed is left to the parser, which is stricter than this.
///
/// Text between tags passes at the speed of a search for one byte. Sequential and read-only.
class XmlGuard : public QIODevice
{
    Q_DECLARE_TR_FUNCTIONS(Model::XmlGuard)

public:
    /// The most attributes of one element.
    static constexpr int maximumAttributes = 64;
    /// The most elements that are open at a time.
    static constexpr int maximumDepth = 64;
    /// The longest name of an element or attribute in bytes.
    static constexpr int maximumNameLength = 256;

    /// A guard, open for reading, in front of \a source, which is open too, stays so, and is not owned.
    explicit XmlGuard(QIODevice *source);
    ~XmlGuard() override;

    [[nodiscard]] bool isSequential() const override { return true; }
    /// Why the data ended before the file did, for the user; empty where they did not.
    [[nodiscard]] QString refusal() const { return m_refusal; }

protected:
    qint64 readData(char *data, qint64 maxSize) override;
    /// Nothing can be written: -1.
    qint64 writeData(const char *data, qint64 size) override;

private:
    enum class State {
        Text,             ///< between the tags
        Opened,           ///< behind `<`
        Exclaimed,        ///< behind `<!`
        Comment,          ///< as far as `-->`
        CharacterData,    ///< as far as `]]>`
        Instruction,      ///< as far as `?>`
        Declaration,      ///< the document type
        DeclarationValue, ///< in quotes there
        StartTag,         ///< an element's, outside of values
        Value,            ///< of an attribute
        EndTag,
    };

    [[nodiscard]] const char *passText(const char *at, const char *end);
    [[nodiscard]] const char *passOpened(const char *at);
    [[nodiscard]] const char *passExclaimed(const char *at);
    [[nodiscard]] const char *passUntilClosed(const char *at, const char *end, char mark, int marks);
    [[nodiscard]] const char *passDeclaration(const char *at);
    [[nodiscard]] const char *passStartTag(const char *at);
    [[nodiscard]] const char *passValue(const char *at, const char *end, State behind);
    [[nodiscard]] const char *passEndTag(const char *at, const char *end);
    [[nodiscard]] const char *pass(const char *at, const char *end);

    QIODevice *m_source;
    QString m_refusal;
    State m_state = State::Text;
    QByteArray m_exclaimed; ///< what stands behind `<!`, as long as it is open what that begins
    int m_marks = 0;        ///< how many of the characters that may close something were just seen
    char m_quote = '"';     ///< what closes the present value
    bool m_isSelfClosing = false;
    int m_attributes = 0; ///< of the present element
    int m_nameLength = 0; ///< of the present name
    int m_depth = 0;      ///< open elements
};

} // namespace Model
